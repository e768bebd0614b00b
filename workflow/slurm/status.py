#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Tells Snakemake how a Slurm job is: running, success or failed.

usage: status.py JOB

A job that Slurm ended (out of memory, out of time, its node lost) could not say so itself: it is told by name on
standard error, and in the file that is the job's comment, where "spum batch --gather" finds it.
"""
import os
import re
import subprocess
import sys
import time

RUNNING = {"PENDING", "RUNNING", "CONFIGURING", "COMPLETING", "SUSPENDED", "REQUEUED", "REQUEUE_HOLD", "REQUEUE_FED",
           "RESIZING", "SIGNALING", "STAGE_OUT", "STOPPED", "SPECIAL_EXIT"}
WORDS = {"OUT_OF_MEMORY": "ran out of memory", "TIMEOUT": "ran out of time", "NODE_FAIL": "lost its node",
         "CANCELLED": "was cancelled", "DEADLINE": "missed its deadline", "PREEMPTED": "had to give way",
         "BOOT_FAIL": "found no node that starts"}
# The scheduler may be away for a moment, as while it starts again.
ATTEMPTS, PAUSE_SECONDS = 20, 3


def shown(job):
    """What Slurm tells of a job, key by key; nothing once it has forgotten it."""
    for attempt in range(ATTEMPTS):
        asked = subprocess.run(["scontrol", "show", "job", job], stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                               universal_newlines=True, check=False)
        if asked.returncode == 0:
            found = {}
            for line in asked.stdout.splitlines():
                line = line.strip()
                if line.startswith("Comment="):
                    found["Comment"] = line[len("Comment="):]
                else:
                    found.update(re.findall(r"(\w+)=(\S*)", line))
            return found
        if "Invalid job id" in asked.stderr:
            return {}
        time.sleep(PAUSE_SECONDS)
    return {}


def accounted(job):
    """The state that the accounting has of a job; empty without one."""
    asked = subprocess.run(["sacct", "-X", "-n", "-P", "-o", "State", "-j", job], stdout=subprocess.PIPE,
                           stderr=subprocess.DEVNULL, universal_newlines=True, check=False)
    return asked.stdout.split()[0] if asked.returncode == 0 and asked.stdout.split() else ""


def tell(job, found, state, words):
    text = f"the job {words} ({state}, Slurm job {job})"
    print(f"{found.get('JobName', job)}: {text}", file=sys.stderr)
    note = found.get("Comment", "")
    if not note.endswith(".ended"):
        return
    with open(note + ".new", "w", encoding="utf-8") as file:
        file.write(text + "\n")
    os.replace(note + ".new", note)


def main():
    job = sys.argv[1]
    found = shown(job)
    state = found.get("JobState") or accounted(job)
    if state in RUNNING:
        print("running")
        return
    if state == "COMPLETED":
        print("success")
        return
    # The program itself says why where it fails; one that was killed cannot. That, too, is how memory that runs out is
    # told where Slurm watches it without control groups.
    signal = found.get("ExitCode", "0:0").split(":")[-1]
    if state == "FAILED" and signal != "0":
        tell(job, found, state, f"was ended by signal {signal}, as when it runs out of memory")
    elif state and state != "FAILED":
        tell(job, found, state, WORDS.get(state, "ended"))
    print("failed")


if __name__ == "__main__":
    main()
