#!/usr/bin/env python3
"""Prints a Markdown table from results of checksum_bench in JSON: ratios.py file ...

The clock rate of a shared machine varies from second to second, so speeds are only compared within
a pass, where they are measured one after the other. All figures are medians over the passes.
"""
import json
import statistics
import sys

passes = {}
for name in sys.argv[1:]:
    with open(name, encoding="utf-8") as file:
        runs = json.load(file)["benchmarks"]
    for run in runs:
        if run.get("error_occurred"):
            sys.exit(f"{run['name']}: {run['error_message']}")
        algorithm, library = run["name"].split("/")
        speeds = passes.setdefault(algorithm, {}).setdefault(library, [])
        speeds.append(run["bytes_per_second"] / 1e6)


def shown(speed):
    return f"{speed:.0f}" if speed >= 100 else f"{speed:.1f}"


print("| algorithm | ours, MB/s | best other, MB/s | library | ratio |")
print("| --- | ---: | ---: | --- | ---: |")
for algorithm, speeds in passes.items():
    ours = speeds.pop("ours")
    ratios = {library: statistics.median(own / other for own, other in zip(ours, others))
              for library, others in speeds.items()}
    row = f"| `{algorithm}` | {shown(statistics.median(ours))} |"
    if ratios:
        best = min(ratios, key=ratios.get)
        row += f" {shown(statistics.median(speeds[best]))} | {best} | {ratios[best]:.2f} |"
    else:
        row += " | | |"
    print(row)
