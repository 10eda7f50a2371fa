#!/usr/bin/env python3
"""Compares the messages that the program has with those that chapters 12 and 13 of the manual list.

    check_messages.py LIST_MESSAGES MANUAL

LIST_MESSAGES prints the messages a line each. White space does not count, since the manual folds
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


def listed(manual):
    """The messages of chapters 12 and 13 without the steps of section 12.2. A line that is indented
    far goes on with the message above it, and example sheets are left out."""
    messages, section, in_sheet = [], "", False
    lines = manual.splitlines()
    for line, below in zip(lines, lines[1:]):
        if re.match(r"-+$|=+$", below):
            section = line.split(" ")[0]
        if line.startswith("    ="):
            in_sheet = line.rstrip(" =") != ""
        elif in_sheet or section == "12.2" or not section.startswith(("12.", "13.")):
            continue
        elif line.startswith(" " * 12) and messages and not line.startswith(" " * 13):
            messages[-1] += " " + line.strip()
        elif line.startswith("    "):
            messages.append(line.strip())
    # Chapter 13 opens with a command.
    return {normal(message) for message in messages} - {"CmdTessaron test"}


def main():
    program, manual = sys.argv[1], pathlib.Path(sys.argv[2]).read_text()
    has, shows = printed(program), listed(manual)
    faults = ["not in the manual: " + line for line in sorted(has - shows)]
    faults += ["in the manual, but not a message: " + line for line in sorted(shows - has)]
    if min(len(has), len(shows)) < 60:
        faults.append("hardly anything was found: %d and %d messages" % (len(has), len(shows)))
    print("\n".join(faults) or "%d messages" % len(has))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
