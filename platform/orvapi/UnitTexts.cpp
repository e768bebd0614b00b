// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/UnitTexts.h"

namespace {

struct UnitTexts
{
    int unit;
    const char* text;
    const char* quantity;
};

constexpr UnitTexts units[] = {{DISPLAYUNIT_COUNTS, "Counts", "counts"},
                               {DISPLAYUNIT_RADIANCE, "Radiance", "p/s/cm²/sr"},
                               {DISPLAYUNIT_RADIANT_EFFICIENCY, "Radiant Efficiency", "(p/s/cm²/sr) / (µW/cm²)"},
                               {DISPLAYUNIT_EFFICIENCY, "Efficiency", "efficiency"}};

QString textOf(int nUnit, const char* UnitTexts::*pWhich)
{
    for (const UnitTexts& unit : units) {
        if (unit.unit == nUnit) {
            return QString::fromUtf8(unit.*pWhich);
        }
    }
    return QString();
}

} // namespace

QString displayUnitText(int nUnit)
{
    return textOf(nUnit, &UnitTexts::text);
}

QString displayUnitQuantity(int nUnit)
{
    return textOf(nUnit, &UnitTexts::quantity);
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
