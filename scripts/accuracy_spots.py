#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Makes a sequence of each spot of a simulated scan, with its truth: known spectra are fitted to one spot at a time.

    accuracy_spots.py SEQUENCE

The spots of SEQUENCE become SEQUENCE.spot1, SEQUENCE.spot2, ... in the order of their first images.
"""
import re
import shutil
import sys
from pathlib import Path


def entry(text, key):
    return re.search(rf"^{re.escape(key)}: (.*)$", text, re.MULTILINE).group(1)


def datasets_by_spot(sequence, info):
    """The datasets' folders of each spot."""
    spots = {}
    for name in re.findall(r"^Dataset: (.*)$", info, re.MULTILINE):
        click = (sequence / name / "ClickInfo.txt").read_text(encoding="utf-8")
        spots.setdefault((entry(click, "FL x-spot"), entry(click, "FL y-spot")), []).append(name)
    return list(spots.values())


def write_spot(sequence, info, number, names):
    target = sequence.with_name(f"{sequence.name}.spot{number}")
    for name in names:
        shutil.copytree(sequence / name, target / name)
    # The scan has one photograph, in its first dataset.
    photograph = "photograph.TIF"
    if not (target / names[0] / photograph).exists():
        shutil.copy(next(sequence.glob(f"*/{photograph}")), target / names[0])
    listed = "".join(f"Dataset: {name}\n" for name in names)
    text = re.sub(r"^(Dataset: .*\n)+", listed, info, flags=re.MULTILINE)
    text = re.sub(r"^Dataset Count: .*$", f"Dataset Count: {len(names)}", text, flags=re.MULTILINE)
    (target / "SequenceInfo.txt").write_text(text, encoding="utf-8")
    for unit in (sequence / "truth").iterdir():
        copy = target / "truth" / unit.name
        copy.mkdir(parents=True)
        shutil.copy(unit / "spectra.csv", copy)
        for path in unit.glob(f"*_spot{number}.tif"):
            shutil.copy(path, copy / path.name.replace(f"_spot{number}.tif", ".tif"))


def main():
    sequence = Path(sys.argv[1])
    info = (sequence / "SequenceInfo.txt").read_text(encoding="utf-8")
    for number, names in enumerate(datasets_by_spot(sequence, info), start=1):
        write_spot(sequence, info, number, names)


if __name__ == "__main__":
    main()
