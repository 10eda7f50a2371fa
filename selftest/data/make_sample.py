#!/usr/bin/env python3
"""Prints sample_input.hex: a firmware image for a Cortex-M part that never was, always the same.

0x08000000  vector table: initial stack, reset, 126 handlers
0x08000200  functions, each with its literal pool
0x0800A200  CRC table, sine table, baud rates, texts
0x0800DA28  table of drivers: entry point and RAM block, up to 0x0800DB27
with a start record for 0x08000200.
"""
import math
import struct

BASE = 0x08000000
RESET = BASE + 0x200
CONSTANTS = 0xA200
DRIVERS = 0xDA28
LENGTH = 0xDB28


def numbers(seed):
    """The generator of Numerical Recipes, without its weak low bits."""
    while True:
        seed = (seed * 1664525 + 1013904223) & 0xFFFFFFFF
        yield seed >> 8


def vectors(draw):
    words = [0x20005000, RESET | 1]
    words += [BASE + 0x280 + 2 * (next(draw) % 0x4000) | 1 for _ in range(126)]
    return struct.pack("<128I", *words)


def function(draw):
    """push, a body of Thumb instructions, pop, and the addresses that the body loads."""
    opcodes = [0x4600, 0x6800, 0x6000, 0x2000, 0x3000, 0x2800, 0x4800, 0xD000, 0x1C00, 0x7800]
    code = [0xB510]
    for _ in range(6 + next(draw) % 40):
        pick = next(draw)
        if pick % 11 == 10:  # a call takes two halfwords
            code += [0xF000 | pick >> 4 & 0x7F, 0xF800 | pick >> 11 & 0x7FF]
        else:
            code.append(opcodes[pick % 11] | pick >> 4 & 0xFF)
    code.append(0xBD10)
    code += [0xBF00] * (len(code) % 2)
    pool = [next(draw) % 3 * 0x10000000 + 0x20000000 + next(draw) % 0x1400 * 4
            for _ in range(next(draw) % 5)]
    return struct.pack("<%dH" % len(code), *code) + struct.pack("<%dI" % len(pool), *pool)


def crc_table():
    table = []
    for n in range(256):
        for _ in range(8):
            n = n >> 1 ^ (0xEDB88320 if n & 1 else 0)
        table.append(n)
    return struct.pack("<256I", *table)


def sine_table():
    return struct.pack("<1024h", *(round(32767 * math.sin(math.pi * n / 512)) for n in range(1024)))


def baud_rates():
    rates = (1200, 2400, 4800, 9600, 19200, 38400, 57600, 115200, 230400, 460800)
    return b"".join(struct.pack("<IHH", rate, 72000000 // rate >> 4, 72000000 // rate & 15)
                    for rate in rates)


def texts():
    parts = ("pump", "valve", "heater", "fan", "door", "lamp", "probe", "relay")
    faults = ("no answer within %d ms", "supply below %d mV", "over current, limit %d mA",
              "value %d out of range", "restart %d times, given up", "checksum of block %d is wrong")
    lines = ["self-check of sample firmware 2.7", "ready", "stopped by operator", "%s: %s\r\n"]
    lines += ["%s %d: %s" % (part, n, faults[(n * 5 + len(part)) % 6] % (n * 37 + 12))
              for n in range(1, 40) for part in parts]
    return b"".join(line.encode() + b"\0" for line in lines)


def drivers(draw):
    words = []
    for n in range(31):
        words += [BASE + 0x280 + 2 * (next(draw) % 0x4000) | 1, 0x20000100 + n * 0x74]
    return struct.pack("<64I", *words, 0x080058E1, 0x2000103A)


def image():
    draw = numbers(1)
    data = vectors(draw)
    while len(data) < CONSTANTS - 120:
        data += function(draw)
    data = data.ljust(CONSTANTS, b"\xFF") + crc_table() + sine_table() + baud_rates() + texts()
    data = data[:DRIVERS].ljust(DRIVERS, b"\xFF") + drivers(draw)
    assert len(data) == LENGTH
    return data


def record(kind, address, data):
    body = bytes([len(data), address >> 8, address & 0xFF, kind]) + data
    return ":%s%02X" % (body.hex().upper(), -sum(body) & 0xFF)


def main():
    data = image()
    print(record(4, 0, struct.pack(">H", BASE >> 16)))
    # The last eight bytes are in two short records, as a linker's last sections often do.
    borders = [*range(0, LENGTH - 8, 16), LENGTH - 8, LENGTH - 4, LENGTH]
    for at, end in zip(borders, borders[1:]):
        print(record(0, at, data[at:end]))
    print(record(5, 0, struct.pack(">I", RESET)))
    print(record(1, 0, b""))


if __name__ == "__main__":
    main()
