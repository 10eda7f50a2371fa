#!/usr/bin/env python3
"""Makes the packages of a build tree twice, compares them, unpacks and installs them, and uses the
programs from there:

    packages.py CPACK BUILD [EMULATOR...]
"""
import gzip
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tarfile
import tempfile
import unittest
import zipfile

sys.path.append(str(pathlib.Path(__file__).resolve().parents[1]))
sys.dont_write_bytecode = True
import require  # noqa: E402

CPACK, BUILD, *EMULATOR = sys.argv[1:]
del sys.argv[1:]
ROOT = pathlib.Path(__file__).resolve().parents[2]
IS_ROOT = os.geteuid() == 0
DOCUMENTS = "share/doc/cmdtessaron"
COMMON = {"libstdc++", "libgcc"}
# The libraries of headers, CUnit and Botan, by the Debian packages that have them.
HEADERS = {"Boost": "libboost-dev", "CUnit": "libcunit1-dev", "CLI11": "libcli11-dev",
           "JSON for Modern C++": "nlohmann-json3-dev"}
CACHE = (pathlib.Path(BUILD) / "CMakeCache.txt").read_text()
# The book is in HTML where mkdocs is, whose theme is under two licences.
HAS_BOOK = "\nTESSARON_BOOK:BOOL=ON\n" in CACHE
PARTS = {"Apache-2.0"} if HAS_BOOK else set()
# A build without signatures contains no Botan.
if "\nTESSARON_SIGNATURES:BOOL=ON\n" in CACHE:
    HEADERS["Botan"] = "libbotan-2-dev"
    PARTS.add("botan")


def run(*command, code=0, **options):
    """Runs a command, whose output goes to a file, and returns that output."""
    with tempfile.TemporaryFile() as out:
        done = subprocess.run([str(part) for part in command], stdin=subprocess.DEVNULL, stdout=out,
                              stderr=subprocess.STDOUT, timeout=300, check=False, **options)
        out.seek(0)
        text = out.read().decode("latin-1")
    if done.returncode != code:
        raise AssertionError("%s ended with %d:\n%s" % (command, done.returncode, text))
    return text


def make_packages(folder, zone, mask):
    environment = dict(os.environ, TZ=zone)
    environment.setdefault("SOURCE_DATE_EPOCH", run(ROOT / "scripts/commit-date.sh").strip())
    before = os.umask(mask)
    run(CPACK, "--config", pathlib.Path(BUILD) / "CPackConfig.cmake", "-B", folder, env=environment)
    os.umask(before)
    return {path.name: path for path in sorted(folder.iterdir()) if path.is_file()}


def files_below(folder):
    return {str(path.relative_to(folder)): path.read_bytes()
            for path in folder.rglob("*") if path.is_file()}


def tracked(folder):
    """The files of the project in a folder; without a checkout, all that are there."""
    if (ROOT / ".git").exists():
        return run("git", "-C", ROOT, "ls-files", folder).splitlines()
    return [folder + "/" + name for name in files_below(ROOT / folder)]


def from_source(documents, support):
    """Where the files of the source tree are that both platforms install unchanged."""
    places = {"%s/%s" % (documents, pathlib.Path(name).name): name
              for name in ("CHANGELOG.md", "docs/CmdTessaronManual.txt", "docs/manifest.schema.json",
                           "docs/performance.md", "docs/growth.svg", "docs/third-party.md")}
    places.update({"%s/%s" % (documents, name.partition("/")[2]): name for name in tracked("docs/book")})
    places.update({"%s/%s" % (documents, name): name for name in tracked("examples")})
    places.update({"%s/%s" % (support, name): name
                   for folder in ("editors", "recipes") for name in tracked(folder)})
    places.update({"share/cmake/Tessaron/" + name: "cmake/" + name for name in
                   ("TessaronConfig.cmake", "TessaronRunScript.cmake", "TessaronRunStep.cmake")})
    return places


CMAKE_FILES = {"share/cmake/Tessaron/" + name for name in
               ("TessaronConfigVersion.cmake", "TessaronProgram.cmake",
                "TessaronProgram-release.cmake")}


