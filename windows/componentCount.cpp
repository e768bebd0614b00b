// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/componentCount.h"

#include <algorithm>

int componentCount(int nProbes, bool bTissue, bool bFood)
{
    return nProbes + (bTissue ? 1 : 0) + (bFood ? 1 : 0);
}

int componentLimit(int nImages)
{
    return std::min(nImages, kMaxComponents);
}

bool isComponentCountValid(int n, int nImages)
{
    return kMinComponents <= n && n <= componentLimit(nImages);
}

bool canAddComponent(int n, int nImages)
{
    return n < componentLimit(nImages);
}

QString componentCountWarning(int n, int nImages)
{
    if (isComponentCountValid(n, nImages)) {
        return QString();
    }
    if (nImages == kMinComponents) {
        return QStringLiteral("Please select 2 components to unmix!");
    }
    return QStringLiteral("Please select 2-%1 components to unmix!").arg(componentLimit(nImages));
}
