#!/usr/bin/env python3
"""Installs the build tree BUILD into an empty prefix and uses it from firmware projects with
find_package and tessaron_run_script:  cmake_package.py CMAKE BUILD"""
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

CMAKE, BUILD = sys.argv[1:3]
del sys.argv[1:3]
ROOT = pathlib.Path(__file__).resolve().parents[2]
GENERATORS = ("Ninja", "Unix Makefiles", "Ninja Multi-Config")


def run(*command, **options):
    return subprocess.run([str(part) for part in command], stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, text=True, timeout=300, **options)


def files_below(folder):
    return {path.relative_to(folder): path.read_bytes()
            for path in folder.rglob("*") if path.is_file()}


class Project:
    """A source and a build directory; the names of both contain a space."""

    def __init__(self, root, generator):
        self.source = root / ("source of " + generator)
        self.binary = root / ("build of " + generator)
        self.generator = generator

    def configure(self, *options):
        return run(CMAKE, "-S", self.source, "-B", self.binary, "-G", self.generator,
                   "-DCMAKE_PREFIX_PATH=%s" % PREFIX, *options)

    def build(self):
        return run(CMAKE, "--build", self.binary)


class UsesOfThePackage(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        global PREFIX
        cls.root = pathlib.Path(tempfile.mkdtemp(prefix="tessaron-cmake-"))
        cls.addClassCleanup(shutil.rmtree, cls.root)
        PREFIX = cls.root / "prefix"
        installed = run(CMAKE, "--install", BUILD, "--prefix", PREFIX)
        assert installed.returncode == 0, installed.stdout

    def assert_built(self, project, marker, times=1):
        done = project.build()
        self.assertEqual(done.returncode, 0, done.stdout)
        self.assertEqual(done.stdout.count(marker), times, done.stdout)

    def assert_refused(self, project, reason, out):
        """The build fails with `reason`, leaves the file `out` as it is, and fails again."""
        before = out.read_bytes(), out.stat().st_mtime_ns
        for _ in range(2):
            done = project.build()
            self.assertNotEqual(done.returncode, 0, done.stdout)
            # CMake wraps long lines of its messages.
            self.assertIn(reason, " ".join(done.stdout.split()))
            self.assertEqual((out.read_bytes(), out.stat().st_mtime_ns), before)

    def projects(self, name):
        return [Project(self.root / name, generator) for generator in GENERATORS]

    def test_example_runs_again_exactly_when_an_input_changed(self):
        marker = "CRC-32 in stored order 0x"
        for project in self.projects("example"):
            shutil.copytree(ROOT / "examples" / "cmake-firmware", project.source)
            configured = project.configure()
            self.assertEqual(configured.returncode, 0, configured.stdout)
            self.assert_built(project, marker)
            self.confirm_release(project, 0x10000)
            release = project.binary / "release.hex"
            written = release.stat().st_mtime_ns
            self.assert_built(project, marker, times=0)
            project.configure()
            self.assert_built(project, marker, times=0)
            self.assertEqual(release.stat().st_mtime_ns, written)

            for changed in (project.source / "firmware.c", project.source / "release.tsn",
                            project.binary / "firmware.hex", PREFIX / "bin" / "tessaron"):
                changed.touch()
                self.assert_built(project, marker)
                self.assert_built(project, marker, times=0)
            release.unlink()
            self.assert_built(project, marker)
            project.configure("-DFLASH_SIZE=0x800")
            self.assert_built(project, marker)
            self.confirm_release(project, 0x800)
            self.assert_built(project, marker, times=0)

    def confirm_release(self, project, size):
        """Compares the release with the one that srecord makes of the same firmware."""
        end = 0x08000000 + size
        firmware = (project.binary / "firmware.hex", "-intel")
        done = run("srec_cat", "(", *firmware, "-fill", "0xFF", "0x08000000", end - 4, ")",
                   "-crc32-l-e", end - 4, "-o", project.binary / "expected.hex", "-intel")
        self.assertEqual(done.returncode, 0, done.stdout)
        done = run("srec_cmp", project.binary / "expected.hex", "-intel",
                   project.binary / "release.hex", "-intel")
        self.assertEqual(done.returncode, 0, done.stdout)

    def write_project(self, project, script, arguments):
        project.source.mkdir(parents=True)
        (project.source / "CMakeLists.txt").write_text(
            "cmake_minimum_required(VERSION 3.21)\nproject(Project NONE)\n"
            "find_package(Tessaron REQUIRED)\n"
            "tessaron_run_script(image SCRIPT script.tsn OUTPUTS out.bin\n"
            '    WORKING_DIRECTORY "sub dir" %s)\n' % arguments)
        (project.source / "script.tsn").write_text(script)
        (project.binary / "sub dir").mkdir(parents=True)

    def test_build_fails_when_the_script_does(self):
        good = "NEW_BUFFER @B FROM_VALUES { 1, 2 }\nWRITE_FILE out.bin WITH_BUFFERS {@B} " \
               "-setFormat=RawBinary\nPRINT_TEXT {MARKER CONFIGURATION}\n"
        bad = {"PRINT_CRC @Nothing\n": "script.tsn:4:11: error:",
               "NEW_BUFFER @C FROM_FILE absent.hex\n": "No such file or directory",
               "WRITE_FILE absent/a.hex WITH_BUFFERS {@B}\n": "cannot write absent/a.hex",
               "NO_STATEMENT\n": "script.tsn:4:1: error:",
               # A checksum beyond the end of the image; a record whose own checksum is wrong.
               "NEW_CRC @C FROM_BUFFER @B\nFILL_BUFFER @B WITH_CRC @C -useAreas={{2, 4}}\n":
                   "[outside]",
               "NEW_BUFFER @C FROM_FILE damaged.hex\n": "damaged.hex:1: error:"}
        for project in self.projects("failing"):
            self.write_project(project, good,
                               'VARIABLES "MARKER=one two;three" CONFIGURATION=$<CONFIG>.')
            script = project.source / "script.tsn"
            out = project.binary / "sub dir" / "out.bin"
            (out.parent / "damaged.hex").write_text(":0100000001FF\n:00000001FF\n")
            configured = project.configure()
            self.assertEqual(configured.returncode, 0, configured.stdout)
            self.assert_built(project, "one two;three")
            self.assertEqual(out.read_bytes(), b"\1\2")
            for statement, reason in bad.items():
                script.write_text(good.replace("1, 2", "3, 4") + statement)
                self.assert_refused(project, reason, out)
                script.write_text(good)
                self.assert_built(project, "one two;three")
            # The output of an earlier run must not count as written by this one.
            script.write_text(good.replace("out.bin", "other.bin"))
            self.assert_refused(project, "out.bin was not written", out)

    def test_files_that_the_script_read_are_inputs(self):
        script = "NEW_BUFFER @B FROM_FILE_BINARY inFile\n" \
                 "NEW_BUFFER @C FROM_FILE_BINARY ../more.bin -changeStartAddressTo=1\n" \
                 "NEW_BUFFER @A FROM_BUFFERS {@B, @C}\n" \
                 "WRITE_FILE out.bin WITH_BUFFERS {@A} -setFormat=RawBinary\n" \
                 "PRINT_TEXT {the MARKERs}\n"
        for project in self.projects("reading"):
            inputs = [project.binary / "sub dir" / "in.bin", project.binary / "more.bin"]
            self.write_project(project, script, "VARIABLES MARKER=marker inFile=in.bin "
                                                "OPTIONS --werror --ignore variable-in-word")
            for number, path in enumerate(inputs):
                path.write_bytes(bytes([number]))
            configured = project.configure()
            self.assertEqual(configured.returncode, 0, configured.stdout)
            self.assert_built(project, "marker")
            self.assert_built(project, "marker", times=0)
            for path in inputs:
                path.touch()
                self.assert_built(project, "marker")
                self.assert_built(project, "marker", times=0)
                content = path.read_bytes()
                path.unlink()
                self.assert_refused(project, "No such file", project.binary / "sub dir" / "out.bin")
                path.write_bytes(content)
                self.assert_built(project, "marker")

    def test_older_arguments_are_accepted_with_a_note(self):
        cases = {"FAIL_ON ${Tessaron_REFUSALS}": "FAIL_ON is not needed any more",
                 "FAIL_ON ${Tessaron_REFUSALS} broken": "expressions of its own: broken",
                 "DEPENDS script.tsn": "DEPENDS need not name script.tsn"}
        for number, (arguments, note) in enumerate(cases.items()):
            project = Project(self.root / ("older %d" % number), "Ninja")
            self.write_project(project, "NEW_BUFFER @B FROM_VALUES { 1 }\nWRITE_FILE out.bin "
                               "WITH_BUFFERS {@B} -setFormat=RawBinary\nPRINT_TEXT {marker}\n", arguments)
            configured = project.configure()
            self.assertEqual(configured.returncode, 0, configured.stdout)
            self.assertIn(note, " ".join(configured.stdout.split()))
            self.assert_built(project, "marker")

    def test_destdir_stages_the_same_files(self):
        stage = self.root / "stage"
        done = run(CMAKE, "--install", BUILD, "--prefix", "/opt/of its own",
                   env=dict(os.environ, DESTDIR=str(stage)))
        self.assertEqual(done.returncode, 0, done.stdout)
        self.assertEqual(files_below(stage / "opt/of its own"), files_below(PREFIX))
        self.assertEqual([path.name for path in (*stage.iterdir(), *(stage / "opt").iterdir())],
                         ["opt", "of its own"])

    def test_versions_that_are_found(self):
        source = self.root / "version"
        source.mkdir()
        (source / "CMakeLists.txt").write_text(
            "cmake_minimum_required(VERSION 3.20)\nproject(Version NONE)\n"
            "set(CMAKE_SIZEOF_VOID_P 4)\nfind_package(Tessaron ${WANTED} REQUIRED)\n")
        for wanted, is_found in (("1", True), ("1.0.0", True), ("0.9", False), ("1.9", False),
                                 ("2", False)):
            done = run(CMAKE, "-S", source, "-B", source / wanted, "-DWANTED=" + wanted,
                       "-DCMAKE_PREFIX_PATH=%s" % PREFIX)
            self.assertEqual(done.returncode == 0, is_found, done.stdout)


if __name__ == "__main__":
    unittest.main()
