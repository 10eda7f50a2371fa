#!/usr/bin/env python3
"""Installs the build tree BUILD into an empty prefix and uses it from firmware projects with
find_package and tessaron_run_script:  cmake_package.py CMAKE BUILD"""
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

    def assert_refused(self, project, reason, absent):
        # Twice, since a failed build that leaves an output would succeed the second time.
        for _ in range(2):
            done = project.build()
            self.assertNotEqual(done.returncode, 0, done.stdout)
            # CMake wraps long lines of its messages.
            self.assertIn(reason, " ".join(done.stdout.split()))
            self.assertFalse(absent.exists())

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
                            PREFIX / "bin" / "CmdTessaron"):
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

    def test_build_fails_when_the_script_does(self):
        good = "NEW_BUFFER @B FROM_VALUES { 1, 2 }\nWRITE_FILE out.bin WITH_BUFFERS {@B} " \
               "-setFormat=RawBinary\nPRINT_TEXT {MARKER}\n"
        bad = {"PRINT_CRC @Nothing\n": "a statement failed",
               "NEW_BUFFER @C FROM_FILE absent.hex\n": "a statement failed",
               "WRITE_FILE /dev/full WITH_BUFFERS {@B} -setFormat=RawBinary\n":
                   "a file could not be written or read completely",
               "NO_STATEMENT\n": "the run ended with 254",
               "PRINT_TEXT {that was refused}\n": 'the output matches "refused"',
               # A checksum beyond the end of the image; a record whose own checksum is wrong.
               "NEW_CRC @C FROM_BUFFER @B\nFILL_BUFFER @B WITH_CRC @C -useAreas={{2, 4}}\n":
                   "the output matches",
               "NEW_BUFFER @C FROM_FILE damaged.hex\n": "the output matches"}
        for project in self.projects("failing"):
            script = project.source / "script.tsn"
            out = project.binary / "sub dir" / "out.bin"
            project.source.mkdir(parents=True)
            (project.source / "CMakeLists.txt").write_text(
                "cmake_minimum_required(VERSION 3.20)\nproject(Failing NONE)\n"
                "find_package(Tessaron REQUIRED)\n"
                "tessaron_run_script(image SCRIPT script.tsn OUTPUTS out.bin\n"
                '    WORKING_DIRECTORY "sub dir"\n'
                '    VARIABLES "MARKER=one two;three" CONFIGURATION=$<CONFIG>\n'
                "    FAIL_ON refused ${Tessaron_REFUSALS})\n")
            script.write_text(good)
            out.parent.mkdir(parents=True)
            (out.parent / "damaged.hex").write_text(":0100000001FF\n:00000001FF\n")
            configured = project.configure()
            self.assertEqual(configured.returncode, 0, configured.stdout)
            self.assert_built(project, "one two;three")
            self.assertEqual(out.read_bytes(), b"\1\2")
            for statement, reason in bad.items():
                script.write_text(good + statement)
                self.assert_refused(project, reason, absent=out)
                script.write_text(good)
                self.assert_built(project, "one two;three")
            # The output of the previous run must not count as written by this one.
            script.write_text(good.replace("out.bin", "other.bin"))
            self.assert_refused(project, "out.bin was not written", absent=out)

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
