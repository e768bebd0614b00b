// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/session/RegionFiles.h"

#include "files/AtomicFile.h"
#include "files/diskCalls.h"
#include "platform/orvutils/InputFile.h"
#include "services/basis/Failure.h"
#include "services/session/obtainLock.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>

#include <algorithm>
#include <cerrno>
#include <cstdio>

namespace {

constexpr int largestFile = 64; // MiB
constexpr char journalName[] = ".regions.journal";
constexpr char newSuffix[] = ".new";
constexpr char oldSuffix[] = ".old";

QByteArray hashOf(const QByteArray& bytes)
{
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex();
}

// Empty for a file that is not there or cannot be read.
QByteArray hashOfFile(const QString& strPath)
{
    QByteArray bytes;
    QString error;
    return orv::readInput(strPath, largestFile, QStringLiteral("click info"), &bytes, &error) ? hashOf(bytes)
                                                                                              : QByteArray();
}

QString beside(const QString& strPath, const char* pSuffix)
{
    const QFileInfo info(strPath);
    return info.path() + QLatin1String("/.") + info.fileName() + QLatin1String(pSuffix);
}

// The folder, or that of its info file.
QString folderOfSequence(const QString& strPath)
{
    const QFileInfo info(strPath);
    return QFileInfo(info.isDir() ? strPath : info.path()).canonicalFilePath();
}

} // namespace

// A click info in a journal.
struct RegionFiles::Entry
{
    QString path; // absolute, free of links
    QByteArray before;
    QByteArray after; // hashes of the contents
};

RegionFiles::RegionFiles(const QString& strSequence)
    : m_strFolder(folderOfSequence(strSequence) + QLatin1Char('/')), m_lock(m_strFolder + QLatin1String(".regions"))
{
}

QString RegionFiles::journalPath() const
{
    return m_strFolder + QLatin1String(journalName);
}

void RegionFiles::lock(const std::function<bool()>& goesOn)
{
    obtainLock(m_lock, QStringLiteral("%1: the regions of the sequence").arg(QDir(m_strFolder).path()), goesOn);
    settleJournal();
}

// A program that is at work removes the journal itself.
QString RegionFiles::settle(const QString& strSequence, const std::function<bool()>& goesOn)
{
    RegionFiles files(strSequence);
    const auto isUnsettled = [&files] { return QFileInfo::exists(files.journalPath()); };
    try {
        if (isUnsettled()) {
            files.lock([&] { return isUnsettled() && (!goesOn || goesOn()); });
        }
    } catch (const Failure& failure) {
        if (isUnsettled()) {
            return QStringLiteral("%1; a change of the regions has ended half way, and the images may differ in them")
                .arg(failure.message());
        }
    }
    return QString();
}

// Two datasets may share a file by way of links.
QList<RegionFiles::Entry> RegionFiles::entriesOf(const QList<Change>& changes) const
{
    QList<Entry> entries;
    QSet<QString> seen;
    for (const Change& change : changes) {
        const QFileInfo info(change.path);
        const QString path = info.canonicalFilePath();
        if (!path.startsWith(m_strFolder)) {
            throw Failure(QStringLiteral("%1: a link leads out of the sequence, to %2; regions are not stored there")
                              .arg(change.path, path));
        }
        if (!info.isWritable()) {
            throw Failure(QStringLiteral("%1: cannot be written: %2").arg(change.path, qt_error_string(EACCES)));
        }
        if (!seen.contains(path)) {
            seen.insert(path);
            entries.append({path, hashOf(change.before), hashOf(change.after)});
        }
    }
    return entries;
}

void RegionFiles::stage(const QList<Entry>& entries, const QList<Change>& changes) const
{
    const auto write = [](const QString& strPath, const QByteArray& bytes, QFile::Permissions permissions,
                          QString* pError) {
        if (!orv::writeFileAtomically(strPath, bytes, pError)) {
            return false;
        }
        QFile::setPermissions(strPath, permissions);
        return true;
    };
    QString error;
    for (const Entry& entry : entries) {
        const auto change = std::find_if(changes.begin(), changes.end(), [&entry](const Change& other) {
            return QFileInfo(other.path).canonicalFilePath() == entry.path;
        });
        const QFile::Permissions permissions = QFile::permissions(entry.path);
        if (!write(beside(entry.path, oldSuffix), change->before, permissions, &error) ||
            !write(beside(entry.path, newSuffix), change->after, permissions, &error)) {
            removeBeside(entries);
            // The user knows the click info, not what is written on the way to it.
            throw Failure(QStringLiteral("%1%2").arg(change->path, error.mid(error.indexOf(QLatin1String(": ")))));
        }
    }
}

