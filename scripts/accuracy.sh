#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# usage: accuracy.sh PROGRAM FOLDER; makes and unmixes the sequences of docs/accuracy.md below FOLDER, which must not exist
# yet, and prints its tables as markdown.
set -eu
spum=$1
out=$2
here=$(dirname "$0")
unit=radiant-efficiency
names="TissueAF,Food,AlexaFluor 750,AlexaFluor 790"
near="AlexaFluor 680,AlexaFluor 700"

mkdir "$out" "$out/answers"
out=$(cd "$out" && pwd)
export XDG_DATA_HOME="$out/home" # where the library is saved

# unmix SEQUENCE RESULT [OPTION...]: leaves the answer, or what was said instead of one.
unmix() {
    sequence=$1
    result=$2
    shift 2
    answer=$out/answers/$sequence.$result
    if ! "$spum" unmix "$out/$sequence" --out "$out/$sequence/$result" --json "$@" >"$answer.json" 2>"$answer.err"; then
        rm "$answer.json"
    fi
}

# known SEQUENCE RESULT [OPTION...]: with the true spectra.
known() {
    sequence=$1
    result=$2
    shift 2
    unmix "$sequence" "$result" --library "$out/$sequence/truth/$unit/spectra.csv" "$@"
}

# resolve SEQUENCE NAMES: over the body, with the spectra known, by names and by number alone.
resolve() {
    known "$1" floor --mask auto
    unmix "$1" names --method automatic --mask auto --components "$2"
    unmix "$1" number --method automatic --mask auto --ncomponents 4
}

# scene SEQUENCE NAMES [OPTION...]
scene() {
    echo "$1" >&2
    sequence=$1
    components=$2
    shift 2
    "$spum" simulate "$out/$sequence" --quiet "$@"
    known "$sequence" known
    resolve "$sequence" "$components"
}

for ratio in 3 1 0.3; do
    scene "none-$ratio" "$names" --ratio $ratio --noise none
    for peak in 20000 5000 2000; do
        scene "$peak-$ratio" "$names" --ratio $ratio --peak $peak
        known "$peak-$ratio" poisson --noise poisson --errors
        known "$peak-$ratio" gaussian --noise gaussian
    done
done
for seed in 2 3 4 5 6; do
    scene "seed-$seed" "$names" --seed $seed
done
scene near "TissueAF,Food,$near" --probes "$near"
scene near-three "TissueAF,Food,$near" --probes "$near" --excitations 605,640,675

# kind KIND SEED COMPONENTS [METHOD...]: over the body, with the true spectra by each of the methods, by names and by number alone.
kind() {
    sequence=$1-$2
    components=$3
    seed=$2
    name=$1
    shift 3
    echo "$sequence" >&2
    "$spum" simulate "$out/$sequence" --kind "$name" --seed "$seed" --quiet
    for method in "$@"; do
        known "$sequence" "$method" --method "$method" --mask auto
    done
    unmix "$sequence" names --method automatic --mask auto --components "$components"
    unmix "$sequence" number --method automatic --mask auto --ncomponents "$(echo "$components" | tr , '\n' | wc -l)"
    unmix "$sequence" proposed
}

for seed in 1 2 3 4 5; do
    unit=radiance
    kind luminescent $seed "TissueAF,Click-Beetle Green Luciferase,Click-Beetle Red Luciferase" library manual
    kind cherenkov $seed "TissueAF,F-18" library manual
    for dim in luminescent cherenkov; do
        known $dim-$seed poisson --method library --mask auto --noise poisson
    done
    unmix cherenkov-$seed decay --method automatic --mask auto --ncomponents 2 --decay auto
    unmix cherenkov-$seed wrong --method automatic --mask auto --ncomponents 2 --decay 36
    unit=radiant-efficiency
    kind temporal $seed "TissueAF,Liver,Kidneys,Tumour" manual
    unit=efficiency
    kind transillumination $seed "TissueAF,AlexaFluor 680,AlexaFluor 750"
    "$here/accuracy_spots.py" "$out/transillumination-$seed"
    for spot in 1 2 3 4; do
        known transillumination-$seed.spot$spot library --mask auto
    done
done
unit=radiant-efficiency

"$spum" library save exact --from "$out/none-3/truth/$unit/spectra.csv" --quiet
unmix none-3 six-digits --library exact
known 2000-0.3 coarse --binning 16

exec python3 "$here/accuracy_tables.py" "$out"
