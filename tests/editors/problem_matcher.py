#!/usr/bin/env python3
"""Reads real diagnostics of the program TESSARON with the problem matcher of the extension for
Visual Studio Code:  problem_matcher.py TESSARON"""
import json
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

PROGRAM = pathlib.Path(sys.argv.pop(1)).resolve()
EXTENSION = pathlib.Path(__file__).resolve().parents[2] / "editors" / "vscode"
MATCHER, = json.loads((EXTENSION / "package.json").read_text())["contributes"]["problemMatchers"]
FIELDS = ("file", "line", "column", "severity", "code")


class ProblemMatcher(unittest.TestCase):
    def problems(self, script):
        """The diagnostics of a script; its name holds a blank and a colon."""
        with tempfile.TemporaryDirectory() as folder:
            pathlib.Path(folder, "a: b.tsn").write_text(script)
            pathlib.Path(folder, "in.hex").write_text(":0100000001FE\n:010001000100\n:00000001FF\n")
            done = subprocess.run([PROGRAM, "check", "a: b.tsn"], cwd=folder, text=True, timeout=60,
                                  stderr=subprocess.PIPE, stdout=subprocess.DEVNULL, check=False)
        pattern = MATCHER["pattern"]
        matches = [re.search(pattern["regexp"], line) for line in done.stderr.splitlines()]
        found = [tuple(match[pattern[field]] for field in FIELDS) for match in matches if match]
        texts = [match[pattern["message"]] for match in matches if match]
        return found, texts

    def test_places(self):
        cases = {
            "NEW_BUFFER @A EMPTY\n  PRINT_CRC @Nothing\n":
                [("a: b.tsn", "2", "13", "error", "unknown-name")],
            "NEW_BUFFER @A FROM_VALUES { 0x100 }\n":
                [("a: b.tsn", "1", "29", "warning", "truncated-value")],
            # A record has a line and no column.
            "NEW_BUFFER @A FROM_FILE in.hex\n":
                [("in.hex", "2", None, "error", "record-checksum"),
                 ("a: b.tsn", "1", "25", "note", None)],
            # What the program quotes from the script is not a problem of its own.
            "\nPRINT_HASH @C:1: error: no\n": [("a: b.tsn", "2", "14", "error", "syntax")],
        }
        for script, expected in cases.items():
            with self.subTest(script):
                found, texts = self.problems(script)
                self.assertEqual(found, expected)
                self.assertTrue(all(text and "[" not in text for text in texts), texts)

    def test_documented_name(self):
        self.assertIn("$" + MATCHER["name"], (EXTENSION / "README.md").read_text())


if __name__ == "__main__":
    unittest.main()
