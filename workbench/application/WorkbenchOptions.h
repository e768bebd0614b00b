// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "workbench/manual/CommandManual.h"

#include <QString>
#include <QStringList>

// What the command line of the program asks for.
struct WorkbenchOptions
{
    QStringList paths;        // to open at the start
    QString pluginFolder;     // empty: the usual places
    QString logFile;          // empty: none
    QString traceFile;        // of the algorithms; empty: none
    bool freshPlaces = false; // do not restore the places of windows
    bool help = false;
    bool version = false;
    QString error; // one sentence when the command line is wrong

    // `arguments` without the program's name.
    static WorkbenchOptions parse(const QStringList& arguments);
    // What there is to say about the program, for --help and the manual page.
    static CommandManual manual();
    static QString helpText();
};
