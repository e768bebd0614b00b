#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# usage: fuzz.sh DIRECTORY SECONDS; runs every fuzz target of the directory for that long, from the corpus of real files.
# A target that fails stops it; what made it fail lies in the folder that is named.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
for target in "$1"/fuzz_*; do
    [ -x "$target" ] && [ -f "$target" ] || continue
    name=$(basename "$target")
    work=$(mktemp -d)
    echo "== $name"
    corpus="$root/fuzz/corpus/${name#fuzz_}"
    [ -d "$corpus" ] || corpus=$work
    status=0
    "$target" -max_total_time="$2" -rss_limit_mb=2048 -timeout=10 -print_final_stats=1 -artifact_prefix="$work/" \
        "$work" "$corpus" >"$work/log" 2>&1 || status=$?
    tail -n 8 "$work/log"
    if [ "$status" -ne 0 ]; then
        echo "$name failed: see $work" >&2
        exit 1
    fi
    rm -rf "$work"
done
