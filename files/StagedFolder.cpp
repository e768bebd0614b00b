// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/StagedFolder.h"

#include "files/deleteFolderTree.h"
#include "files/diskCalls.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QRegularExpression>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr int nameAttempts = 100;
constexpr int randomLetters = 6;
constexpr auto everything = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;

bool fail(const QString& strReason, QString* pError)
{
    if (pError != nullptr) {
        *pError = strReason;
    }
    return false;
}

bool isReplaceable(const QString& strFolder, const QString& strMarker)
{
    const QFileInfo info(strFolder);
    return info.isDir() && !info.isSymLink() &&
           (QDir(strFolder).isEmpty(everything) || QFileInfo::exists(strFolder + QLatin1Char('/') + strMarker));
}

QString freshIn(const QString& strHidden)
{
    return strHidden + QLatin1String("/new");
}

QString oldIn(const QString& strHidden)
{
    return strHidden + QLatin1String("/old");
}

QString lockIn(const QString& strHidden)
{
    return strHidden + QLatin1String("/lock");
}

bool exists(const QString& strPath)
{
    struct stat facts = {};
    return ::lstat(QFile::encodeName(strPath).constData(), &facts) == 0;
}

bool rename(const QString& strFrom, const QString& strTo)
{
    return orv::renameToFree(QFile::encodeName(strFrom), QFile::encodeName(strTo));
}

// The lock last, so that a program that is killed in between leaves what the next one can clear up.
void removeHidden(const QString& strHidden)
{
    for (const QString& part : {freshIn(strHidden), oldIn(strHidden)}) {
        orv::deleteFolderTree(part);
    }
    if (!exists(freshIn(strHidden)) && !exists(oldIn(strHidden))) {
        QFile::remove(lockIn(strHidden));
        ::rmdir(QFile::encodeName(strHidden).constData());
    }
}

QString randomName(const QString& strName)
{
    static const QString letters = QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz");
    QString name = QLatin1Char('.') + strName + QLatin1Char('-');
    for (int i = 0; i < randomLetters; ++i) {
        name += letters[QRandomGenerator::global()->bounded(letters.size())];
    }
    return name;
}

int heldLock(const QString& strHidden, int flags)
{
    return orv::openHeld(QFile::encodeName(lockIn(strHidden)), flags);
}

// Hidden folders of programs that were killed while they made `target`.
QStringList hiddenBeside(const QFileInfo& target)
{
    const QDir parent = target.absoluteDir();
    const QRegularExpression pattern(
        QStringLiteral("^\\.%1-[A-Za-z]{%2}$")
            .arg(QRegularExpression::escape(target.fileName()), QString::number(randomLetters)));
    QStringList found;
    for (const QString& name : parent.entryList(QDir::Dirs | QDir::Hidden | QDir::NoSymLinks | QDir::NoDotAndDotDot)) {
        if (pattern.match(name).hasMatch() && QFileInfo(parent.filePath(name)).ownerId() == ::geteuid()) {
            found.append(parent.filePath(name));
        }
    }
    return found;
}

bool isOurs(const QString& strHidden)
{
    const auto names = QDir(strHidden).entryList(everything);
    return std::all_of(names.cbegin(), names.cend(), [](const QString& name) {
        return name == QLatin1String("lock") || name == QLatin1String("new") || name == QLatin1String("old");
    });
}

// Of one hidden folder whose program is gone.
QString takeBackFrom(const QString& strHidden, const QString& strTarget)
{
    const QString old = oldIn(strHidden);
    if (exists(old) && !exists(strTarget)) {
        if (!rename(old, strTarget)) {
            return QStringLiteral("%1 was left aside by a program that was ended while it replaced it: it is in %2")
                .arg(strTarget, old);
        }
        orv::syncFolder(QFile::encodeName(QFileInfo(strTarget).path()));
        removeHidden(strHidden);
        return QStringLiteral("%1 was left aside by a program that was ended while it replaced it; it is back in its "
                              "place now, as it was before")
            .arg(strTarget);
    }
    // With its successor not in place, it is not known whose the target is.
    if (exists(old) && exists(freshIn(strHidden))) {
        return QStringLiteral("a program was ended while it replaced %1: the former folder is in %2; move it or remove "
                              "%3")
            .arg(strTarget, old, strHidden);
    }
    removeHidden(strHidden);
    return {};
}

} // namespace

