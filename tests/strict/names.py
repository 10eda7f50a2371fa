#!/usr/bin/env python3
"""Types what tessaron offers for a name that the language does not have, and compares what that
computes with the published value: names.py TESSARON CATALOGUE NAMES

CATALOGUE is util/crc/catalogue.tsv, whose aliases must lead to the check value of their row, both as
a type and in the braces of Catalogue. NAMES has names that people type, with what they mean."""
import hashlib
import json
import pathlib
import re
import subprocess
import sys
import tempfile

PROGRAM, CATALOGUE, NAMES = sys.argv[1:]
DIGITS = b"123456789"
IMAGE = "NEW_BUFFER @A FROM_VALUES { %s }\n" % ", ".join(map(str, DIGITS))


def rows_of(path):
    return [line.split("\t") for line in pathlib.Path(path).read_text().splitlines()
            if line[0] != "#"]


def run(command, statements, *options):
    with tempfile.NamedTemporaryFile("w", suffix=".tsn") as script:
        script.write(IMAGE + "\n".join(statements))
        script.flush()
        return subprocess.run([PROGRAM, command, script.name, *options], check=False, text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE)


def hints(statements):
    """The hint of each statement; a script reports twenty syntax errors."""
    found = []
    for begin in range(0, len(statements), 20):
        part = statements[begin:begin + 20]
        reports = map(json.loads, run("check", part, "--diagnostics=json").stderr.splitlines())
        by_line = {report["line"]: report.get("hint", "") for report in reports
                   if report.get("name") == "syntax"}
        found += [by_line[i + 2] for i in range(len(part))]
    return found


def offered(hint):
    match = re.fullmatch(r"did you mean (.*)\?", hint)
    return re.split(r", | or ", match.group(1)) if match else []


def statement(keyword, number, typed):
    return "%s @%d FROM_BUFFER @A -setType=%s" % (keyword, number, typed)


def computed(keyword, types):
    """What the types compute, in hexadecimal digits, a CRC with its highest digit first."""
    script = [statement(keyword, i, typed) + " PRINT_%s @%d" % (keyword[4:], i)
              for i, typed in enumerate(types)]
    printed = run("run", script).stdout
    values = [bytes.fromhex(digits) for digits in re.findall(r"Value: (?:0x)?(\w+)", printed)]
    return [(value[::-1] if keyword == "NEW_CRC" else value).hex() for value in values]


def expected(keyword, name, width=None):
    if keyword == "NEW_HASH":
        return hashlib.new(name, DIGITS).hexdigest()
    return name if width is None else "%0*x" % (2 * ((width + 7) // 8), int(name, 16))


def cases():
    """Statement, what is typed, what stands around an offer, the values, and whether there may be
    more offers than values."""
    for name, width, *_, check, aliases in (row for row in rows_of(CATALOGUE) if len(row) > 8):
        value = [expected("NEW_CRC", check, int(width))]
        for alias in aliases.split(", "):
            yield "NEW_CRC", alias, "%s", value, True
            yield "NEW_CRC", "Catalogue{%s}" % alias, "Catalogue{%s}", value, True
    for keyword, typed, *names in rows_of(NAMES):
        yield (keyword, typed, "%s",
               [expected(keyword, name) for name in " ".join(names).split()], False)


def main():
    table = list(cases())
    faults = []
    found = hints([statement(keyword, i, typed) for i, (keyword, typed, *_) in enumerate(table)])
    for (keyword, typed, frame, values, may_be_more), hint in zip(table, found):
        types = [frame % offer for offer in offered(hint)]
        gives = computed(keyword, types) if types else []
        if len(gives) != len(types) or (gives[:len(values)] if may_be_more else gives) != values:
            faults.append("%s: %s, which gives %s and not %s" % (typed, hint, gives, values))
    print("\n".join(faults) or "%d names lead to what they mean" % len(table))
    return 1 if faults or len(table) < 150 else 0


if __name__ == "__main__":
    sys.exit(main())
