#!/bin/sh
# Two formatters read the manual page $1 and must have nothing to say of it.
set -eu
complaints=$(mandoc -T lint -W style "$1" 2>&1 || true)
complaints=$complaints$(groff -man -ww -z "$1" 2>&1)
[ -z "$complaints" ] || { echo "$complaints"; exit 1; }
