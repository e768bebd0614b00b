// SPDX-License-Identifier: GPL-3.0-or-later
// Loading of saved results.
#include "storage/SavedResults.h"

#include "storage/ResultsList.h"
#include "storage/SavedResultsOwner.h"
#include "storage/documentText.h"
#include "storage/resultsIndex.h"

#include "engine/CORVSpumKyvo.h"
#include "files/liesInside.h"
#include "host/CAutoProgressUpdate.h"
#include "host/CORVLog.h"
#include "host/CORVMessageBox.h"
#include "host/CORVPreference.h"
#include "host/CORVProcess.h"
#include "host/CORVSequenceDataset.h"
#include "host/CORVUtilityFns.h"
#include "host/CPLSettingsFileWrapper.h"
#include "spectra/logLine.h"

#include <QCoreApplication>
#include <QCursor>
#include <QDomDocument>
#include <QFile>
#include <QPointer>

namespace {

// The last message of a load stays for that long, in milliseconds.
constexpr int messageTime = 1000;

} // namespace

bool SavedResults::onClickLoadResults()
{
    if (m_pEngine == nullptr) {
        return false;
    }
    if (CORVProcess::isProcessInProgress(LONGPROCESS_ACQUISITION)) {
        logLine(
            worded("Unable to proceed with loading %1 results for sequence [%2] as acquisition is in progress, please "
                   "try again later."),
            CORVLOG_WARNING);
        return false;
    }
    const QPointer<CORVSequenceDataset> pSequence(dataset());
    if (!pSequence) {
        return false;
    }
    m_owner.showMinimisedWindow(pSequence);
    m_pEngine->m_bSkipSavePrompt = false;
    if (!askToSaveResults(true)) {
        CORVMessageBox::setCancelClicked(false);
        return false;
    }
    if (!pSequence || m_pEngine == nullptr) { // closed meanwhile
        return false;
    }
    const QString strName = m_list.currentText();
    showStatus(QStringLiteral("Loading Spectrum Unmixing results..."));
    if (CORVPreference::isSequenceLoading(pSequence)) {
        logLine(QStringLiteral("Unable to load Spectrum Unmixing results into a partially loaded sequence."),
                CORVLOG_ERROR);
        return false;
    }
    CORVUtilityFns::setCursor(QCursor(Qt::WaitCursor));
    return loadResultNamed(strName, *pSequence);
}

// Restores the cursor on every way out.
bool SavedResults::loadResultNamed(const QString& strName, const CORVSequenceDataset& sequence)
{
    QString strPath;
    QString strText;
    if (!findResultFile(strName, resultsIndex::folder(sequence.getSequenceInfoPath()), &strPath) ||
        !readResultFile(strPath, &strText)) {
        return false;
    }
    if (!handToEngine(strText)) {
        const QString strFailed = QStringLiteral("Loading Failed!");
        showStatus(strFailed);
        CORVProcess::endLongProcess(strFailed, messageTime, LONGPROCESS_LOADING);
        CORVUtilityFns::restoreCursor();
        return false;
    }
    showLoadedResult();
    return true;
}

bool SavedResults::loadFailed()
{
    CORVUtilityFns::restoreCursor();
    inform(worded("Unable to load %1 data for sequence [%2]"));
    return false;
}

bool SavedResults::findResultFile(const QString& strName, const QString& strFolder, QString* pPath)
{
    CPLSettingsFileWrapper index;
    if (!index.load(resultsIndex::indexPath(strFolder))) {
        logLine(QStringLiteral("Unable to load SPUM.txt file"), CORVLOG_NOTE);
        return loadFailed();
    }
    resultsIndex::setTags(index);
    const auto found = resultsIndex::findName(index.getMenuNames(resultsIndex::sectionTag()), strName);
    if (!found) {
        logLine(QStringLiteral("No results exists with this name."), CORVLOG_ERROR);
        return loadFailed();
    }
    const QString strFile = index.getFileNameForMenuName(*found, QStringLiteral("-"));
    if (strFile.isEmpty()) {
        logLine(QStringLiteral("No result file exist for this result: ") + *found, CORVLOG_ERROR);
        return loadFailed();
    }
    if (!orv::liesInside(strFolder, resultsIndex::relativeFile(strFile))) {
        logLine(strFile + QStringLiteral(": lies outside the folder of saved results and is not read"), CORVLOG_ERROR);
        return loadFailed();
    }
    *pPath = strFolder + QLatin1Char('/') + resultsIndex::relativeFile(strFile);
    return true;
}

// A file that is not there gives an empty document, which the engine refuses as it does one of an unknown version.
bool SavedResults::readResultFile(const QString& strPath, QString* pText)
{
    QDomDocument document(documentText::documentType());
    QString strReason;
    if (QFile::exists(strPath) && !documentText::readFile(strPath, &document, &strReason)) {
        logLine(strPath + QStringLiteral(": cannot be read: ") + strReason, CORVLOG_WARNING);
        return loadFailed();
    }
    *pText = document.toString(1);
    return true;
}

bool SavedResults::handToEngine(const QString& strText)
{
    m_owner.setEnabled(false);
    CAutoProgressUpdate progress{QString()};
    CORVProcess::startLongProcess(0, LONGPROCESS_LOADING, false, QStringLiteral("Aborting..."));
    QCoreApplication::processEvents();
    progress.start();
    // The events may have closed the sequence.
    const bool bLoaded = m_pEngine != nullptr && m_pEngine->loadResult(strText);
    m_owner.setEnabled(true);
    progress.stop();
    return bLoaded;
}

void SavedResults::showLoadedResult()
{
    CORVSequenceDataset* pSequence = dataset();
    const QString strText = worded("%1 Results loaded successfully for sequence [%2].");
    showStatus(strText);
    CORVProcess::endLongProcess(strText, messageTime, LONGPROCESS_LOADING);
    m_owner.takeSelection();
    m_owner.updateUI();
    m_owner.fillResultsTree();
    m_list.m_bResultModified = false;
    updateList(pSequence);
    CORVUtilityFns::restoreCursor();
    m_bResultFromFile = true;
    m_owner.activateSequenceWindow(pSequence);
    m_owner.showResultsTab();
}
