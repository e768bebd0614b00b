// SPDX-License-Identifier: GPL-3.0-or-later
// The result of a run by number, refined and brought back.
#include "plugin/CORVSpumKyvoPalette.h"

#include "plugin/AnalysisSetup.h"
#include "plugin/AnswerByNumber.h"
#include "plugin/JobThread.h"

#include "engine/CORVSpumKyvo.h"
#include "host/CORVLog.h"
#include "host/CORVMessageBox.h"
#include "host/CORVResultsTabControl.h"
#include "host/CORVSequenceDataset.h"
#include "host/CORVUtilityFns.h"
#include "spectra/logLine.h"

#include <QPointer>

#include <exception>

AnswerByNumber* CORVSpumKyvoPalette::answerByNumber() const
{
    auto* pSetup = m_pEngine != nullptr ? dynamic_cast<AnalysisSetup*>(m_pEngine->windows()) : nullptr;
    return pSetup != nullptr ? &pSetup->answerByNumber() : nullptr;
}

void CORVSpumKyvoPalette::updateRefineButton()
{
    AnswerByNumber* pAnswer = answerByNumber();
    const bool bOffered = pAnswer != nullptr && pAnswer->isOffered();
    m_pRefineButton->setVisible(bOffered && m_pSPUnResultsLV->topLevelItemCount() > 0);
    if (!bOffered) {
        if (pAnswer != nullptr) {
            pAnswer->forget();
        }
        return;
    }
    m_pRefineButton->setText(pAnswer->isRefined() ? tr("Back to First Answer") : tr("Refine Spectra"));
    m_pRefineButton->setToolTip(
        pAnswer->isRefined() ? tr("Shows the spectra and maps again that the run came to")
                             : tr("Resolves the spectra again, from the purest pixels and by the noise, and fits the "
                                  "maps to them. The first answer can be brought back."));
}

bool CORVSpumKyvoPalette::tryToShow(const std::function<void()>& show)
{
    // The list of spectra asks whether to save what is about to be lost. Nothing is: the other answer can be had again.
    m_pResultsTab->m_bResultModified = false;
    try {
        show();
    } catch (const std::exception& failure) {
        logLine(QStringLiteral("SpumKyvo: the result cannot be shown: ") + QString::fromLocal8Bit(failure.what()),
                CORVLOG_ERROR);
        m_pResultsTab->m_bResultModified = true;
        return false;
    }
    return true;
}

void CORVSpumKyvoPalette::onClickRefine()
{
    AnswerByNumber* pAnswer = answerByNumber();
    const CORVSequenceDataset* pSequence =
        m_pEngine != nullptr ? CORVSequenceDataset::getSequenceDataset(m_pEngine->m_strSeqId) : nullptr;
    if (pAnswer == nullptr || pSequence == nullptr || m_pRunning != nullptr || !pAnswer->isOffered()) {
        return;
    }
    const QPointer<CORVSpumKyvo> pEngine(m_pEngine);
    const QPointer<CORVSpumKyvoPalette> self(this);
    if (pAnswer->isRefined()) {
        if (tryToShow([pAnswer] { pAnswer->showFirst(); })) {
            showNewResult();
        }
        return;
    }
    EngineAnswer refined;
    JobThread job([&](JobMonitor& monitor) { refined = pAnswer->refined(*pSequence, monitor); });
    doJob(*pEngine, job, tr("Refining the spectra of sequence [%1]").arg(pEngine->m_strSeqId), 0);
    if (!self) {
        return;
    }
    if (job.reason().isEmpty() && pEngine && pEngine == m_pEngine) {
        takeRefined(*pEngine, *pAnswer, refined);
        if (!self) {
            return;
        }
    }
    m_pRunning = nullptr;
    if (job.isStopped()) {
        logLine(tr("The refinement was aborted, and the result is as it was."), CORVLOG_PROGRESS);
    } else if (!job.reason().isEmpty()) {
        CORVMessageBox::error(this, CORVUtilityFns::getAppName(), job.reason());
    }
    if (self) {
        finishWaiting();
    }
}

void CORVSpumKyvoPalette::takeRefined(CORVSpumKyvo& engine, AnswerByNumber& answer, const EngineAnswer& refined)
{
    if (!tryToShow([&] { answer.showRefined(refined); })) {
        return;
    }
    const QPointer<CORVSpumKyvo> pEngine(&engine);
    fillResultsTree();
    if (lookForWarnings(engine) && pEngine && pEngine == m_pEngine) {
        showNewResult();
    }
}
