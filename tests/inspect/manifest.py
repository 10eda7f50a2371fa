#!/usr/bin/env python3
"""Tests run --manifest, check --manifest and the size of a report:  manifest.py tessaron"""
import base64
import hashlib
import html.parser
import json
import os
import pathlib
import random
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
import zlib

sys.path.append(str(pathlib.Path(__file__).resolve().parents[1]))
sys.dont_write_bytecode = True
import require  # noqa: E402

jsonschema = require.module("jsonschema")

PROGRAM = pathlib.Path(sys.argv.pop(1)).resolve()
SCHEMA = json.loads((pathlib.Path(__file__).resolve().parents[2] /
                     "docs/manifest.schema.json").read_text())
SCRIPT = """NEW_BUFFER @App FROM_FILE inFile -useBufferRange={0x1000, 0x400}
FILL_BUFFER @App WITH_FILLER { 0xFF }
NEW_CRC @Crc FROM_BUFFER @App -useAreas={{0x1000, 0x3FC}} -setType=Crc32_Vector_AUTOSAR
FILL_BUFFER @App WITH_CRC @Crc -useAreas={{0x13FC, 4}}
NEW_BUFFER @Moved FROM_BUFFER @App -changeStartAddressTo=0x8000
FILL_BUFFER @Moved WITH_VALUES { 1, 2 } -useAreas={{0x8010, 2}}
WRITE_FILE out.hex WITH_BUFFERS {@App}
WRITE_FILE out.bin WITH_BUFFERS {@Moved} -setFormat=RawBinary
"""


def unknown_keywords(schema):
    """Those of a schema that no validator looks at, such as a misspelt one."""
    known = {"title", "description", "$schema", "$defs", *jsonschema.Draft202012Validator.VALIDATORS}
    inner = [*schema.get("properties", {}).values(), *schema.get("$defs", {}).values()]
    inner += [part for part in (schema.get("items"), schema.get("additionalProperties")) if part]
    return (schema.keys() - known).union(*map(unknown_keywords, inner))


def tessaron(*arguments, code=0, folder="."):
    # The script changes a copy of what its CRC covers, for the sake of the origins.
    policy = ["--ignore=digest-stale"] if arguments[0] in ("run", "check") else []
    done = subprocess.run([PROGRAM, *arguments, *policy], capture_output=True, text=True, check=False,
                          cwd=folder)
    assert done.returncode == code, (arguments, done.returncode, done.stdout, done.stderr)
    return done.stderr


def sha256(path):
    return hashlib.sha256(pathlib.Path(path).read_bytes()).hexdigest()


def area(start, length):
    return {"start": "0x%08X" % start, "length": length}


def span(start, length):
    return "0x%08X" % start + (" to 0x%08X" % (start + length - 1) if length > 1 else "")


def lines_text(listed):
    if "file" not in listed:
        return ""
    first, last = listed["fileLines"]
    return listed["file"] + (", line %d" % first if first == last else
                             ", lines %d to %d" % (first, last))


class Tables(html.parser.HTMLParser):
    """The tables of a page: of each its rows, as the texts of their cells; and what is not closed."""

    def __init__(self, page):
        super().__init__()
        self.tables, self.is_cell, self.open, self.faults = [], False, [], []
        self.feed(page)
        self.faults += self.open

    def handle_startendtag(self, tag, _):
        pass

    def handle_starttag(self, tag, _):
        if tag not in ("meta", "link", "input"):
            self.open.append(tag)
        if tag == "table":
            self.tables.append([])
        elif tag == "tr":
            self.tables[-1].append([])
        elif tag in ("td", "th"):
            self.tables[-1][-1].append("")
            self.is_cell = True

    def handle_endtag(self, tag):
        if not self.open or self.open.pop() != tag:
            self.faults.append("/" + tag)
        self.is_cell = self.is_cell and tag not in ("td", "th")

    def handle_data(self, text):
        if self.is_cell:
            self.tables[-1][-1][-1] += text


