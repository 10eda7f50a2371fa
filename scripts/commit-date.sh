#!/bin/sh
# Prints the time of the commit in seconds since 1970: that of the checkout or, in a source package, the
# one in platform/Commit.txt. A copy that has neither gets the time of its changelog.
set -eu
cd "$(dirname "$0")/.."
if [ -e .git ]; then
    git log -1 --format=%ct
else
    sed -n 's/^date \([0-9][0-9]*\)$/\1/p' platform/Commit.txt | grep . || stat -c %Y CHANGELOG.md
fi
