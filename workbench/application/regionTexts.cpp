// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/regionTexts.h"

#include "platform/orvapi/ROIShape.h"
#include "platform/orvutils/NumberText.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int kDigits = 5;

// Behind the numbers of pixels, in the order of the titles.
QList<double> numbersOf(const tagROIStatistics& statistics)
{
    return {statistics.area,    statistics.mean,      statistics.minimum,
            statistics.maximum, statistics.deviation, statistics.sum};
}

template <typename Text>
QStringList cellsOf(const tagROIInfo& region, Text&& text)
{
    const tagROIStatistics& statistics = region.statistics;
    QStringList cells{region.name};
    for (const qint64 pixels : {statistics.pixels, statistics.invalidPixels}) {
        cells.append(statistics.isMeasured() ? QString::number(pixels) : QString());
    }
    for (const double number : numbersOf(statistics)) {
        cells.append(std::isfinite(number) ? text(number) : QString());
    }
    return cells;
}

QString line(QStringList fields)
{
    for (QString& field : fields) {
        field = field.simplified();
    }
    return fields.join(QLatin1Char('\t')) + QLatin1Char('\n');
}

} // namespace

namespace regionTexts {

QStringList titles()
{
    return {QStringLiteral("Region"),     QStringLiteral("Pixels"),    QStringLiteral("Invalid"),
            QStringLiteral("Area (cm²)"), QStringLiteral("Mean"),      QStringLiteral("Minimum"),
            QStringLiteral("Maximum"),    QStringLiteral("Deviation"), QStringLiteral("Sum")};
}

QStringList cells(const tagROIInfo& region, const QLocale& locale)
{
    QLocale plain = locale;
    plain.setNumberOptions(QLocale::OmitGroupSeparator);
    return cellsOf(region, [&plain](double number) { return plain.toString(number, 'g', kDigits); });
}

QString table(const QList<tagROIInfo>& regions)
{
    QString text = line(titles() << QStringLiteral("Unit") << QStringLiteral("Shape"));
    for (const tagROIInfo& region : regions) {
        text += line(cellsOf(region, [](double number) { return orv::shortestText(number); })
                     << region.statistics.unit << ROIShape::toText(region));
    }
    return text;
}

QString freeName(const QList<tagROIInfo>& regions)
{
    for (int number = 1;; ++number) {
        const QString name = QStringLiteral("ROI %1").arg(number);
        if (std::none_of(regions.cbegin(), regions.cend(),
                         [&name](const tagROIInfo& region) { return region.name == name; })) {
            return name;
        }
    }
}

} // namespace regionTexts
