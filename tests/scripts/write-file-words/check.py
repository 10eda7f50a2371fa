"""Checks the files by the published layouts of MIF, COE and UF2, and by srec_cat, xxd and a
C compiler where they are installed."""
import re
import shutil
import struct
import subprocess
import sys

START, LENGTH = 0x1013, 0x30D
WRITTEN = {}
for start, length in ((0x1013, 0x21), (0x1201, 0x110)):
    for i in range(length):
        WRITTEN[start + i] = i % 7 + 1
A = {**{START + i: 0xEE for i in range(LENGTH)}, **WRITTEN}
B = {0x20 + i: 0xB0 + i for i in range(5)}
P = dict(enumerate(b"A~\x7f \x1f\xffB"))


def fail(what):
    sys.exit("%s is not as expected" % what)


def words(data, width, order):
    """The words that have any of the bytes, by their numbers."""
    return {number: int.from_bytes(bytes(data.get(number * width + i, 0) for i in range(width)),
                                   order) for number in sorted({at // width for at in data})}


def within(data, image, width):
    """The data, filled up to whole words with what the image has there."""
    return {at & -width | i: image.get(at & -width | i, 0) for at in data for i in range(width)}


def mif(name, data, width, order):
    text = open(name).read()
    head, body = re.fullmatch(r"(.*)CONTENT BEGIN\n(.*)END;\n", text, re.S).groups()
    settings = dict(re.findall(r"(\w+)=(\w+);", head))
    found = {}
    for start, line in re.findall(r"([0-9A-F]+) : ([0-9A-F ]+);\n", body):
        for i, word in enumerate(line.split()):
            if len(word) != 2 * width:
                fail(name)
            found[int(start, 16) + i] = int(word, 16)
    wanted = words(data, width, order)
    if found != wanted or settings != {"WIDTH": str(8 * width), "DEPTH": str(max(wanted) + 1),
                                       "ADDRESS_RADIX": "HEX", "DATA_RADIX": "HEX"}:
        fail(name)
    if shutil.which("srec_cat") and width <= 4:
        srec = subprocess.run(["srec_cat", name, "-mif", "-o", "-", "-motorola", "-address-length=4"],
                              check=True, capture_output=True, text=True).stdout
        read = {}
        for line in srec.splitlines():
            if line.startswith("S3"):
                for i, byte in enumerate(bytes.fromhex(line[12:-2])):
                    read[int(line[4:12], 16) + i] = byte
        # srec_cat reads words with the byte of the lowest address least significant, and writes them
        # the other way round.
        if words(read, width, "little") != wanted:
            fail("%s by srec_cat" % name)


def coe(name, data, width, order):
    size = -len(data) % width
    text = "".join(format(int.from_bytes((data + bytes(size))[i:i + width], order),
                          "0%dX" % (2 * width)) + ",\n" for i in range(0, len(data), width))
    if open(name).read() != ("memory_initialization_radix=16;\nmemory_initialization_vector=\n" +
                             text[:-2] + ";\n"):
        fail(name)


def xxd(name, runs, columns):
    """xxd writes the same lines and reads them back."""
    if not shutil.which("xxd"):
        return
    wanted = b""
    for start, data in runs:
        wanted += subprocess.run(["xxd", "-o", str(start), "-c", str(columns)], input=data, check=True,
                                 capture_output=True).stdout
    # CmdTessaron writes text as the system does.
    if open(name, "rb").read().replace(b"\r\n", b"\n") != wanted:
        fail(name)
    lowest = runs[0][0]
    back = subprocess.run(["xxd", "-r", "-c", str(columns), "-s", str(-lowest), name], check=True,
                          capture_output=True).stdout
    if back[:len(runs[0][1])] != runs[0][1]:
        fail("%s by xxd -r" % name)


def uf2(name, parts):
    """https://github.com/microsoft/uf2: the blocks of each family are numbered for themselves, so
    that files for several families may be joined."""
    wanted = b""
    for family, data, padding in parts:
        blocks = sorted({address & ~0xFF for address in data})
        for number, address in enumerate(blocks):
            payload = bytes(data.get(address + i, padding) for i in range(256))
            wanted += struct.pack("<8I", 0x0A324655, 0x9E5D5157, 0x2000, address, 256, number,
                                  len(blocks), family)
            wanted += payload + bytes(220) + struct.pack("<I", 0x0AB16F30)
    if open(name, "rb").read() != wanted:
        fail(name)


def bytes_of(data):
    return bytes(data[at] for at in sorted(data))


mif("1.mif", WRITTEN, 1, "little")
mif("2.mif", A, 2, "little")
mif("4.mif", B, 4, "big")
mif("8.mif", {**within(WRITTEN, A, 8), **B}, 8, "little")
coe("1.coe", bytes_of(B) + bytes_of(P), 1, "big")
coe("4.coe", bytes_of(B) + bytes_of(P), 4, "big")
coe("8.coe", bytes_of(A), 8, "little")
xxd("all.xxd", [(START, bytes_of(A))], 16)
xxd("odd.xxd", [(START, bytes_of(A))], 7)
xxd("long.xxd", [(START, bytes_of(A))], 256)
text = open("gaps.xxd").read()
if not text.startswith("00001013: 0102 0304 05  .....\n") or not text.endswith(
        "00000000: 417e 7f20 1f  A~. .\n00000005: ff42          .B\n"):
    fail("gaps.xxd")
uf2("two.uf2", [(0xE48BFF56, {**A, 0x1320: 7, 0x1321: 7}, 0xEE), (0xADA52840, {0x1100: 9}, 0)])
uf2("one.uf2", [(0x7D7A66EF, {0x1100: 9, 0x1320: 7, 0x1321: 7}, 0)])
for name, header, end in (("head.s19", b"Boot loader, version 1.2", "S9030000FC"),
                          ("bare.s19", b"x", "S9031234B6")):
    lines = open(name).read().splitlines()
    record = bytes([len(header) + 3, 0, 0]) + header
    if lines[0] != "S0" + (record + bytes([~sum(record) & 0xFF])).hex().upper() or lines[-1] != end:
        fail(name)
if open("yes.bin", "rb").read() != bytes_of(P):
    fail("yes.bin")
if shutil.which("cc"):
    with open("main.c", "w") as file:
        file.write("""#include <stdio.h>
#include "a16.h"
#include "a16.h"
#include "a32.h"
#include "a32.h"
#include "a64.h"
#include "a64.h"
#include "a8.h"
#include "a8.h"
#if !defined INCLUDED_A16 || !defined INCLUDED_BIG || !defined P_H || !defined PLAIN_H
#error "a guard is missing"
#endif
#define SHOW(array) \\
    for (unsigned i = 0; i < sizeof array / sizeof *array; ++i) \\
        printf("%0*llx ", (int)(2 * sizeof *array), (unsigned long long)array[i])
int main(void) {
    printf("%x %u %x %u ", a16_address, a16_length, a162_address, a162_length);
    SHOW(a16); SHOW(a162); SHOW(Big); SHOW(image); SHOW(plain);
    return 0;
}
""")
    subprocess.run(["cc", "-std=c99", "-Wall", "-Werror", "-o", "main", "main.c"], check=True)
    shown = subprocess.run(["./main"], check=True, capture_output=True, text=True).stdout.split()
    wanted = ["1013", str(LENGTH), "0", "7"]
    for data, width, order in ((A, 2, "little"), (P, 2, "little"), (B, 4, "big"), (P, 8, "little"),
                               (P, 1, "little")):
        text = bytes_of(data)
        text += bytes(-len(text) % width)
        wanted += [text[i:i + width].hex() if order == "big" else text[i:i + width][::-1].hex()
                   for i in range(0, len(text), width)]
    if shown != wanted:
        fail("one of the headers of C")
