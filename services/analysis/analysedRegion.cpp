// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/analysis/analysedRegion.h"

#include "engine/CORVSpumKyvo.h"
#include "host/CORVDataset.h"
#include "host/CORVSequenceDataset.h"
#include "host/CROIManager.h"
#include "platform/orvapi/ROIShape.h"
#include "services/basis/Failure.h"
#include "services/basis/ImageExtent.h"

#include <QStringList>

#include <optional>

namespace {

const QString storedKind = QStringLiteral("roi:");

QString imagesText(const CORVSpumKyvo& engine)
{
    const QSize extent = analysedExtent(engine);
    return QStringLiteral("the images of %1 x %2 pixels at binning %3")
        .arg(extent.width())
        .arg(extent.height())
        .arg(engine.m_nBinning);
}

[[noreturn]] void failForAbsent(const QString& strOption, const QString& strName, QStringList names)
{
    names.removeDuplicates();
    throw Failure(QStringLiteral("%1: no image has a region of interest \"%2\"").arg(strOption, strName),
                  names.isEmpty() ? QStringLiteral("\"spum roi SEQ add\" and the windows of images make some")
                                  : QStringLiteral("the regions are: \"%1\"").arg(names.join(QLatin1String("\", \""))));
}

// Regions are kept image by image; one drawn in a window is in that of its image alone.
tagROIInfo storedRegion(const QString& strOption, const QString& strName, const CORVSpumKyvo& engine)
{
    const CORVSequenceDataset* pSequence = CORVSequenceDataset::getSequenceDataset(engine.m_strSeqId);
    std::optional<tagROIInfo> found;
    QStringList names;
    for (auto* pDataset : pSequence != nullptr ? pSequence->getDatasets() : QList<CORVDataset*>()) {
        for (const tagROIInfo& region : pDataset->roiManager()->regions()) {
            names.append(region.name);
            if (region.name != strName) {
                continue;
            }
            if (found && ROIShape::toText(*found) != ROIShape::toText(region)) {
                throw Failure(
                    QStringLiteral("%1: images have different regions of interest \"%2\"").arg(strOption, strName),
                    QStringLiteral("\"spum roi SEQ list\" tells them; give one of them another name"));
            }
            found = region;
        }
    }
    if (!found) {
        failForAbsent(strOption, strName, names);
    }
    return *found;
}

void scale(tagROIInfo& region, double dFactor)
{
    for (double* pValue : {&region.x, &region.y, &region.width, &region.height}) {
        *pValue *= dFactor;
    }
    for (tagROIInfo::Point& point : region.points) {
        point.x *= dFactor;
        point.y *= dFactor;
    }
}

} // namespace

QString reasonAgainstRegionText(const QString& strText)
{
    if (strText.startsWith(storedKind)) {
        return strText.size() > storedKind.size() ? QString() : QStringLiteral("the region's name is missing");
    }
    tagROIInfo region;
    QString reason;
    return ROIShape::fromText(strText, &region, &reason) ? QString() : reason;
}

tagROIInfo analysedRegion(const QString& strOption, const QString& strText, const CORVSpumKyvo& engine)
{
    if (strText.startsWith(storedKind)) {
        return storedRegion(strOption, strText.mid(storedKind.size()), engine);
    }
    tagROIInfo region;
    QString reason;
    if (!ROIShape::fromText(strText, &region, &reason)) {
        throw Failure(QStringLiteral("%1: \"%2\": %3").arg(strOption, strText, reason), Failure::Kind::BadRequest);
    }
    const ROIShape::Bounds bounds = ROIShape::boundsOf(region);
    const QSize extent = analysedExtent(engine);
    if (bounds.left < 0.0 || bounds.top < 0.0 || bounds.right > extent.width() || bounds.bottom > extent.height()) {
        throw Failure(QStringLiteral("%1: the shape %2 leaves %3").arg(strOption, strText, imagesText(engine)));
    }
    scale(region, engine.m_nBinning);
    return region;
}

std::vector<int> pixelsOfRegion(const QString& strOption, const tagROIInfo& region, const CORVSpumKyvo& engine)
{
    const QSize extent = analysedExtent(engine);
    std::vector<int> pixels;
    ROIShape::visitRuns(region, extent.width(), extent.height(), engine.m_nBinning,
                        [&](long row, long first, long end) {
                            for (long column = first; column < end; ++column) {
                                pixels.push_back(static_cast<int>(row * engine.m_nWidth + column));
                            }
                        });
    if (pixels.empty()) {
        throw Failure(QStringLiteral("%1: the region holds no pixel of %2").arg(strOption, imagesText(engine)));
    }
    return pixels;
}
