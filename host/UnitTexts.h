// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/orv_types.h"

#include <QString>

// The unit as click infos name it: "Counts", "Radiance", "Radiant Efficiency", "Efficiency"; empty for another number.
QString displayUnitText(int nUnit);
// What the numbers are, for a scale or a read-out: "counts", "p/s/cm²/sr"; empty for another number.
QString displayUnitQuantity(int nUnit);
// The unit that such a text, in any case, or its number names; -1 for none.
int displayUnitOf(const QString& strText);
