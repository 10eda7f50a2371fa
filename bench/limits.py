#!/usr/bin/env python3
"""Runs CmdTessaron at its limits and prints a Markdown table of time and memory.

  bench/limits.py PROGRAM [name ...]

Each case runs three times at its full size and three times at a quarter of it; the best time of
each counts. The last column is about 4 if the cost is linear in the size, and about 16 if it is
quadratic. The script stops at a case with wrong output.
"""
import multiprocessing
import os
import pathlib
import random
import subprocess
import sys
import tempfile
import time

MIB = 1 << 20


def record(address, type_byte, data):
    body = bytes([len(data)]) + address.to_bytes(2, "big") + bytes([type_byte]) + data
    return ":%s%02X\n" % (body.hex().upper(), -sum(body) & 0xFF)


def hex_records(count, order):
    """`count` records of 16 bytes in the given order, with gaps of 16 bytes between them."""
    lines = []
    for number in order(count):
        address = 32 * number
        lines.append(record(0, 4, (address >> 16).to_bytes(2, "big")))
        lines.append(record(address & 0xFFFF, 0, bytes((number + i) & 0xFF for i in range(16))))
    return "".join(lines) + ":00000001FF\n"


def shuffled(count):
    numbers = list(range(count))
    random.Random(1).shuffle(numbers)
    return numbers


def areas(count):
    return "{" + ", ".join("{%d, 16}" % (32 * i) for i in range(count)) + "}"


def large_script(scale):
    line = "PRINT_TEXT {a text of some length, to fill the script} // and a comment of some length\n"
    line += "// " + "comment " * 1200 + "\n"
    return line * (256 * MIB // scale // len(line)), {}, "a text of some length"


def long_line(scale):
    return "PRINT_TEXT {ok} // " + "x" * (100 * MIB // scale) + "\nPRINT_TEXT {end}", {}, "end"


def long_text(scale):
    return "PRINT_TEXT {" + "x" * (100 * MIB // scale) + "}\nPRINT_TEXT {end}", {}, "end"


def many_statements(scale):
    return "PRINT_TEXT ok\n" * (1000000 // scale), {}, "ok"


def many_buffers(scale):
    names = "".join("NEW_BUFFER @B%d FROM_VALUES {1, 2, 3}\n" % i for i in range(100000 // scale))
    return names + "PRINT_TEXT {end}", {}, "end"


def areas_of_image(scale):
    listed = areas(100000 // scale)
    return ("NEW_BUFFER @B EMPTY -useAreas=" + listed + "\nFILL_BUFFER @B WITH_VALUES {1, 2} -useAreas="
            + listed + "\nNEW_CRC @C FROM_BUFFER @B -useAreas=" + listed
            + "\nNEW_BUFFER @D FROM_BUFFER @B -useAreas=" + listed + "\nPRINT_TEXT {end}"), {}, "end"


def areas_of_file(order):
    def case(scale):
        count = 100000 // scale
        return ("NEW_BUFFER @B FROM_FILE in.hex -useAreas=" + areas(count)
                + "\nWRITE_FILE out.bin WITH_BUFFERS {@B} -setFormat=RawBinary\nPRINT_TEXT {end}"), {
                    "in.hex": hex_records(count, order)}, "end"
    return case


def random_order(scale):
    return ("NEW_BUFFER @B FROM_FILE in.hex\nWRITE_FILE out.hex WITH_BUFFERS {@B}\nPRINT_TEXT {end}"), {
        "in.hex": hex_records(1000000 // scale, shuffled)}, "end"


def far_apart(_scale):
    text = (record(0, 4, b"\0\0") + record(0, 0, b"a") + record(0, 4, b"\xff\xff")
            + record(0xFFFF, 0, b"b") + ":00000001FF\n")
    return "NEW_BUFFER @B FROM_FILE in.hex\nPRINT_TEXT {end}", {"in.hex": text}, "is too big 0xFFF FFFF"


def deep(text):
    def case(scale):
        return "PRINT_TEXT {a [%s] b}\nPRINT_TEXT {end}" % text(100000 // scale), {}, "end"
    return case


def many_variables(scale):
    count = 10000 // scale
    lines = "".join("SUBSTITUTE name%dx WITH value%d\n" % (i, i) for i in range(count))
    return lines + "".join("PRINT_TEXT {name%dx}\n" % (i % count) for i in range(10 * count)), {}, "value1"


def pattern_variables(scale):
    lines = "".join("SUBSTITUTE nam[e]%dx WITH value%d\n" % (i, i) for i in range(1000 // scale))
    return lines + "".join("PRINT_TEXT {name%dx}\n" % i for i in range(1000)), {}, "value1"


CASES = {
    "script of 256 MiB": large_script,
    "line of 100 MiB, a comment": long_line,
    "line of 100 MiB, a text": long_text,
    "1,000,000 statements": many_statements,
    "100,000 images": many_buffers,
    "100,000 areas of an image, four statements": areas_of_image,
    "100,000 areas of a HEX file": areas_of_file(range),
    "100,000 areas of a HEX file in random order": areas_of_file(shuffled),
    "1,000,000 HEX records in random order": random_order,
    "two HEX records 4 GiB apart": far_apart,
    "100,000 open parentheses": deep(lambda n: "(" * n + "1" + ")" * n),
    "100,000 chained operators": deep(lambda n: "1" + "+1" * n),
    "10,000 variables": many_variables,
    "1,000 variables that are patterns": pattern_variables,
}


def make(name, scale, folder):
    script, files, wanted = CASES[name](scale)
    work = pathlib.Path(folder)
    (work / "script.tsn").write_text(script)
    (work / "wanted").write_text(wanted)
    for file_name, text in files.items():
        (work / file_name).write_text(text)


def run(program, name, scale):
    with tempfile.TemporaryDirectory() as folder:
        # In a separate process, since a child's peak memory begins with that of its parent.
        maker = multiprocessing.get_context("fork").Process(target=make, args=(name, scale, folder))
        maker.start()
        maker.join()
        work = pathlib.Path(folder)
        with open(work / "out", "wb") as out:
            begin = time.monotonic()
            child = subprocess.Popen([program, "script.tsn"], cwd=work, stdout=out)
            _, status, usage = os.wait4(child.pid, 0)
            seconds = time.monotonic() - begin
        found = subprocess.run(["grep", "-qF", (work / "wanted").read_text(), "out"], cwd=work)
        if status != 0 or found.returncode != 0:
            sys.exit("wrong output; exit status %d" % status)
    return seconds, usage.ru_maxrss / 1024


def best(program, name, scale):
    """The best of three runs, since a virtual machine is slow until its host provides memory."""
    return min(run(program, name, scale) for _ in range(3))


def main():
    program = str(pathlib.Path(sys.argv[1]).resolve())
    print("| case | seconds | peak MiB | of a quarter of it: seconds | ratio |")
    print("| --- | ---: | ---: | ---: | ---: |")
    for name in CASES:
        if sys.argv[2:] and not any(part in name for part in sys.argv[2:]):
            continue
        whole, memory = best(program, name, 1)
        quarter, _ = best(program, name, 4)
        print("| %s | %.2f | %.0f | %.2f | %.1f |" % (name, whole, memory, quarter, whole / quarter),
              flush=True)


if __name__ == "__main__":
    main()
