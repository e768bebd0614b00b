#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Draws the rooms of the house and who includes whom, read from the sources, to docs/pictures/rooms.svg.

usage: draw_rooms.py [--check]    --check writes nothing and fails when the picture is not that of the sources

A room stands above all that it includes. An arrow is drawn from a room to one that it includes, but for those that a
way over other rooms tells already; the rooms that use the host's libraries (platform/) beside the house have a mark.
"""
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
PICTURE = ROOT / "docs" / "pictures" / "rooms.svg"
FOLDERS = ["XTNT", "files", "host", "algorithms", "spectra", "windows", "engine", "storage", "services", "plugin",
           "workbench"]
INCLUDE = re.compile(r'^\s*#\s*include\s*"([^"]+)"', re.MULTILINE)

WIDTH, HEIGHT = 152, 40  # of a box
GAP_X, GAP_Y = 22, 46
MARGIN = 24


def room_of(path):
    """The room of a path from the root; None outside the house."""
    parts = path.split("/")
    if parts[0] not in FOLDERS:
        return None
    if parts[0] == "XTNT":
        return "XTNT containers" if parts[1].startswith("xtnt_") else "XTNT solvers"
    if parts[0] in ("services", "workbench") and len(parts) > 2:
        return "/".join(parts[:2])
    if parts[0] == "engine" and parts[1].startswith("CImageCube."):
        return "engine/CImageCube"
    return parts[0]


def read_includes():
    """Rooms with the rooms that they include, and the rooms that use platform/."""
    edges, users = {}, set()
    for folder in FOLDERS:
        for file in sorted((ROOT / folder).rglob("*")):
            if file.suffix not in (".h", ".cpp"):
                continue
            room = room_of(file.relative_to(ROOT).as_posix())
            edges.setdefault(room, set())
            for target in INCLUDE.findall(file.read_text(encoding="utf-8")):
                if target.startswith("platform/"):
                    users.add(room)
                other = room_of(target)
                if other and other != room:
                    edges[room].add(other)
    for targets in list(edges.values()):
        for target in targets:
            edges.setdefault(target, set())
    return edges, users


def rows_of(edges):
    """The row of each room, 0 at the bottom: one above the highest that it includes."""
    rows = {}

    def row(room, above):
        if room in above:
            sys.exit("the rooms include each other in a circle: " + " -> ".join(above[above.index(room):] + [room]))
        if room not in rows:
            rows[room] = 1 + max((row(other, above + [room]) for other in edges[room]), default=-1)
        return rows[room]

    for room in sorted(edges):
        row(room, [])
    return rows


def reached(edges, room):
    found, todo = set(), list(edges[room])
    while todo:
        other = todo.pop()
        if other not in found:
            found.add(other)
            todo += edges[other]
    return found


def reduced(edges):
    """The edges without those that a longer way tells."""
    return {room: {other for other in targets if not any(other in reached(edges, way) for way in targets - {other})}
            for room, targets in edges.items()}


def places_of(rows, edges):
    """Centre of each box: in its row near the rooms that it includes."""
    by_row = {}
    for room, row in rows.items():
        by_row.setdefault(row, []).append(room)
    widest = max(len(rooms) for rooms in by_row.values())
    height = (max(by_row) + 1) * (HEIGHT + GAP_Y)
    total = widest * (WIDTH + GAP_X) - GAP_X
    places = {}
    for row in sorted(by_row):
        def wish(room):
            below = [places[other][0] for other in edges[room] if other in places]
            return (sum(below) / len(below) if below else total / 2, room)

        rooms = sorted(by_row[row], key=wish)
        span = len(rooms) * (WIDTH + GAP_X) - GAP_X
        left = (total - span) / 2
        for i, room in enumerate(rooms):
            x = MARGIN + left + i * (WIDTH + GAP_X) + WIDTH / 2
            y = MARGIN + height - GAP_Y - row * (HEIGHT + GAP_Y) - HEIGHT / 2
            places[room] = (x, y)
    return places, total + 2 * MARGIN, height - GAP_Y + 2 * MARGIN


def drawing():
    edges, users = read_includes()
    rows = rows_of(edges)
    arrows = reduced(edges)
    places, width, height = places_of(rows, arrows)
    height += 40
    lines = [
        '<!-- Made by scripts/draw_rooms.py from the includes of the sources. -->',
        f'<svg xmlns="http://www.w3.org/2000/svg" width="{width:.0f}" height="{height:.0f}" '
        f'viewBox="0 0 {width:.0f} {height:.0f}" font-family="DejaVu Sans, sans-serif" font-size="12">',
        f'<rect width="{width:.0f}" height="{height:.0f}" fill="white"/>',
    ]
    for room in sorted(arrows):
        for other in sorted(arrows[room]):
            (x1, y1), (x2, y2) = places[room], places[other]
            y1, y2 = y1 + HEIGHT / 2, y2 - HEIGHT / 2
            bend = max((y2 - y1) / 2, 12)
            lines.append(f'<path d="M{x1:.0f},{y1:.0f} C{x1:.0f},{y1 + bend:.0f} {x2:.0f},{y2 - bend:.0f} '
                         f'{x2:.0f},{y2:.0f}" fill="none" stroke="#555"/>')
            lines.append(f'<path d="M{x2 - 4:.0f},{y2 - 8:.0f} L{x2 + 4:.0f},{y2 - 8:.0f} L{x2:.0f},{y2:.0f} Z" '
                         'fill="#555"/>')
    for room in sorted(places):
        x, y = places[room]
        fill = {"services": "#dcebfb", "workbench": "#fbe8d3"}.get(room.split("/")[0], "#eef3e6")
        lines.append(f'<rect x="{x - WIDTH / 2:.0f}" y="{y - HEIGHT / 2:.0f}" width="{WIDTH}" height="{HEIGHT}" rx="5" '
                     f'fill="{fill}" stroke="#333"/>')
        lines.append(f'<text x="{x:.0f}" y="{y + 4:.0f}" text-anchor="middle">{room}</text>')
        if room in users:
            lines.append(f'<circle cx="{x + WIDTH / 2 - 8:.0f}" cy="{y - HEIGHT / 2 + 8:.0f}" r="4" fill="#c0392b"/>')
    legend = height - 26
    lines.append(f'<circle cx="{MARGIN + 4}" cy="{legend - 4:.0f}" r="4" fill="#c0392b"/>')
    lines.append(f'<text x="{MARGIN + 14}" y="{legend:.0f}">uses platform/, which includes host/, files and the XTNT '
                 'containers only</text>')
    lines.append('</svg>')
    return "\n".join(lines) + "\n"


def main():
    text = drawing()
    if sys.argv[1:] == ["--check"]:
        if not PICTURE.exists() or PICTURE.read_text(encoding="utf-8") != text:
            sys.exit(f"{PICTURE} is not the picture of the sources; run scripts/draw_rooms.py")
        return
    PICTURE.parent.mkdir(parents=True, exist_ok=True)
    PICTURE.write_text(text, encoding="utf-8")


main()
