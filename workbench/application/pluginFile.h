// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

class CORVToolPalettePluginBase;

// The library of the analysis, which is loaded when the program starts.
namespace pluginFile {

QString name();

// The folders to look in, absolute, in order. What the command line names holds alone, and so does what the settings
// name; otherwise it is "plugins" beside the program, then the place of an installed tree.
QStringList folders(const QString& strOption, const QString& strSetting, const QString& strProgramFolder);

struct Loaded
{
    CORVToolPalettePluginBase* plugin = nullptr; // the caller's from now on; its library stays loaded for good
    QString path;                                // of the file that was found, empty without one
    QString reason;                              // a sentence when there is no plug-in
};

// The first file of that name counts, also when it turns out to be of no use: another one further down the list could
// be a version that nobody wants.
Loaded load(const QStringList& folders);

} // namespace pluginFile
