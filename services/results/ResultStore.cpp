// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/ResultStore.h"

#include "engine/CORVSpumKyvo.h"
#include "files/liesInside.h"
#include "host/CORVSequenceDataset.h"
#include "host/CPLSettingsFileWrapper.h"
#include "services/basis/Failure.h"
#include "services/basis/LoggedErrors.h"
#include "services/results/resultPlace.h"
#include "storage/resultsIndex.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace {

// Of the sequence; empty where nothing was saved yet.
void readIndex(const CORVSequenceDataset& sequence, CPLSettingsFileWrapper& index)
{
    const QString path = resultsIndex::indexPath(resultsIndex::folder(sequence.getSequenceInfoPath()));
    // A link that leads nowhere does not exist either, but is no sequence without results.
    const LoggedErrors warnings(CORVLOG_WARNING);
    if ((QFileInfo::exists(path) || QFileInfo(path).isSymLink()) && !index.load(path)) {
        // The warnings name the file, the line and what is wrong there.
        throw Failure(QStringLiteral("%1: the list of saved results cannot be read").arg(path) +
                      (warnings.lines().isEmpty() ? QString() : QStringLiteral(" (%1)").arg(warnings.lines().first())));
    }
    resultsIndex::setTags(index);
}

// Ends the operation during which the warnings were logged; they tell why, which its own words do not.
[[noreturn]] void fail(const QString& strText, const LoggedErrors& warnings)
{
    const QStringList reasons = warnings.lines();
    throw Failure(reasons.isEmpty() ? strText : QStringLiteral("%1 (%2)").arg(strText, reasons.last()));
}

bool isOneLine(const QString& strName)
{
    return std::none_of(strName.begin(), strName.end(),
                        [](QChar c) { return c.category() == QChar::Other_Control || c == QChar::LineSeparator; });
}

void checkText(const QString& strName)
{
    if (strName.trimmed().isEmpty() || strName != strName.trimmed() || !isOneLine(strName)) {
        throw Failure(
            QStringLiteral("\"%1\" is no name for a result: it takes one line of text without blanks at its ends")
                .arg(strName.simplified()),
            Failure::Kind::BadRequest);
    }
}

} // namespace

ResultStore::ResultStore(CORVSpumKyvo& engine, bool bAgreed) : m_engine(engine), m_results(m_list, m_owner)
{
    if (bAgreed) {
        m_agreed.emplace();
    }
    m_results.setEngine(&engine);
    m_results.m_bWaitForFreeFile = true;
}

CORVSequenceDataset& ResultStore::sequence() const
{
    return *CORVSequenceDataset::getSequenceDataset(m_engine.m_strSeqId);
}

QStringList ResultStore::names(const CORVSequenceDataset& sequence)
{
    CPLSettingsFileWrapper index;
    readIndex(sequence, index);
    return index.getMenuNames(resultsIndex::sectionTag());
}

QString ResultStore::pathOf(const CORVSequenceDataset& sequence, const QString& strName)
{
    CPLSettingsFileWrapper index;
    readIndex(sequence, index);
    const QString file = resultsIndex::relativeFile(index.getFileNameForMenuName(strName, QString()));
    const QString folder = resultsIndex::folder(sequence.getSequenceInfoPath());
    // The list may come from somebody else, and name files that are not meant to be read.
    if (!orv::liesInside(folder, file)) {
        throw Failure(QStringLiteral("%1: the file %2 of the result \"%3\" lies outside %4 and is not read")
                          .arg(resultsIndex::indexPath(folder), file, strName, folder));
    }
    return file.isEmpty() ? QString() : folder + QLatin1Char('/') + file;
}

void ResultStore::checkPlace(const CORVSequenceDataset& sequence)
{
    const QString folder = sequence.getSequenceInfoPath();
    const QString kept = resultsIndex::folder(folder);
    const QString place = QFileInfo(kept).isDir() ? kept : folder;
    if (!canBeWritten(place)) {
        throw Failure(
            QStringLiteral("a saved result lies with its sequence, and nothing can be written into %1").arg(place),
            QStringLiteral("leave out --save, the files of the result then lie elsewhere; or copy the sequence"));
    }
}

