#!/usr/bin/env python3
"""Gathers seeds for the fuzz targets from the tests and the examples.

    make_corpus.py FOLDER

makes FOLDER/script, FOLDER/run, FOLDER/includes, FOLDER/readers, FOLDER/formats,
FOLDER/records, FOLDER/field, FOLDER/keys and FOLDER/lsp. The first three hold one call of the program per file, in the form
that fuzz/ScriptInput.hpp describes, the others hold input files, the last one also those with
changes at random.
"""
import pathlib
import random
import shutil
import struct
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
# Longer seeds slow down every run and cover nothing more.
LONGEST_SEED = 1 << 14
# Changes of a file, and the longest file that is changed.
MOST_CHANGES = 60
LONGEST_CHANGED = 2000
ODD_LINES = (b"\n", b" \n", b"# remark\n", b"\0\0\n", b"\x1A", b"\xEF\xBB\xBF", b"S5030001FB\n",
             b":00000001FF\n", b":020000021000EC\n", b"S9030000FC\n", b"\r")
# The expected output of a case is not an input of its script.
NO_INPUT = {"script.tsn", "arguments", "absent", "memory-limit", "prepare.sh", "check.sh",
            "expected.out", "expected.err", "expected.exit"}


def call(arguments, script, inputs):
    parts = [arguments]
    for name, contents in [("script.tsn", script)] + inputs:
        parts.append(b"=== " + name.encode() + b"\n" + contents)
    return b"\n".join(parts)


def script_cases():
    """Name and seed of every script case and of every example."""
    scripts = sorted(ROOT.glob("tests/scripts/*/script.tsn"))
    for script in scripts + sorted(ROOT.glob("examples/*/*.tsn")):
        folder = script.parent
        inputs = [(path.name, path.read_bytes()) for path in sorted(folder.iterdir())
                  if path.is_file() and path != script and path.name not in NO_INPUT]
        arguments = folder / "arguments"
        variables = arguments.read_bytes().rstrip(b"\n") if arguments.exists() else b""
        yield folder.name, call(variables, script.read_bytes(), inputs)


def include_cases():
    """Name and seed of the cases and examples with parameters and includes, and of the recipes."""
    for folder in sorted(ROOT.glob("tests/diagnostics/*")) + sorted(ROOT.glob("examples/*")):
        scripts = sorted(folder.glob("**/*.tsn"))
        main = next((path for path in scripts if path.name in ("script.tsn", "release.tsn")), None)
        text = main.read_bytes() if main else b""
        if b"PARAMETER" not in text and b"INCLUDE" not in text:
            continue
        words = folder / "arguments"
        arguments = words.read_bytes().splitlines() if words.exists() else []
        values = b"\n".join(line for line in arguments if b"=" in line and line[:1] != b"-")
        yield folder.name, call(values, text, [
            (str(path.relative_to(folder)), path.read_bytes()) for path in scripts if path != main])
    for path in sorted(ROOT.glob("recipes/*.tsn")):
        yield path.name, call(b"", b"INCLUDE " + path.name.encode() + b" WITH { image=@App }",
                              [("recipes/" + path.name, path.read_bytes())])


def input_files():
    """Name and contents of every file that a reader accepts."""
    for folder in "tests/data", "tests/scripts", "tests/diagnostics", "examples":
        for path in sorted((ROOT / folder).glob("**/*")):
            if path.is_file() and path.suffix in (".hex", ".srec", ".s19", ".bin", ".mot"):
                yield "-".join(path.relative_to(ROOT).parts), path.read_bytes()


def format_files():
    """Name and contents of the files of the tests in formats with a mark, and of UF2 files."""
    for pattern in ("tests/data/elf/*.elf", "tests/scripts/read-formats-bad/*.txt",
                    "tests/scripts/read-formats-bad/*.vmem", "tests/data/foreign/*.vmem",
                    "tests/data/foreign/*.dfu"):
        for path in sorted(ROOT.glob(pattern)):
            yield path.name, path.read_bytes()
    for name, families in (("two.uf2", (1, 1)), ("families.uf2", (1, 2))):
        blocks = [struct.pack("<8I", 0x0A324655, 0x9E5D5157, 0x2000, 256 * i, 256,
                              families[:i].count(families[i]), families.count(families[i]),
                              families[i]) +
                  bytes(range(238)) * 2 + struct.pack("<I", 0x0AB16F30) for i in range(2)]
        yield name, b"".join(blocks)


def key_files():
    """Name and contents of the keys of the tests, each with the start of a signature."""
    for path in sorted(ROOT.glob("tests/signature/keys/*.pem")):
        yield path.name, path.read_bytes() + b"\0" + bytes.fromhex("3006020101020101")


def changed(files):
    """The small files, and each of them with changes that files suffer in the field."""
    chance = random.Random(1)
    for name, contents in files:
        yield name, contents
        lines = contents.splitlines(True)
        for number in range(MOST_CHANGES if 0 < len(contents) < LONGEST_CHANGED else 0):
            line, other = chance.randrange(len(lines)), chance.randrange(len(lines))
            at = chance.randrange(len(contents))
            yield "%s-%d" % (name, number), chance.choice((
                lambda: contents[:at] + chance.randbytes(1) + contents[at + 1:],
                lambda: contents[:at] + contents[at + 1:],
                lambda: contents[:at],
                lambda: b"".join(lines[:line] + lines[line + 1:]),
                lambda: b"".join(lines[:line] + [lines[other]] + lines[line:]),
                lambda: b"".join(lines[:line] + [chance.choice(ODD_LINES)] + lines[line:]),
                lambda: contents + chance.choice(ODD_LINES),
                lambda: contents.replace(b"\n", chance.choice((b"\r", b"\r\n", b"\r\r\n"))),
                lambda: contents.lower()))()


def write(folder, seeds):
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    for name, seed in seeds:
        if len(seed) <= LONGEST_SEED:
            (folder / name).write_bytes(seed)
    if not any(folder.iterdir()):
        sys.exit("make_corpus.py: found no seeds for %s" % folder)


def scripts():
    """Name and text of every script, as an editor opens it."""
    for path in sorted(path for folder in ("tests", "recipes", "examples") for path in (ROOT / folder).rglob("*.tsn")):
        yield "-".join(path.relative_to(ROOT).parts), path.read_bytes()


def main():
    target = pathlib.Path(sys.argv[1])
    write(target / "script", script_cases())
    write(target / "run", script_cases())
    write(target / "includes", include_cases())
    write(target / "readers", input_files())
    write(target / "formats", format_files())
    write(target / "records", input_files())
    write(target / "field", changed(input_files()))
    write(target / "keys", key_files())
    write(target / "lsp", scripts())


if __name__ == "__main__":
    main()
