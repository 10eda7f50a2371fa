#!/bin/sh
# Builds CmdTessaron and shows its main job: crop a firmware image to its flash, fill the gaps, put
# a CRC into the last four bytes and write the result; then has another tool check the file.
set -eu
cd "$(dirname "$0")/.."
scripts/setup.sh demo
log=$(mktemp)
if ! { cmake --preset release && cmake --build --preset release; } >"$log" 2>&1; then
    cat "$log"
    exit 1
fi
rm -f "$log"
cp -r examples/firmware/. build/demo-firmware 2>/dev/null || { mkdir -p build && cp -r examples/firmware build/demo-firmware; }
cd build/demo-firmware
echo "== the script, examples/firmware/release.tsn"
cat release.tsn
echo "== CmdTessaron inFile=firmware.hex outFile=release.hex release.tsn"
../release/CmdTessaron inFile=firmware.hex outFile=release.hex release.tsn
echo "== the last records of release.hex"
tail -n 3 release.hex
echo "== what srecord says of it"
sh check.sh release.hex
