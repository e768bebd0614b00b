// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <functional>

class FileLock;

// Obtains the lock, waiting for up to 30 s and as long as `goesOn`, which may be empty, says so. Throws Failure: that
// the user has stopped it, or "`strWhat` cannot be changed" and why.
void obtainLock(FileLock& lock, const QString& strWhat, const std::function<bool()>& goesOn);
