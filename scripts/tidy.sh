#!/bin/bash
# SPDX-License-Identifier: GPL-3.0-or-later
# usage: tidy.sh [--changed [REF]]
#
# Asks clang-tidy about every source of the product, or with --changed about those that changed: since the history parted
# from REF (as of a branch that is to be merged), or, without REF or where that is the commit at hand, in the commits of
# the last day before the newest, of which there is one at least. A header that changed stands for its own source and
# otherwise for one that includes it. No more than 16 sources are asked about, those that changed last first, which bounds
# the time to a few minutes; what is left out is told. Needs no build: it configures one of its own, by clang and without
# precompiled headers.
set -euo pipefail
cd "$(dirname "$0")/.."
most=16
build=build/tidy
rooms='^(XTNT|host|platform|algorithms|spectra|windows|engine|storage|services|plugin|workbench)/.*\.(h|cpp)$'

# Files of the commits since the first argument, and of the working tree, the last changed first.
changed_since() {
    {
        git diff --name-only HEAD
        git log --format= --name-only "$1..HEAD"
    } | awk 'NF && !seen[$0]++'
}

# The commit behind those of the last day; nothing where the history is younger.
day_before() {
    local newest
    newest=$(git log -1 --format=%ct)
    local first
    first=$(git log -1 --format=%H --until=$((newest - 86400)))
    echo "${first:-$(git rev-list --max-parents=0 HEAD | tail -n 1)}"
}

sources_of() {
    while read -r file; do
        [[ $file =~ $rooms && -f $file ]] || continue
        if [[ $file == *.cpp ]]; then
            echo "$file"
        elif [[ -f ${file%.h}.cpp ]]; then
            echo "${file%.h}.cpp"
        else
            git grep -l --fixed-strings "#include \"$file\"" -- '*.cpp' | grep -E "$rooms" | head -n 1 || true
        fi
    done | awk '!seen[$0]++'
}

if [[ ${1:-} == --changed ]]; then
    base=
    if [[ -n ${2:-} ]]; then
        base=$(git merge-base "$2" HEAD)
    fi
    if [[ -z $base || $base == "$(git rev-parse HEAD)" ]]; then
        base=$(day_before)
    fi
    mapfile -t all < <(changed_since "$base" | sources_of)
    files=("${all[@]:0:$most}")
    if ((${#all[@]} > most)); then
        echo "tidy: ${#all[@]} sources changed, the $most that changed last are looked at; \"make tidy\" looks at all"
    fi
else
    mapfile -t files < <(git ls-files '*.cpp' | grep -E "$rooms")
fi
if ((${#files[@]} == 0)); then
    echo "tidy: no source changed"
    exit 0
fi

cmake --preset tidy --log-level=WARNING >/dev/null
# What moc and uic write is included by sources, and by headers of windows.
ninja -C "$build" -t targets all | sed -n 's/: .*//; /_autogen$/p' | grep -v / | xargs -r ninja -C "$build" >/dev/null
printf '%s\0' "${files[@]}" | xargs -0 -P "${JOBS:-2}" -n 2 clang-tidy -p "$build" --quiet 2> >(grep -v 'warnings\? generated' >&2)
echo "tidy: ${#files[@]} sources"
