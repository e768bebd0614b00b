// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvapi/UnitTexts.h"

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
