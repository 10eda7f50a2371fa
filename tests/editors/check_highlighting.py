#!/usr/bin/env python3
"""Holds the two highlighters against the language and against each other.

  keywords   both have every keyword of the grammar
  vim        Vim shows the annotated script as its annotations say
  agreement  Vim and the TextMate grammar show all scripts of the examples, the recipes and the
             book alike, and leave no character out
"""
import argparse
import itertools
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parent.parent
BOOK = ROOT / "docs" / "book"
GRAMMAR = ROOT / "editors" / "vscode" / "syntaxes" / "tessaron.tmLanguage.json"
VIM = ROOT / "editors" / "vim"
ANNOTATED = HERE / "annotated.tsn"
sys.path.append(str(HERE.parent / "manual"))
sys.dont_write_bytecode = True
import run_examples  # noqa: E402

# What a scope, by its beginning, and a group, by its end, are to a reader; the first that fits.
SCOPES = [("comment", "comment"), ("keyword.control.directive", "directive"),
          ("keyword.control", "statement"), ("keyword.operator", "operator"),
          ("keyword.other", "source"), ("variable.parameter", "substitution"),
          ("variable.other", "name"), ("entity.name.section", "section"),
          ("entity.other", "option"), ("support.constant", "constant"), ("support.function", "function"),
          ("constant.numeric", "number"), ("constant.other", "variable"),
          ("punctuation", "delimiter"), ("string", "text")]
GROUPS = [("Comment", "comment"), ("Directive", "directive"), ("DirectiveWith", "directive"),
          ("Statement", "statement"), ("Operator", "operator"), ("Equals", "operator"),
          ("Source", "source"), ("Substitution", "substitution"), ("Name", "name"),
          ("Symbol", "name"), ("Section", "section"), ("Option", "option"),
          ("Constant", "constant"), ("Function", "function"), ("Number", "number"), ("Variable", "variable"),
          ("Delimiter", "delimiter"), ("Separator", "delimiter"), ("Text", "text")]


def kind_of_scope(scope):
    return next((kind for start, kind in SCOPES if scope.startswith(start)), scope)


def kind_of_group(group):
    return next((kind for end, kind in GROUPS if group.endswith(end)), group)


def vim_kinds(files):
    """What Vim makes of each character of each line of each file."""
    with tempfile.NamedTemporaryFile() as groups:
        subprocess.run(["vim", "-N", "-u", "NONE", "-i", "NONE", "-n", "-es",
                        "--cmd", "set runtimepath^=" + str(VIM).replace(" ", "\\ "),
                        "-S", HERE / "vim_groups.vim", *files],
                       env=dict(os.environ, GROUPS_FILE=groups.name, LC_ALL="C.UTF-8"),
                       stdin=subprocess.DEVNULL, check=True, timeout=60)
        return [[[kind_of_group(group) for group in line] for line in json.loads(file)]
                for file in groups.read().splitlines()]


def textmate_kinds(modules, files):
    done = subprocess.run(["node", HERE / "textmate_scopes.js", modules, GRAMMAR, *files],
                          stdout=subprocess.PIPE, check=True, timeout=60)
    return [[[kind_of_scope(scope) for scope in line] for line in json.loads(file)]
            for file in done.stdout.splitlines()]


def check_keywords(program):
    keywords = {"SUBSTITUTE", "WITH", "PARAMETER", "DEFAULT", "INCLUDE"}
    keywords.update(subprocess.run([program], stdout=subprocess.PIPE, check=True,
                                   text=True).stdout.split())
    if len(keywords) < 70:
        yield "only %d keywords were found" % len(keywords)
    for path in (GRAMMAR, VIM / "syntax" / "tessaron.vim"):
        text = path.read_text()
        for keyword in sorted(keywords):
            if not re.search(r"(?<![\w-])%s(?!\w)" % re.escape(keyword), text):
                yield "%s lacks %s" % (path.name, keyword)


def annotations():
    """Line, first and last column from 0, and kind of each annotation of the annotated script."""
    last = 0
    for number, line in enumerate(ANNOTATED.read_text().splitlines()):
        arrow = re.match(r"// <(-+) (\S+)", line)
        carets = re.match(r"// *(\^+) (\S+)", line)
        if arrow:
            yield last, 0, len(arrow.group(1)) - 1, kind_of_scope(arrow.group(2))
        elif carets:
            yield last, carets.start(1), carets.end(1) - 1, kind_of_scope(carets.group(2))
        else:
            last = number


def check_vim():
    shown, checked = vim_kinds([ANNOTATED])[0], 0
    for line, first, last, kind in annotations():
        checked += 1
        if set(shown[line][first:last + 1]) != {kind}:
            yield "line %d, columns %d to %d: %s, not %s" % (
                line + 1, first + 1, last + 1, shown[line][first:last + 1], kind)
    if checked < 50:
        yield "only %d annotations were found" % checked


def check_agreement(modules):
    with tempfile.TemporaryDirectory() as folder:
        files = [ANNOTATED, *sorted((ROOT / "examples").rglob("*.tsn")),
                 *sorted((ROOT / "recipes").glob("*.tsn"))]
        pages = map(run_examples.parts_of, run_examples.pages_below(BOOK))
        for number, part in enumerate(itertools.chain(*(parts for parts, _ in pages))):
            # What does not parse may end anywhere.
            if re.fullmatch(r"\S+\.tsn", part.title) and part.title != "syntax.tsn":
                files.append(pathlib.Path(folder) / ("page-%d.tsn" % number))
                files[-1].write_text(part.text())
        if len(files) < 40:
            yield "only %d scripts were found" % len(files)
        yield from disagreements(modules, files)


def disagreements(modules, files):
    kinds = {kind for _, kind in SCOPES}
    for path, in_vim, in_textmate in zip(files, vim_kinds(files), textmate_kinds(modules, files)):
        lines = path.read_text().splitlines()
        for number, (line, left, right) in enumerate(zip(lines, in_vim, in_textmate), 1):
            for column, character in enumerate(line):
                pair = left[column], right[column]
                if not character.isspace() and (pair[0] != pair[1] or pair[0] not in kinds):
                    yield "%s: line %d, column %d, '%s': Vim %s, TextMate %s" % (
                        path.name, number, column + 1, character, *pair)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("check", choices=["keywords", "vim", "agreement"])
    parser.add_argument("--keywords", help="program that prints the keywords")
    parser.add_argument("--modules", type=pathlib.Path, help="folder of the npm packages")
    options = parser.parse_args()
    checks = {"keywords": lambda: check_keywords(options.keywords), "vim": check_vim,
              "agreement": lambda: check_agreement(options.modules)}
    faults = list(checks[options.check]())
    print("\n".join(faults) or "nothing to object")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
