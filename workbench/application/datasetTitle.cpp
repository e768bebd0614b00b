// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/datasetTitle.h"

#include "host/CORVDataset.h"
#include "workbench/application/SequenceGrid.h"

#include <QDir>

QString datasetTitle(const CORVDataset& dataset)
{
    const QString number = dataset.getClickNumber();
    const QString name = number.isEmpty() ? QDir(dataset.folderPath()).dirName() : number;
    const SequenceGrid grid({TileKey::of(dataset.clickInfo, true, QString())}, false);
    QString title = grid.caption(0).isEmpty() ? name : QStringLiteral("%1: %2").arg(name, grid.caption(0));
    return title.replace(QLatin1String("[*]"), QLatin1String("[*][*]"));
}
