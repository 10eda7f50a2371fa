#!/usr/bin/env python3
"""Runs `PROGRAM test` as a user does: unchanged, with a damaged reference, without its folder.

    selftest_runs.py PROGRAM [EMULATOR...]
"""
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

PROGRAM = pathlib.Path(sys.argv[1]).resolve()
EMULATOR = sys.argv[2:]
IS_WINDOWS = PROGRAM.suffix == ".exe"
del sys.argv[1:]
DATA = pathlib.Path(__file__).resolve().parents[2] / "selftest" / "data"
REFERENCE = (DATA / "reference_output.hex").read_text()
# The image ends with the digest (16 bytes) and the CRC (4 bytes).
LAST_RECORDS = REFERENCE.splitlines()[-3:-1]
DIGEST = LAST_RECORDS[0][33:41] + LAST_RECORDS[1][9:33]
CRC_IN_STORED_ORDER = bytes.fromhex(LAST_RECORDS[1][33:41])[::-1].hex().upper()

NO_PROBLEM = "No problem running CUnit: CU_get_error() == CUE_SUCCESS."
FAILURE = "    1. testkvtessaron:104  - (result_is_ok == true) ? 1 : 0"


class SelfTestRuns(unittest.TestCase):
    def setUp(self):
        self.root = pathlib.Path(tempfile.mkdtemp(prefix="tessaron-selftest-"))
        self.addCleanup(shutil.rmtree, self.root)
        (self.root / "work").mkdir()
        self.samples = self.root / "KvTessaron" / "__sample_files"
        self.samples.mkdir(parents=True)
        self.output = self.samples / "__output_ref_app_all.hex"

    def run_test(self, program=PROGRAM, arguments=("test",)):
        done = subprocess.run([*EMULATOR, program, *arguments], cwd=self.root / "work", capture_output=True,
                              text=True, timeout=60)
        self.assertEqual(done.returncode, 0)
        self.assertEqual(done.stdout.splitlines()[-1], NO_PROBLEM)
        return done

    def summary(self, text):
        """The counts in CUnit's summary, by row."""
        self.assertIn("Suite: kv_tessaron_test\n  Test: test_tessaron_all ...\n", text)
        rows = re.findall(r"^ +(suites|tests|asserts) +(.*)$", text, re.MULTILINE)
        return {name: counts.split() for name, counts in rows}

    def assert_passed(self, done):
        self.assertEqual(self.summary(done.stdout), {"suites": ["1", "1", "n/a", "0", "0"],
                                                     "tests": ["1", "1", "1", "0", "0"],
                                                     "asserts": ["1", "1", "1", "0", "n/a"]})
        self.assertEqual(done.stderr, "")

    def assert_failed(self, done, differences):
        self.assertEqual(self.summary(done.stdout), {"suites": ["1", "1", "n/a", "0", "0"],
                                                     "tests": ["1", "1", "0", "1", "0"],
                                                     "asserts": ["1", "1", "0", "1", "n/a"]})
        lines = done.stdout.splitlines()
        self.assertEqual([line for line in lines if line.startswith("    1.")], [FAILURE])
        self.assertEqual([line for line in lines if line.startswith("Difference")],
                         ["Difference at line number: %d" % number for number in differences])

    def test_passes_over_and_over(self):
        for arguments in (("test",), ("test", "a=1")):
            done = self.run_test(arguments=arguments)
            self.assert_passed(done)
            self.assertIn(
                "The CRC32 program checksum at 0x0801FFCC is: 0x%s (big endian, forward order)\n"
                "The HASH  program checksum at 0x0001FFEC is: %s\n"
                "Crc : @CrcCode\n  CrcValue: 0x%s\nHash : @HashCode\n  HashValue: %s\n"
                % (CRC_IN_STORED_ORDER, DIGEST, CRC_IN_STORED_ORDER, DIGEST), done.stdout)
            self.assertEqual(self.output.read_text(), REFERENCE)
            self.assertEqual(sorted(os.listdir(self.samples)),
                             ["__input_ref_app.hex", "__input_tessaron_script.tsn",
                              "__output_ref_app_all.hex", "__output_ref_app_all.hexSrec"])
            for name, table in (("__input_ref_app.hex", "sample_input.hex"),
                                ("__input_tessaron_script.tsn", "sample_script.tsn")):
                wanted = (DATA / table).read_bytes()
                if IS_WINDOWS:
                    wanted = wanted.replace(b"\n", b"\r\n")
                self.assertEqual((self.samples / name).read_bytes(), wanted)

    def test_names_the_line_of_a_changed_byte(self):
        program = PROGRAM.read_bytes()
        lines = REFERENCE.splitlines()
        # Lines in no other table: the end of the firmware, the digest, and its end with the CRC.
        for number in (3508, 8193, 8194):
            line = lines[number - 1].encode()
            self.assertIn(line, program)
            changed = self.root / "changed.exe"
            changed.write_bytes(program.replace(line, line[:-1] + b"?"))
            changed.chmod(0o755)
            self.assert_failed(self.run_test(changed), [number])

    def test_fails_without_its_folder(self):
        shutil.rmtree(self.root / "KvTessaron")
        done = self.run_test()
        self.assert_failed(done, [])
        script = "../KvTessaron/__sample_files/__input_tessaron_script.tsn"
        if IS_WINDOWS:
            script = script.replace("/", "\\")
        self.assertEqual(done.stderr, "Could not open input file: %s\n" % script)
        self.assertFalse((self.root / "KvTessaron").exists())

    def test_fails_when_the_output_is_right_but_the_script_did_not_run(self):
        self.run_test()
        script = self.samples / "__input_tessaron_script.tsn"
        script.unlink()
        script.mkdir()
        self.assert_failed(self.run_test(), [])
        self.assertEqual(self.output.read_text(), REFERENCE)

    def test_fails_without_an_output(self):
        self.output.mkdir()
        done = self.run_test()
        self.assert_failed(done, [])
        self.assertIn("could not be written !\nOperation aborted.\n", done.stdout)


if __name__ == "__main__":
    unittest.main()
