// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/TemporaryTarget.h"

#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orv {

namespace {

constexpr int nameAttempts = 100;

QString temporaryName(const QFileInfo& target)
{
    const QString suffix = target.suffix().isEmpty() ? QString() : QLatin1Char('.') + target.suffix();
    const QString middle = QString::number(QRandomGenerator::global()->generate64(), 36);
    return target.path() + QLatin1String("/.") + target.completeBaseName() + QLatin1Char('-') + middle + suffix;
}

bool bringToDisk(const QByteArray& path)
{
    const int descriptor = ::open(path.constData(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) {
        return false;
    }
    // A file system that knows no such order is no failure.
    const bool done = ::fsync(descriptor) == 0 || errno == EINVAL || errno == ENOTSUP;
    const int reason = errno;
    ::close(descriptor);
    errno = reason;
    return done;
}

} // namespace

TemporaryTarget::TemporaryTarget(const QString& strTarget) : m_strTarget(strTarget)
{
    // A link stays a link: the file that it names is the one to replace.
    const QString real = QFileInfo(strTarget).canonicalFilePath();
    if (!real.isEmpty()) {
        m_strTarget = real;
    }
    const QFileInfo target(m_strTarget);
    if (target.fileName().isEmpty() || target.isDir()) {
        fail(QStringLiteral("it is a folder"));
        return;
    }
    for (int attempt = 0; attempt < nameAttempts; ++attempt) {
        const QString name = temporaryName(target);
        const int descriptor =
            ::open(QFile::encodeName(name).constData(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0666);
        if (descriptor >= 0) {
            ::close(descriptor);
            m_strPath = name;
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
    if (isValid()) {
        QFile::remove(m_strPath);
    }
}

bool TemporaryTarget::commit()
{
    if (!isValid()) {
        return false;
    }
    const QByteArray from = QFile::encodeName(m_strPath);
    const QByteArray to = QFile::encodeName(m_strTarget);
    struct stat earlier = {};
    if (::stat(to.constData(), &earlier) == 0) {
        ::chmod(from.constData(), earlier.st_mode & 07777);
    }
    if (!bringToDisk(from) || std::rename(from.constData(), to.constData()) != 0) {
        return fail(qt_error_string(errno));
    }
    m_strPath.clear();
    return true;
}

bool TemporaryTarget::fail(const QString& strReason)
{
    m_strError = QStringLiteral("%1: cannot be written: %2").arg(m_strTarget, strReason);
    if (isValid()) {
        QFile::remove(m_strPath);
    }
    m_strPath.clear();
    return false;
}

} // namespace orv
