// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/batch/BatchRecord.h"

#include <QString>

#include <optional>

// Why a sequence is unmixed, or not.
enum class BatchReason
{
    NoResult,
    FailedBefore,
    OtherImages,
    OtherOptions,
    OtherProgram,
    Incomplete, // a file of the result is missing
    Again,      // as the user wants it
    Unchanged   // not unmixed
};

// `strResults` is the folder of results; looked at only where the record alone would let the sequence be.
BatchReason batchReason(const std::optional<BatchRecord>& record, const BatchFingerprint& now,
                        const QString& strResults, bool bAgain);

// For people: "the images have changed".
QString reasonText(BatchReason eReason);

// Whether a folder holds every file that its summary names.
bool isCompleteResult(const QString& strResults);
