#!/usr/bin/env python3
"""Looks at a report in a browser:  report.py tessaron [FOLDER for pictures]

What the page has to say follows from the text of the input files.
"""
import json
import pathlib
import random
import shutil
import subprocess
import sys
import tempfile
import zlib

PROGRAM = pathlib.Path(sys.argv[1]).resolve()
PICTURES = pathlib.Path(sys.argv[2]).resolve() if len(sys.argv) > 2 else None
START = 0x08000000
SCRIPT = """// A release: <b>application</b> & boot loader.
SUBSTITUTE FLASH WITH {0x08000000, 0x00010000}
NEW_BUFFER @Boot FROM_FILE boot.s19
NEW_BUFFER @App FROM_FILE app.hex -useBufferRange=FLASH
FILL_BUFFER @App WITH_FILLER { 0xA5, 0x5A, 0xFF }
NEW_CRC @Crc FROM_BUFFER @App -useAreas={{0x08000000, 0xFFFC}} -setType=Crc32_Vector_AUTOSAR
FILL_BUFFER @App WITH_CRC @Crc -useAreas={{0x0800FFFC, 4}}
FILL_BUFFER @App WITH_VALUES { 0x11, 0x22 } -useAreas={{0x08008000, 2}}
WRITE_FILE release.hex WITH_BUFFERS {@App}
"""


def records(path):
    """Address, line number and bytes of each data record."""
    base = 0
    for number, line in enumerate(pathlib.Path(path).read_text().split(), 1):
        if line[0] == ":":
            data = bytes.fromhex(line[1:])
            if data[3] == 4:
                base = int.from_bytes(data[4:6], "big") << 16
            if data[3] == 0:
                yield base + int.from_bytes(data[1:3], "big"), number, data[4:-1]
        elif line[1] in "123":
            data, size = bytes.fromhex(line[2:]), int(line[1]) + 1
            yield int.from_bytes(data[1:1 + size], "big"), number, data[1 + size:-1]


def expectations():
    """[image, address] and what must be said of it."""
    for image, path, statement in ((1, "app.hex", 4), (0, "boot.s19", 3)):
        every = list(records(path))
        for start, line, data in (every[0], every[len(every) // 3], every[len(every) // 2], every[-1]):
            at = len(data) - 1
            yield [image, start + at], "0x%08X: %02X, data of %s line %d, read by line %d: NEW_" % (
                start + at, data[at], path, line, statement)
    filler = bytes([0xA5, 0x5A, 0xFF])
    for address in (START + 0x9000, START + 0x9001):
        yield [1, address], "0x%08X: %02X, filler of line 5: FILL_BUFFER @App WITH_FILLER" % (
            address, filler[(address - START) % 3])
    yield [1, START + 0x8001], "0x08008001: 22, value of line 8: FILL_BUFFER @App WITH_VALUES"
    image = bytearray((filler * 0x6000)[:0x10000])
    image[:30001] = pathlib.Path("app.bin").read_bytes()
    yield [1, START + 0xFFFF], "0x0800FFFF: %02X, value of line 7: FILL_BUFFER @App WITH_CRC" % (
        zlib.crc32(image[:0xFFFC]) >> 24)
    yield [0, 0x150], "0x00000150: 00, nothing written"


def make_inputs():
    source = random.Random(2)
    for name, start, size in (("app", START, 30001), ("boot1", 0x100, 70), ("boot2", 0x200, 99)):
        pathlib.Path(name + ".bin").write_bytes(source.randbytes(size))
    subprocess.run(["srec_cat", "app.bin", "-binary", "-offset", hex(START), "-o", "app.hex",
                    "-intel"], check=True)
    subprocess.run(["srec_cat", "boot1.bin", "-binary", "-offset", "0x100", "boot2.bin", "-binary",
                    "-offset", "0x200", "-execution-start-address=0x100", "-o", "boot.s19",
                    "-motorola"], check=True)
    pathlib.Path("release.tsn").write_text(SCRIPT)


def visit(modules, folder, questions):
    chromium = shutil.which("chromium")
    done = subprocess.run(["node", pathlib.Path(__file__).with_name("visit.js"), chromium,
                           pathlib.Path("report.html").resolve(), json.dumps(questions), folder],
                          cwd=modules, capture_output=True, text=True, timeout=300, check=False)
    assert done.returncode == 0, done.stderr
    return json.loads(done.stdout)


def main():
    modules = pathlib.Path.cwd()
    with tempfile.TemporaryDirectory() as folder:
        import os
        os.chdir(folder)
        make_inputs()
        subprocess.run([PROGRAM, "run", "release.tsn", "--report", "report.html",
                        "--ignore=digest-stale"], check=True)
        wanted = list(expectations())
        data = pathlib.Path("app.bin").read_bytes()
        keyed = ["0x%08X: %02X, data of app.hex line 2, read by line 4: " % (START + at, data[at])
                 for at in (0, 2)] + [text for (image, at), text in wanted
                                      if (image, at) == (1, START + 0xFFFF)]
        seen = visit(modules, PICTURES or folder, [question for question, _ in wanted])
        os.chdir(modules)
    faults = []
    for (question, text), answer in zip(wanted, seen["answers"], strict=True):
        for way, got in answer.items():
            # A byte of nothing may be left out of the page.
            if text not in got and text.replace(": 00,", ":") not in got:
                faults.append("%s %s: %s, not %s" % (question, way, got, text))
    faults += ["console: " + text for text in seen["errors"]]
    faults += ["request: " + url for url in seen["requests"] if not url.startswith(("file:", "data:"))]
    faults += ["%s: %s" % (name, text) for name, found in seen["violations"].items()
               for text in found]
    faults += ["%s: the page is %d pixels too wide" % entry for entry in seen["widths"].items()
               if entry[1] > 0]
    faults += ["by keyboard: %s, not %s" % (got, text)
               for text, answer in zip(keyed, seen["keyed"], strict=True)
               for got in answer if not got.startswith(text)]
    faults += ["%s: a line of the script begins below its number" % name
               for name, is_beside in seen["beside"].items() if not is_beside]
    faults += ["%s: paper is %s" % entry for entry in seen["paper"].items()
               if entry[1] != "rgb(255, 255, 255)"]
    if seen["drawn"] != ["k3", "k3"]:
        faults.append("short values are drawn as %s" % seen["drawn"])
    if seen["step"] != 1:
        faults.append("an arrow key moved by %d" % seen["step"])
    if seen["pages"] < 5000:
        faults.append("nothing was printed")
    print("\n".join(faults))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
