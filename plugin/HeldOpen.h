// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CORVUtilityFns.h"

// The host does not close while the user chooses a file.
class HeldOpen
{
public:
    HeldOpen() { CORVUtilityFns::setCanClose(false); }
    ~HeldOpen() { CORVUtilityFns::setCanClose(true); }
    HeldOpen(const HeldOpen&) = delete;
    HeldOpen& operator=(const HeldOpen&) = delete;
};
