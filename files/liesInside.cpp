// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/liesInside.h"

#include <QDir>
#include <QFileInfo>

namespace orv {

bool liesInside(const QString& strFolder, const QString& strName)
{
    const QString folder = QDir::cleanPath(QFileInfo(strFolder).absoluteFilePath());
    const QString path = QDir::cleanPath(QDir(folder).absoluteFilePath(strName));
    const QString inside = folder.endsWith(QLatin1Char('/')) ? folder : folder + QLatin1Char('/');
    return path == folder || path.startsWith(inside);
}

} // namespace orv
