#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""usage: batch_kills.py PROGRAM FOLDER [--sequences N] [--size PIXELS] [--bands N] [--kills N] [--jobs N] [--seed N]

Unmixes simulated sequences, made below FOLDER where they are missing, by `spum batch`: once without a break, and once killed
with signal 9 at random moments and started again each time. Ends well where both have the same files, but for the times in
them, no kill left a torn result or a process, and nothing that had ended was unmixed again."""
import argparse
import json
import os
import random
import shutil
import signal
import subprocess
import sys
import time

from batch_times import make_sequences
from same_results import differences, files_below


def processes_of(out):
    """Processes whose command names the folder."""
    found = []
    for process in filter(str.isdigit, os.listdir('/proc')):
        try:
            with open(f'/proc/{process}/cmdline', 'rb') as line:
                words = line.read().split(b'\0')
        except OSError:
            continue
        if b'unmix' in words and any(word.startswith(b'--out=' + out.encode()) for word in words):
            found.append(process)
    return found


def whole(out):
    """Sequences whose end is recorded."""
    try:
        records = os.listdir(os.path.join(out, '.batch'))
    except OSError:
        return set()
    done = set()
    for name in records:
        if name.endswith('.json') and not name.startswith('.'):
            with open(os.path.join(out, '.batch', name), encoding='utf-8') as record:
                json.load(record)
            done.add(name[:-len('.json')])
    return done


def kill_once(command, out, moment):
    """Whether the kill came in time."""
    process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL)
    try:
        process.wait(moment)
    except subprocess.TimeoutExpired:
        process.send_signal(signal.SIGKILL)
        process.wait()
        end = time.monotonic() + 10.0
        while processes_of(out):
            if time.monotonic() > end:
                sys.exit('a process outlives its batch')
            time.sleep(0.01)
        return True
    return False


def main():
    parser = argparse.ArgumentParser(usage=__doc__)
    parser.add_argument('program')
    parser.add_argument('folder')
    parser.add_argument('--sequences', type=int, default=10)
    parser.add_argument('--size', type=int, default=512)
    parser.add_argument('--bands', type=int, default=12)
    parser.add_argument('--kills', type=int, default=20)
    parser.add_argument('--jobs', type=int, default=2)
    parser.add_argument('--seed', type=int, default=14)
    options = parser.parse_args()
    program = os.path.abspath(options.program)
    folder = os.path.abspath(options.folder)
    os.makedirs(folder, exist_ok=True)
    sequences, library = make_sequences(program, folder, options)
    plain, out = (os.path.join(folder, name) for name in ('plain', 'killed'))

    def command(where):
        return [program, 'batch', '--library', library, '--out', where, '--jobs', str(options.jobs)] + sequences
    for where in (plain, out):
        shutil.rmtree(where, ignore_errors=True)
    begin = time.monotonic()
    subprocess.check_call(command(plain) + ['--quiet'])
    seconds = time.monotonic() - begin
    names = files_below(plain)
    numbers = random.Random(options.seed)
    kills = 0
    ended = set()
    while kills < options.kills:
        # Each goes on some way; where it comes to the end, the next one begins anew.
        if kill_once(command(out) + ['--quiet'], out, numbers.uniform(0.0, seconds / 2.0)):
            kills += 1
            now = whole(out)
            if not ended <= now:
                sys.exit(f'kill {kills}: {", ".join(sorted(ended - now))} had ended and is unmixed again')
            ended = now
            done = [name for name in names if name.split(os.sep)[0] in ended]
            torn = differences(plain, out, done)
            if torn:
                sys.exit(f'kill {kills}: another result in {", ".join(torn)}')
            print(f'kill {kills}: {len(ended)} of {len(sequences)} have ended', flush=True)
        else:
            ended = set()
            shutil.rmtree(out)
    answer = subprocess.run(command(out), check=True, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, text=True).stdout
    if answer.count('unchanged since its result') < len(ended):
        sys.exit('what had ended was unmixed again:\n' + answer)
    if files_below(out) != names:
        sys.exit('other files: ' + ', '.join(sorted(set(files_below(out)) ^ set(names))))
    other = differences(plain, out, names)
    if other:
        sys.exit('another content: ' + ', '.join(other))
    hidden = [name for name in os.listdir(out) if name.startswith('.') and name != '.batch']
    if hidden or sorted(os.listdir(os.path.join(out, '.batch'))) != sorted(os.listdir(os.path.join(plain, '.batch'))):
        sys.exit('something of the killed ones is left: ' + ', '.join(hidden))
    shutil.rmtree(plain)
    shutil.rmtree(out)
    print(f'{options.kills} kills: the same {len(names)} files as one run without a break, of {seconds:.1f} s')


if __name__ == '__main__':
    main()
