// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/regions/RoiMeasurement.h"

#include "host/CORVSequenceDataset.h"
#include "host/CROIManager.h"
#include "platform/orvapi/ClickInfoKeys.h"
#include "platform/orvapi/ClickInfoValues.h"
#include "platform/orvapi/ROIShape.h"
#include "platform/orvapi/ROIStatistics.h"
#include "platform/orvapi/validPixels.h"
#include "platform/orvutils/NumberText.h"
#include "services/basis/Failure.h"
#include "services/basis/UnitNames.h"
#include "services/basis/jsonNumber.h"
#include "services/results/ResultMaps.h"
#include "services/session/PixelSize.h"

#include <QJsonObject>
#include <QMap>

#include <algorithm>
#include <cmath>

namespace {

QString exactNumber(double dValue)
{
    return std::isfinite(dValue) ? orv::shortestText(dValue) : QString();
}

// The numbers behind the counts of pixels, in the order of the columns.
QList<double> numbersOf(const tagROIStatistics& statistics)
{
    return {statistics.area,    statistics.sum,     statistics.mean,
            statistics.minimum, statistics.maximum, statistics.deviation};
}

[[noreturn]] void refuseImage(const CORVDataset& dataset, tag_edisplayunit eUnit)
{
    const QString reason = dataset.unitUnavailableReason(eUnit);
    if (reason.isEmpty()) {
        throw Failure(QStringLiteral("the image %1 cannot be read").arg(dataset.getClickNumber()),
                      QStringLiteral("--verbose tells more"));
    }
    throw Failure(QStringLiteral("%1 cannot be had in %2: %3; try --unit counts")
                      .arg(dataset.getClickNumber(), UnitNames::text(eUnit), reason));
}

} // namespace

void RoiMeasurement::measureImages(CORVSequenceDataset& sequence, tag_edisplayunit eUnit, const Step& step)
{
    m_strUnit = UnitNames::text(eUnit);
    CILImage valid;
    QString error;
    if (!readValidPixels(sequence, &valid, &error)) {
        throw Failure(error);
    }
    const auto datasets = sequence.getDatasets();
    const bool scan = sequence.isTransillumination;
    for (int i = 0; i < datasets.size(); ++i) {
        step(static_cast<double>(i) / datasets.size());
        CORVDataset& dataset = *datasets[i];
        if (!dataset.hasROIData()) {
            continue;
        }
        if (dataset.roiManager()->measure(eUnit) != ESTATUS_SUCCESS) {
            refuseImage(dataset, eUnit);
        }
        const QString time = clickText(dataset.clickInfo, ClickKeys::kClickNumber, ClickKeys::kKyVoTime);
        for (const tagROIInfo& region : dataset.roiManager()->regions()) {
            m_rows.append({-1, dataset.getClickNumber(), dataset.getExcitationFilter(), dataset.getEmissionFilter(),
                           time, scan ? dataset.getFLXspot() : QString(), scan ? dataset.getFLYspot() : QString(),
                           region});
        }
    }
}

void RoiMeasurement::measureMaps(const CORVSequenceDataset& sequence, const QList<tagROIInfo>& regions,
                                 const QString& strFolder, const Step& step)
{
    const ResultMaps maps(strFolder);
    const std::optional<double> pixelSize = pixelSizeOfSequence(sequence);
    const int result = m_results.size();
    m_results.append(maps.label());
    m_resultUnits.append(maps.unit());
    for (int i = 0; i < maps.count(); ++i) {
        step(static_cast<double>(i) / maps.count());
        const CILImage map = maps.read(i);
        for (tagROIInfo region : regions) {
            region.statistics = measureROI(region, map, maps.unit(), pixelSize);
            m_rows.append({result, maps.name(i), QString(), QString(), QString(), QString(), QString(), region});
        }
    }
}

QString RoiMeasurement::sourceOf(const Row& row) const
{
    return row.result < 0 ? QStringLiteral("sequence") : m_results[row.result];
}

// Columns that would be empty throughout are left out.
TextTable RoiMeasurement::tableOf(int nResult) const
{
    const bool maps = nResult >= 0;
    const auto any = [&](auto&& test) {
        return std::any_of(m_rows.begin(), m_rows.end(),
                           [&](const Row& row) { return row.result == nResult && test(row); });
    };
    const bool timed = any([](const Row& row) { return !row.time.isEmpty(); });
    const bool filtered = !maps && !timed;
    const bool scanned = any([](const Row& row) { return !row.spotX.isEmpty(); });
    const bool invalid = any([](const Row& row) { return row.region.statistics.invalidPixels > 0; });
    const bool sized = any([](const Row& row) { return std::isfinite(row.region.statistics.area); });
    QStringList header{maps ? QStringLiteral("map") : QStringLiteral("image")};
    if (filtered) {
        header << QStringLiteral("excitation") << QStringLiteral("emission");
    }
    if (scanned) {
        header << QStringLiteral("spot");
    }
    if (timed) {
        header << QStringLiteral("time [s]");
    }
    header << QStringLiteral("region") << QStringLiteral("pixels");
    if (invalid) {
        header << QStringLiteral("invalid");
    }
    if (sized) {
        header << QStringLiteral("area [cm²]");
    }
    header << QStringLiteral("sum") << QStringLiteral("mean") << QStringLiteral("minimum") << QStringLiteral("maximum")
           << QStringLiteral("deviation");
    TextTable table(header);
    for (const Row& row : m_rows) {
        if (row.result != nResult) {
            continue;
        }
        const tagROIStatistics& statistics = row.region.statistics;
        QStringList texts{row.image};
        if (filtered) {
            texts << row.excitation << row.emission;
        }
        if (scanned) {
            texts << QStringLiteral("%1, %2").arg(row.spotX, row.spotY);
        }
        if (timed) {
            texts << row.time;
        }
        texts << row.region.name << QString::number(statistics.pixels);
        if (invalid) {
            texts << QString::number(statistics.invalidPixels);
        }
        const QList<double> numbers = numbersOf(statistics);
        for (const double number : sized ? numbers : numbers.mid(1)) {
            texts << TextTable::number(number, 5);
        }
        table.addRow(texts);
    }
    return table;
}

