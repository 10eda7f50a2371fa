#!/usr/bin/env python3
"""Tests what the programs make of odd command lines and surroundings, on Linux:
command_line.py CMDTESSARON TESSARON"""
import os
import pathlib
import re
import resource
import subprocess
import sys
import tempfile
import unittest

CLASSIC, PROGRAM = (pathlib.Path(path).resolve() for path in sys.argv[1:3])
del sys.argv[1:3]
HEX = ":0400000001020304F2\n:00000001FF\n"
# Arguments, and what the refusal has in it.
REFUSED = (
    (["release.tsn"], "did you mean tessaron run release.tsn?"),
    (["in.hex", "x=y"], "tessaron info in.hex?"),
    (["chek", "s.tsn"], "did you mean check?"),
    (["/?"], "--help"), (["-?"], "--help"), (["/h"], "--help"), (["/help"], "--help"),
    (["?"], "--help"), (["-x"], "the options of a command go after it"),
    (["help", "crc"], "did you mean crcs?"), (["help", "nothing"], "there are statements, numbers"),
    (["frobnicate"], "the commands are run, check"),
    ([], "a command is required"),
    (["--versio"], "did you mean --version?"),
    (["--keep-going", "run", "s.tsn"], "go after it"),
    (["run", "s.tsn", "--manifst=x"], "did you mean --manifest?"),
    (["run", "s.tsn", "--diagnostics=xml"], "xml is not one of text|json|sarif|github"),
    (["run", "s.tsn", "X"], "X has no ="), (["run", "s.tsn", "-D", "X"], "X has no ="),
    *((["run", "s.tsn", "--symbol", text], "is not NAME=FILE:SYMBOL")
      for text in ("X", "X:s", "=a.elf:s", "X=a.elf", "X=:s", "X=a.elf:", "a:X=s")),
    *((["run", "s.tsn", option, ""], "an empty text says nothing")
      for option in ("--depfile", "--manifest", "--map", "--report", "--directory")),
    (["run", "s.tsn", "-C", "nowhere"], "cannot work in nowhere: No such file or directory"),
    (["run", "s.tsn", "--error", "overlop"], "no diagnostic overlop; did you mean overlap?"),
    (["run", "s.tsn", "--warn", "syntax"], "syntax is always an error"),
    (["run", "s.tsn", "--ignore", "syntax"], "syntax is always an error"),
    (["run", "s.tsn", "--ignore", "key"], "key is always an error"),
    (["diff", "in.hex"], "files"), (["diff", "in.hex", "in.hex", "in.hex"], "files"),
    *((["convert", "in.hex", "out.bin", "--crop", text], "is not an area START,LENGTH")
      for text in ("1", "1,2,3", "0xFFFFFFFFFFFFFFFF,1")),
    *((["convert", "in.hex", "out.bin", "--crop", text], "is not a number")
      for text in ("1,x", "0x,1", "1,-2", "1,2x", "1,", ",1")),
    (["convert", "in.hex", "out.bin", "--fill", "0,256"], "0,256 is above 0xFF"),
    (["convert", "in.elf", "out.bin", "--sections", " , "], "names no section"),
    *((["convert", "in.hex", "out.bin", "--offset=" + text], "is not a number")
      for text in ("-", "1x", "--1")),
    (["convert", "in.hex", "out.bin", "--format", "IntelHexExtendet"], "did you mean IntelHexExt"),
    (["convert", "in.hex", "out.bin", "--format", "qq"], "tessaron help formats lists them"),
    (["convert", "in.hex", "out.uf2", "--family", "qqqqq"], "info lists those of a file"),
    (["convert", "-", "out.bin"], "a stream has no place here"),
    (["convert", "in.hex", "-"], "a stream has no place here"),
    (["convert", "in.hex", "out.bin", "--crop", "0,0"], "0,0 has no address"),
    (["convert", "in.hex", "out.bin", "--crop", ""], "empty"),
    (["convert", "in.hex", "out.bin", "--fill", ""], "empty"),
    (["convert", "in.elf", "out.bin", "--skip-sections", ""], "empty"),
    (["convert", "in.elf", "out.elf", "--elf-template", ""], "empty"),
    (["convert", "in.hex", "out.bin", "--offset="], "missing"),
    *((["convert", "in.hex", "out.bin", "--lane", text], "is not a lane LANE,LANES,WIDTH")
      for text in ("0", "0,2", "2,2,1", "0,0,1", "0,2,0", "0,2,0x100000000", "0,0x100000000,1", "0,2,1,1")),
    (["convert", "in.hex", "out.bin", "--interleave", "1"], "--with"),
    (["convert", "in.hex", "out.bin", "--with", "in.hex"], "--interleave"),
    (["convert", "in.hex", "out.bin", "--interleave", "0", "--with", "in.hex"], "from 1 to"),
    *((["convert", "in.hex", "out.hex", "--fill", "0", option, "0x100000000"], "from 1 to 0xFFFFFFFF")
      for option in ("--align", "--fill-gaps")),
    *(([command, "in.hex", "--elf", "in.hex", "--elf", "in.hex"], "once for all files, or once for")
      for command in ("info", "map")),
    (["convert", "in.hex", "out.bin", "--swap-bytes", "3"], "3 is not one of 2|4|8"),
    (["convert", "in.hex", "out.hex", "--unit-in", "8"], "8 is not one of 2|4"),
    (["convert", "in.hex", "out.hex", "--align", "4"], "--fill"),
    (["convert", "in.hex", "out.hex", "--fill-gaps", "4"], "--fill"),
    (["convert", "in.hex", "out.hex", "--fill", "0", "--align", "0"], "from 1 to"),
    (["map", "in.hex", "--width=19"], "--width"), (["map", "in.hex", "--width=1001"], "--width"),
    (["diff", "in.hex", "in.hex", "--context=-1"], "--context"),
    (["diff", "in.hex", "in.hex", "--context=1001"], "--context"),
)


