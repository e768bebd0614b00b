// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace orv {

// Removes a folder with all that lies in it, or a link to one and no more. What cannot be removed stays; false then.
// Where the disk takes its time for every file that goes, several threads wait for it.
bool deleteFolderTree(const QString& strFolder);

} // namespace orv
