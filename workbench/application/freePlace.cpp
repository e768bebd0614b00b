// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/freePlace.h"

#include <QFileInfo>

QString freePlace(const QString& strPath)
{
    QString place = strPath;
    for (int i = 2; QFileInfo::exists(place); ++i) {
        place = QStringLiteral("%1-%2").arg(strPath, QString::number(i));
    }
    return place;
}
