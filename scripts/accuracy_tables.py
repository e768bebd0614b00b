#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Prints the tables of docs/accuracy.md from what accuracy.sh left in a folder.

    accuracy_tables.py FOLDER
"""
import array
import csv
import json
import math
import struct
import sys
from pathlib import Path

UNIT = "radiant-efficiency"
COMPONENTS = ["TissueAF", "Food", "AlexaFluor 750", "AlexaFluor 790"]
SIGNALS = ["none", "20000", "5000", "2000"]
RATIOS = ["3", "1", "0.3"]
SEEDS = range(1, 6)
SPOTS = range(1, 5)
SIGNAL_NAMES = {"none": "no noise", "20000": "20,000 e", "5000": "5,000 e", "2000": "2,000 e"}


class Scene:
    """A simulated sequence with its truth and the answers of its runs."""

    def __init__(self, root, name, unit=UNIT):
        self.root = root
        self.name = name
        self.truth = root / name / "truth" / unit
        with open(self.truth / "spectra.csv", encoding="utf-8", newline="") as stream:
            rows = [row for row in csv.reader(stream) if row and row[0] != "$"]
        self.components = rows[0][2:]
        self.emissions = [float(row[1]) for row in rows[1:]]
        columns = list(zip(*rows[1:]))[2:]
        self.spectra = {name: [float(value) for value in column] for name, column in zip(self.components, columns)}

    def answer(self, run):
        """The answer of a run, or None where it failed."""
        path = self.root / "answers" / f"{self.name}.{run}.json"
        return json.loads(path.read_text(encoding="utf-8")) if path.exists() else None

    def failure(self, run):
        text = (self.root / "answers" / f"{self.name}.{run}.err").read_text(encoding="utf-8").strip()
        # What was wrong, without the advice behind it.
        return text.splitlines()[-1].removeprefix("spum: ").split("; ")[0]

    def true_map(self, component):
        return read_floats(self.truth / f"{component}.tif")

    def floor(self):
        """What the true spectra leave of the body's data, in percent."""
        return 100.0 * self.answer("floor")["residual"]


def read_floats(path):
    """The pixels of an uncompressed TIFF file of 32-bit floats, as the program writes it."""
    content = path.read_bytes()
    order = "<" if content[:2] == b"II" else ">"
    (start,) = struct.unpack_from(order + "I", content, 4)
    (count,) = struct.unpack_from(order + "H", content, start)
    tags = {}
    for i in range(count):
        place = start + 2 + 12 * i
        tag, kind, number = struct.unpack_from(order + "HHI", content, place)
        size = {3: "H", 4: "I"}.get(kind)
        if size is None:
            continue
        step = struct.calcsize(size)
        if number * step > 4:
            (place,) = struct.unpack_from(order + "I", content, place + 8)
        else:
            place += 8
        tags[tag] = struct.unpack_from(f"{order}{number}{size}", content, place)
    if tags[258] != (32,) or tags[259] != (1,):
        sys.exit(f"{path}: not a plain image of floats")
    values = array.array("f")
    for offset, length in zip(tags[273], tags[279]):
        values.frombytes(content[offset : offset + length])
    if (order == "<") != (sys.byteorder == "little"):
        values.byteswap()
    return values


def cosine(a, b):
    return sum(x * y for x, y in zip(a, b)) / math.sqrt(sum(x * x for x in a) * sum(y * y for y in b))


