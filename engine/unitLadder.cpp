// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/unitLadder.h"

#include "host/orv_types.h"

int unitForImage(int nNativeUnit, bool bFluorescence, bool bTransillumination)
{
    if (nNativeUnit == DISPLAYUNIT_EFFICIENCY) {
        return DISPLAYUNIT_EFFICIENCY;
    }
    if (!bFluorescence) {
        return DISPLAYUNIT_RADIANCE;
    }
    if (!bTransillumination || nNativeUnit == DISPLAYUNIT_RADIANT_EFFICIENCY) {
        return DISPLAYUNIT_RADIANT_EFFICIENCY;
    }
    return DISPLAYUNIT_EFFICIENCY;
}

UnitStep nextUnit(int eUnit)
{
    switch (eUnit) {
    case DISPLAYUNIT_COUNTS:
        return {};
    case DISPLAYUNIT_RADIANCE:
        return {true, DISPLAYUNIT_COUNTS, "SpumKyvo: Will try the count unit!"};
    case DISPLAYUNIT_RADIANT_EFFICIENCY:
        return {true, DISPLAYUNIT_RADIANCE, "SpumKyvo: Will try the radiance unit!"};
    default:
        return {true, DISPLAYUNIT_RADIANT_EFFICIENCY, "SpumKyvo: Will try the radiance efficiency!"};
    }
}
