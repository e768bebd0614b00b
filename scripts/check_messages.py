#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Checks that every message in docs/troubleshooting.md is one that the sources say, and that every warning of a run is there.

A message stands in a heading between back quotes; "..." in it is where names and numbers stand. The warnings are those
whose codes docs/formats.md lists.
"""
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
FOLDERS = ["XTNT", "algorithms", "engine", "files", "host", "platform", "plugin", "services", "spectra", "storage", "windows",
           "workbench"]


def texts():
    """The literals of the sources as the compiler joins them, all in one."""
    parts = []
    for folder in FOLDERS:
        for file in sorted((ROOT / folder).rglob("*")):
            if file.suffix in (".cpp", ".h"):
                text = re.sub(r'"\s*\n\s*"', "", file.read_text(encoding="utf-8"))
                parts.append(text.replace('\\"', '"'))
    return "\n".join(parts)


def main():
    sources = texts()
    document = (ROOT / "docs" / "troubleshooting.md").read_text(encoding="utf-8")
    messages = re.findall(r"^### `(.+)`$", document, re.MULTILINE)
    if len(messages) < 10:
        sys.exit(f"only {len(messages)} messages were found")
    absent = []
    for message in messages:
        pieces = [piece.strip() for piece in message.split("...") if piece.strip()]
        if not pieces or any(piece not in sources for piece in pieces) or max(map(len, pieces)) < 8:
            absent.append(message)
    if absent:
        sys.exit("no source says: " + "; ".join(absent))
    formats = (ROOT / "docs" / "formats.md").read_text(encoding="utf-8")
    table = formats.split("### Warnings of a run", 1)[1].split("\n#", 1)[0]
    cells = re.findall(r"^\| (`[^|]+`) \|", table, re.MULTILINE)
    codes = [code for cell in cells for code in re.findall(r"`([a-z-]+)`", cell) if code not in ("code", "input")]
    untold = [code for code in codes if f"`{code}`: " not in document]
    if len(codes) < 10 or untold:
        sys.exit(f"of {len(codes)} warnings the page does not tell: {', '.join(untold)}")


main()
