#!/bin/sh
# Makes the tables of the self-test anew, with the Python interpreter $1 and the tools of others,
# and compares them with the files that are compiled into the program.
set -eu
data=$(cd "$(dirname "$0")/../../selftest/data" && pwd)
made=$(mktemp -d)
trap 'rm -rf "$made"' EXIT
"$1" "$data/make_sample.py" >"$made/sample_input.hex"
cmp "$made/sample_input.hex" "$data/sample_input.hex"
sh "$data/make_reference.sh" "$data/sample_input.hex" >"$made/reference_output.hex"
cmp "$made/reference_output.hex" "$data/reference_output.hex"
# The records also hold for a reader of another school.
objcopy -I ihex -O binary "$data/reference_output.hex" "$made/image"
[ "$(stat -c %s "$made/image")" = 131072 ]
