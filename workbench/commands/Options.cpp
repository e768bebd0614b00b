// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/commands/Options.h"

#include "workbench/commands/CallErrors.h"
#include "workbench/commands/CommandParser.h"

#include <QCommandLineParser>

void addValueOption(CommandParser& parser, const char* pName, const QString& strText, const char* pValue)
{
    parser.addOption({QLatin1String(pName), strText, QLatin1String(pValue)});
}

void addChoiceOption(CommandParser& parser, const char* pName, const QString& strText, const char* pValue,
                     const QStringList& words)
{
    parser.addOption({QLatin1String(pName), strText, QLatin1String(pValue)}, words);
}

void addFlag(CommandParser& parser, const char* pName, const QString& strText)
{
    parser.addOption({QLatin1String(pName), strText});
}

void refuseUsage(const char* pCommand, const QString& strText)
{
    throw CallRefusal({strText}, QLatin1String(pCommand));
}
