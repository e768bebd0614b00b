// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/SavedResults.h"

#include "storage/ResultsList.h"
#include "storage/SavedResultsOwner.h"
#include "storage/resultsIndex.h"

#include "engine/CORVSpumKyvo.h"
#include "files/TemporaryTarget.h"
#include "host/CORVLog.h"
#include "host/CORVMessageBox.h"
#include "host/CORVSequenceDataset.h"
#include "host/CORVUtilityFns.h"
#include "spectra/logLine.h"

#include <QFileInfo>
#include <QScopedValueRollback>

SavedResults::SavedResults(ResultsList& list, SavedResultsOwner& owner) : m_list(list), m_owner(owner)
{
    m_strBatchStamp = batchStamp();
}

void SavedResults::setEngine(CORVSpumKyvo* pEngine)
{
    m_pEngine = pEngine;
    const CORVSequenceDataset* pSequence = dataset();
    if (pSequence != nullptr && !pSequence->getSequenceInfoPath().isEmpty()) {
        const QString strFolder = resultsIndex::folder(pSequence->getSequenceInfoPath());
        orv::removeAbandonedTargets(strFolder);
        orv::removeAbandonedTargets(resultsIndex::filesFolder(strFolder));
    }
}

QString SavedResults::batchStamp() const
{
    return resultsIndex::batchStamp(m_clock());
}

void SavedResults::showStatus(const QString& strText)
{
    logLine(strText, CORVLOG_PROGRESS);
}

CORVSequenceDataset* SavedResults::dataset() const
{
    return m_pEngine != nullptr ? CORVSequenceDataset::getSequenceDataset(m_pEngine->m_strSeqId) : nullptr;
}

QString SavedResults::worded(const char* pText) const
{
    return m_pEngine == nullptr ? QString()
                                : QString::fromLatin1(pText).arg(m_pEngine->getAnalysisName(), m_pEngine->m_strSeqId);
}

void SavedResults::inform(const QString& strText)
{
    CORVMessageBox::information(m_owner.messageParent(), QString(), strText);
}

void SavedResults::updateList(const CORVSequenceDataset* pSequence)
{
    if (pSequence != nullptr) {
        m_list.updateSavedResultsForSelSeqId(pSequence->getSequenceName());
    }
}

void SavedResults::onChangeResultsName(const QString&)
{
    m_nEditedIndex = m_list.currentIndex();
    m_bEditingName = true;
    m_bUseAutoName = false;
}

void SavedResults::onKeyPressed(int nKey)
{
    if (!m_bEditingName || (nKey != Qt::Key_Return && nKey != Qt::Key_Escape)) {
        return;
    }
    if (nKey == Qt::Key_Escape) {
        m_list.setCurrentIndex(m_nEditedIndex);
    } else if (m_list.currentText().trimmed().isEmpty()) {
        updateList(dataset());
    } else if (m_list.currentText().compare(m_list.itemText(m_nEditedIndex), Qt::CaseInsensitive) != 0 &&
               !renameResult()) {
        m_list.setCurrentIndex(m_nEditedIndex);
        showStatus(worded("Unable to rename %1 analysis results for sequence [%2]..."));
    }
    m_bEditingName = false;
}

bool SavedResults::hasResultToLose() const
{
    return !m_pEngine->m_bSkipSavePrompt && m_owner.showsResult() && m_list.m_bResultModified && !m_bResultFromFile &&
           dataset() != nullptr;
}

bool SavedResults::askToSaveResults(bool bCanCancel)
{
    if (m_bBatchMode) {
        return true;
    }
    if (m_pEngine == nullptr) {
        return false;
    }
    if (hasResultToLose() && !CORVUtilityFns::getNoToAllClicked() && !askToKeep(bCanCancel)) {
        return false;
    }
    m_bResultFromFile = false;
    m_owner.clearResultsTree();
    return true;
}

// The flag goes ahead of the save on purpose: whatever becomes of that, the user has been asked once.
bool SavedResults::askToKeep(bool bCanCancel)
{
    int nButtons = CORVMessageBox::YesButton | CORVMessageBox::NoButtonAnswer;
    if (bCanCancel) {
        nButtons |= CORVMessageBox::CancelButton;
    } else if (CORVUtilityFns::getCloseAllClicked()) {
        nButtons |= CORVMessageBox::NoToAllButton;
    }
    const QString strText = QStringLiteral("Save %1 results for sequence [%2]?")
                                .arg(m_pEngine->getAnalysisName(), dataset()->getSequenceName());
    const int nAnswer = CORVMessageBox::warning(m_owner.activeChildWindow(), CORVUtilityFns::getAppName(), strText,
                                                nButtons, CORVMessageBox::NoButtonAnswer);
    const bool bOffered = (nButtons & nAnswer) != 0;
    if (bOffered && nAnswer == CORVMessageBox::CancelButton) {
        CORVMessageBox::setCancelClicked(true);
        return false;
    }
    m_list.m_bResultModified = false;
    if (nAnswer == CORVMessageBox::YesButton) {
        m_bUseAutoName = true;
        // There is no second chance: what is not saved now is lost.
        const QScopedValueRollback<bool> waiting(m_bWaitForFreeFile, true);
        onClickSaveResults();
    } else if (bOffered && nAnswer == CORVMessageBox::NoToAllButton) {
        CORVUtilityFns::setNoToAllClicked(true);
    }
    m_owner.clearResultsTree();
    updateList(dataset());
    return true;
}

bool SavedResults::fileOfNextSaveExists() const
{
    const CORVSequenceDataset* pSequence = dataset();
    if (pSequence == nullptr) {
        return false;
    }
    const QString strFolder = resultsIndex::folder(pSequence->getSequenceInfoPath());
    return QFileInfo(strFolder + QLatin1Char('/') + resultsIndex::resultFile(m_clock())).isFile();
}
