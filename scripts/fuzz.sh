#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# usage: fuzz.sh DIRECTORY SECONDS; runs every fuzz target of the directory for that long, from the corpus of real files.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
for target in "$1"/fuzz_*; do
    [ -x "$target" ] && [ -f "$target" ] || continue
    name=$(basename "$target")
    work=$(mktemp -d)
    echo "== $name"
    corpus="$root/fuzz/corpus/${name#fuzz_}"
    [ -d "$corpus" ] || corpus=
    # shellcheck disable=SC2086
    "$target" -max_total_time="$2" -rss_limit_mb=2048 -timeout=10 -print_final_stats=1 -artifact_prefix="$work/" "$work" $corpus 2>&1 | tail -n 8
    rm -rf "$work"
done
