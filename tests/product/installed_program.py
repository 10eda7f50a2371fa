"""A program that was moved together with the recipes that are installed, for the tests of these:
TEST TESSARON RECIPES

RECIPES is where the recipes are installed, from the folder of the program."""
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

PROGRAM, RECIPES = sys.argv[1:3]
del sys.argv[1:3]
ROOT = pathlib.Path(__file__).resolve().parents[2]


class InstalledProgram(unittest.TestCase):
    def setUp(self):
        self.root = pathlib.Path(tempfile.mkdtemp(prefix="tessaron recipes "))
        self.addCleanup(shutil.rmtree, self.root)
        self.program = self.root / "moved" / "bin" / pathlib.Path(PROGRAM).name
        self.program.parent.mkdir(parents=True)
        shutil.copy(PROGRAM, self.program)
        self.recipes = self.program.parent / RECIPES
        self.work = self.root / "work"
        (self.work / "out").mkdir(parents=True)

    def install(self):
        shutil.copytree(ROOT / "recipes", self.recipes)

    def tessaron(self, *arguments):
        done = subprocess.run([self.program, *arguments], cwd=self.work, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, text=True, check=False)
        return done.returncode, done.stdout + done.stderr

    def run_script(self, text, *arguments):
        (self.work / "s.tsn").write_text(text)
        return self.tessaron("run", "s.tsn", *arguments)

    def assert_made(self, script, files):
        """The script runs without a word and makes the files with these bytes."""
        self.assertEqual(self.run_script(script), (0, ""))
        for name, expected in files.items():
            self.assertEqual((self.work / name).read_bytes().hex(), expected.hex(), name)
