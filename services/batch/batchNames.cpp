// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/batch/batchNames.h"

#include "services/basis/Failure.h"

#include <QHash>
#include <QSet>
#include <QVector>

#include <algorithm>

namespace {

// "batch.csv" and its like lie beside the folders.
const QLatin1String overall("batch.");

QString placeOf(const BatchJob& job)
{
    return job.place.isEmpty() ? job.sequence : job.place;
}

[[noreturn]] void refuse(const QString& strText)
{
    throw Failure(strText, Failure::Kind::BadRequest);
}

void checkGiven(const QList<BatchJob>& jobs)
{
    QHash<QString, QString> places;
    for (const BatchJob& job : jobs) {
        if (job.name.isEmpty()) {
            continue;
        }
        if (job.name.contains(QLatin1Char('/')) || job.name.startsWith(QLatin1Char('.')) ||
            job.name.startsWith(overall)) {
            refuse(QStringLiteral("%1: \"%2\" cannot be the name of a folder of results (no slash in it, no point and "
                                  "no \"batch.\" at its begin)")
                       .arg(placeOf(job), job.name));
        }
        if (places.contains(job.name)) {
            refuse(QStringLiteral("%1: the name \"%2\" is that of %3 already")
                       .arg(placeOf(job), job.name, places.value(job.name)));
        }
        places.insert(job.name, placeOf(job));
    }
}

// The last so many folders of a path in one word.
QString nameOf(const QString& strSequence, int nFolders)
{
    const QStringList parts = strSequence.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    const QString name = QStringList(parts.mid(std::max(0, parts.size() - nFolders))).join(QLatin1Char('_'));
    const bool plain = !name.isEmpty() && !name.startsWith(QLatin1Char('.')) && !name.startsWith(overall);
    return plain ? name : QLatin1Char('_') + name;
}

void checkTwice(const QList<BatchJob>& jobs)
{
    QHash<QString, QString> places;
    for (const BatchJob& job : jobs) {
        if (!job.name.isEmpty()) {
            continue;
        }
        if (places.contains(job.sequence)) {
            refuse(QStringLiteral("%1: %2 was named already (%3); a table may give each its own name, in a column "
                                  "\"name\"")
                       .arg(placeOf(job), job.sequence, places.value(job.sequence)));
        }
        places.insert(job.sequence, placeOf(job));
    }
}

} // namespace

void nameJobs(QList<BatchJob>& jobs)
{
    checkGiven(jobs);
    checkTwice(jobs);
    QVector<int> folders(jobs.size(), 1);
    QStringList names;
    for (bool settled = false; !settled;) {
        settled = true;
        names.clear();
        QHash<QString, int> counts;
        for (int i = 0; i < jobs.size(); ++i) {
            names.append(jobs[i].name.isEmpty() ? nameOf(jobs[i].sequence, folders[i]) : jobs[i].name);
            ++counts[names.last()];
        }
        for (int i = 0; i < jobs.size(); ++i) {
            const bool more = folders[i] < jobs[i].sequence.count(QLatin1Char('/'));
            if (jobs[i].name.isEmpty() && counts.value(names[i]) > 1 && more) {
                ++folders[i];
                settled = false;
            }
        }
    }
    // "a_b/c" and "a/b_c" have the same words in all.
    QSet<QString> taken;
    for (int i = 0; i < jobs.size(); ++i) {
        if (taken.contains(names[i])) {
            refuse(QStringLiteral("%1: its results would lie in \"%2\" like those of another sequence; a table may "
                                  "give each its own name, in a column \"name\"")
                       .arg(placeOf(jobs[i]), names[i]));
        }
        taken.insert(names[i]);
        jobs[i].name = names[i];
    }
}
