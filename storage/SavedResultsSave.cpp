// SPDX-License-Identifier: GPL-3.0-or-later
// Saving of results: the order of the steps is a contract, for what is left on disk when one of them fails.
#include "storage/SavedResults.h"

#include "storage/ResultsList.h"
#include "storage/SavedResultsLock.h"
#include "storage/SavedResultsOwner.h"
#include "storage/resultsIndex.h"
#include "storage/writeWholeFile.h"

#include "engine/CORVSpumKyvo.h"
#include "host/CORVLog.h"
#include "host/CORVMessageBox.h"
#include "host/CORVProcess.h"
#include "host/CORVSequenceDataset.h"
#include "host/CORVUtilityFns.h"
#include "host/CPLSettingsFileWrapper.h"
#include "spectra/logLine.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QThread>

namespace {

constexpr char saveFailed[] = "Unable to save %1 analysis data for sequence [%2].";
// Between two looks at the clock, in milliseconds.
constexpr unsigned long pause = 20;

// Another program may make the folder at the same moment.
bool makeFolder(const QString& strFolder)
{
    return QDir(strFolder).exists() || QDir().mkdir(strFolder) || QDir(strFolder).exists();
}

// An empty index, unless there is one: never the end of one that another program has just written. That it could not be
// made shows when it is read.
void makeIndex(const QString& strPath)
{
    if (!QFileInfo::exists(strPath)) {
        QFile file(strPath);
        file.open(QIODevice::WriteOnly | QIODevice::NewOnly);
    }
}

} // namespace

SaveOutcome SavedResults::onClickSaveResults()
{
    return save(false);
}

SaveOutcome SavedResults::saveResultsBatch()
{
    if (CORVUtilityFns::getSpumBatchProcessingCount() > 1 && CORVUtilityFns::getSpumBatchNewFolderStatus()) {
        m_strBatchStamp = batchStamp();
        CORVUtilityFns::setSpumBatchNewFolderStatus(false);
    }
    return save(true);
}

SaveOutcome SavedResults::save(bool bBatch)
{
    if (m_pEngine == nullptr) {
        return SaveOutcome::NotSaved;
    }
    if (CORVProcess::isProcessInProgress(LONGPROCESS_ACQUISITION)) {
        logLine(
            worded("Unable to proceed with saving %1 results for sequence [%2] as acquisition is in progress, please "
                   "try again later."),
            CORVLOG_WARNING);
        return SaveOutcome::NotSaved;
    }
    // Ahead of everything else: it takes the regions that are open now.
    const QByteArray document = m_pEngine->resultToXml().toLocal8Bit();
    Target target;
    target.batch = bBatch;
    return prepareFolders(target) ? saveInto(target, document) : SaveOutcome::NotSaved;
}

// Quiet where the user has refused the sequence a folder.
bool SavedResults::prepareFolders(Target& target)
{
    CORVSequenceDataset* pSequence = dataset();
    if (pSequence == nullptr) {
        return false;
    }
    if (pSequence->getSequenceInfoPath().isEmpty() && m_owner.giveSequenceHome(pSequence) != 0) {
        return false;
    }
    const QString strInfoPath = pSequence->getSequenceInfoPath();
    target.folder =
        target.batch ? resultsIndex::batchFolder(strInfoPath, m_strBatchStamp) : resultsIndex::folder(strInfoPath);
    // Without an info path the folder would come to lie wherever the program was started.
    if (strInfoPath.isEmpty() || !makeFolder(target.folder)) {
        logLine(QStringLiteral("Failed to create XML folder."), CORVLOG_ERROR);
        return false;
    }
    makeIndex(resultsIndex::indexPath(target.folder));
    if (!makeFolder(resultsIndex::filesFolder(target.folder))) {
        logLine(QStringLiteral("Unable to create Directory to save the Results"), CORVLOG_ERROR);
        return false;
    }
    return true;
}

// Starts over after whatever takes time, with the index as it is then: the lock is never held while the user thinks.
SaveOutcome SavedResults::saveInto(Target& target, const QByteArray& document)
{
    Entry entry;
    for (;;) {
        switch (trySave(target, document, entry)) {
        case Attempt::Saved:
            finishSave();
            return SaveOutcome::Saved;
        case Attempt::FileWasThere:
            finishSave();
            return SaveOutcome::FileWasThere;
        case Attempt::Ask:
            if (!askToOverwrite(entry.name)) {
                return SaveOutcome::Declined;
            }
            if (dataset() == nullptr) { // closed meanwhile
                return SaveOutcome::NotSaved;
            }
            target.overwrites.insert(entry.name);
            break;
        case Attempt::Wait:
            waitForNextSecond();
            break;
        case Attempt::IndexUnreadable:
            inform(QStringLiteral("Unable to save Specturm Unmixing analysis data"));
            return SaveOutcome::NotSaved;
        case Attempt::Failed:
            inform(worded(saveFailed));
            return SaveOutcome::NotSaved;
        }
    }
}

