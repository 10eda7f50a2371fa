#!/usr/bin/env python3
"""Compares what a shell completes with what the help of the program TESSARON lists, and with the kinds
of diagnostics that LIST_KINDS prints; and the man page with the help:
completions.py TESSARON LIST_KINDS SHELL

SHELL is bash, fish or zsh; "files" compares the options that the files for fish and zsh name."""
import os
import pathlib
import pty
import re
import select
import shlex
import subprocess
import sys
import unittest

sys.path.append(str(pathlib.Path(__file__).resolve().parents[1]))
sys.dont_write_bytecode = True
import require  # noqa: E402

PROGRAM, LIST_KINDS, SHELL = sys.argv[1:4]
del sys.argv[1:4]
FOLDER = pathlib.Path(__file__).resolve().parents[2] / "completions"
ALL_KINDS = dict(line.split("\t")[:2] for line in subprocess.run(
    [LIST_KINDS], stdout=subprocess.PIPE, text=True, check=True).stdout.splitlines())
# Those that no option can change.
FIXED = {kind for kind, counts_as in ALL_KINDS.items() if counts_as.startswith("always ")}
KINDS = set(ALL_KINDS) - FIXED
SHOWING = ("run", "check", "info", "diff", "map", "convert", "format")  # diagnostics
COMMANDS = (*SHOWING, "lsp")
TOPICS = {"statements", "numbers", "crcs", "hashes", "signatures", "formats", "kinds"}
# The second column of the inputs.
FORMATS = {line.split()[1] for line in subprocess.run(
    [PROGRAM, "help", "formats"], stdout=subprocess.PIPE, text=True, check=True)
    .stdout.split("Outputs")[0].splitlines() if line.startswith("  FROM_")}
EDITS = "\x1b[?2004h"  # what zsh prints when it begins to read a line
BASH = """source "$1"; COMP_WORDS=("${@:2}"); COMP_CWORD=$(($# - 2)); _tessaron
((${#COMPREPLY[@]} == 0)) || printf '%s\\n' "${COMPREPLY[@]}" """


def lines(*command):
    done = subprocess.run(command, stdout=subprocess.PIPE, text=True, timeout=60, check=True)
    return set(done.stdout.splitlines())


def listed(*command):
    """The long options in the help of a command."""
    text = "\n".join(lines(PROGRAM, *command, "--help"))
    return set(re.findall(r"^  (?:-\w,)?(--[\w-]+)", text, re.MULTILINE))


def listed_topics():
    return set(re.findall(r"^  (\w+): ", "\n".join(lines(PROGRAM, "help")), re.MULTILINE))


def in_bash(*words):
    return lines("bash", "-c", BASH, "bash", str(FOLDER / "tessaron.bash"), "tessaron", *words)


def in_fish(*words):
    script = "complete -c tessaron -e; source $argv[1]; complete -C \"$argv[2]\""
    found = lines("fish", "--no-config", "-c", script, str(FOLDER / "tessaron.fish"),
                  " ".join(("tessaron",) + words))
    return {line.split("\t")[0] for line in found}


def in_zsh(*words):
    """Zsh completes in a terminal only. It prints the line again after the list."""
    process, terminal = pty.fork()
    if process == 0:
        os.execvpe("zsh", ["zsh", "-f", "-i"], dict(os.environ, TERM="dumb"))

    def answer(text, end):
        os.write(terminal, text.encode())
        printed = ""
        while not printed.endswith(end):
            if not select.select([terminal], [], [], 30)[0]:
                raise TimeoutError("zsh printed only " + repr(printed))
            printed += os.read(terminal, 4096).decode()
        return printed

    try:
        line = " ".join(("tessaron",) + words)
        answer("PS1=; PS1=$PS1'ready> '; fpath=(%s $fpath); autoload -Uz compinit; compinit -u -D; "
               "bindkey '^I' list-choices\n" % shlex.quote(str(FOLDER)), "ready> " + EDITS)
        printed = answer(line + "\t", "ready> " + line)
    finally:
        os.close(terminal)
        os.waitpid(process, 0)
    return set(re.findall(r"^([\w-]+)  +-- ", printed, re.MULTILINE))


def require_terminal():
    """A chroot without /dev/pts has none."""
    try:
        for end in pty.openpty():
            os.close(end)
    except OSError as error:
        require.skip("zsh has no terminal here: %s" % error)


class Shell:
    """What every shell completes."""

    def test_words(self):
        self.assertEqual(self.complete(""), {*COMMANDS, "help"})
        self.assertEqual(listed_topics(), TOPICS)
        self.assertEqual(self.complete("--"), listed())
        for command in COMMANDS:
            self.assertEqual(self.complete(command, "--"), listed(command))


class ValuesOfOptions:
    def test_values(self):
        for command in SHOWING:
            self.assertEqual(self.complete(command, "--color", "a"), {"auto", "always"})
            self.assertEqual(self.complete(command, "--diagnostics", ""),
                             {"text", "json", "sarif", "github"})
            self.assertEqual(self.complete(command, "--error", "zz"), set())
            for option in ("--error", "--warn"):
                self.assertEqual(self.complete(command, option, ""), KINDS)
        for command in ("run", "check"):
            self.assertEqual(self.complete(command, "--ignore", ""), KINDS)
        self.assertFalse(self.complete("diff", "--ignore", "") & KINDS)
        for command in ("info", "diff", "map", "convert"):
            self.assertEqual(self.complete(command, "--from", ""), FORMATS)
        self.assertEqual(self.complete("help", ""), {*TOPICS, *COMMANDS, "help", *ALL_KINDS})


class Bash(Shell, ValuesOfOptions, unittest.TestCase):
    complete = staticmethod(in_bash)

    def test_value_behind_an_equals_sign(self):
        self.assertEqual(in_bash("run", "--color", "=", "n"), {"never"})


class Fish(Shell, ValuesOfOptions, unittest.TestCase):
    complete = staticmethod(in_fish)


class Zsh(Shell, unittest.TestCase):
    complete = staticmethod(in_zsh)


class Files(unittest.TestCase):
    def test_files_name_the_options_of_the_help(self):
        options = set().union(*(listed(command) for command in COMMANDS)) | listed()
        text = (FOLDER / "_tessaron").read_text()
        self.assertEqual(set(re.findall(r"--[a-z][\w-]*", text)), options)
        text = (FOLDER / "tessaron.fish").read_text()
        names = re.findall(r"^complete .* -l ([\w-]+)", text, re.MULTILINE)
        self.assertEqual({"--" + name for name in names}, options)
        page = (FOLDER.parent / "docs" / "tessaron.1").read_text()
        heads = re.findall(r"^\.T[PQ]\n(.*)$", page, re.MULTILINE)
        described = re.findall(r"--[a-z][\w-]*", "\n".join(heads).replace("\\-", "-"))
        self.assertEqual(set(described), options)

    def test_files_name_the_kinds(self):
        for name, pattern in (("_tessaron", r"%s=\(([^)]*)\)"), ("tessaron.bash", r"%s='([^']*)'"),
                              ("tessaron.fish", r"set -l %s ((?:.*\\\n)*.*)")):
            for which, kinds in (("kinds", KINDS), ("fixed", FIXED)):
                found = re.search(pattern % which, (FOLDER / name).read_text())[1]
                self.assertEqual(set(found.replace("\\", " ").split()), kinds, name)


if __name__ == "__main__":
    if SHELL == "zsh":
        require_terminal()
    unittest.main(defaultTest=SHELL.capitalize())