class Manifest(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        os.chdir(self.folder.name)
        self.data = random.Random(3).randbytes(0x300)
        pathlib.Path("app.bin").write_bytes(self.data)
        subprocess.run(["srec_cat", "app.bin", "-binary", "-offset", "0x1000", "-crop", "0x1000",
                        "0x1100", "0x1180", "0x1300", "-o", "app.hex", "-intel"], check=True)
        pathlib.Path("release.tsn").write_text(SCRIPT)
        tessaron("run", "release.tsn", "inFile=app.hex", "--manifest", "out.json")
        self.manifest = json.loads(pathlib.Path("out.json").read_text())

    def tearDown(self):
        os.chdir("/")
        self.folder.cleanup()

    def test_schema(self):
        jsonschema.Draft202012Validator.check_schema(SCHEMA)
        self.assertEqual(unknown_keywords(SCHEMA), set())
        jsonschema.validate(self.manifest, SCHEMA)
        self.manifest["time"] = "now"
        with self.assertRaises(jsonschema.ValidationError):
            jsonschema.validate(self.manifest, SCHEMA)

    def test_contents(self):
        manifest = self.manifest
        self.assertEqual(manifest["script"], {"path": "release.tsn", "sha256": sha256("release.tsn")})
        self.assertEqual(manifest["variables"], {"inFile": "app.hex"})
        self.assertEqual(manifest["inputs"], [
            {"path": "app.hex", "size": os.path.getsize("app.hex"), "sha256": sha256("app.hex"),
             "format": "Intel HEX", "areas": [area(0x1000, 0x100), area(0x1180, 0x180)]}])
        self.assertEqual([(o["path"], o["format"], o["size"], o["sha256"], o["images"], o["line"])
                          for o in manifest["outputs"]],
                         [(path, form, os.path.getsize(path), sha256(path), [image], line)
                          for path, form, image, line in
                          (("out.hex", "IntelHexExtended", "@App", 7),
                           ("out.bin", "RawBinary", "@Moved", 8))])
        image = bytearray(b"\xff" * 0x400)
        image[:0x100] = self.data[:0x100]
        image[0x180:0x300] = self.data[0x180:0x300]
        crc = zlib.crc32(image[:0x3FC])
        image[0x3FC:] = crc.to_bytes(4, "little")
        self.assertEqual(manifest["values"], [
            {"name": "@Crc", "kind": "crc", "value": "%08X" % crc,
             "bytes": crc.to_bytes(4, "little").hex().upper(), "line": 3,
             "algorithm": {"name": "Crc32_Vector_AUTOSAR", "meaning": "CRC-32/ISO-HDLC", "width": 32,
                           "poly": "0x04C11DB7", "init": "0xFFFFFFFF", "refin": True,
                           "refout": True, "xorout": "0xFFFFFFFF"},
             "covers": [{"image": "@App", "areas": [area(0x1000, 0x3FC)]}],
             "places": [{"image": "@App", **area(0x13FC, 4), "byteOrder": "LittleEndian",
                         "line": 4}]}])
        app, moved = manifest["images"]
        self.assertEqual(app["sha256"], hashlib.sha256(image).hexdigest())
        self.assertEqual((app["name"], app["crc32"]), ("@App", "%08X" % zlib.crc32(image)))
        lines = [len(pathlib.Path("app.hex").read_text().split()), 2]
        self.assertEqual([(r["start"], r["length"], r["kind"], r["line"], r.get("file"))
                          for r in app["ranges"]],
                         [("0x00001000", 0x100, "data", 1, "app.hex"),
                          ("0x00001100", 0x80, "filler", 2, None),
                          ("0x00001180", 0x180, "data", 1, "app.hex"),
                          ("0x00001300", 0xFC, "filler", 2, None),
                          ("0x000013FC", 4, "value", 4, None)])
        self.assertEqual(app["ranges"][2]["fileLines"][1], lines[0] - 1)
        self.assertEqual([(r["start"], r["length"], r["kind"], r["line"])
                          for r in moved["ranges"]][:3],
                         [("0x00008000", 0x10, "data", 1), ("0x00008010", 2, "value", 6),
                          ("0x00008012", 0xEE, "data", 1)])

    def test_values_say_how_they_were_computed(self):
        """The parameters are those of the public catalogue, or of the script."""
        pathlib.Path("values.tsn").write_text("""NEW_BUFFER @A FROM_VALUES {1, 2, 3, 4} \
-useBufferRange={0x100, 0x20} -setByteOrder=BigEndian
NEW_CRC @Modbus FROM_BUFFER @A -useAreas={{0x102, 2}, {0x100, 2}} -setType=Catalogue{crc-16/modbus}
NEW_CRC @Own FROM_BUFFER @A -setType=Custom{8, 7 + 0, 1, false, true, 0x55} -useWordSize=2
NEW_CRC @Usual FROM_BUFFERS {@A, @A}
NEW_CRC @Sum FROM_BUFFER @A -setType=Crc8_Standard
NEW_HASH @Md5 FROM_BUFFER @A -setType=Hash_Md5
FILL_BUFFER @A WITH_CRC @Modbus -useAreas={{0x110, 2}}
FILL_BUFFER @A WITH_CRC @Modbus -useAreas={{0x112, 2}} -setByteOrder=LittleEndian
WRITE_FILE values.hex WITH_BUFFERS {@A} 0x104
""".replace("\\\n", ""))
        tessaron("run", "values.tsn", "--ignore=unwritten", "--manifest", "values.json")
        manifest = json.loads(pathlib.Path("values.json").read_text())
        jsonschema.validate(manifest, SCHEMA)
        modbus, own, usual, total, md5 = manifest["values"]
        names = ("name", "width", "poly", "init", "refin", "refout", "xorout")
        self.assertEqual([[v["algorithm"].get(name) for name in names] for v in (modbus, own, usual)],
                         [["CRC-16/MODBUS", 16, "0x8005", "0xFFFF", True, True, "0x0000"],
                          ["Custom", 8, "0x07", "0x01", False, True, "0x55"],
                          ["Crc32_Tolmen", 32, "0x04C11DB7", "0x00000000", False, False,
                           "0x00000000"]])
        self.assertEqual([v["algorithm"]["name"] for v in (total, md5)],
                         ["Crc8_Standard", "Hash_Md5"])
        self.assertNotIn("poly", total["algorithm"])
        self.assertEqual(modbus["covers"],
                         [{"image": "@A", "areas": [area(0x102, 2), area(0x100, 2)]}])
        self.assertEqual(usual["covers"], [{"image": "@A", "areas": [area(0x100, 0x20)]}] * 2)
        self.assertEqual((own["wordSize"], modbus.get("wordSize")), (2, None))
        self.assertEqual([place["byteOrder"] for place in modbus["places"]],
                         ["BigEndian", "LittleEndian"])
        self.assertEqual(manifest["outputs"][0]["startAddress"], "0x00000104")

    def test_filler_of_zeros(self):
        """An address that no source wrote gets the first filler other than 0, and is listed with the
        statement that laid it; where there is none, with the first that laid zeros. A CRC covers what
        its image has of an area."""
        pathlib.Path("zeros.tsn").write_text(
            "NEW_BUFFER @Zero EMPTY -useBufferRange={0x10, 8}\n"
            "FILL_BUFFER @Zero WITH_FILLER {0}\n"
            "NEW_BUFFER @Ones EMPTY -useBufferRange={0x14, 8}\n"
            "FILL_BUFFER @Ones WITH_FILLER {0xFF}\n"
            "NEW_BUFFER @Odd EMPTY -useBufferRange={0x18, 8}\n"
            "FILL_BUFFER @Odd WITH_FILLER {0, 0x11}\n"
            "NEW_BUFFER @All FROM_BUFFERS {@Zero, @Ones, @Odd} -onOverlap=Last\n"
            "NEW_CRC @Crc FROM_BUFFER @All -useAreas={{0x1E, 8}, {0x30, 4}, {0, 0}, {8, 10}}\n"
            "WRITE_FILE all.bin WITH_BUFFERS {@All} -setFormat=RawBinary\n")
        tessaron("run", "zeros.tsn", "--manifest", "zeros.json", "--warn=outside",
                 "--warn=empty-area")
        self.assertEqual(pathlib.Path("all.bin").read_bytes(),
                         bytes(4) + b"\xFF" * 8 + b"\x00\x11" * 2)
        manifest = json.loads(pathlib.Path("zeros.json").read_text())
        image, = (image for image in manifest["images"] if image["name"] == "@All")
        self.assertEqual([(part["start"], part["length"], part["kind"], part["line"])
                          for part in image["ranges"]],
                         [("0x00000010", 4, "filler", 2), ("0x00000014", 8, "filler", 4),
                          ("0x0000001C", 4, "filler", 6)])
        self.assertEqual(manifest["values"][0]["covers"],
                         [{"image": "@All", "areas": [area(0x1E, 2), area(0x10, 2)]}])

    def test_same_bytes(self):
        first = pathlib.Path("out.json").read_bytes()
        shutil.copytree(".", "elsewhere")
        here = str(pathlib.Path("elsewhere").resolve())
        tessaron("run", here + "/release.tsn", "inFile=" + here + "/app.hex", "--manifest",
                 here + "/out.json", "-C", here)
        self.assertEqual(pathlib.Path("elsewhere/out.json").read_bytes(), first)

    def test_included_files(self):
        """They are inputs, and every line of a statement is one of the file that has it."""
        os.mkdir("parts")
        part = ("PARAMETER image\nPARAMETER crc\nPARAMETER at\n"
                "NEW_CRC crc FROM_BUFFER image -useAreas={{0, 2}}\n"
                "FILL_BUFFER image WITH_CRC crc -useAreas={{at, 4}}\n")
        pathlib.Path("parts/<crc>.tsn").write_text(part)
        pathlib.Path("whole.tsn").write_text(
            "NEW_BUFFER @A FROM_VALUES {1, 2} -useBufferRange={0, 12}\n" + "".join(
                "INCLUDE parts/<crc>.tsn WITH { image=@A, crc=@%s, at=%d }\n" % row
                for row in (("One", 4), ("Two", 8))) + "WRITE_FILE whole.hex WITH_BUFFERS {@A}\n")
        tessaron("run", "whole.tsn", "--manifest", "whole.json", "--report", "whole.html")
        manifest = json.loads(pathlib.Path("whole.json").read_text())
        jsonschema.validate(manifest, SCHEMA)
        self.assertEqual(manifest["inputs"], [
            {"path": "parts/<crc>.tsn", "size": len(part), "included": True,
             "sha256": hashlib.sha256(part.encode()).hexdigest()}])
        here = "parts/<crc>.tsn"
        self.assertEqual([(v["line"], v["script"], v["places"][0]["line"], v["places"][0]["script"])
                          for v in manifest["values"]], [(4, here, 5, here)] * 2)
        self.assertEqual([(r["line"], r.get("script")) for r in manifest["images"][0]["ranges"]],
                         [(1, None), (5, here), (5, here)])
        self.assertEqual((manifest["outputs"][0]["line"], "script" in manifest["outputs"][0]),
                         (4, False))
        page = pathlib.Path("whole.html").read_text()
        lines = dict(re.findall(r'<li id="(line-[0-9-]+)".*?class="text">(.*?)</span>', page))
        links = re.findall(r'<a href="#(line-[0-9-]+)">(.*?)</a>', page)
        self.assertEqual({lines[target].split()[0] for target, name in links if "parts" in name},
                         {"NEW_CRC", "FILL_BUFFER"})
        self.assertEqual({lines[target].split()[0] for target, name in links if "parts" not in name},
                         {"NEW_BUFFER", "WRITE_FILE"})
        data = json.loads(re.search(r'id="data">(.*?)</script>', page, re.DOTALL)[1])
        for key, place in data["places"].items():
            self.assertEqual(place, here + ", line " + key.rsplit("-", 1)[1])
        pathlib.Path("parts/<crc>.tsn").write_text(part + "//\n")
        self.assertIn("the input parts/<crc>.tsn is not",
                      tessaron("check", "whole.tsn", "--manifest", "whole.json", code=1))

    def check(self, code):
        return tessaron("check", "release.tsn", "inFile=app.hex", "--against-disk", "--manifest",
                        "out.json", code=code)

    def test_proof(self):
        """RecordTest.cpp has what is said of each part of a manifest."""
        self.check(0)
        for path, what in (("app.hex", "the input app.hex is not"),
                           ("release.tsn", "the script release.tsn is not")):
            text = pathlib.Path(path).read_text()
            # A line of another kind: the images stay as they are.
            pathlib.Path(path).write_text(text + ("//\n" if path == "release.tsn" else "\n"))
            self.assertIn(what, self.check(1))
            pathlib.Path(path).write_text(text)

    def test_proof_of_every_property(self):
        """Whatever is changed in a manifest, the run is no longer the one that it lists."""
        paths = []

        def collect(value, *path):
            if isinstance(value, (dict, list)):
                for key, inner in value.items() if isinstance(value, dict) else enumerate(value):
                    collect(inner, *path, key)
            else:
                paths.append(path)

        collect(self.manifest)
        self.assertGreater(len(paths), 60)
        for *path, last in paths:
            changed = json.loads(json.dumps(self.manifest))
            inner = changed
            for key in path:
                inner = inner[key]
            inner[last] = inner[last] + 1 if isinstance(inner[last], int) else inner[last] + "x"
            pathlib.Path("out.json").write_text(json.dumps(changed))
            said = self.check(1)
            self.assertIn("out.json", said, (path, last))
            del inner[last]
            pathlib.Path("out.json").write_text(json.dumps(changed))
            self.assertIn("out.json", self.check(1), (path, last))

    def test_what_is_read_is_not_damaged(self):
        """An output on disk is compared as the programs of the field read it."""
        good = pathlib.Path("out.hex").read_bytes()
        lines = good.split()
        for text, said in ((b"\r\n".join([*lines, b""]), "only the line ends differ"),
                           (b"# remark\n" + good, "the bytes of the images are the same"),
                           (b"\xef\xbb\xbf" + good, "the bytes of the images are the same"),
                           (b" \n".join([*lines, b""]), "the bytes of the images are the same"),
                           (b"\n".join([*lines[:-1], b""]), "the bytes of the images are the same"),
                           (good.replace(lines[3], lines[3][:-1] + b"?"), "the file is damaged")):
            pathlib.Path("out.hex").write_bytes(text)
            self.assertIn(said, tessaron("check", "release.tsn", "inFile=app.hex",
                                         "--against-disk", code=1))

    def test_names_alike(self):
        """What is said of a file is of the image that is in it, not in one of the same name."""
        os.mkdir("sub")
        pathlib.Path("two.tsn").write_text(
            "NEW_BUFFER @One FROM_VALUES {1, 2}\nNEW_BUFFER @Two FROM_VALUES {3, 4}\n"
            "WRITE_FILE x.bin WITH_BUFFERS {@One} -setFormat=RawBinary\n"
            "WRITE_FILE sub/x.bin WITH_BUFFERS {@Two} -setFormat=RawBinary\n")
        tessaron("run", "two.tsn")
        pathlib.Path("sub/x.bin").write_bytes(b"\x03\x05")
        self.assertIn("of @Two has 05 in the file and 04 in the image",
                      tessaron("check", "two.tsn", "--against-disk", code=1))

    def test_spellings(self):
        """A file is known by its place: the proof holds right after the run."""
        pathlib.Path("again.tsn").write_text(
            "NEW_BUFFER @A FROM_FILE app.hex\nNEW_BUFFER @B FROM_FILE ./app.hex\n"
            "WRITE_FILE ./again.hex WITH_BUFFERS {@A}\n"
            "NEW_BUFFER @C FROM_FILE again.hex\nWRITE_FILE new.hex WITH_BUFFERS {@C}\n")
        tessaron("run", "again.tsn", "--manifest", "m.json", "--depfile", "d")
        tessaron("check", "again.tsn", "--manifest", "m.json", "--against-disk")
        self.assertEqual([i["path"] for i in json.loads(pathlib.Path("m.json").read_text())["inputs"]],
                         ["app.hex"])
        self.assertEqual(pathlib.Path("d").read_text(),
                         "./again.hex new.hex m.json: \\\n  again.tsn \\\n  app.hex\n")

    def test_each_of_two_values_of_one_name_is_compared(self):
        text = ("NEW_BUFFER @A FROM_VALUES {%d, 2}\nNEW_CRC @X FROM_BUFFER @A -setType=Crc16_Ccitt\n"
                "NEW_HASH @X FROM_BUFFER @A -setType=Hash_Sha1\nPRINT_CRC @X\nPRINT_HASH @X\n")
        pathlib.Path("twins.tsn").write_text(text % 1)
        tessaron("run", "twins.tsn", "--manifest", "twins.json")
        pathlib.Path("twins.tsn").write_text(text % 3)
        said = tessaron("check", "twins.tsn", "--manifest", "twins.json", code=1)
        for name in ("@X", "@X (2)"):
            self.assertEqual(said.count("the value %s is not the one of twins.json" % name), 1, said)

    def test_proof_in_every_format(self):
        """A byte of each of two images, changed in the file, is found by its place in the format."""
        app = bytes(range(0x20, 0x60))
        pathlib.Path("two.bin").write_bytes(app)
        subprocess.run(["srec_cat", "two.bin", "-binary", "-offset", "0x1000", "-o", "two.hex",
                        "-intel", "-line-length", "43"], check=True)
        line = next(number for number, record in
                    enumerate(pathlib.Path("two.hex").read_text().split(), 1)
                    if record[3:9] == "101000")
        for keyword, search in (("RawBinary", bytes), ("DfuSe", bytes), ("Uf2_0xE48BFF56", bytes),
                                ("TiTxt", lambda data: data.hex(" ").upper().encode())):
            pathlib.Path("two.tsn").write_text(
                "NEW_BUFFER @App FROM_FILE two.hex\n"
                "NEW_BUFFER @More EMPTY -useBufferRange={0x8000, 4}\n"
                "FILL_BUFFER @More WITH_VALUES {0x91, 0x92, 0x93, 0x94} -useAreas={{0x8000, 4}}\n"
                "WRITE_FILE two.out WITH_BUFFERS {@App, @More} -setFormat=" + keyword + "\n")
            tessaron("run", "two.tsn", "--manifest", "two.json")
            good = pathlib.Path("two.out").read_bytes()
            for old, new, note in (
                    (app[17:19], b"\x7F\x32", "two.tsn:1: note: 0x00001011 of @App has 7F in the "
                     "file and 31 in the image, from two.hex, line %d\n" % line),
                    (b"\x92\x93", b"\x92\x7F", "two.tsn:3: note: 0x00008002 of @More has 7F in the "
                     "file and 93 in the image")):
                self.assertEqual(good.count(search(old)), 1, keyword)
                pathlib.Path("two.out").write_bytes(good.replace(search(old), search(new)))
                said = tessaron("check", "two.tsn", "--against-disk", "--manifest", "two.json",
                                code=1)
                self.assertIn(note, said, keyword)
            pathlib.Path("two.out").write_bytes(good)
            tessaron("check", "two.tsn", "--against-disk", "--manifest", "two.json")

    def test_proof_of_a_text_without_addresses(self):
        pathlib.Path("text.tsn").write_text(
            "NEW_BUFFER @App FROM_FILE app.hex\n"
            "WRITE_FILE out.mem WITH_BUFFERS {@App} -setFormat=Vmem_4\n")
        tessaron("run", "text.tsn")
        text = pathlib.Path("out.mem").read_bytes()
        pathlib.Path("out.mem").write_bytes(text[:300] + b"!" + text[301:])
        said = tessaron("check", "text.tsn", "--against-disk", code=1)
        self.assertIn("offset 0x0000012C has 21 in the file", said)
        self.assertNotIn("@App", said)

    def test_proof_of_a_damaged_file(self):
        lines = pathlib.Path("out.hex").read_text().splitlines(keepends=True)
        # The fifth data record, after one with the upper half of the address.
        at = next(i for i, line in enumerate(lines) if line[7:9] == "00") + 4
        lines[at] = lines[at][:20] + ("0" if lines[at][20] != "0" else "1") + lines[at][21:]
        pathlib.Path("out.hex").write_text("".join(lines))
        said = self.check(1)
        self.assertIn("the first line that differs is line %d\n" % (at + 1), said)
        self.assertIn("note: the line begins with 0x%08X of @App, from app.hex, line " %
                      int(lines[at][3:7], 16), said)

    def test_outputs_of_a_called_program(self):
        pathlib.Path("release.tsn").write_text(
            SCRIPT + "CALL_APP sh WITH_ARGUMENTS {-c 'echo signed >> out.bin'}\n")
        tessaron("run", "release.tsn", "inFile=app.hex", "--manifest", "out.json")
        manifest = json.loads(pathlib.Path("out.json").read_text())
        self.assertEqual(manifest["outputs"][1]["sha256"], sha256("out.bin"))

    def test_map(self):
        script = "\n".join(line for line in SCRIPT.splitlines() if "Moved" not in line)
        pathlib.Path("release.tsn").write_text(script + "\n")
        subprocess.run([PROGRAM, "run", "release.tsn", "inFile=app.hex", "--map", "map.txt"],
                       env={"LC_ALL": "C"}, check=True)
        # 76 cells for 0x400 bytes: data up to the 19th cell, filler up to half of the 29th, data up
        # to the 57th, filler, and the CRC in the last one.
        self.assertIn(" |" + "#" * 19 + "-" * 9 + "+" + "#" * 28 + "-" * 18 + "V|\n",
                      pathlib.Path("map.txt").read_text())
        self.assertRegex(pathlib.Path("map.txt").read_text(),
                         r"^@App: .* of data in 3 areas, \d+ bytes of filler, 4 bytes of values in it\n")
        tessaron("run", "release.tsn", "inFile=app.hex", "--map", "map.svg")
        self.assertIn('class="value"', pathlib.Path("map.svg").read_text())

    def test_failed_run_writes_nothing(self):
        os.remove("out.json")
        tessaron("run", "release.tsn", "inFile=none.hex", "--manifest", "out.json", "--report",
                 "out.html", code=1)
        self.assertFalse(os.path.exists("out.json") or os.path.exists("out.html"))

    def test_page(self):
        """The page has what the manifest lists, and the bytes of the images."""
        more = ("NEW_BUFFER @Fill EMPTY -useBufferRange={0x2000, 0x1000}\n"
                "FILL_BUFFER @Fill WITH_FILLER {1, 2} -useAreas={{0x2000, 999}}\n"
                "FILL_BUFFER @Fill WITH_FILLER {1, 2, 3, 4} -useAreas={{0x2400, 998}}\n"
                "FILL_BUFFER @Fill WITH_FILLER {1, 2, 3} -useAreas={{0x2800, 997}}\n"
                "FILL_BUFFER @Fill WITH_VALUES {7} -useAreas={{0x2FFF, 1}}\n"
                "NEW_HASH @Md5 FROM_BUFFERS {@App, @Fill} -setType=Hash_Md5 -useWordSize=2\n"
                "NEW_HASH @Two FROM_BUFFER @App -useAreas={{0x1000, 2}, {0x1010, 1}}"
                " -setType=Hash_Md5\n"
                "WRITE_FILE start.hex WITH_BUFFERS {@App, @Moved} 0x1000\n")
        pathlib.Path("release.tsn").write_text(SCRIPT + more)
        tessaron("run", "release.tsn", "inFile=app.hex", "--manifest", "out.json", "--report",
                 "out.html")
        manifest, page = json.loads(pathlib.Path("out.json").read_text()), \
            pathlib.Path("out.html").read_text()
        read = Tables(page)
        self.assertEqual(read.faults, [])
        parts = pathlib.Path(__file__).resolve().parents[2] / "inspect/page"
        for tag, name in (("style", "report.css"), ("script", "report.js")):
            self.assertIn("<%s>\n%s</%s>" % (tag, (parts / name).read_text(), tag), page)
        outputs, *images, values, variables, inputs = (table[1:] for table in read.tables)
        self.assertEqual(outputs, [
            [o["path"], o["format"] + (", starts at 0x00001000" if "startAddress" in o else ""),
             "{:,}".format(o["size"]), ", ".join(o["images"]), "line %d" % o["line"], o["sha256"]]
            for o in manifest["outputs"]])
        self.assertEqual(variables, [["inFile", "app.hex"]])
        self.assertEqual(inputs, [
            ["app.hex", "Intel HEX", "{:,}".format(os.path.getsize("app.hex")),
             "640 bytes, 0x00001000 to 0x000012FF", "line 1", sha256("app.hex")]])
        crc, md5, two = manifest["values"]
        self.assertEqual(values, [
            ["@Crc", "Crc32_Vector_AUTOSAR: CRC-32/ISO-HDLC; width 32, poly 0x04C11DB7, init "
             "0xFFFFFFFF, refin true, refout true, xorout 0xFFFFFFFF",
             "@App 0x00001000 to 0x000013FB", "line 3",
             "@App 0x000013FC to 0x000013FF, LittleEndian, line 4", crc["bytes"]],
            ["@Md5", "Hash_Md5: MD5, RFC 1321; the bytes of each word of 2 reversed",
             "@App 0x00001000 to 0x000013FF; @Fill 0x00002000 to 0x00002FFF", "line 14", "nowhere",
             md5["bytes"]],
            ["@Two", "Hash_Md5: MD5, RFC 1321", "@App 0x00001000 to 0x00001001, 0x00001010",
             "line 15", "nowhere", two["bytes"]]])
        lines = {}
        for number, record in enumerate(pathlib.Path("app.hex").read_text().split(), 1):
            address, size = int(record[3:7], 16), int(record[1:3], 16)
            if record[7:9] == "00":
                lines.update((address + i, number) for i in range(size))
        data = json.loads(re.search(r'id="data">(.*?)</script>', page)[1])
        self.assertEqual(sorted(map(int, data["statements"])), [1, 2, 4, 6, 10, 11, 12, 13])
        self.assertEqual(data["statements"]["12"], more.splitlines()[3])
        for image, rows, listed in zip(data["images"], images, manifest["images"], strict=True):
            start, length = int(listed["start"], 16), listed["length"]
            self.assertEqual([image[name] for name in ("name", "start", "length")],
                             [listed["name"], start, length])
            self.assertEqual(rows, [
                [span(int(r["start"], 16), r["length"]), "{:,}".format(r["length"]), r["kind"],
                 "line %d" % r["line"],
                 lines_text(r)]
                for r in listed["ranges"]])
            self.assertEqual([(at, size, ("", "filler", "data", "value")[kind])
                              for at, size, kind, _ in image["ranges"]],
                             [(int(r["start"], 16), r["length"], r["kind"])
                              for r in listed["ranges"]])
            moved = 0x8000 - 0x1000 if listed["name"] == "@Moved" else 0
            for (at, size, _, origin), r in zip(image["ranges"], listed["ranges"], strict=True):
                self.assertEqual(image["origins"][origin], [
                    r.get("file", ""), r["line"], *r.get("fileLines", [0, 0])])
                named = {at: line + (at - first) // step
                         for first, count, line, step in image["lines"][origin]
                         for at in range(first, first + count)}
                if "file" in r:
                    self.assertEqual([named[i] for i in range(at, at + size)],
                                     [lines[i - moved] for i in range(at, at + size)])
            got = bytearray(length)
            for at, size, text in image["chunks"]:
                piece = base64.b64decode(text)
                got[at - start:at - start + size] = (piece * size)[:size]
            self.assertEqual(len(got), length)
            self.assertEqual(hashlib.sha256(got).hexdigest(), listed["sha256"])
        # What repeats by one, two or four bytes is short.
        self.assertEqual([(size, len(base64.b64decode(text)))
                          for _, size, text in data["images"][2]["chunks"]],
                         [(999, 2), (998, 4), (997, 997), (1, 1)])

    def test_report_of_all_bytes(self):
        """Up to 750,000 bytes that do not repeat; of more the first and the last 64 of a range."""
        for size in (750_000, 750_001):
            data = random.Random(5).randbytes(size)
            pathlib.Path("big.bin").write_bytes(data)
            pathlib.Path("big.tsn").write_text("NEW_BUFFER @Big FROM_FILE_BINARY big.bin\n")
            tessaron("run", "big.tsn", "--report", "big.html")
            page = pathlib.Path("big.html").read_text()
            image, = json.loads(re.search(r'id="data">(.*?)</script>', page)[1])["images"]
            chunks = [[at, size, base64.b64decode(text)] for at, size, text in image["chunks"]]
            is_whole = size == 750_000
            self.assertEqual("too long for this page" in page, not is_whole)
            # The differences of so many bytes would take minutes to show.
            self.assertTrue(chunks == ([[0, size, data]] if is_whole else
                                       [[0, 64, data[:64]], [size - 64, 64, data[-64:]]]))

    def test_report_of_all_bytes_of_two_ranges(self):
        """What one range takes is missing for the next, also in front of bytes that repeat."""
        for size, is_whole in ((348_992, True), (351_008, False)):
            data = random.Random(6).randbytes(400_000)
            rest = random.Random(7).randbytes(size) + bytes(1000)
            pathlib.Path("a.bin").write_bytes(data)
            pathlib.Path("b.bin").write_bytes(rest)
            pathlib.Path("two.tsn").write_text(
                "NEW_BUFFER @A FROM_FILE_BINARY a.bin\n"
                "NEW_BUFFER @B FROM_FILE_BINARY b.bin -changeStartAddressTo=0x100000\n"
                "WRITE_FILE two.hex WITH_BUFFERS {@A @B} -skipUnwritten\n")
            tessaron("run", "two.tsn")
            pathlib.Path("one.tsn").write_text("NEW_BUFFER @Two FROM_FILE two.hex\n")
            tessaron("run", "one.tsn", "--report", "two.html")
            page = pathlib.Path("two.html").read_text()
            image, = json.loads(re.search(r'id="data">(.*?)</script>', page)[1])["images"]
            chunks = [[at, size, base64.b64decode(text)] for at, size, text in image["chunks"]]
            self.assertEqual("too long for this page" in page, not is_whole)
            ends = [[at + begin, 64, part[begin:][:64]] for at, part in ((0, data), (1 << 20, rest))
                    for begin in (0, len(part) - 64)]
            self.assertTrue(chunks == ([[0, len(data), data], [1 << 20, size, rest[:size]],
                                        [(1 << 20) + size, 1000, b"\0"]] if is_whole else ends))

    def test_report_of_a_large_image(self):
        size = 64 << 20
        pathlib.Path("big.bin").write_bytes(random.Random(4).randbytes(1 << 20) * 64)
        pathlib.Path("big.tsn").write_text("NEW_BUFFER @Big FROM_FILE_BINARY big.bin\n"
                                           "FILL_BUFFER @Big WITH_VALUES {1} -useAreas={{5, 1}}\n")
        tessaron("run", "big.tsn", "--report", "big.html")
        self.assertEqual(os.path.getsize("big.bin"), size)
        page = pathlib.Path("big.html").read_text()
        self.assertLess(len(page), 2_000_000)
        self.assertGreater(len(page), 10_000)
        self.assertIn("0x00000006 to 0x03FFFFFF", page)


if __name__ == "__main__":
    unittest.main()
