#!/usr/bin/env python3
"""Sees to it that the dictionary of the fuzz targets holds every keyword of the grammar."""
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent


def keywords():
    """What the sources of the parser compare a script with."""
    sources = "".join(path.read_text() for path in ROOT.glob("parser/**/*.?pp"))
    return set(re.findall(r'str_p\("([^"]+)"\)', sources)) | set(
        re.findall(r'\{"(\w+)", \d+, "Set', sources))


def main():
    words = set(re.findall(r'^"(.*)"$', (ROOT / "fuzz/tessaron.dict").read_text(), re.MULTILINE))
    missing = sorted(keywords() - words)
    # Eleven statements, sixteen CRCs and nineteen hashes at the least: a search that finds fewer
    # has lost sight of the sources.
    if missing or len(keywords()) < 46:
        sys.exit("fuzz/tessaron.dict lacks %s" % ", ".join(missing))


if __name__ == "__main__":
    main()
