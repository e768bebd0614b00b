#!/bin/bash
# SPDX-License-Identifier: GPL-3.0-or-later
# usage: reproducible.sh [FOLDER]
#
# Builds the commit at hand twice, in two folders of different names and without the compiler cache, installs both, and
# compares every byte of what was installed. With FOLDER, a tree of the same commit that is built and installed already
# (FOLDER/build/install), only one build is made and compared with that. Ends with 1 and the names of what differs.
set -euo pipefail
cd "$(dirname "$0")/.."
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export CCACHE_DISABLE=1

# installed_from FOLDER: a clone of the commit there, built and installed.
installed_from() {
    git clone -q --no-local . "$1"
    (
        cd "$1"
        cmake --preset release --log-level=WARNING -DORV_TESTS=OFF -DORV_BENCH=OFF >/dev/null
        cmake --build build/release -j"${JOBS:-2}" >build/log || { tail -n 40 build/log; exit 1; }
        cmake --install build/release --prefix "$1/build/install" >/dev/null
    )
}

installed_from "$work/one"
second=${1:-}
if [[ -z $second ]]; then
    second="$work/another, of a longer name"
    installed_from "$second"
fi
if diff -r --brief "$work/one/build/install" "$second/build/install"; then
    echo "the same bytes: $(find "$work/one/build/install" -type f | wc -l) files"
else
    exit 1
fi