def run(*arguments, program=PROGRAM, code=0, **more):
    done = subprocess.run([program, *arguments], stderr=subprocess.PIPE, check=False,
                          **{"stdout": subprocess.DEVNULL, **more})
    assert done.returncode == code, (arguments, done.returncode, done.stderr)
    return done.stderr.decode()


class CommandLines(unittest.TestCase):
    def setUp(self):
        pathlib.Path("in.hex").write_text(HEX)
        pathlib.Path("s.tsn").write_text("NEW_BUFFER @a FROM_FILE in.hex\n")

    def test_refusals_say_what_may_be_meant(self):
        for arguments, words in REFUSED:
            with self.subTest(arguments):
                self.assertIn(words, run(*arguments, code=2))
        self.assertFalse(pathlib.Path("out.bin").exists())

    def test_pages_of_diagnostics_are_named_and_printed(self):
        pathlib.Path("odd.tsn").write_text("NEW_BUFFER @a FROM_VALUES { 0x123 }\nPRINT_TEXT FW_VERSION\n"
                                           "NEW_BUFFER @b EMPTY -useBufferRange={2 * 3 + 4, 3 4}\n"
                                           "PRINT_CRC @c\n")
        # The first four of the kinds that were printed, in their order.
        for options, kinds in (
                ((), "unknown-name truncated-value expression-order number-pair"),
                (("-q",), "unknown-name"),
                (("--ignore=number-pair",), "unknown-name truncated-value expression-order bare-word")):
            said = run("check", "odd.tsn", *options, code=1)
            self.assertEqual(said.partition("\nmore: ")[2], "tessaron help %s\n" % kinds)
        self.assertNotIn("more:", run("check", "odd.tsn", "--diagnostics=json", code=1))
        self.assertEqual(run("run", "s.tsn"), "")
        pages = subprocess.run([PROGRAM, "help", "unknown-name", "outside"], check=True,
                               stdout=subprocess.PIPE, text=True).stdout
        self.assertRegex(pages, r"(?s)\Aunknown-name\n\nAn error: .*\n\noutside\n\nAn error: .*\[outside\]")
        self.assertNotRegex(pages, r"```|\]\(")

    def test_sound_neighbours_pass(self):
        run("--version")
        run("run", "--help")
        run("help", "run")
        run("run", "s.tsn", "--diagnostics=json", "--color", "never")
        for width in ("20", "1000"):
            run("map", "in.hex", "--width", width)
        for rows in ("0", "1000"):
            run("diff", "in.hex", "in.hex", "--context", rows)
        for crop in ("0,1", "{0, 0x1}", "0X0,1"):
            run("convert", "in.hex", "sound.bin", "--crop", crop)
            self.assertEqual(pathlib.Path("sound.bin").read_bytes(), b"\1")
        run("convert", "in.hex", "sound.bin", "--crop", "0,6", "--fill", "255")
        self.assertEqual(pathlib.Path("sound.bin").read_bytes(), b"\1\2\3\4\xFF\xFF")
        run("convert", "in.hex", "sound.hex", "--offset", "0xFFFFFFFC")
        run("convert", "sound.hex", "back.hex", "--offset=-4294967292")
        self.assertIn(HEX.split()[0], pathlib.Path("back.hex").read_text())
        run("run", "s.tsn", "--error", "syntax", "--symbol", "X=in.hex:s", code=1)
        # Before the operands, an option has one value, also where more operands come than there must be.
        for option in (("--error", "overlap"), ("--warn", "overlap"), ("--ignore", "overlap"),
                       ("-D", "@a=@b"), ("-C", ".")):
            run("run", *option, "s.tsn", "@a=@c")
        for command in ("info", "map"):
            run(command, "--from", "IntelHex", "in.hex", "in.hex")
            run(command, "--error", "overlap", "in.hex", "in.hex")
            self.assertNotIn("once for all", run(command, "--elf", "in.hex", "in.hex", "in.hex", code=1))
        run("diff", "--from", "IntelHex", "--warn", "overlap", "in.hex", "in.hex")
        run("convert", "--interleave", "1", "--with", "in.hex", "in.hex", "bus.hex")
        run("convert", "in.hex", "sound.hex", "--fill", "0", "--align", "1", "--fill-gaps", "0xFFFFFFFF")
        run("run", "--symbol", "X=in.hex:s", "s.tsn", code=1)
        run("diff", "--ignore", "0,1", "in.hex", "in.hex")
        os.makedirs("below", exist_ok=True)
        pathlib.Path("below/below.tsn").write_text("PRINT_TEXT {Q1} PRINT_TEXT {Q2}\n")
        printed = subprocess.run([PROGRAM, "run", "-C", "below", "below.tsn", "Q1=operand",
                                  "Q2=first", "Q2=second", "-D", "Q1=option"],
                                 capture_output=True, check=True)
        self.assertEqual(printed.stdout.split(), [b"option", b"first"])

    def test_conversions_that_fail(self):
        # 0x10 is a start address.
        pathlib.Path("start.hex").write_text(":0400000001020304F2\n:0400000500000010E7\n:00000001FF\n")
        for arguments, words in (
                (["in.hex", "no.hex", "--offset", "0x100000000"],
                 "the offset moves the start 0x00000000 out of the 32-bit address space [outside]"),
                (["in.hex", "no.hex", "--crop", "1,1", "--offset", "0xFFFFFFFF"],
                 "the offset moves the start 0x00000001 out of"),
                (["in.hex", "no.hex", "--lane", "1,2,2", "--offset", "0xFFFFFFFF"], "[outside]"),
                (["start.hex", "no.hex", "--offset", "0xFFFFFFF0"],
                 "the start address 0x100000000 of start.hex has more than 32 bits [outside]"),
                (["in.hex", "no.uf2"], "the ending of no.uf2 names several formats [wrong-format]"),
                (["in.hex", "no.way"], "the ending of no.way names no format [wrong-format]"),
                (["in.hex", "no.elf"], "an ELF file is written as a copy of one [wrong-format]"),
                (["in.hex", "no.hex", "--elf-template", "in.hex"], "--elf-template is for ELF files"),
                (["in.hex", "no.bin", "--crop", "0x100000000,1"], "leaves the 32-bit address space"),
                (["in.hex", "no.bin", "--crop", "0,0x100000000"], "leaves the 32-bit address space"),
                (["in.hex", "no.bin", "--crop", "4,1"], "lies where the image is [empty-image]"),
                *((["in.hex", name, "--print-script"], "no script can name the file " + name)
                  for name in ("a'b.hex", "a}b.hex", " b.hex")),
                (["in.hex", "b\x1a.hex", "--print-script"], "a script ends at the byte 0x1A"),
                (["no.h", "no.hex"], "files with the ending of no.h are written and not read"),
                (["missing.hex", "no.hex"], "cannot open missing.hex: No such file or directory"),
                (["/dev/stdin", "no.hex", "--offset", "1"], "/dev/stdin can be read only once")):
            with self.subTest(arguments):
                said = run("convert", *arguments, code=1, stdin=subprocess.DEVNULL)
                self.assertIn(words, said)
                self.assertFalse(pathlib.Path(arguments[1]).exists())
        for arguments, made in (
                (["in.hex", "moved.hex", "--crop", "0,1", "--offset", "0xFFFFFFFF"],
                 ":02000004FFFFFC\n:01FFFF000100\n:00000001FF\n"),
                (["in.hex", "moved.hex", "--lane", "1,2,2", "--offset", "0xFFFFFFFD"],
                 ":02000004FFFFFC\n:02FFFD000304FB\n:00000001FF\n"),
                (["start.hex", "moved.hex", "--offset", "0xFFFFFFEF"],
                 ":02000004FFFFFC\n:04FFEF000102030404\n:04000005FFFFFFFFFB\n:00000001FF\n"),
                (["in.hex", "moved.hex", "--crop", "3,0xFFFFFFFC"],
                 ":020000040000FA\n:0100030004F8\n:00000001FF\n"),
                (["start.hex", "moved.bin", "--offset", "0xFFFFFFF0"], "\1\2\3\4")):
            with self.subTest(arguments):
                run("convert", *arguments)
                self.assertEqual(pathlib.Path(arguments[1]).read_text(), made)

    def test_display(self):
        pathlib.Path("warn.tsn").write_text("NEW_BUFFER @a FROM_VALUES {0x1FF}\n")
        for options, has_color in (([], False), (["--color=always"], True), (["--color=never"], False)):
            self.assertEqual("\033" in run("run", "warn.tsn", *options), has_color)
        self.assertEqual(run("run", "warn.tsn", "--quiet"), "")
        self.assertEqual(run("run", "warn.tsn", "--ignore", "truncated-value"), "")
        for option in ("--werror", "--error=truncated-value"):
            self.assertIn(": error: ", run("run", "warn.tsn", option, code=1))
        self.assertIn(": error: ", run("run", "warn.tsn", "--quiet", "--werror", code=1))
        self.assertTrue(run("run", "warn.tsn", "--diagnostics=json").startswith('{"severity"'))

    def test_what_standard_output_does_not_take_is_an_error(self):
        pathlib.Path("print.tsn").write_text("NEW_BUFFER @a FROM_VALUES {1}\nPRINT_TEXT {text}\n"
                                             "WRITE_FILE lost.hex WITH_BUFFERS {@a}\n")
        pathlib.Path("other.hex").write_text(":0100000002FD\n:00000001FF\n")
        with open("/dev/full", "w") as full:
            for arguments, code in (
                    (["--version"], 1), (["--help"], 1), (["map", "--help"], 1), (["help", "crcs"], 1),
                    (["info", "in.hex"], 1), (["info", "in.hex", "--json"], 1), (["map", "in.hex"], 1),
                    # 1 says that the files differ.
                    (["diff", "in.hex", "other.hex"], 2), (["diff", "in.hex", "in.hex", "--json"], 1),
                    (["convert", "in.hex", "lost.hex", "--print-script"], 1),
                    (["run", "print.tsn", "--print-script"], 1), (["check", "print.tsn"], 1),
                    (["run", "print.tsn"], 1)):
                said = run(*arguments, code=code, stdout=full)
                self.assertIn("standard output could not be written completely", said)
                self.assertEqual("[short-write]" in said, not re.search("help|version", str(arguments)))
            run("diff", "in.hex", "in.hex", stdout=full)
        self.assertFalse(pathlib.Path("lost.hex").exists())

    def test_scripts_that_are_no_text(self):
        script = "NEW_BUFFER @a EMPTY\n"
        for encoding in ("utf-16", "utf-16-le", "utf-16-be", "utf-32", "utf-32-be"):
            pathlib.Path("wide.tsn").write_bytes(script.encode(encoding))
            self.assertIn("is in " + encoding[:6].upper(), run("run", "wide.tsn", code=2))
        pathlib.Path("wide.tsn").write_bytes(script.encode("utf-8-sig"))
        run("run", "wide.tsn")
        for arguments in (["run", "-"], ["format"]):
            closed = run(*arguments, code=1, preexec_fn=lambda: os.close(0))
            self.assertIn("standard input: it is closed", closed)

    def test_scripts_that_cannot_be_read(self):
        endless = "annot open pipe: it has no end to wait for [cannot-open]"
        if not pathlib.Path("pipe").exists():
            os.mkfifo("pipe")
        pathlib.Path("big.tsn").touch()
        for script, size, code, words in (
                ("NEW_BUFFER @a FROM_FILE pipe", 0, 1, endless),
                ("INCLUDE pipe", 0, 1, endless),
                ("INCLUDE .", 0, 1, "cannot open .: is a directory [cannot-open]"),
                ("INCLUDE in.hex/x.tsn", 0, 1, "cannot open in.hex/x.tsn: not a directory"),
                ("INCLUDE none/x.tsn", 0, 1, "cannot open none/x.tsn: no such file or directory"),
                ("INCLUDE big.tsn", (1 << 26) + 1, 2, "big.tsn is longer than 64 mib [syntax]"),
                # Of so many zeros.
                ("INCLUDE big.tsn", 1 << 26, 2, "big.tsn is in utf-32 [syntax]")):
            with self.subTest(script):
                os.truncate("big.tsn", size)
                pathlib.Path("odd.tsn").write_text(script + "\n")
                self.assertIn(words, run("run", "odd.tsn", code=code).lower())
        for script, words in (
                ("pipe", "the script pipe: it has no end to wait for [cannot-open]"),
                (".", "the script .: Is a directory [cannot-open]"),
                ("in.hex/x.tsn", "the script in.hex/x.tsn: Not a directory [cannot-open]"),
                ("none.tsn", "the script none.tsn: No such file or directory [cannot-open]")):
            self.assertIn(words, run("run", script, code=1))
        self.assertIn(endless, run("info", "pipe", code=1).lower())
        pathlib.Path("odd.tsn").write_text("PRINT_TEXT {good}\n")
        for option in ("--manifest", "--sbom", "--checksums"):
            self.assertIn(endless, run("check", "odd.tsn", option, "pipe", code=1))

    def test_little_stack(self):
        def little():
            resource.setrlimit(resource.RLIMIT_STACK, (48 << 10, 48 << 10))
        for program, code in ((CLASSIC, 254), (PROGRAM, 1)):
            arguments = ["s.tsn"] if program == CLASSIC else ["run", "s.tsn"]
            said = run(*arguments, program=program, code=code, env={}, preexec_fn=little)
            self.assertIn("of stack are left", said)

    def test_the_last_format_counts(self):
        pathlib.Path("twice.tsn").write_text(
            "NEW_BUFFER @a FROM_FILE in.hex\n"
            "WRITE_FILE raw.bin WITH_BUFFERS {@a} -setFormat=Vmem_3 -setFormat=RawBinary\n")
        run("run", "twice.tsn")
        self.assertEqual(pathlib.Path("raw.bin").read_bytes(), b"\1\2\3\4")
        pathlib.Path("twice.tsn").write_text(
            "NEW_BUFFER @a FROM_FILE in.hex\n"
            "WRITE_FILE raw.bin WITH_BUFFERS {@a} -setFormat=RawBinary -setFormat=Vmem_3\n")
        self.assertIn("Vmem does not take the number 3", run("run", "twice.tsn", code=1))

    def test_the_time_in_outputs(self):
        pathlib.Path("time.tsn").write_text(
            "NEW_BUFFER @a FROM_FILE in.hex\n"
            "WRITE_FILE a.inc WITH_BUFFERS {@a} -setFormat=EmbeddedC_Assembler\n")

        def written(*arguments, program=PROGRAM, **variables):
            run(*arguments, program=program, env=variables)
            return re.findall("Generated:.*", pathlib.Path("a.inc").read_text())
        self.assertEqual(written("run", "time.tsn"), [])
        self.assertEqual(written("run", "time.tsn", SOURCE_DATE_EPOCH="1000000000", TZ="UTC+5"),
                         ["Generated: 2001-09-09 01:46:40"])
        for seconds, time in (("0", "1970-01-01 00:00:00"),
                              ("253402300799", "9999-12-31 23:59:59")):
            self.assertEqual(written("run", "time.tsn", SOURCE_DATE_EPOCH=seconds),
                             ["Generated: " + time])
        for wrong in ("soon", "", "-1", "1 ", "253402300800"):
            self.assertEqual(written("run", "time.tsn", SOURCE_DATE_EPOCH=wrong), [])
        self.assertRegex(written("time.tsn", program=CLASSIC, SOURCE_DATE_EPOCH="0")[0], " 20[2-9]")

    def test_remarks_of_a_script_with_an_absolute_path_are_linked(self):
        pathlib.Path("odd.tsn").write_text("\nNEW_BUFFER @a FROM_VALUES {0x1FF}\n")
        run("run", str(pathlib.Path("odd.tsn").resolve()), "--report", "odd.html")
        self.assertIn('warning</strong> <a href="#line-2">', pathlib.Path("odd.html").read_text())


if __name__ == "__main__":
    with tempfile.TemporaryDirectory() as folder:
        os.chdir(folder)
        unittest.main()
