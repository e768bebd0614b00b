// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "workbench/manual/CommandManual.h"

#include <QCommandLineParser>

// Parses the command line of one command, and keeps what was declared: the one table that --help, manual pages and the
// completion of shells are made of. Options are declared through this class, not through its base, which would parse
// them and tell nobody.
class CommandParser : public QCommandLineParser
{
public:
    CommandParser() { setSingleDashWordOptionMode(ParseAsLongOptions); }

    // Options that follow stand below that title in the help.
    void beginGroup(const QString& strTitle);
    void addOption(const QCommandLineOption& option);
    // `words` are the values that the option takes.
    void addOption(const QCommandLineOption& option, const QStringList& words);
    // As in the base class; a name "list|show" tells the words that stand there.
    void addPositionalArgument(const QString& strName, const QString& strText, const QString& strSyntax = QString());

    const QList<CommandManual::Group>& groups() const { return m_groups; }
    const QList<CommandManual::Entry>& arguments() const { return m_arguments; }
    // "[options] SEQ".
    QString usage() const;
    // Names of all options, the long ones.
    QStringList longNames() const;
    // Of those that take a value.
    QStringList namesWithValue() const;

private:
    QList<CommandManual::Group> m_groups;
    QList<CommandManual::Entry> m_arguments;
    QStringList m_syntax;
};
