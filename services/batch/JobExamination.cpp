// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/batch/JobExamination.h"

#include "services/basis/fileHash.h"
#include "services/batch/BatchJob.h"
#include "services/batch/BatchPlaces.h"
#include "services/batch/sequenceContent.h"
#include "services/batch/unmixMemory.h"

#include <QCryptographicHash>

namespace {

// The same for a library under another name, and in whatever order options are given.
QString hashOfOptions(const QList<BatchOption>& options)
{
    QStringList lines;
    for (const BatchOption& option : options) {
        if (option.file.isEmpty()) {
            lines.append(option.argument());
            continue;
        }
        lines.append(option.name + QStringLiteral(" of content ") + fileHash(option.file));
    }
    lines.sort();
    const QByteArray text = lines.join(QLatin1Char('\n')).toUtf8();
    return QString::fromLatin1(QCryptographicHash::hash(text, QCryptographicHash::Sha1).toHex());
}

} // namespace

JobExamination JobExamination::of(const BatchJob& job, const BatchPlaces& places, const QString& strProgramHash,
                                  bool bAgain, const std::function<bool()>& goesOn)
{
    JobExamination found;
    const QStringList files = contentOfSequence(job.sequence);
    found.memory = unmixMemory(sizeOfSequence(job.sequence, files), job.demand);
    found.fingerprint.images = hashOfSequence(job.sequence, files, goesOn);
    found.fingerprint.options = hashOfOptions(job.options);
    found.fingerprint.program = strProgramHash;
    found.record = BatchRecord::read(places.record(job.name));
    found.reason = batchReason(found.record, found.fingerprint, places.results(job.name), bAgain);
    return found;
}

bool JobExamination::isDue(const BatchJob& job, const BatchPlaces& places, const QString& strProgramHash, bool bAgain)
{
    const std::optional<BatchRecord> record = BatchRecord::read(places.record(job.name));
    if (bAgain || !record || !record->done) {
        return true;
    }
    const BatchFingerprint now{record->fingerprint.images, hashOfOptions(job.options), strProgramHash};
    return batchReason(record, now, places.results(job.name), bAgain) != BatchReason::Unchanged;
}
