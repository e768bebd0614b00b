// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

namespace orv {

// Replaces the file by `bytes` as a whole or leaves it as it was, a full disk included. On failure false, and *pError (may
// be null) says the path and the reason.
bool writeFileAtomically(const QString& strPath, const QByteArray& bytes, QString* pError = nullptr);

} // namespace orv
