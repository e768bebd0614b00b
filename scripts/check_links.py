#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Checks that every link of a page leads to a file, and to a heading of it where it names one.

usage: check_links.py FOLDER [LEFT_OUT...]    pages are the *.md below FOLDER, out of which no link leads; folders of those
                                              names are left out
"""
import pathlib
import re
import sys

LINK = re.compile(r"\]\(([^)#\s]*)(?:#([^)\s]*))?\)")
HEADING = re.compile(r"^#+ (.*)$", re.MULTILINE)


def anchors_of(page):
    """The headings as links name them."""
    headings = HEADING.findall(page.read_text(encoding="utf-8"))
    return {re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-") for heading in headings}


def wrong_links(root, page):
    for link in LINK.finditer(page.read_text(encoding="utf-8")):
        name, anchor = link.groups()
        if "://" in name:
            continue
        target = (page.parent / name).resolve() if name else page
        if root not in target.parents or not target.exists():
            yield f"{page.relative_to(root)}: there is no {name}"
        elif anchor and anchor not in anchors_of(target):
            yield f"{page.relative_to(root)}: {name} has no heading {anchor}"


def main():
    root = pathlib.Path(sys.argv[1]).resolve()
    pages = [page for page in sorted(root.rglob("*.md"))
             if not set(page.relative_to(root).parts[:-1]) & set(sys.argv[2:])]
    if not pages:
        sys.exit(f"{root}: there is no page")
    wrong = [line for page in pages for line in wrong_links(root, page)]
    if wrong:
        sys.exit("\n".join(wrong))


main()
