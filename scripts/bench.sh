#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# Runs every benchmark of a directory.
set -eu
for program in "$1"/bench_*; do
    [ -x "$program" ] || continue
    echo "== $(basename "$program")"
    "$program"
done
