// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

class CORVSettings;

// The sequences that were opened last, the newest first.
namespace recentPaths {

constexpr int most = 10;

// As paths are kept: absolute, without a separator at the end.
QString absolute(const QString& strPath);
// The list with the path at its front and once; no longer than `most`.
QStringList with(const QStringList& paths, const QString& strPath);
QStringList without(const QStringList& paths, const QString& strPath);
// The folder in which the folder lies, without a separator at its end.
QString parentOf(const QString& strFolder);
// Of an entry in a menu: the number as its key, the name of the folder, and where that lies.
QString menuText(int nPlace, const QString& strPath);

QStringList read(const CORVSettings& settings);
void write(CORVSettings& settings, const QStringList& paths);

} // namespace recentPaths
