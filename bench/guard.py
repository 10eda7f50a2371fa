#!/usr/bin/env python3
"""Compares the cost of conversions with the ratios in bench/ratios.tsv.

  guard.py PROGRAM FOLDER [--accept]

PROGRAM is the CmdTessaron of a release build, FOLDER holds `measure` (preset bench). Each row of the
table is a conversion of 16 MiB and its processor time divided by that of cp of the same text. The
two run in turn, and the ratio is the median over the rounds, so that a slower or a busier machine
changes it little. The exit code is 1 if a ratio is more than 15 % above its row. --accept writes the
ratios of this run to the table.

Run it by hand before and after a change that concerns speed: a machine that others use at the same
time is not a place for a verdict, so continuous integration does not run it.
"""
import pathlib
import statistics
import sys
import tempfile

from compare import CONVERSIONS, Bench, conversion_command, copy_command, make_inputs

TABLE = pathlib.Path(__file__).with_name("ratios.tsv")
SIZE = 16
ROUNDS = 21
TOLERANCE = 1.15


def measured(bench, inputs, source, target):
    """The ratio to cp of one conversion."""
    samples = bench.sample({
        "ours": conversion_command(bench, inputs, source, target, bench.path("out")),
        "cp": copy_command(bench, inputs, source)}, ROUNDS)
    return statistics.median(ours[0] / copy[0]
                             for ours, copy in zip(samples["ours"], samples["cp"]))


def main():
    program, tools = (pathlib.Path(argument).resolve() for argument in sys.argv[1:3])
    accepts = sys.argv[3:] == ["--accept"]
    allowed = {} if accepts else dict(line.split("\t") for line in TABLE.read_text().splitlines())
    found = {}
    with tempfile.TemporaryDirectory(prefix="tessaron-guard-") as folder:
        bench = Bench(program, tools, pathlib.Path(folder))
        inputs = make_inputs(bench, SIZE)
        for source, target in CONVERSIONS:
            name = "%s to %s" % (source, target)
            found[name] = measured(bench, inputs, source, target)
            print("%-16s %.2f times cp%s" % (
                name, found[name], "" if accepts else ", table %s" % allowed[name]), flush=True)
    if accepts:
        TABLE.write_text("".join("%s\t%.2f\n" % item for item in found.items()))
        return
    slower = [name for name in found if found[name] > TOLERANCE * float(allowed[name])]
    if slower:
        sys.exit("slower than the table allows: " + ", ".join(slower))


if __name__ == "__main__":
    main()
