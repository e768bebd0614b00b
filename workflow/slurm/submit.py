#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Submits a job of Snakemake to Slurm and prints its number.

usage: submit.py JOBSCRIPT

The job has the sequence's name, so that squeue and messages tell it, and the memory and time that the rule asks for.
Its comment is the file in which status.py tells of a job that ended without a word of its own.
"""
import json
import os
import subprocess
import sys

MARK = "# properties = "


def properties(script):
    with open(script, encoding="utf-8") as file:
        for line in file:
            if line.startswith(MARK):
                return json.loads(line[len(MARK):])
    sys.exit(f"{script}: this is no job of Snakemake: it has no line \"{MARK}\"")


def main():
    script = sys.argv[1]
    job = properties(script)
    name = job.get("params", {}).get("name", job.get("rule", "job"))
    resources = job.get("resources", {})
    command = ["sbatch", "--parsable", "--requeue", f"--job-name={name}", f"--cpus-per-task={job.get('threads', 1)}"]
    if "mem_mb" in resources:
        command.append(f"--mem={resources['mem_mb']}M")
    if "runtime" in resources:
        command.append(f"--time={resources['runtime']}")
    for output in job.get("output", []):
        folder = os.path.dirname(os.path.dirname(os.path.abspath(output)))
        logs = os.path.join(folder, "logs")
        os.makedirs(logs, exist_ok=True)
        command.append("--comment=" + os.path.join(folder, name + ".ended"))
        # A percent sign would begin a pattern.
        command.append("--output=" + os.path.join(logs, "%j.log"))
        command.append("--open-mode=append")
        break
    sent = subprocess.run(command + [script], stdout=subprocess.PIPE, universal_newlines=True, check=False)
    if sent.returncode != 0:
        sys.exit(sent.returncode)
    # With several clusters its name stands behind a semicolon.
    print(sent.stdout.strip().split(";")[0])


if __name__ == "__main__":
    main()
