#!/usr/bin/env python3
"""Runs the programs for Windows with standard streams that are odd:

    streams.py emulator CmdTessaron.exe tessaron.exe run_closed.exe
"""
import pathlib
import subprocess
import sys
import tempfile
import unittest

EMULATOR, CLASSIC, STRICT, RUN_CLOSED = (str(pathlib.Path(argument).resolve())
                                         for argument in sys.argv[1:5])
del sys.argv[1:5]
SCRIPT = b"NEW_BUFFER A FROM_VALUES {65}\nWRITE_FILE out.bin WITH_BUFFERS {A} " \
         b"-setFormat=RawBinary\nPRINT_TEXT {done}\n"


class Streams(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.path = pathlib.Path(self.folder.name)
        (self.path / "script.tsn").write_bytes(SCRIPT)

    def run_closed(self, program, *arguments, closed="", **options):
        if "input" not in options:
            options["stdin"] = subprocess.DEVNULL
        closer = [RUN_CLOSED, closed] if closed else []
        return subprocess.run([EMULATOR, *closer, program, *arguments], cwd=self.path, check=False,
                              capture_output=True, timeout=60, **options)

    def output(self):
        return (self.path / "out.bin").read_bytes()

    def test_closed_streams_lose_their_text_and_nothing_else(self):
        for closed in ("0", "1", "2", "012"):
            for program, arguments in ((CLASSIC, ()), (STRICT, ("run",))):
                with self.subTest(program=program, closed=closed):
                    (self.path / "out.bin").unlink(missing_ok=True)
                    done = self.run_closed(program, *arguments, "script.tsn", closed=closed)
                    if program == STRICT and "1" in closed:
                        # What a statement printed is lost, which is a failure: nothing is written.
                        self.assertEqual(done.returncode, 1)
                        self.assertFalse((self.path / "out.bin").exists())
                        continue
                    # No message has gone into the file, though its number was free.
                    self.assertEqual(self.output(), b"A")
                    if "1" not in closed:
                        self.assertIn(b"done\r\n", done.stdout)
                        self.assertEqual(done.returncode, 0)
                    elif "2" not in closed:
                        self.assertIn(b"standard output", done.stderr.lower())

    def test_a_script_comes_from_standard_input(self):
        done = self.run_closed(STRICT, "run", "-", input=SCRIPT.replace(b"\n", b"\r\n"))
        self.assertEqual((done.stdout, done.stderr, done.returncode), (b"done\r\n", b"", 0))
        self.assertEqual(self.output(), b"A")
        done = self.run_closed(STRICT, "run", "-", closed="0")
        self.assertIn(b"cannot open the script -: Bad file descriptor", done.stderr)
        self.assertEqual(done.returncode, 1)

    def test_the_banner_is_that_of_the_resource(self):
        (self.path / "renamed.exe").write_bytes(pathlib.Path(CLASSIC).read_bytes())
        for program in (CLASSIC, str(self.path / "renamed.exe")):
            banner = self.run_closed(program).stdout.split(b"\r\n")
            self.assertRegex(banner[0], rb"^CmdTessaron version \d+\.\d+ from \w{3} [ \d]\d \d{4}$")
            self.assertRegex(banner[1], rb"^Copyright \(C\) \d{4} ")


if __name__ == "__main__":
    unittest.main()
