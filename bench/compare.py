#!/usr/bin/env python3
"""The measurements of bench/compare.sh.

  compare.py PROGRAM FOLDER LARGEST

FOLDER holds `measure`, LARGEST is the size of the largest image in MiB. objcopy, not the measured
program, makes the inputs. The files that the tools write are compared before a figure is printed.
The tools run in turn, so that other load on the machine affects all of them. cp copies the text of
the conversion: it is the cost of moving the bytes without a look at them.
"""
import os
import pathlib
import random
import shutil
import statistics
import subprocess
import sys
import tempfile

MIB = 1 << 20
BASE = 0x08000000
SCRIPTS = {
    "hex": "WRITE_FILE outFile WITH_BUFFERS {@B}\n",
    "srec": "WRITE_FILE outFile WITH_BUFFERS {@B} -setFormat=MotorolaS_32\n",
    "raw": "WRITE_FILE outFile WITH_BUFFERS {@B} -setFormat=RawBinary\n",
    "nothing": "",
}
CONVERSIONS = [("hex", "nothing"), ("hex", "hex"), ("hex", "srec"), ("srec", "nothing"),
               ("srec", "hex"), ("raw", "hex"), ("hex", "raw")]
MAIN_JOB = """NEW_BUFFER @B FROM_FILE inFile -useAreas={{0x08000000, 0x20000}}
FILL_BUFFER @B WITH_FILLER { 0x00, 0xA0, 0xF0, 0xF7 }
NEW_CRC @C FROM_BUFFER @B -useAreas={{0x08000000, 0x1FFFC}} -setType=Crc32_Vector_AUTOSAR
FILL_BUFFER @B WITH_CRC @C -useAreas={{0x0801FFFC, 4}}
WRITE_FILE outFile WITH_BUFFERS {@B}
"""
OBJCOPY_NAMES = {"hex": "ihex", "srec": "srec", "raw": "binary"}
SREC_NAMES = {"hex": "-intel", "srec": "-motorola", "raw": "-binary"}


class Bench:
    def __init__(self, program, tools, work):
        self.program = str(program)
        self.measure = str(tools / "measure")
        self.work = work

    def path(self, name):
        return str(self.work / name)

    def script(self, name, text):
        (self.work / name).write_text(text)
        return self.path(name)

    def once(self, command):
        report = self.path("report")
        with open(self.path("errors"), "w") as errors:
            if subprocess.run([self.measure, report] + command, cwd=self.work,
                              stderr=errors).returncode != 0:
                sys.exit("cannot run " + command[0])
        status, processor, wall, memory = map(int, pathlib.Path(report).read_text().split())
        if status != 0:
            sys.exit("failed: %s\n%s" % (" ".join(command), pathlib.Path(self.path("errors")).read_text()))
        return processor / 1e6, wall / 1e6, memory / 1024

    def sample(self, commands, rounds):
        """Runs the commands in turn; the figures of each round by name."""
        samples = {name: [] for name in commands}
        for _ in range(rounds):
            for name, command in commands.items():
                samples[name].append(self.once(command))
        return samples

    def compare(self, commands, rounds):
        """Medians of processor seconds, wall seconds and MiB by name."""
        return {name: [statistics.median(column) for column in zip(*rows)]
                for name, rows in self.sample(commands, rounds).items()}


def objcopy(source, source_format, target, target_format):
    command = ["objcopy", "-I", OBJCOPY_NAMES[source_format], "-O", OBJCOPY_NAMES[target_format]]
    if source_format == "raw":
        command += ["--change-addresses", hex(BASE)]
    return command + [source, target]


def srec_cat(source, source_format, target, target_format):
    command = ["srec_cat", source, SREC_NAMES[source_format]]
    if source_format == "raw":
        command += ["-offset", hex(BASE)]
    if target_format == "raw":
        command += ["-offset", "-" + hex(BASE)]
    return command + ["-o", target, SREC_NAMES[target_format]]