class Packages:
    """What holds on every platform. `self.prefix` is an unpacked package."""

    @classmethod
    def setUpClass(cls):
        cls.work = pathlib.Path(tempfile.mkdtemp(prefix="tessaron-packages-"))
        cls.addClassCleanup(shutil.rmtree, cls.work)
        cls.packages = make_packages(cls.work / "first", "Asia/Tokyo", 0o077)
        # File systems list the files of a folder in different orders.
        memory = "/dev/shm" if os.access("/dev/shm", os.W_OK) else None
        cls.other = pathlib.Path(tempfile.mkdtemp(prefix="tessaron-packages-", dir=memory))
        cls.addClassCleanup(shutil.rmtree, cls.other)
        cls.again = make_packages(cls.other, "UTC", 0o022)
        cls.unpack()

    @classmethod
    def package(cls, suffix):
        (found,) = [path for name, path in cls.packages.items() if name.endswith(suffix)]
        return found

    def assert_files(self, got, unchanged, others):
        """The installed files are some of the source, and others. README and HTML are made of it."""
        readme = min((name for name in got if name.endswith("/README.md")), key=len)
        documents = readme.rpartition("/")[0] + "/"
        html = {name for name in got if name.startswith(documents + "html/")}
        self.assertEqual(set(got) - html, set(unchanged) | others | {readme})
        for target in re.findall(r"\]\(([^):#]+)[^)]*\)", got[readme].decode()):
            self.assertIn(documents + target, got)
        if HAS_BOOK:
            pages = {name for name in unchanged if name.startswith(documents + "book/")}
            pages = {name.replace("/book/", "/html/", 1)[:-2] + "html" for name in pages
                     if name.endswith(".md")}
            self.assertLessEqual(pages | {documents + "html/search/offline.js"}, html)
        else:
            self.assertEqual(html, set())
        differing = [name for name, source in unchanged.items()
                     if got[name] != (ROOT / source).read_bytes()]
        self.assertEqual(differing, [])

    def assert_copyright(self, path, projects, licences):
        text = path.read_text()
        self.assertEqual({name for name in projects if name not in text}, set())
        for project, package in HEADERS.items():
            installed = run("dpkg-query", "-W", "-f", "${Version}", package)
            version = re.match(r"\d+\.\d+(\.\d+|-\d+)", installed)[0]
            self.assertIn("%s %s (http" % (project, version), text)
        self.assertIn("No licence has been granted yet.", text)
        folder = path.parent / "licences"
        self.assertEqual({file.name for file in folder.iterdir()}, licences)
        self.assertEqual(set(re.findall(r"licences/(\S+\.txt)", text)), licences)
        gpl = (folder / "GPL-3.txt").read_text()
        self.assertIn("GNU GENERAL PUBLIC LICENSE\n                       Version 3", gpl)

    def assert_programs_work(self, prefix, suffix=""):
        """The self-test, which prints its asserts, and a script whose output srecord made."""
        scratch = pathlib.Path(tempfile.mkdtemp(dir=self.work))
        (scratch / "KvTessaron" / "__sample_files").mkdir(parents=True)
        (scratch / "run").mkdir()
        programs = prefix / "bin"
        printed = run(*EMULATOR, programs / ("CmdTessaron" + suffix), "test", cwd=scratch / "run")
        self.assertRegex(printed, r"asserts +1 +1 +1 +0 ")
        firmware = ROOT / "examples" / "firmware"
        run(*EMULATOR, programs / ("tessaron" + suffix), "run", "release.tsn",
            "inFile=firmware.hex", "outFile=../out.hex",
            cwd=shutil.copytree(firmware, scratch / "firmware"))
        # Text files of Windows end their lines with CR LF.
        self.assertEqual((scratch / "out.hex").read_bytes().replace(b"\r\n", b"\n"),
                         (firmware / "expected.hex").read_bytes())

    def test_packages_are_reproducible(self):
        self.assertEqual(set(self.packages), set(self.again))
        differing = [name for name, path in self.packages.items()
                     if path.read_bytes() != self.again[name].read_bytes()]
        self.assertEqual(differing, [])


