#!/usr/bin/env python3
"""Runs the program while the operating system fails in various ways, and checks the outcome.

    fault_runs.py PROGRAM GROUP [TEST...]     GROUP is a class of this file; its TESTs are left out

After any fault, a run must continue with the next statement, end by itself, print only messages of
the manual, and leave every file either unchanged or complete, or report that it is incomplete.
Exits with 77 if no test of the group can run on this machine.
"""
import os
import pathlib
import re
import resource
import shutil
import subprocess
import sys
import tempfile
import unittest

SKIPPED = 77
NOBODY = "65534"
NOT_WRITTEN = "Warning: File %s could not be written completely !\n"
NOT_READ = "Warning: File %s could not be read completely !\n"
NOT_PRINTED = "Warning: Standard output could not be written completely !\n"
REFUSED = "Error: File %s could not be written !\nOperation aborted.\n"
UNOPENED = ("Error: File %s could not be opened !\n"
            "Operation aborted. Maybe stack overflow, buffer too big\n")

THREE = "NEW_BUFFER A FROM_VALUES {1, 2, 3}\n"
THREE_AS_HEX = ":020000040000FA\n:03000000010203F7\n:00000001FF\n"
# 2.7 million characters of Intel HEX: more than one write.
MEGA = "NEW_BUFFER M EMPTY -useBufferRange={0, 1000000}\n"
WRITE_M = "WRITE_FILE m.hex WITH_BUFFERS {M}\n"
READ = "read,pread64"
WRITE_A = "WRITE_FILE a.hex WITH_BUFFERS {A}\n"


def shell(before, redirections=""):
    """A command prefix that executes `before` in a shell and then the program."""
    return ("sh", "-c", '%s; exec "$@" %s' % (before, redirections), "sh")


class Faults(unittest.TestCase):
    program = None

    def setUp(self):
        self.work = pathlib.Path(tempfile.mkdtemp(prefix="tessaron-faults-"))
        self.addCleanup(shutil.rmtree, self.work)
        self.work.chmod(0o755)

    def write(self, name, contents):
        path = self.work / name
        path.write_bytes(contents.encode() if isinstance(contents, str) else contents)
        return path

    def read(self, name):
        return (self.work / name).read_bytes()

    def run_script(self, script, prefix=(), **options):
        self.write("script.tsn", script)
        options = {"stdin": subprocess.DEVNULL, "stdout": subprocess.PIPE,
                   "stderr": subprocess.PIPE, "program": self.program, **options}
        program = str(options.pop("program"))
        return subprocess.run([*prefix, program, "script.tsn"], cwd=self.work, text=True,
                              timeout=60, **options)

    def printed(self, done):
        """The output of the statements, without banner and time."""
        found = re.fullmatch(r".*\n.*\n\n(.*)\nKvTessaron Total Time: \S+ seconds\n", done.stdout,
                             re.S)
        self.assertTrue(found, done.stdout + done.stderr)
        return found.group(1)

    def check(self, script, printed="", errors="", **options):
        done = self.run_script(script, **options)
        self.assertEqual((self.printed(done), done.stderr, done.returncode), (printed, errors, 0))

    def check_three(self):
        self.assertEqual(self.read("a.hex").decode(), THREE_AS_HEX)

    def mega(self):
        """The expected file of image M."""
        self.check(MEGA + WRITE_M)
        return self.read("m.hex")

    def check_beginning(self, name, whole):
        contents = self.read(name)
        self.assertTrue(0 < len(contents) < len(whole))
        self.assertEqual(contents, whole[:len(contents)])


