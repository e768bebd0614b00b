// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/warnings/RunWarning.h"

#include <QJsonObject>

namespace {

const QString errorName = QStringLiteral("error");

} // namespace

QString RunWarning::sentence() const
{
    return advice.isEmpty() ? text : text + QStringLiteral("; ") + advice;
}

QString severityName(RunWarning::Severity eSeverity)
{
    return eSeverity == RunWarning::Severity::Error ? errorName : QStringLiteral("warning");
}

QStringList sentencesOf(const QList<RunWarning>& warnings)
{
    QStringList sentences;
    for (const RunWarning& warning : warnings) {
        sentences.append(warning.sentence());
    }
    return sentences;
}

QStringList codesOf(const QList<RunWarning>& warnings)
{
    QStringList codes;
    for (const RunWarning& warning : warnings) {
        codes.append(warning.code);
    }
    codes.removeDuplicates();
    return codes;
}

QList<RunWarning> errorsAmong(const QList<RunWarning>& warnings)
{
    QList<RunWarning> errors;
    for (const RunWarning& warning : warnings) {
        if (warning.severity == RunWarning::Severity::Error) {
            errors.append(warning);
        }
    }
    return errors;
}

QJsonArray jsonOf(const QList<RunWarning>& warnings)
{
    QJsonArray array;
    for (const RunWarning& warning : warnings) {
        array.append(QJsonObject{{"severity", severityName(warning.severity)},
                                 {"code", warning.code},
                                 {"text", warning.text},
                                 {"advice", warning.advice}});
    }
    return array;
}

QList<RunWarning> warningsOfJson(const QJsonArray& json)
{
    QList<RunWarning> warnings;
    for (const auto& value : json) {
        const QJsonObject object = value.toObject();
        RunWarning warning;
        warning.code = object.value(QStringLiteral("code")).toString();
        warning.text = object.value(QStringLiteral("text")).toString();
        warning.advice = object.value(QStringLiteral("advice")).toString();
        if (object.value(QStringLiteral("severity")).toString() == errorName) {
            warning.severity = RunWarning::Severity::Error;
        }
        if (!warning.code.isEmpty()) {
            warnings.append(warning);
        }
    }
    return warnings;
}
