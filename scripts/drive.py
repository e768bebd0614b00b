#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Drives a program by the names of its widgets from a shell.

    scripts/drive.py SOCKET start PROGRAM [ARGUMENT...]     in the background, with the driver listening on SOCKET
    scripts/drive.py SOCKET DO [WIDGET] [WORD=VALUE...]     one command, its answer on standard output

The commands are told in tests/driver/CommandServer.h, the paths of widgets in tests/driver/widgetSearch.h. A value is
JSON or else a text: drive.py /tmp/s click m_pMaskFrame at=[10,10] button=right. "tree" is printed as an indented list.
"""
import json
import os
import socket
import subprocess
import sys
import time


def start(path, command):
    """The program must come from a build folder: the driver lies in its tests/plugins."""
    build = os.path.dirname(os.path.dirname(os.path.abspath(command[0])))
    environment = dict(os.environ, QT_PLUGIN_PATH=os.path.join(build, 'tests', 'plugins'),
                       QT_QPA_GENERIC_PLUGINS='orvdriver:' + path)
    if os.path.exists(path):
        os.remove(path)
    with open(path + '.log', 'wb') as log:
        program = subprocess.Popen(command, env=environment, stdout=log, stderr=log, start_new_session=True)
    for _ in range(600):
        if os.path.exists(path):
            print(program.pid)
            return 0
        if program.poll() is not None:
            break
        time.sleep(0.05)
    sys.stderr.write(open(path + '.log', encoding='utf-8', errors='replace').read())
    return 1


def value_of(text):
    try:
        return json.loads(text)
    except ValueError:
        return text


def ask(path, words):
    connection = socket.socket(socket.AF_UNIX)
    connection.settimeout(float(words.pop('timeout', 60)))
    connection.connect(path)
    connection.sendall((json.dumps(words) + '\n').encode())
    return json.loads(connection.makefile(encoding='utf-8').readline())


def show_tree(widget, depth):
    words = [widget['class'], widget['name']]
    for key in ('text', 'checked', 'value', 'current', 'tabs', 'rows', 'entries'):
        if widget.get(key) not in (None, '', []):
            words.append(f'{key}={json.dumps(widget[key], ensure_ascii=False)[:160]}')
    words.append('x'.join(str(number) for number in widget['place'][2:]) + f"+{widget['place'][0]}+{widget['place'][1]}")
    if not widget['enabled']:
        words.append('OFF')
    if widget['focus']:
        words.append('FOCUS')
    print('  ' * depth + ' '.join(words))
    for inner in widget.get('inside', []):
        show_tree(inner, depth + 1)


def main(arguments):
    if len(arguments) < 2:
        sys.stderr.write(__doc__)
        return 2
    path, what, rest = arguments[0], arguments[1], arguments[2:]
    if what == 'start':
        return start(path, rest)
    words = {'do': what}
    for position, text in enumerate(rest):
        key, separator, value = text.partition('=')
        if separator and key.isidentifier():
            words[key] = value_of(value)
        elif position == 0:
            words['widget'] = text
    answer = ask(path, words)
    if what == 'tree' and answer.get('ok'):
        for window in answer['windows']:
            show_tree(window, 0)
    else:
        print(json.dumps(answer, ensure_ascii=False))
    return 0 if answer.get('ok') else 1


if __name__ == '__main__':
    sys.exit(main(sys.argv[1:]))
