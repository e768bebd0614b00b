// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace orv {

// Whether a name that a file gives stays in the folder: relative names that don't climb out of it, and absolute ones
// that lead into it, do. Links are not looked at, as those are made by who owns the folder. An empty name and the
// folder itself lie inside.
bool liesInside(const QString& strFolder, const QString& strName);

} // namespace orv
