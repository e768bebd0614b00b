// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/commands/Options.h"

#include "services/basis/UnitNames.h"
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

int unitOption(const QCommandLineParser& parser, const char* pCommand)
{
    if (!parser.isSet(QStringLiteral("unit"))) {
        return -1;
    }
    const QString text = parser.value(QStringLiteral("unit"));
    const int unit = UnitNames::fromText(text);
    if (unit < 0) {
        refuseUsage(
            pCommand,
            QStringLiteral("--unit takes %1, not \"%2\".").arg(UnitNames::options().join(QStringLiteral(", ")), text));
    }
    return unit;
}

void refuseUsage(const char* pCommand, const QString& strText)
{
    throw CallRefusal({strText}, QLatin1String(pCommand));
}
