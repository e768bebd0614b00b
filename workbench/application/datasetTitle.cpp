// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/datasetTitle.h"

#include "host/CORVDataset.h"
#include "host/CPLSection.h"
#include "workbench/application/SequenceGrid.h"

#include <QDir>

namespace {

// Of the component whose map the dataset is: its name, or its number behind the label that an analysis gives; empty for
// any other dataset.
QString componentOf(const CORVDataset& dataset)
{
    const CPLSection* pSection = dataset.clickInfo[QStringLiteral("luminescent image")];
    QString name;
    if (pSection == nullptr || pSection->getValue(QStringLiteral("Unmixed Concentration"), &name) != 0) {
        return QString();
    }
    if (pSection->getValue(QStringLiteral("Unmixed Component"), &name) == 0 && !name.trimmed().isEmpty()) {
        return name.trimmed();
    }
    const int nMark = name.lastIndexOf(QLatin1String("UMX"));
    return nMark < 0 ? name.trimmed() : QStringLiteral("component %1").arg(name.mid(nMark + 3).trimmed());
}

QString nameOf(const CORVDataset& dataset)
{
    const QString number = dataset.getClickNumber();
    return number.isEmpty() ? QDir(dataset.folderPath()).dirName() : number;
}

QString escaped(QString strTitle)
{
    return strTitle.replace(QLatin1String("[*]"), QLatin1String("[*][*]"));
}

} // namespace

QString datasetTitle(const CORVDataset& dataset)
{
    const QString component = componentOf(dataset);
    if (!component.isEmpty()) {
        return escaped(QStringLiteral("Map of %1").arg(component));
    }
    const QString name = nameOf(dataset);
    const SequenceGrid grid({TileKey::of(dataset.clickInfo, true, QString())}, false);
    return escaped(grid.caption(0).isEmpty() ? name : QStringLiteral("%1: %2").arg(name, grid.caption(0)));
}