SavedResults::Attempt SavedResults::trySave(const Target& target, const QByteArray& document, Entry& entry)
{
    const QString strFile = newFile(target);
    SavedResultsLock lock(target.folder);
    CPLSettingsFileWrapper index;
    if (!lock.obtain() || !index.load(resultsIndex::indexPath(target.folder))) {
        logLine(QStringLiteral("SPUM.txt file could not be loaded..."), CORVLOG_NOTE);
        return Attempt::IndexUnreadable;
    }
    resultsIndex::setTags(index);
    entry = chooseEntry(target, index, strFile);
    if (entry.ask) {
        return Attempt::Ask;
    }
    if (entry.overwrite && !index.setFileNameForMenuName(entry.name, entry.file)) {
        logLine(QStringLiteral("Unable to add file name for menu name in SPUM.txt file"), CORVLOG_NOTE);
        return Attempt::Failed;
    }
    if (!entry.overwrite && !index.addSection(resultsIndex::sectionTag(), entry.name, entry.file)) {
        logLine(QStringLiteral("Unable to add new section to SPUM.txt file"), CORVLOG_NOTE);
        return Attempt::Failed;
    }
    const QString strPath = target.folder + QLatin1Char('/') + entry.file;
    const bool bThere = QFileInfo(strPath).isFile();
    if (bThere && m_bWaitForFreeFile && !target.batch) {
        return Attempt::Wait;
    }
    // An entry that points at no whole file would be a lost result, so a file that cannot be written ends the save.
    if (!bThere && !writeWholeFile(strPath, document)) {
        return Attempt::Failed;
    }
    if (!index.save()) {
        logLine(QStringLiteral("Unable to save SPUM.txt file"), CORVLOG_NOTE);
        return Attempt::Failed;
    }
    return bThere ? Attempt::FileWasThere : Attempt::Saved;
}

QString SavedResults::newFile(const Target& target) const
{
    return target.batch ? resultsIndex::batchResultFile(m_strBatchStamp) : resultsIndex::resultFile(m_clock());
}

SavedResults::Entry SavedResults::chooseEntry(const Target& target, const CPLSettingsFileWrapper& index,
                                              const QString& strFile) const
{
    Entry entry;
    entry.name = resultsIndex::withoutNewMark(m_bUseAutoName ? m_strAutoName : m_list.currentText());
    entry.file = strFile;
    const QStringList names = index.getMenuNames();
    for (const QString& name : names) {
        if (name == entry.name) {
            if (m_bUseAutoName) {
                entry.name = index.getNextAutoMenuName();
            } else if (target.overwrites.contains(name)) {
                entry.overwrite = true;
            } else {
                entry.ask = true;
                return entry;
            }
        }
        const QString strTaken = resultsIndex::relativeFile(index.getFileNameForMenuName(name, QStringLiteral("-")));
        if (strTaken.compare(entry.file, Qt::CaseInsensitive) == 0) {
            entry.file = newFile(target);
        }
    }
    return entry;
}

bool SavedResults::askToOverwrite(const QString& strName)
{
    const QString strText = m_pEngine->getAnalysisName() + QStringLiteral(" results are present under \"") + strName +
                            QStringLiteral("\".\n Do you want to overwrite?");
    return CORVMessageBox::warning(nullptr, CORVUtilityFns::getAppName(), strText,
                                   CORVMessageBox::YesButton | CORVMessageBox::NoButtonAnswer,
                                   CORVMessageBox::NoButtonAnswer) == CORVMessageBox::YesButton;
}

void SavedResults::finishSave()
{
    m_list.m_bResultModified = false;
    updateList(dataset());
    m_pEngine->resultView().setSpectraModified(false);
}

void SavedResults::waitForNextSecond() const
{
    const QString strStamp = resultFileStamp(m_clock());
    while (resultFileStamp(m_clock()) == strStamp) {
        QThread::msleep(pause);
    }
}