StagedFolder::~StagedFolder()
{
    discard();
}

QString StagedFolder::takeBack(const QString& strTarget)
{
    const QString path = QDir::cleanPath(QFileInfo(strTarget).absoluteFilePath());
    QString told;
    for (const QString& hidden : hiddenBeside(QFileInfo(path))) {
        if (!isOurs(hidden)) {
            continue;
        }
        const int lock = heldLock(hidden, 0);
        if (lock >= 0) {
            const QString text = takeBackFrom(hidden, path);
            told = told.isEmpty() ? text : told;
            ::close(lock);
        } else if (errno == ENOENT) {
            // Without a lock it is just made, or almost removed: empty, or not to be touched.
            ::rmdir(QFile::encodeName(hidden).constData());
        }
    }
    return told;
}

QString StagedFolder::takeBackMissing(const QString& strTarget)
{
    return exists(QDir::cleanPath(QFileInfo(strTarget).absoluteFilePath())) ? QString() : takeBack(strTarget);
}

QStringList StagedFolder::takeBackMissingInside(const QString& strFolder)
{
    const QDir folder(strFolder);
    const QRegularExpression pattern(QStringLiteral("^\\.(.+)-[A-Za-z]{%1}$").arg(randomLetters));
    QStringList targets;
    QStringList told;
    for (const QString& name : folder.entryList(QDir::Dirs | QDir::Hidden | QDir::NoSymLinks | QDir::NoDotAndDotDot)) {
        const QString target = pattern.match(name).captured(1);
        if (target.isEmpty() || targets.contains(target)) {
            continue;
        }
        targets.append(target);
        const QString text = takeBackMissing(folder.filePath(target));
        if (!text.isEmpty()) {
            told.append(text);
        }
    }
    return told;
}

bool StagedFolder::begin(const QString& strTarget, bool bForce, const QString& strMarker, QString* pError)
{
    discard();
    m_bForce = bForce;
    m_strTarget = QDir::cleanPath(QFileInfo(strTarget).absoluteFilePath());
    const bool there = exists(m_strTarget);
    const QString told = takeBack(m_strTarget);
    if (!told.isEmpty()) {
        const bool isBack = !there && exists(m_strTarget);
        return fail(isBack ? told + QLatin1String(": try again") : told, pError);
    }
    const QFileInfo target(m_strTarget);
    if (target.exists() || target.isSymLink()) {
        if (!bForce) {
            return fail(QStringLiteral("%1 exists already; --force replaces it").arg(m_strTarget), pError);
        }
        if (!isReplaceable(m_strTarget, strMarker)) {
            return fail(
                QStringLiteral("%1 exists and was not made by this program (it holds no %2); it is not replaced")
                    .arg(m_strTarget, strMarker),
                pError);
        }
    }
    const QString parent = target.absolutePath();
    if (!QFileInfo(parent).isDir()) {
        return fail(QStringLiteral("%1 cannot be made: %2 is not a folder").arg(m_strTarget, parent), pError);
    }
    return makeHidden(parent, target.fileName()) ||
           fail(QStringLiteral("%1 cannot be made: %2").arg(m_strTarget, qt_error_string(errno)), pError);
}

// False with errno.
bool StagedFolder::makeHidden(const QString& strParent, const QString& strName)
{
    for (int attempt = 0; attempt < nameAttempts; ++attempt) {
        m_strHidden = strParent + QLatin1Char('/') + randomName(strName);
        const QByteArray hidden = QFile::encodeName(m_strHidden);
        // The hidden folder is private to its owner; what is built inside takes the user's ordinary permissions.
        if (::mkdir(hidden.constData(), 0700) == 0) {
            m_nLock = heldLock(m_strHidden, O_CREAT);
            if (m_nLock >= 0 && ::mkdir(QFile::encodeName(freshIn(m_strHidden)).constData(), 0777) == 0) {
                return true;
            }
            const int reason = errno;
            discard();
            // Another program may have taken it for abandoned before it was held.
            errno = reason == ENOENT ? EEXIST : reason;
        }
        if (errno != EEXIST) {
            break;
        }
    }
    m_strHidden.clear();
    return false;
}

