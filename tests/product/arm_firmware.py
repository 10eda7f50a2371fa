#!/usr/bin/env python3
"""Builds examples/arm-firmware with the program TESSARON and checks its outputs by binutils, zlib,
srec_cat and dfu-suffix:  arm_firmware.py TESSARON"""
import os
import pathlib
import shlex
import shutil
import struct
import subprocess
import sys
import tempfile
import zlib

EXAMPLE = pathlib.Path(__file__).resolve().parents[2] / "examples" / "arm-firmware"
VERSION = b"1.2.3"


def run(*command):
    return subprocess.run(command, check=True, capture_output=True).stdout


def check(what, found, wanted):
    if found != wanted:
        sys.exit("%s: %r, not %r" % (what, found, wanted))


def expected_image():
    """Start and bytes of the image, from what binutils find in the ELF file."""
    symbols = {}
    for line in run("arm-none-eabi-nm", "firmware.elf").decode().splitlines():
        address, _, name = line.split()
        symbols[name] = int(address, 16)
    run("arm-none-eabi-objcopy", "-O", "binary", "firmware.elf", "sections.bin")
    image = bytearray(pathlib.Path("sections.bin").read_bytes())
    start = symbols["vectors"]
    version, crc = symbols["versionText"] - start, symbols["firmwareCrc"] - start
    image[version:version + len(VERSION)] = VERSION
    image[crc:] = struct.pack("<I", zlib.crc32(image[:crc]))
    return start, bytes(image)


def check_elf(image):
    """The bytes of the image are in the file, and nothing else has changed."""
    run("arm-none-eabi-objcopy", "-O", "binary", "release.elf", "release.bin")
    check("release.elf", pathlib.Path("release.bin").read_bytes(), image)
    for options in ("-hlSs", "-wi"):
        shown = [run("arm-none-eabi-readelf", options, name) for name in
                ("release.elf", "firmware.elf")]
        check("readelf " + options, *shown)
    sizes = [pathlib.Path(name).stat().st_size for name in ("release.elf", "firmware.elf")]
    check("size of release.elf", *sizes)


def main():
    program = pathlib.Path(sys.argv[1]).resolve()
    with tempfile.TemporaryDirectory(prefix="tessaron-arm-") as work:
        shutil.copytree(EXAMPLE, work, dirs_exist_ok=True)
        os.chdir(work)
        run("make", "TESSARON=" + shlex.quote(str(program)))
        start, image = expected_image()
        run("srec_cat", "firmware.hex", "-intel", "-offset", "-%d" % start, "-o", "hex.bin",
            "-binary")
        check("firmware.hex", pathlib.Path("hex.bin").read_bytes(), image)
        uf2 = pathlib.Path("firmware.uf2").read_bytes()
        check("head of firmware.uf2", struct.unpack("<8I", uf2[:32]),
              (0x0A324655, 0x9E5D5157, 0x2000, start, 256, 0, 1, 0x5EE21072))
        check("data of firmware.uf2", uf2[32:32 + 256], image)
        dfu = pathlib.Path("firmware.dfu").read_bytes()
        check("firmware.dfu", dfu[11 + 274:-16], struct.pack("<II", start, len(image)) + image)
        run("dfu-suffix", "-c", "firmware.dfu")
        check_elf(image)


if __name__ == "__main__":
    main()
