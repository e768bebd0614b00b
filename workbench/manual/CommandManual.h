// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

// What there is to say about a program, or about one command of it. Help on the terminal, manual pages and the
// completion of shells are all made of this.
struct CommandManual
{
    // An option, or with empty names a positional argument.
    struct Entry
    {
        QStringList names; // "h", "help"
        QString value;     // what its value is called, "FILE"; empty: it takes none. Of an argument its name.
        QString text;
        QStringList words; // the values that there are; empty: any
        bool repeatable = false;
    };
    struct Group
    {
        QString title;
        QList<Entry> entries;
    };
    struct Example
    {
        QString command; // one line as it is typed
        QString text;    // what it does
    };

    QString name;    // "spum unmix"
    QString summary; // one sentence
    QString usage;   // what stands behind the name
    QList<Entry> arguments;
    QList<Group> options;
    QList<CommandManual> commands; // of a program; names and summaries are used
    QList<Example> examples;
    QStringList notes; // paragraphs that follow the options
};

// "-h, --help", "--out <DIR>"; of an argument its name.
QString termOf(const CommandManual::Entry& entry);
