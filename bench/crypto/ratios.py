#!/usr/bin/env python3
"""Prints a Markdown table from a result of checksum_bench in JSON, read from standard input.

Each figure is the best of the repetitions: other work on the machine can only take time away.
"""
import json
import sys

runs = json.load(sys.stdin)
best = {}
# Interleaved runs come in any order; the family number is the order of registration.
for run in sorted(runs["benchmarks"], key=lambda run: run["family_index"]):
    if run.get("run_type") == "aggregate":
        continue
    if run.get("error_occurred"):
        sys.exit(f"{run['name']}: {run['error_message']}")
    algorithm, library = run["name"].split("/")[:2]
    speeds = best.setdefault(algorithm, {})
    speeds[library] = max(speeds.get(library, 0), run["bytes_per_second"] / 1e6)

print("| algorithm | ours, MB/s | best other, MB/s | library | ratio |")
print("| --- | ---: | ---: | --- | ---: |")
for algorithm, speeds in best.items():
    ours = speeds.pop("ours")
    if speeds:
        library = max(speeds, key=speeds.get)
        print(f"| `{algorithm}` | {ours:.0f} | {speeds[library]:.0f} | {library} |"
              f" {ours / speeds[library]:.2f} |")
    else:
        print(f"| `{algorithm}` | {ours:.0f} | | | |")
