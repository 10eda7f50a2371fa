#!/usr/bin/env python3
"""Compares the kinds of diagnostics that tessaron has with those of the manual, the man page and the
cases of tests/diagnostics.

    check_kinds.py LIST_KINDS MANUAL MAN_PAGE CASES

LIST_KINDS prints a line for each kind: its name and what it counts as. Chapter 15 of the manual has
a table of the same lines and a section for each kind, the man page lists their names, all in the
order of the program. Each kind is shown by a case, unless it needs a machine in trouble."""
import pathlib
import re
import subprocess
import sys

SECTION = re.compile(r"15\.\d+ \[(\S+)\]$", re.M)
LISTED = re.compile(r"^\.BR ([a-z-]+) [,.]$", re.M)
ROW = re.compile(r"^    ([a-z-]+) +((?:always )?an? (?:error|warning))$", re.M)
SHOWN = re.compile(r" \[([a-z-]+)\]$|^{\"severity\":\"[a-z]+\",\"name\":\"([a-z-]+)\"", re.M)
# tests/faults makes the machine's memory run out, its disks fill and its files change.
OF_A_MACHINE_IN_TROUBLE = {"short-read", "short-write", "out-of-memory"}


def shown_by(cases):
    """The kinds that the cases of a folder show."""
    texts = [path.read_text() for path in sorted(cases.glob("*/expected.err"))]
    return {text or json for match in map(SHOWN.findall, texts) for text, json in match}


def main():
    program, *texts, cases = sys.argv[1:]
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
    wanted, shown = set(names) - OF_A_MACHINE_IN_TROUBLE, shown_by(pathlib.Path(cases))
    faults += ["no case: %s" % kind for kind in sorted(wanted - shown)]
    faults += ["a case for no kind, or for one of a machine in trouble: %s" % kind
               for kind in sorted(shown - wanted)]
    if not kinds:
        faults.append("the program has no kinds")
    print("\n".join(faults) or "%d kinds" % len(kinds))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
