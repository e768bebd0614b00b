// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

// Puts a file in place as a whole: the bytes go to a temporary file beside it, which then takes its name. False on any
// failure (no such folder, no permission, full disk); whatever stood there before then stands there still, no temporary
// file is left, and the log has the file and the reason.
bool writeWholeFile(const QString& strPath, const QByteArray& bytes);
