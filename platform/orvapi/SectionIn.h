// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CPLClickInfo.h"

// The section of that key, made when missing.
inline CPLSection& sectionIn(CPLClickInfo& info, const QString& strKey)
{
    if (info[strKey] == nullptr) {
        const CPLSection section(strKey);
        info.addSection(&section);
    }
    return *info[strKey];
}
