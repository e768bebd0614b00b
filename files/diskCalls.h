// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>

// Single steps of writing to disk, each answering what the system says. Paths are encoded as the file system wants
// them. On false, errno tells the reason.
namespace orv {

// Brings a file's bytes to the disk. A file system that knows no such order is no failure; any other refusal is: disks
// over a network report errors and quota here and nowhere else.
bool syncFile(int file);
// The same for the names in a folder. Also true for a folder that may be written to but not read.
bool syncFolder(const QByteArray& folder);
// All folders below, and the folder itself.
bool syncFolders(const QByteArray& folder);

// Whether this process now holds the lock of an open file, which ends with the process. With a file system that has no
// locks `unknown` is answered.
enum class Hold
{
    mine,
    another,
    unknown
};
Hold hold(int file);
// An open file at this path that this process holds, or -1 with errno: EEXIST where another program holds it or is
// about to remove it. `flags` of open(2); with O_CREAT the file may be new, and a file system without locks will do.
int openHeld(const QByteArray& path, int flags);

// Gives two things that exist each other's name in one step. False with errno EINVAL, ENOSYS or ENOTSUP where the file
// system cannot.
bool exchange(const QByteArray& one, const QByteArray& other);
bool cannotExchange(int error);
// Gives a name that nothing has. False with EEXIST where something has it.
bool renameToFree(const QByteArray& from, const QByteArray& to);

} // namespace orv