class LinuxPackages(Packages, unittest.TestCase):
    LICENCES = {"gcc", "glibc", "GPL-3", "LGPL-2", "LGPL-2.1"} | PARTS

    @classmethod
    def unpack(cls):
        cls.deb = cls.package(".deb")
        cls.root = cls.work / "root"
        # The package database of the root is empty, so dpkg refuses a package with dependencies.
        for folder in ("updates", "info"):
            (cls.root / "var/lib/dpkg" / folder).mkdir(parents=True)
        (cls.root / "var/lib/dpkg/status").touch()
        if IS_ROOT:
            run("dpkg", "--root=%s" % cls.root, "--log=/dev/null", "--force-architecture", "-i",
                cls.deb)
        else:
            run("dpkg-deb", "-x", cls.deb, cls.root)
        cls.prefix = cls.root / "usr"

    def test_contents(self):
        unchanged = from_source(DOCUMENTS, "share/cmdtessaron")
        unchanged.update({
            "share/bash-completion/completions/tessaron": "completions/tessaron.bash",
            "share/fish/vendor_completions.d/tessaron.fish": "completions/tessaron.fish",
            "share/zsh/site-functions/_tessaron": "completions/_tessaron",
            "share/zsh/vendor-completions/_tessaron": "completions/_tessaron",
            "share/lintian/overrides/cmdtessaron": "packaging/lintian-overrides"})
        others = CMAKE_FILES | {
            "bin/CmdTessaron", "bin/tessaron", DOCUMENTS + "/copyright",
            DOCUMENTS + "/changelog.gz", "share/man/man1/CmdTessaron.1.gz",
            "share/man/man1/tessaron.1.gz"}
        others |= {"%s/licences/%s.txt" % (DOCUMENTS, name)
                   for name in self.LICENCES}
        self.assert_files(files_below(self.prefix), unchanged, others)
        for page in ("CmdTessaron.1", "tessaron.1"):
            with gzip.open(self.prefix / "share/man/man1" / (page + ".gz")) as packed:
                self.assertEqual(packed.read(), (ROOT / "docs" / page).read_bytes())

    def test_other_users_can_read_and_not_write(self):
        for path in self.prefix.rglob("*"):
            mode = path.stat().st_mode
            self.assertEqual(mode & 0o022, 0, path)
            self.assertEqual(mode & 0o044, 0o044, path)

    def test_archive_has_the_same_files(self):
        folder = self.work / "archive"
        with tarfile.open(self.package(".tar.gz")) as archive:
            self.assertEqual({entry.uid for entry in archive}, {0})
            archive.extractall(folder)
        (top,) = folder.iterdir()
        self.assertEqual(files_below(top), files_below(self.prefix))

    def test_copyright_names_what_is_linked(self):
        self.assert_copyright(self.prefix / DOCUMENTS / "copyright", COMMON | {"glibc"},
                              {name + ".txt" for name in self.LICENCES})
        for name in ("gcc", "glibc"):
            text = (self.prefix / DOCUMENTS / "licences" / (name + ".txt")).read_text()
            self.assertIn("Free Software Foundation", text)

    def test_debian_accepts_it(self):
        for field in ("Depends", "Pre-Depends", "Recommends"):
            self.assertEqual(run("dpkg-deb", "-f", self.deb, field).strip(), "")
        self.assertRegex(run("dpkg-deb", "-f", self.deb, "Maintainer"), r".+ <\S+@\S+>\n")
        if require.lacks("lintian"):
            return
        # As root, lintian warns that it is root.
        allow = ["--allow-root"] if IS_ROOT else []
        found = run("lintian", *allow, "--fail-on", "none", "--show-overrides", self.deb)
        overridden = re.findall(r"^O: cmdtessaron: (\S+)", found, re.M)
        self.assertEqual(set(overridden), {"statically-linked-binary"})
        self.assertEqual(re.findall(r"^[EW]: .*", found, re.M), [])

    def test_programs_need_no_other_file(self):
        machine = {"amd64": "X86-64", "arm64": "AArch64"}[
            run("dpkg-deb", "-f", self.deb, "Architecture").strip()]
        for name in ("CmdTessaron", "tessaron"):
            program = self.prefix / "bin" / name
            self.assertIn(machine, run("readelf", "-h", program))
            self.assertNotIn("NEEDED", run("readelf", "-d", program))
            self.assertNotIn(".symtab", run("readelf", "-S", program))
        self.assert_programs_work(self.prefix)

    @unittest.skipIf(EMULATOR or not IS_ROOT, "needs chroot")
    def test_self_test_runs_where_there_is_nothing_else(self):
        (self.root / "KvTessaron" / "__sample_files").mkdir(parents=True)
        printed = run("chroot", self.root, "/usr/bin/CmdTessaron", "test")
        self.assertRegex(printed, r"asserts +1 +1 +1 +0 ")

    @unittest.skipIf(EMULATOR, "the programs do not run on the host")
    def test_firmware_project_finds_it(self):
        binary = self.work / "firmware"
        run("cmake", "-S", self.prefix / DOCUMENTS / "examples/cmake-firmware", "-B", binary,
            "-DCMAKE_PREFIX_PATH=%s" % self.prefix)
        self.assertIn("CRC-32 in stored order", run("cmake", "--build", binary))


