#!/usr/bin/env python3
"""Tests that the outputs of a run appear together or not at all, with real causes of trouble:

  together.py tessaron [KILLS]

KILLS is the number of runs that are killed at random moments.
"""
import fcntl
import os
import pathlib
import random
import re
import resource
import signal
import subprocess
import sys
import tempfile
import time
import unittest

SKIPPED = 77
OUTPUTS = 5
PROGRAM = pathlib.Path(sys.argv[1]).resolve()
KILLS = int(sys.argv[2]) if len(sys.argv) > 2 else 60
TEMPORARY = re.compile(r"\.out\d\.bin\.tessaron-\d+-\d+\.tmp(\.old)?")


def script(byte, size=0x4000, before="", outputs=OUTPUTS):
    """Writes the same byte, `size` times, to each output."""
    return ("NEW_BUFFER @A EMPTY -useBufferRange={0, %d}\nFILL_BUFFER @A WITH_FILLER {%d}\n%s" %
            (size, byte, before) +
            "".join("WRITE_FILE out%d.bin WITH_BUFFERS {@A} -setFormat=RawBinary\n" % i
                    for i in range(outputs)))


class Together(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.path = pathlib.Path(self.folder.name)

    def tearDown(self):
        self.folder.cleanup()

    def run_script(self, text, *arguments, prefix=(), **options):
        """A run, whose last line, which names pages to read, is left out."""
        (self.path / "script.tsn").write_text(text)
        done = subprocess.run([*prefix, PROGRAM, "run", "script.tsn", *arguments], cwd=self.path,
                              capture_output=True, text=True, check=False, **options)
        done.stderr = done.stderr.partition("more: tessaron help")[0]
        return done

    def put_old(self, outputs=OUTPUTS):
        for i in range(outputs):
            (self.path / ("out%d.bin" % i)).write_bytes(b"\0" * 0x4000)

    def bytes_of_outputs(self, outputs=OUTPUTS):
        """The byte that each output has, whole."""
        found = []
        for i in range(outputs):
            contents = (self.path / ("out%d.bin" % i)).read_bytes()
            self.assertEqual(contents, contents[:1] * len(contents))
            self.assertNotEqual(contents, b"")
            found.append(contents[0])
        return found

    def names(self):
        return sorted(name for name in os.listdir(self.path) if name != "script.tsn")

    def check_names(self, *others):
        self.assertEqual(self.names(), sorted(["out%d.bin" % i for i in range(OUTPUTS)] +
                                              list(others)))

    def inject(self, *faults):
        prefix = ["strace", "-f", "-o", "/dev/null"]
        for fault in faults:
            prefix += ["-e", "inject=" + fault]
        return prefix

    def test_a_rename_that_fails_takes_the_others_back(self):
        for broken in range(1, OUTPUTS + 1):
            self.put_old()
            done = self.run_script(script(1), prefix=self.inject(
                "renameat:error=EIO:when=%d" % broken))
            self.assertEqual((done.returncode, done.stderr), (
                1, "tessaron: error: cannot write out%d.bin: Input/output error [cannot-write]\n" %
                (broken - 1)))
            self.assertEqual(self.bytes_of_outputs(), [0] * OUTPUTS)
            self.check_names()

    def test_new_outputs_are_taken_back_as_well(self):
        done = self.run_script(script(1), prefix=self.inject("renameat:error=EIO:when=4"))
        self.assertEqual((done.returncode, self.names()), (1, []))

    def test_what_cannot_be_taken_back_is_named(self):
        """A file system without hard links has no second name of the old files."""
        self.put_old()
        done = self.run_script(script(1), prefix=self.inject(
            "linkat:error=EPERM", "renameat:error=EIO:when=3"))
        self.assertEqual((done.returncode, done.stderr), (
            1, "tessaron: error: cannot write out2.bin: Input/output error [cannot-write]\n"
               "tessaron: note: these outputs are new nevertheless, since the files that they "
               "replaced could not be restored: out0.bin, out1.bin\n"))
        self.assertEqual(self.bytes_of_outputs(), [1, 1, 0, 0, 0])
        self.check_names()

    def test_interrupts_wait_during_the_renames(self):
        for name in ("SIGINT", "SIGTERM", "SIGHUP"):
            for when in range(1, OUTPUTS + 1):
                self.put_old()
                done = self.run_script(script(1), prefix=self.inject(
                    "renameat:signal=%s:when=%d" % (name, when)), preexec_fn=restore_signals)
                self.assertEqual(done.returncode, -getattr(signal, name))
                self.assertEqual(self.bytes_of_outputs(), [1] * OUTPUTS)
                self.check_names()

    def test_an_interrupt_before_the_renames_leaves_nothing(self):
        for fault in ["linkat:signal=SIGTERM:when=%d" % i for i in (1, 2, OUTPUTS - 1)] + \
                     ["openat,open:signal=SIGTERM:when=%d" % i for i in range(1, 16)]:
            self.put_old()
            done = self.run_script(script(1), prefix=self.inject(fault),
                                   preexec_fn=restore_signals)
            is_new = done.returncode == 0
            self.assertIn(done.returncode, (0, -signal.SIGTERM))
            self.assertEqual(self.bytes_of_outputs(), [int(is_new)] * OUTPUTS, fault)
            self.check_names()

    def test_a_folder_that_stays_locked_is_not_waited_for_for_ever(self):
        folder = os.open(self.path, os.O_RDONLY | os.O_DIRECTORY)
        self.addCleanup(os.close, folder)
        fcntl.flock(folder, fcntl.LOCK_EX)
        start = time.monotonic()
        done = self.run_script(script(1))
        self.assertTrue(9.9 < time.monotonic() - start < 30)
        self.assertEqual((done.returncode, done.stderr), (
            0, "tessaron: note: another program keeps the folder . locked; the outputs were put in "
               "place without waiting longer\n"))
        self.assertEqual(self.bytes_of_outputs(), [1] * OUTPUTS)
        self.check_names()

    def test_a_mount_point_keeps_all_as_they_were(self):
        self.put_old()
        target = self.path / "out3.bin"
        if subprocess.run(["mount", "--bind", target, target], stderr=subprocess.DEVNULL,
                          check=False).returncode != 0:
            self.skipTest("nothing can be mounted here")
        try:
            done = self.run_script(script(1))
        finally:
            subprocess.run(["umount", target], check=True)
        self.assertEqual((done.returncode, done.stderr), (
            1, "tessaron: error: cannot write out3.bin: Device or resource busy [cannot-write]\n"))
        self.assertEqual(self.bytes_of_outputs(), [0] * OUTPUTS)
        self.check_names()

    def test_a_full_device_keeps_all_as_they_were(self):
        self.put_old()
        done = self.run_script(
            script(1) + "WRITE_FILE /dev/full WITH_BUFFERS {@A} -setFormat=RawBinary\n")
        self.assertEqual((done.returncode, done.stderr), (
            1, "tessaron: error: cannot write /dev/full: No space left on device [cannot-write]\n"))
        self.assertEqual(self.bytes_of_outputs(), [0] * OUTPUTS)
        self.check_names()

    def test_a_device_that_fails_when_it_is_closed_takes_all_files_back(self):
        self.put_old()
        prefix = self.inject("close:error=EIO") + ["-P", "/dev/zero"]
        if subprocess.run([*prefix, "true"], capture_output=True, check=False).returncode:
            self.skipTest("strace may not trace here")
        done = self.run_script(
            script(1) + "WRITE_FILE /dev/zero WITH_BUFFERS {@A} -setFormat=RawBinary\n",
            prefix=prefix)
        self.assertEqual((done.returncode, done.stderr), (
            1, "tessaron: error: cannot write /dev/zero: Input/output error [cannot-write]\n"))
        self.assertEqual(self.bytes_of_outputs(), [0] * OUTPUTS)
        self.check_names()

    def test_a_failed_run_starts_no_program(self):
        self.put_old()
        done = self.run_script(script(1, before="NEW_CRC @C FROM_BUFFER @Missing\n") +
                               "CALL_APP touch WITH_ARGUMENTS {called}\n", "--keep-going")
        self.assertEqual(done.returncode, 1)
        self.assertIn("note: no program was started after the first error", done.stderr)
        self.assertEqual(self.bytes_of_outputs(), [0] * OUTPUTS)
        self.check_names()

    def test_two_runs_do_not_mix_their_outputs(self):
        for byte in (1, 2):
            (self.path / ("%d.tsn" % byte)).write_text(script(byte))
        for _ in range(20):
            runs = [subprocess.Popen([PROGRAM, "run", "%d.tsn" % byte], cwd=self.path)
                    for byte in (1, 2, 1, 2)]
            self.assertEqual([run.wait() for run in runs], [0] * 4)
            self.assertEqual(len(set(self.bytes_of_outputs())), 1)
        self.check_names("1.tsn", "2.tsn")

    def test_little_memory(self):
        """Whatever runs out of memory, a thread of the digests included, nothing is left."""
        outputs = 8
        self.put_old(outputs)
        text = script(1, 1 << 22, outputs=outputs)
        codes = set()
        for limit in range(20 << 20, 60 << 20, 1 << 20):
            done = self.run_script(text, "--manifest", "m.json", preexec_fn=lambda: (
                resource.setrlimit(resource.RLIMIT_AS, (limit, limit))))
            codes.add(done.returncode)
            if done.returncode == 0:
                (self.path / "m.json").unlink()
                self.put_old(outputs)
                continue
            self.assertIn("[out-of-memory]", done.stderr, limit)
            self.assertEqual(self.bytes_of_outputs(outputs), [0] * outputs)
            self.assertEqual(self.names(), ["out%d.bin" % i for i in range(outputs)])
        self.assertEqual(codes, {0, 1})
        # The script itself takes more than there is.
        done = self.run_script("PRINT_TEXT a\n" * 300_000, preexec_fn=lambda: (
            resource.setrlimit(resource.RLIMIT_AS, (60 << 20, 60 << 20))))
        self.assertEqual((done.returncode, done.stderr), (
            1, "tessaron: error: there is not enough memory for this run [out-of-memory]\n"))

    def test_few_addresses(self):
        """An image whose range the process has no addresses for leaves the old outputs."""
        self.put_old(1)
        (self.path / "far.hex").write_text(":0100000001FE\n:02000004FFFFFC\n:01FFFF0002FF\n"
                                           ":00000001FF\n")
        text = ("NEW_BUFFER @A FROM_FILE far.hex\n"
                "WRITE_FILE out0.bin WITH_BUFFERS {@A} -skipUnwritten -setFormat=TiTxt\n")
        for limit, code in ((60 << 20, 1), (2 << 30, 1), (5 << 30, 1), (32 << 30, 0)):
            done = self.run_script(text, "--ignore", "format-ending", preexec_fn=lambda: (
                resource.setrlimit(resource.RLIMIT_AS, (limit, limit))))
            self.assertEqual(done.returncode, code, (limit, done.stderr))
            if code != 0:
                self.assertIn("not enough memory for far.hex [out-of-memory]", done.stderr)
                self.assertEqual(self.bytes_of_outputs(1), [0])
        self.assertEqual((self.path / "out0.bin").read_text(), "@0000\n01\n@FFFFFFFF\n02\nq\n")

    def test_killed_runs_leave_whole_files(self):
        self.put_old()
        (self.path / "script.tsn").write_text(script(1))
        times = []
        for _ in range(5):
            start = time.monotonic()
            subprocess.run([PROGRAM, "run", "script.tsn"], cwd=self.path, check=True)
            times.append(time.monotonic() - start)
        shortest = min(times)  # others may have waited for a processor
        killed = 0
        for number in range(KILLS):
            byte = number % 250 + 2
            (self.path / "script.tsn").write_text(script(byte, 0x4000 + number))
            run = subprocess.Popen([PROGRAM, "run", "script.tsn"], cwd=self.path)
            time.sleep(random.random() * shortest * 1.2)
            run.kill()
            killed += run.wait() != 0
            self.bytes_of_outputs()
            for name in self.names():
                if not re.fullmatch(r"out\d\.bin", name):
                    self.assertRegex(name, TEMPORARY)
                    (self.path / name).unlink()
        self.assertGreater(killed, KILLS // 4)


def restore_signals():
    """The test may have been started with interrupts ignored, which a program inherits."""
    for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
        signal.signal(number, signal.SIG_DFL)


def main():
    suite = unittest.defaultTestLoader.loadTestsFromTestCase(Together)
    result = unittest.TextTestRunner(stream=sys.stdout, verbosity=2).run(suite)
    if not result.wasSuccessful():
        return 1
    return SKIPPED if len(result.skipped) == result.testsRun else 0


if __name__ == "__main__":
    sys.exit(main())
