// SPDX-License-Identifier: GPL-3.0-or-later
// A batch: one choice of spectra for many sequences, which the host opens one after another.
#include "plugin/CORVSpumKyvoPalette.h"

#include "plugin/sequenceWindows.h"

#include "engine/CORVSpumKyvo.h"
#include "host/CORVChildWindow.h"
#include "host/CORVLog.h"
#include "host/CORVMessageBox.h"
#include "host/CORVSequenceDataset.h"
#include "host/CORVSequenceWindow.h"
#include "host/CORVUtilityFns.h"
#include "host/batchResidual.h"
#include "services/results/FitStatistics.h"
#include "services/results/ResultNumbers.h"
#include "spectra/SpUnmixSpectrumLibraryWnd.h"
#include "spectra/SpectrumPlotParams.h"
#include "spectra/logLine.h"
#include "storage/SavedResults.h"
#include "storage/resultsIndex.h"

#include <QDir>
#include <QPointer>
#include <QTimer>
#include <QVariant>

#include <cmath>

namespace {

// Whether fluorescent sequences of the batch are shown with a background that adapts to them.
bool adaptsBackground(const CORVSequenceDataset& sequence)
{
    const int nMode = CORVUtilityFns::getAdaptFLBgModeForSpumBatch();
    return sequence.isFluorescence && (nMode == 1 || nMode == 2);
}

void setAdaptiveBackground(CORVSequenceWindow* pWindow, CORVSequenceDataset& sequence, bool bOn)
{
    if (pWindow != nullptr) {
        pWindow->setAdaptiveBackground(bOn);
        pWindow->refreshView();
    }
    sequence.setModified(false);
}

// Invalid where there is no such number.
QVariant residualOfResult(const CORVSpumKyvo& engine)
{
    if (!hasMapsOfItsImages(engine)) {
        return {};
    }
    const double dResidual =
        FitStatistics::relativeResidual(engine.m_cube.m_data, engine.m_concentrations, engine.m_spectra);
    return std::isfinite(dResidual) ? QVariant(dResidual) : QVariant();
}

} // namespace

void CORVSpumKyvoPalette::setUpBatch()
{
    const QPointer<CORVSpumKyvoPalette> self(this);
    const QPointer<SpUnmixSpectrumLibraryWnd> pLibraries(
        new SpUnmixSpectrumLibraryWnd(CORVChildWindow::getActiveChildWnd()));
    pLibraries->m_pNextBtn->setText(tr("Next"));
    pLibraries->m_pAppendChk->hide();
    const bool bAccepted = pLibraries->exec() == QDialog::Accepted;
    // Later nothing is asked any more, and the result on screen has been neither saved nor given up.
    if (self && bAccepted && m_pEngine != nullptr && !askToSaveResults(true)) {
        CORVMessageBox::setCancelClicked(false);
        CORVUtilityFns::setSpumBatchStatus(false);
    } else if (self && pLibraries && bAccepted) {
        qDeleteAll(m_batchSpectra);
        m_batchSpectra = pLibraries->selectedSpectra();
        m_batchExcitation = pLibraries->m_excitationTexts;
        m_batchEmission = pLibraries->m_emissionTexts;
        m_pResults->m_bBatchMode = true;
        m_pBatchSequence = nullptr;
    }
    delete pLibraries;
}

void CORVSpumKyvoPalette::endBatch()
{
    m_pResults->m_bBatchMode = false;
    m_pBatchSequence = nullptr;
    if (m_pEngine == nullptr) {
        clearResultsTree(); // of the last sequence, which has gone
    }
}

void CORVSpumKyvoPalette::giveBatchSpectra()
{
    QList<SpectrumPlotParams*> copies;
    for (const SpectrumPlotParams* pSpectrum : qAsConst(m_batchSpectra)) {
        copies.append(new SpectrumPlotParams(*pSpectrum));
    }
    m_pEngine->setPresetSpectra(copies);
}

// Unmixes, saves and exports the sequence without a question, and closes its window.
void CORVSpumKyvoPalette::processBatchSequence(CORVSequenceDataset& sequence)
{
    const QPointer<CORVSequenceDataset> pSequence(&sequence);
    const QPointer<CORVSequenceWindow> pWindow(CORVSequenceWindow::getSequenceWindow(&sequence));
    m_pBatchSequence = &sequence;
    const bool bAdapts = adaptsBackground(sequence);
    if (bAdapts) {
        setAdaptiveBackground(pWindow, sequence, true);
    }
    logLine(QStringLiteral("Spectral Unmixing for sequence :- %1").arg(sequence.getSequenceInfoPath()), CORVLOG_NOTE);
    m_bAborted = false;
    onClickUnmixSpectra();
    if (!pSequence || m_pEngine == nullptr) {
        return;
    }
    // Who aborts the run wants nothing of it kept.
    if (!m_bAborted && !keepBatchResult(sequence)) {
        return;
    }
    if (pSequence && bAdapts) {
        setAdaptiveBackground(pWindow, sequence, false);
    }
    if (pWindow && pWindow->parentWidget() != nullptr) {
        QTimer::singleShot(0, pWindow->parentWidget(), SLOT(close()));
    }
}

// False when there is no folder for the maps, and when the sequence has gone.
bool CORVSpumKyvoPalette::keepBatchResult(CORVSequenceDataset& sequence)
{
    const QPointer<CORVSpumKyvo> pEngine(m_pEngine);
    const bool bSaved = m_pResults->saveResultsBatch() == SaveOutcome::Saved;
    if (!pEngine) {
        return false;
    }
    if (bSaved) {
        sequence.setProperty(batchResidualProperty, residualOfResult(*pEngine));
    }
    const QString strFolder = resultsIndex::batchFolder(sequence.getSequenceInfoPath(), m_pResults->m_strBatchStamp) +
                              QLatin1String("/UnmixedImages");
    if (!QDir().mkpath(strFolder)) {
        logLine(QStringLiteral("Failed to create %1 folder.").arg(strFolder), CORVLOG_ERROR);
        return false;
    }
    pEngine->m_strBatchPath = strFolder + QLatin1Char('/');
    pEngine->m_bBatchMode = true;
    const int nComponents = static_cast<int>(pEngine->m_concentrations.num_rows());
    for (int i = 0; i < nComponents && pEngine; ++i) {
        pEngine->onImageDoubleClicked(i);
    }
    if (pEngine) {
        pEngine->m_strBatchPath.clear();
        pEngine->m_bBatchMode = false;
    }
    return true;
}
