// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvimage/StagedFile.h"

#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

namespace orvimage {

StagedFile::StagedFile(const QString& path)
{
    const QString followed = QFileInfo(path).canonicalFilePath(); // empty when there is no such file yet
    m_target = QFile::encodeName(followed.isEmpty() ? path : followed);
}

StagedFile::~StagedFile()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
    if (!m_temporary.isEmpty())
        ::unlink(m_temporary.constData());
}

bool StagedFile::open()
{
    struct stat target = {};
    const bool exists = ::stat(m_target.constData(), &target) == 0;
    if (exists && S_ISDIR(target.st_mode)) {
        m_reason = QStringLiteral("is a folder");
        return false;
    }
    constexpr int attempts = 100;
    for (int i = 0; i < attempts && m_descriptor < 0; ++i) {
        m_temporary = m_target + '.' + QByteArray::number(QRandomGenerator::global()->generate(), 36) + ".part";
        m_descriptor = ::open(m_temporary.constData(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (m_descriptor < 0 && errno != EEXIST)
            break;
    }
    if (m_descriptor < 0) {
        failWithErrno();
        m_temporary.clear(); // not ours
        return false;
    }
    if (exists) // an existing file's rights stay; where that is not allowed, the defaults do
        static_cast<void>(::fchmod(m_descriptor, target.st_mode & 07777U));
    return true;
}

bool StagedFile::write(const QByteArray& bytes)
{
    const char* from = bytes.constData();
    auto left = static_cast<std::size_t>(bytes.size());
    while (left > 0) {
        const ssize_t written = ::write(m_descriptor, from, left);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return failWithErrno();
        from += written;
        left -= static_cast<std::size_t>(written);
    }
    return true;
}

bool StagedFile::commit()
{
    if (::fsync(m_descriptor) != 0 && errno != EINVAL)
        return failWithErrno();
    const int closed = ::close(m_descriptor);
    m_descriptor = -1;
    if (closed != 0)
        return failWithErrno();
    if (std::rename(m_temporary.constData(), m_target.constData()) != 0)
        return failWithErrno();
    m_temporary.clear();
    return true;
}

bool StagedFile::failWithErrno()
{
    m_reason = qt_error_string(errno);
    return false;
}

} // namespace orvimage
