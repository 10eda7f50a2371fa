#!/usr/bin/env python3
"""Compares the index of the book with the words of the grammar and the options of the commands, and
checks that each page that it names has the word.

    check_index.py LIST_KEYWORDS TESSARON BOOK"""
import pathlib
import re
import subprocess
import sys

import book

DIRECTIVES = {"INCLUDE", "PARAMETER", "DEFAULT", "SUBSTITUTE", "WITH"}
LINK = re.compile(r"\[[^]]*\]\(([^)#]+)(?:#[^)]*)?\)")


def output(*command):
    return subprocess.run(command, stdout=subprocess.PIPE, check=True, text=True).stdout


def options_of(program):
    """The options of all commands, the short ones too, with the commands that have them."""
    options = {"--version": {"tessaron"}}
    for command in set(commands_of(program)) - {"help"}:
        for names in re.findall(r"^  ((?:-\w,)?--[\w-]+)", output(program, command, "--help"), re.M):
            for name in names.split(","):
                options.setdefault(name, set()).add(command)
    return options


def commands_of(program):
    commands = output(program, "--help").partition("Subcommands:")[2]
    return sorted(set(re.findall(r"^  (\w+) ", commands, re.M)))


def has(page, word):
    return re.search(r"(?<![\w-])%s(?![A-Za-z0-9])" % re.escape(word), page.read_text())


def main():
    list_keywords, program = sys.argv[1:3]
    pages = pathlib.Path(sys.argv[3])
    options = options_of(program)
    wanted = {*output(list_keywords).split(), *DIRECTIVES, *options}
    listed, faults = set(), []
    for words, *cells in book.rows_of(pages / "keywords.md"):
        for word in words.split(", "):
            links = LINK.findall(" ".join(cells))
            listed |= {word} if links else set()
            faults += ["%s does not have %s" % (link, word) for link in links
                       if not has(pages / link, word)]
            if links and word in options:
                named = set(re.findall(r"\[(\w+)\]", cells[0]))
                faults += ["%s: the commands are %s" % (word, options[word])] * (named != options[word])
    faults += ["in the index or in the programs alone: %s" % word for word in sorted(wanted ^ listed)]
    for command in commands_of(program):
        named = re.search(r"^Page of the book: (\S+)$", output(program, command, "--help"), re.M)
        if not (named and has(pages / (named[1] + ".md"), "# tessaron " + command)):
            faults.append("the help of %s does not name its page" % command)
    if len(wanted) < 200:
        faults.append("only %d words were found" % len(wanted))
    print("\n".join(faults) or "%d words" % len(wanted))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
