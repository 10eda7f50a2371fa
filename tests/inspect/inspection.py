#!/usr/bin/env python3
"""Tests info, diff, map and convert:  inspection.py tessaron

The images are made of known bytes, the files by srecord; checksums come from Python's library.
"""
import hashlib
import html.parser
import json
import os
import pathlib
import random
import re
import shutil
import struct
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree
import zlib

PROGRAM = pathlib.Path(sys.argv.pop(1)).resolve()
# A program for Windows knows no /dev/stdin and no /dev/fd.
IS_WINDOWS = sys.argv[1:] == ["--windows"]
del sys.argv[1:]
DATA = pathlib.Path(__file__).resolve().parents[1] / "data"
FLASH, FAR = 0x08000000, 0x1FFF7800


LINKER_MAP = """Archive member included to satisfy reference by file (symbol)

Discarded input sections

 .text          0x00000000        0x4 lib/b.o

Linker script and memory map

LOAD lib/a.o

.text           0x08000000       0x34
 *(.text*)
                0x08000000                . = ALIGN (0x4)
                0x20005000                stackTop = 0x20005000
 .text          0x08000000        0x0 lib/a.o
 .text.f        0x08000000       0x22 lib/a.o
 *fill*         0x08000022        0x2
 .text.startup.main
                0x08000024        0xc lib/a.o
                                 0x10 (size before relaxing)
                0x08000024                main
 .text.unlikely._ZN2ns1gEi
                0x08000030        0x4 lib/a.o
                0x08000030                ns::g(int)

.data           0x20000000       0x10 load address 0x08000034
 *(.data*)
 .data          0x20000000       0x10 lib/a.o
                0x20000004                text

.bss            0x20000010       0x64 load address 0x08000044
 .bss           0x20000010       0x64 lib/a.o
                0x20000010                zero
OUTPUT(a.elf elf32-littlearm)

.debug_info     0x00000000     0x8000
 .debug_info    0x00000000     0x8000 lib/a.o
"""


def tessaron(*arguments, code=0, standard_input=None):
    done = subprocess.run([PROGRAM, *arguments], capture_output=True, text=True, check=False,
                          input=standard_input)
    assert done.returncode == code, (arguments, done.returncode, done.stdout, done.stderr)
    return done.stdout


def complaint(*arguments):
    """What is said of arguments that fail, or of a run that only warns, without the pages about it."""
    done = subprocess.run([PROGRAM, *arguments], capture_output=True, text=True, check=False)
    return done.stderr.partition("more: tessaron help")[0]


def srec_cat(*arguments):
    subprocess.run(["srec_cat", *arguments], check=True, stderr=subprocess.DEVNULL)


def write(path, image, *options):
    """Writes an image, a dict of address and bytes, by srecord."""
    arguments = []
    for address, data in image.items():
        name = "%s-%x.bin" % (path, address)
        pathlib.Path(name).write_bytes(data)
        arguments += [name, "-binary", "-offset", hex(address)]
    if "-execution-start-address" not in options:
        options = ("-execution-start-address", "0")
    srec_cat(*arguments, *options, "-o", path, "-intel" if path.endswith("hex") else "-motorola")


def link(name, parts):
    """Assembles and links the parts, each a section, a symbol and its bytes, to an ELF file with its
    map file, and makes a HEX file of it. What is called isr is a label without size, and `register`
    a number that is not the name of what is at that address."""
    lines = [".set register, 0x800001B"]
    for section, symbol, data in parts:
        lines += ['.section .%s, "%s"' % (section, {"text": "ax", "data": "aw"}[section]),
                  ".global " + symbol]
        if symbol != "isr":
            lines += [".type %s, %%%s" % (symbol, {"text": "function", "data": "object"}[section]),
                      ".size %s, %d" % (symbol, len(data))]
        lines += [symbol + ":", ".byte " + ", ".join(str(byte) for byte in data)]
    pathlib.Path("parts.s").write_text("\n".join(lines) + "\n")
    pathlib.Path("parts.ld").write_text(
        "MEMORY { flash : ORIGIN = 0x8000000, LENGTH = 64K  ram : ORIGIN = 0x20000000, LENGTH = 16K }\n"
        "SECTIONS { .text : { *(.text) } >flash  .data : { *(.data) } >ram AT>flash\n"
        "           .bss : { *(.bss) } >ram  /DISCARD/ : { *(*) } }\n")
    for command in (["as", "-o", "parts.o", "parts.s"],
                    ["ld", "-T", "parts.ld", "-Map", name + ".map", "-o", name + ".elf", "parts.o"],
                    ["objcopy", "-O", "ihex", name + ".elf", name + ".hex"]):
        subprocess.run(command, check=True, stderr=subprocess.DEVNULL)


def area(address, length):
    return {"start": "0x%08X" % address, "length": length}


class StrictPage(html.parser.HTMLParser):
    """A page and what is wrong with it: browsers forgive that."""
    EMPTY = {"meta", "link", "br", "hr", "img", "input"}

    def __init__(self, page):
        super().__init__()
        self.cells, self.faults, self.open, self.ids = [], [], [], set()
        self.links = set()
        self.feed(page)
        self.close()
        self.faults += ["not closed: " + tag for tag in self.open]
        self.faults += ["a link that leads nowhere: " + link for link in self.links - self.ids]

    def handle_starttag(self, tag, attributes):
        names = [name for name, _ in attributes]
        if len(names) != len(set(names)):
            self.faults.append("an attribute twice: %s %s" % (tag, names))
        for name, value in attributes:
            if name == "id" and value in self.ids:
                self.faults.append("an id twice: " + value)
            if name == "id":
                self.ids.add(value)
            if name == "href" and value.startswith("#"):
                self.links.add(value[1:])
        if tag not in self.EMPTY:
            self.open.append(tag)

    def handle_startendtag(self, tag, attributes):
        self.handle_starttag(tag, attributes)
        if tag not in self.EMPTY:
            self.open.pop()

    def handle_endtag(self, tag):
        if not self.open or self.open.pop() != tag:
            self.faults.append("line %d closes %s" % (self.getpos()[0], tag))

    def handle_data(self, text):
        self.cells.append(text)

    def handle_comment(self, text):
        self.faults.append("a comment: " + text)


