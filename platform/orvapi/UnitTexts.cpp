// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/UnitTexts.h"

QString displayUnitText(int nUnit)
{
    switch (nUnit) {
    case DISPLAYUNIT_COUNTS:
        return QStringLiteral("Counts");
    case DISPLAYUNIT_RADIANCE:
        return QStringLiteral("Radiance");
    case DISPLAYUNIT_RADIANT_EFFICIENCY:
        return QStringLiteral("Radiant Efficiency");
    case DISPLAYUNIT_EFFICIENCY:
        return QStringLiteral("Efficiency");
    default:
        return QString();
    }
}

QString displayUnitQuantity(int nUnit)
{
    switch (nUnit) {
    case DISPLAYUNIT_COUNTS:
        return QStringLiteral("counts");
    case DISPLAYUNIT_RADIANCE:
        return QStringLiteral("p/s/cm²/sr");
    case DISPLAYUNIT_RADIANT_EFFICIENCY:
        return QStringLiteral("(p/s/cm²/sr) / (µW/cm²)");
    case DISPLAYUNIT_EFFICIENCY:
        return QStringLiteral("efficiency");
    default:
        return QString();
    }
}

int displayUnitOf(const QString& strText)
{
    const QString text = strText.trimmed();
    for (int unit = DISPLAYUNIT_COUNTS; unit <= DISPLAYUNIT_EFFICIENCY; ++unit) {
        if (text == QString::number(unit) || text.compare(displayUnitText(unit), Qt::CaseInsensitive) == 0) {
            return unit;
        }
    }
    return -1;
}
