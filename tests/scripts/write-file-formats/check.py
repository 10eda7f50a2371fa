"""Checks the files by the published layouts of UF2 and DfuSe, and by srec_cat, dfu-suffix and a C
compiler where they are installed."""
import shutil
import struct
import subprocess
import sys

START, LENGTH = 0x1013, 0x30D
WRITTEN = {}
for start, length in ((0x1013, 0x21), (0x1201, 0x110)):
    for i in range(length):
        WRITTEN[start + i] = i % 7 + 1
A_ALL = {**{START + i: 0xEE for i in range(LENGTH)}, **WRITTEN}
B = {0x103F: 0xB0, 0x1040: 0xB1, 0x1041: 0xB2}


def fail(what):
    sys.exit("%s is not as expected" % what)


def uf2(name, family, data, addresses):
    """https://github.com/microsoft/uf2: little-endian words, the data from byte 32 on."""
    blocks = sorted({address & ~0xFF for address in addresses})
    text = open(name, "rb").read()
    if len(text) != 512 * len(blocks):
        fail(name)
    for number, address in enumerate(blocks):
        block = text[512 * number:512 * number + 512]
        head = (0x0A324655, 0x9E5D5157, 0x2000, address, 256, number, len(blocks), family)
        # Outside of the image, its last filler goes on.
        payload = bytes(data.get(address + i, 0xEE) for i in range(256))
        if block != struct.pack("<8I", *head) + payload + bytes(220) + struct.pack(
                "<I", 0x0AB16F30):
            fail("block %d of %s" % (number, name))


def runs(data):
    """The runs of consecutive addresses with their bytes."""
    found = []
    for address in sorted(data):
        if found and found[-1][0] + len(found[-1][1]) == address:
            found[-1][1].append(data[address])
        else:
            found.append((address, bytearray([data[address]])))
    return found


def dfuse(name, vendor, product, elements):
    """UM0391: a prefix, one target, its elements, a suffix."""
    body = b"".join(struct.pack("<II", address, len(text)) + bytes(text)
                    for address, text in elements)
    target = b"Target" + bytes(1 + 4 + 255) + struct.pack("<II", len(body), len(elements)) + body
    wanted = b"DfuSe\x01" + struct.pack("<IB", 11 + len(target), 1) + target
    wanted += struct.pack("<HHHH", 0xFFFF, product, vendor, 0x011A) + b"UFD\x10"
    if open(name, "rb").read()[:-4] != wanted:
        fail(name)
    if shutil.which("dfu-suffix"):
        subprocess.run(["dfu-suffix", "-c", name], check=True, stdout=subprocess.DEVNULL)


def srec_cat(name, *options):
    """What srec_cat finds in a file."""
    text = subprocess.run(["srec_cat", name, *options, "-o", "-", "-motorola", "-address-length=4"],
                          check=True, capture_output=True, text=True).stdout
    data = {}
    for line in text.splitlines():
        if line.startswith("S3"):
            for i, byte in enumerate(bytes.fromhex(line[12:-2])):
                data[int(line[4:12], 16) + i] = byte
    return data


def readmemh(name, width):
    """IEEE Std 1364-2005, 17.2.9, for words of `width` bytes, the least significant one first;
    srec_cat has no words of more than four bytes."""
    data = {}
    for word in open(name).read().split():
        if word.startswith("@"):
            address = int(word[1:], 16) * width
            continue
        for byte in reversed(bytes.fromhex(word)):
            data[address] = byte
            address += 1
    return data


def padded(data, width):
    return {at & -width | i: data.get(at & -width | i, 0xEE if START <= (at & -width | i) <
                                      START + LENGTH else 0)
            for at in data for i in range(width)}


def swapped(data, width):
    return {address ^ (width - 1): byte for address, byte in data.items()}


uf2("all.uf2", 0xE48BFF56, {**A_ALL, **B}, {**A_ALL, **B})
uf2("gaps.uf2", 0xADA52840, {**A_ALL, **WRITTEN, **B}, {**WRITTEN, **B})
dfuse("all.dfu", 0x0483, 0xDF11, runs(A_ALL) + runs(B))
dfuse("gaps.dfu", 0xFFFF, 0xFFFF, runs(WRITTEN) + runs(B))
if readmemh("8.vmem", 8) != padded(WRITTEN, 8):
    fail("8.vmem")
if shutil.which("srec_cat"):
    for name, options, wanted in (
            ("all.txt", ["-ti-txt"], A_ALL),
            ("gaps.txt", ["-ti-txt"], {**WRITTEN, **B}),
            ("txt.srec", [], {**WRITTEN, **B}),
            ("dfu.srec", [], {**WRITTEN, **B}),
            ("v1.srec", [], WRITTEN),
            # The most significant byte is read to the lowest address.
            ("v8.srec", [], swapped(padded(WRITTEN, 8), 8)),
            ("uf2.srec", [], {at: {**A_ALL, **B}.get(at, 0xEE) for block in (0x1000, 0x1200, 0x1300)
                              for at in range(block, block + 256)}),
            # srec_cat takes the byte of the lowest address as the most significant one.
            ("1.vmem", ["-vmem"], WRITTEN),
            ("2.vmem", ["-vmem"], swapped(padded(WRITTEN, 2), 2)),
            ("4.vmem", ["-vmem"], swapped(padded(A_ALL, 4), 4))):
        if srec_cat(name, *options) != wanted:
            fail(name)
if shutil.which("cc"):
    with open("main.c", "w") as file:
        file.write("""#include <stdio.h>
#include "all.h"
int main(void) {
    printf("%x %x ", _fw_address, _fw2_address);
    for (unsigned i = 0; i < _fw_length; ++i) printf("%02x", _fw[i]);
    for (unsigned i = 0; i < sizeof _fw2; ++i) printf("%02x", _fw2[i]);
    return 0;
}
""")
    subprocess.run(["cc", "-Wall", "-Werror", "-o", "main", "main.c"], check=True)
    text = subprocess.run(["./main"], check=True, capture_output=True, text=True).stdout
    if text != "1013 103f " + bytes(A_ALL[at] for at in sorted(A_ALL)).hex() + "b0b1b2":
        fail("all.h")
