#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""usage: batch_times.py PROGRAM FOLDER [--sequences N] [--size PIXELS] [--bands N] [--jobs N]

Unmixes simulated sequences with one library, made below FOLDER where they are missing, by `spum batch`: one at a time on
one thread, then as many at once as --jobs tells (the processors, without it). Prints for both the time, the processor time
of all their processes, how long processors stood idle, and the most memory of the batch's own process, and then the share
of the ideal, as markdown. By the clock, that is the time of one at a time over the jobs' times the number of jobs; it is
right on a quiet machine only. Of the processors, it is the processor time of one at a time over all that the jobs took or
left idle; what others run at the same time takes idle time away, so that the load is told, too."""
import argparse
import os
import shutil
import subprocess
import sys
import threading
import time


def idle_seconds():
    with open('/proc/stat', encoding='ascii') as stat:
        words = stat.readline().split()
    return (int(words[4]) + int(words[5])) / os.sysconf('SC_CLK_TCK')


def make_sequences(program, folder, options):
    first = os.path.join(folder, 's00')
    if not os.path.isdir(first):
        subprocess.check_call([program, 'simulate', first, '--size', str(options.size), '--bands', str(options.bands),
                               '--quiet'])
    sequences = [first]
    for i in range(1, options.sequences):
        sequences.append(os.path.join(folder, f's{i:02}'))
        if not os.path.isdir(sequences[-1]):
            shutil.copytree(first, sequences[-1])
    library = os.path.join(folder, 'library.csv')
    shutil.copy(os.path.join(first, 'truth', 'radiant-efficiency', 'spectra.csv'), library)
    return sequences, library


class Peak(threading.Thread):
    """The most memory of a process, in MiB."""

    def __init__(self, pid):
        super().__init__(daemon=True)
        self.pid = pid
        self.mebibytes = 0.0
        self.start()

    def run(self):
        try:
            while True:
                with open(f'/proc/{self.pid}/status', encoding='ascii', errors='replace') as status:
                    for line in status:
                        if line.startswith('VmHWM'):
                            self.mebibytes = max(self.mebibytes, int(line.split()[1]) / 1024.0)
                time.sleep(0.05)
        except OSError:
            pass


def batch(program, sequences, library, out, arguments):
    shutil.rmtree(out, ignore_errors=True)
    command = [program, 'batch', '--library', library, '--out', out, '--quiet'] + arguments + sequences
    idle = idle_seconds()
    load = os.getloadavg()[0]
    begin = time.monotonic()
    process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL)
    peak = Peak(process.pid)
    _, status, usage = os.wait4(process.pid, 0)
    seconds = time.monotonic() - begin
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        sys.exit(' '.join(command) + ': fails')
    load = (load + os.getloadavg()[0]) / 2.0
    return seconds, usage.ru_utime + usage.ru_stime, idle_seconds() - idle, peak.mebibytes, load


def main():
    parser = argparse.ArgumentParser(usage=__doc__)
    parser.add_argument('program')
    parser.add_argument('folder')
    parser.add_argument('--sequences', type=int, default=20)
    parser.add_argument('--size', type=int, default=1024)
    parser.add_argument('--bands', type=int, default=24)
    parser.add_argument('--jobs', type=int, default=len(os.sched_getaffinity(0)))
    options = parser.parse_args()
    program = os.path.abspath(options.program)
    folder = os.path.abspath(options.folder)
    os.makedirs(folder, exist_ok=True)
    sequences, library = make_sequences(program, folder, options)
    out = os.path.join(folder, 'out')
    print(f'{options.sequences} sequences of {options.bands} images of {options.size} x {options.size}, '
          f'{len(os.sched_getaffinity(0))} processors\n')
    print('| at once | seconds | of processors | idle | memory of the batch | load |\n|---|---|---|---|---|---|')
    rows = []
    for jobs, arguments in ((1, ['--jobs', '1', '--threads', '1']), (options.jobs, ['--jobs', str(options.jobs)])):
        rows.append(batch(program, sequences, library, out, arguments))
        seconds, processor, idle, memory, load = rows[-1]
        print(f'| {jobs} | {seconds:.1f} | {processor:.1f} | {idle:.1f} | {memory:.0f} MiB | {load:.1f} |', flush=True)
    shutil.rmtree(out)
    print(f'\nshare of the ideal by the clock: {rows[0][0] / rows[1][0] / options.jobs:.2f}')
    print(f'share of the ideal of the processors: {rows[0][1] / (rows[1][1] + rows[1][2]):.2f}')


if __name__ == '__main__':
    main()
