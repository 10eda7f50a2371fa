#!/usr/bin/env python3
"""Compares the tables of checksums and hashes in the book with the program and, where possible, with an
independent source: the parameters of a CRC with the catalogue's model, the catalogue with what is
published, the digests with Python's hashlib.
"""
import hashlib
import itertools
import pathlib
import re
import subprocess
import sys
import tempfile

import book

SUMS = ("Crc", "ByteSum", "WordSum", "Adler", "Fletcher")
CATALOGUE = pathlib.Path(__file__).resolve().parents[2] / "util/crc/catalogue.tsv"
HASHLIB = {"Md5": "md5", "Sha1": "sha1", "Sha2": "sha", "Sha3": "sha3_"}


def types_of(page, prefixes, columns):
    """The rows of the types with these prefixes, by their names, without those of other tables."""
    rows = book.rows_of(page)
    return {row[0]: row[1:] for row in rows if row[0].startswith(prefixes) and len(row) == columns}


def reflected(value, width):
    return int(bin(value)[2:].zfill(width)[::-1], 2)


def crc_of(data, width, poly, init, refin, refout, xorout):
    """The model of R. Williams, "A painless guide to CRC error detection algorithms", bit by bit."""
    register = init
    for byte in data:
        register ^= (reflected(byte, 8) if refin else byte) << (width - 8)
        for _ in range(8):
            top = register >> (width - 1)
            register = (register << 1) & ((1 << width) - 1)
            if top:
                register ^= poly
    return (reflected(register, width) if refout else register) ^ xorout


def run(program, statements):
    with tempfile.NamedTemporaryFile("w", suffix=".tsn") as script:
        script.write("\n".join(statements))
        script.flush()
        return subprocess.run([program, script.name], capture_output=True, text=True,
                              check=True).stdout


def values(program, kind, text, names):
    """The value of `text` for each type of NEW_CRC or NEW_HASH, by the program."""
    script = ["NEW_BUFFER @Text FROM_VALUES { %s }" % ",".join(str(ord(c)) for c in text)]
    source = "FROM_BUFFER @Text" if text else "FROM_BUFFERS { }"
    for name in names:
        script.append("NEW_%s %s %s -setType=%s" % (kind, name, source, name))
        script.append("PRINT_%s %s" % (kind, name))
    printed = run(program, script)
    return {name: bytes.fromhex(digits) for name, digits in
            re.findall(r"^(?:Crc|Hash) : (\w+)\n  \w+Value: (?:0x)?(\w*)$", printed, re.M)}


def takes_words(name):
    return name.endswith("_BE") or name.startswith("WordSum")


def check_crcs(program, page):
    rows = types_of(page, "Crc", 9)
    sums = types_of(page, SUMS, 5)
    names = list(rows) + list(sums)
    text = values(program, "CRC", "123456789", names)
    even = values(program, "CRC", "12345678", names)
    empty = values(program, "CRC", "", names)
    for name in names:
        row = rows.get(name, sums.get(name))
        width, checked = int(row[0]), even if takes_words(name) else text
        for column, computed in ((row[-2], checked[name]), (row[-1], empty[name])):
            if "%0*X" % (width // 4, int.from_bytes(computed, "little")) != column:
                yield "%s: the program gives %s, not %s" % (name, computed.hex(), column)
    for name, row in rows.items():
        width, poly, init, xorout = int(row[0]), *(int(row[i], 16) for i in (1, 2, 5))
        model = crc_of(b"123456789", width, poly, init, row[3] == "true", row[4] == "true", xorout)
        if "%0*X" % (width // 4, model) != row[6]:
            yield "%s: the parameters give %X, not %s" % (name, model, row[6])


def check_catalogue(program, page):
    """The page has what is published, and the program finds each CRC by its name."""
    rows = [line.split("\t") for line in CATALOGUE.read_text().splitlines() if line[0] != "#"]
    checks = {row[0]: int(row[7], 16) for row in rows}
    shown = [row for row in book.rows_of(page) if row[0].startswith("CRC-")]
    for row, cells in itertools.zip_longest(rows, shown):
        numbers = [int(cell, 16) for cell in cells[2:8] if cell not in ("true", "false")]
        flags = cells[4:6]
        published = [int(cell, 16) for cell in (row[2], row[3], row[6], row[7])], row[4:6]
        if cells[:2] + cells[8:] != row[:2] + (row[8:] or [""]) or (numbers, flags) != published:
            yield "the catalogue has %s, the page %s" % (row, cells)
    script = ["NEW_BUFFER @Text FROM_VALUES { %s }" % ",".join(str(ord(c)) for c in "123456789")]
    for number, name in enumerate(checks):
        script.append("NEW_CRC @%d FROM_BUFFER @Text -setType=Catalogue{%s}" % (number, name))
        script.append("PRINT_CRC @%d" % number)
    printed = re.findall(r"CrcValue: 0x(\w+)", run(program, script))
    for (name, check), digits in itertools.zip_longest(checks.items(), printed):
        if int.from_bytes(bytes.fromhex(digits), "little") != check:
            yield "%s: the program gives %s" % (name, digits)


def check_hashes(program, page):
    rows = types_of(page, "Hash_", 4)
    digests = values(program, "HASH", "abc", rows)
    for name, (size, beginning, _) in rows.items():
        digest = digests[name]
        if len(digest) != int(size) or digest[:8].hex().upper() != beginning:
            yield "%s: the program gives %s" % (name, digest.hex())
        family, _, bits = name[len("Hash_"):].partition("_")
        if family in HASHLIB and hashlib.new(HASHLIB[family] + bits, b"abc").digest() != digest:
            yield "%s: hashlib does not agree" % name


def check_types(list_keywords, pages):
    """Every type of NEW_CRC and NEW_HASH has a row; the types without a width are in a text."""
    output = subprocess.run([list_keywords], stdout=subprocess.PIPE, check=True, text=True).stdout
    types = set(re.findall(r"^(?:Crc\d|ByteSum|WordSum|Adler|Fletcher|Hash_)\S+$", output, re.MULTILINE))
    listed = {*types_of(pages / "index.md", SUMS, 9), *types_of(pages / "index.md", SUMS, 5),
              *types_of(pages / "hashes.md", "Hash_", 4)}
    yield from ("%s is a type or has a row, but not both" % name for name in sorted(types ^ listed))
    if len(types) < 30:
        yield "%d types were found" % len(types)


def main():
    program, list_keywords = sys.argv[1:3]
    pages = pathlib.Path(sys.argv[3]) / "checksums"
    faults = [*check_crcs(program, pages / "index.md"), *check_catalogue(program, pages / "catalogue.md"),
              *check_hashes(program, pages / "hashes.md"), *check_types(list_keywords, pages)]
    print("\n".join(faults) or "the tables agree")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