void ResultStore::checkName(const CORVSequenceDataset& sequence, const QString& strName, bool bOverwrite)
{
    const QStringList taken = names(sequence);
    if (strName.isEmpty()) {
        return;
    }
    const QString name = resultsIndex::withoutNewMark(strName);
    checkText(name);
    if (!bOverwrite && taken.contains(name)) {
        throw Failure(QStringLiteral("there is a saved result \"%1\" already").arg(name),
                      QStringLiteral("--force overwrites it"));
    }
}

QString ResultStore::findName(const CORVSequenceDataset& sequence, const QString& strName)
{
    const QStringList saved = names(sequence);
    const auto found = resultsIndex::findName(saved, strName);
    if (found) {
        return *found;
    }
    throw Failure(saved.isEmpty()
                      ? QStringLiteral("the sequence has no saved results; \"spum unmix SEQ --save\" keeps one")
                      : QStringLiteral("there is no saved result \"%1\"; there are: %2")
                            .arg(strName, saved.join(QStringLiteral(", "))));
}

QString ResultStore::save(const QString& strName)
{
    m_list.m_bResultModified = true;
    m_list.updateSavedResultsForSelSeqId(sequence().getSequenceName());
    m_results.m_strAutoName = m_list.currentText();
    m_results.m_bUseAutoName = strName.isEmpty();
    if (!strName.isEmpty()) {
        m_list.setCurrentText(strName);
    }
    const QStringList before = names(sequence());
    const LoggedErrors warnings(CORVLOG_WARNING);
    if (m_results.onClickSaveResults() != SaveOutcome::Saved) {
        fail(QStringLiteral("the result was not saved"), warnings);
    }
    if (!strName.isEmpty()) {
        return resultsIndex::withoutNewMark(strName);
    }
    // Another program may have taken the name that was next.
    const QStringList after = names(sequence());
    for (auto name = after.rbegin(); name != after.rend(); ++name) {
        if (!before.contains(*name)) {
            return *name;
        }
    }
    return resultsIndex::withoutNewMark(m_results.m_strAutoName);
}

void ResultStore::load(const QString& strName)
{
    m_list.m_bResultModified = false;
    m_list.setCurrentText(strName);
    if (!m_results.onClickLoadResults()) {
        throw Failure(QStringLiteral("the result \"%1\" cannot be loaded").arg(strName));
    }
}

void ResultStore::remove(const QString& strName)
{
    m_list.updateSavedResultsForSelSeqId(sequence().getSequenceName());
    m_list.setCurrentText(strName);
    const LoggedErrors warnings(CORVLOG_WARNING);
    if (!m_results.onClickDeleteResults()) {
        fail(QStringLiteral("the result \"%1\" was not deleted").arg(strName) +
                 (m_agreed ? QString() : QStringLiteral("; --yes deletes it without a question")),
             warnings);
    }
}

void ResultStore::rename(const QString& strOld, const QString& strNew)
{
    checkText(strNew);
    if (resultsIndex::withoutNewMark(strNew) != strNew) {
        throw Failure(
            QStringLiteral("\"%1\" is no name for a result: \"%2\" at its end marks one that is not saved yet")
                .arg(strNew, resultsIndex::newMark()),
            Failure::Kind::BadRequest);
    }
    const auto taken = resultsIndex::findName(names(sequence()), strNew);
    if (taken) {
        throw Failure(QStringLiteral("Result \"%1\" already exist. Please choose a different name.").arg(strNew));
    }
    m_list.updateSavedResultsForSelSeqId(sequence().getSequenceName());
    m_list.choose(strOld);
    m_results.onChangeResultsName(strNew);
    m_list.setCurrentText(strNew);
    const LoggedErrors warnings(CORVLOG_WARNING);
    // Also true when another program has taken the name meanwhile.
    if (!m_results.renameResult() || !names(sequence()).contains(strNew)) {
        fail(QStringLiteral("the result \"%1\" was not renamed").arg(strOld), warnings);
    }
}
