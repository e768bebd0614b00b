// SPDX-License-Identifier: GPL-3.0-or-later
// What the worker thread does.
#include "engine/CORVSpumKyvo.h"

#include "engine/knownSpectra.h"
#include "engine/resultProperties.h"
#include "spectra/logLine.h"

#include "XTNT/xtnt_parallel.h"
#include "host/CORVLog.h"
#include "host/CORVPreference.h"

#include <new>

namespace {

// Puts an int back to its former value unless the work was finished: an aborted run leaves the error code of before.
class ValueUnlessFinished
{
public:
    explicit ValueUnlessFinished(int& value) : m_value(value), m_nFormer(value) {}
    ~ValueUnlessFinished()
    {
        if (!m_bFinished) {
            m_value = m_nFormer;
        }
    }
    ValueUnlessFinished(const ValueUnlessFinished&) = delete;
    ValueUnlessFinished& operator=(const ValueUnlessFinished&) = delete;
    void finish() { m_bFinished = true; }

private:
    int& m_value;
    int m_nFormer;
    bool m_bFinished = false;
};

// Hands over what the worker wrote, whichever way its run ends. Declared first, so that it is the last to go.
class HandOver
{
public:
    explicit HandOver(std::atomic<int>& count) : m_count(count) {}
    ~HandOver() { m_count.fetch_add(1, std::memory_order_release); }
    HandOver(const HandOver&) = delete;
    HandOver& operator=(const HandOver&) = delete;

private:
    std::atomic<int>& m_count;
};

} // namespace

// The order of the steps is a contract: a failure of the fit skips neither the properties nor the ready flag.
void CORVSpumKyvo::run()
{
    // From here on an abort strikes at cancellation points only. Unwinding leaves the flag off; the thread ends then.
    setTerminationEnabled(false);
    const HandOver handOver(m_nRunsEnded);
    ValueUnlessFinished errorOfBefore(m_nError);
    try {
        runSteps();
    } catch (const std::bad_alloc&) {
        // What the steps themselves do not catch: a thread that lets an exception out ends the program.
        m_nError = RUNERROR_MEMORY;
    }
    errorOfBefore.finish();
}

void CORVSpumKyvo::runSteps()
{
    if (m_bRunPCA) {
        // The results of an earlier unmixing stay.
        runPCA();
        return;
    }
    if (m_eMode == RUNMODE_AUTOMATIC) {
        runMCR();
    }
    if (m_eMode == RUNMODE_LIBRARY || m_eMode == RUNMODE_GUIDED || m_eMode == RUNMODE_MANUAL) {
        solveConcentrations();
        m_scaleRatios.clear();
        for (int i = 0; i < m_spectrumPlots.size(); ++i) {
            m_scaleRatios.append(ScaleRatio());
        }
    }
    updateResultProperties(true);
    m_bResultReady = true;
}

void CORVSpumKyvo::abortRun()
{
    QThread::terminate();
}

bool CORVSpumKyvo::wait(unsigned long nMilliseconds)
{
    const bool bEnded = QThread::wait(nMilliseconds);
    m_nRunsEnded.load(std::memory_order_acquire);
    return bEnded;
}

void CORVSpumKyvo::solveConcentrations()
{
    m_nError = RUNERROR_NONE;
    if (!buildImageCube() || m_cube.m_data.empty()) {
        m_nError = RUNERROR_DATA;
        return;
    }
    if (m_spectrumPlots.isEmpty() || !scaledSpectra(m_spectrumPlots, m_selectedKeyPairs.size(), m_spectra)) {
        m_nError = RUNERROR_INITIAL_GUESS;
        return;
    }
    XTNT::cancellationPoint();
    try {
        if (!fitConcentrations(m_cube.m_data, m_spectra, m_concentrations)) {
            m_nError = RUNERROR_NO_SOLUTION;
        }
    } catch (const std::bad_alloc&) {
        logLine("SpumKyvo: memory ran out during the analysis!", CORVLOG_ERROR);
        m_nError = RUNERROR_MEMORY;
    }
}

void CORVSpumKyvo::updateResultProperties(bool bCurrent)
{
    ResultFacts facts;
    facts.useMask = m_bUseMask != 0;
    facts.selectedImages = m_selectedKeyPairs.size();
    facts.axis = m_eAxis;
    facts.mode = m_eMode;
    facts.binning = m_nBinning;
    facts.width = m_nWidth;
    facts.height = m_nHeight;
    facts.unit = m_eUnit;
    facts.transillumination = m_eSeqKind == SEQKIND_TRANSILLUMINATION || m_eTemporalKind == SEQKIND_TRANSILLUMINATION;
    facts.current = bCurrent;
    facts.appVersion = CORVPreference::getAppVersion();
    m_properties = resultProperties(facts);
}
