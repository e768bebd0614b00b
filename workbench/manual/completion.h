// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>

struct CommandManual;

// What completes the command line of a program with commands in a shell: its commands, the options of each, and the
// values of those that take a word of a list, a file or a folder. The names of the values tell which: DIR, SEQ and
// RESULT are folders; FILE, PATH, CSV, MASK, STACK and OUT files, which shells offer with the folders that they lie in.
QByteArray bashCompletion(const CommandManual& program);
QByteArray zshCompletion(const CommandManual& program);
