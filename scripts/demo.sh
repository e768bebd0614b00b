#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# usage: demo.sh PROGRAM FOLDER; a simulated mouse from its images to maps, below FOLDER.
set -eu
spum=$1
out=$2
mkdir -p "$out"

echo "1. A simulated mouse: autofluorescence, food in the gut, a dye at 2 mm and one at 6 mm"
# The folder is the demo's own, and so is the result that it saves there.
"$spum" simulate "$out/mouse" --force --discard-results
echo
echo "2. What the sequence holds"
"$spum" info "$out/mouse"
echo
echo "3. How many components its images hold"
"$spum" pca "$out/mouse" --out "$out/pca" --force
echo
echo "4. Its images unmixed automatically: spectra and maps from the names of the components alone"
"$spum" unmix "$out/mouse" --method automatic --components "TissueAF,Food,AlexaFluor 750,AlexaFluor 790" \
    --save "automatic" --note "The demo's mouse" --out "$out/automatic" --force
echo
echo "5. The same images unmixed with the known spectra"
"$spum" unmix "$out/mouse" --method library --library "$out/mouse/truth/radiant-efficiency/spectra.csv" \
    --out "$out/library" --force
echo
echo "6. Both beside the truth"
"$spum" compare "$out/mouse" "$out/library" "$out/automatic" --out "$out/comparison" --force
echo
echo "Report:   $out/automatic/report.html, one page with pictures, numbers and settings"
echo "Pictures: $out/comparison/comparison.png shows truth and both results with their spectra;"
echo "          $out/automatic/overview.png and spectra.png, one map each in $out/automatic/*.png, $out/pca/scree.png"
echo "Numbers:  $out/automatic/summary.csv (and summary.json), maps as float TIFF beside the pictures"
echo
# The tours of README.md and of the tutorial begin in a folder with images of somebody else; what was done there stays.
[ -d "$out/tour/my-images" ] || { mkdir -p "$out/tour"; cp -R "$(dirname "$0")/../tests/images/cells" "$out/tour/my-images"; }
echo "Tour:     $out/tour is where the commands of README.md and docs/tutorial.md work as they are written"
echo
echo "The same in a window, from the images on:"
echo "    $(dirname "$spum")/spum-workbench $out/mouse"
