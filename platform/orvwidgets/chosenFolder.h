// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace orv {

// The folder of the file that CORVFileDialog answered with last, as long as the program runs; empty before that.
QString lastChosenFolder();
void setLastChosenFolder(const QString& strFolder);

} // namespace orv
