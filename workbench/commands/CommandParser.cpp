// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/commands/CommandParser.h"

void CommandParser::beginGroup(const QString& strTitle)
{
    m_groups.append({strTitle, {}});
}

void CommandParser::addOption(const QCommandLineOption& option)
{
    addOption(option, QStringList());
}

void CommandParser::addOption(const QCommandLineOption& option, const QStringList& words)
{
    if (m_groups.isEmpty()) {
        beginGroup(QStringLiteral("Options"));
    }
    CommandManual::Entry entry;
    entry.names = option.names();
    entry.value = option.valueName();
    entry.text = option.description();
    entry.words = words;
    m_groups.last().entries.append(entry);
    QCommandLineParser::addOption(option);
}

void CommandParser::addPositionalArgument(const QString& strName, const QString& strText, const QString& strSyntax)
{
    CommandManual::Entry entry;
    entry.value = strName;
    entry.text = strText;
    if (strName.contains(QLatin1Char('|'))) {
        entry.words = strName.split(QLatin1Char('|'));
    }
    m_arguments.append(entry);
    m_syntax.append(strSyntax.isEmpty() ? strName : strSyntax);
    QCommandLineParser::addPositionalArgument(strName, strText, strSyntax);
}

QString CommandParser::usage() const
{
    return (QStringList(QStringLiteral("[options]")) + m_syntax).join(QLatin1Char(' '));
}

QStringList CommandParser::longNames() const
{
    QStringList names;
    for (const CommandManual::Group& group : m_groups) {
        for (const CommandManual::Entry& entry : group.entries) {
            names.append(entry.names.last());
        }
    }
    return names;
}

QStringList CommandParser::namesWithValue() const
{
    QStringList names;
    for (const CommandManual::Group& group : m_groups) {
        for (const CommandManual::Entry& entry : group.entries) {
            names += entry.value.isEmpty() ? QStringList() : QStringList(entry.names.last());
        }
    }
    return names;
}