def condition(rows):
    """Largest over smallest singular value: the rows are rotated in pairs until they are orthogonal (Jacobi)."""
    rows = [list(row) for row in rows]
    for _ in range(60):
        for p in range(len(rows)):
            for q in range(p + 1, len(rows)):
                a = sum(x * x for x in rows[p])
                b = sum(y * y for y in rows[q])
                c = sum(x * y for x, y in zip(rows[p], rows[q]))
                if c == 0.0:
                    continue
                zeta = (b - a) / (2.0 * c)
                t = math.copysign(1.0, zeta) / (abs(zeta) + math.hypot(1.0, zeta))
                co = 1.0 / math.hypot(1.0, t)
                si = co * t
                pairs = list(zip(rows[p], rows[q]))
                rows[p] = [co * x - si * y for x, y in pairs]
                rows[q] = [si * x + co * y for x, y in pairs]
    norms = [math.sqrt(sum(x * x for x in row)) for row in rows]
    return max(norms) / min(norms)


# --- Markdown --------------------------------------------------------------------------------------------------------


def title(text):
    print(f"\n## {text}\n")


def table(head, rows):
    print("| " + " | ".join(head) + " |")
    print("|" + "---|" * len(head))
    for row in rows:
        print("| " + " | ".join(row) + " |")


def share(value):
    """A cosine or a correlation: as many digits as tell it from 1."""
    return f"{value:.4f}" if value > 0.9 else f"{value:.2f}"


def number(value):
    """Two significant digits, plain where that is short."""
    return f"{value:.1e}".replace("e-0", "e-") if value < 1e-3 else f"{float(f'{value:.2g}'):g}"


def scene_names():
    for signal in SIGNALS:
        for ratio in RATIOS:
            yield f"{signal}-{ratio}", SIGNAL_NAMES[signal], ratio


# --- Tables ----------------------------------------------------------------------------------------------------------


def worst_errors(scene, run):
    """Worst error of each map in the body, over the map's largest value."""
    answer = scene.answer(run)
    body = scene.true_map("TissueAF")
    worst = []
    for component in answer["components"]:
        truth = scene.true_map(component["truthName"])
        found = read_floats(Path(answer["folder"]) / component["map"])
        error = max(abs(x - y) for x, y, b in zip(found, truth, body) if b > 0.0)
        worst.append(error / max(truth))
    return worst


def print_exact(root):
    scene = Scene(root, "none-3")
    title("Known spectra, without noise")
    number_of_spectra = condition(scene.spectra.values())
    print(f"Condition number of the true spectra: {number_of_spectra:.2f}\n")
    errors = zip(scene.components, worst_errors(scene, "known"), worst_errors(scene, "six-digits"))
    rows = [[name, number(full), number(six)] for name, full, six in errors]
    rows.append(["limit that the tests hold", number(1e-6 * number_of_spectra), number(1e-5 * number_of_spectra)])
    table(["worst error of the map", "spectra with 17 digits", "spectra from a library file"], rows)


def print_known(root):
    title("Known spectra, with noise")
    rows = []
    for name, signal, ratio in scene_names():
        answer = Scene(root, name).answer("known")
        cells = [
            f"{share(c['truthCorrelation'])}, {number(c['truthRelativeError'])}" for c in answer["components"]
        ]
        rows.append([signal, ratio, *cells, f"{number(100.0 * answer['residual'])} %"])
    table(["signal", "ratio", *COMPONENTS, "residual"], rows)


def error_scatter(scene, component, run):
    """Root mean square of (map - truth) / standard error over the pixels whose truth is three errors and more."""
    answer = scene.answer(run)
    truth = scene.true_map(component["truthName"])
    found = read_floats(Path(answer["folder"]) / component["map"])
    errors = read_floats(Path(answer["folder"]) / component["errorMap"])
    parts = [((x - t) / e) ** 2 for x, t, e in zip(found, truth, errors) if t > 3.0 * e]
    return (sum(parts) / len(parts)) ** 0.5 if len(parts) > 100 else None


