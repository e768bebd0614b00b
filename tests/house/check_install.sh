#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# usage: check_install.sh BUILD_FOLDER; installs the build to a folder with a blank in its name, moves it, and runs it there
# with an empty environment: the tree must need neither the build nor the sources.
set -eu
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cmake --install "$1" --prefix "$work/first place" >"$work/log" || { cat "$work/log"; exit 1; }
mv "$work/first place" "$work/second place"
cd /
# What a sanitizer's build is told stays.
run="env -i PATH=/usr/bin:/bin HOME=$work ASAN_OPTIONS=${ASAN_OPTIONS:-} LSAN_OPTIONS=${LSAN_OPTIONS:-}"
$run "$work/second place/bin/spum" --version
$run "$work/second place/bin/spum-workbench" --version
$run "$work/second place/bin/spum" simulate "$work/mouse" --size 32 --bands 6 --quiet
$run "$work/second place/bin/spum" unmix "$work/mouse" --library "$work/mouse/truth/counts/spectra.csv" --unit counts --quiet
[ -s "$work/mouse/unmixed-library/summary.csv" ]
# What belongs to the programs came along, and man takes the pages.
share="$work/second place/share"
for file in man/man1/spum.1 man/man1/spum-unmix.1 man/man1/spum-workbench.1 bash-completion/completions/spum \
    zsh/site-functions/_spum applications/spum-workbench.desktop icons/hicolor/scalable/apps/orvspum.svg \
    doc/orvspum/LICENSE doc/orvspum/README.md doc/orvspum/docs/formats.md doc/orvspum/docs/pictures/rooms.svg; do
    [ -s "$share/$file" ] || { echo "$file was not installed" >&2; exit 1; }
done
python3 "$(dirname "$0")/../../scripts/check_links.py" "$share/doc/orvspum"
version=$($run "$work/second place/bin/spum" --version)
grep -qx "version: ${version#spum }" "$share/doc/orvspum/CITATION.cff" || { echo "CITATION.cff is of another version" >&2; exit 1; }
groff -man -Kutf8 -ww -z "$share"/man/man1/*.1 2>"$work/log"
[ ! -s "$work/log" ] || { cat "$work/log" >&2; exit 1; }
desktop-file-validate "$share/applications/spum-workbench.desktop"
[ -s "$work/second place/share/orvia/schema/spum.schema.json" ]
$run "$work/second place/bin/spum" redo "$work/mouse/unmixed-library" --quiet
# The tables are those of the tree, not those of the sources that the build knows.
rm -r "$work/second place/share/orvia/data"
mkdir "$work/second place/share/orvia/data"
if $run "$work/second place/bin/spum" simulate "$work/other" --size 32 --bands 6 --quiet 2>/dev/null; then
    echo "the installed program read tables from elsewhere" >&2
    exit 1
fi
