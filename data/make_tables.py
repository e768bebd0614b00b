#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Computes the reference tables of this folder from the rows of figures/.

    make_tables.py                 writes the tables beside this script
    make_tables.py --out FOLDER    writes them into another folder
    make_tables.py --check         writes nothing; fails when a table isn't what would be written

README.md tells where the figures come from and what the tables hold.
"""
import argparse
import csv
import math
import sys
from pathlib import Path

HERE = Path(__file__).resolve().parent
LICENCE = "SPDX-License-Identifier: GPL-3.0-or-later"

SOURCE_GRID = range(400, 1001)  # nm
TISSUE_GRID = range(450, 1001)  # nm, the span of figures/absorbers.csv

COLOR_STEPS = 256  # of a colour table

# A tail below this part of the maximum is written as 0: the Gaussian sums fit the published curves to about 1e-2, so nothing
# smaller than this means light.
SMALLEST = 1e-6

# Whole blood: 150 g of haemoglobin a litre at 64 500 g/mol; 2.303 turns decadic extinction into absorption.
HAEMOGLOBIN_MOLAR = 150.0 / 64500.0
DECADIC = 2.303


class FigureError(Exception):
    """A row of figures that can't be used."""


def read_rows(name):
    """The rows of figures/<name> as (place, dict), comments left out."""
    path = HERE / "figures" / name
    with open(path, encoding="utf-8", newline="") as stream:
        lines = [(i, line) for i, line in enumerate(stream, 1) if line.strip() and not line.startswith("#")]
    header = next(csv.reader([lines[0][1]]))
    rows = []
    for number, line in lines[1:]:
        fields = next(csv.reader([line]))
        if len(fields) != len(header):
            raise FigureError(f"{path}:{number}: {len(fields)} fields, {len(header)} expected")
        rows.append((f"{path}:{number}", dict(zip(header, fields))))
    return rows


def number_text(value):
    """Six significant digits, as in the C locale."""
    return "0" if value == 0 else format(value, ".6g")


# --- Spectra ---------------------------------------------------------------------------------------------------------


def parse_terms(place, text):
    """"centre:sigma:weight;..." as a list of three numbers each."""
    terms = []
    for part in text.split(";"):
        try:
            centre, sigma, weight = (float(x) for x in part.split(":"))
        except ValueError as error:
            raise FigureError(f"{place}: bad term '{part}'") from error
        if sigma <= 0 or weight <= 0:
            raise FigureError(f"{place}: sigma and weight must be above 0 in '{part}'")
        terms.append((centre, sigma, weight))
    return terms


def gaussian_sum(terms, wavelength):
    return math.fsum(w * math.exp(-0.5 * ((wavelength - c) / s) ** 2) for c, s, w in terms)


def normalised(values):
    """The values over their maximum, tails below SMALLEST cut."""
    top = max(values)
    return [v / top if v / top >= SMALLEST else 0.0 for v in values]


def read_probes(name):
    """figures/<name> as {probe: {"em": curve, "ex": curve, "aliases": text}}, in the order of the file."""
    probes = {}
    for place, row in read_rows(name):
        curve = row["curve"]
        if curve not in ("em", "ex"):
            raise FigureError(f"{place}: curve '{curve}' is neither em nor ex")
        probe = probes.setdefault(row["name"], {"aliases": row["aliases"]})
        if curve in probe:
            raise FigureError(f"{place}: '{row['name']}' has two curves {curve}")
        if probe["aliases"] != row["aliases"]:
            raise FigureError(f"{place}: '{row['name']}' has two sets of aliases")
        terms = parse_terms(place, row["terms (centre_nm:sigma_nm:weight;...)"])
        probe[curve] = normalised([gaussian_sum(terms, w) for w in SOURCE_GRID])
    return probes


def source_columns(probes):
    """Columns of a source table: the probe's name with "Em" or "Ex", to which a look-up appends the same suffix."""
    columns = {}
    for name, probe in probes.items():
        for curve, suffix in (("em", "Em"), ("ex", "Ex")):
            if curve in probe:
                columns[name + suffix] = probe[curve]
    return columns


def cherenkov_columns(isotopes):
    """Photons a nanometre after I. Frank and I. Tamm (1937), 1 / w^2: one shape for every isotope, dispersion left out."""
    curve = normalised([1.0 / (w * w) for w in SOURCE_GRID])
    return {row["isotope"]: curve for row in isotopes if row["cherenkov"] == "yes"}


# --- Tissues and colours ---------------------------------------------------------------------------------------------


def interpolate(xs, ys, x):
    """Linear between the neighbours; x lies within xs."""
    for i in range(1, len(xs)):
        if x <= xs[i]:
            part = (x - xs[i - 1]) / (xs[i] - xs[i - 1])
            return ys[i - 1] + part * (ys[i] - ys[i - 1])
    raise FigureError(f"{x} nm lies beyond the figures")


def read_absorbers():
    rows = [row for _, row in read_rows("absorbers.csv")]
    return {key: [float(row[key]) for row in rows] for key in ("wavelength_nm", "hbo2", "hb", "water")}


def tissue_row(tissue, absorbers, wavelength):
    """Absorption and reduced scattering in 1/cm."""
    value = {key: float(text) for key, text in tissue.items() if key != "tissue"}
    at = {key: interpolate(absorbers["wavelength_nm"], absorbers[key], wavelength) for key in ("hbo2", "hb", "water")}
    extinction = value["saturation"] * at["hbo2"] + (1.0 - value["saturation"]) * at["hb"]
    absorption = value["blood"] * DECADIC * HAEMOGLOBIN_MOLAR * extinction + value["water"] * at["water"] + value["flat"]
    return absorption, value["a"] * (wavelength / 500.0) ** -value["b"]