def intelhex(source, source_format, target, target_format):
    form = {"hex": "hex", "raw": "bin"}
    offset = ", offset=%d" % BASE if source_format == "raw" else ""
    code = ("import intelhex; i = intelhex.IntelHex(); i.load%s('%s'%s); i.%s('%s')"
            % (form[source_format], source, offset,
               {"hex": "write_hex_file", "raw": "tobinfile"}[target_format], target))
    # Debian packages the library for the system's interpreter.
    return ["/usr/bin/python3", "-c", code]


def bytes_of(path, form):
    """The bytes that objcopy reads from a file."""
    if form == "raw":
        return pathlib.Path(path).read_bytes()
    with tempfile.NamedTemporaryFile() as raw:
        subprocess.run(objcopy(path, form, raw.name, "raw"), check=True)
        return pathlib.Path(raw.name).read_bytes()


def check(outputs, form):
    contents = {name: bytes_of(path, form) for name, path in outputs.items()}
    wanted = contents["CmdTessaron"]
    for name, got in contents.items():
        if got != wanted:
            sys.exit("%s and CmdTessaron do not agree" % name)


def times_cheaper(ours, peers, column):
    """The cost of the best peer divided by ours."""
    return min(figures[column] for figures in peers.values()) / ours[column]


def table_head(title, peers):
    print("\n### %s\n" % title)
    columns = ["item", "MiB", "CmdTessaron", "cp", "times cp"] + peers + ["times the best"]
    print("| " + " | ".join(columns) + " |\n| --- " + "| ---: " * (len(columns) - 1) + "|")


def cell(figures):
    if figures is None:
        return ""
    digits = 4 if figures[0] < 0.05 else 3
    return "%.*f / %.*f / %.0f" % (digits, figures[0], digits, figures[1], figures[2])


def row(name, size, result, peers):
    ours = result["CmdTessaron"]
    others = {peer: result[peer] for peer in peers if peer in result}
    copy = result.get("cp")
    print("| %s |" % " | ".join(
        [name, size, cell(ours), cell(copy), "%.2f" % (ours[0] / copy[0]) if copy else ""] +
        [cell(result.get(peer)) for peer in peers] +
        ["%.2f, %.2f" % tuple(times_cheaper(ours, others, column) for column in (0, 1))
         if others else ""]), flush=True)


def make_inputs(bench, size):
    raw = bench.path("image-of-%d-MiB.bin" % size)
    if not os.path.exists(raw):
        generator = random.Random(size)
        with open(raw, "wb") as out:
            for _ in range(size):
                out.write(generator.randbytes(MIB))
        for form in ("hex", "srec"):
            # objcopy writes this name into the header record; some readers depend on its length.
            subprocess.run(objcopy(raw, "raw", bench.path("image-of-%d-MiB.%s" % (size, form)), form),
                           check=True)
    return {"raw": raw, "hex": bench.path("image-of-%d-MiB.hex" % size),
            "srec": bench.path("image-of-%d-MiB.srec" % size)}


def conversion_command(bench, inputs, source, target, output):
    read = "FROM_FILE_BINARY" if source == "raw" else "FROM_FILE"
    move = " -changeStartAddressTo=0x08000000" if source == "raw" else ""
    script = bench.script("%s-%s.tsn" % (source, target),
                          "NEW_BUFFER @B %s inFile%s\n%s" % (read, move, SCRIPTS[target]))
    return [bench.program, "inFile=" + inputs[source], "outFile=" + output, script]


def copy_command(bench, inputs, source):
    """Copies the text of a conversion from `source`, which is the output of one from raw bytes."""
    return ["cp", inputs["hex" if source == "raw" else source], bench.path("out-cp")]


def conversion(bench, inputs, source, target, size):
    outputs = {name: bench.path("out-" + name) for name in
               ("CmdTessaron", "srec_cat", "objcopy", "intelhex")}
    commands = {"CmdTessaron": conversion_command(bench, inputs, source, target,
                                                  outputs["CmdTessaron"]),
                "cp": copy_command(bench, inputs, source)}
    if target != "nothing":
        for name, maker in (("srec_cat", srec_cat), ("objcopy", objcopy)):
            commands[name] = maker(inputs[source], source, outputs[name], target)
        if size == 1 and "srec" not in (source, target):
            commands["intelhex"] = intelhex(inputs[source], source, outputs["intelhex"], target)
    result = bench.compare(commands, 11 if size <= 16 else 5 if size <= 64 else 3)
    if target != "nothing":
        check({name: outputs[name] for name in commands if name in outputs}, target)
    return result


