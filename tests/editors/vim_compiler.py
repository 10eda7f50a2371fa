#!/usr/bin/env python3
"""Lets Vim check a script with the compiler of editors/vim: vim_compiler.py TESSARON"""
import os
import pathlib
import subprocess
import sys
import tempfile

PROGRAM = pathlib.Path(sys.argv[1]).resolve()
VIM = pathlib.Path(__file__).resolve().parents[2] / "editors" / "vim"
SCRIPT = """NEW_BUFFER @App FROM_VALUES { 0x100 }
  PRINT_CRC @Crc
NEW_CRC @Crc FROM_BUFFER @App
NEW_CRC @Crc FROM_BUFFER @App
"""
# File, line, column, type and the beginning of the text. What is about the run has no line.
EXPECTED = [("a.tsn", "1", "31", "w", "the value does not fit"), ("a.tsn", "2", "13", "e", "no CRC is called @Crc"),
            ("a.tsn", "4", "9", "e", "there is already a CRC called @Crc"),
            ("a.tsn", "3", "9", "n", "the first one is made here"), ("a.tsn", "0", "0", "e", "the variable inFile")]
COMMANDS = ["set nocompatible shellpipe=>%s\\ 2>&1 runtimepath^=" + str(VIM), "filetype plugin on", "edit a.tsn",
            "silent make! inFile=1",
            "call writefile(map(getqflist(), 'bufname(v:val.bufnr).\"|\".v:val.lnum.\"|\".v:val.col.\"|\"."
            "v:val.type.\"|\".v:val.text') + [&commentstring, &formatprg], 'found')", "qall!"]

with tempfile.TemporaryDirectory() as folder:
    pathlib.Path(folder, "a.tsn").write_text(SCRIPT)
    os.symlink(PROGRAM, pathlib.Path(folder, "tessaron"))
    pathlib.Path(folder, "commands").write_text("\n".join(COMMANDS) + "\n")
    subprocess.run(["vim", "-N", "-u", "NONE", "-i", "NONE", "-es", "-S", "commands"], cwd=folder, timeout=60,
                   env=dict(os.environ, PATH=folder + ":" + os.environ["PATH"]), check=False)
    found = pathlib.Path(folder, "found").read_text().splitlines()
if found[-2:] != ["// %s", "tessaron format"]:
    sys.exit("the settings are %s" % found[-2:])
rows = [line.split("|", 4) for line in found[:-2]]
good = len(rows) == len(EXPECTED) and all(
    (*place, kind.lower()) == wanted[:4] and text.startswith(wanted[4])
    for (*place, kind, text), wanted in zip(rows, EXPECTED))
sys.exit(0 if good else "found %s" % rows)