def print_weighted(root):
    title("Known spectra, weighted by their noise")
    rows = []
    for name, signal, ratio in scene_names():
        if name.startswith("none"):
            continue
        scene = Scene(root, name)
        plain = [c["truthRelativeError"] for c in scene.answer("known")["components"]]
        for text, run in (("poisson", "poisson"), ("gaussian", "gaussian")):
            answer = scene.answer(run)
            found = answer["components"]
            cells = [f"{number(c['truthRelativeError'])} ({c['truthRelativeError'] / p:.2f})" for c, p in zip(found, plain)]
            scatter = ""
            if run == "poisson":
                parts = [error_scatter(scene, c, run) for c in found]
                scatter = ", ".join("-" if part is None else f"{part:.2f}" for part in parts)
            rows.append([signal, ratio, text, *cells, scatter])
    table(["signal", "ratio", "noise", *COMPONENTS, "scatter over error"], rows)
    print()
    rows = []
    for kind in ("luminescent", "cherenkov"):
        scenes = [Scene(root, f"{kind}-{seed}", "radiance") for seed in range(1, 6)]
        for i, name in enumerate(scenes[0].components):
            plain, weighted = (
                sum(scene.answer(run)["components"][i]["truthRelativeError"] for scene in scenes) / len(scenes)
                for run in ("library", "poisson")
            )
            rows.append([kind, name, number(plain), number(weighted), f"{weighted / plain:.2f}"])
    table(["kind", "component", "alike", "poisson", "ratio"], rows)


def print_shares(root):
    title("Shares of the signal of weak dyes")
    scene = Scene(root, "2000-0.3")
    sums = {name: sum(scene.true_map(name)) * sum(scene.spectra[name]) for name in scene.components}
    rows = [["truth", *(f"{100.0 * sums[name] / sum(sums.values()):.2f} %" for name in scene.components)]]
    for text, run in (("binning 4", "known"), ("binning 16", "coarse")):
        rows.append([text, *(f"{100.0 * c['share']:.2f} %" for c in scene.answer(run)["components"])])
    table(["2,000 e, ratio 0.3", *scene.components], rows)


def resolved_row(scene, run):
    """Cosine and correlation of each component, lack of fit and floor, iterations and ending."""
    answer = scene.answer(run)
    if answer is None:
        return [*["" for _ in scene.components], "", "", f"{scene.floor():.3f}", "", scene.failure(run)]
    found = {c["truthName"]: c for c in answer["components"] if c.get("truthName")}
    cells = []
    for name in scene.components:
        component = found.get(name)
        cells.append(
            f"{share(component['truthCosine'])}, {share(component['truthCorrelation'])}" if component else "not found"
        )
    raw, denoised = 100 * answer["lackOfFit"], 100 * answer["lackOfFitDenoised"]
    return [*cells, f"{raw:.3f}", f"{denoised:.3f}", f"{scene.floor():.3f}", str(answer["iterations"]), answer["ending"]]


FIT_HEAD = ["lack of fit", "denoised", "floor", "iterations", "ended"]


def print_resolved(root, heading, run):
    title(heading)
    rows = [[signal, ratio, *resolved_row(Scene(root, name), run)] for name, signal, ratio in scene_names()]
    table(["signal", "ratio", *COMPONENTS, *FIT_HEAD], rows)


def print_allowed(root):
    title("What the predictions allow")
    scene = Scene(root, "none-3")
    rows = []
    for component in scene.answer("names")["components"]:
        truth = scene.spectra[component["name"]]
        cut = int(component.get("highPass", 0))
        allowed = [value if emission > cut else 0.0 for value, emission in zip(truth, scene.emissions)]
        rows.append(
            [
                component["name"],
                f"up to {cut} nm" if cut else "none",
                f"{max([v for v, e in zip(truth, scene.emissions) if e <= cut], default=0.0):.3f}",
                share(cosine(truth, allowed)),
                share(component["truthCosine"]),
            ]
        )
    table(["component", "emissions forced to zero", "largest true value there", "cosine within reach", "cosine found"], rows)