QString StagedFolder::path() const
{
    return m_strHidden.isEmpty() ? QString() : freshIn(m_strHidden) + QLatin1Char('/');
}

bool StagedFolder::commit(QString* pError)
{
    if (m_strHidden.isEmpty()) {
        return fail(QStringLiteral("nothing was prepared"), pError);
    }
    const bool replace = exists(m_strTarget);
    if (replace && !m_bForce) {
        discard();
        return fail(QStringLiteral("%1 exists by now; it is not replaced").arg(m_strTarget), pError);
    }
    bool done = false;
    if (!orv::syncFolders(QFile::encodeName(freshIn(m_strHidden)))) {
        fail(QStringLiteral("%1 cannot be put in place: %2").arg(m_strTarget, qt_error_string(errno)), pError);
    } else if (replace && orv::exchange(QFile::encodeName(freshIn(m_strHidden)), QFile::encodeName(m_strTarget))) {
        done = exchangeFolders(pError);
    } else if (replace && !orv::cannotExchange(errno)) {
        fail(QStringLiteral("%1 cannot be put in place: %2").arg(m_strTarget, qt_error_string(errno)), pError);
    } else {
        done = renameFolders(replace, pError);
    }
    discard();
    return done;
}

// The former folder is the new one's place now.
bool StagedFolder::exchangeFolders(QString* pError)
{
    const QByteArray target = QFile::encodeName(m_strTarget);
    if (orv::syncFolder(QFile::encodeName(QFileInfo(m_strTarget).path()))) {
        return true;
    }
    const QString reason = qt_error_string(errno);
    if (orv::exchange(QFile::encodeName(freshIn(m_strHidden)), target)) {
        return fail(QStringLiteral("%1 cannot be put in place: %2").arg(m_strTarget, reason), pError);
    }
    fail(QStringLiteral("%1 was replaced, but may not be on the disk: %2; the former folder is in %3")
             .arg(m_strTarget, reason, freshIn(m_strHidden)),
         pError);
    keepHidden();
    return false;
}

// For file systems that cannot exchange names.
bool StagedFolder::renameFolders(bool bReplace, QString* pError)
{
    const QString fresh = freshIn(m_strHidden);
    const QString old = oldIn(m_strHidden);
    bool moved = !bReplace || rename(m_strTarget, old);
    const bool aside = bReplace && moved;
    moved = moved && rename(fresh, m_strTarget);
    if (moved && orv::syncFolder(QFile::encodeName(QFileInfo(m_strTarget).path()))) {
        return true;
    }
    const QString reason = qt_error_string(errno);
    if ((moved && !rename(m_strTarget, fresh)) || (aside && !rename(old, m_strTarget))) {
        const QString left = aside ? QStringLiteral("; the former folder is in %1").arg(old) : QString();
        fail(QStringLiteral("%1 cannot be put in place: %2%3").arg(m_strTarget, reason, left), pError);
        keepHidden();
        return false;
    }
    return fail(QStringLiteral("%1 cannot be put in place: %2").arg(m_strTarget, reason), pError);
}

// Holds what could not be put back. The next program does that where the place is free; otherwise it has to stay, and
// without a lock nobody touches it.
void StagedFolder::keepHidden()
{
    if (exists(m_strTarget)) {
        QFile::remove(lockIn(m_strHidden));
    }
    m_strHidden.clear();
}

void StagedFolder::discard()
{
    if (!m_strHidden.isEmpty()) {
        removeHidden(m_strHidden);
    }
    m_strHidden.clear();
    if (m_nLock >= 0) {
        ::close(m_nLock);
    }
    m_nLock = -1;
}
