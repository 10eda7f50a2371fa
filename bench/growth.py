#!/usr/bin/env python3
"""Measures how the cost of runs grows with their work, and compares it with bench/growth.tsv.

  growth.py PROGRAM [EARLIER] [--only PART]... [--tools FOLDER]
            [--shrink N] [--accept]

PROGRAM and EARLIER are the CmdTessaron of release builds, beside each of which is its tessaron. FOLDER
holds `measure` (preset bench). Each curve of curves.py is measured at five sizes, each twice the one
before: processor time, wall time and peak memory of whole processes, medians of up to five rounds in
which the commands run in turn. The slope is that of the last three sizes, on scales of logarithms: 1 is
cost that grows as the work does. The exit code is 1 if a figure of PROGRAM is worse than its limit
allows. --only measures the curves whose names contain PART; --shrink divides the sizes, for a quick look
without a verdict; --accept writes the limits, and table and picture of docs/performance.md.

It is run by hand, as guard.py, where nothing else runs; it takes about ten minutes.
"""
import argparse
import math
import pathlib
import re
import sys
import tempfile

from compare import Bench, cell
from curves import CURVES
from picture import draw

ROOT = pathlib.Path(__file__).resolve().parents[1]
TABLE = ROOT / "bench/growth.tsv"
PICTURE = ROOT / "docs/growth.svg"
PAGE = ROOT / "docs/performance.md"
HEAD = ("| curve | largest | tessaron | slope | earlier, slope | beside it |\n"
        "| --- | ---: | ---: | ---: | ---: | --- |\n")
SUBJECT, EARLIER = "tessaron", "earlier"
# How much more than its limit a figure may be. Seconds hang on the machine, the others hardly do.
TOLERANCES = {"seconds": lambda limit: 1.5 * limit, "slope": lambda limit: limit + 0.1,
              "MiB": lambda limit: 1.15 * limit + 1, "times": lambda limit: 1.2 * limit}


def placed(command, program):
    """The command with the path of our program, which is beside `program`."""
    if command[0] in ("tessaron", "CmdTessaron"):
        return [str(program.with_name(command[0]))] + command[1:]
    return command


def rounds_for(figures):
    longest = max(processor for processor, _, _ in figures.values())
    return 5 if longest < 0.5 else 3 if longest < 3 else 1


def measured(curve, programs, tools):
    """The points (size, processor, wall, memory) of each command by its name."""
    points = {}
    for shift in range(4, -1, -1):
        size = curve.largest >> shift
        with tempfile.TemporaryDirectory(prefix="growth-", dir=ROOT / "build") as folder:
            bench = Bench(programs[0], tools, pathlib.Path(folder))
            made = curve.make(bench, size)
            commands = {name: placed(command, programs[0]) for name, command in made.items()}
            if len(programs) > 1:
                commands[EARLIER] = placed(made[SUBJECT], programs[1])
            figures = bench.compare(commands, 1)
            if rounds_for(figures) > 1:
                figures = bench.compare(commands, rounds_for(figures))
        for name, figure in figures.items():
            points.setdefault(name, []).append((size, *figure))
    return points


def slope(points):
    """That of the straight line that is nearest to the last three points."""
    xs, ys = ([math.log(point[column]) for point in points[-3:]] for column in (0, 1))
    middle, height = sum(xs) / 3, sum(ys) / 3
    return (sum((x - middle) * (y - height) for x, y in zip(xs, ys)) /
            sum((x - middle) ** 2 for x in xs))


def summary(points):
    """The figures that have limits, at the largest size."""
    _, seconds, _, memory = points[SUBJECT][-1]
    found = {"seconds": seconds, "slope": slope(points[SUBJECT]), "MiB": memory}
    first = next(iter(points))
    if first != SUBJECT:
        found["times"] = seconds / points[first][-1][1]
    return found


def row(curve, points):
    ours = points[SUBJECT]
    others = []
    for name, other in points.items():
        if name not in (SUBJECT, EARLIER):
            times = "/".join("%.2f" % (a / b) for a, b in zip(ours[-1][1:], other[-1][1:]))
            others.append("%s %s (times %s)" % (name, cell(other[-1][1:]), times))
    earlier = points.get(EARLIER)
    return "| %s |" % " | ".join([
        curve.name, "{:,} {}".format(curve.largest, curve.unit), cell(ours[-1][1:]), "%.2f" % slope(ours),
        "%s, %.2f" % (cell(earlier[-1][1:]), slope(earlier)) if earlier else "", "; ".join(others)])


def limits():
    lines = [line.split("\t") for line in TABLE.read_text().splitlines()]
    return {line[0]: {column: float(text) for column, text in zip(lines[0][1:], line[1:]) if text}
            for line in lines[1:]}


def write_limits(found):
    rows = [["curve", *TOLERANCES]]
    for name, figures in found.items():
        rows.append([name] + ["%.3g" % figures[column] if column in figures else "" for column in TOLERANCES])
    TABLE.write_text("".join("\t".join(row) + "\n" for row in rows))


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("programs", nargs="+", type=lambda text: pathlib.Path(text).resolve())
    parser.add_argument("--only", action="append", default=[])
    parser.add_argument("--tools", type=pathlib.Path, default=ROOT / "build/bench/bench")
    parser.add_argument("--shrink", type=int, default=1)
    parser.add_argument("--accept", action="store_true")
    options = parser.parse_args()
    if options.accept and (options.only or options.shrink != 1):
        parser.error("the limits and the picture are made of all curves")
    judged = not options.accept and options.shrink == 1
    allowed = limits() if judged else {}
    curves = [curve._replace(largest=curve.largest // options.shrink) for curve in CURVES
              if not options.only or any(part in curve.name for part in options.only)]
    (ROOT / "build").mkdir(exist_ok=True)
    print(HEAD, end="")
    found, drawn, rows, worse = {}, [], [], []
    for curve in curves:
        points = measured(curve, options.programs, options.tools.resolve())
        drawn.append((curve, points))
        found[curve.name] = summary(points)
        rows.append(row(curve, points) + "\n")
        print(rows[-1], end="", flush=True)
        if judged and curve.name not in allowed:
            worse.append("%s: no limit" % curve.name)
        worse += ["%s: %s %.3g, limit %.3g" % (curve.name, column, found[curve.name][column], limit)
                  for column, limit in allowed.get(curve.name, {}).items()
                  if found[curve.name][column] > TOLERANCES[column](limit)]
    if options.accept:
        write_limits(found)
        PICTURE.write_text(draw(drawn))
        PAGE.write_text(re.sub(re.escape(HEAD) + r"(\|.*\n)*", lambda _: HEAD + "".join(rows),
                               PAGE.read_text()))
    if worse:
        sys.exit("worse than the table allows:\n" + "\n".join(worse))


if __name__ == "__main__":
    main()
