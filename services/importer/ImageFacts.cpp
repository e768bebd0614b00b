// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/importer/ImageFacts.h"

#include "host/UnitTexts.h"

#include <QDateTime>
#include <QLocale>

#include <cmath>

std::optional<double> ImageFacts::positive(const QString& strText)
{
    bool bNumber = false;
    const double value = strText.trimmed().toDouble(&bNumber);
    return bNumber && std::isfinite(value) && value > 0.0 ? std::optional<double>(value) : std::nullopt;
}

QString ImageFacts::instant(const QString& strText)
{
    QDateTime instant = QDateTime::fromString(strText.trimmed(), Qt::ISODateWithMs);
    if (!instant.isValid()) {
        return QString();
    }
    if (instant.timeSpec() == Qt::LocalTime) {
        instant.setTimeSpec(Qt::UTC);
    }
    return QLocale::c().toString(instant.toUTC(), QStringLiteral("yyyy-MM-ddTHH:mm:ss.zzz"));
}

QString ImageFacts::unitName(const QString& strText)
{
    const int unit = displayUnitOf(strText);
    return unit > DISPLAYUNIT_COUNTS ? displayUnitText(unit) : QString();
}
