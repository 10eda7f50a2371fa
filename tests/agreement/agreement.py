#!/usr/bin/env python3
"""Runs scripts through both programs: where CmdTessaron reports nothing, tessaron must write the
same files, print the same and exit with 0, once each policy is set to ignore.

The scripts are the cases of tests/scripts and random ones.

    agreement.py CmdTessaron tessaron list_kinds [--count N] [--seed S]
"""
import argparse
import pathlib
import random
import re
import shutil
import subprocess
import sys
import tempfile

CASES = pathlib.Path(__file__).resolve().parents[1] / "scripts"
CRCS = ["Crc8_Standard", "Crc16_Standard", "Crc16_Ccitt", "Crc32_Standard", "Crc32_Ethernet_Mpeg2",
        "Crc32_Vector_AUTOSAR", "InterpretAsLittleEndian", "InterpretAsBigEndian"]
HASHES = ["Hash_Md5", "Hash_Ripemd_160", "Hash_Sha1", "Hash_Sha2_256", "Hash_Sha3_512"]
FORMATS = ["RawBinary", "IntelHexExtended_16", "IntelHexExtended_64", "IntelHexSegment_8",
           "EmbeddedC_Assembler", "MotorolaS_32", "MotorolaS_7"]

# The second in which an assembler file was written, which tessaron leaves out.
STAMP = re.compile(rb"// Generated: [-0-9: ]+\r?\n")


def hex_record(kind, address, data):
    record = bytes([len(data), address >> 8, address & 0xFF, kind]) + data
    return ":%s%02X\n" % (record.hex().upper(), -sum(record) & 0xFF)


def s_record(address, data):
    record = bytes([len(data) + 5]) + address.to_bytes(4, "big") + data
    return "S3%s%02X\n" % (record.hex().upper(), ~sum(record) & 0xFF)


class RandomScript:
    """A script with its inputs. Most of its numbers fit; some do not."""

    def __init__(self, seed):
        self.random = random.Random(seed)
        self.base = self.random.choice([0, 0x100, 0xFFF0, 0x10000, 0x8000000, 0xFFFFFF00])
        self.files, self.ranges = {}, {}  # first address and the one after the last
        for name in ("a.hex", "b.s19", "c.bin"):
            self.add_input(name)
        self.images, self.crcs, self.hashes, self.outputs = {}, [], [], 0
        self.lines = [self.new_buffer()]
        for _ in range(self.random.randrange(3, 14)):
            self.lines.append(self.random.choice([
                self.new_buffer, self.fill, self.fill, self.new_crc, self.new_hash, self.print_it,
                self.write_file, self.write_file])())
        self.lines.append(self.write_file())

    def add_input(self, name):
        blocks = [(self.base + 16 * self.random.randrange(8),
                   self.random.randbytes(self.random.randrange(1, 17)))
                  for _ in range(self.random.randrange(1, 6))]
        self.ranges[name] = (min(address for address, _ in blocks),
                             max(address + len(data) for address, data in blocks))
        if name == "c.bin":
            self.files[name] = blocks[0][1]
            self.ranges[name] = (0, len(blocks[0][1]))
            return
        text = ""
        for address, data in blocks:
            if name == "a.hex":
                text += hex_record(4, 0, (address >> 16).to_bytes(2, "big"))
                text += hex_record(0, address & 0xFFFF, data)
            else:
                text += s_record(address, data)
        end = ":00000001FF\n" if name == "a.hex" else "S70500000000FA\n"
        self.files[name] = (text + end).encode()

    def area(self, image):
        start, end = self.images[image]
        if self.random.random() < 0.03:
            end += 5
        first = self.random.randrange(start, end)
        return "{0x%X, %d}" % (first, self.random.randrange(1, end - first + 1))

    def areas(self, image):
        count = self.random.randrange(1, 3)
        return " -useAreas={%s}" % ", ".join(self.area(image) for _ in range(count))

    def some_areas(self, image):
        return self.areas(image) if self.random.random() < 0.6 else ""

    def values(self, count=0):
        count = count or self.random.randrange(1, 9)
        return "{%s}" % ", ".join(str(self.random.randrange(256)) for _ in range(count))

    def image(self):
        return self.random.choice(list(self.images))

    def new_buffer(self):
        name = "@i%d" % len(self.images)
        count = self.random.randrange(1, 20)
        sources = [("FROM_FILE a.hex", self.ranges["a.hex"]),
                   ("FROM_FILE b.s19", self.ranges["b.s19"]),
                   ("FROM_FILE_BINARY c.bin", self.ranges["c.bin"]),
                   ("FROM_VALUES " + self.values(count), (0, count)),
                   ("EMPTY -useBufferRange={0x%X, 100}" % self.base, (self.base, self.base + 100))]
        if self.images:
            pair = self.random.choices(list(self.images), k=2)
            starts, ends = zip(*(self.images[one] for one in pair))
            sources.append(("FROM_BUFFERS {%s}" % ", ".join(pair), (min(starts), max(ends))))
        source, (start, end) = self.random.choice(sources)
        # What begins at 0 is moved, since a gap between two images takes room in an output.
        is_near = source.startswith(("FROM_FILE ", "EMPTY", "FROM_BUFFERS"))
        is_moved = not is_near or self.random.random() < 0.3
        self.images[name] = (self.base, self.base + end - start) if is_moved else (start, end)
        move = " -changeStartAddressTo=0x%X" % self.base if is_moved else ""
        return "NEW_BUFFER %s %s%s" % (name, source, move)

    def fill(self):
        image = self.image()
        what = ["WITH_FILLER %s%s" % (self.values(), self.some_areas(image)),
                "WITH_VALUES %s%s" % (self.values(), self.areas(image))]
        what += ["WITH_CRC %s%s" % (crc, self.areas(image)) for crc in self.crcs[-1:]]
        what += ["WITH_HASH %s%s" % (one, self.areas(image)) for one in self.hashes[-1:]]
        return "FILL_BUFFER %s %s" % (image, self.random.choice(what))

    def new_crc(self):
        self.crcs.append("C%d" % len(self.crcs))
        image = self.image()
        return "NEW_CRC %s FROM_BUFFER %s%s -setType=%s" % (
            self.crcs[-1], image, self.some_areas(image), self.random.choice(CRCS))

    def new_hash(self):
        self.hashes.append("H%d" % len(self.hashes))
        image = self.image()
        return "NEW_HASH %s FROM_BUFFER %s%s -setType=%s" % (
            self.hashes[-1], image, self.some_areas(image), self.random.choice(HASHES))

    def print_it(self):
        return self.random.choice(
            ["PRINT_BUFFER " + self.image(), "PRINT_TEXT {some 12 text}"]
            + ["PRINT_CRC " + crc for crc in self.crcs]
            + ["PRINT_HASH " + one for one in self.hashes])

    def write_file(self):
        self.outputs += 1
        images = self.random.sample(list(self.images), self.random.randrange(1, len(self.images) + 1))
        return "WRITE_FILE out%d WITH_BUFFERS {%s} -setFormat=%s" % (
            self.outputs, ", ".join(images), self.random.choice(FORMATS))

    def prepare(self, folder):
        for name, contents in self.files.items():
            (folder / name).write_bytes(contents)
        (folder / "script.tsn").write_text("".join(line + "\n" for line in self.lines))


