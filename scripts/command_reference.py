#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Writes docs/commands.md, the reference of the commands, from what `spum help` says.

usage: command_reference.py PROGRAM [--check]    --check writes nothing and fails when the reference is not up to date
"""
import pathlib
import re
import subprocess
import sys

TARGET = pathlib.Path(__file__).resolve().parent.parent / "docs" / "commands.md"
HEAD = """# Commands

Made by `scripts/command_reference.py` from what `spum help` says; a test fails when it is out of date. The same text
stands in the manual pages (`man spum-unmix`). [tutorial.md](tutorial.md) shows the commands at work,
[formats.md](formats.md) what they read and write.

"""


def told(program, *words):
    result = subprocess.run([program, *words], capture_output=True, text=True, encoding="utf-8", check=True)
    return result.stdout.rstrip("\n")


def reference(program):
    overview = told(program, "help")
    listed = overview.split("\nCommands:\n", 1)[1].split("\n\n", 1)[0]
    commands = re.findall(r"^  (\S+)", listed, re.MULTILINE)
    links = ", ".join(f"[{name}](#spum-{name})" for name in commands)
    text = f"{HEAD}{links}\n\n## spum\n\n```text\n{overview}\n```\n"
    for name in commands:
        text += f"\n## spum {name}\n\n```text\n{told(program, 'help', name)}\n```\n"
    return text


def main():
    program = str(pathlib.Path(sys.argv[1]).resolve())
    text = reference(program)
    if "--check" not in sys.argv[2:]:
        TARGET.write_text(text, encoding="utf-8")
        return
    if not TARGET.exists() or TARGET.read_text(encoding="utf-8") != text:
        sys.exit("docs/commands.md is not what the commands say; write it anew: scripts/command_reference.py build/.../bin/spum")


main()
