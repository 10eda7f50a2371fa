#!/usr/bin/env python3
"""Reads files as they are in the field with tessaron, CmdTessaron, srec_cat and objcopy.

    field_files.py CMDTESSARON TESSARON [odd] [written] [packages]

odd       files that are damaged or odd: prints a table of what each tool does with them
written   what srec_cat and objcopy write in their variants, read by tessaron and srec_cat
packages  the HEX and S-record files of some packages of the distribution, likewise

Every tool turns the file into Intel HEX, which is compared with the data that the file should give.
"""
import pathlib
import random
import subprocess
import sys
import tempfile

ENDINGS = (".hex", ".ihex", ".ihx", ".mot", ".s19", ".s28", ".s37", ".srec", ".sre")
PACKAGES = ("arduino-core-avr", "firmware-microbit-micropython", "sigrok-firmware-fx2lafw",
            "dfu-programmer", "avrdude", "simavr", "openocd")


def hexa(*values, bad=0):
    record = bytes(values)
    return b":%s%02X\n" % (record.hex().upper().encode(), (-sum(record) + bad) & 255)


def srec(kind, *values, bad=0):
    record = bytes([len(values) + 1, *values])
    digits = kind + record.hex().upper()
    return b"S%s%02X\n" % (digits.encode(), (~sum(record) + bad) & 255)


END = hexa(0, 0, 0, 1)
ONE = hexa(4, 0x10, 0, 0, 1, 2, 3, 4)
TWO = hexa(4, 0x10, 4, 0, 5, 6, 7, 8)
S_ONE = srec("1", 0x10, 0, 1, 2, 3, 4)
S_TWO = srec("1", 0x10, 4, 5, 6, 7, 8)
S_END = srec("9", 0, 0)
DATA = {0x1000 + i: i + 1 for i in range(8)}
HALF = {0x1000 + i: i + 1 for i in range(4)}


def odd_files():
    """What a file is, its contents, and the data it gives; no data if no tool should use it."""
    return [
        ("HEX, sound", ONE + TWO + END, DATA),
        ("HEX, CR LF", (ONE + TWO + END).replace(b"\n", b"\r\n"), DATA),
        ("HEX, CR alone", (ONE + TWO + END).replace(b"\n", b"\r"), DATA),
        ("HEX, CR CR LF", (ONE + TWO + END).replace(b"\n", b"\r\r\n"), DATA),
        ("HEX, no line end at the end", (ONE + TWO + END).rstrip(), DATA),
        ("HEX, blank line after the end", ONE + TWO + END + b"\n", DATA),
        ("HEX, blank line between", ONE + b"\n" + TWO + END, DATA),
        ("HEX, blanks at line ends", (ONE + TWO + END).replace(b"\n", b" \t\n"), DATA),
        ("HEX, lower case", (ONE + hexa(2, 0, 0, 4, 0, 0) + TWO + END).lower(), DATA),
        ("HEX, UTF-8 mark", b"\xef\xbb\xbf" + ONE + TWO + END, DATA),
        ("HEX, remark # in front", b"# firmware 1.2\n" + ONE + TWO + END, DATA),
        ("HEX, remark // between", ONE + b"// second part\n" + TWO + END, DATA),
        ("HEX, remark ; after the end", ONE + TWO + END + b"; CRC 1234\n", DATA),
        ("HEX, 0x1A at the end", ONE + TWO + END + b"\x1a", DATA),
        ("HEX, zero bytes at the end", ONE + TWO + END + bytes(64), DATA),
        ("HEX, zero bytes in the middle", ONE + bytes(64) + b"\n" + TWO + END, None),
        ("HEX, wrong checksum", ONE + hexa(4, 0x10, 4, 0, 5, 6, 7, 8, bad=1) + END, None),
        ("HEX, a digit changed to O", ONE + TWO.replace(b"05", b"O5") + END, None),
        ("HEX, digits missing", ONE + TWO[:-5] + b"\n" + END, None),
        ("HEX, digits too many", ONE + TWO[:-1] + b"00\n" + END, None),
        ("HEX, colon missing", ONE + TWO[1:] + END, None),
        ("HEX, cut at a line end", ONE + TWO, None),
        ("HEX, cut within a line", ONE + TWO[:9], None),
        ("HEX, type 06", ONE + TWO + hexa(1, 0, 0, 6, 0) + END, None),
        ("HEX, type 04 with an address", hexa(2, 0, 1, 4, 0, 0) + ONE + TWO + END, None),
        ("HEX, type 04 of one byte", hexa(1, 0, 0, 4, 0) + ONE + TWO + END, None),
        ("HEX, data after the end", ONE + END + TWO + END, None),
        ("HEX, start address after the end", ONE + TWO + END + hexa(4, 0, 0, 5, 0, 0, 16, 0), DATA),
        ("HEX, end record with an address", ONE + TWO + hexa(0, 0x10, 0, 1), DATA),
        ("HEX, same byte twice", ONE + ONE + TWO + END, DATA),
        ("HEX, other byte twice", ONE + hexa(1, 0x10, 0, 0, 9) + TWO + END, None),
        ("HEX, end record alone", END, None),
        ("HEX, S-record within", ONE + S_TWO + END, None),
        ("empty file", b"", None),
        ("digits alone", b"0102030405\n", None),
        ("S, sound", srec("0", 0, 0, 65) + S_ONE + S_TWO + S_END, DATA),
        ("S, no S0", S_ONE + S_TWO + S_END, DATA),
        ("S, S0 without text", srec("0", 0, 0) + S_ONE + S_TWO + S_END, DATA),
        ("S, S5 before the end", S_ONE + S_TWO + srec("5", 0, 2) + S_END, DATA),
        ("S, S6 before the end", S_ONE + S_TWO + srec("6", 0, 0, 2) + S_END, DATA),
        ("S, S5 of a lost record", S_ONE + srec("5", 0, 2) + S_END, None),
        ("S, CR LF", (S_ONE + S_TWO + S_END).replace(b"\n", b"\r\n"), DATA),
        ("S, blank line after the end", S_ONE + S_TWO + S_END + b"\n", DATA),
        ("S, remark # in front", b"# firmware 1.2\n" + S_ONE + S_TWO + S_END, DATA),
        ("S, no end", S_ONE + S_TWO, None),
        ("S, data after the end", S_ONE + S_END + S_TWO, None),
        ("S, wrong checksum", S_ONE + srec("1", 0x10, 4, 5, 6, 7, 8, bad=1) + S_END, None),
        ("S, lower-case s", S_ONE + b"s" + S_TWO[1:] + S_END, None),
        ("S, S4", S_ONE + S_TWO + srec("4", 0, 0) + S_END, None),
        ("S, count too small", S_ONE + S_TWO + b"S102FFFE\n" + S_END, None),
        ("S, cut within a line", S_ONE + S_TWO[:9], None),
        ("S, line without S", S_ONE + S_TWO[1:] + S_END, None),
    ]


