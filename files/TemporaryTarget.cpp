// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/TemporaryTarget.h"

#include "files/diskCalls.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QRegularExpression>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orv {

namespace {

constexpr int nameAttempts = 100;
constexpr int randomDigits = 13;

const QLatin1String mark("-orv");

QString nameBegin(const QFileInfo& target)
{
    return QLatin1Char('.') + target.completeBaseName() + mark;
}

QString nameEnd(const QFileInfo& target)
{
    return target.suffix().isEmpty() ? QString() : QLatin1Char('.') + target.suffix();
}

QString temporaryName(const QFileInfo& target)
{
    const QString middle = QString::number(QRandomGenerator::global()->generate64(), 36)
                               .rightJustified(randomDigits, QLatin1Char('0'), true);
    return target.path() + QLatin1Char('/') + nameBegin(target) + middle + nameEnd(target);
}

// Whether it may be that of a temporary file, of whatever target.
bool isTemporaryName(const QString& name)
{
    const QRegularExpression form(
        QStringLiteral("^\\..*%1[0-9a-z]{%2}(\\.[^.]*)?$").arg(mark, QString::number(randomDigits)));
    return form.match(name).hasMatch();
}

// Whether the name's file is this user's own and nobody holds it: one that a killed program has left.
bool isAbandoned(const QByteArray& path)
{
    struct stat facts = {};
    if (::lstat(path.constData(), &facts) != 0 || !S_ISREG(facts.st_mode) || facts.st_uid != ::geteuid()) {
        return false;
    }
    const int file = ::open(path.constData(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    const bool abandoned = file >= 0 && hold(file) == Hold::mine;
    if (file >= 0) {
        ::close(file);
    }
    return abandoned;
}

// Those with names that `isMeant` answers true to.
template <typename IsMeant>
void removeAbandoned(const QString& strFolder, IsMeant isMeant)
{
    const auto names = QDir(strFolder).entryList(QDir::Files | QDir::Hidden | QDir::NoSymLinks, QDir::Unsorted);
    for (const QString& name : names) {
        if (isMeant(name)) {
            const QByteArray path = QFile::encodeName(strFolder + QLatin1Char('/') + name);
            if (isAbandoned(path)) {
                ::unlink(path.constData());
            }
        }
    }
}

void removeAbandoned(const QFileInfo& target)
{
    const QString begin = nameBegin(target);
    const QString end = nameEnd(target);
    removeAbandoned(target.path(), [&](const QString& name) {
        return name.startsWith(begin) && name.endsWith(end) && name.size() == begin.size() + randomDigits + end.size();
    });
}

// A link stays a link: the file that it names is the one to replace.
QString withoutLink(const QString& strTarget)
{
    const QFileInfo target(strTarget);
    const QString real = target.canonicalFilePath();
    return !real.isEmpty() ? real : target.isSymLink() ? target.symLinkTarget() : strTarget;
}

} // namespace

TemporaryTarget::TemporaryTarget(const QString& strTarget) : m_strTarget(withoutLink(strTarget))
{
    const QFileInfo target(m_strTarget);
    if (target.fileName().isEmpty() || target.isDir()) {
        fail(QStringLiteral("it is a folder"));
        return;
    }
    if (target.exists() && !target.isWritable()) {
        fail(qt_error_string(EACCES));
        return;
    }
    removeAbandoned(target);
    for (int attempt = 0; attempt < nameAttempts; ++attempt) {
        if (create(temporaryName(target))) {
            return;
        }
        if (errno != EEXIST) {
            break;
        }
    }
    fail(qt_error_string(errno));
}

TemporaryTarget::~TemporaryTarget()
{
    discard();
}

// False with EEXIST also for a file that another program took for abandoned before it was held.
bool TemporaryTarget::create(const QString& strName)
{
    const QByteArray path = QFile::encodeName(strName);
    m_nFile = ::open(path.constData(), O_CREAT | O_EXCL | O_WRONLY | O_APPEND | O_CLOEXEC, 0666);
    if (m_nFile < 0) {
        return false;
    }
    struct stat facts = {};
    if (hold(m_nFile) == Hold::another || ::fstat(m_nFile, &facts) != 0 || facts.st_nlink == 0) {
        ::close(m_nFile);
        m_nFile = -1;
        errno = EEXIST;
        return false;
    }
    m_strPath = strName;
    return true;
}

bool TemporaryTarget::write(const QByteArray& bytes)
{
    if (!isValid()) {
        return false;
    }
    for (int done = 0; done < bytes.size();) {
        const ssize_t written = ::write(m_nFile, bytes.constData() + done, static_cast<size_t>(bytes.size() - done));
        if (written < 0 && errno != EINTR) {
            return fail(qt_error_string(errno));
        }
        done += written < 0 ? 0 : static_cast<int>(written);
    }
    return true;
}

bool TemporaryTarget::commit()
{
    return syncAndPlace(&TemporaryTarget::putInPlace);
}

bool TemporaryTarget::commitNew()
{
    return syncAndPlace(&TemporaryTarget::putInFreePlace);
}

bool TemporaryTarget::syncAndPlace(bool (TemporaryTarget::*place)())
{
    if (!isValid()) {
        return false;
    }
    struct stat earlier = {};
    if (::stat(QFile::encodeName(m_strTarget).constData(), &earlier) == 0) {
        ::fchmod(m_nFile, earlier.st_mode & 07777);
    }
    if (!syncFile(m_nFile) || !(this->*place)()) {
        return fail(qt_error_string(errno));
    }
    discard();
    return true;
}

// The earlier file takes the temporary name, so that it can come back while the new name may not be on the disk yet.
// False with errno; then the temporary name holds what is to be removed.
bool TemporaryTarget::putInPlace()
{
    const QByteArray from = QFile::encodeName(m_strPath);
    const QByteArray to = QFile::encodeName(m_strTarget);
    const QByteArray folder = QFile::encodeName(QFileInfo(m_strTarget).path());
    const bool exchanged = exchange(from, to);
    const bool first = !exchanged && errno == ENOENT;
    if (!exchanged) {
        if ((!first && !cannotExchange(errno)) || std::rename(from.constData(), to.constData()) != 0) {
            return false;
        }
        m_strPath.clear();
    }
    if (syncFolder(folder)) {
        return true;
    }
    const int reason = errno;
    if (exchanged) {
        exchange(from, to);
    } else if (first) {
        ::unlink(to.constData());
    }
    errno = reason;
    return false;
}

// False with errno.
bool TemporaryTarget::putInFreePlace()
{
    const QByteArray to = QFile::encodeName(m_strTarget);
    if (!renameToFree(QFile::encodeName(m_strPath), to)) {
        m_bTargetExists = errno == EEXIST;
        return false;
    }
    m_strPath.clear();
    if (syncFolder(QFile::encodeName(QFileInfo(m_strTarget).path()))) {
        return true;
    }
    const int reason = errno;
    ::unlink(to.constData());
    errno = reason;
    return false;
}

bool TemporaryTarget::fail(const QString& strReason)
{
    m_strError = QStringLiteral("%1: cannot be written: %2").arg(m_strTarget, strReason);
    discard();
    return false;
}

void TemporaryTarget::discard()
{
    if (isValid()) {
        ::unlink(QFile::encodeName(m_strPath).constData());
    }
    m_strPath.clear();
    if (m_nFile >= 0) {
        ::close(m_nFile);
    }
    m_nFile = -1;
}

void removeAbandonedTargets(const QString& strFolder)
{
    removeAbandoned(strFolder, isTemporaryName);
}

} // namespace orv
