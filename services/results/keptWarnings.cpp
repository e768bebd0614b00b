// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/keptWarnings.h"

#include "engine/CORVSpumKyvo.h"

#include <QRegularExpression>

#include <algorithm>
#include <iterator>

namespace {

const QString mildKey = QStringLiteral("Warning");
const QString errorKey = QStringLiteral("Error");

QRegularExpressionMatch codeAndText(const ResultProperty& property)
{
    static const QRegularExpression form(QStringLiteral("^([a-z][a-z-]*): (.+)$"),
                                         QRegularExpression::DotMatchesEverythingOption);
    const bool named = property.first == mildKey || property.first == errorKey;
    return named ? form.match(property.second) : QRegularExpressionMatch();
}

} // namespace

bool isWarning(const ResultProperty& property)
{
    return codeAndText(property).hasMatch();
}

QList<RunWarning> warningsAmong(const QList<ResultProperty>& properties)
{
    QList<RunWarning> warnings;
    for (const ResultProperty& property : properties) {
        const QRegularExpressionMatch match = codeAndText(property);
        if (match.hasMatch()) {
            warnings.append({property.first == errorKey ? RunWarning::Severity::Error : RunWarning::Severity::Warning,
                             match.captured(1), match.captured(2), QString()});
        }
    }
    return warnings;
}

QList<ResultProperty> withoutWarnings(const QList<ResultProperty>& properties)
{
    QList<ResultProperty> others;
    std::copy_if(properties.begin(), properties.end(), std::back_inserter(others),
                 [](const ResultProperty& property) { return !isWarning(property); });
    return others;
}

void keepWarnings(const QList<RunWarning>& warnings, CORVSpumKyvo& engine)
{
    engine.m_properties = withoutWarnings(engine.m_properties);
    for (const RunWarning& warning : warnings) {
        engine.m_properties.append({warning.severity == RunWarning::Severity::Error ? errorKey : mildKey,
                                    warning.code + QStringLiteral(": ") + warning.sentence()});
    }
}
