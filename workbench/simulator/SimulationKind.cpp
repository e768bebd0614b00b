// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/simulator/SimulationKind.h"

QStringList kindNames()
{
    return {QStringLiteral("epi"), QStringLiteral("luminescent"), QStringLiteral("transillumination"),
            QStringLiteral("temporal"), QStringLiteral("cherenkov")};
}

QString kindName(SimulationKind eKind)
{
    return kindNames().value(static_cast<int>(eKind));
}

bool kindOfName(const QString& strName, SimulationKind* pKind)
{
    const int index = kindNames().indexOf(strName);
    if (index < 0) {
        return false;
    }
    *pKind = static_cast<SimulationKind>(index);
    return true;
}

bool isFluorescent(SimulationKind eKind)
{
    return eKind != SimulationKind::Luminescent && eKind != SimulationKind::Cherenkov;
}
