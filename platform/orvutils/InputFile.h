// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

class QFile;

namespace orv {

// Opens a file to be read. False with the reason in *pReason for what is no file: nothing there, a folder, a pipe,
// which would keep its reader waiting for ever, a device, which never ends.
bool openInput(QFile& file, QString* pReason);

// All bytes of such a file when they are not more than `nMaxMiB` mebibytes; `strWhat` says in the message what it
// should have been ("summary"). False with "file: reason" in *pError; *pBytes is then empty.
bool readInput(const QString& strPath, int nMaxMiB, const QString& strWhat, QByteArray* pBytes, QString* pError);

} // namespace orv
