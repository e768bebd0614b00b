// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QJsonArray>
#include <QList>
#include <QString>
#include <QStringList>

// What there is to say against the answer of a run.
struct RunWarning
{
    enum class Severity
    {
        Warning, // the answer holds, but not in all of it
        Error    // the answer is likely to be wrong
    };
    Severity severity = Severity::Warning;
    QString code;   // never changes its meaning: scripts depend on it
    QString text;   // one sentence without a full stop
    QString advice; // what to do; empty where nothing can be advised

    // Both in one sentence, as a line of text shows them.
    QString sentence() const;
};

// "warning" or "error".
QString severityName(RunWarning::Severity eSeverity);
QStringList sentencesOf(const QList<RunWarning>& warnings);
// The codes, each once, in the order of the warnings.
QStringList codesOf(const QList<RunWarning>& warnings);
QList<RunWarning> errorsAmong(const QList<RunWarning>& warnings);
// Objects with `severity`, `code`, `text` and `advice`.
QJsonArray jsonOf(const QList<RunWarning>& warnings);
// Those of such an array; what is none is passed over.
QList<RunWarning> warningsOfJson(const QJsonArray& json);
