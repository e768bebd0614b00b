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

int openHeld(const QByteArray& path, int flags)
{
    const int file = ::open(path.constData(), flags | O_RDWR | O_NOFOLLOW | O_CLOEXEC, 0600);
    if (file < 0) {
        return -1;
    }
    struct stat facts = {};
    const Hold held = hold(file);
    const bool mayGoOn = held == Hold::mine || (held == Hold::unknown && (flags & O_CREAT) != 0);
    if (mayGoOn && ::fstat(file, &facts) == 0 && facts.st_nlink > 0) {
        return file;
    }
    ::close(file);
    errno = EEXIST;
    return -1;
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
