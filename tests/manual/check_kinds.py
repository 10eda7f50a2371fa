#!/usr/bin/env python3
"""Compares the kinds of diagnostics that tessaron has with those of the manual and the man page.

    check_kinds.py LIST_KINDS MANUAL MAN_PAGE

LIST_KINDS prints a line for each kind: its name and what it counts as. Chapter 15 of the manual has
a table of the same lines and a section for each kind, the man page lists their names, all in the
order of the program."""
import pathlib
import re
import subprocess
import sys

SECTION = re.compile(r"15\.\d+ \[(\S+)\]$", re.M)
LISTED = re.compile(r"^\.BR ([a-z-]+) [,.]$", re.M)
ROW = re.compile(r"^    ([a-z-]+) +((?:always )?an? (?:error|warning))$", re.M)


def main():
    program, *texts = sys.argv[1:]
    manual, page = (pathlib.Path(text).read_text() for text in texts)
    output = subprocess.run([program], stdout=subprocess.PIPE, check=True, text=True).stdout
    kinds = [tuple(line.split(" ", 1)) for line in output.splitlines()]
    chapter = manual[manual.rindex("\n15. tessaron\n"):]
    diagnostics = page[page.index(".SH DIAGNOSTICS"):page.index(".SH EXIT")].replace("\\-", "-")
    names = [name for name, _ in kinds]
    faults = []
    for what, has, shows in (("section", names, SECTION.findall(chapter)),
                             ("row of the table", kinds, ROW.findall(chapter)),
                             ("word of the man page", names, LISTED.findall(diagnostics))):
        faults += ["no %s: %s" % (what, kind) for kind in has if kind not in shows]
        faults += ["%s for no kind: %s" % (what, kind) for kind in shows if kind not in has]
        if not faults and has != shows:
            faults.append("each kind has one %s, in the order of the program" % what)
    if not kinds:
        faults.append("the program has no kinds")
    print("\n".join(faults) or "%d kinds" % len(kinds))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
