// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "files/FileLock.h"

#include <functional>

// The right to change the saved libraries, held by one of all programs at a time: from the reading of what a change
// begins with to its last write, or one would undo the other's.
class LibrariesLock
{
public:
    // Makes the folder of the libraries where there is none, and waits for up to 30 s, as long as `goesOn` says so.
    // Throws Failure. Nothing that takes long may happen while it is held: after 30 s others take it for left behind.
    explicit LibrariesLock(const std::function<bool()>& goesOn = {});

private:
    FileLock m_lock;
};
