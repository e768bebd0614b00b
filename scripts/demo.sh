#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# usage: demo.sh PROGRAM FOLDER; a simulated mouse from its images to maps, below FOLDER.
set -eu
spum=$1
out=$2
mkdir -p "$out"

echo "1. A simulated mouse: autofluorescence, food in the gut, two dyes that overlap"
"$spum" simulate "$out/mouse" --force
echo
echo "2. What the sequence holds"
"$spum" info "$out/mouse"
echo
echo "3. Its images unmixed with the known spectra"
"$spum" unmix "$out/mouse" --method library --library "$out/mouse/truth/radiant-efficiency/spectra.csv" \
    --out "$out/result" --force
echo
echo "Pictures: $out/result/overview.png, one map each in $out/result/*.png, the spectra in spectra.png"
echo "Numbers:  $out/result/summary.csv (and summary.json), maps as float TIFF beside the pictures"
