#!/bin/sh
# Builds tessaron and shows its main job: crop a firmware image to its flash, fill the gaps, put
# a CRC into the last four bytes and write the result; then has another tool check the file.
set -eu
cd "$(dirname "$0")/.."
scripts/setup.sh demo
log=$(mktemp)
trap 'rm -f "$log"' EXIT
cmake --preset release >"$log" 2>&1 || { cat "$log"; exit 1; }
# One line that counts the steps on a terminal, a line a step elsewhere.
echo "== building the programs in build/release"
NINJA_STATUS="[%f of %t] " cmake --build --preset release
mkdir -p build/demo-firmware
cp -r examples/firmware/. build/demo-firmware
cd build/demo-firmware
echo "== the script, examples/firmware/release.tsn"
cat release.tsn
echo "== tessaron run release.tsn inFile=firmware.hex outFile=release.hex"
../release/tessaron run release.tsn inFile=firmware.hex outFile=release.hex
echo "== the last records of release.hex"
tail -n 3 release.hex
echo "== what srecord says of it"
sh check.sh release.hex
