// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

// Puts a file in place as a whole, as orv::writeFileAtomically does. On false whatever stood there before stands there
// still, and the log has the file and the reason.
bool writeWholeFile(const QString& strPath, const QByteArray& bytes);