def print_ambiguity(root):
    """Spectra that fit exactly as well as the true ones, without a negative value anywhere: as much of the tissue's spectrum
    as its map can spare beneath a component is added to that component's, and taken from the tissue's map."""
    title("How far apart equally good answers lie")
    rows = []
    for ratio in RATIOS:
        scene = Scene(root, f"none-{ratio}")
        tissue = scene.true_map("TissueAF")
        cells = []
        for name in COMPONENTS[1:]:
            spare = min(t / c for t, c in zip(tissue, scene.true_map(name)) if c > 0.0)
            mixed = [x + spare * t for x, t in zip(scene.spectra[name], scene.spectra["TissueAF"])]
            cells.append(share(cosine(mixed, scene.spectra[name])))
        rows.append([ratio, *cells])
    table(["ratio", *COMPONENTS[1:]], rows)


def spread(values, form):
    values = list(values)
    return f"{form(min(values))} to {form(max(values))}"


def print_seeds(root):
    title("Other animals and other noise")
    scenes = [Scene(root, "20000-3"), *(Scene(root, f"seed-{seed}") for seed in range(2, 7))]
    rows = []
    for text, run in (("known spectra", "known"), ("names", "names")):
        answers = [scene.answer(run)["components"] for scene in scenes]
        for what, key in (("cosine", "truthCosine"), ("correlation", "truthCorrelation")):
            if run == "names" or key == "truthCorrelation":
                rows.append([text, what, *(spread((a[k][key] for a in answers), share) for k in range(4))])
    table(["seeds 1 to 6", "", *COMPONENTS], rows)
    ratios = [100 * scene.answer("number")["lackOfFit"] / scene.floor() for scene in scenes]
    print(f"\nBy number alone the lack of fit is {spread(ratios, '{:.3f}'.format)} of the floor.")


def print_near(root):
    title("Dyes that lie close to the food")
    rows = []
    for name, text in (("near", "605, 675 nm"), ("near-three", "605, 640, 675 nm")):
        scene = Scene(root, name)
        known = scene.answer("floor")["components"]
        cells = [f"1, {share(c['truthCorrelation'])}" for c in known]
        rows.append([text, "known spectra", *cells, f"{scene.floor():.3f}", "", f"{scene.floor():.3f}", "", ""])
        rows.append([text, "names", *resolved_row(scene, "names")])
        rows.append([text, "number alone", *resolved_row(scene, "number")])
    table(["excitations", "method", *Scene(root, "near").components, *FIT_HEAD], rows)


# --- Kinds of sequences ----------------------------------------------------------------------------------------------


def kind_scenes(root, kind, unit):
    return [Scene(root, f"{kind}-{seed}", unit) for seed in SEEDS]


def squares_of_fit(scene, answer):
    """The sum of squares of maps times spectra."""
    maps = [read_floats(Path(answer["folder"]) / c["map"]) for c in answer["components"]]
    spectra = [scene.spectra[c["name"]] for c in answer["components"]]
    total = 0.0
    for a, first in zip(maps, spectra):
        for b, second in zip(maps, spectra):
            total += sum(x * y for x, y in zip(a, b)) * sum(x * y for x, y in zip(first, second))
    return total


def floor_of_scan(scene, unit):
    """The floor of all spots together. A fit without negative values is orthogonal to what it leaves, so the sum of squares of the
    data follows from that of the fit."""
    data = left = 0.0
    for spot in SPOTS:
        one = Scene(scene.root, f"{scene.name}.spot{spot}", unit)
        answer = one.answer("library")
        share = answer["residual"] ** 2
        squares = squares_of_fit(one, answer) / (1.0 - share)
        data += squares
        left += share * squares
    return 100.0 * math.sqrt(left / data)


def correlation(a, b):
    mean_a, mean_b = sum(a) / len(a), sum(b) / len(b)
    a, b = [x - mean_a for x in a], [y - mean_b for y in b]
    return cosine(a, b)


