#!/usr/bin/env python3
"""Compares the messages that CmdTessaron has with those that the book lists.

    check_messages.py LIST_MESSAGES BOOK

LIST_MESSAGES prints the messages a line each. White space does not count, since the pages fold
long lines."""
import pathlib
import re
import subprocess
import sys


def normal(text):
    return " ".join(text.split())


def printed(program):
    output = subprocess.run([program], stdout=subprocess.PIPE, check=True, text=True).stdout
    return {normal(line) for line in output.splitlines()} - {""}


def listed(page):
    """The messages of a page: the blocks of text that are not files. A line that is indented by eight
    blanks goes on with the message above it."""
    messages = []
    for block in re.findall(r"^```text\n(.*?)^```", page.read_text(), re.M | re.S):
        for line in block.splitlines():
            if re.match(" {8}(?! )", line) and messages:
                messages[-1] += " " + line.strip()
            else:
                messages.append(line)
    # The page of the self-test opens with a command.
    return {normal(message) for message in messages} - {"", "CmdTessaron test"}


def main():
    program, pages = sys.argv[1], pathlib.Path(sys.argv[2]) / "classic"
    has = printed(program)
    shows = listed(pages / "messages.md") | listed(pages / "self-test.md")
    faults = ["not in the book: " + line for line in sorted(has - shows)]
    faults += ["in the book, but not a message: " + line for line in sorted(shows - has)]
    if min(len(has), len(shows)) < 60:
        faults.append("hardly anything was found: %d and %d messages" % (len(has), len(shows)))
    print("\n".join(faults) or "%d messages" % len(has))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
