#!/usr/bin/env python3
"""Builds the examples for make and ninja with the program TESSARON:  build_tools.py TESSARON"""
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

PROGRAM = pathlib.Path(sys.argv.pop(1)).resolve()
EXAMPLES = pathlib.Path(__file__).resolve().parents[2] / "examples"


class Builds(unittest.TestCase):
    def setUp(self):
        self.root = pathlib.Path(tempfile.mkdtemp(prefix="tessaron-build-"))
        self.addCleanup(shutil.rmtree, self.root)
        shutil.copytree(EXAMPLES, self.root / "examples")
        self.firmware = self.root / "examples" / "firmware"

    def build(self, tool):
        """Returns the exit code and whether the script ran; its output is in self.log."""
        environment = dict(os.environ, PATH="%s:%s" % (PROGRAM.parent, os.environ["PATH"]))
        done = subprocess.run([tool], cwd=self.root / "examples" / (tool + "-firmware"),
                              env=environment, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                              text=True, timeout=60)
        self.log = done.stdout
        return done.returncode == 0, "CRC-32 in stored order" in done.stdout

    def assert_built_once(self, tool):
        self.assertEqual(self.build(tool), (True, True), self.log)
        self.assertEqual(self.build(tool), (True, False), self.log)

    def test_example(self):
        for tool in ("make", "ninja"):
            with self.subTest(tool):
                release = self.root / "examples" / (tool + "-firmware") / "release.hex"
                expected = (self.firmware / "expected.hex").read_bytes()
                self.assert_built_once(tool)
                self.assertEqual(release.read_bytes(), expected)
                for name in ("firmware.hex", "release.tsn"):
                    (self.firmware / name).touch()
                    self.assert_built_once(tool)

                # No rule names the second input.
                script = self.firmware / "release.tsn"
                good = script.read_text()
                second = self.firmware / "second.bin"
                second.write_bytes(b"\1")
                script.write_text(good + "NEW_BUFFER @S FROM_FILE_BINARY ../firmware/second.bin\n")
                self.assert_built_once(tool)
                second.touch()
                self.assert_built_once(tool)

                # The script would write another image before it fails.
                script.write_text(good.replace("0xDE", "0xDF") +
                                  "NEW_BUFFER @S FROM_FILE absent.hex\n")
                for _ in range(2):
                    self.assertFalse(self.build(tool)[0], self.log)
                    self.assertIn("[cannot-open]", self.log)
                    self.assertEqual(release.read_bytes(), expected)
                script.write_text(good)
                self.assert_built_once(tool)
                self.assertEqual(release.read_bytes(), expected)


if __name__ == "__main__":
    unittest.main()
