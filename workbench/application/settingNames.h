// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// Entries of the user's settings that several parts of the program know.
namespace settingNames {

// Where the plug-in is loaded from in place of the program's own folder.
inline QString pluginFolder()
{
    return QStringLiteral("Plugins/Folder");
}

// Where the sequences for batches are.
inline QString batchFolder()
{
    return QStringLiteral("Batch/SpumDatasetPath");
}

} // namespace settingNames
