// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/commands/Options.h"

#include "services/basis/Failure.h"
#include "workbench/commands/CommandParser.h"

#include <QCommandLineParser>

void addValueOption(CommandParser& parser, const char* pName, const QString& strText, const char* pValue)
{
    parser.addOption({QLatin1String(pName), strText, QLatin1String(pValue)});
}

void addFlag(CommandParser& parser, const char* pName, const QString& strText)
{
    parser.addOption({QLatin1String(pName), strText});
}

void refuseUsage(const char* pCommand, const QString& strText)
{
    throw Failure(QStringLiteral("%1 See \"spum %2 --help\".").arg(strText, QLatin1String(pCommand)),
                  Failure::Kind::BadRequest);
}
