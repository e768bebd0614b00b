// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/batch/BatchJob.h"

#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVector>

class BatchPlaces;

// A sequence as the overall files tell of it.
struct BatchEntry
{
    enum class State
    {
        Done,
        Failed,
        Missing // it has not ended, or without a word
    };

    BatchJob job;
    State state = State::Missing;
    QString message; // why there is no result
    QStringList warnings;
    double seconds = 0.0;
    QJsonObject summary; // of its folder of results; empty without a result

    // "done", "failed", "missing".
    QString stateName() const;
    // Of the data's norm, 0 to 1; no number (NaN) without a result.
    double residual() const;
};

// As the records tell, in the order of the jobs.
QList<BatchEntry> batchEntries(const BatchPlaces& places, const QList<BatchJob>& jobs);

// Which entries one should look at first: those without a result, then those with most warnings, then those that their
// components explain least.
QVector<int> orderOfNeed(const QList<BatchEntry>& entries);
