#!/usr/bin/env python3
"""Checks that the dictionary of the fuzz targets has every keyword of the grammar.

    dictionary.py LIST_KEYWORDS DICTIONARY"""
import pathlib
import re
import subprocess
import sys


def main():
    keywords = set(subprocess.run([sys.argv[1]], stdout=subprocess.PIPE, check=True,
                                  text=True).stdout.split())
    entries = set(re.findall(r'^"(.*)"$', pathlib.Path(sys.argv[2]).read_text(), re.MULTILINE))
    missing = sorted(keywords - entries)
    if missing or len(keywords) < 70:
        sys.exit("%d keywords; the dictionary lacks %s" % (len(keywords), ", ".join(missing)))


if __name__ == "__main__":
    main()
