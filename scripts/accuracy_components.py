#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Counts the components of simulated animals, for the table of docs/accuracy.md.

    accuracy_components.py PROGRAM FOLDER [SEEDS]

PROGRAM is spum; the sequences are made in FOLDER, one at a time. For each scene the table tells how many of the SEEDS
(20) were counted exactly, how many within one, and the counts that came up.
"""
import json
import subprocess
import sys
from collections import Counter
from pathlib import Path

# Tissue, the food but for the first two, and the dyes. From six on a filter every few nanometres is needed to tell them
# apart, and all lie at 2 mm: a dye below more tissue is none that stands above the noise.
NEAR = ["--depths", "2", "--excitations", "535,605,675", "--bands", "40"]
SCENES = {
    2: ("AlexaFluor 750", ["--food-ratio", "0"]),
    3: ("AlexaFluor 750,AlexaFluor 790", ["--food-ratio", "0"]),
    4: ("AlexaFluor 750,AlexaFluor 790", []),
    5: ("AlexaFluor 680,AlexaFluor 750,AlexaFluor 790", []),
    6: ("AlexaFluor 647,AlexaFluor 700,AlexaFluor 750,AlexaFluor 790", NEAR),
    7: ("AlexaFluor 594,AlexaFluor 647,AlexaFluor 700,AlexaFluor 750,AlexaFluor 790", NEAR),
    8: ("AlexaFluor 555,AlexaFluor 594,AlexaFluor 647,AlexaFluor 700,AlexaFluor 750,AlexaFluor 790", NEAR),
}


def count(program, folder, probes, options, seed):
    """Components above the noise that `spum pca` tells of a scene; 0 where it cannot tell."""
    sequence = folder / "scene"
    subprocess.run([program, "simulate", sequence, "--size", "64", "--probes", probes, "--seed", str(seed), "--quiet",
                    "--force"] + options, check=True)
    answer = subprocess.run([program, "pca", sequence, "--out", folder / "pca", "--force", "--json"], check=True,
                            stdout=subprocess.PIPE)
    return json.loads(answer.stdout).get("componentsAboveNoise", 0)


def main():
    program, folder = sys.argv[1], Path(sys.argv[2])
    seeds = int(sys.argv[3]) if len(sys.argv) > 3 else 20
    folder.mkdir(parents=True, exist_ok=True)
    print(f"| components | images | exactly, of {seeds} | within one | counts |\n|---|---|---|---|---|")
    for truth, (probes, options) in SCENES.items():
        counts = Counter(count(program, folder, probes, options, seed) for seed in range(1, seeds + 1))
        exact = counts[truth]
        near = sum(times for number, times in counts.items() if abs(number - truth) <= 1)
        images = len(list((folder / "scene").glob("*/ClickInfo.txt")))
        listed = ", ".join(f"{number}: {counts[number]}" for number in sorted(counts))
        print(f"| {truth} | {images} | {exact} | {near} | {listed} |", flush=True)


if __name__ == "__main__":
    main()