def conversions(bench, largest):
    peers = ["srec_cat", "objcopy", "intelhex"]
    table_head("Conversions", peers)
    for size in (1, 16, 64, 255):
        if size > largest:
            break
        inputs = make_inputs(bench, size)
        for source, target in CONVERSIONS:
            row("%s to %s" % (source, target), str(size),
                conversion(bench, inputs, source, target, size), peers)


def main_job(bench):
    image = bytearray(random.Random(3).randbytes(0x25000))
    pieces = [(0, 0x12000), (0x14000, 0x1F000), (0x24000, 0x25000)]
    parts = []
    for number, (first, last) in enumerate(pieces):
        part = bench.path("part%d" % number)
        pathlib.Path(part).write_bytes(image[first:last])
        parts += [part, "-binary", "-offset", hex(BASE + first)]
    source = bench.path("main.hex")
    subprocess.run(["srec_cat"] + parts + ["-o", source, "-intel"], check=True)
    end, last = "0x08020000", "0x0801FFFC"
    commands = {
        "CmdTessaron": [bench.program, "inFile=" + source, "outFile=" + bench.path("out.hex"),
                        bench.script("main.tsn", MAIN_JOB)],
        "srec_cat": ["srec_cat", "(", source, "-intel", "-crop", hex(BASE), last, "-generate",
                     hex(BASE), last, "-repeat-data", "0x00", "0xA0", "0xF0", "0xF7", "-exclude",
                     "-within", source, "-intel", ")", "-crc32-l-e", last, "-crop", hex(BASE), end,
                     "-o", bench.path("out-srec_cat"), "-intel"],
        "objcopy, a plain copy": objcopy(source, "hex", bench.path("out-objcopy"), "hex"),
    }
    result = bench.compare(commands, 41)
    check({"CmdTessaron": bench.path("out.hex"), "srec_cat": bench.path("out-srec_cat")}, "hex")
    peers = ["srec_cat", "objcopy, a plain copy"]
    table_head("The main job: crop, fill, CRC-32, Intel HEX", peers)
    row("main job", "1/8", result, peers)


def checksums(bench):
    source = make_inputs(bench, 64)["raw"]
    read = "NEW_BUFFER @B FROM_FILE_BINARY inFile\n"
    crc = {
        "CmdTessaron": [bench.program, "inFile=" + source, bench.script(
            "crc.tsn", read + "NEW_CRC @C FROM_BUFFER @B -setType=Crc32_Vector_AUTOSAR\nPRINT_CRC @C\n")],
        "srec_cat": ["srec_cat", source, "-binary", "-crc32-l-e", hex(64 * MIB), "-crop",
                     hex(64 * MIB), hex(64 * MIB + 4), "-o", bench.path("crc"), "-intel"],
    }
    digest = {
        "CmdTessaron": [bench.program, "inFile=" + source, bench.script(
            "sha.tsn", read + "NEW_HASH @H FROM_BUFFER @B -setType=Hash_Sha2_256\nPRINT_HASH @H\n")],
        "openssl": ["openssl", "dgst", "-sha256", source],
        "sha256sum": ["sha256sum", source],
    }
    peers = ["srec_cat", "openssl", "sha256sum"]
    table_head("Checksums of a raw image", peers)
    row("CRC-32", "64", bench.compare(crc, 5), peers)
    row("SHA-256", "64", bench.compare(digest, 5), peers)


def statements(bench):
    text = "NEW_BUFFER @B FROM_VALUES {1, 2, 3, 4} -changeStartAddressTo=0x1000\n"
    for number in range(333):
        text += "NEW_CRC @C%d FROM_BUFFER @B -useAreas={{0x1000, %d}}\n" % (number, number % 4 + 1)
        text += "FILL_BUFFER @B WITH_CRC @C%d -useAreas={{0x1000, 4}}\n" % number
        text += "PRINT_TEXT {number %d is [2 * %d]}\n" % (number, number)
    command = {"CmdTessaron": [bench.program, bench.script("small.tsn", text)]}
    table_head("A script of 1,000 small statements", [])
    row("statements", "0", bench.compare(command, 21), [])


