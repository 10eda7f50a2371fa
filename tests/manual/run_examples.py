#!/usr/bin/env python3
"""Runs the examples of the manual and compares their output with what the manual shows.

An example is a sheet, indented by four spaces. Each of its parts begins with a title between equals
signs and ends at the next title or at the rule that ends the sheet:

    == app.hex ===================================   a file to make
    == $ COMMAND =================================   a command and its output
    == $ COMMAND (exit code 254) =================
    == app.hex afterwards ========================   a file that must exist then
    ==============================================

All sheets of a section run in the same new folder, which has the recipes that its scripts include.
Spaces at the ends of lines are ignored. Banner,
time and time stamps are masked, and removed where the manual omits them. A command that begins with
"tessaron" shows its standard output and then its standard error, whose long lines are folded: each
further line of the page is indented by eight spaces.
The layout is checked too: plain text, no line longer than 96 characters.
"""
import argparse
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import textwrap

UNDERLINE = re.compile(r"=+$|-+$")
TITLE = re.compile(r"    == (\S.*?) =+$")
RULE = re.compile(r"    =+$")
EXIT_CODE = re.compile(r"^(.*\S) +\(exit code (\d+)\)$")
MASKS = [(re.compile(r"^(CmdTessaron version )\S+ from \w+ +\d+ \d+$", re.M), r"\1<build>"),
         (re.compile(r"^Copyright \(C\) \d+ ", re.M), "Copyright (C) <year> "),
         (re.compile(r"^(KvTessaron Total Time: )[0-9.e+-]+ ", re.M), r"\1<time> "),
         (re.compile(r"^(// Generated: )\d+-\d\d-\d\d \d\d:\d\d:\d\d$", re.M), r"\1<stamp>")]
BANNER = re.compile(r"\ACmdTessaron version <build>\n.*\n\n")
TIME = re.compile(r"\nKvTessaron Total Time: <time> seconds\n\Z")


PAGE = textwrap.TextWrapper(width=92, subsequent_indent=" " * 8, replace_whitespace=False,
                            expand_tabs=False, break_long_words=False, break_on_hyphens=False)


class Part:
    def __init__(self, number, title):
        self.number, self.title, self.lines = number, title, []

    def text(self):
        return "".join(line + "\n" for line in self.lines)


def sections(manual):
    """The parts of all sheets, as one list for each section with sheets, and the faults."""
    parts, part, faults = [[]], None, []
    for number, line in enumerate(manual.read_text().splitlines(), 1):
        if len(line) > 96 or "\t" in line or not line.isascii():
            faults.append("%d: not plain text of at most 96 columns" % number)
        if UNDERLINE.match(line):
            parts.append([])
        title = TITLE.match(line)
        if title:
            part = Part(number, title.group(1))
            parts[-1].append(part)
        elif RULE.match(line):
            if part is None:
                faults.append("%d: a rule outside a sheet" % number)
            part = None
        elif line.startswith("    == "):
            faults.append("%d: not a title" % number)
        elif part is not None:
            if line and not line.startswith("    "):
                faults.append("%d: a sheet has no end" % number)
                part = None
            else:
                part.lines.append(line[4:])
    return [one for one in parts if one], faults


def comparable(text):
    lines = [line.expandtabs().rstrip() + "\n" for line in text.splitlines()]
    text = "".join(lines)
    for pattern, mask in MASKS:
        text = pattern.sub(mask, text)
    return text


def folded(text):
    return "".join("\n".join(PAGE.wrap(line)) + "\n" for line in text.splitlines())


def without_banner_and_time(text):
    return TIME.sub("", BANNER.sub("", text))


def run_command(part, command, folder, environment):
    expected_code = 0
    with_code = EXIT_CODE.match(command)
    if with_code:
        command, expected_code = with_code.group(1), int(with_code.group(2))
    # What CmdTessaron prints on standard error belongs between the lines of its statements.
    errors = subprocess.PIPE if command.startswith("tessaron ") else subprocess.STDOUT
    done = subprocess.run(["sh", "-c", command], cwd=folder, env=environment, timeout=120,
                          stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=errors)
    printed = done.stdout.decode("latin-1") + folded((done.stderr or b"").decode("latin-1"))
    got, wanted = comparable(printed), comparable(part.text())
    if not BANNER.match(wanted):
        got = without_banner_and_time(got)
    faults = []
    if got != wanted:
        faults.append("%d: $ %s printed\n%sinstead of\n%s" % (part.number, command, got, wanted))
    if done.returncode != expected_code:
        faults.append("%d: $ %s ended with %d" % (part.number, command, done.returncode))
    return faults


def run_part(part, folder, environment):
    if part.title.startswith("$ "):
        return run_command(part, part.title[2:], folder, environment)
    if part.title.endswith(" afterwards"):
        path = folder / part.title[:-len(" afterwards")]
        got = comparable(path.read_text()) if path.exists() else "nothing\n"
        wanted = comparable(part.text())
        if got == wanted:
            return []
        return ["%d: %s holds\n%sinstead of\n%s" % (part.number, path.name, got, wanted)]
    (folder / part.title).write_text(part.text())
    return []


def put_recipes(parts, folder, recipes):
    """Puts recipes where the program looks for them first: those of the tree, and not others that may
    be installed on this machine. A recipe may include others."""
    text = "".join(part.text() for part in parts)
    paths = list(recipes.glob("*.tsn"))
    if any("INCLUDE " + recipe.name in text for recipe in paths):
        for recipe in paths:
            shutil.copy(recipe, folder)


def uses_key(parts):
    words = "-setKeyFile", "FROM_KEY", "INCLUDE mcuboot-", "--sign-manifest"
    return any(word in text for part in parts for text in (part.title, part.text()) for word in words)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--leave-out", action="append", default=[], metavar="COMMAND")
    parser.add_argument("--without-signatures", action="store_true",
                        help="leave out the sections that use a key")
    parser.add_argument("programs", type=pathlib.Path, nargs=2, help="CmdTessaron and tessaron")
    parser.add_argument("manual", type=pathlib.Path)
    options = parser.parse_args()
    found, faults = sections(options.manual)
    ignored = {"$ " + command for command in options.leave_out}
    commands = 0
    with tempfile.TemporaryDirectory(prefix="tessaron-manual-") as work:
        tools = pathlib.Path(work) / "bin"
        tools.mkdir()
        for name, program in zip(("CmdTessaron", "tessaron"), options.programs):
            (tools / name).symlink_to(program.resolve())
        environment = dict(os.environ, LC_ALL="C", TZ="UTC",
                           PATH="%s:%s" % (tools, os.environ["PATH"]))
        for index, parts in enumerate(found):
            if options.without_signatures and uses_key(parts):
                continue
            folder = pathlib.Path(work) / str(index)
            folder.mkdir()
            put_recipes(parts, folder, options.manual.resolve().parents[1] / "recipes")
            for part in parts:
                if EXIT_CODE.sub(r"\1", part.title) in ignored:
                    continue
                commands += part.title.startswith("$ ")
                faults += run_part(part, folder, environment)
    if not commands:
        faults.append("no example found")
    print("\n".join(faults) or "%d commands in %d sections" % (commands, len(found)))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
