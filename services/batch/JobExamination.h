// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/batch/BatchRecord.h"
#include "services/batch/batchDecision.h"

#include <functional>
#include <optional>

class BatchPlaces;
struct BatchJob;

// What is known of a sequence before it is unmixed.
struct JobExamination
{
    BatchFingerprint fingerprint;
    qint64 memory = 0; // bytes that the unmixing takes
    std::optional<BatchRecord> record;
    BatchReason reason = BatchReason::NoResult;

    // Reads all of the sequence once. Safe to call from several threads at once; where `goesOn` says no, it ends early
    // and what it gives has no meaning.
    static JobExamination of(const BatchJob& job, const BatchPlaces& places, const QString& strProgramHash, bool bAgain,
                             const std::function<bool()>& goesOn);

    // Whether it is unmixed whatever its images are: known without a look at them.
    static bool isDue(const BatchJob& job, const BatchPlaces& places, const QString& strProgramHash, bool bAgain);
};