def scan_correlation(scene, unit, component):
    """Of a component's maps and true maps over the pixels that were analysed, all spots together."""
    found, truth = [], []
    for spot in SPOTS:
        one = Scene(scene.root, f"{scene.name}.spot{spot}", unit)
        answer = one.answer("library")
        maps = {c["name"]: read_floats(Path(answer["folder"]) / c["map"]) for c in answer["components"]}
        analysed = [any(values) for values in zip(*maps.values())]
        found += [x for x, used in zip(maps[component], analysed) if used]
        truth += [x for x, used in zip(one.true_map(component), analysed) if used]
    return correlation(found, truth)


def worst_cell(answers, component, fixed):
    """The lowest cosine and correlation of a component in all answers; `fixed`: the spectra were given."""
    found = [c for answer in answers for c in answer["components"] if c.get("truthName", c["name"]) == component]
    if len(found) < len(answers):
        return "not found" if not found else f"found in {len(found)} of {len(answers)}"
    correlation = share(min(c["truthCorrelation"] for c in found))
    return correlation if fixed else f"{share(min(c['truthCosine'] for c in found))}, {correlation}"


def print_kind(root, heading, kind, unit, rows, floor_run):
    """A table with a row for each of `rows`: text, run, and whether the spectra were given. The floor is that of `floor_run`; None:
    of the spots of a scan."""
    title(heading)
    scenes = kind_scenes(root, kind, unit)
    floors = [
        floor_of_scan(scene, unit) if floor_run is None else 100.0 * scene.answer(floor_run)["residual"]
        for scene in scenes
    ]
    lines = []
    for text, run, fixed in rows:
        if run is None:
            cells = [share(min(scan_correlation(s, unit, name) for s in scenes)) for name in scenes[0].components]
            lines.append([text, *cells, spread(floors, "{:.2f}".format), "", ""])
            continue
        answers = [scene.answer(run) for scene in scenes]
        fits = [100.0 * answer["residual"] for answer in answers]
        counts = [] if fixed else sorted({answer["componentsAboveNoise"] for answer in answers})
        # Correction for decay changes the noise with the data, so that the floor is another.
        known = fixed or "decayCorrected" in answers[0]
        ratios = [fit / floor for fit, floor in zip(fits, floors)]
        lines.append(
            [
                text,
                *(worst_cell(answers, name, fixed) for name in scenes[0].components),
                spread(fits, "{:.2f}".format),
                "" if known else spread(ratios, "{:.3f}".format),
                " or ".join(map(str, counts)),
            ]
        )
    table(["method", *scenes[0].components, "lack of fit", "times the floor", "components above the noise"], lines)
    print(f"\nFloor: {spread(floors, '{:.2f}'.format)} %.")


def print_kinds(root):
    both = [("library", "library", True), ("manual", "manual", True)]
    automatic = [("automatic, names", "names", False), ("automatic, number", "number", False)]
    proposed = [("automatic, as proposed", "proposed", False)]
    print_kind(root, "Luminescent", "luminescent", "radiance", both + automatic, "library")
    scan = [("library, each spot by itself", None, True)]
    print_kind(root, "Transillumination", "transillumination", "efficiency", scan + automatic, None)
    courses = [("manual", "manual", True)]
    print_kind(root, "Temporal", "temporal", "radiant-efficiency", courses + automatic + proposed, "manual")
    decay = [("the same, decay corrected", "decay", False), ("the same, a third of the half life", "wrong", False)]
    print_kind(root, "Cherenkov", "cherenkov", "radiance", both + automatic + decay, "library")


def main():
    root = Path(sys.argv[1])
    print_exact(root)
    print_known(root)
    print_weighted(root)
    print_shares(root)
    print_resolved(root, "Names given", "names")
    print_allowed(root)
    print_resolved(root, "By number alone", "number")
    print_ambiguity(root)
    print_seeds(root)
    print_near(root)
    print_kinds(root)


if __name__ == "__main__":
    main()