def data_of(text):
    """The data of Intel HEX that one of the tools wrote."""
    data, base = {}, 0
    for line in text.split():
        record = bytes.fromhex(line.lstrip(":"))
        address, kind, payload = record[1] << 8 | record[2], record[3], record[4:-1]
        if kind == 0:
            data.update((base + address + i, byte) for i, byte in enumerate(payload))
        elif kind in (2, 4):
            base = int.from_bytes(payload, "big") << (4 if kind == 2 else 16)
    return data


def run(command, folder, output):
    output.unlink(missing_ok=True)
    done = subprocess.run(command, cwd=folder, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          check=False)
    data = data_of(output.read_text()) if output.exists() else {}
    return done.returncode, done.stdout.decode("latin1"), data


class Tools:
    def __init__(self, folder, classic, strict):
        self.folder = pathlib.Path(folder)
        self.output = self.folder / "out.hex"
        self.classic, self.strict = (pathlib.Path(path).resolve() for path in (classic, strict))

    def script(self, name, rest=""):
        (self.folder / "script.tsn").write_text(
            "NEW_BUFFER @a FROM_FILE {%s}%s\nWRITE_FILE out.hex WITH_BUFFERS {@a}\n" % (name, rest))

    def all(self, name, is_hex):
        self.script(name)
        srec_format, bfd = ("-Intel", "ihex") if is_hex else ("-Motorola", "srec")
        return {
            "srec_cat": run(["srec_cat", name, srec_format, "-Output", "out.hex", "-Intel"],
                            self.folder, self.output),
            "objcopy": run(["objcopy", "-I", bfd, "-O", "ihex", name, "out.hex"],
                           self.folder, self.output),
            "CmdTessaron": run([self.classic, "script.tsn"], self.folder, self.output),
            "tessaron": run([self.strict, "run", "script.tsn"], self.folder, self.output)}


def outcome(tool, result, wanted):
    """What became of the file, in a word or two."""
    code, text, data = result
    # A gap of an image is written as zeros.
    written = {a: b for a, b in data.items() if b != 0 or a in (wanted or {})}
    if code != 0 or not data:
        is_refused = code != 0 or "rror" in text or "did not match" in text
        return "refused" if is_refused else "no data, silent"
    if wanted is not None and written == wanted:
        return "read"
    said = "warning" in text.lower() or "error" in text.lower() or "contradict" in text
    if wanted is None and written == DATA:
        return "read, warned" if said else "read"
    return "other data, warned" if said else "other data, silent"


