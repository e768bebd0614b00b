// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// The unit in which an image is analysed: efficiency when the data are in it already, radiance for luminescence,
// radiant efficiency for fluorescence excited from above, and for fluorescence excited from below radiant efficiency
// when the data prefer it, else efficiency.
int unitForImage(int nNativeUnit, bool bFluorescence, bool bTransillumination);

// The next unit to try when images cannot be had in one.
struct UnitStep
{
    bool possible = false; // nothing stands below counts
    int unit = 0;
    QString strMessage; // what to tell at warning level
};
UnitStep nextUnit(int eUnit);