def color_rows(knots):
    """One row a nanometre from the first knot to the last; knots are (wavelength, (red, green, blue))."""
    rows = []
    for (w0, c0), (w1, c1) in zip(knots, knots[1:]):
        for w in range(w0, w1 if w1 != knots[-1][0] else w1 + 1):
            part = 0.5 - 0.5 * math.cos(math.pi * (w - w0) / (w1 - w0))
            rows.append((w, [a + part * (b - a) for a, b in zip(c0, c1)]))
    return rows


# --- Tables ----------------------------------------------------------------------------------------------------------


def quoted(field):
    if any(c in field for c in ',"\n'):
        return '"' + field.replace('"', '""') + '"'
    return field


def table(title, header, rows):
    """The text of a table: two comment lines, a header, rows of texts."""
    lines = [f"# {LICENCE}", f"# {title} Made by make_tables.py; see README.md."]
    lines += [",".join(quoted(field) for field in row) for row in [header, *rows]]
    return "\n".join(lines) + "\n"


def source_table(title, columns):
    rows = [[str(w)] + [number_text(curve[i]) for curve in columns.values()] for i, w in enumerate(SOURCE_GRID)]
    return table(title, ["wavelength_nm", *columns], rows)


def tissue_table():
    absorbers = read_absorbers()
    rows = []
    for _, tissue in read_rows("tissues.csv"):
        for w in TISSUE_GRID:
            absorption, scattering = tissue_row(tissue, absorbers, w)
            rows.append([tissue["tissue"], str(w), number_text(absorption), number_text(scattering)])
    header = ["tissue", "wavelength_nm", "absorption_per_cm", "reduced_scattering_per_cm"]
    return table("Optical properties of tissues.", header, rows)


def color_table():
    sensors = {}
    for _, row in read_rows("color_responses.csv"):
        knot = (int(row["wavelength_nm"]), [float(row[c]) for c in ("red", "green", "blue")])
        sensors.setdefault(row["sensor"], []).append(knot)
    rows = []
    for sensor, knots in sensors.items():
        rows += [[sensor, str(w)] + [number_text(round(c, 12)) for c in rgb] for w, rgb in color_rows(knots)]
    return table("Colour responses of sensors.", ["sensor", "wavelength_nm", "red", "green", "blue"], rows)


def color_map_table():
    """The colours of each table, 8 bits a channel, as #rrggbb: a column a table, a row a step from the lower end."""
    maps = {}
    for place, row in read_rows("color_maps.csv"):
        channels = [float(row[key]) for key in ("red", "green", "blue")]
        colors = maps.setdefault(row["table"], [])
        if int(row["index"]) != len(colors) or not all(0 <= channel <= 1 for channel in channels):
            raise FigureError(f"{place}: not the next colour of its table")
        colors.append("#" + "".join(f"{math.floor(255 * channel + 0.5):02x}" for channel in channels))
    if any(len(colors) != COLOR_STEPS for colors in maps.values()):
        raise FigureError(f"color_maps.csv: a table has not {COLOR_STEPS} colours")
    rows = [[str(i)] + [colors[i] for colors in maps.values()] for i in range(COLOR_STEPS)]
    return table("Colour tables for maps.", ["index"] + list(maps), rows)


def probe_table(kinds, isotopes):
    rows = []
    for kind, probes in kinds.items():
        for name, probe in probes.items():
            has = ["yes" if curve in probe else "no" for curve in ("em", "ex")]
            rows.append([name, kind, *has, probe["aliases"]])
    rows += [[row["isotope"], "radioactive", "yes", "no", ""] for row in isotopes if row["cherenkov"] == "yes"]
    return table("Everything that gives light, for listings.", ["name", "kind", "has_em", "has_ex", "aliases"], rows)


def make_tables():
    """All tables as {file name: text}."""
    fluorophores = read_probes("fluorophores.csv")
    luciferases = read_probes("luciferases.csv")
    autofluorescence = read_probes("autofluorescence.csv")
    isotopes = [row for _, row in read_rows("isotopes.csv")]
    kinds = {"fluorophore": fluorophores, "luciferase": luciferases, "autofluorescence": autofluorescence}
    library = source_columns({**autofluorescence, **fluorophores})
    isotope_header = ["isotope", "half_life_s", "cherenkov"]
    return {
        "library_sources.csv": source_table("Fluorescent sources, maximum 1.", library),
        "luminescent_sources.csv": source_table("Luminescent sources, maximum 1.", source_columns(luciferases)),
        "radioactive_sources.csv": source_table("Cherenkov light by isotope, maximum 1.", cherenkov_columns(isotopes)),
        "isotopes.csv": table("Half lives of isotopes.", isotope_header, [[r[k] for k in isotope_header] for r in isotopes]),
        "tissues.csv": tissue_table(),
        "color_responses.csv": color_table(),
        "color_maps.csv": color_map_table(),
        "probes.csv": probe_table(kinds, isotopes),
    }


def main():
    parser = argparse.ArgumentParser(description="Computes the reference tables from the rows of figures/.")
    parser.add_argument("--check", action="store_true", help="compare, write nothing; status 1 when a table differs")
    parser.add_argument("--out", type=Path, default=HERE, metavar="FOLDER", help="folder of the tables")
    options = parser.parse_args()
    try:
        tables = make_tables()
    except (FigureError, OSError) as error:
        print(f"make_tables.py: {error}", file=sys.stderr)
        return 1
    status = 0
    for name, text in tables.items():
        path, data = options.out / name, text.encode("utf-8")
        if not options.check:
            path.write_bytes(data)
        elif not path.is_file() or path.read_bytes() != data:
            print(f"make_tables.py: {path} is not what the figures give", file=sys.stderr)
            status = 1
    return status


if __name__ == "__main__":
    sys.exit(main())
