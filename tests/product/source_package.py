#!/usr/bin/env python3
"""Packs the source of the last commit, and builds a part of it where there is no checkout, or one of
another project:  source_package.py CMAKE"""
import hashlib
import os
import pathlib
import shutil
import subprocess
import sys
import tarfile
import tempfile
import unittest

CMAKE = sys.argv.pop(1)
ROOT = pathlib.Path(__file__).resolve().parents[2]


def run(*command, **options):
    done = subprocess.run([str(part) for part in command], stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, text=True, timeout=300, check=False, **options)
    if done.returncode != 0:
        raise AssertionError("%s ended with %d:\n%s" % (command, done.returncode, done.stdout))
    return done.stdout


def pack(clone, umask, **environment):
    run("scripts/package.sh", "source", cwd=clone, umask=umask,
        env={**os.environ, **environment})
    (archive,) = (clone / "build/packages").iterdir()
    return archive


class SourcePackage(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.work = pathlib.Path(tempfile.mkdtemp(prefix="tessaron source "))
        cls.addClassCleanup(shutil.rmtree, cls.work)
        cls.clone = cls.work / "clone"
        run("git", "clone", "-q", ROOT, cls.clone)
        cls.commit = run("git", "-C", cls.clone, "rev-parse", "HEAD").strip()
        cls.archive = pack(cls.clone, 0o022)
        # As in a project that contains this one.
        cls.outer = cls.work / "other project"
        run("git", "init", "-q", cls.outer)
        run("git", "-C", cls.outer, "-c", "user.name=a", "-c", "user.email=a@b.invalid", "commit", "-q",
            "--allow-empty", "-m", "other")
        with tarfile.open(cls.archive) as archive:
            archive.extractall(cls.outer)
        (cls.source,) = (path for path in cls.outer.iterdir() if path.name != ".git")

    def test_contents(self):
        self.assertEqual(self.archive.name, self.source.name + ".tar.gz")
        files = {str(path.relative_to(self.source))
                 for path in self.source.rglob("*") if not path.is_dir()}
        self.assertEqual(files, set(run("git", "-C", self.clone, "ls-files").splitlines()))

    def test_it_is_reproducible(self):
        before = hashlib.sha256(self.archive.read_bytes()).digest()
        after = pack(self.clone, 0o077, TZ="Asia/Tokyo", SOURCE_DATE_EPOCH="1")
        self.assertEqual(hashlib.sha256(after.read_bytes()).digest(), before)

    def test_it_knows_its_commit_and_builds(self):
        build = self.work / "build"
        run(CMAKE, "-S", self.source, "-B", build, "-G", "Unix Makefiles",
            "-DCMAKE_BUILD_TYPE=Debug")
        run(CMAKE, "--build", build, "--target", "tessaron_platform")
        self.assertIn(self.commit[:10], (build / "platform/VersionData.hpp").read_text())
        self.assertEqual(run(self.source / "scripts/commit-date.sh"),
                         run("git", "-C", self.clone, "log", "-1", "--format=%ct"))

    def test_a_copy_without_either_has_no_commit(self):
        source = shutil.copytree(self.source, self.outer / "copy")
        shutil.copy(self.clone / "platform/Commit.txt", source / "platform/Commit.txt")
        run(CMAKE, "-S", source, "-B", self.work / "copied")
        self.assertIn("unknown", (self.work / "copied/platform/VersionData.hpp").read_text())


if __name__ == "__main__":
    unittest.main()
