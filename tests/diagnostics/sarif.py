#!/usr/bin/env python3
"""Runs the cases of this folder with --diagnostics=sarif:  sarif.py tessaron

Each document is held to the schema of SARIF 2.1.0, and to what --diagnostics=json prints of the same
run, of which it has every diagnostic once."""
import json
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest
import urllib.parse

sys.path.append(str(pathlib.Path(__file__).resolve().parents[1]))
sys.dont_write_bytecode = True
import require  # noqa: E402

jsonschema = require.module("jsonschema")

PROGRAM = str(pathlib.Path(sys.argv.pop(1)).resolve())
TESTS = pathlib.Path(__file__).resolve().parents[1]
SCHEMA = json.loads((TESTS / "data/sarif/sarif-2.1.0-rtm.5.json").read_text())
jsonschema.Draft4Validator.check_schema(SCHEMA)


def link(node):
    """Puts what references lead to in their place, since Debian's jsonschema takes long to find it."""
    for key, value in list(node.items() if isinstance(node, dict) else enumerate(node)):
        if isinstance(value, dict) and "$ref" in value:
            node[key] = SCHEMA["definitions"][value["$ref"].removeprefix("#/definitions/")]
        elif isinstance(value, (dict, list)):
            link(value)


link(SCHEMA)
VALIDATOR = jsonschema.Draft4Validator(SCHEMA)


def tessaron(*arguments):
    return subprocess.run([PROGRAM, *arguments], stdin=subprocess.DEVNULL, capture_output=True,
                          check=False)


def location(physical):
    """File, line, column and length."""
    region = physical.get("region", {})
    column = region.get("startColumn")
    return (urllib.parse.unquote(physical["artifactLocation"]["uri"]), region.get("startLine"), column,
            column and region["endColumn"] - column)


def place(listed):
    return listed["file"], listed.get("line"), listed.get("column"), listed.get("length")


class Sarif(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        os.chdir(self.folder.name)

    def tearDown(self):
        os.chdir("/")
        self.folder.cleanup()

    def run_of(self, done):
        log = json.loads(done.stderr)
        VALIDATOR.validate(log)
        run, = log["runs"]
        self.assertEqual(run["columnKind"], "unicodeCodePoints")
        self.assertEqual(run["invocations"][0]["exitCode"], done.returncode)
        self.assertEqual(run["invocations"][0]["executionSuccessful"], done.returncode == 0)
        return run

    def compare(self, run, listed, script):
        rules = run["tool"]["driver"]["rules"]
        self.assertEqual(len({rule["id"] for rule in rules}), len(rules))
        results, notes = [], []
        for one in listed:
            related = one.get("notes", [])
            text = "; ".join(filter(None, (one["text"], one.get("hint"))))
            text += "".join("\nnote: " + note["text"] for note in related if "file" not in note)
            where = place(one) if "file" in one else (script, None, None, None)
            if "name" in one:
                results.append((one["name"], one["severity"], text, where,
                                [(place(note), note["text"]) for note in related if "file" in note]))
            else:
                notes.append((text, "file" in one and where))
        self.assertEqual(results, [
            (rules[one["ruleIndex"]]["id"], one["level"], one["message"]["text"],
             location(one["locations"][0]["physicalLocation"]),
             [(location(other["physicalLocation"]), other["message"]["text"])
              for other in one.get("relatedLocations", [])])
            for one in run["results"]])
        self.assertEqual([one["ruleId"] for one in run["results"]], [one[0] for one in results])
        self.assertEqual(notes, [
            (one["message"]["text"],
             "locations" in one and location(one["locations"][0]["physicalLocation"]))
            for one in run["invocations"][0].get("toolExecutionNotifications", [])])

    def test_cases(self):
        seen = set()
        for case in sorted(pathlib.Path(__file__).resolve().parent.iterdir()):
            arguments = case / "arguments"
            if not (case / "script.tsn").exists() or (case / "prepare.sh").exists() \
                    or not arguments.exists():
                continue
            options = arguments.read_text().splitlines()
            # A program that is called prints to the same stream.
            if options[0] not in ("run", "check") or "script.tsn" not in options \
                    or "CALL_APP" in (case / "script.tsn").read_text(errors="replace"):
                continue
            for form in ("sarif", "json"):
                shutil.copytree(case, case.name + form)
                os.chdir(case.name + form)
                done = tessaron(*options, "--diagnostics=" + form)
                os.chdir("..")
                if done.returncode == 2 and done.stderr.startswith(b"tessaron: "):
                    break  # the options are refused
                if form == "sarif":
                    run = self.run_of(done)
                    seen |= {one["ruleId"] for one in run["results"]}
                    continue
                with self.subTest(case.name):
                    self.compare(run, [json.loads(line) for line in done.stderr.splitlines()],
                                 "script.tsn")
        self.assertGreater(len(seen), 40)

    def test_runs_that_end_early(self):
        """There is always one document."""
        pathlib.Path("good.tsn").write_text("PRINT_TEXT {good}\n")
        pathlib.Path("no.hex").write_text(":00000001FF\n")
        for arguments, code, rules in (
                (("run", "good.tsn"), 0, []),
                (("run", "none.tsn"), 1, ["cannot-open"]),
                (("run", "good.tsn", "-C", "nowhere"), 2, ["cannot-open"]),
                (("run", "no.hex"), 2, ["syntax"]),
                (("map", "none.hex"), 1, ["cannot-open"]),
                (("convert", "no.hex", "out.hex"), 1, ["empty-image"])):
            with self.subTest(arguments):
                done = tessaron(*arguments, "--diagnostics=sarif")
                self.assertEqual(done.returncode, code)
                self.assertEqual([one["ruleId"] for one in self.run_of(done)["results"]], rules)

    def test_fixes(self):
        """What a fix writes takes the diagnostic away."""
        for line, fixed in (("PRINT_CRC @Cr", "PRINT_CRC @Crc"),
                            ("PRINT_CRK @Crc", "PRINT_CRC @Crc"),
                            ("PRINT_TEXT {\u00E4} PRINT_CRC @Cr", "PRINT_TEXT {\u00E4} PRINT_CRC @Crc")):
            text = "NEW_BUFFER @A FROM_VALUES {1}\nNEW_CRC @Crc FROM_BUFFER @A\n%s\n"
            pathlib.Path("fix.tsn").write_text(text % line)
            result, = self.run_of(tessaron("run", "fix.tsn", "--diagnostics=sarif"))["results"]
            change, = result["fixes"][0]["artifactChanges"]
            self.assertEqual(change["artifactLocation"]["uri"], "fix.tsn")
            replacement, = change["replacements"]
            region = replacement["deletedRegion"]
            self.assertEqual(region["startLine"], 3)
            begin, end = region["startColumn"] - 1, region["endColumn"] - 1
            self.assertEqual(line[:begin] + replacement["insertedContent"]["text"] + line[end:], fixed)
        # A variable has the word.
        pathlib.Path("fix.tsn").write_text(text % "PRINT_CRC name")
        result, = self.run_of(tessaron("run", "fix.tsn", "name=@Cr", "--diagnostics=sarif"))["results"]
        self.assertNotIn("fixes", result)


if __name__ == "__main__":
    unittest.main()
