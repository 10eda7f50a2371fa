#!/usr/bin/env python3
"""Uses the installed recipes from scripts, with a program that was moved together with them:
recipes.py TESSARON RECIPES

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


class Recipes(unittest.TestCase):
    def setUp(self):
        self.root = pathlib.Path(tempfile.mkdtemp(prefix="tessaron recipes "))
        self.addCleanup(shutil.rmtree, self.root)
        self.program = self.root / "moved" / "bin" / pathlib.Path(PROGRAM).name
        self.program.parent.mkdir(parents=True)
        shutil.copy(PROGRAM, self.program)
        self.recipes = self.program.parent / RECIPES
        self.work = self.root / "work"
        self.work.mkdir()

    def install(self):
        shutil.copytree(ROOT / "recipes", self.recipes)

    def tessaron(self, *arguments):
        done = subprocess.run([self.program, *arguments], cwd=self.work, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, text=True, check=False)
        return done.returncode, done.stdout + done.stderr

    def run_script(self, text, *arguments):
        (self.work / "s.tsn").write_text(text)
        return self.tessaron("run", "s.tsn", *arguments)

    def test_crc32_after(self):
        """The check value of CRC-32/ISO-HDLC is that of the nine characters 123456789. The first
        address is an expression, as an operator takes everything to its right."""
        self.install()
        (self.work / "in.bin").write_bytes(b"__123456789....")
        for order, expected in (("LittleEndian", "2639f4cb"), ("BigEndian", "cbf43926")):
            code, output = self.run_script(
                "NEW_BUFFER @App FROM_FILE_BINARY in.bin -setByteOrder=%s\n"
                "INCLUDE crc32-after.tsn WITH { image=@App, start=3 - 1, length=9 }\n"
                "WRITE_FILE out.bin WITH_BUFFERS {@App} -setFormat=RawBinary\n" % order,
                "--depfile", "out.d")
            self.assertEqual((code, output), (0, ""))
            self.assertEqual((self.work / "out.bin").read_bytes(),
                             b"__123456789" + bytes.fromhex(expected))
            self.assertIn("crc32-after.tsn", (self.work / "out.d").read_text())

    def test_a_file_beside_the_script_comes_first(self):
        self.install()
        (self.work / "crc32-after.tsn").write_text("PRINT_TEXT {own}\n")
        self.assertEqual(self.run_script("INCLUDE crc32-after.tsn"), (0, "own\n"))

    def test_a_manifest_holds_wherever_recipes_are_installed(self):
        self.install()
        (self.work / "in.bin").write_bytes(b"123456789....")
        self.assertEqual(self.run_script(
            "NEW_BUFFER @App FROM_FILE_BINARY in.bin\n"
            "INCLUDE crc32-after.tsn WITH { image=@App, start=0, length=9 }\n"
            "WRITE_FILE out.bin WITH_BUFFERS {@App} -setFormat=RawBinary\n",
            "--manifest", "m.json", "--depfile", "out.d", "--report", "r.html"), (0, ""))
        for name in ("m.json", "r.html"):
            text = (self.work / name).read_text().replace("&lt;", "<").replace("&gt;", ">")
            self.assertIn("<recipes>/crc32-after.tsn", text)
            self.assertNotIn("moved", text)
        # make needs the file itself.
        recipe = (self.work / "out.d").read_text().replace("\\\n", "").replace("\\ ", "\0")
        recipe = [word for word in recipe.split() if "crc32" in word][0].replace("\0", " ")
        self.assertTrue(pathlib.Path(recipe).is_file(), recipe)

        moved = self.program.parents[1]
        again = moved.rename(self.root / "moved again")
        self.program = again / self.program.relative_to(moved)
        check = ("check", "s.tsn", "--manifest", "m.json", "--against-disk")
        self.assertEqual(self.tessaron(*check), (0, ""))
        (self.work / "out.bin").write_bytes(b"123456789&9.\xcb")
        installed = self.program.parent / RECIPES / "crc32-after.tsn"
        code, output = self.tessaron(*check)
        self.assertEqual(code, 1)
        self.assertIn("crc32-after.tsn:9: note: 0x0000000B of @App has 2E", output)
        self.assertNotIn("<recipes>", output)
        installed.write_text(installed.read_text() + "// changed\n")
        self.assertIn("the input <recipes>/crc32-after.tsn is not the one of m.json",
                      self.tessaron(*check)[1])

    def test_a_recipe_that_is_not_installed_is_named(self):
        code, output = self.run_script("INCLUDE no-such-recipe.tsn")
        self.assertEqual(code, 1)
        self.assertIn("s.tsn:1:9: error: cannot open no-such-recipe.tsn", output)
        self.assertIn("recipes", output)


if __name__ == "__main__":
    unittest.main()