def odd(tools):
    names = ("srec_cat", "objcopy", "CmdTessaron", "tessaron")
    print("| file | " + " | ".join(names) + " |\n| --- |" + " --- |" * len(names))
    faults = 0
    for what, contents, wanted in odd_files():
        name = "input.s19" if what.startswith("S,") else "input.hex"
        (tools.folder / name).write_bytes(contents)
        results = tools.all(name, name == "input.hex")
        found = {name: outcome(name, results[name], wanted) for name in names}
        print("| %s | %s |" % (what, " | ".join(found[name] for name in names)))
        faults += found["tessaron"] != ("read" if wanted else "refused")
    print("%d files, %d not as they should be with tessaron" % (len(odd_files()), faults))
    return faults


def compare(tools, files):
    """Reads each file with tessaron and with srec_cat. The number of differences."""
    counts = {}
    faults = 0
    for shown, path in files:
        text = path.read_bytes()
        first = next((line for line in text.splitlines() if line[:1] in (b":", b"S")), b":")
        (tools.folder / "input").write_bytes(text)
        srec_format = "-Intel" if first.startswith(b":") else "-Motorola"
        code, _, wanted = run(["srec_cat", "input", srec_format, "-Output", "out.hex", "-Intel"],
                              tools.folder, tools.output)
        # Far apart parts make an image that FROM_FILE refuses, so only the first part is compared.
        low = min(wanted, default=0)
        wanted = {a: b for a, b in wanted.items() if a < low + (1 << 24)}
        tools.script("input", " -useBufferRange={%d, %d}" % (low, max(wanted, default=0) + 1 - low))
        strict, said, data = run([tools.strict, "run", "script.tsn"], tools.folder, tools.output)
        data = {a: data[a] for a in wanted if a in data}
        state = ("both refuse" if code and strict else "srec_cat alone refuses" if code
                 else "tessaron alone refuses" if strict else "same" if data == wanted
                 else "differs")
        counts[state] = counts.get(state, 0) + 1
        faults += state == "differs"
        if state != "same":
            error = next((line for line in said.split("\n") if ": error: " in line), "")
            print("%s: %s: %s" % (shown, state, error))
    print(", ".join("%s: %d" % item for item in sorted(counts.items())) or "no files")
    return faults


def variants(source, offset):
    """File names and the commands that write them."""
    load = ["srec_cat", source, "-Binary", "-offset", str(offset), "-Output", "OUT"]
    for size in (16, 32, 250):
        yield "%d.hex" % size, load + ["-Intel", "-Output_Block_Size=%d" % size]
    for length in (2, 3, 4):
        yield "i%d.hex" % length, load + ["-Intel", "-address-length=%d" % length]
        yield "s%d.srec" % length, load + ["-Motorola", "-address-length=%d" % length]
    for options in (["-disable=header"], ["-disable=data-count"], ["-disable=footer"],
                    ["-Line_Termination=CRLF"], ["-execution-start-address", "4660"]):
        for kind, ending in (("-Intel", "hex"), ("-Motorola", "srec")):
            yield "%s.%s" % (options[0], ending), load + [kind] + options
    for kind, *options in (["ihex"], ["srec"], ["srec", "--srec-len=4"], ["srec", "--srec-len=40"],
                           ["srec", "--srec-forceS3"], ["symbolsrec"]):
        ending = "hex" if kind == "ihex" else "srec"
        yield "objcopy-%s%s.%s" % (kind, "".join(options), ending), [
            "objcopy", "-I", "binary", "--change-addresses", str(offset), "-O", kind, *options,
            source, "OUT"]


def written(tools):
    folder = tools.folder / "written"
    folder.mkdir()
    source = folder / "data.bin"
    source.write_bytes(random.Random(1).randbytes(3000))
    commands = {"%x-%s" % (offset, name): command
                for offset in (0, 0xFFF0, 0xFFFF0, 0x1000000, 0xF0000000)
                for name, command in variants(source, offset)}
    files = []
    for name, command in commands.items():
        path = folder / name
        done = subprocess.run([path if word == "OUT" else word for word in command], check=False,
                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        if done.returncode == 0 and path.exists():
            files.append((name, path))
    print("%d of %d variants were written" % (len(files), len(commands)))
    return compare(tools, files)


def packages(tools):
    folder = tools.folder / "packages"
    for package in PACKAGES:
        place = folder / package
        place.mkdir(parents=True)
        subprocess.run(["apt-get", "download", package], cwd=place, check=False,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        for archive in place.glob("*.deb"):
            subprocess.run(["dpkg-deb", "-x", archive, place], check=True)
    files = [(str(path.relative_to(folder)), path) for path in sorted(folder.rglob("*"))
             if path.is_file() and path.suffix.lower() in ENDINGS]
    print("%d files of %d packages" % (len(files), len({name.split("/")[0] for name, _ in files})))
    return compare(tools, files)


def main():
    classic, strict, *parts = sys.argv[1:]
    work = {"odd": odd, "written": written, "packages": packages}
    faults = 0
    for part in parts or work:
        with tempfile.TemporaryDirectory() as folder:
            faults += work[part](Tools(folder, classic, strict))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