QString RoiMeasurement::toText() const
{
    QStringList parts;
    const TextTable images = tableOf(-1);
    if (images.rowCount() > 0) {
        parts.append(QStringLiteral("images in %1\n\n%2").arg(m_strUnit, images.toText()));
    }
    for (int i = 0; i < m_results.size(); ++i) {
        parts.append(QStringLiteral("maps of %1 in %2\n\n%3").arg(m_results[i], m_resultUnits[i], tableOf(i).toText()));
    }
    return parts.join(QLatin1Char('\n'));
}

QString RoiMeasurement::toCsv() const
{
    TextTable table({QStringLiteral("source"), QStringLiteral("image"), QStringLiteral("excitation"),
                     QStringLiteral("emission"), QStringLiteral("spot_x"), QStringLiteral("spot_y"),
                     QStringLiteral("time_s"), QStringLiteral("region"), QStringLiteral("shape"),
                     QStringLiteral("unit"), QStringLiteral("pixels"), QStringLiteral("invalid_pixels"),
                     QStringLiteral("area_cm2"), QStringLiteral("sum"), QStringLiteral("mean"),
                     QStringLiteral("minimum"), QStringLiteral("maximum"), QStringLiteral("standard_deviation")});
    for (const Row& row : m_rows) {
        const tagROIStatistics& statistics = row.region.statistics;
        QStringList texts{sourceOf(row),
                          row.image,
                          row.excitation,
                          row.emission,
                          row.spotX,
                          row.spotY,
                          row.time,
                          row.region.name,
                          ROIShape::toText(row.region),
                          statistics.unit,
                          QString::number(statistics.pixels),
                          QString::number(statistics.invalidPixels)};
        for (const double number : numbersOf(statistics)) {
            texts.append(exactNumber(number));
        }
        table.addRow(texts);
    }
    return table.toCsv();
}

QJsonArray RoiMeasurement::toJson() const
{
    QJsonArray rows;
    for (const Row& row : m_rows) {
        const tagROIStatistics& statistics = row.region.statistics;
        QJsonObject object{{"source", sourceOf(row)},
                           {"image", row.image},
                           {"region", row.region.name},
                           {"shape", ROIShape::toText(row.region)},
                           {"unit", statistics.unit},
                           {"pixels", statistics.pixels},
                           {"invalidPixels", statistics.invalidPixels},
                           {"areaCm2", jsonNumber(statistics.area)},
                           {"sum", jsonNumber(statistics.sum)},
                           {"mean", jsonNumber(statistics.mean)},
                           {"minimum", jsonNumber(statistics.minimum)},
                           {"maximum", jsonNumber(statistics.maximum)},
                           {"standardDeviation", jsonNumber(statistics.deviation)}};
        if (!row.excitation.isEmpty()) {
            object.insert(QStringLiteral("excitation"), row.excitation);
        }
        if (!row.emission.isEmpty()) {
            object.insert(QStringLiteral("emission"), row.emission);
        }
        if (!row.spotX.isEmpty()) {
            object.insert(QStringLiteral("spot"), QStringLiteral("%1, %2").arg(row.spotX, row.spotY));
        }
        if (!row.time.isEmpty()) {
            object.insert(QStringLiteral("time"), jsonNumberIn(row.time));
        }
        rows.append(object);
    }
    return rows;
}

QStringList RoiMeasurement::warnings() const
{
    QStringList names;
    QMap<QString, int> counts;
    QMap<QString, QString> first;
    for (const Row& row : m_rows) {
        if (row.region.statistics.pixels > 0) {
            continue;
        }
        if (counts[row.region.name]++ == 0) {
            names.append(row.region.name);
            first[row.region.name] = row.image;
        }
    }
    QStringList lines;
    for (const QString& name : names) {
        const int more = counts[name] - 1;
        const QString others = more > 0 ? QStringLiteral(" and %1 more").arg(more) : QString();
        lines.append(
            QStringLiteral("the region \"%1\" holds no pixel with a value of %2%3").arg(name, first[name], others));
    }
    return lines;
}
