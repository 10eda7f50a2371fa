#!/usr/bin/env python3
"""Prints a Markdown table from results of checksum_bench in JSON: ratios.py file ...

The clock of a shared machine wanders from second to second, so speeds are compared within a pass
only, where they are measured next to each other. All figures are medians over the passes.
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

print("| algorithm | ours, MB/s | best other, MB/s | library | ratio |")
print("| --- | ---: | ---: | --- | ---: |")
for algorithm, speeds in passes.items():
    ours = speeds.pop("ours")
    ratios = {library: statistics.median(own / other for own, other in zip(ours, others))
              for library, others in speeds.items()}
    row = f"| `{algorithm}` | {statistics.median(ours):.4g} |"
    if ratios:
        best = min(ratios, key=ratios.get)
        row += f" {statistics.median(speeds[best]):.4g} | {best} | {ratios[best]:.2f} |"
    else:
        row += " | | |"
    print(row)
