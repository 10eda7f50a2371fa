#!/bin/sh
# Times the checksums beside the same ones of other libraries and prints the ratios as a table.
#   bench/crypto/run.sh [name ...]      all algorithms, or those whose names contain one of these
set -eu
cd "$(dirname "$0")/../.."
scripts/setup.sh bench
cmake --preset bench >/dev/null
cmake --build --preset bench --target checksum_bench
filter=$(echo "${*:-.}" | tr ' ' '|')
build/bench/bench/crypto/checksum_bench --benchmark_filter="$filter" --benchmark_repetitions=9 \
    --benchmark_enable_random_interleaving=true --benchmark_min_time=0.1 \
    --benchmark_format=json | python3 bench/crypto/ratios.py
