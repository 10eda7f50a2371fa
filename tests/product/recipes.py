#!/usr/bin/env python3
"""Uses the installed recipes from scripts, with a program that was moved together with them:
recipes.py TESSARON RECIPES

RECIPES is where the recipes are installed, from the folder of the program."""
import pathlib
import struct
import unittest
import zlib

from installed_program import RECIPES, InstalledProgram


class Recipes(InstalledProgram):
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

    def test_crc32_at_end(self):
        self.install()
        for length, alignment, order in ((9, 4, "little"), (8, 4, "big"), (3, 16, "little")):
            app = bytes(range(1, length + 1))
            padded = app + b"\xff" * (-(0x1002 + length) % alignment)
            self.assert_made(
                "NEW_BUFFER @App FROM_VALUES { %s } -changeStartAddressTo=0x1002\n"
                "INCLUDE crc32-at-end.tsn WITH { image=@App, result=@Out, alignment=%d,\n"
                "    order=%sEndian }\n"
                "WRITE_FILE out.bin WITH_BUFFERS {@Out} -setFormat=RawBinary\n"
                % (",".join(map(str, app)), alignment, order.capitalize()),
                {"out.bin": padded + zlib.crc32(padded).to_bytes(4, order)})

    def test_version_block(self):
        self.install()
        app = bytes(range(77))
        (self.work / "app.bin").write_bytes(app)
        block = struct.pack(">IHHIII", 0x54534E31, 1, 300, 20261126, len(app), zlib.crc32(app))
        self.assert_made(
            "NEW_BUFFER @App FROM_FILE_BINARY app.bin -changeStartAddressTo=0x1020\n"
            "INCLUDE version-block.tsn WITH { image=@App, block=@Version, at=0x1024 - 0x18,\n"
            "    magic=0x54534E31, major=1, minor=300, build=20261126, order=BigEndian }\n"
            "NEW_BUFFER @Out FROM_BUFFERS {@Version, @App} -onOverlap=Error\n"
            "WRITE_FILE out.bin WITH_BUFFERS {@Out} -setFormat=RawBinary\n",
            {"out.bin": block + app})

    def test_variants(self):
        self.install()
        app = bytes(range(1, 21))
        markets = {"eu": b"EUROPE", "us": b"US", "jp": b"JAPAN"}
        expected = {}
        script = ("NEW_BUFFER @App FROM_FILE_BINARY app.bin -useBufferRange={0, 40}\n"
                  "FILL_BUFFER @App WITH_FILLER { 0xFF }\n")
        (self.work / "app.bin").write_bytes(app)
        for name, settings in markets.items():
            # One record of Intel HEX at the address 24.
            record = bytes([len(settings), 0, 24, 0]) + settings
            (self.work / (name + ".hex")).write_text(
                ":%s%02X\n:00000001FF\n" % (record.hex().upper(), -sum(record) & 0xFF))
            script += ("INCLUDE variant.tsn WITH { application=@App, settings=%s.hex, "
                       "part=@Part%s, image=@%s, outFile=%s.bin.hex }\n" % ((name,) * 4))
            covered = (app + b"\xff" * 4 + settings).ljust(36, b"\xff")
            expected[name + ".bin"] = covered + zlib.crc32(covered).to_bytes(4, "little")
            script += "WRITE_FILE %s.bin WITH_BUFFERS {@%s} -setFormat=RawBinary\n" % (name, name)
        self.assert_made(script, expected)
        self.assertTrue((self.work / "jp.bin.hex").exists())
        (self.work / "app.bin").write_bytes(app + app)
        code, output = self.run_script(script)
        self.assertEqual(code, 1)
        self.assertIn("@Parteu", output)

    def test_bus_chip(self):
        self.install()
        app = bytes(range(1, 8))
        bus = app + b"\xff"
        for chips, width in ((2, 1), (4, 1), (2, 2)):
            script = "NEW_BUFFER @App FROM_VALUES { %s } -changeStartAddressTo=0x1000\n" % (
                ",".join(map(str, app)))
            files = {}
            for chip in range(chips):
                script += ("INCLUDE bus-chip.tsn WITH { image=@App, name=@Chip%d, chip=%d, "
                           "chips=%d, width=%d, outFile=%d.bin }\n"
                           % (chip, chip, chips, width, chip))
                words = range(chip * width, len(bus), chips * width)
                files["%d.bin" % chip] = b"".join(bus[at:at + width] for at in words)
            self.assert_made(script, files)

    def test_merge_checked(self):
        self.install()
        boot = b"boot loader"
        files = {"boot": boot + zlib.crc32(boot).to_bytes(4, "big"), "app": b"application",
                 "settings": b"settings"}
        script = ""
        for at, (name, contents) in zip((0x100, 0x110, 0x120), files.items()):
            (self.work / name).write_bytes(contents)
            script += ("NEW_BUFFER @%s FROM_FILE_BINARY %s -changeStartAddressTo=%d\n"
                       % (name, name, at))
        script += ("INCLUDE merge-checked.tsn WITH { boot=@boot, application=@app,\n"
                   "    settings=@settings, image=@Out, order=BigEndian }\n"
                   "WRITE_FILE out.bin WITH_BUFFERS {@Out} -setFormat=RawBinary\n")
        merged = files["boot"].ljust(16, b"\0") + files["app"].ljust(16, b"\0") + files["settings"]
        self.assert_made(script, {"out.bin": merged})
        (self.work / "app").write_bytes(b"a long application")
        code, output = self.run_script(script)
        self.assertEqual((code, "[conflict]" in output), (1, True), output)
        (self.work / "boot").write_bytes(b"b" + files["boot"])
        code, output = self.run_script(script)
        self.assertEqual((code, "[verify]" in output), (1, True), output)
        self.assertEqual((self.work / "out.bin").read_bytes(), merged)

    def test_usb_release(self):
        """The numbers are those of the published formats."""
        self.install()
        app = bytes(range(200))
        (self.work / "app.bin").write_bytes(app)
        self.assert_made(
            "NEW_BUFFER @App FROM_FILE_BINARY app.bin -changeStartAddressTo=0x08000000\n"
            "INCLUDE usb-release.tsn WITH { image=@App, path=out/v1, family=STM32F4 }\n", {})
        uf2 = (self.work / "out" / "v1.uf2").read_bytes()
        self.assertEqual(uf2[:32 + 200], struct.pack(
            "<8I", 0x0A324655, 0x9E5D5157, 0x2000, 0x08000000, 256, 0, 1, 0x57755A57) + app)
        dfu = (self.work / "out" / "v1.dfu").read_bytes()
        self.assertEqual(dfu[285:-16], struct.pack("<II", 0x08000000, 200) + app)
        self.assertEqual(dfu[-14:-10], struct.pack("<HH", 0xDF11, 0x0483))
        self.assertEqual(dfu[-4:], (zlib.crc32(dfu[:-4]) ^ 0xFFFFFFFF).to_bytes(4, "little"))

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
