// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/results/Provenance.h"

#include <atomic>
#include <future>

class CORVSequenceDataset;
class CORVSpumKyvo;
struct MaskRequest;

// The origin of a run, gathered while it runs: the files of the sequence are hashed on a thread of their own, from the
// time at which they have been read, so that nobody waits for it.
class RunProvenance
{
public:
    RunProvenance();
    // Breaks the hashing off.
    ~RunProvenance();
    RunProvenance(const RunProvenance&) = delete;
    RunProvenance& operator=(const RunProvenance&) = delete;

    // After the images of the engine's selection were read.
    void beginHashing(const CORVSequenceDataset& sequence, const CORVSpumKyvo& engine);
    // After the run; waits for the hashes. `strLibrary` is the file of the spectra, empty without one.
    Provenance gather(const CORVSequenceDataset& sequence, const CORVSpumKyvo& engine, const MaskRequest& mask,
                      const QString& strLibrary);

private:
    QDateTime m_started;
    std::atomic<bool> m_bStop{false};
    std::future<QList<AnalysedFile>> m_hashes;
};
