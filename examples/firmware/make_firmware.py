#!/usr/bin/env python3
"""Prints firmware.hex, a plausible Cortex-M firmware of about 50 KiB. The output never changes.

0x08000000  vector table: initial stack, reset, 96 handlers
0x08000188  code-like words
0x08009000  a CRC table, a sine table, texts
0x0800B800  a gap
0x0800C000  configuration block
The start record holds 0x08000189.
"""
import math
import struct
import sys

BASE = 0x08000000


def records(address, data):
    yield record(0, 4, struct.pack(">H", address >> 16))
    for at in range(0, len(data), 16):
        yield record((address + at) & 0xFFFF, 0, data[at:at + 16])


def record(address, kind, data):
    body = bytes([len(data), address >> 8, address & 0xFF, kind]) + data
    return ":%s%02X" % (body.hex().upper(), -sum(body) & 0xFF)


def random_words(seed):
    while True:
        seed = (seed * 1664525 + 1013904223) & 0xFFFFFFFF
        yield seed >> 8


def vectors():
    words = [0x20005000, BASE + 0x189]
    words += [BASE + 0x189 + 24 * (n % 61) for n in range(96)]
    return struct.pack("<98I", *words)


def code(length):
    # Thumb instructions as compilers emit them, with operands from a generator with a fixed seed.
    opcodes = [0x4600, 0x6800, 0x2000, 0xF000, 0xB500, 0xBD00, 0x1C00, 0xD000, 0xE000, 0x4770]
    operands = random_words(7)
    data = bytearray()
    while len(data) < length:
        word = next(operands)
        data += struct.pack("<H", opcodes[word % 10] | (word >> 4) & 0xFF)
    return bytes(data[:length])


def crc_table():
    table = []
    for n in range(256):
        for _ in range(8):
            n = n >> 1 ^ (0xEDB88320 if n & 1 else 0)
        table.append(n)
    return struct.pack("<256I", *table)


def sine_table():
    return struct.pack("<2048h", *(round(32767 * math.sin(math.pi * n / 1024)) for n in range(2048)))


def texts():
    lines = ["sensor %03d: value out of range, see log entry %d" % (n, n * n) for n in range(90)]
    return b"".join(line.encode() + b"\0" for line in lines)


def main():
    program = vectors() + code(0x9000 - 0x188) + crc_table() + sine_table() + texts()
    assert len(program) < 0xB800
    program += b"\xFF" * (-len(program) % 16)
    configuration = bytes(n * 37 & 0xFF for n in range(600))
    lines = list(records(BASE, program)) + list(records(BASE + 0xC000, configuration))
    lines += [record(0, 5, struct.pack(">I", BASE + 0x189)), record(0, 1, b"")]
    sys.stdout.write("\n".join(lines) + "\n")


if __name__ == "__main__":
    main()
