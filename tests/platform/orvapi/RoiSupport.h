// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CROIManager.h"
#include "platform/orvapi/ROISection.h"
#include "platform/orvapi/ROIShape.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <cmath>

// Regions of interest for tests.
namespace roisupport {

inline tagROIInfo regionFrom(const QString& strShape, const QString& strName = QStringLiteral("R"))
{
    tagROIInfo region;
    QString error;
    EXPECT_TRUE(ROIShape::fromText(strShape, &region, &error)) << qPrintable(strShape + ": " + error);
    region.name = strName;
    return region;
}

// Everything of a region as text; equal texts, equal regions.
inline QString describe(const tagROIInfo& region)
{
    const tagROIStatistics& s = region.statistics;
    QStringList parts{region.name, ROIShape::toText(region), s.unit, QString::number(s.pixels),
                      QString::number(s.invalidPixels)};
    for (const double number : {s.area, s.sum, s.mean, s.minimum, s.maximum, s.deviation}) {
        parts.append(std::isnan(number) ? QStringLiteral("-") : QString::number(number, 'g', 17));
    }
    for (const auto& entry : region.extra) {
        parts.append(entry.first + '=' + entry.second);
    }
    return parts.join('|');
}

inline QStringList describe(const QList<tagROIInfo>& regions)
{
    QStringList list;
    for (const auto& region : regions) {
        list.append(describe(region));
    }
    return list;
}

inline rc::Gen<double> anyCoordinate()
{
    return rc::gen::oneOf(rc::gen::map(rc::gen::inRange(-1000000, 1000000), [](int n) { return n / 7.0; }),
                          rc::gen::map(rc::gen::inRange(-100, 100), [](int n) { return n * 1e7; }),
                          rc::gen::map(rc::gen::inRange(0, 4096), [](int n) { return 0.5 * n; }));
}

inline rc::Gen<tagROIInfo> anyShape()
{
    return rc::gen::suchThat(
        rc::gen::map(rc::gen::tuple(rc::gen::inRange(0, 4), rc::gen::container<std::vector<double>>(4, anyCoordinate()),
                                    rc::gen::container<std::vector<std::pair<double, double>>>(
                                        rc::gen::pair(anyCoordinate(), anyCoordinate()))),
                     [](const std::tuple<int, std::vector<double>, std::vector<std::pair<double, double>>>& parts) {
                         tagROIInfo region;
                         region.shape = static_cast<tag_eroishape>(std::get<0>(parts));
                         if (region.shape == ROISHAPE_POLYGON || region.shape == ROISHAPE_FREEHAND) {
                             for (const auto& [x, y] : std::get<2>(parts)) {
                                 region.points.append({x, y});
                             }
                             region.points.append({0.5, 0.5});
                             region.points.append({3.25, 0.5});
                             region.points.append({3.25, 7.0});
                             return region;
                         }
                         const auto& numbers = std::get<1>(parts);
                         region.x = numbers[0];
                         region.y = numbers[1];
                         region.width = std::abs(numbers[2]) + 1.0 / 3.0;
                         region.height = std::abs(numbers[3]) + 1.0 / 3.0;
                         return region;
                     }),
        [](const tagROIInfo& region) { return ROIShape::reasonAgainst(region).isEmpty(); });
}

inline rc::Gen<QString> anyText()
{
    static const std::vector<ushort> awkward = {' ',  ',',  '"',  '\'', ':', ';', '\\',   '%',    '1',    '2',
                                                '[',  ']',  '#',  '=',  '/', '<', '&',    0xe4,   0xfc,   0xdf,
                                                0xa0, '\t', '\n', '-',  '.', 'x', 0x4e00, 0xd83d, 0xde00, 0x2028};
    return rc::gen::map(rc::gen::container<std::vector<ushort>>(
                            rc::gen::oneOf(rc::gen::elementOf(awkward), rc::gen::inRange<ushort>(0x20, 0x7f))),
                        [](const std::vector<ushort>& units) {
                            return QString::fromUtf16(units.data(), static_cast<int>(units.size()));
                        });
}

inline rc::Gen<tagROIStatistics> anyStatistics()
{
    const auto number = rc::gen::map(rc::gen::arbitrary<double>(), [](double v) { return v / 3.0; });
    return rc::gen::map(rc::gen::tuple(rc::gen::arbitrary<bool>(), rc::gen::inRange(0, 1 << 30),
                                       rc::gen::container<std::vector<double>>(6, number)),
                        [](const std::tuple<bool, int, std::vector<double>>& parts) {
                            tagROIStatistics statistics;
                            if (!std::get<0>(parts)) {
                                return statistics;
                            }
                            statistics.unit = QStringLiteral("Radiant Efficiency");
                            statistics.pixels = std::get<1>(parts);
                            statistics.invalidPixels = statistics.pixels / 3;
                            const auto& numbers = std::get<2>(parts);
                            statistics.sum = numbers[0];
                            if (statistics.pixels == 0) {
                                return statistics;
                            }
                            statistics.mean = numbers[1];
                            statistics.minimum = numbers[2];
                            statistics.maximum = numbers[3];
                            statistics.deviation = numbers[4];
                            if (statistics.pixels % 2 == 0) {
                                statistics.area = numbers[5];
                            }
                            return statistics;
                        });
}

// Regions with names of their own.
inline rc::Gen<QList<tagROIInfo>> anyRegions()
{
    using Parts = std::vector<std::tuple<tagROIInfo, QString, tagROIStatistics>>;
    return rc::gen::map(
        rc::gen::scale(0.3, rc::gen::container<Parts>(rc::gen::tuple(anyShape(), anyText(), anyStatistics()))),
        [](const Parts& parts) {
            QList<tagROIInfo> regions;
            QStringList names;
            for (const auto& [shape, text, statistics] : parts) {
                tagROIInfo region = shape;
                const QString name = text.trimmed();
                region.name = ROISection::reasonAgainstName(name).isEmpty() ? name : QStringLiteral("plain");
                region.name = ROISection::freeName(region.name, [&](const QString& s) { return names.contains(s); });
                region.statistics = statistics;
                names.append(region.name);
                regions.append(region);
            }
            return regions;
        });
}

} // namespace roisupport
