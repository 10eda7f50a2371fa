#!/bin/sh
# Regenerates the tables of the self-test with the Python interpreter $1 and independent tools, and
# compares them with the files that are compiled into the program.
set -eu
data=$(cd "$(dirname "$0")/../../selftest/data" && pwd)
made=$(mktemp -d)
trap 'rm -rf "$made"' EXIT
"$1" "$data/make_sample.py" >"$made/sample_input.hex"
cmp "$made/sample_input.hex" "$data/sample_input.hex"
sh "$data/make_reference.sh" "$data/sample_input.hex" >"$made/reference_output.hex"
cmp "$made/reference_output.hex" "$data/reference_output.hex"
# objcopy, which shares no code with srecord, also accepts the records.
objcopy -I ihex -O binary "$data/reference_output.hex" "$made/image"
[ "$(stat -c %s "$made/image")" = 131072 ]