class Inspection(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        source = random.Random(1)
        cls.image = {FLASH: source.randbytes(1000), FLASH + 0x1000: source.randbytes(70000),
                     FAR: source.randbytes(16)}
        write("a.hex", cls.image, "-execution-start-address", hex(FLASH + 0x131))
        write("a.s19", cls.image)
        cls.other = dict(cls.image)
        changed = bytearray(cls.image[FLASH + 0x1000])
        for at in [0, 1, 2, 0x20, 0xFFFF, 0x10000]:
            changed[at] ^= 0xFF
        cls.other[FLASH + 0x1000] = bytes(changed)
        cls.other[FLASH] = cls.image[FLASH][:996]
        cls.other[FAR + 0x1000] = b"new"
        write("b.s19", cls.other)

    def test_info_of_elf_files(self):
        folder = DATA / "elf"
        for name in ("arm", "powerpc64", "avr"):
            info, = json.loads(tessaron("info", "--symbols", "--json", str(folder / (name + ".elf"))))
            symbols = {symbol["name"]: (int(symbol["start"], 16), symbol["kind"])
                       for symbol in info["symbols"]}
            # What nm, from binutils, lists; the source says what the symbols are.
            for line in (folder / (name + ".nm")).read_text().splitlines():
                address, symbol = line.split()
                if symbol != "entry":
                    self.assertEqual(symbols[symbol][0], int(address, 16))
            self.assertEqual((symbols["start"][1], symbols["settings"][1]), ("function", "data"))
            self.assertFalse([symbol for symbol in symbols if symbol.startswith("$")])
            text = tessaron("info", "--symbols", str(folder / (name + ".elf")))
            head, *rows = text[text.index("\n  symbol") + 1:].splitlines()
            ends = [head.index("bytes") + len("bytes"), head.index("kind"), head.index("name")]
            self.assertEqual(
                [(row[2:14].strip(), row[14:ends[0]].strip(), row[ends[1]:ends[2]].strip(),
                  row[ends[2]:]) for row in rows],
                [(s["start"], "{:,}".format(s["length"]), s["kind"], s["name"])
                 for s in sorted(info["symbols"], key=lambda s: int(s["start"], 16))])
            for segment in info["segments"]:
                first, size = int(segment["start"], 16), segment["length"]
                self.assertRegex(text, "\n  segment   %s(?: to 0x%08X)?, %s bytes?\n" % (
                    segment["start"], first + size - 1, "{:,}".format(size)))
        broken = pathlib.Path("broken.elf")
        broken.write_bytes((folder / "arm.elf").read_bytes()[:100])
        tessaron("info", str(broken), code=1)

    def test_files_that_contradict_themselves(self):
        """Addresses that count words, segments that share bytes, and advice by options of the
        command."""
        folder = DATA.parent / "diagnostics/word-addresses"
        shutil.copy(DATA / "elf" / "arm.elf", "shared.elf")
        elf = bytearray(pathlib.Path("shared.elf").read_bytes())
        # The second segment has 21 22 23 24, and now the address of the first one's 11 12 13 14.
        struct.pack_into("<I", elf, 52 + 32 + 12, 0x8020)
        pathlib.Path("shared.elf").write_bytes(elf)
        pathlib.Path("shared.txt").write_text("@10\n01 02\n@11\n03\nq\n")
        words = "--unit-in 2 reads it"
        for name, said in (("shared.elf", "shared.elf has 21 at 0x00008020, written before as 11"),
                           ("shared.txt", "shared.txt has 03 at 0x00000011, written before as 02"),
                           (str(folder / "c28x.elf"), "tessaron convert " + words),
                           (str(folder / "c28x.hex"), "tessaron convert " + words)):
            self.assertIn(said, tessaron("info", name, code=1))
            self.assertIn(said, complaint("map", name))
            self.assertIn(said, complaint("diff", name, "a.hex"))
            tessaron("map", name, code=1)
            tessaron("diff", name, name, code=2)
            said = complaint("convert", name, "no.hex")
            self.assertIn("[conflict]", said)
            self.assertEqual((words in said, "convert --unit" in said), ("c28x" in name, False))
        tessaron("convert", str(folder / "c28x.elf"), "words.hex", "--unit-in", "2")
        pathlib.Path("foreign.hex").write_text("int main() { return 0; }\n")
        said = tessaron("info", "foreign.hex", code=1) + complaint("convert", "foreign.hex", "no.bin")
        self.assertEqual(said.count("--from RawBinary takes a file byte for byte"), 2)
        self.assertNotIn("FROM_FILE_BINARY", said)

    def test_symbols(self):
        """The file of a linker, with names as those of C++, with a static variable, with damage."""
        elf = bytearray((DATA / "elf" / "arm.elf").read_bytes())
        head, = struct.unpack_from("<I", elf, 32)
        size, count = struct.unpack_from("<HH", elf, 46)
        sections = [struct.unpack_from("<10I", elf, head + size * n) for n in range(count)]
        table, = (section for section in sections if section[1] == 2)
        strings = sections[table[6]][4]
        symbols = {}  # the places of their entries
        for entry in range(table[4], table[4] + table[5], 16):
            name = strings + struct.unpack_from("<I", elf, entry)[0]
            symbols[elf[name:elf.index(0, name)].decode()] = entry

        def value(changed, symbol, code=0):
            pathlib.Path("app.elf").write_bytes(changed)
            pathlib.Path("value.tsn").write_text("PRINT_TEXT {VALUE}\n")
            arguments = ("run", "value.tsn", "--symbol=VALUE=app.elf:" + symbol)
            return tessaron(*arguments, code=code).strip() or complaint(*arguments)
        self.assertEqual(value(elf.replace(b"\0settings\0", b"\0ns::item\0"), "ns::item"),
                         "0x00020000")
        # By the ABI of C++ for Itanium: n::s, and f(int).
        plus = elf.replace(b"\0settings\0", b"\0_ZN1n1sE\0").replace(b"\0start\0", b"\0_Z1fi\0")
        for name, address in (("n::s", "0x00020000"), ("_ZN1n1sE", "0x00020000"),
                              ("f(int)", "0x00008020"), ("f", "0x00008020")):
            self.assertEqual(value(plus, name), address)
        self.assertIn("did you mean n::s?", value(plus, "n::t", code=1))
        stripped = bytearray(elf)
        struct.pack_into("<I", stripped, head + size * sections.index(table) + 4, 0)
        self.assertIn("was it stripped?", value(stripped, "settings", code=1))
        # Whatever the name of the file is, and one that does not exist ends at the first colon. No
        # file of Windows has a colon in its name.
        named = [("x:b.elf", 1, "cannot open x: ")]
        if not IS_WINDOWS:
            shutil.copy(DATA / "elf" / "arm.elf", "a:b.elf")
            named.append(("a:b.elf", 0, "0x00020000\n"))
        for path, code, said in named:
            arguments = ("run", "value.tsn", "--symbol=VALUE=" + path + ":settings")
            self.assertIn(said, tessaron(*arguments, code=code) or complaint(*arguments))
        twice = elf.replace(b"\0counters\0", b"\0settings\0")
        self.assertIn("several symbols settings", value(twice, "settings", code=1))
        twice[symbols["counters"] + 12] &= 0x0F  # STB_LOCAL
        self.assertEqual(value(twice, "settings"), "0x00020000")
        struct.pack_into("<I", elf, symbols["start"], 0xFFFFFF)
        pathlib.Path("damaged.elf").write_bytes(elf)
        info, = json.loads(tessaron("info", "--symbols", "--json", "damaged.elf", code=1))
        self.assertEqual([remark["name"] for remark in info["remarks"]], ["wrong-format"])
        self.assertEqual(info["bytes"], 48)
        tessaron("info", "damaged.elf")

    def test_devices_of_uf2(self):
        """The ids of families and their names are of the list of the format's authors. The block
        is the last one of the address space."""
        for family, name in ((0xE48BFF56, "RP2040 (0xE48BFF56)"), (0x12345678, "0x12345678")):
            block = struct.pack("<8I", 0x0A324655, 0x9E5D5157, 0x2000, 0xFFFFFF00, 256, 0, 1,
                                family)
            pathlib.Path("a.uf2").write_bytes(block + bytes(476) + struct.pack("<I", 0x0AB16F30))
            info, = json.loads(tessaron("info", "--json", "a.uf2"))
            self.assertEqual((info["devices"], info["areas"][0]["start"]), ([name], "0xFFFFFF00"))
            self.assertIn("  device    %s\n" % name, tessaron("info", "a.uf2"))

    def test_families_of_uf2(self):
        """Blocks by the published description: those of each family are numbered for themselves, and
        a loader ignores the others. Both families have bytes for one address, or they have not."""
        arm, data, shared = 0xE48BFF59, 0xE48BFF58, FLASH + 0x100

        def uf2(name, *parts):
            text = b""
            for family, starts, byte in parts:
                for number, start in enumerate(starts):
                    head = (0x0A324655, 0x9E5D5157, 0x2000, start, 256, number, len(starts), family)
                    text += struct.pack("<8I", *head) + byte * 256 + bytes(220)
                    text += struct.pack("<I", 0x0AB16F30)
            pathlib.Path(name).write_bytes(text)
        uf2("apart.uf2", (arm, (FLASH, shared), b"A"), (data, (FAR,), b"D"))
        uf2("shared.uf2", (arm, (FLASH, shared), b"A"), (data, (shared,), b"D"))
        info, = json.loads(tessaron("info", "--json", "apart.uf2"))
        names = ["RP2350_ARM_S (0xE48BFF59)", "RP2XXX_DATA (0xE48BFF58)"]
        self.assertEqual(info["devices"], names)
        self.assertEqual([(family["name"], family["blocks"], family["start"], family["length"])
                          for family in info["families"]],
                         [(names[0], 2, "0x08000000", 512), (names[1], 1, "0x1FFF7800", 256)])
        self.assertIn("  device    %s, 2 blocks, 0x08000000 to 0x080001FF\n"
                      "  device    %s, 1 block, 0x1FFF7800 to 0x1FFF78FF\n" % tuple(names),
                      tessaron("info", "apart.uf2"))
        write("all.hex", {FLASH: b"A" * 512, FAR: b"D" * 256})
        tessaron("diff", "apart.uf2", "all.hex")
        for command in (("info", "shared.uf2"), ("convert", "shared.uf2", "o.hex")):
            tessaron(*command, code=1)
            said = complaint(*command)
            self.assertIn("bytes of several families for 0x08000100 [wrong-format]\n    choose one of "
                          + ", ".join(names), said)
            self.assertNotIn("conflict", said)
        tessaron("diff", "shared.uf2", "all.hex", code=2)
        for family, image in (("RP2350_ARM_S", {FLASH: b"A" * 512}), ("0xE48BFF58", {shared: b"D" * 256})):
            write("one.hex", image)
            tessaron("diff", "shared.uf2", "one.hex", "--family", family)
            tessaron("convert", "shared.uf2", "o.hex", "--family", family)
            tessaron("diff", "o.hex", "one.hex")
            pathlib.Path("o.hex").unlink()
            script = tessaron("convert", "shared.uf2", "o.hex", "--family", family,
                              "--print-script")
            self.assertIn("FROM_UF2 \"shared.uf2\" -useFamily=", script)
            tessaron("run", "-", standard_input=script)
            tessaron("diff", "o.hex", "one.hex")
            info, = json.loads(tessaron("info", "--json", "shared.uf2", "--family", family))
            self.assertEqual((info["devices"], info["bytes"]), (names, len(*image.values())))
            self.assertIn("0x%08X" % next(iter(image)),
                          tessaron("map", "shared.uf2", "--ascii", "--family", family))
        tessaron("convert", "apart.uf2", "o.hex", "--family", "RP2040", code=1)
        self.assertIn("it has some for " + ", ".join(names),
                      complaint("convert", "apart.uf2", "o.hex", "--family", "RP2040"))
        tessaron("convert", "all.hex", "o.hex", "--family", "RP2040", code=1)
        self.assertIn("did you mean RP2040?",
                      complaint("info", "apart.uf2", "--family", "rp2040"))

    def test_devices_of_usb(self):
        pathlib.Path("usb.tsn").write_text(
            "NEW_BUFFER @a FROM_VALUES {1}\n"
            "WRITE_FILE usb.dfu WITH_BUFFERS {@a} -setFormat=DfuSe -setVendorId=0x483 "
            "-setProductId=0xDF11\n")
        tessaron("run", "usb.tsn")
        device = "USB vendor 0x0483, product 0xDF11"
        self.assertIn("\n  device    %s\n" % device, tessaron("info", "usb.dfu"))
        self.assertEqual(json.loads(tessaron("info", "usb.dfu", "--json"))[0]["devices"], [device])

    def test_header_of_s_records(self):
        """The text of srec_cat, and the fixed fields of an S0 that are filled up."""
        pathlib.Path("one.bin").write_bytes(b"1")
        for header, shown in (("Boot 1.2", "Boot 1.2"), ("  a\tb", "a\tb"), (" ", None)):
            srec_cat("one.bin", "-binary", "-execution-start-address", "0", "-header", header, "-o",
                     "h.s19", "-motorola")
            info, = json.loads(tessaron("info", "--json", "h.s19"))
            self.assertEqual(info.get("header"), shown)
        self.assertNotIn("  header ", tessaron("info", "h.s19"))
        pathlib.Path("h.s19").write_text(
            "S027000020202020202020202020000043726561746564204279205465737361726F6E2032303038AC\n"
            "S107000001020304EE\nS9030000FC\n")
        self.assertIn("  header    Created By Tessaron 2008\n", tessaron("info", "h.s19"))

    def test_info(self):
        info, = json.loads(tessaron("info", "--json", "a.hex"))
        whole = b"".join(self.image.values())
        self.assertEqual((info["format"], info["bytes"], info["startAddress"]),
                         ("Intel HEX", len(whole), "0x%08X" % (FLASH + 0x131)))
        self.assertEqual(info["sha256"], hashlib.sha256(whole).hexdigest())
        self.assertEqual(info["crc32"], "%08X" % zlib.crc32(whole))
        self.assertEqual(info["areas"],
                         [{**area(address, len(data)), "crc32": "%08X" % zlib.crc32(data),
                           "sha256": hashlib.sha256(data).hexdigest()}
                          for address, data in self.image.items()])
        self.assertEqual(info["gaps"], [area(FLASH + 1000, 0x1000 - 1000),
                                        area(FLASH + 0x1000 + 70000,
                                             FAR - FLASH - 0x1000 - 70000)])
        lines = pathlib.Path("a.hex").read_text().split()
        data = [int(line[1:3], 16) for line in lines if line[7:9] == "00"]
        types = [line[7:9] for line in lines]
        self.assertEqual(info["records"], {
            "data": len(data), "end of file": 1, "extended linear address": types.count("04"),
            "start linear address": 1})
        motorola, = json.loads(tessaron("info", "--json", "a.s19"))
        types = [line[:2] for line in pathlib.Path("a.s19").read_text().split()]
        self.assertEqual(motorola["records"], {
            name: types.count(name[:2]) for name in ("S0 header", "S3 data", "S5 count", "S7 end", "S9 end")
            if name[:2] in types})
        self.assertEqual(info["recordLengths"], {str(n): data.count(n) for n in sorted(set(data))})
        text = tessaron("info", "a.hex")
        other = tessaron("info", "a.s19")
        self.assertEqual(tessaron("info", "a.hex", "a.s19"), text + "\n" + other)
        for entry in info["areas"]:
            self.assertRegex(text, r"%s .* %s +%s" % (entry["start"], entry["crc32"],
                                                       entry["sha256"]))

    def test_a_checksum_that_says_nothing(self):
        """Data that ends with its own CRC-32 has the one of all such data."""
        for data, is_own in ((b"image" + zlib.crc32(b"image").to_bytes(4, "little"), True),
                             (b"image" + zlib.crc32(b"image").to_bytes(4, "big"), False)):
            pathlib.Path("own.bin").write_bytes(data)
            said = tessaron("info", "own.bin")
            self.assertIn("  CRC-32    %08X" % zlib.crc32(data), said)
            self.assertEqual("as of any data that ends with its own CRC-32: see SHA-256" in said,
                             is_own)

    def test_info_of_hundred_areas(self):
        image = {0x100 * i: bytes([i]) * (i + 1) for i in range(100)}
        write("many.s19", image)
        info, = json.loads(tessaron("info", "--json", "many.s19"))
        self.assertEqual([(entry["start"], entry["length"]) for entry in info["areas"]],
                         [("0x%08X" % at, len(data)) for at, data in image.items()])
        for width, digest in ((80, "SHA-256"), (60, "CRC-32")):
            text = tessaron("info", "--width", str(width), "many.s19")
            table = text.split("\n\n")[1].splitlines()
            self.assertEqual(len(table), 101)
            self.assertLessEqual(max(map(len, text.splitlines())), max(width, 76), text)
            self.assertEqual(table[0].split()[-1], digest)

    def test_info_of_an_odd_file(self):
        text = pathlib.Path("a.hex").read_text().replace("\n", "\r")
        pathlib.Path("odd.hex").write_text("# by hand\r" + text, newline="")
        odd, = json.loads(tessaron("info", "--json", "odd.hex"))
        plain, = json.loads(tessaron("info", "--json", "a.hex"))
        self.assertEqual({r["name"] for r in odd["remarks"]}, {"tolerated"})
        for name in ("records", "recordLengths", "areas", "sha256", "startAddress"):
            self.assertEqual(odd[name], plain[name])
        # In the order of the lines, whatever the order in which they are found.
        pathlib.Path("order.hex").write_text("# one\n\n" + text.replace("\r", " \n").lower())
        order, = json.loads(tessaron("info", "--json", "order.hex"))
        self.assertEqual([r["line"] for r in order["remarks"]], [1, 2, 3, 3])
        text = tessaron("info", "order.hex")
        for remark in order["remarks"]:
            self.assertIn("\n  warning   line %(line)d: %(text)s [tolerated]\n" % remark, text)
        pathlib.Path("cut.hex").write_text(":0100000001FE\n")
        self.assertIn("\n  error     cut.hex has no end-of-file record; it may have been cut off "
                      "[no-end]\n            if it is complete, --warn no-end lets it pass\n",
                      tessaron("info", "cut.hex", code=1))

    def test_info_of_an_empty_file(self):
        for name, text in (("none.hex", ""), ("end.hex", ":00000001FF"), ("end.s19", "S9030000FC")):
            pathlib.Path(name).write_text(text)
            info, = json.loads(tessaron("info", "--json", name, code=1))
            self.assertEqual([r["name"] for r in info["remarks"]], ["empty-image"])
            self.assertIn("  data      0 bytes\n", tessaron("info", name, code=1))
            tessaron("info", "--warn", "empty-image", name)

    def test_lists_up_to_a_limit(self):
        """Six lengths of records, and 64 bytes of a difference."""
        def record(address, size):
            data = bytes([size, address >> 8, address & 0xFF, 0]) + bytes(size)
            return ":%s%02X\n" % (data.hex().upper(), -sum(data) & 0xFF)
        for lengths, said in ((6, False), (7, True)):
            pathlib.Path("lengths.hex").write_text("".join(
                record(0x100 * n, n) for n in range(1, lengths + 1)) + ":00000001FF\n")
            text = tessaron("info", "lengths.hex")
            self.assertEqual("and 1 other length\n" in text, said)
            self.assertEqual(text.count("1 record of "), 6)
        for size in (64, 65):
            pathlib.Path("left.bin").write_bytes(b"\x01" * size)
            pathlib.Path("right.bin").write_bytes(b"\x02" * size)
            found = json.loads(tessaron("diff", "--json", "left.bin", "right.bin", code=1))
            self.assertEqual(found["changed"], [{**area(0, size), "left": "01" * 64,
                                                 "right": "02" * 64}])

    def test_info_of_a_damaged_file(self):
        text = pathlib.Path("a.hex").read_text().splitlines()
        text[4] = text[4][:-2] + "%02X" % (int(text[4][-2:], 16) ^ 1)
        pathlib.Path("bad.hex").write_text("\n".join(text) + "\n")
        info, = json.loads(tessaron("info", "--json", "bad.hex", code=1))
        self.assertEqual([(r["severity"], r["name"], r["line"]) for r in info["remarks"]],
                         [("error", "record-checksum", 5)])
        self.assertIn("  data      not read\n", tessaron("info", "bad.hex", code=1))
        tessaron("info", "missing.hex", code=1)
        if IS_WINDOWS:
            return
        piped = subprocess.run([PROGRAM, "info", "--json", "/dev/stdin"], capture_output=True,
                               input=pathlib.Path("a.hex").read_bytes(), check=True).stdout
        plain, = json.loads(tessaron("info", "--json", "a.hex"))
        self.assertEqual(json.loads(piped), [{**plain, "file": "/dev/stdin"}])

    def test_diff_of_start_addresses(self):
        """Tools that have none write 0, since the last of the S-records has one in any case."""
        for name, start in (("none", None), ("zero", 0), ("one", 1), ("two", 2)):
            data = bytes((4, 0, 0, 5, 0, 0, 0, start or 0))
            pathlib.Path(name + ".hex").write_text(":0100000001FE\n" + (
                "" if start is None else ":%s%02X\n" % (data.hex().upper(), -sum(data) & 0xFF)) +
                ":00000001FF\n")
        for one, other, code in (("none", "one", 1), ("one", "none", 1), ("one", "two", 1),
                                 ("one", "one", 0), ("none", "zero", 0), ("zero", "none", 0)):
            files = one + ".hex", other + ".hex"
            self.assertEqual("the start addresses differ" in tessaron("diff", *files, code=code),
                             code == 1)
            self.assertEqual(json.loads(tessaron("diff", "--json", *files, code=code))["equal"],
                             code == 0)

    def test_diff(self):
        self.assertEqual(tessaron("diff", "a.hex", "a.s19"), "")
        found = json.loads(tessaron("diff", "--json", "a.hex", "b.s19", code=1))
        start = FLASH + 0x1000
        old, new = self.image[start], self.other[start]
        self.assertEqual(found["changed"],
                         [{**area(start + at, n), "left": old[at:at + n].hex().upper(),
                           "right": new[at:at + n].hex().upper()}
                          for at, n in [(0, 3), (0x20, 1), (0xFFFF, 2)]])
        self.assertEqual(found["changedBytes"], 6)
        self.assertEqual(found["left"], {"file": "a.hex", "format": "Intel HEX", "bytes": 71016,
                                         "startAddress": "0x%08X" % (FLASH + 0x131)})
        self.assertEqual(found["onlyLeft"], [area(FLASH + 996, 4)])
        self.assertEqual(found["onlyRight"], [area(FAR + 0x1000, 3)])
        ignore = ["--ignore=%d,%d" % pair for pair in
                  [(start, 0x21), (start + 0xFFFF, 2), (FLASH + 990, 100), (FAR + 0x1000, 9)]]
        self.assertEqual(tessaron("diff", "a.hex", "b.s19", *ignore), "")
        part = json.loads(tessaron("diff", "--json", "a.hex", "b.s19", *ignore[1:],
                                   "--ignore", "{%d, 1}" % (start + 1), code=1))
        self.assertEqual([(a["start"], a["length"]) for a in part["changed"]],
                         [("0x%08X" % (start + at), 1) for at in (0, 2, 0x20)])
        tessaron("diff", "a.hex", "missing.hex", code=2)
        self.assertEqual(complaint("diff", "a.hex", "missing"),
                         "tessaron: error: cannot open missing: No such file or directory "
                         "[cannot-open]\n")
        if IS_WINDOWS:
            return
        shell = 'exec "$0" diff --json <(cat a.hex) <(cat b.s19)'
        piped = json.loads(subprocess.run(["bash", "-c", shell, PROGRAM], capture_output=True,
                                          text=True, check=False).stdout)
        self.assertEqual(piped["changed"], found["changed"])
        self.assertEqual(piped["left"]["format"], "Intel HEX")

    def test_diff_of_some_areas(self):
        """Against a comparison byte by byte."""
        source = random.Random(9)
        for _ in range(20):
            left = bytes(source.choices((0, 1), k=source.randrange(30, 50)))
            right = bytes(source.choices((0, 1), k=source.randrange(30, 50)))
            pathlib.Path("left.bin").write_bytes(left)
            pathlib.Path("right.bin").write_bytes(right)
            ignored = [(source.randrange(50), source.randrange(1, 7))
                       for _ in range(source.randrange(6))]
            outside = {at for start, size in ignored for at in range(start, start + size)}
            places = {"changed": [at for at, (one, other) in enumerate(zip(left, right))
                                  if one != other],
                      "onlyLeft": range(len(right), len(left)),
                      "onlyRight": range(len(left), len(right))}
            wanted = {name: [at for at in found if at not in outside]
                      for name, found in places.items()}
            found = json.loads(tessaron(
                "diff", "left.bin", "right.bin", "--json",
                *["--ignore=%d,%d" % one for one in ignored], code=int(any(wanted.values()))))
            for name, places in wanted.items():
                self.assertEqual([int(entry["start"], 16) + at for entry in found[name]
                                  for at in range(entry["length"])], places, (name, ignored))

    def test_dump(self):
        text = tessaron("diff", "a.hex", "b.s19", "--context", "0", code=1)
        start = FLASH + 0x1000
        old, new = (" ".join("%02X" % byte for byte in image[start][:8])
                    for image in (self.image, self.other))
        self.assertRegex(text, r"\n0x%08X \[%s\]%s  .{8}\|\[%s\]%s  " %
                         (start, old[:8], old[9:], new[:8], new[9:]))
        wide = tessaron("diff", "a.hex", "b.s19", "--width", "144", code=1)
        for width, dump in ((80, text), (144, wide)):
            self.assertEqual(max(len(row) for row in dump.splitlines() if "|" in row), width)
        self.assertIn("%s " % " ".join("%02X" % b for b in self.image[start][3:16]), wide)
        self.assertNotIn("\033", text)
        colored = tessaron("diff", "a.hex", "b.s19", "--color=always", code=1)
        self.assertEqual(re.sub("\033\\[[0-9;]*m", "", colored),
                         tessaron("diff", "a.hex", "b.s19", code=1))
        # Red is what was, and green what is.
        rows = [row for row in colored.splitlines() if "\033" in row]
        self.assertTrue(rows)
        for row in rows:
            colors = re.findall("\033\\[(3.)m", row)
            self.assertEqual(colors, ["31"] * (len(colors) // 2) + ["32"] * (len(colors) // 2))
        most = tessaron("diff", "a.hex", "b.s19", "--max-lines", "5", code=1).splitlines()
        every = tessaron("diff", "a.hex", "b.s19", "--max-lines", "0", code=1).splitlines()
        head = 3  # the files and the sum
        rest = int(re.match(r"\.\.\. and (\d+) more lines", most[-1])[1])
        self.assertEqual(len(most) - 1, head + 5)
        self.assertEqual(len(every), head + 5 + rest)
        for count in range(1, len(every) - head):
            text = tessaron("diff", "a.hex", "b.s19", "--max-lines", str(count), code=1)
            rest = int(re.search(r"^\.\.\. and (\d+) more line", text, re.MULTILINE)[1])
            self.assertEqual((text.splitlines()[:-1], rest),
                             (every[:head + count], len(every) - head - count))
        # Brackets are for what counts as different.
        area = "0x%X,2" % (FLASH + 0x1001)
        ignoring = tessaron("diff", "a.hex", "b.s19", "--ignore", area, code=1)
        old = " ".join("%02X" % byte for byte in self.image[FLASH + 0x1000][:3])
        self.assertIn("[%s]" % old, "\n".join(every))
        self.assertIn("[%s]%s" % (old[:2], old[3:]), ignoring)

    def test_areas_of_a_diff(self):
        """What is left of ranges beside those that are ignored; the first 64 bytes of each."""
        write("left.hex", {0x100: bytes(80)})
        write("right.hex", {0x100: b"\1" * 65 + bytes(15), 0x200: b"more"})
        for ignored, changed, only_right in (
                ((), [(0x100, 65)], [(0x200, 4)]),
                (("0x100,1",), [(0x101, 64)], [(0x200, 4)]),
                (("0x110,2", "0,0x104", "0x13F,9", "0x112,1", "0x201,1"),
                 [(0x104, 12), (0x113, 44)], [(0x200, 1), (0x202, 2)]),
                (("0xFF,1", "0x141,0xBF", "0x204,1"), [(0x100, 65)], [(0x200, 4)])):
            options = [option for one in ignored for option in ("--ignore", one)]
            document = json.loads(tessaron("diff", "left.hex", "right.hex", "--json", *options, code=1))
            sizes = [min(size, 64) for _, size in changed]
            self.assertEqual(document["changed"], [
                {**area(at, size), "left": "00" * shown, "right": "01" * shown}
                for (at, size), shown in zip(changed, sizes)])
            self.assertEqual(document["onlyRight"], [area(*one) for one in only_right])
            self.assertEqual(document["changedBytes"], sum(size for _, size in changed))

    def test_map(self):
        write("map.hex", {0x1000: bytes(100), 0x1000 + 260: bytes(100)})
        write("far.hex", {0x1000 + 100: bytes(160), 0x5000000: b"12345"})
        one = tessaron("map", "map.hex", "--ascii", "--width", "40")
        self.assertIn(" |##########................##########|\n", one)
        both = tessaron("map", "map.hex", "far.hex", "--ascii", "--width", "47")
        self.assertIn(" map.hex|##########................##########|\n", both)
        self.assertIn(" far.hex|..........################..........|\n", both)
        self.assertIn(" far.hex|#####|\n", both)
        # Names take a third of the room at most.
        shutil.copy("far.hex", "a-far-away.hex")
        cut = tessaron("map", "map.hex", "a-far-away.hex", "--ascii", "--width", "40")
        self.assertIn("\n map.hex     |", cut)
        self.assertIn("\n a-far-away.h|", cut)
        self.assertEqual(max(len(row) for row in cut.splitlines() if "|" in row), 39)
        # Many areas, most of them short, share one scale: cuts would hide where they are.
        write("many.hex", {0x40000 * i: bytes(100 if i < 5 else 0x30000) for i in range(10)})
        bars = [row for row in tessaron("map", "many.hex", "--ascii").splitlines() if "|" in row]
        self.assertEqual(len(bars), 1)
        self.assertLessEqual(max(map(len, both.splitlines())), 47)
        tessaron("map", "map.hex", "--svg", "map.svg")
        picture = xml.etree.ElementTree.parse("map.svg")
        data = [(int(box.get("x")), int(box.get("width")))
                for box in picture.iter("{http://www.w3.org/2000/svg}rect")
                if box.get("class") == "data" and box.get("width") != "14"]
        words = [text.text for text in picture.iter("{http://www.w3.org/2000/svg}text")]
        self.assertEqual(words[1:-5], ["0x00001000 to 0x00001167, 360 bytes", "map.hex",
                                       "0x00001000", "0x00001040", "0x00001080", "0x000010C0",
                                       "0x00001100", "0x00001140"])
        self.assertEqual([x - data[0][0] for x, _ in data], [0, 722])
        self.assertEqual([width for _, width in data], [277, 278])

    def test_cells_of_a_map(self):
        """Cell i of n begins at i * length // n, and shows how much of it is data."""
        def cells(areas, length, count):
            data = {at for start, size in areas for at in range(start, start + size)}
            size = length // count
            for i in range(count):
                has = sum(at in data for at in range(length * i // count, length * (i + 1) // count))
                yield "." if has == 0 else "+" if has < size else "#"

        for length, areas in ((100, [(0, 1), (50, 10), (99, 1)]), (76, [(0, 1), (75, 1)]),
                              (303, [(0, 3), (9, 1), (100, 50), (152, 2), (301, 2)]),
                              (2500, [(0, 1), (7, 2), (1234, 101), (2497, 3)])):
            write("cells.hex", {0x1000 + at: bytes(size) for at, size in areas})
            self.assertIn(" |%s|\n" % "".join(cells(areas, length, 76)),
                          tessaron("map", "cells.hex", "--ascii", "--width", "80"))
        tessaron("map", "cells.hex", "--svg", "cells.svg")
        boxes = [(box.get("class"), int(box.get("x")) - 220, int(box.get("width")))
                 for box in xml.etree.ElementTree.parse("cells.svg").iter(
                     "{http://www.w3.org/2000/svg}rect")
                 if box.get("class") in ("data", "part") and box.get("width") != "14"]
        drawn = "".join(cells(areas, length, 1000))
        self.assertEqual(boxes, [({"+": "part", "#": "data"}[run[0][0]], run.start(), len(run[0]))
                                 for run in re.finditer(r"#+|\++", drawn)])

    def test_cuts_of_a_map(self):
        """A gap of 64 KiB cuts a map, unless it is shorter than the data, or one of many."""
        for areas, panels in (
                ([(0, 9), (9 + 0x10000, 9)], 2), ([(0, 9), (9 + 0xFFFF, 9)], 1),
                ([(0, 0x8000), (0x18000, 0x8000)], 2), ([(0, 0x8000), (0x18000, 0x8001)], 1),
                ([(i * 0x10001, 1) for i in range(8)], 8),
                ([(i * 0x10001, 1) for i in range(9)], 1)):
            write("cut.hex", {at: bytes(size) for at, size in areas})
            bars = [row for row in tessaron("map", "cut.hex", "--ascii").splitlines() if "|" in row]
            self.assertEqual(len(bars), panels, areas)

    def test_picture(self):
        """What a picture shows is within it and beside what else it shows."""
        start = 0x1008
        write("low.hex", {start: bytes(100), start + 260: bytes(100)})
        write("a-name-of-more-than-26-characters.hex", {start + 50: bytes(60), 0x5000000: b"12345"})
        tessaron("map", "low.hex", "a-name-of-more-than-26-characters.hex", "--svg", "two.svg")
        picture = xml.etree.ElementTree.parse("two.svg").getroot()
        width, height = map(int, picture.get("viewBox").split()[2:])
        self.assertEqual((picture.get("width"), picture.get("height")), (str(width), str(height)))
        name = "{http://www.w3.org/2000/svg}"
        used, lines = set(), {}

        def place(element):
            """Left, top, right and bottom; a letter is 13 high and takes 7 in the mean."""
            x, y = int(element.get("x")), int(element.get("y"))
            if element.tag == name + "rect":
                used.add(element.get("class"))
                return x, y, x + int(element.get("width")), y + int(element.get("height"))
            return x, y - 13, x + 7 * len(element.text), y

        def are_apart(one, other):
            return one[2] <= other[0] or other[2] <= one[0] or one[3] <= other[1] or \
                other[3] <= one[1]
        alone = [place(e) for e in picture if e.tag in (name + "text", name + "rect")
                 and e.get("width") != "100%"]
        rows = []
        for group in picture.iter(name + "g"):
            label, ground, *boxes = list(group)[1:]
            left, top, right, bottom = place(ground)
            self.assertTrue(top < place(label)[1] and place(label)[3] < bottom)
            rows += [place(label), place(ground)]
            self.assertEqual(ground.get("class"), "gap")
            for box in map(place, boxes):
                self.assertTrue(left <= box[0] < box[2] <= right and box[1::2] == (top, bottom))
            lines.setdefault(label.text, []).append(
                [(box.get("class"), int(box.get("x")) - left, int(box.get("width")))
                 for box in boxes])
        for i, one in enumerate(alone + rows):
            self.assertTrue(0 <= one[0] < one[2] <= width and 0 <= one[1] < one[3] <= height, one)
            for other in (alone + rows)[:i]:
                self.assertTrue(are_apart(one, other), (one, other))
        # A picture of a thousand for 360 addresses: each box ends where its bytes do.
        self.assertEqual(lines, {
            "low.hex": [[("data", 0, 277), ("data", 722, 278)], []],
            "..." + "a-name-of-more-than-26-characters.hex"[-23:]:
                [[("data", 138, 167)], [("data", 0, 1000)]]})
        self.assertEqual(used, {"data", "part", "value", "filler", "gap"})
        style = picture.find(name + "style").text
        self.assertTrue(all("." + word + "{" in style for word in used))
        scale = []
        for path, text in zip(picture, list(picture)[1:]):
            if path.tag == name + "path":
                x, y = map(int, re.match(r"M(\d+) (\d+)v6", path.get("d")).groups())
                self.assertTrue(all(box[3] <= y for box in rows if box[1] < y))
                scale.append((int(text.text, 16), x - 220))
        # Round addresses where they are, the end of the second panel beyond the last one.
        self.assertEqual(scale, [(at, (at - start) * 1000 // 360)
                                 for at in range(0x1040, start + 360, 0x40)] +
                         [(0x5000000 + at, at * 200) for at in range(5)])

    @unittest.skipIf(IS_WINDOWS, "names of Windows are texts without control characters")
    def test_names_that_a_terminal_or_a_page_would_obey(self):
        name = b"\xff]]>&'\"\x1b[31m\xc2\x9b\xe2\x80\xae\n.hex"
        shown = "\\xFF]]>&'\"\\x1B[31m\\u009B\\u202E\\n.hex"
        shutil.copy("a.hex", name)
        for command in (("info",), ("map",), ("diff", "b.s19"), ("map", "b.s19")):
            code = 1 if command[0] == "diff" else 0
            text = tessaron(*command, name, code=code)
            self.assertIn(shown, text)
            self.assertTrue(all(char.isprintable() or char == "\n" for char in text))
        for command in ("info", "diff"):
            text = tessaron(command, name, "b.s19", "--json", code=1 if command == "diff" else 0)
            self.assertTrue(all(char.isprintable() or char == "\n" for char in text))
            self.assertIn("]]>&'\"\x1b[31m\x9b\u202e\n.hex", str(json.loads(text)).encode()
                          .decode("unicode_escape"))
        tessaron("map", name, "--svg", "names.svg")
        picture = xml.etree.ElementTree.parse("names.svg")
        self.assertIn(shown, picture.find(".//{http://www.w3.org/2000/svg}title").text)
        missing = complaint("info", b"\x1b]0;gone\x07")
        self.assertIn("\\x1B]0;gone\\x07", missing)
        self.assertIn("\\x1B", complaint(b"\x1b"))
        # The page of a run is UTF-8, and its marks are those of HTML, whatever the names are.
        script = b'NEW_BUFFER @a FROM_FILE {%s}\nWRITE_FILE {<b>&%s} WITH_BUFFERS {@a}\n'
        name, shown = b"\xff&\xe2\x80\xae.hex", "\\xFF&\\u202E.hex"
        pathlib.Path("names.tsn").write_bytes(script % (name, b"\xe9\x1b"))
        write("small.hex", {0x1000: bytes(16)})
        shutil.copy("small.hex", name)
        tessaron("run", "names.tsn", "--report", "names.html")
        page = pathlib.Path("names.html").read_bytes().decode()
        self.assertFalse(set(page) & {"\x1b", "\u202e", "\x9b"})
        reader = StrictPage(page)
        self.assertEqual(reader.faults, [])
        self.assertIn("<b>&\\xE9\\x1B", reader.cells)
        self.assertIn(shown, reader.cells)

    def test_convert(self):
        tessaron("convert", "a.hex", "out.s37", "--crop", "0x8000000,0x2000", "--fill", "0xFF",
                 "--offset", "-0x1000")
        srec_cat("a.hex", "-intel", "-crop", "0x8000000", "0x8002000", "-fill", "0xFF",
                 "0x8000000", "0x8002000", "-offset", "-0x1000", "-disable=data-count",
                 "-o", "want.s37", "-motorola")
        self.assertEqual(tessaron("diff", "out.s37", "want.s37"), "")
        # The start address moves with the data.
        last = pathlib.Path("want.s37").read_text().rstrip().splitlines()[-1]
        self.assertTrue(last.startswith("S70507FFF131"))
        self.assertEqual(pathlib.Path("out.s37").read_text().rstrip().splitlines()[-1], last)
        # The crop that was asked for is not news.
        self.assertEqual(complaint("convert", "a.hex", "out.h", "--crop", "0x8000000,16"), "")
        self.assertIn("0x08000000", pathlib.Path("out.h").read_text())
        self.assertIn("[wrong-format]", complaint("convert", "out.h", "back.hex"))
        self.assertFalse(pathlib.Path("back.hex").exists())
        tessaron("convert", "a.hex", "out.dfu", "--crop", "0x8000000,16")
        tessaron("convert", "out.dfu", "back.hex")
        self.assertEqual(tessaron("diff", "out.dfu", "back.hex"), "")
        for name, choice in (("out.uf2", "Uf2_"), ("out.vmem", "Vmem_4")):
            self.assertIn(choice, complaint("convert", "a.hex", name))
            self.assertFalse(pathlib.Path(name).exists())
        script = tessaron("convert", "a.hex", "by script.bin", "--crop", "0x8000000,0x2000",
                          "--fill", "1,2", "--print-script")
        self.assertFalse(pathlib.Path("by script.bin").exists())
        tessaron("run", "-", standard_input=script)
        made = pathlib.Path("by script.bin").read_bytes()
        want = bytearray([1, 2] * 0x1000)
        for start in (FLASH, FLASH + 0x1000):
            end = min(0x2000, start - FLASH + len(self.image[start]))
            want[start - FLASH:end] = self.image[start][:end - (start - FLASH)]
        self.assertEqual(made, bytes(want))
        write("gaps.hex", {FLASH: b"12345", FLASH + 0x20000: b"678"})
        tessaron("convert", "gaps.hex", "gaps.s19")
        self.assertEqual(tessaron("diff", "gaps.hex", "gaps.s19"), "")
        srec_cat("gaps.hex", "-intel", "-o", "want.txt", "-ti_txt")
        self.assertEqual(tessaron("diff", "gaps.hex", "want.txt"), "")
        tessaron("convert", "want.txt", "back.hex")
        self.assertEqual(tessaron("diff", "gaps.hex", "back.hex"), "")
        tessaron("convert", "gaps.hex", "out.txt")
        srec_cat("out.txt", "-ti_txt", "-o", "again.hex", "-intel")
        self.assertEqual(tessaron("diff", "gaps.hex", "again.hex"), "")
        tessaron("convert", "a.hex", "out.unknown", code=1)
        tessaron("convert", "a.hex", "out.hex", "--offset", "0xF0000000", code=1)
        tessaron("convert", "a.hex", "out.hex", "--offset", "0x8000000000000000", code=1)

    def test_convert_elf(self):
        """Sections by objcopy, an entry beyond 32 bits, and copies of the ELF file itself."""
        data = pathlib.Path(__file__).resolve().parents[1] / "data/elf"
        for name in ("arm", "powerpc64", "headers64", "avr"):
            elf = str(data / (name + ".elf"))
            # What aligns .text goes with it.
            section = ".text"
            for option in ("-j", "-R"):
                subprocess.run(["objcopy", option, section, "-O", "srec", "--srec-forceS3", elf,
                                "want.s37"], check=True)
                flag = "--sections" if option == "-j" else "--skip-sections"
                tessaron("convert", elf, "out.s37", flag, section)
                self.assertEqual(tessaron("diff", "out.s37", "want.s37"), "", (name, section))
                script = tessaron("convert", elf, "by script.s37", flag, section, "--print-script")
                tessaron("run", "-", standard_input=script)
                self.assertEqual(pathlib.Path("by script.s37").read_bytes(),
                                 pathlib.Path("out.s37").read_bytes())
        # The image lies at 0xFFFFFFFF80008000, and begins to run at an address 8 bytes on.
        high = bytearray((data / "mips64el.elf").read_bytes())
        entry, = struct.unpack_from("<Q", high, 24)
        programs, = struct.unpack_from("<Q", high, 32)
        count, = struct.unpack_from("<H", high, 56)
        top = 0xFFFFFFFF80000000
        struct.pack_into("<Q", high, 24, entry + top)
        for at in range(programs, programs + 56 * count, 56):
            for place in (at + 16, at + 24):
                struct.pack_into("<Q", high, place, struct.unpack_from("<Q", high, place)[0] + top)
        pathlib.Path("high.elf").write_bytes(high)
        self.assertIn("--offset", complaint("convert", "high.elf", "out.hex"))
        self.assertIn("[outside]", complaint("convert", "high.elf", "out.hex", "--offset",
                                             "-0x80000000"))
        for offset in ("0x100000000", "-0xFFFFFFFF00000000"):
            tessaron("convert", "high.elf", "out.hex", "--offset", offset)
            tessaron("convert", str(data / "mips64el.elf"), "low.hex", "--offset", "0x80000000")
            self.assertEqual(pathlib.Path("out.hex").read_bytes(),
                             pathlib.Path("low.hex").read_bytes())
            self.assertIn("0x80008020", tessaron("info", "out.hex"))
        tessaron("convert", "high.elf", "out.bin")
        self.assertIn("--elf-template", complaint("convert", "high.elf", "out.elf"))
        self.assertIn("Intel", complaint("convert", "high.elf", "out.hex", "--elf-template",
                                         "high.elf"))
        tessaron("convert", "high.elf", "out.elf", "--elf-template", "high.elf")
        self.assertEqual(pathlib.Path("out.elf").read_bytes(), high)

    def test_elf_copies_in_part(self):
        """Long and short stretches of images, in one segment and across two, one after the other in
        memory and not in the file."""
        kib = 1024
        length, base = 200 * kib, 0x8000
        places = {base: 0x1000 + length, base + length: 0x1000}  # offsets by addresses
        pseudo = random.Random(3)
        template = bytearray(pseudo.randbytes(0x1000 + 2 * length + 100))
        struct.pack_into("<16sHHIIIIIHHHHHH", template, 0, b"\x7fELF\1\1\1" + bytes(9), 2, 40, 1, base,
                         52, 0, 0, 52, 32, 2, 40, 0, 0)
        for i, (address, offset) in enumerate(places.items()):
            struct.pack_into("<8I", template, 52 + 32 * i, 1, offset, address, address, length, length,
                             5, 4)
        pathlib.Path("in.elf").write_bytes(template)
        for areas in ([(0, 2 * length)],
                      [(100, 64 * kib), (65 * kib, 64 * kib - 1), (190 * kib, 90 * kib)],
                      [(0, 64 * kib - 1), (64 * kib, 128 * kib), (399 * kib, kib)],
                      [(length - 1, 2), (length + 64 * kib, 100 * kib)]):
            want = bytearray(template)
            image = {base + start: pseudo.randbytes(size) for start, size in areas}
            for start, data in image.items():
                for i, (address, offset) in enumerate(places.items()):
                    first, end = max(start, address), min(start + len(data), address + length)
                    if first < end:
                        want[offset + first - address:offset + end - address] = \
                            data[first - start:end - start]
            write("part.hex", image)
            tessaron("convert", "part.hex", "out.elf", "--elf-template", "in.elf")
            self.assertTrue(pathlib.Path("out.elf").read_bytes() == want, areas)
        # Of images that overlap, the later one counts.
        early, late = pseudo.randbytes(150 * kib), pseudo.randbytes(80 * kib)
        write("early.hex", {base: early})
        write("late.hex", {base + 20 * kib: late})
        want = bytearray(template)
        for at, data in ((0, early), (20 * kib, late)):
            want[places[base] + at:places[base] + at + len(data)] = data
        pathlib.Path("two.tsn").write_text(
            "NEW_BUFFER @Early FROM_FILE early.hex\nNEW_BUFFER @Late FROM_FILE late.hex\n"
            "WRITE_FILE out.elf WITH_BUFFERS {@Early, @Late} -skipUnwritten -setFormat=Elf "
            "-setElfTemplate=in.elf\n")
        tessaron("run", "two.tsn", "--warn", "conflict")
        self.assertTrue(pathlib.Path("out.elf").read_bytes() == want)

    @unittest.skipUnless(shutil.which("as") and shutil.which("ld") and shutil.which("objcopy"),
                         "no assembler and linker")
    def test_symbols_at_bytes(self):
        """Two programs by the linker: a function grows and moves the others, one comes, one goes."""
        old = [("text", "_ZN2fw5resetEv", range(1, 13)), ("text", "helper", range(50, 58)),
               ("text", "gone", [7] * 6), ("text", "isr", [3, 4]),
               ("data", "settings", b"1.0\0"), ("data", "limit", [9, 9])]
        new = [("text", "_ZN2fw5resetEv", range(1, 17)), ("text", "helper", range(50, 58)),
               ("text", "added", [8] * 5), ("text", "isr", [3, 4]),
               ("data", "settings", b"1.1\0"), ("data", "limit", [9, 9])]
        for name, parts in (("old", old), ("new", new)):
            link(name, parts)
        want = """
       old       new     bytes  name
         6         -        -6  gone  removed
         -         5        +5  added  added
        12        16        +4  fw::reset()
         4         4         0  settings
3 names moved with the same bytes
"""
        for left, right, *options in (
                ("old.elf", "new.elf"), ("old.hex", "new.hex", "--elf", "old.elf", "--elf=new.elf"),
                ("old.hex", "new.elf", "--elf", "old.map", "--elf", "new.map")):
            said = tessaron("diff", left, right, *options, "--max-lines", "7", code=1)
            self.assertIn(want, said, (left, right))
        document = json.loads(tessaron("diff", "old.elf", "new.elf", "--json", code=1))
        self.assertEqual([(one["name"], one["change"], one["kind"]) for one in document["names"]],
                         [("gone", "removed", "function"), ("added", "added", "function"),
                          ("fw::reset()", "changed", "function"), ("settings", "changed", "data"),
                          ("helper", "moved", "function"), ("isr", "moved", "label"),
                          ("limit", "moved", "data")])
        self.assertEqual(document["names"][2]["right"], area(FLASH, 16))
        # The data is loaded behind the code, and runs elsewhere.
        self.assertEqual(document["names"][3]["left"], area(FLASH + 28, 4))
        tessaron("convert", "old.elf", "old.bin")
        image = bytearray(pathlib.Path("old.bin").read_bytes())
        image[30] = 0x39
        write("patched.hex", {FLASH: bytes(image)})
        said = tessaron("diff", "old.hex", "patched.hex", "--elf", "old.elf", code=1)
        self.assertIn("1 byte differs, in settings+0x2\n", said)
        self.assertIn("         4         4         0  settings\n", said)
        self.assertNotIn("moved", said)
        # A table of names is of two images that have them.
        for pair in (("old.elf", "patched.hex"), ("patched.hex", "old.elf")):
            said = tessaron("diff", *pair, code=1)
            self.assertIn("1 byte differs, in settings+0x2\n", said)
            self.assertNotIn(" name\n", said)
            self.assertNotIn("names", json.loads(tessaron("diff", *pair, "--json", code=1)))
        tessaron("diff", "old.elf", "old.hex", "--elf", "old.map")
        self.assertNotIn("settings", tessaron("diff", "old.hex", "patched.hex", code=1))
        self.assertIn("fw::reset() to limit+0x1", tessaron("info", "old.hex", "--elf", "old.elf"))
        self.assertIn("fw::reset() to limit+0x1", tessaron("info", "old.elf"))
        area_names = "  0x08000000 to 0x08000021  fw::reset() to limit+0x1\n"
        self.assertTrue(tessaron("map", "old.elf").endswith("\n\nold.elf\n" + area_names))
        self.assertTrue(tessaron("map", "patched.hex", "old.hex", "--elf=new.elf", "--elf=old.elf")
                        .endswith("\n\nold.hex\n" + area_names))
        self.assertNotIn("reset", tessaron("map", "old.hex"))

        def titles(*arguments):
            tessaron("map", *arguments, "--svg", "names.svg")
            boxes = xml.etree.ElementTree.parse("names.svg").iter("{http://www.w3.org/2000/svg}rect")
            return ["".join(box.itertext()).replace("0x080000", "") for box in boxes if len(box)]
        self.assertEqual(titles("old.hex"), [])
        self.assertEqual(titles("old.hex", "--elf", "old.map"), [
            "00 to 0B: fw::reset() to +0xB", "0C to 13: helper to +0x7", "14 to 19: gone to +0x5",
            "1A to 1B: isr to +0x1", "1C to 1F: settings to +0x3", "20 to 21: limit to +0x1"])
        self.assertIn("[same-file]", complaint("map", "old.hex", "--elf=old.map", "--svg=old.map"))
        subprocess.run(["strip", "-o", "stripped.elf", "old.elf"], check=True)
        tessaron("diff", "stripped.elf", "old.hex")
        for bad in ("stripped.elf", "old.hex", "missing.elf"):
            tessaron("diff", "old.hex", "patched.hex", "--elf", bad, code=2)
            tessaron("info", "old.hex", "--elf", bad, code=1)
            tessaron("map", "old.hex", "--elf", bad, code=1)
            self.assertIn("cannot open missing.elf" if bad == "missing.elf" else
                          bad + " has no names of what it loads [unknown-name]",
                          complaint("info", "old.hex", "--elf", bad))

    @unittest.skipUnless(shutil.which("as") and shutil.which("ld") and shutil.which("objcopy"),
                         "no assembler and linker")
    def test_names_in_reports(self):
        """The rows of a report name what is there: by the ELF file that was read, or by --elf."""
        link("page", [("text", "_Z5firstIiEvT_", range(1, 13)), ("text", "second", range(50, 58)),
                      ("data", "stored", [0, 0, 0, 0])])
        made = "FILL_BUFFER @App WITH_VALUES {1, 2} -useAreas={{0x8000015, 2}}\n" \
            "NEW_BUFFER @Moved FROM_BUFFER @App -changeStartAddressTo=0x100\n" \
            "WRITE_FILE page.bin WITH_BUFFERS {@App} -setFormat=RawBinary\n"
        named = [("0x08000000", "void first<int>(int) to stored"), ("0x08000015", "stored+0x1 to +0x2"),
                 ("0x08000017", "stored+0x3")]
        named += [("0x000001" + at[8:], text) for at, text in named]

        def rows(source, *options):
            pathlib.Path("page.tsn").write_text("NEW_BUFFER @App " + source + "\n" + made)
            tessaron("run", "page.tsn", "--report", "page.html", *options)
            page = pathlib.Path("page.html").read_text()
            reader = StrictPage(page)
            self.assertEqual(reader.faults, [])
            cells = reader.cells
            return [(cells[i].split()[0], cells[i + 3]) for i in range(len(cells) - 3)
                    if cells[i + 2] in ("data", "value")]
        self.assertEqual(rows("FROM_ELF page.elf"), named)
        self.assertEqual(rows("FROM_FILE page.hex", "--elf", "page.map"), named)
        # Without names, the column after the kind has the lines of the script.
        self.assertEqual({text for _, text in rows("FROM_FILE page.hex")}, {"line 1", "line 2"})
        self.assertIn("[same-file]", complaint("run", "page.tsn", "--elf=page.map",
                                               "--report=page.map"))

    def test_linker_map(self):
        """What GNU ld 2.40 writes for functions in sections of their own, and data in flash."""
        pathlib.Path("hand.map").write_text(LINKER_MAP)
        data = bytes(0x60)
        write("zeros.hex", {FLASH: data})
        for at, said in ((0x02, ", in f+0x2"), (0x24, ", in main"), (0x26, ", in main+0x2"),
                         (0x35, ", in a.o(.data)+0x1"), (0x39, ", in text+0x1"), (0x45, ""),
                         (0x32, ", in ns::g(int)+0x2")):
            write("one.hex", {FLASH: data[:at] + b"\1" + data[at + 1:]})
            found = tessaron("diff", "zeros.hex", "one.hex", "--elf", "hand.map", code=1)
            self.assertIn("1 byte differs%s\n" % said, found)
        # What precedes the heading may be missing.
        pathlib.Path("short.map").write_text(LINKER_MAP[LINKER_MAP.index("Linker script"):])
        pathlib.Path("blank.map").write_bytes(LINKER_MAP.replace("\n", " \r\n").encode())
        for name in ("short.map", "blank.map"):
            self.assertIn("in ns::g(int)+0x2\n",
                          tessaron("diff", "zeros.hex", "one.hex", "--elf", name, code=1))
        write("many.hex", {FLASH + at: b"\1" for at in range(0, 0x44, 2)})
        said = tessaron("map", "many.hex", "--elf", "hand.map").split("\n\nmany.hex\n")[1]
        # Nothing has the name of the fill byte at 0x22.
        self.assertEqual(len(said.splitlines()), 21)
        self.assertTrue(said.endswith("  0x08000028  main+0x4\n  and 13 more areas\n"), said)
        write("low.hex", {0x10: b"code"})
        self.assertNotIn("names", tessaron("info", "low.hex", "--elf", "hand.map"))

    def test_arrangement(self):
        """Lanes, words, units, gaps and alignment, as the bytes themselves say; the printed script
        does the same."""
        data = bytes(range(1, 33))
        start = 0x200
        write("plain.hex", {start: data})
        write("holes.hex", {start + 1: data[:3], start + 6: data[:2], start + 20: data[:1]})
        lanes = [bytes(data[i] for i in range(32) if i // 2 % 2 == lane) for lane in (0, 1)]
        for lane in (0, 1):
            pathlib.Path("chip%d.bin" % lane).write_bytes(lanes[lane])
        swapped = b"".join(data[i:i + 4][::-1] for i in range(0, 32, 4))
        row = data[:3] + b"\xEE\xEE" + data[:2]
        for source, options, at, wanted in (
                ("plain.hex", ["--lane", "0,2,2"], {start // 2: lanes[0]}, "lane"),
                ("plain.hex", ["--lane", "1,2,2"], {start // 2: lanes[1]}, "other"),
                ("chip0.bin", ["--interleave", "2", "--with", "chip1.bin"], {0: data}, "bus"),
                ("plain.hex", ["--swap-bytes", "4"], {start: swapped}, "words"),
                ("plain.hex", ["--unit-in", "2"], {start * 2: data}, "in"),
                ("plain.hex", ["--unit-out", "2"], None, "out"),
                ("holes.hex", ["--fill", "0xEE", "--fill-gaps", "2"],
                 {start + 1: row, start + 20: data[:1]}, "short"),
                ("holes.hex", ["--fill", "0xEE", "--align", "4"],
                 {start: b"\xEE" + row + b"\xEE" * 12 + data[:1] + b"\xEE" * 3}, "whole"),
                ("holes.hex", ["--fill", "0xEE", "--fill-gaps", "2", "--align", "4"],
                 {start: b"\xEE" + row, start + 20: data[:1] + b"\xEE" * 3}, "ends")):
            tessaron("convert", source, "arranged.hex", *options)
            if at is None:
                # Sixteen bytes are eight words.
                addresses = re.findall("(?m)^:10(....)00", pathlib.Path("arranged.hex").read_text())
                self.assertEqual(addresses, ["0100", "0108"])
                tessaron("convert", "arranged.hex", "unit-back.hex", "--unit-in", "2")
                tessaron("diff", "unit-back.hex", source)
            else:
                wanted = "want-%s.hex" % wanted
                write(wanted, at)
                tessaron("diff", "arranged.hex", wanted)
            direct = pathlib.Path("arranged.hex").read_bytes()
            script = tessaron("convert", source, "arranged.hex", *options, "--print-script")
            pathlib.Path("arranged.tsn").write_text(script)
            pathlib.Path("arranged.hex").unlink()
            tessaron("run", "arranged.tsn")
            self.assertEqual(pathlib.Path("arranged.hex").read_bytes(), direct, options)

    def test_formats(self):
        """What a file is, by its name, its contents and --from."""
        def format_of(*arguments, code=0):
            return re.search(": (.*?), ", tessaron("info", *arguments, code=code))[1]

        write("sound.hex", {0x100: b"image"})
        records = pathlib.Path("sound.hex").read_bytes()
        binary = b"S\1\2\3"
        for name in ("s.bin", "s"):
            pathlib.Path(name).write_bytes(binary)
            self.assertEqual(format_of(name), "raw bytes")
            tessaron("convert", name, "s.s19")
            self.assertEqual(tessaron("diff", name, "s.s19"), "")
        pathlib.Path("part").write_bytes(b"S123456789")
        self.assertEqual(format_of("part", code=1), "S-records")
        self.assertEqual(format_of("part", "--from", "RawBinary"), "raw bytes")
        self.assertIn("[record-", complaint("convert", "part", "part.hex"))
        tessaron("convert", "part", "part.hex", "--from=raw bytes")
        self.assertEqual(tessaron("diff", "part", "part.hex", "--from", "RawBinary",
                                  "--from", "IntelHex"), "")
        tessaron("diff", "part", "part.hex", "--from", "RawBinary", code=1)
        self.assertIn("10 bytes of data", tessaron("map", "part", "--from", "rawbinary"))
        # A name and the beginning of its file that disagree.
        pathlib.Path("odd.bin").write_bytes(records)
        self.assertEqual(format_of("odd.bin"), "Intel HEX")
        self.assertIn("--from RawBinary or --from IntelHex",
                      complaint("convert", "odd.bin", "odd.s37"))
        self.assertFalse(pathlib.Path("odd.s37").exists())
        for given, wanted in (("IntelHex", b"image"), ("RawBinary", records)):
            command = ("convert", "odd.bin", "want.raw", "--from", given)
            tessaron(*command)
            self.assertEqual(pathlib.Path("want.raw").read_bytes(), wanted)
            pathlib.Path("want.raw").unlink()
            tessaron("run", "-", standard_input=tessaron(*command, "--print-script"))
            self.assertEqual(pathlib.Path("want.raw").read_bytes(), wanted)
        self.assertIn("no script can say", complaint("convert", "s.bin", "x.raw", "--from",
                                                     "IntelHex", "--print-script"))
        # Text has many contents.
        shutil.copy("sound.hex", "text.txt")
        tessaron("convert", "text.txt", "text.bin")
        self.assertEqual(pathlib.Path("text.bin").read_bytes(), b"image")
        pathlib.Path("cut.txt").write_text("1000\n01 02\nq\n")
        self.assertIn("TI-TXT: line 1", complaint("convert", "cut.txt", "cut.bin"))
        pathlib.Path("app.mif").write_text("DEPTH = 4;\n")
        for command in (("info", "app.mif"), ("convert", "app.mif", "app.bin")):
            self.assertIn("a memory initialization file (MIF)",
                          complaint(*command) + tessaron(*command, code=1))
        tessaron("info", "sound.hex", "--from", "hex", code=2)
        tessaron("info", "s", "s", "s", "--from", "IntelHex", "--from", "IntelHex", code=2)
        # An output is of the format in which it is written, whatever its bytes look like.
        pathlib.Path("keep.tsn").write_text(
            "NEW_BUFFER @A FROM_FILE_BINARY sound.hex\n"
            "WRITE_FILE keep.bin WITH_BUFFERS {@A} -setFormat=RawBinary\n"
            "NEW_BUFFER @B FROM_FILE s.bin\n"
            "WRITE_FILE s.raw WITH_BUFFERS {@B} -setFormat=RawBinary\n")
        tessaron("run", "keep.tsn")
        self.assertEqual(pathlib.Path("keep.bin").read_bytes(), records)
        self.assertEqual(pathlib.Path("s.raw").read_bytes(), binary)
        pathlib.Path("keep.bin").write_bytes(records.replace(b"1", b"2"))
        self.assertIn("they differ at the offsets",
                      complaint("check", "keep.tsn", "--against-disk"))

    def test_printed_scripts(self):
        """The script of each pair of formats, with and without options, writes the same bytes."""
        write("in.hex", {FLASH: b"first" * 9, FLASH + 0x100: b"second"})
        write("in.s37", {FLASH: b"first" * 9, FLASH + 0x100: b"second"})
        srec_cat("in.hex", "-intel", "-o", "in.txt", "-ti_txt")
        pathlib.Path("in.bin").write_bytes(bytes(range(200)))
        tessaron("convert", "in.hex", "in.uf2", "--format", "Uf2_0xE48BFF56")
        elf = pathlib.Path(__file__).resolve().parents[1] / "data/elf/arm.elf"
        pathlib.Path("in.elf").write_bytes(elf.read_bytes())
        tessaron("convert", "in.hex", "in.vmem", "--format", "Vmem_4")
        tessaron("convert", "in.hex", "in.dfu")
        outputs = [["out" + ending] for ending in (".hex", ".s19", ".bin", ".txt", ".dfu")]
        outputs += [["out.x", "--format", name] for name in
                    ("IntelHexSegment", "MotorolaS_24", "Uf2_0xE48BFF56", "Vmem_4", "CArray_8")]
        starts = {"in.bin": 0, "in.elf": 0x8000}
        for name in ("in.hex", "in.s37", "in.txt", "in.bin", "in.uf2", "in.elf",
                     "in.vmem", "in.dfu"):
            crop = "--crop=%d,20" % (starts.get(name, FLASH) + 4)
            # Segments and the records of 24 bits have lower addresses.
            low = "--offset=%d" % (0x10000 - starts.get(name, FLASH))
            for (path, *choice) in outputs:
                for options in ([low], [low, crop, "--fill=1,2"]):
                    command = ["convert", name, path, *choice, *options]
                    tessaron(*command)
                    converted = pathlib.Path(path).read_bytes()
                    pathlib.Path(path).unlink()
                    tessaron("run", "-", standard_input=tessaron(*command, "--print-script"))
                    self.assertEqual(pathlib.Path(path).read_bytes(), converted, command)

    def test_names(self):
        """Names are data: none runs or changes anything, and what is printed means the same."""
        write("plain.hex", {FLASH: b"image" * 9})
        plain = pathlib.Path("plain.hex").read_bytes()
        tessaron("convert", "plain.hex", "want.s37")
        want = pathlib.Path("want.s37").read_bytes()
        # As text of a script, it would set a variable whose value calls a program.
        attack = b"a SUBSTITUTE WRITE_FILE (.) WITH $1 CALL_APP touch WITH_ARGUMENTS ran WRITE_FILE"
        names = [b"a b", b"caf\xC3\xA9", b"$1 $$", b"(1+1)", b"[x]", b"@Image", b"#1;,=",
                 b"a WITH b", b"NEW_BUFFER", b"sub//in", b"sub///in x", attack,
                 b"in SUBSTITUTE a WITH b", b"{a}", b"a'b", b" a"]
        if not IS_WINDOWS:
            names += [b"caf\xE9", b"a\nb", b"a\rb", b"a\r\nb", b"a\x1Ab", b"a\\b", b'a"b', b"<x>",
                      b"a\nCALL_APP touch WITH_ARGUMENTS ran\nb", b"a\n}\nCALL_APP touch",
                      b"\ta", attack + b"\t", b"a\x7F\x01"]

        def run(*arguments, text=b""):
            done = subprocess.run([PROGRAM, *arguments], capture_output=True, check=False,
                                  input=text)
            return done.returncode, done.stdout

        for folder in ("sub", "out", "out/sub"):
            os.mkdir(folder)
        for name in names:
            target = b"out/" + name
            with open(name, "wb") as file:
                file.write(plain)
            command = [b"convert", name, target, b"--format", b"MotorolaS_32"]
            code, script = run(*command, b"--print-script")
            has_words = name.strip() == name and not set(b"{}\"'\x1A") & set(name)
            self.assertEqual((code, script != b""), (not has_words, has_words), name)
            for arguments, text in [(command, b""), ([b"run", b"-"], script)][:1 + has_words]:
                self.assertEqual(run(*arguments, text=text)[0], 0, name)
                with open(target, "rb") as file:
                    self.assertEqual(file.read(), want, name)
                os.remove(target)
        self.assertFalse(os.path.exists("ran"))
        for path in ("", "-"):
            tessaron("convert", path, "out.s37", code=2)
            tessaron("convert", "a.hex", path, "--format", "RawBinary", code=2)
        # A file may be converted in its place.
        tessaron("convert", "plain.hex", "./plain.hex", "--format", "MotorolaS_32")
        self.assertEqual(pathlib.Path("plain.hex").read_bytes(), want)


if __name__ == "__main__":
    with tempfile.TemporaryDirectory() as folder:
        os.chdir(folder)
        unittest.main(verbosity=1, exit=False).result.wasSuccessful() or sys.exit(1)
        os.chdir("/")
