#!/usr/bin/env python3
"""Checks that the dictionary of the fuzz targets and the manual have every keyword of the grammar.

    dictionary.py LIST_KEYWORDS DICTIONARY MANUAL"""
import pathlib
import re
import subprocess
import sys


def main():
    keywords = set(subprocess.run([sys.argv[1]], stdout=subprocess.PIPE, check=True,
                                  text=True).stdout.split())
    dictionary, manual = (pathlib.Path(path).read_text() for path in sys.argv[2:4])
    entries = set(re.findall(r'^"(.*)"$', dictionary, re.MULTILINE))
    # What a keyword begins, such as Uf2_RP2040, documents it as well.
    missing = sorted(word for word in keywords if word not in entries or not re.search(
        r"(?<![\w-])%s(?![A-Za-z0-9])" % re.escape(word), manual))
    if missing or len(keywords) < 70:
        sys.exit("%d keywords; the dictionary or the manual lacks %s" % (
            len(keywords), ", ".join(missing)))


if __name__ == "__main__":
    main()
