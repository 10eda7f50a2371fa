#!/usr/bin/env python3
"""Checks that the dictionary of the fuzz targets holds every keyword of the grammar.

    dictionary.py LIST_KEYWORDS DICTIONARY"""
import pathlib
import re
import subprocess
import sys


def main():
    keywords = set(subprocess.run([sys.argv[1]], stdout=subprocess.PIPE, check=True,
                                  text=True).stdout.split())
    text = pathlib.Path(sys.argv[2]).read_text()
    missing = sorted(keywords - set(re.findall(r'^"(.*)"$', text, re.MULTILINE)))
    if missing or len(keywords) < 70:
        sys.exit("%d keywords; %s lacks %s" % (len(keywords), sys.argv[2], ", ".join(missing)))


if __name__ == "__main__":
    main()
