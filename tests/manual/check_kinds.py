#!/usr/bin/env python3
"""Compares the kinds of diagnostics that tessaron has with the pages of the book, the man page and the
cases of tests/diagnostics.

    check_kinds.py LIST_KINDS BOOK MAN_PAGE CASES

LIST_KINDS prints a line for each kind: its name, what it counts as and when it is reported. The book has
a table of the same and a page for each kind, which begins with it and shows the kind; the man page lists
the names, all in the order of the program. Each kind is shown by a case, unless it needs a machine in
trouble."""
import pathlib
import re
import subprocess
import sys

import book

LISTED = re.compile(r"^\.BR ([a-z-]+) [,.]$", re.M)
LINK = re.compile(r"\[([a-z-]+)\]\(\1\.md\)$")
SHOWN = re.compile(r" \[([a-z-]+)\]$|^{\"severity\":\"[a-z]+\",\"name\":\"([a-z-]+)\"", re.M)
# tests/faults makes the machine's memory run out, its disks fill and its files change.
OF_A_MACHINE_IN_TROUBLE = {"short-read", "short-write", "out-of-memory"}


def shown_by(cases):
    """The kinds that the cases of a folder show."""
    texts = [path.read_text() for path in sorted(cases.glob("*/expected.err"))]
    return {text or json for match in map(SHOWN.findall, texts) for text, json in match}


def faults_of_page(path, name, counts_as, meaning):
    """What is wrong with the page of a kind."""
    if not path.exists():
        return ["no page: %s" % name]
    text = path.read_text()
    beginning = "# %s %s: %s." % (name, counts_as[0].upper() + counts_as[1:], meaning)
    is_right = " ".join("\n\n".join(text.split("\n\n")[:2]).split()) == beginning
    faults = [] if is_right else ["the page of %s does not begin as it counts" % name]
    example = "".join(re.findall(r"^```(?:console|text)\n(.*?)^```", text, re.M | re.S))
    if "[%s]" % name not in example and '"%s"' % name not in example:
        faults.append("the page of %s does not show it" % name)
    return faults


def main():
    program, pages, page, cases = sys.argv[1], *map(pathlib.Path, sys.argv[2:])
    output = subprocess.run([program], stdout=subprocess.PIPE, check=True, text=True).stdout
    kinds = [line.split("\t") for line in output.splitlines()]
    names = [name for name, _, _ in kinds]
    faults = [fault for kind in kinds for fault in faults_of_page(
        pages / "diagnostics" / (kind[0] + ".md"), *kind)]
    faults += ["a page for no kind: %s" % path.stem for path in (pages / "diagnostics").glob("*.md")
               if path.stem not in (*names, "index", "reading")]
    rows = book.rows_of(pages / "diagnostics/index.md")
    links = [(LINK.match(row[0]), *row[1:]) for row in rows]
    table = [[link[1], *cells] for link, *cells in links if link]
    man = page.read_text()
    diagnostics = man[man.index(".SH DIAGNOSTICS"):man.index(".SH EXIT")].replace("\\-", "-")
    for what, has, shows in (("row of the table", kinds, table),
                             ("word of the man page", names, LISTED.findall(diagnostics))):
        faults += ["no %s: %s" % (what, kind) for kind in has if kind not in shows]
        faults += ["%s for no kind: %s" % (what, kind) for kind in shows if kind not in has]
        if not faults and has != shows:
            faults.append("each kind has one %s, in the order of the program" % what)
    wanted, shown = set(names) - OF_A_MACHINE_IN_TROUBLE, shown_by(cases)
    faults += ["no case: %s" % kind for kind in sorted(wanted - shown)]
    faults += ["a case for no kind, or for one of a machine in trouble: %s" % kind
               for kind in sorted(shown - wanted)]
    if not kinds:
        faults.append("the program has no kinds")
    print("\n".join(faults) or "%d kinds" % len(kinds))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
