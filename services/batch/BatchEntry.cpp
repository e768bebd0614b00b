// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/batch/BatchEntry.h"

#include "platform/orvutils/InputFile.h"
#include "services/batch/BatchPlaces.h"
#include "services/batch/BatchRecord.h"
#include "services/batch/batchDecision.h"
#include "services/batch/resultOfFolder.h"

#include <QFileInfo>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace {

// What a scheduler has left of a job that could not speak for itself.
QString endedText(const QString& strFile)
{
    QByteArray bytes;
    QString error;
    if (!QFileInfo::exists(strFile) || !orv::readInput(strFile, 1, QStringLiteral("note"), &bytes, &error)) {
        return reasonText(BatchReason::NoResult);
    }
    return QString::fromUtf8(bytes).simplified();
}

int rankOf(const BatchEntry& entry)
{
    return entry.state == BatchEntry::State::Done ? 1 : 0;
}

} // namespace

QString BatchEntry::stateName() const
{
    switch (state) {
    case State::Done:
        return QStringLiteral("done");
    case State::Failed:
        return QStringLiteral("failed");
    case State::Missing:
        break;
    }
    return QStringLiteral("missing");
}

double BatchEntry::residual() const
{
    return summary.value(QStringLiteral("residual")).toDouble(std::numeric_limits<double>::quiet_NaN());
}

QList<BatchEntry> batchEntries(const BatchPlaces& places, const QList<BatchJob>& jobs)
{
    QList<BatchEntry> entries;
    for (const BatchJob& job : jobs) {
        BatchEntry entry;
        entry.job = job;
        const auto record = BatchRecord::read(places.record(job.name));
        if (!record) {
            entry.message = endedText(places.ended(job.name));
            entries.append(entry);
            continue;
        }
        entry.warnings = record->warnings;
        entry.seconds = record->seconds;
        entry.message = record->message;
        entry.state = BatchEntry::State::Failed;
        if (record->done) {
            entry.summary = summaryOfFolder(places.results(job.name));
            const bool there = !entry.summary.isEmpty();
            entry.state = there ? BatchEntry::State::Done : BatchEntry::State::Missing;
            entry.message = there ? QString() : QStringLiteral("its result has gone");
        }
        entries.append(entry);
    }
    return entries;
}

QVector<int> orderOfNeed(const QList<BatchEntry>& entries)
{
    QVector<int> order(entries.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [&entries](int i, int j) {
        const BatchEntry& a = entries[i];
        const BatchEntry& b = entries[j];
        if (rankOf(a) != rankOf(b)) {
            return rankOf(a) < rankOf(b);
        }
        if (a.warnings.size() != b.warnings.size()) {
            return a.warnings.size() > b.warnings.size();
        }
        // A residual that cannot be had says less than the worst.
        const double left = std::isnan(a.residual()) ? -1.0 : a.residual();
        const double right = std::isnan(b.residual()) ? -1.0 : b.residual();
        return left > right;
    });
    return order;
}
