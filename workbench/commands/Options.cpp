// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/commands/Options.h"

#include "services/basis/UnitNames.h"
#include "workbench/commands/CallErrors.h"
#include "workbench/commands/CommandParser.h"

#include <QCommandLineParser>

#include <algorithm>
#include <cmath>

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

std::optional<qint64> memoryOption(const QCommandLineParser& parser, const char* pCommand)
{
    if (!parser.isSet(QStringLiteral("max-memory"))) {
        return std::nullopt;
    }
    constexpr double gibibyte = 1 << 30;
    constexpr double most = 1 << 30; // beyond every machine, within the number's range
    const QString text = parser.value(QStringLiteral("max-memory"));
    bool good = false;
    const double value = text.trimmed().toDouble(&good);
    if (!good || !std::isfinite(value) || value <= 0.0) {
        refuseUsage(pCommand, QStringLiteral("--max-memory takes a number above 0, not \"%1\".").arg(text));
    }
    return static_cast<qint64>(std::min(value, most) * gibibyte);
}

void refuseUsage(const char* pCommand, const QString& strText)
{
    throw CallRefusal({strText}, QLatin1String(pCommand));
}
