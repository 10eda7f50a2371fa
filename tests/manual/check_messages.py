#!/usr/bin/env python3
"""Holds the manual against the sources of the program: every word that the program reads or prints
is in the manual, every message as a whole, and the chapter on messages lists none that is not
printed.
"""
import pathlib
import re
import sys

FOLDERS = ("app", "parser", "buffer", "io", "selftest")
# Texts that no user sees: what exceptions and static assertions say, names of placeholders, digits.
INTERNAL = re.compile(r"(expanded script|resolved text)|Could not open file|an image (costs|longer) .*|"
                      r".*@(size|time|elementsPerLine).*|[_a-zA-Z0-9]{63}")
TOKEN = re.compile(r'//[^\n]*|/\*.*?\*/|"(?:[^"\\\n]|\\.)*"|\'(?:[^\'\\\n]|\\.)*\'|[^"\'/]+|/', re.S)
ESCAPES = {"n": "\n", "t": "\t", "x1A": "\x1a"}
# What a message puts in: up to five words.
PLACE = r"\S+(?: \S+){0,4}"


def unescaped(literal):
    return re.sub(r"\\(x1A|.)", lambda found: ESCAPES.get(found.group(1), found.group(1)),
                  literal[1:-1])


def tokens(source):
    """The source without comments and preprocessor lines: literals, joined where they adjoin, as
    a pair with their text, and stretches of code."""
    result = []
    for token in TOKEN.findall(source):
        if token.startswith(("//", "/*")):
            continue
        if token.startswith('"'):
            if result and isinstance(result[-1], tuple):
                result[-1] = (result[-1][0] + unescaped(token),)
            else:
                result.append((unescaped(token),))
        elif token.strip() or not (result and isinstance(result[-1], tuple)):
            result.append(token)
    return result


def sources(root):
    for folder in FOLDERS:
        for path in sorted((root / folder).rglob("*.[ch]pp")):
            text = re.sub(r"^ *#.*$", "", path.read_text(), flags=re.M)
            yield path.relative_to(root), tokens(text)


def calls(found):
    """What stands in each call of reportLine and each use of the error stream: a list of parts,
    None for what is put in at run time."""
    parts, depth, separator = None, 0, ","
    for token in found:
        if isinstance(token, tuple):
            if parts is not None:
                parts[-1] = token[0] if parts[-1] in ("", None) else parts[-1] + token[0]
            continue
        for word in re.findall(r"[\w:]+\(?|<<|\S", token):
            if parts is None:
                if word.endswith("reportLine("):
                    parts, depth, separator = [""], 1, ","
                elif word == "std::cerr":
                    parts, depth, separator = [""], 1, "<<"
                continue
            depth += (word[-1] in "({") - (word[-1] in ")}")
            if depth == 0 or (word == ";" and depth == 1):
                yield parts
                parts = None
            elif word == separator and depth == 1:
                parts.append("")
            elif parts[-1] == "" and word not in ("std::hex", "std::endl"):
                parts[-1] = None


def normal(text):
    return " ".join(text.split())


def pattern_of(parts):
    text = "".join(re.escape(part) if part is not None else "\0" for part in parts)
    text = re.sub(r"(\\ |\\\n|\\\t)+", " ", text).strip()
    return re.sub("\0+", lambda places: " ?".join(PLACE for _ in places.group()), text)


def listed_messages(manual):
    """The messages of chapter 12 without the steps of section 12.2, a line each."""
    messages, section, in_sheet = [], "", False
    lines = manual.splitlines()
    for line, below in zip(lines, lines[1:]):
        if re.match(r"-+$|=+$", below):
            section = line.split(" ")[0]
        if line.startswith("    ="):
            in_sheet = line.rstrip(" =") != ""
        elif in_sheet or not section.startswith("12.") or section == "12.2":
            continue
        elif line.startswith(" " * 12) and messages and not line.startswith(" " * 13):
            messages[-1] += " " + line.strip()
        elif line.startswith("    "):
            messages.append(line.strip())
    return [normal(message) for message in messages]


def expanded(found):
    """Messages whose words come from the arguments of a function."""
    code = "".join('"%s"' % token[0] if isinstance(token, tuple) else token for token in found)
    for what, done in re.findall(r'guarded\("(\w+)", \w+, "(\w+)"', code):
        yield "Error: %s NAME could not be %s !" % (what, done)
    for kind in re.findall(r'findOrReport\([\w.]+, name, "([\w ]+)"\)', code):
        yield "Error: %s Variable NAME not found !" % kind


def main():
    root = pathlib.Path(sys.argv[1])
    manual = (root / "docs" / "CmdTessaronManual.txt").read_text()
    words, messages = normal(manual), listed_messages(manual)
    patterns, literals, wanted, faults = {}, {}, {}, []
    for path, found in sources(root):
        for parts in calls(found):
            if re.search("[A-Za-z]{2}", "".join(part or "" for part in parts)):
                patterns[pattern_of(parts)] = path
        wanted.update((message, path) for message in expanded(found))
        if path.parts[0] == "selftest":
            continue
        for token in found:
            if isinstance(token, tuple):
                literals.update((normal(line), path) for line in token[0].split("\n"))
    for pattern, path in patterns.items():
        if not re.search(r"(?:^| )" + pattern, words):
            faults.append("%s prints what the manual does not tell: %s" % (path, pattern))
    for literal, path in literals.items():
        # The steps of syntax errors are listed without the arrow and the name of the type.
        shown = re.sub(r"^Set(?:Crc|Hash)_| ->$", "", literal)
        if re.search("[A-Za-z]{2}", shown) and not INTERNAL.fullmatch(shown) \
                and shown not in words:
            faults.append("%s has a text that the manual does not have: %s" % (path, literal))
    for message, path in wanted.items():
        if message not in messages:
            faults.append("%s prints what chapter 12 does not list: %s" % (path, message))
    for message in messages:
        # Some are put together from pieces: a text and a word or two behind it.
        pieced = any(len(literal) > 9 and message.startswith(literal)
                     and len(message[len(literal):].split()) < 3 for literal in literals)
        if not pieced and not any(re.fullmatch(pattern, message) for pattern in patterns):
            faults.append("chapter 12 lists what is printed nowhere: %s" % message)
    counts = len(patterns), len(literals), len(wanted), len(messages)
    if min(counts) < 10:
        faults.append("hardly anything was found: %s" % (counts,))
    print("\n".join(faults) or "%d messages, %d texts, %d expansions, %d listed" % counts)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
