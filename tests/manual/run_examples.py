#!/usr/bin/env python3
"""Runs the examples of the book and compares their output with what its pages show.

Examples are the fenced blocks of these kinds:

    ```text title="app.hex"              a file to make, of any language
    ```text title="app.hex afterwards"   a file that must exist then
    ```console                           commands and their output; a command that does not end
    $ COMMAND  # exit code 1             with 0 says so in a comment

All examples of a page run in the same new folder, which has the recipes that its scripts include.
Spaces at the ends of lines are ignored. Banner, time and time stamps are masked, and removed where
the page omits them, and so is the line that names the pages of diagnostics. A command that begins
with "tessaron" shows its standard output and then its standard error.
The layout is checked too: pages have no tabs and only ASCII, and every fence is closed.
"""
import argparse
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

FENCE = re.compile(r'```(\w+)?(?: title="(.*)")?$')
EXIT_CODE = re.compile(r"^(.*\S)  # exit code (\d+)$")
MASKS = [(re.compile(r"^(CmdTessaron version )\S+ from \w+ +\d+ \d+$", re.M), r"\1<build>"),
         (re.compile(r"^Copyright \(C\) \d+ ", re.M), "Copyright (C) <year> "),
         (re.compile(r"^(KvTessaron Total Time: )[0-9.e+-]+ ", re.M), r"\1<time> "),
         (re.compile(r"^(// Generated: )\d+-\d\d-\d\d \d\d:\d\d:\d\d$", re.M), r"\1<stamp>")]
BANNER = re.compile(r"\ACmdTessaron version <build>\n.*\n\n")
TIME = re.compile(r"\nKvTessaron Total Time: <time> seconds\n\Z")
MORE = re.compile(r"^more: tessaron help .*\n", re.M)


class Part:
    """A file, or a command with its output. `number` is the line of its title, counted from 1."""

    def __init__(self, number, title):
        self.number, self.title, self.lines = number, title, []

    def text(self):
        return "".join(line + "\n" for line in self.lines)


def parts_of(page):
    """The parts of a page, and the faults of its layout."""
    parts, faults, part, language = [], [], None, None
    for number, line in enumerate(page.read_text().splitlines(), 1):
        if "\t" in line or not line.isascii():
            faults.append("%s:%d: a tab, or not ASCII" % (page, number))
        fence = FENCE.match(line)
        if line == "```" and language is not None:
            part = language = None
        elif language is None and fence:
            language = fence[1] or "text"
            if fence[2]:
                part = Part(number, fence[2])
                parts.append(part)
        elif language is None and line.startswith("```"):
            faults.append("%s:%d: not a fence" % (page, number))
        elif language == "console" and line.startswith("$ "):
            part = Part(number, line)
            parts.append(part)
        elif part is not None:
            part.lines.append(line)
    if language is not None:
        faults.append("%s: a fence is not closed" % page)
    return parts, faults


def pages_below(book):
    return sorted(book.rglob("*.md"))


def comparable(text):
    lines = [line.expandtabs().rstrip() + "\n" for line in text.splitlines()]
    text = "".join(lines)
    for pattern, mask in MASKS:
        text = pattern.sub(mask, text)
    return text


def run_command(part, folder, environment):
    """What the command prints and what the page shows, comparable, and the faults."""
    command, expected_code = part.title[2:], 0
    with_code = EXIT_CODE.match(command)
    if with_code:
        command, expected_code = with_code[1], int(with_code[2])
    # What CmdTessaron prints on standard error belongs between the lines of its statements.
    errors = subprocess.PIPE if command.startswith("tessaron ") else subprocess.STDOUT
    done = subprocess.run(["sh", "-c", command], cwd=folder, env=environment, timeout=120,
                          stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=errors)
    printed = done.stdout.decode("latin-1") + (done.stderr or b"").decode("latin-1")
    got, wanted = comparable(printed), comparable(part.text())
    if not BANNER.match(wanted):
        got = TIME.sub("", BANNER.sub("", got))
    if not MORE.search(wanted):
        got = MORE.sub("", got)
    faults = []
    if done.returncode != expected_code:
        faults.append("%d: %s ended with %d" % (part.number, part.title, done.returncode))
    return got, wanted, faults


def run_part(part, folder, environment):
    if part.title.startswith("$ "):
        got, wanted, faults = run_command(part, folder, environment)
    elif part.title.endswith(" afterwards"):
        path = folder / part.title[:-len(" afterwards")]
        got, faults = comparable(path.read_text()) if path.exists() else "nothing\n", []
        wanted = comparable(part.text())
    else:
        (folder / part.title).write_text(part.text())
        return []
    if got != wanted:
        faults.append("%d: %s gave\n%sinstead of\n%s" % (part.number, part.title, got, wanted))
    return faults


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
                        help="leave out the pages that use a key")
    parser.add_argument("programs", type=pathlib.Path, nargs=2, help="CmdTessaron and tessaron")
    parser.add_argument("book", type=pathlib.Path)
    options = parser.parse_args()
    ignored = {"$ " + command for command in options.leave_out}
    commands, faults = 0, []
    with tempfile.TemporaryDirectory(prefix="tessaron-book-") as work:
        tools = pathlib.Path(work) / "bin"
        tools.mkdir()
        for name, program in zip(("CmdTessaron", "tessaron"), options.programs):
            (tools / name).symlink_to(program.resolve())
        environment = dict(os.environ, LC_ALL="C", TZ="UTC",
                           PATH="%s:%s" % (tools, os.environ["PATH"]))
        for name in ("MAKEFLAGS", "MAKELEVEL"):  # of a make that runs the tests
            environment.pop(name, None)
        for index, page in enumerate(pages_below(options.book)):
            name = str(page.relative_to(options.book))
            parts, of_layout = parts_of(page)
            faults += of_layout
            if options.without_signatures and uses_key(parts):
                continue
            folder = pathlib.Path(work) / str(index)
            folder.mkdir()
            put_recipes(parts, folder, options.book.resolve().parents[1] / "recipes")
            for part in parts:
                if EXIT_CODE.sub(r"\1", part.title) in ignored:
                    continue
                commands += part.title.startswith("$ ")
                faults += ["%s:%s" % (name, fault) for fault in run_part(part, folder, environment)]
    if not commands:
        faults.append("no example found")
    print("\n".join(faults) or "%d commands" % commands)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
