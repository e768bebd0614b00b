// SPDX-License-Identifier: GPL-3.0-or-later
// Deleting and renaming of saved results.
#include "storage/SavedResults.h"

#include "storage/ResultsList.h"
#include "storage/SavedResultsLock.h"
#include "storage/resultsIndex.h"

#include "host/CORVLog.h"
#include "host/CORVMessageBox.h"
#include "host/CORVSequenceDataset.h"
#include "host/CORVUtilityFns.h"
#include "host/CPLSettingsFileWrapper.h"
#include "spectra/logLine.h"

#include <QDir>
#include <QFile>

#include <algorithm>

namespace {

// Behind the last separator.
QString lastPart(const QString& strFile)
{
    return strFile.mid(strFile.lastIndexOf(QLatin1Char('/')) + 1);
}

// Two results that were saved within a second may share a file.
bool isNeededByOther(const CPLSettingsFileWrapper& index, const QString& strName, const QString& strFile)
{
    const QStringList names = index.getMenuNames();
    return std::any_of(names.cbegin(), names.cend(), [&](const QString& name) {
        return name != strName &&
               lastPart(index.getFileNameForMenuName(name, QString())).compare(strFile, Qt::CaseInsensitive) == 0;
    });
}

// Of a list that was not written by this program several sections may have one key; removing by key would take the
// first.
void makeKeyUnique(CPLSettingsFileWrapper& index, CPLSection& section)
{
    QString strKey;
    section.getSectionKey(&strKey);
    if (index[strKey] == &section) {
        return;
    }
    QString strFree = strKey;
    for (int number = 2; index[strFree] != nullptr; ++number) {
        strFree = strKey + QLatin1Char(' ') + QString::number(number);
    }
    section.setSectionKey(strFree);
}

} // namespace

bool SavedResults::onClickDeleteResults()
{
    if (m_pEngine == nullptr) {
        return false;
    }
    const QString strText = m_list.currentText();
    const int nAnswer = CORVMessageBox::warning(
        nullptr, CORVUtilityFns::getAppName(),
        QStringLiteral("Are you sure you want to delete the results for %1?").arg(strText),
        CORVMessageBox::YesButton | CORVMessageBox::NoButtonAnswer, CORVMessageBox::NoButtonAnswer);
    if (nAnswer != CORVMessageBox::YesButton) {
        return false;
    }
    const auto found = resultsIndex::findName(m_list.getSavedMenuNames(), strText);
    if (!found) {
        logLine(QStringLiteral("File not found."), CORVLOG_ERROR);
        return false;
    }
    const CORVSequenceDataset* pSequence = dataset();
    if (pSequence == nullptr || !deleteEntry(resultsIndex::folder(pSequence->getSequenceInfoPath()), *found)) {
        return false;
    }
    updateList(pSequence);
    return true;
}

// An index that cannot be read or written ends it without a word of its own: the index's reader and writer have logged
// why.
bool SavedResults::deleteEntry(const QString& strFolder, const QString& strName)
{
    SavedResultsLock lock(strFolder);
    CPLSettingsFileWrapper index;
    if (!lock.obtain() || !index.load(resultsIndex::indexPath(strFolder))) {
        return false;
    }
    resultsIndex::setTags(index);
    const auto strFile = resultFileOf(index, strFolder, strName);
    CPLSettingsFileWrapper former;
    if (!strFile || !former.load(resultsIndex::indexPath(strFolder))) {
        return false;
    }
    CPLSection* pSection = index.getSectionByMenuName(strName);
    if (pSection == nullptr) {
        return false;
    }
    makeKeyUnique(index, *pSection);
    QString strKey;
    pSection->getSectionKey(&strKey);
    // The file goes when nothing names it any more: a list that cannot be saved leaves the result whole, and a program
    // that ends in between leaves a file that nobody misses.
    if (index.removeSection(strKey) != 0 || !index.save()) {
        return false;
    }
    if (!strFile->isEmpty() && !QFile::remove(*strFile)) {
        logLine(QStringLiteral("File could not be removed."), CORVLOG_ERROR);
        former.save();
        return false;
    }
    return true;
}

// The file that goes with the result; empty where there is none or another result needs it.
std::optional<QString> SavedResults::resultFileOf(const CPLSettingsFileWrapper& index, const QString& strFolder,
                                                  const QString& strName)
{
    const QDir files(resultsIndex::filesFolder(strFolder));
    if (!files.exists()) {
        logLine(QStringLiteral("Folder not found."), CORVLOG_ERROR);
        return std::nullopt;
    }
    const QString strFile = lastPart(index.getFileNameForMenuName(strName, QStringLiteral("-")));
    const auto found = resultsIndex::findName(files.entryList(QDir::Files), strFile);
    return found && !isNeededByOther(index, strName, strFile) ? files.filePath(*found) : QString();
}

bool SavedResults::renameResult()
{
    const CORVSequenceDataset* pSequence = dataset();
    if (pSequence == nullptr) {
        return false;
    }
    const QString strNew = m_list.currentText();
    const QString strFolder = resultsIndex::folder(pSequence->getSequenceInfoPath());
    switch (renameEntry(strFolder, m_list.itemText(m_nEditedIndex), strNew)) {
    case Renaming::Renamed:
        updateList(pSequence);
        showStatus(worded("%1 analysis results renamed for sequence [%2]...?"));
        return true;
    case Renaming::Taken:
        inform(QStringLiteral("Result \"") + strNew +
               QStringLiteral("\" already exist. Please choose a different name."));
        return true;
    case Renaming::IndexUnreadable:
        logLine(QStringLiteral("Unable to load SPUM.txt file"), CORVLOG_NOTE);
        inform(worded("Unable to load %1 analysis data for sequence [%2]."));
        return false;
    case Renaming::Refused:
        break;
    }
    return false;
}

SavedResults::Renaming SavedResults::renameEntry(const QString& strFolder, const QString& strOld, const QString& strNew)
{
    SavedResultsLock lock(strFolder);
    CPLSettingsFileWrapper index;
    if (!lock.obtain() || !index.load(resultsIndex::indexPath(strFolder))) {
        return Renaming::IndexUnreadable;
    }
    resultsIndex::setTags(index);
    const QStringList names = index.getMenuNames(resultsIndex::sectionTag());
    const auto old = resultsIndex::findName(names, strOld);
    if (resultsIndex::findName(names, strNew)) {
        return Renaming::Taken;
    }
    if (!old) {
        return Renaming::Refused;
    }
    const QString strFile = resultsIndex::relativeFile(index.getFileNameForMenuName(*old, QString()));
    CPLSection* pSection = index.getSectionByMenuName(*old);
    if (strFile.isEmpty() || pSection == nullptr) {
        return Renaming::Refused;
    }
    pSection->setValue(resultsIndex::menuNameTag(), strNew);
    pSection->setValue(resultsIndex::fileNameTag(), strFile);
    return index.save() ? Renaming::Renamed : Renaming::Refused;
}
