#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Checks that every message in docs/troubleshooting.md is one that the sources say, that every warning of a run is there, and
that names in messages stay where they belong.

A message stands in a heading between back quotes; "..." in it is where names and numbers stand. The warnings are those
whose codes docs/formats.md lists. A name that holds "%2" would take the next figure of a chain ".arg(name).arg(number)":
foreign text goes in together with what stands behind it, ".arg(name, QString::number(number))". What is foreign text is
known by how it is called.
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


# The end of an expression that is foreign text: a name, a path, a sentence made of such.
FOREIGN = re.compile(r"(^|\W|_)(str[A-Z]\w*|\w*([nN]ame|[pP]ath|[fF]ile|[fF]older|[lL]abel|[tT]itle|[rR]eason|[mM]essage)"
                     r"|(place|name|label|printable|printableLine|join|fileName|filePath)\(.*\)|(text|source|path|title|first)\(\))$")

NUMBER = re.compile(r"(size|count|number)\([^()]*\)$|UnitNames::")


def closing(text, at):
    """Where the bracket at that place is closed."""
    depth = 0
    quoted = False
    while at < len(text):
        if quoted:
            at += text[at] == "\\"
            quoted = text[at] != '"'
        elif text[at] == '"':
            quoted = True
        elif text[at] == "'":
            at = text.index("'", at + 1 + (text[at + 1] == "\\"))
        elif text[at] in "([{":
            depth += 1
        elif text[at] in ")]}":
            depth -= 1
            if depth == 0:
                return at
        at += 1
    raise ValueError("a bracket is not closed")


def chained():
    """Foreign texts behind which a chain of arg() goes on."""
    found = []
    for folder in FOLDERS:
        for file in sorted((ROOT / folder).rglob("*")):
            if file.suffix not in (".cpp", ".h"):
                continue
            text = file.read_text(encoding="utf-8")
            for match in re.finditer(r"\.arg\(", text):
                end = closing(text, match.end() - 1)
                if not re.match(r"\s*\.arg\(", text[end + 1:]):
                    continue
                argument = " ".join(text[match.end():end].split())
                if any(FOREIGN.search(part) and not NUMBER.search(part) for part in argument.split(", ")):
                    found.append(f"{file.relative_to(ROOT)}:{text.count(chr(10), 0, match.start()) + 1} ({argument})")
    return found


def main():
    wrong = chained()
    if wrong:
        sys.exit("a name may hold %1 and take the next figure's place, give both to one arg(): " + "; ".join(wrong))
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
