// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/isUnmixingTab.h"

#include "plugin/tabNames.h"

#include <QStringList>

bool isUnmixingTab(const QString& strTitle, bool bWithUnmixedImages)
{
    static const QStringList titles{"Sequence View", "3D View", tabNames::wizard, tabNames::composite,
                                    tabNames::console};
    return titles.contains(strTitle, Qt::CaseInsensitive) ||
           (bWithUnmixedImages && strTitle.compare(QLatin1String("Unmixed Images"), Qt::CaseInsensitive) == 0);
}
