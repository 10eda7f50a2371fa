#!/usr/bin/env python3
"""Formats the scripts of all cases: formatted_cases.py CmdTessaron tessaron

- A formatted script is its own format, and has the characters of the script that are not blanks. A
  script that does not parse stays as it is, byte for byte.
- CmdTessaron, which knows nothing of the format, prints and writes the same under both: each case of
  tests/scripts passes with its script formatted.
"""
import pathlib
import shutil
import subprocess
import sys
import tempfile

TESTS = pathlib.Path(__file__).resolve().parents[1]
ROOT = TESTS.parent


def without_blanks(text):
    return text.translate(None, b" \t\n\v\f\r")


def formatted(program, path, text):
    done = subprocess.run([program, "format"], cwd=path.parent, input=text, capture_output=True)
    if done.returncode not in (0, 2) or (done.returncode == 2) != (b"[syntax]" in done.stderr
                                                                   or b"[duplicate-name]" in done.stderr):
        sys.exit("%s: exit code %d: %s" % (path, done.returncode, done.stderr.decode()))
    if done.returncode == 2 and done.stdout != text:
        sys.exit("%s does not parse and was changed" % path)
    return done.stdout, done.returncode == 0


def main(classic, program):
    counts = {"formatted": 0, "faulty": 0, "rerun": 0}
    for path in sorted(p for folder in ("tests", "recipes", "examples") for p in (ROOT / folder).rglob("*.tsn")):
        text = path.read_bytes()
        result, is_good = formatted(program, path, text)
        counts["formatted" if is_good else "faulty"] += 1
        if without_blanks(result) != without_blanks(text):
            sys.exit("%s: more than blanks was changed" % path)
        if formatted(program, path, result)[0] != result:
            sys.exit("%s: the result has another format" % path)
        case = path.parent
        if result == text or case.parent != TESTS / "scripts" or path.name != "script.tsn":
            continue
        counts["rerun"] += 1
        with tempfile.TemporaryDirectory() as work:
            copy = pathlib.Path(work) / case.name
            shutil.copytree(case, copy)
            (copy / "script.tsn").write_bytes(result)
            done = subprocess.run([sys.executable, str(TESTS / "scripts" / "run_case.py"), "--no-limits",
                                   classic, str(copy)], capture_output=True, text=True)
            if done.returncode != 0:
                sys.exit("%s, formatted, does something else:\n%s" % (case.name, done.stdout + done.stderr))
    print(counts)
    if counts["formatted"] < 100 or counts["faulty"] < 20 or counts["rerun"] < 30:
        sys.exit("there are too few cases for this to say anything")


main(*sys.argv[1:])
