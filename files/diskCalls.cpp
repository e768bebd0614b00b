// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/diskCalls.h"

#include <QDirIterator>
#include <QFile>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orv {

bool syncFile(int file)
{
    return ::fsync(file) == 0 || errno == EINVAL || errno == ENOTSUP;
}

bool syncFolder(const QByteArray& folder)
{
    const int descriptor = ::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) {
        return errno == EACCES;
    }
    const bool done = syncFile(descriptor) || errno == EBADF;
    const int reason = errno;
    ::close(descriptor);
    errno = reason;
    return done;
}

bool syncFolders(const QByteArray& folder)
{
    QDirIterator each(QFile::decodeName(folder), QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot | QDir::NoSymLinks,
                      QDirIterator::Subdirectories);
    while (each.hasNext()) {
        if (!syncFolder(QFile::encodeName(each.next()))) {
            return false;
        }
    }
    return syncFolder(folder);
}

Hold hold(int file)
{
    if (::flock(file, LOCK_EX | LOCK_NB) == 0) {
        return Hold::mine;
    }
    return errno == EWOULDBLOCK ? Hold::another : Hold::unknown;
}

bool exchange(const QByteArray& one, const QByteArray& other)
{
    return ::renameat2(AT_FDCWD, one.constData(), AT_FDCWD, other.constData(), RENAME_EXCHANGE) == 0;
}

bool cannotExchange(int error)
{
    return error == EINVAL || error == ENOSYS || error == ENOTSUP;
}

bool renameToFree(const QByteArray& from, const QByteArray& to)
{
    if (::renameat2(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), RENAME_NOREPLACE) == 0) {
        return true;
    }
    if (!cannotExchange(errno)) {
        return false;
    }
    struct stat there = {};
    if (::lstat(to.constData(), &there) == 0) {
        errno = EEXIST;
        return false;
    }
    return std::rename(from.constData(), to.constData()) == 0;
}

} // namespace orv
