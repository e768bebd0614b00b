// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>

struct CommandManual;

// What completes the command line of a program with commands in a shell: its commands, the options of each, and the
// values of those that take a word of a list, a file or a folder. The names of the values tell which: FILE and PATH,
// CSV and what ends on ".csv" are files, DIR, SEQ and OUT folders, STACK either.
QByteArray bashCompletion(const CommandManual& program);
QByteArray zshCompletion(const CommandManual& program);