class Streams(Faults):
    """Standard output on a full device, and on a pipe that nobody reads."""
    SCRIPT = THREE + "PRINT_TEXT {one}\nWRITE_FILE b.hex WITH_BUFFERS {A}\nPRINT_TEXT {two}\n" \
        + WRITE_A

    def check_lost(self, errors, **streams):
        done = self.run_script(self.SCRIPT, **streams)
        self.assertEqual((done.stderr, done.returncode), (errors, 0))
        self.assertEqual(self.read("b.hex").decode(), THREE_AS_HEX)
        self.check_three()

    def test_output_that_nobody_reads(self):
        reading, writing = os.pipe()
        os.close(reading)
        self.addCleanup(os.close, writing)
        self.check_lost(NOT_PRINTED, stdout=writing)

    def test_output_on_a_full_device(self):
        with open("/dev/full", "wb") as full:
            self.check_lost(NOT_PRINTED, stdout=full)
            self.check_lost(None, stdout=full, stderr=full)

    def test_a_print_of_many_writes(self):
        self.write("in.bin", bytes(range(256)) * 100)
        rows = [" " + "".join(" 0x%08X" % (i % 256) for i in range(at, min(at + 13, 25600)))
                for at in range(0, 25600, 13)]
        self.check("NEW_BUFFER B FROM_FILE_BINARY in.bin\nPRINT_BUFFER B\n",
                   "Buffer : B\n  StartAddress: 0x00000000\n  DataLength  : 0x00006400\n"
                   "    Content Area (0x00000000 , 0x00006400)\n"
                   + "".join("    %s\n" % row for row in rows))

    def test_called_programs_inherit_the_signal_dispositions(self):
        script = 'CALL_APP sh WITH_ARGUMENTS {-c "kill -s PIPE \\$\\$; echo >alive"}\n'
        self.run_script(script)
        self.assertFalse((self.work / "alive").exists())
        self.run_script(script, shell('trap "" PIPE'))
        self.assertTrue((self.work / "alive").exists())


