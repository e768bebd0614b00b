#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Runs every command that README.md, docs/tutorial.md and the examples of --help show, each set in a folder of its own.

usage: run_documents.py PROGRAM    fails at the first command that fails, or that this script does not know

Commands are the lines of indented blocks. The folder of a set is what `make demo` leaves for it (demo/tour), and the
simulated sequences are smaller than the reader's own.
"""
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
SMALL = "128"  # pixels a side of what is simulated without --size
# First words of lines in indented blocks that are commands, beside spum.
SHELL = ("spum", "mkdir", "cp", "head")
# Lines that are not run here: packages and the build, which brought this test along, and the window.
KNOWN = re.compile(r"(sudo )?apt-get install -y [a-z ]+|make [a-z-]+( [A-Z]+=\S+)?|cd [\w./-]+|export PATH=\S+|"
                   r"spum-workbench [\w/-]+")


def commands_of(text):
    """The lines of the indented blocks, continued ones joined."""
    inside = False
    for line in re.sub(r"\\\n\s*", "", text).split("\n"):
        if line.startswith("```"):
            inside = not inside
        elif not inside and line.startswith("    ") and line.strip():
            yield line.strip()


def examples_of(program):
    overview = subprocess.run([program, "help"], capture_output=True, text=True, check=True).stdout
    for name in re.findall(r"^  (\S+)", overview.split("\nCommands:\n", 1)[1].split("\n\n", 1)[0], re.MULTILINE):
        text = subprocess.run([program, "help", name], capture_output=True, text=True, check=True).stdout
        yield from re.findall(r"^  (spum .*)$", text.split("\nExamples:\n", 1)[1], re.MULTILINE)


def check_target(line):
    """That make knows what a document tells to make."""
    targets = (ROOT / "Makefile").read_text(encoding="utf-8")
    word = re.fullmatch(r"make ([a-z-]+).*", line)
    if word and not re.search(rf"^{word.group(1)}:", targets, re.MULTILINE):
        sys.exit(f"the Makefile has no {word.group(1)}")


class Folder:
    """A folder as the tour of the demo has it, and a home of its own."""

    def __init__(self, program):
        self.path = pathlib.Path(tempfile.mkdtemp(prefix="orvspum documents "))
        self.work = self.path / "tour"
        self.work.mkdir()
        shutil.copytree(ROOT / "tests" / "images" / "cells", self.work / "my-images")
        wrapper = self.path / "bin" / "spum"
        wrapper.parent.mkdir()
        wrapper.write_text('#!/bin/sh\ncase "$*" in\n*--size*) ;;\nsimulate*) set -- "$@" --size ' + SMALL +
                           f' ;;\nesac\nexec "{program}" "$@"\n', encoding="utf-8")
        wrapper.chmod(0o755)
        self.environment = {"PATH": f"{wrapper.parent}:/usr/bin:/bin", "HOME": str(self.path)}
        for name in os.environ:
            if name.endswith("SAN_OPTIONS"):
                self.environment[name] = os.environ[name]

    def run(self, line, source):
        if KNOWN.fullmatch(line):
            check_target(line)
            return
        if line.split()[0] not in SHELL:
            sys.exit(f"{source}: this script does not know what to do with: {line}")
        result = subprocess.run(["sh", "-c", line], cwd=self.work, env=self.environment, capture_output=True, text=True)
        print(f"[{result.returncode}] {line}", flush=True)
        if result.returncode != 0:
            sys.exit(f"{source}: failed: {line}\n{result.stdout}{result.stderr}")

    def remove(self):
        shutil.rmtree(self.path)


def main():
    program = str(pathlib.Path(sys.argv[1]).resolve())
    for name in ("README.md", "docs/tutorial.md"):
        folder = Folder(program)
        lines = list(commands_of((ROOT / name).read_text(encoding="utf-8")))
        if not any(line.startswith("spum ") for line in lines):
            sys.exit(f"{name}: no command was found")
        for line in lines:
            folder.run(line, name)
        folder.remove()

    folder = Folder(program)
    for line in ("mkdir mice", "spum simulate mice/one", "spum simulate mice/two --seed 2"):
        folder.run(line, "--help")
    for line in examples_of(program):
        if line == "spum results list mouse":
            folder.run('spum unmix mouse --ncomponents 4 --save four --out kept', "--help")
        folder.run(line, "--help")
    folder.remove()


main()
