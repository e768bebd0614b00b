#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# Runs every benchmark of a directory.
set -eu
for program in "$1"/bench_*; do
    [ -x "$program" ] || continue
    name=$(basename "$program")
    echo "== $name"
    case $name in
    bench_console | bench_windows) "$(dirname "$0")/with-xvfb.sh" "$program" ;; # draws with OpenGL
    *) "$program" ;;
    esac
done