class Files(Faults):
    """Output files that accept only a part of the data."""

    def test_a_limit_on_the_size_of_files(self):
        whole = self.mega()
        self.check(MEGA + THREE + WRITE_M + WRITE_A, errors=NOT_WRITTEN % "m.hex",
                   prefix=shell("ulimit -f 100"))
        self.check_beginning("m.hex", whole)
        self.check_three()

    def piped(self, most):
        """What a reader of the output `pipe` gets that stops after `most` bytes."""
        path = self.work / "pipe"
        os.mkfifo(path)
        reader = os.open(path, os.O_RDONLY | os.O_NONBLOCK)
        self.write("script.tsn", MEGA + THREE + "WRITE_FILE pipe WITH_BUFFERS {M}\n" + WRITE_A)
        run = subprocess.Popen([str(self.program), "script.tsn"], cwd=self.work, text=True,
                               stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
        got, is_over = b"", False
        while not is_over and len(got) < most:
            is_over = run.poll() is not None
            try:
                got += os.read(reader, min(1 << 16, most - len(got)))
            except BlockingIOError:
                pass
        os.close(reader)
        path.unlink()
        errors = run.communicate(timeout=60)[1]
        self.check_three()
        return got, errors, run.returncode

    def test_a_pipe(self):
        whole = self.mega()
        self.assertEqual(self.piped(1 << 30), (whole, "", 0))
        self.assertEqual(self.piped(10), (whole[:10], NOT_WRITTEN % "pipe", 0))


class Rights(Faults):
    """A user without permissions: nobody, if root runs this test."""

    def setUp(self):
        super().setUp()
        self.prefix = ()
        if os.geteuid() == 0:
            self.prefix = ("setpriv", "--reuid", NOBODY, "--regid", NOBODY, "--clear-groups")
        # That user may have no access to the build folder.
        self.program = shutil.copy(self.program, self.work / "program")
        for name in ("closed", "dark", "open"):
            (self.work / name).mkdir()
        (self.work / "open").chmod(0o777)
        for name, mode in (("closed/old.hex", 0o666), ("kept.hex", 0o444), ("secret.hex", 0),
                           ("dark/in.hex", 0o666)):
            self.write(name, "kept").chmod(mode)
        (self.work / "closed").chmod(0o555)
        (self.work / "dark").chmod(0)
        self.addCleanup((self.work / "closed").chmod, 0o755)
        self.addCleanup((self.work / "dark").chmod, 0o755)

    def check(self, script, *arguments, **options):
        super().check(script, *arguments, prefix=self.prefix, program=self.program, **options)

    def test_outputs(self):
        refused = ("closed/new.hex", "kept.hex", "secret.hex", "dark/in.hex", "dark/new.hex")
        written = ("closed/old.hex", "open/new.hex")
        self.check(THREE + "".join("WRITE_FILE %s WITH_BUFFERS {A}\n" % path
                                   for path in refused + written),
                   "".join(REFUSED % path for path in refused))
        (self.work / "dark").chmod(0o755)
        for path in refused:
            if (self.work / path).exists():
                (self.work / path).chmod(0o644)
                self.assertEqual(self.read(path), b"kept", path)
        for path in written:
            self.assertEqual(self.read(path).decode(), THREE_AS_HEX, path)
        self.assertFalse(list((self.work / "closed").glob("new*")))
        self.assertEqual(len(list((self.work / "dark").iterdir())), 1)

    def test_inputs(self):
        paths = ("secret.hex", "dark/in.hex", "dark/missing.hex")
        self.check("".join("NEW_BUFFER B %s %s\n" % (source, path) for path in paths
                           for source in ("FROM_FILE", "FROM_FILE_BINARY")) + "PRINT_TEXT {on}\n",
                   "".join(2 * (UNOPENED % path) for path in paths) + "on\n")

    def test_a_script(self):
        self.write("secret.tsn", "PRINT_TEXT {text}\n").chmod(0)
        done = subprocess.run([*self.prefix, str(self.program), "secret.tsn"], cwd=self.work,
                              capture_output=True, text=True, timeout=60)
        self.assertEqual(done.stderr, "Could not open input file: secret.tsn\n")
        self.assertEqual((done.returncode, done.stdout.count("\n")), (254, 3))


class Jail(Faults):
    """A folder that holds the program and nothing else: no shell, no /proc, no /dev."""

    def test_files_of_the_folder_only_and_no_program(self):
        if os.geteuid() != 0:
            self.skipTest("only root can chroot")
        shutil.copy(self.program, self.work / "CmdTessaron")
        self.work.chmod(0o777)
        self.check(THREE + WRITE_A + "NEW_BUFFER B FROM_FILE /etc/passwd\n"
                   "CALL_APP touch WITH_ARGUMENTS {called}\nPRINT_TEXT {end}\n",
                   UNOPENED % "/etc/passwd" + "Calling: touch called\nend\n", program="/CmdTessaron",
                   prefix=("chroot", "--userspec=%s:%s" % (NOBODY, NOBODY), self.work))
        self.check_three()
        self.assertFalse((self.work / "called").exists())


class SmallDisk(Faults):
    """A full file system."""

    def setUp(self):
        super().setUp()
        disk = self.work / "disk"
        disk.mkdir()
        mount = ["mount", "-t", "tmpfs", "-o", "size=1m", "none", str(disk)]
        if subprocess.run(mount, capture_output=True).returncode:
            self.skipTest("no file system can be mounted")
        self.addCleanup(subprocess.run, ["umount", str(disk)], check=True)

    def test_space_runs_out_and_is_freed(self):
        whole = self.mega()
        write = "WRITE_FILE disk/%s WITH_BUFFERS {%s}\n"
        self.check(THREE + MEGA + write % ("before.hex", "A") + write % ("m.hex", "M")
                   + write % ("full.hex", "A") + "CALL_APP rm WITH_ARGUMENTS {disk/m.hex}\n"
                   + write % ("after.hex", "A"),
                   "Calling: rm disk/m.hex\n",
                   NOT_WRITTEN % "disk/m.hex" + NOT_WRITTEN % "disk/full.hex")
        for name in ("before.hex", "after.hex"):
            self.assertEqual(self.read("disk/" + name).decode(), THREE_AS_HEX)
        self.check(MEGA + write % ("m.hex", "M"), errors=NOT_WRITTEN % "disk/m.hex")
        self.check_beginning("disk/m.hex", whole)


class Injected(Faults):
    """System calls that strace makes fail for one path."""

    def setUp(self):
        super().setUp()
        if subprocess.run(["strace", "-o", "/dev/null", "true"], capture_output=True).returncode:
            self.skipTest("strace may not trace here")
        self.whole = self.mega()

    def inject(self, name, what):
        if not (self.work / name).exists():
            self.write(name, "kept")
        # openat gets the name as in the script; calls on a descriptor are matched by the full path.
        return ("strace", "--quiet=path-resolution", "-o", "/dev/null", "-P", name, "-P",
                str(self.work / name), "-e", "inject=" + what)

    def check_output(self, what, errors="", printed=""):
        self.write("m.hex", "kept")
        self.check(MEGA + THREE + WRITE_M + WRITE_A, printed, errors,
                   prefix=self.inject("m.hex", what))
        self.check_three()

    def test_outputs(self):
        self.check_output("close:error=EDQUOT", NOT_WRITTEN % "m.hex")
        self.check_output("write:error=ENOSPC:when=3", NOT_WRITTEN % "m.hex")
        self.check_beginning("m.hex", self.whole)
        self.check_output("write:error=EINTR:when=1+2")
        self.assertEqual(self.read("m.hex"), self.whole)
        for error in ("EMFILE", "EIO", "EROFS"):
            self.check_output("openat:error=" + error, printed=REFUSED % "m.hex")
            self.assertEqual(self.read("m.hex"), b"kept")

    def test_no_file_gets_the_descriptor_of_a_closed_stream(self):
        prefix = self.inject("m.hex", "write:error=ENOSPC:when=3")
        for closed in ("<&-", ">&-", "2>&-", "<&- >&-", "<&- 2>&-", ">&- 2>&-", "<&- >&- 2>&-"):
            done = self.run_script(MEGA + THREE + WRITE_M + "PRINT_TEXT {text}\n" + WRITE_A,
                                   prefix + shell(":", closed))
            self.assertEqual(done.returncode, 0)
            # The file holds neither the warning nor the text.
            self.check_beginning("m.hex", self.whole)
            self.check_three()

    def test_a_device_that_fails(self):
        prefix = ("strace", "--quiet=path-resolution", "-o", "/dev/null", "-P", "/dev/null", "-e",
                  "inject=read:error=EIO")
        self.check("NEW_BUFFER B FROM_FILE_BINARY /dev/null\n" + THREE + WRITE_A, "",
                   NOT_READ % "/dev/null", prefix=prefix)
        self.check_three()

    def check_input(self, source, what, image, errors="", printed=""):
        self.check("NEW_BUFFER B %s in.hex\nWRITE_FILE b.bin WITH_BUFFERS {B} -setFormat=RawBinary\n"
                   % source + THREE + WRITE_A, printed, errors, prefix=self.inject("in.hex", what))
        self.assertEqual(self.read("b.bin"), image)
        self.check_three()

    def test_inputs(self):
        self.write("in.hex", self.whole)
        no_end = ("file: in.hex has no intel format (last line mismatched). Execution aboarded. "
                  "The file was not parsed.\n")
        for source in ("FROM_FILE", "FROM_FILE_BINARY"):
            whole = bytes(1000000) if source == "FROM_FILE" else self.whole
            self.check_input(source, READ + ":error=EINTR:when=1+2", whole)
        self.check_input("FROM_FILE", READ + ":error=EIO:when=3", b"", NOT_READ % "in.hex", no_end)
        # The bytes that were not read stay unwritten, and RawBinary writes these as 0.
        self.check_input("FROM_FILE_BINARY", READ + ":error=EIO", bytes(len(self.whole)),
                         NOT_READ % "in.hex")

    def test_a_script_runs_completely_or_not_at_all(self):
        self.write("script.tsn", "")
        done = self.run_script(THREE + WRITE_A, self.inject("script.tsn", READ + ":error=EIO"))
        self.assertEqual((self.printed(done), done.stderr, done.returncode),
                         ("Error: Script script.tsn could not be prepared !\n"
                          "Operation aborted. Maybe stack overflow, script too big\n", "", 254))


class Memory(Faults):
    """Limits on the address space. AllocationFaultTest.cpp tests, within the process, what a failed
    statement leaves in the registries."""
    OUTPUTS = {"f.hex": "", "f.seg": " -setFormat=IntelHexSegment", "f.s19":
               " -setFormat=MotorolaS_32", "f.bin": " -setFormat=RawBinary", "f.asm":
               " -setFormat=EmbeddedC_Assembler"}
    DOCUMENTED = re.compile(
        r"Error: (Buffer|Crc|Hash|Symbol Ref) Variable \S+ not found !|Operation aborted\.|"
        r"Error: (File|Buffer|Crc|Hash|Text|Application|Script) .* could not be "
        r"(opened|created|filled|printed|written|called|prepared) !|"
        r"Operation aborted. Maybe stack overflow, (buffer|script) too big")

    def setUp(self):
        super().setUp()
        self.write("in.bin", bytes(range(256)) * 512)
        self.check("NEW_BUFFER I FROM_FILE_BINARY in.bin\nWRITE_FILE in.hex WITH_BUFFERS {I}\n"
                   "WRITE_FILE in.s19 WITH_BUFFERS {I} -setFormat=MotorolaS_32\n")

    def writes(self):
        return "".join("WRITE_FILE %s WITH_BUFFERS {F}%s\n" % output
                       for output in self.OUTPUTS.items())

    def contents(self):
        # The time stamp is in the header of the assembler text.
        return {name: re.sub(rb"Generated: .*", b"", self.read(name)) for name in self.OUTPUTS}

    def run_limited(self, script, limit):
        for name in self.OUTPUTS:
            self.write(name, "kept")
        return self.run_script(script, preexec_fn=lambda: resource.setrlimit(
            resource.RLIMIT_AS, (limit, limit)))

    def check_lines(self, printed, known):
        for line in printed.splitlines():
            self.assertTrue(line in known or self.DOCUMENTED.fullmatch(line), line)

    def check_outputs(self, printed, whole):
        for name, contents in self.contents().items():
            if contents == b"kept":
                self.assertRegex(printed, "File %s could not be written !|Variable F not" % name)
            else:
                self.assertEqual(contents, whole[name])

    def test_every_limit(self):
        script = ("NEW_BUFFER V FROM_VALUES {1, 2} -useBufferRange={0, 14}\n"
                  "NEW_BUFFER F FROM_FILE in.hex\nNEW_BUFFER S FROM_FILE in.s19\n"
                  "NEW_BUFFER R FROM_FILE_BINARY in.bin\n"
                  "NEW_BUFFER E EMPTY -useBufferRange={0, 800000}\n"
                  "NEW_BUFFER C FROM_BUFFERS {F, E} -useAreas={{1, 1000}, {2000, 200000}}\n"
                  "FILL_BUFFER E WITH_FILLER {1, 2, 3}\nNEW_CRC c FROM_BUFFERS {E, F}\n"
                  "NEW_HASH h FROM_BUFFERS {F, E} -setType=Hash_Sha2_256\n" + self.writes() +
                  "PRINT_BUFFER F -useAreas={{0, 14}}\nPRINT_BUFFER V\nPRINT_CRC c\n"
                  "PRINT_HASH h\nPRINT_TEXT {c is [(1+(2+3))]} -resolveSymbolsAsHexValue={c}\n"
                  "PRINT_TEXT {end}\n")
        free = self.printed(self.run_script(script))
        whole = self.contents()
        seen, limit, printed = set(), 1 << 20, ""
        while printed != free and limit < 1 << 26:
            limit += 96 << 10
            done = self.run_limited(script, limit)
            if not done.stdout:
                continue  # not enough memory to load the program
            if done.returncode == 254:
                # Without memory for the script, no statement runs.
                self.assertRegex(done.stdout + done.stderr, "could not be prepared|\\AError: ")
                self.assertEqual(set(self.contents().values()), {b"kept"})
                continue
            self.assertEqual((done.returncode, done.stderr), (0, ""), limit)
            printed = self.printed(done)
            self.check_lines(printed, free.splitlines())
            self.check_outputs(printed, whole)
            self.assertEqual(printed.splitlines()[-1], "end")
            seen.update(re.findall(r"Error: (\S+ \S+) could not be", printed))
        self.assertEqual(printed, free)
        self.assertEqual({"File in.hex", "File in.s19", "File in.bin", "Buffer E", "Buffer C",
                          "Crc c", "Hash h"} - seen, set())

    def test_exhausted_address_space(self):
        sizes = [1 << 22 >> shift for shift in range(23)]
        images = ["NEW_BUFFER I%d_%d EMPTY -useBufferRange={0, %d}\n" % (size, number, size)
                  for size in sizes for number in range(60)]
        # Each of these needs a larger block than any that is left.
        long_list = "{%s}" % ", ".join(map(str, range(70000)))
        commands = {
            "NEW_BUFFER N FROM_FILE in.hex\n": "File in.hex could not be opened",
            "NEW_BUFFER N FROM_FILE_BINARY in.bin\n": "File in.bin could not be opened",
            "NEW_BUFFER N FROM_VALUES %s\n" % long_list: "Buffer N could not be created",
            "NEW_BUFFER N FROM_BUFFER F\n": "Buffer N could not be created",
            "NEW_BUFFER N EMPTY -useBufferRange={0, 70000}\n": "Buffer N could not be created",
            "FILL_BUFFER F WITH_FILLER %s\n" % long_list: "Buffer F could not be filled",
            "NEW_CRC c FROM_BUFFERS {F F}\n": "Crc c could not be created",
            "NEW_HASH h FROM_BUFFERS {F F} -setType=Hash_Md5\n": "Hash h could not be created",
            "PRINT_BUFFER F -useAreas={{0, 0x20000}}\n": "Buffer F could not be printed",
            "PRINT_TEXT {v [1+1]}\n": "Text v [1+1] could not be printed",
            "CALL_APP echo WITH_ARGUMENTS {%s}\n" % ("x" * 200000):
                "Application echo could not be called"}
        script = "NEW_BUFFER F FROM_FILE in.hex\n" + "".join(images) + self.writes() + \
            "".join(commands) + "PRINT_TEXT {end}\n"
        done = self.run_limited(script, 80 << 20)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        text = self.printed(done)
        self.check_lines(text, ["Buffer : F", "  StartAddress: 0x00000000",
                                "  DataLength  : 0x00020000", "end"])
        reports = re.findall(r"Error: (.*) !\nOperation aborted. Maybe stack overflow, buffer "
                             r"too big\n", text)
        self.assertEqual(set(commands.values()) - set(reports), set())
        self.assertEqual(set(self.contents().values()), {b"kept"})
        self.assertTrue(text.endswith("\nend\n"))


def main():
    Faults.program = pathlib.Path(sys.argv[1]).resolve()
    group = globals()[sys.argv[2]]
    names = unittest.defaultTestLoader.getTestCaseNames(group)
    for name in sys.argv[3:]:
        names.remove(name)
    suite = unittest.TestSuite(map(group, names))
    result = unittest.TextTestRunner(stream=sys.stdout, verbosity=2).run(suite)
    if not result.wasSuccessful():
        return 1
    return SKIPPED if len(result.skipped) == result.testsRun else 0


if __name__ == "__main__":
    sys.exit(main())
