// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CORVDataset.h"

// The process's limit of units, for as long as one command needs it: the next one starts without.
class UnitLimit
{
public:
    UnitLimit() = default;
    ~UnitLimit() { CORVDataset::setUnitLimit(DISPLAYUNIT_EFFICIENCY); }
    UnitLimit(const UnitLimit&) = delete;
    UnitLimit& operator=(const UnitLimit&) = delete;

    // A number below 0 sets none.
    void set(int nUnit)
    {
        if (nUnit >= 0) {
            CORVDataset::setUnitLimit(static_cast<tag_edisplayunit>(nUnit));
        }
    }
};
