// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/rowNames.h"

#include <algorithm>

namespace {

const char* const kUnmixed = "UMX";
const char* const kTissue = "TissueAF";

} // namespace

int namedRowCount(const QStringList& rows)
{
    return static_cast<int>(std::count_if(rows.begin(), rows.end(),
                                          [](const QString& row) { return !row.startsWith(QLatin1String(kUnmixed)); }));
}

QString nextRowName(const QStringList& rows)
{
    return QLatin1String(kUnmixed) + QString::number(rows.size() - namedRowCount(rows) + 1);
}

QStringList startingRows(const QStringList& probes, bool bCherenkov)
{
    QStringList rows{QLatin1String(kTissue)};
    for (QString name : probes) {
        if (bCherenkov) {
            name.remove(QStringLiteral("RAD-"));
        }
        rows << name.trimmed();
    }
    return rows;
}

bool isBackgroundName(const QString& strName)
{
    return strName.compare(QLatin1String(kTissue), Qt::CaseInsensitive) == 0;
}
