// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/basis/UnitNames.h"

#include "engine/runTexts.h"
#include "host/UnitTexts.h"

QStringList UnitNames::options()
{
    return {QStringLiteral("counts"), QStringLiteral("radiance"), QStringLiteral("radiant-efficiency"),
            QStringLiteral("efficiency")};
}

int UnitNames::fromText(const QString& strText)
{
    const QString wanted = strText.trimmed().toLower().replace(QLatin1Char(' '), QLatin1Char('-'));
    return options().indexOf(wanted);
}

QString UnitNames::text(int nUnit)
{
    return unitText(nUnit);
}

QString UnitNames::quantity(int nUnit)
{
    return displayUnitQuantity(nUnit);
}
