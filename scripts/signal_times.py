#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""usage: signal_times.py PROGRAM FOLDER [SIGNALS]

Interrupts commands on a sequence of 24 images of 1024 x 1024 pixels, made below FOLDER, which must not exist yet, at
moments spread over each command (30 without a number), and prints how long it took to end, as markdown."""
import os
import random
import select
import signal
import subprocess
import sys
import time


def start(program, arguments):
    # Whoever started this may ignore the signal, as a shell does for its background.
    return subprocess.Popen([program] + arguments, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                            stderr=subprocess.DEVNULL,
                            preexec_fn=lambda: signal.signal(signal.SIGINT, signal.SIG_DFL))


def ends_within(descriptor, seconds):
    poll = select.poll()
    poll.register(descriptor, select.POLLIN)
    return bool(poll.poll(seconds * 1000.0))


def run(program, arguments, moment=None):
    """Seconds of the whole command, or from the signal to the end; none where it ended before, or at the signal's own
    default in the first instants of the process."""
    process = start(program, arguments)
    descriptor = os.pidfd_open(process.pid)
    begin = time.monotonic()
    try:
        if moment is not None:
            if ends_within(descriptor, moment):
                return None
            begin = time.monotonic()
            process.send_signal(signal.SIGINT)
        if not ends_within(descriptor, 600.0):
            process.kill()
            sys.exit("spum " + " ".join(arguments) + ": does not end")
        seconds = time.monotonic() - begin
    finally:
        status = process.wait()
        os.close(descriptor)
    if moment is None and status != 0:
        sys.exit("spum " + " ".join(arguments) + ": fails")
    return seconds if status >= 0 else None


def main():
    if len(sys.argv) not in (3, 4):
        sys.exit(__doc__)
    program = os.path.abspath(sys.argv[1])
    count = int(sys.argv[3]) if len(sys.argv) == 4 else 30
    os.mkdir(sys.argv[2])
    os.chdir(sys.argv[2])
    os.environ["XDG_DATA_HOME"] = os.path.abspath("home")
    subprocess.run([program, "simulate", "seq", "--size", "1024", "--bands", "24", "--quiet"], check=True)
    known = ["--library", "seq/truth/radiant-efficiency/spectra.csv"]
    subprocess.run([program, "unmix", "seq", "--save", "kept", "--quiet"] + known, check=True)
    subprocess.run([program, "export", "seq", "--format", "envi", "--out", "cube.hdr", "--quiet"], check=True)
    commands = {
        "`simulate`": ["simulate", "scene", "--size", "1024", "--bands", "24", "--force"],
        "`import` of an ENVI cube": ["import", "cube.hdr", "imported", "--force"],
        "`export` as OME-TIFF": ["export", "seq", "--format", "ome-tiff", "--out", "out.tif", "--force"],
        "`export` as CSV": ["export", "seq", "--format", "csv", "--out", "out.csv", "--force"],
        "`pca`": ["pca", "seq", "--force"],
        "`unmix` with known spectra and `--pdf`": ["unmix", "seq", "--pdf", "--force", "--out", "known"] + known,
        "`unmix` by number": ["unmix", "seq", "--ncomponents", "3", "--force", "--out", "number"],
        "`results load`": ["results", "load", "seq", "kept", "--force", "--out", "loaded"],
        "`results export`": ["results", "export", "seq", "kept", "--force", "--out", "maps"],
    }
    print("| command | whole command | signal to end, median | worst of %d |\n|---|---|---|---|" % count)
    for name, arguments in commands.items():
        whole = run(program, arguments)
        times = [run(program, arguments, (i + random.random()) / count * whole) for i in range(count)]
        times = sorted(seconds for seconds in times if seconds is not None)
        if times:
            print("| %s | %.2f s | %.0f ms | %.0f ms |" %
                  (name, whole, times[len(times) // 2] * 1000.0, times[-1] * 1000.0), flush=True)


main()