def contents(folder):
    return {path.relative_to(folder).as_posix(): STAMP.sub(b"", path.read_bytes())
            for path in sorted(folder.rglob("*")) if path.is_file()}


def printed(output):
    """What CmdTessaron printed without the lines around it, or nothing for another frame."""
    lines = output.split(b"\n")
    framed = len(lines) > 5 and lines[-2].startswith(b"KvTessaron Total Time")
    return b"".join(line + b"\n" for line in lines[3:-3]) if framed else None


def execute(command, folder):
    return subprocess.run(command, cwd=folder, capture_output=True, stdin=subprocess.DEVNULL,
                          timeout=120, check=False)


class Comparison:
    def __init__(self, options):
        kinds = subprocess.run([options.list_kinds], capture_output=True, text=True,
                               check=True).stdout.splitlines()
        self.ignored = ["--ignore=" + kind.split()[0] for kind in kinds if "\talways " not in kind]
        self.classic, self.strict = options.classic.resolve(), options.strict.resolve()
        self.has_text_mode = options.text_mode
        self.agreed = self.faults = 0

    def are_same(self, classic, strict):
        """Text mode, which tessaron does not use, makes CR LF of each line feed."""
        if self.has_text_mode:
            texts = {name: data.replace(b"\n", b"\r\n") for name, data in strict.items()}
            strict = {name: texts[name] if texts[name] == classic.get(name) else data
                      for name, data in strict.items()}
        return classic == strict

    def compare(self, label, prepare, arguments):
        with tempfile.TemporaryDirectory() as top:
            # Both run in a folder of the same name, since some paths are printed.
            folders = [pathlib.Path(top, name, "work") for name in ("classic", "strict")]
            for folder in folders:
                folder.mkdir(parents=True)
                prepare(folder)
            one = execute([self.classic, *arguments], folders[0])
            two = execute([self.strict, "run", "--keep-going", *self.ignored,
                           *sorted(arguments, key=lambda text: "=" in text)], folders[1])
            # Without its reports CmdTessaron prints what tessaron does.
            if one.returncode or one.stderr or printed(one.stdout) != two.stdout:
                return
            same = self.are_same(contents(folders[0]), contents(folders[1]))
            self.agreed += 1
            if two.returncode or two.stderr or not same:
                self.faults += 1
                print("%s: exit code %d, %s files\n%s" % (
                    label, two.returncode, "the same" if same else "other", two.stderr.decode()))
                print((folders[1] / "script.tsn").read_text(errors="replace"))


def main():
    parser = argparse.ArgumentParser()
    for name in ("classic", "strict", "list_kinds"):
        parser.add_argument(name, type=pathlib.Path)
    parser.add_argument("--count", type=int, default=300)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--text-mode", action="store_true",
                        help="CmdTessaron writes texts in the text mode of Windows")
    options = parser.parse_args()
    comparison = Comparison(options)
    for case in sorted(CASES.iterdir()):
        file = case / "arguments"
        arguments = file.read_text().splitlines() if file.exists() else ["script.tsn"]
        # Those that need much memory or odd files have something to report.
        is_plain = not any((case / name).exists() for name in ("prepare.sh", "memory-limit"))
        if case.is_dir() and "script.tsn" in arguments and is_plain:
            comparison.compare(case.name, lambda folder, case=case: shutil.copytree(
                case, folder, dirs_exist_ok=True), arguments)
    of_cases = comparison.agreed
    for seed in range(options.seed, options.seed + options.count):
        comparison.compare("seed %d" % seed, RandomScript(seed).prepare, ["script.tsn"])
    of_random = comparison.agreed - of_cases
    print("%d cases and %d random scripts agree, %d do not" % (
        of_cases, of_random, comparison.faults))
    # A comparison that finds nothing to compare proves nothing.
    return 1 if comparison.faults or of_random < options.count / 5 or not of_cases else 0


if __name__ == "__main__":
    sys.exit(main())