def in_sequence(command, count):
    """Runs a command `count` times, one after the other."""
    loop = 'count=$1; shift; while [ $count -gt 0 ]; do "$@" >/dev/null; count=$((count - 1)); done'
    return ["sh", "-c", loop, "sh", str(count)] + command


def runs(bench):
    """The cost of a run besides its work."""
    empty = bench.script("empty.tsn", "")
    small = bench.script("small-run.tsn", "NEW_BUFFER @B FROM_VALUES {1, 2, 3, 4} "
                         "-changeStartAddressTo=0x1000\nPRINT_BUFFER @B\n")
    strict = str(pathlib.Path(bench.program).with_name("tessaron"))
    print("\n### The cost of a run\n\n| item | CmdTessaron | tessaron run | /bin/true |")
    print("| --- | ---: | ---: | ---: |")
    for name, script, count, rounds in (("empty script", empty, 1, 101),
                                        ("10,000 runs of a small script", small, 10000, 1)):
        commands = {"CmdTessaron": [bench.program, script], "strict": [strict, "run", script],
                    "true": ["/bin/true"]}
        result = bench.compare({key: in_sequence(command, count) if count > 1 else command
                                for key, command in commands.items()}, rounds)
        print("| %s | %s |" % (name, " | ".join(map(cell, result.values()))), flush=True)


def inspection(bench, size):
    """What shows a file, beside reading it: map and info of one file, diff of two equal ones, and a
    conversion with its manifest beside one without."""
    inputs = make_inputs(bench, size)
    strict = str(pathlib.Path(bench.program).with_name("tessaron"))
    source, out = inputs["hex"], bench.path("out.hex")
    other = shutil.copy(source, bench.path("other.hex"))
    read = bench.script("read.tsn", "NEW_BUFFER @B FROM_FILE {%s}\n" % source)
    both = bench.script("both.tsn", "NEW_BUFFER @A FROM_FILE {%s}\nNEW_BUFFER @B FROM_FILE {%s}\n"
                        % (source, other))
    convert = bench.script("manifest.tsn", "NEW_BUFFER @B FROM_FILE {%s}\nWRITE_FILE {%s} "
                           "WITH_BUFFERS { @B }\n" % (source, out))
    manifest = ["--manifest", bench.path("manifest.json")]
    pairs = (("map", ["map", source], ["run", read]), ("info", ["info", source], ["run", read]),
             ("diff", ["diff", source, other], ["run", both]),
             ("run --manifest", ["run", convert] + manifest, ["run", convert]))
    print("\n### Looking at files\n\n| item | MiB | tessaron | the same without it | times, in "
          "processor and wall time |")
    print("| --- | ---: | ---: | ---: | ---: |")
    for name, with_it, without in pairs:
        result = bench.compare({"with": [strict] + with_it, "without": [strict] + without}, 11)
        cells = [cell(result["with"]), cell(result["without"])]
        times = ["%.2f" % (result["with"][i] / result["without"][i]) for i in (0, 1)]
        print("| %s | %d | %s | %s |" % (name, size, " | ".join(cells), ", ".join(times)), flush=True)


def machine():
    model = [line.split(":")[1].strip() for line in open("/proc/cpuinfo") if "model name" in line]
    version = lambda command: subprocess.run(command, capture_output=True, text=True).stdout.splitlines()[0]
    print("%s, %d cores; %s; %s." % (model[0], len(model), version(["srec_cat", "--version"]),
                                    version(["objcopy", "--version"])))
    print("\nMedians of: processor time in s (user and system) / wall time in s / peak memory in MiB.")


def main():
    program, tools, largest = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2]), int(sys.argv[3])
    with tempfile.TemporaryDirectory(prefix="tessaron-compare-", dir="build") as folder:
        bench = Bench(program.resolve(), tools.resolve(), pathlib.Path(folder).resolve())
        machine()
        main_job(bench)
        conversions(bench, largest)
        checksums(bench)
        statements(bench)
        runs(bench)
        inspection(bench, 16)


if __name__ == "__main__":
    main()
