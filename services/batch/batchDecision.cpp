// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/batch/batchDecision.h"

#include "services/batch/resultOfFolder.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>

BatchReason batchReason(const std::optional<BatchRecord>& record, const BatchFingerprint& now,
                        const QString& strResults, bool bAgain)
{
    if (bAgain) {
        return BatchReason::Again;
    }
    if (!record) {
        return BatchReason::NoResult;
    }
    if (!record->done) {
        return BatchReason::FailedBefore;
    }
    if (record->fingerprint.images != now.images) {
        return BatchReason::OtherImages;
    }
    if (record->fingerprint.options != now.options) {
        return BatchReason::OtherOptions;
    }
    if (record->fingerprint.program != now.program) {
        return BatchReason::OtherProgram;
    }
    return isCompleteResult(strResults) ? BatchReason::Unchanged : BatchReason::Incomplete;
}

QString reasonText(BatchReason eReason)
{
    switch (eReason) {
    case BatchReason::NoResult:
        return QStringLiteral("there is no result yet");
    case BatchReason::FailedBefore:
        return QStringLiteral("it failed before");
    case BatchReason::OtherImages:
        return QStringLiteral("the images have changed");
    case BatchReason::OtherOptions:
        return QStringLiteral("the options have changed");
    case BatchReason::OtherProgram:
        return QStringLiteral("the program has changed");
    case BatchReason::Incomplete:
        return QStringLiteral("files of the result are missing");
    case BatchReason::Again:
        return QStringLiteral("--again");
    case BatchReason::Unchanged:
        break;
    }
    return QStringLiteral("unchanged since its result");
}

bool isCompleteResult(const QString& strResults)
{
    const QJsonArray files = summaryOfFolder(strResults).value(QStringLiteral("files")).toArray();
    for (const auto& value : files) {
        // A name alone: a summary that leads elsewhere is not followed.
        const QString name = QFileInfo(value.toString()).fileName();
        if (!QFileInfo(strResults + QLatin1Char('/') + name).isFile()) {
            return false;
        }
    }
    return !files.isEmpty();
}
