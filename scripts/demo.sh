#!/bin/sh
# Builds tessaron and shows its main job: crop a firmware image to its flash, fill the gaps, put
# a CRC into the last four bytes and write the result; then has another tool check the file, and
# shows where it has data.
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
echo "== tessaron run release.tsn inFile=firmware.hex outFile=release.hex --report report.html --map map.txt"
../release/tessaron run release.tsn inFile=firmware.hex outFile=release.hex --report report.html --map map.txt
echo "== the last records of release.hex"
tail -n 3 release.hex
echo "== what srecord says of it"
sh check.sh release.hex
echo "== the map of the image, map.txt"
cat map.txt
echo "== what is in the image, and where it came from: $PWD/report.html"