void RegionFiles::write(const QList<Change>& changes)
{
    const QList<Entry> entries = entriesOf(changes);
    if (entries.isEmpty()) {
        return;
    }
    stage(entries, changes);
    m_lock.keep();
    QJsonArray files;
    for (const Entry& entry : entries) {
        files.append(QJsonObject{{"path", entry.path.mid(m_strFolder.size())},
                                 {"before", QString::fromLatin1(entry.before)},
                                 {"after", QString::fromLatin1(entry.after)}});
    }
    QString error;
    if (!orv::writeFileAtomically(journalPath(), QJsonDocument(QJsonObject{{"files", files}}).toJson(), &error)) {
        QFile::remove(journalPath());
        removeBeside(entries);
        throw Failure(error);
    }
    if (!putInPlace(entries, true, &error)) {
        QString again;
        if (!putInPlace(entries, false, &again)) {
            throw Failure(QStringLiteral("%1; the next command on the sequence settles what is half done (%2)")
                              .arg(error, again));
        }
        removeBeside(entries);
        QFile::remove(journalPath());
        throw Failure(error);
    }
    // Where the journal stays, the next command finds the change made and removes it.
    removeBeside(entries);
    QFile::remove(journalPath());
}

// Names the files their new or old content, where they have not got it yet.
bool RegionFiles::putInPlace(const QList<Entry>& entries, bool bForward, QString* pError) const
{
    QSet<QString> folders;
    for (const Entry& entry : entries) {
        if (hashOfFile(entry.path) == (bForward ? entry.after : entry.before)) {
            continue;
        }
        const QByteArray from = QFile::encodeName(beside(entry.path, bForward ? newSuffix : oldSuffix));
        if (std::rename(from.constData(), QFile::encodeName(entry.path).constData()) != 0) {
            *pError = QStringLiteral("%1: cannot be written: %2").arg(entry.path, qt_error_string(errno));
            return false;
        }
        folders.insert(QFileInfo(entry.path).path());
    }
    for (const QString& folder : folders) {
        if (!orv::syncFolder(QFile::encodeName(folder))) {
            *pError = QStringLiteral("%1: cannot be written: %2").arg(folder, qt_error_string(errno));
            return false;
        }
    }
    return true;
}

bool RegionFiles::canBePutInPlace(const QList<Entry>& entries, bool bForward) const
{
    return std::all_of(entries.begin(), entries.end(), [bForward](const Entry& entry) {
        const QByteArray& wanted = bForward ? entry.after : entry.before;
        const QByteArray present = hashOfFile(entry.path);
        const bool ours = present == entry.before || present == entry.after;
        return present == wanted ||
               (ours && hashOfFile(beside(entry.path, bForward ? newSuffix : oldSuffix)) == wanted);
    });
}

void RegionFiles::removeBeside(const QList<Entry>& entries) const
{
    for (const Entry& entry : entries) {
        QFile::remove(beside(entry.path, newSuffix));
        QFile::remove(beside(entry.path, oldSuffix));
    }
}

QList<RegionFiles::Entry> RegionFiles::readJournal() const
{
    QByteArray text;
    QString reason;
    if (!orv::readInput(journalPath(), largestFile, QStringLiteral("journal"), &text, &reason)) {
        throw Failure(reason);
    }
    QList<Entry> entries;
    const QJsonArray files = QJsonDocument::fromJson(text).object().value(QLatin1String("files")).toArray();
    for (const auto& value : files) {
        const QJsonObject object = value.toObject();
        const QString path = object[QLatin1String("path")].toString();
        const QString whole = QDir::cleanPath(m_strFolder + path);
        const QString folder = QFileInfo(QFileInfo(whole).path()).canonicalFilePath() + QLatin1Char('/');
        if (path.isEmpty() || !whole.startsWith(m_strFolder) || !folder.startsWith(m_strFolder)) {
            throw Failure(QStringLiteral("%1: \"%2\" is no file of the sequence; remove the journal if no other "
                                         "program is at work")
                              .arg(journalPath(), path));
        }
        entries.append({whole, object[QLatin1String("before")].toString().toLatin1(),
                        object[QLatin1String("after")].toString().toLatin1()});
    }
    return entries;
}

void RegionFiles::settleJournal() const
{
    if (!QFileInfo::exists(journalPath())) {
        return;
    }
    const QList<Entry> entries = readJournal();
    const bool forward = canBePutInPlace(entries, true);
    if (!forward && !canBePutInPlace(entries, false)) {
        throw Failure(QStringLiteral("%1: the click infos that it tells of have been changed since; bring them in "
                                     "order and remove it")
                          .arg(journalPath()));
    }
    QString error;
    if (!putInPlace(entries, forward, &error)) {
        throw Failure(error);
    }
    removeBeside(entries);
    if (!QFile::remove(journalPath())) {
        throw Failure(QStringLiteral("%1: cannot be removed").arg(journalPath()));
    }
}
