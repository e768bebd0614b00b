// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/batch/BatchPlaces.h"

#include "services/basis/Failure.h"

#include <QDir>
#include <QFileInfo>

BatchPlaces::BatchPlaces(const QString& strFolder)
    : m_strFolder(QDir::cleanPath(QFileInfo(strFolder).absoluteFilePath()) + QLatin1Char('/'))
{
}

void BatchPlaces::make() const
{
    if (!QDir().mkpath(stateFolder())) {
        throw Failure(QStringLiteral("%1: the folder of the results cannot be made").arg(m_strFolder));
    }
}
