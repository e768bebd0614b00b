#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""usage: same_results.py FOLDER OTHER

Whether two folders of a batch hold the same results, to the bit but for what tells times, the folder, and how many
processors a sequence had to itself. Names the files that differ, or that one of them lacks, and fails then."""
import json
import os
import re
import sys


def lasting(path):
    """Content of a file without what tells times and the folder of the results."""
    with open(path, 'rb') as file:
        content = file.read()
    name = os.path.basename(path)
    if name in ('summary.json', 'batch.json'):
        def without(value):
            if isinstance(value, dict):
                return {key: without(part) for key, part in value.items()
                        if key not in ('made', 'command', 'seconds', 'run', 'result', 'folder')}
            return [without(part) for part in value] if isinstance(value, list) else value
        return json.dumps(without(json.loads(content)), sort_keys=True)
    if name == 'report.html':
        return re.sub(rb'<(pre|footer)>[^<]*</\1>', b'', content)
    return content


def files_below(folder):
    found = []
    for where, folders, names in os.walk(folder):
        folders.sort()
        found += [os.path.relpath(os.path.join(where, name), folder) for name in names]
    return sorted(name for name in found if not name.startswith('.batch') and name != 'batch.html')


def differences(one, other, names):
    return [name for name in names
            if not os.path.exists(os.path.join(other, name)) or
            lasting(os.path.join(one, name)) != lasting(os.path.join(other, name))]


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    one, other = sys.argv[1:]
    names = files_below(one)
    differing = sorted(set(differences(one, other, names)) | set(files_below(other)).difference(names))
    for name in differing:
        print(f'{name} differs')
    if differing or not names:
        sys.exit(f'{one} and {other} hold different results' if names else f'{one} holds no results')


if __name__ == '__main__':
    main()