class WindowsPackages(Packages, unittest.TestCase):
    LICENCES = {"gcc", "mingw-w64", "GPL-3", "LGPL-2"} | PARTS

    @classmethod
    def unpack(cls):
        with zipfile.ZipFile(cls.package(".zip")) as archive:
            archive.extractall(cls.work / "unpacked")
        (cls.prefix,) = (cls.work / "unpacked").iterdir()

    def assert_contents(self, prefix, *more):
        others = CMAKE_FILES | {"bin/CmdTessaron.exe", "bin/tessaron.exe", "doc/copyright.txt", *more}
        others |= {"doc/licences/%s.txt" % name for name in self.LICENCES}
        unchanged = from_source("doc", "support")
        unchanged["KvTessaron/__sample_files/README.txt"] = "packaging/sample-files.txt"
        self.assert_files(files_below(prefix), unchanged, others)

    def test_contents(self):
        self.assert_contents(self.prefix)

    def test_copyright_names_what_is_linked(self):
        self.assert_copyright(self.prefix / "doc/copyright.txt", COMMON | {"mingw-w64", "winpthreads"},
                              {name + ".txt" for name in self.LICENCES})

    def test_programs_work(self):
        self.assert_programs_work(self.prefix, ".exe")

    def test_self_test_passes_where_it_was_unpacked(self):
        prefix = shutil.copytree(self.prefix, self.work / "out of the box")
        printed = run(*EMULATOR, "CmdTessaron.exe", "test", cwd=prefix / "bin")
        self.assertRegex(printed, r"asserts +1 +1 +1 +0 ")

    def test_installer_installs_and_removes_silently(self):
        prefix = self.work / "installed"
        # Drive Z of wine is the root of the host; /D= is the last argument and takes no quotes.
        path = "Z:" + str(prefix).replace("/", "\\")
        installer = self.package(".exe")
        self.assertIn("x86-64", run("file", "-b", installer))
        run(*EMULATOR, installer, "/S", "/D=" + path)
        self.assert_contents(prefix, "Uninstall.exe")
        self.assert_programs_work(prefix, ".exe")
        # With _?=, the uninstaller does its work itself, in place, and so does not remove itself.
        run(*EMULATOR, prefix / "Uninstall.exe", "/S", "_?=" + path)
        self.assertEqual(set(files_below(prefix)) - {"Uninstall.exe"}, set())


def load_tests(loader, _tests, _pattern):
    """The tests of the platform for which the build tree makes packages."""
    config = (pathlib.Path(BUILD) / "CPackConfig.cmake").read_text()
    cases = WindowsPackages if '"ZIP;NSIS"' in config else LinuxPackages
    return loader.loadTestsFromTestCase(cases)


if __name__ == "__main__":
    unittest.main(verbosity=2)
