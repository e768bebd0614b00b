// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/session/SpectraTable.h"

bool SpectraTable::isLibrary(const QByteArray& bytes)
{
    const QByteArray start = bytes.startsWith("\xEF\xBB\xBF") ? bytes.mid(3, 2) : bytes.left(2);
    return start == "$," || bytes.contains("\n$,") || bytes.contains("\r$,");
}
