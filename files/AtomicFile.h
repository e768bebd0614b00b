// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

namespace orv {

// Puts a file in place as a whole: the bytes go to a temporary file in the same folder, are brought to the disk, and
// the file then takes the target's name. False on any failure (no such folder, no permission, a full disk, a disk that
// refuses the bytes at the end); the target is then what it was and no temporary file is left. `pError` may be null; it
// receives one sentence with the file and the reason.
bool writeFileAtomically(const QString& strPath, const QByteArray& bytes, QString* pError = nullptr);

// The same for a file that may not be there yet, even where two programs write it at once: one of them gets false and
// true in *pExisted.
bool writeNewFileAtomically(const QString& strPath, const QByteArray& bytes, bool* pExisted, QString* pError = nullptr);

} // namespace orv
