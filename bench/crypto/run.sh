#!/bin/sh
# Compares the speed of the checksums with that of other libraries and prints a table of ratios.
#   bench/crypto/run.sh [name ...]      all algorithms, or those whose names contain one of these
set -eu
cd "$(dirname "$0")/../.."
scripts/setup.sh bench
cmake --preset bench >/dev/null
results=build/bench/checksums
rm -rf "$results"
mkdir "$results"
log=$results/log
# Only the table goes to standard output; the log is printed after a failure.
trap '[ $? = 0 ] || cat "$log" >&2' EXIT
cmake --build --preset bench --target checksum_bench >"$log"
filter=$(echo "${*:-.}" | tr ' ' '|')
for pass in 01 02 03 04 05 06 07 08 09 10 11 12 13 14 15; do
    build/bench/bench/crypto/checksum_bench --benchmark_filter="$filter" \
        --benchmark_min_time=0.05 --benchmark_out="$results/$pass.json" >"$log" 2>&1
done
bench/crypto/ratios.py "$results"/*.json
