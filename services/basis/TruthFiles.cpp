// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/basis/TruthFiles.h"

QString truthUnitFolder(tag_edisplayunit eUnit)
{
    switch (eUnit) {
    case DISPLAYUNIT_COUNTS:
        return QStringLiteral("counts");
    case DISPLAYUNIT_RADIANCE:
        return QStringLiteral("radiance");
    case DISPLAYUNIT_RADIANT_EFFICIENCY:
        return QStringLiteral("radiant-efficiency");
    case DISPLAYUNIT_EFFICIENCY:
        return QStringLiteral("efficiency");
    }
    return QString();
}

QString truthDecayFolder(tag_edisplayunit eUnit)
{
    return truthUnitFolder(eUnit) + QStringLiteral("-decay-corrected");
}

QString truthMapFile(const QString& strComponent, int nSpot)
{
    QString file = truthMapFile(strComponent);
    return file.insert(file.lastIndexOf(QLatin1Char('.')), QStringLiteral("_spot%1").arg(nSpot + 1));
}

QString truthMapFile(const QString& strComponent)
{
    QString name = strComponent;
    for (QChar& c : name) {
        if (!c.isLetterOrNumber() && !QStringLiteral(" ._+-()").contains(c)) {
            c = QLatin1Char('_');
        }
    }
    return name + QStringLiteral(".tif");
}
