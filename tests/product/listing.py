#!/usr/bin/env python3
"""Compares what tessaron help lists with published values: listing.py TESSARON LIST_KINDS CATALOGUE

The CRCs with CATALOGUE, util/crc/catalogue.tsv, the sizes of digests with hashlib, the kinds with
LIST_KINDS, the families with their published numbers, the statements and formats by using them."""
import hashlib
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

PROGRAM, LIST_KINDS, CATALOGUE = sys.argv[1:4]
del sys.argv[1:4]
# From utils/uf2families.json of the published format.
FAMILIES = {"RP2040": "0xE48BFF56", "STM32F4": "0x57755A57", "ESP32": "0x1C5F21B0",
            "SAMD51": "0x55114460", "NRF52840": "0xADA52840"}


def output(*command):
    return subprocess.run(command, stdout=subprocess.PIPE, text=True, check=True).stdout


def rows(topic):
    """The columns of each row, by the first of them."""
    lines = [line for line in output(PROGRAM, "help", topic).splitlines() if line[:2] == "  "]
    cells = [re.split(r"  +", line.strip()) for line in lines]
    return {first: rest for first, *rest in cells}


def hint(statement):
    with tempfile.NamedTemporaryFile("w", suffix=".tsn") as script:
        script.write(statement)
        script.flush()
        return subprocess.run([PROGRAM, "check", script.name], stderr=subprocess.PIPE, text=True,
                              check=False).stderr


class Listing(unittest.TestCase):
    def test_columns(self):
        """What is in one column begins at one place, below its head."""
        for topic in ("statements", "crcs", "hashes", "formats", "kinds"):
            text = output(PROGRAM, "help", topic)
            self.assertNotIn(" \n", text)
            for table in re.findall(r"(?:^  .*\n)+", text, re.MULTILINE):
                places = [{cell.start() for cell in re.finditer(r"(?<=  )\S", line)}
                          for line in table.splitlines()]
                self.assertEqual(set.union(*places), places[0], table)
                self.assertLessEqual(len(places[0]), 4, table)

    def test_crcs(self):
        listed = rows("crcs")
        published = [line.split("\t") for line in pathlib.Path(CATALOGUE).read_text().splitlines()
                     if line[0] != "#"]
        for name, width, *_, check in (row[:8] for row in published):
            self.assertEqual((int(listed[name][0]), int(listed[name][1], 16)),
                             (int(width), int(check, 16)), name)
        for name, *_, aliases in (row for row in published if len(row) > 8):
            self.assertEqual(listed[name][2], aliases)
        own = {name: row[2] for name, row in listed.items() if name.startswith("Crc")}
        self.assertEqual(len(own), 14)
        # A type of the language that says which CRC it is has its check value.
        same = [name for name, what in own.items() if what in listed]
        self.assertEqual(len(same), 5)
        for name in same:
            self.assertEqual(listed[name][:2], listed[own[name]][:2])

    def test_hashes(self):
        listed = rows("hashes")
        self.assertEqual(listed["Hash_Md6"], ["accepted, but nothing is computed"])
        self.assertEqual(listed["Hash_Md5"][1:], ["MD5, RFC 1321"])
        for name, function in (("Md5", "md5"), ("Sha1", "sha1"), ("Sha2_384", "sha384"),
                               ("Sha3_224", "sha3_224"), ("Sha3_512", "sha3_512")):
            self.assertEqual(int(listed["Hash_" + name][0]), hashlib.new(function).digest_size)
        self.assertEqual(len(listed), 20)

    def test_kinds(self):
        listed = {name: row[0] for name, row in rows("kinds").items() if name != "name"}
        kinds = dict(line.split("\t")[:2] for line in output(LIST_KINDS).splitlines())
        self.assertEqual(listed, {name: re.sub(r"^an? ", "", counts)
                                  for name, counts in kinds.items()})

    def test_statements(self):
        for keyword in rows("statements"):
            if keyword not in ("SUBSTITUTE", "CALCULATE", "INCLUDE", "PARAMETER"):
                self.assertIn("did you mean %s?" % keyword, hint(keyword[:-2] + keyword[-1] + " x"))

    def test_formats(self):
        listed = rows("formats")
        self.assertEqual(listed["IntelHexExtended[_N]"][1], ".hex .ihx .ihex")
        self.assertEqual(listed["FROM_UF2"], ["Uf2", "UF2", ".uf2"])
        for name, number in FAMILIES.items():
            self.assertEqual(listed[name], [number])


if __name__ == "__main__":
    unittest.main()
