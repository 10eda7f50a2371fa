#!/bin/sh
# Times the checksums beside the same ones of other libraries and prints the ratios as a table.
#   bench/crypto/run.sh [name ...]      all algorithms, or those whose names contain one of these
set -eu
cd "$(dirname "$0")/../.."
scripts/setup.sh bench
cmake --preset bench >/dev/null
cmake --build --preset bench --target checksum_bench >&2
filter=$(echo "${*:-.}" | tr ' ' '|')
results=build/bench/checksums
rm -rf "$results"
mkdir "$results"
for pass in 01 02 03 04 05 06 07 08 09 10 11 12 13 14 15; do
    build/bench/bench/crypto/checksum_bench --benchmark_filter="$filter" \
        --benchmark_min_time=0.05 --benchmark_out="$results/$pass.json" >/dev/null
done
bench/crypto/ratios.py "$results"/*.json
