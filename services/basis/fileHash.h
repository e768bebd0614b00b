// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <functional>

// The hash by which a file is known again: SHA-1 of its bytes in hexadecimal digits, what `sha1sum` prints. Content
// that has changed by work or accident is told, no forgery. Empty for what cannot be read, and where `goesOn`, asked
// every few megabytes, says no. Safe to call from several threads at once.
QString fileHash(const QString& strPath, const std::function<bool()>& goesOn = {});
