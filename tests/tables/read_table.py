#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Reads a table as programs for tables do without an option: separated by commas, quoted by ", UTF-8, the first line
names the columns. Tells as JSON the columns, their kinds (number, text or empty) and how many rows there are; ends with
a word about the first line that such a reader would refuse or bend."""
import csv
import json
import sys


def is_number(text):
    try:
        float(text)
    except ValueError:
        return False
    return True


def kind_of(cells):
    filled = [cell for cell in cells if cell]
    if not filled:
        return "empty"
    return "number" if all(map(is_number, filled)) else "text"


with open(sys.argv[1], encoding="utf-8", newline="") as stream:
    rows = list(csv.reader(stream, strict=True))
if not rows:
    sys.exit(f"{sys.argv[1]}: there is no line")
header = rows.pop(0)
for line, row in enumerate(rows, 2):
    if len(row) != len(header):
        sys.exit(f"{sys.argv[1]}:{line}: {len(row)} fields under {len(header)} names")
if len(set(header)) < len(header) or not all(header):
    sys.exit(f"{sys.argv[1]}: a column has no name of its own: {header}")
kinds = {name: kind_of([row[i] for row in rows]) for i, name in enumerate(header)}
json.dump({"columns": header, "kinds": kinds, "rows": len(rows)}, sys.stdout)
