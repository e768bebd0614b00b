// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/compositeReadOut.h"

#include "host/UnitTexts.h"
#include "host/orv_types.h"
#include "windows/compositePicture.h"

#include <QRect>
#include <QSize>

#include <algorithm>
#include <limits>

namespace {

QSize sizeOf(const CILImage& image)
{
    return {static_cast<int>(image.m_lWidth), static_cast<int>(image.m_lHeight)};
}

// The pixel of an image that was brought to `shown`.
std::optional<QPoint> pixelBefore(const QPoint& pixel, const QSize& shown, const QSize& image)
{
    if (shown.isEmpty() || !QRect(QPoint(0, 0), shown).contains(pixel)) {
        return std::nullopt;
    }
    const auto before = [](int nAt, int nShown, int nImage) {
        return static_cast<int>(static_cast<long long>(nAt) * nImage / nShown);
    };
    return QPoint(before(pixel.x(), shown.width(), image.width()), before(pixel.y(), shown.height(), image.height()));
}

// NaN outside the mask. Of a place that comes twice the later pixel is seen.
double valueOfMap(const CompositeMaps& maps, int nSpot, int nRow, const QPoint& pixel)
{
    long long nColumn = static_cast<long long>(pixel.y()) * maps.width + pixel.x();
    if (!maps.pixelIndices.empty()) {
        const auto found = std::find(maps.pixelIndices.rbegin(), maps.pixelIndices.rend(), nColumn);
        if (found == maps.pixelIndices.rend()) {
            return std::numeric_limits<double>::quiet_NaN();
        }
        nColumn = maps.pixelIndices.rend() - found - 1;
    }
    return maps.data[nRow][nSpot * maps.pixelsPerSpot() + nColumn];
}

} // namespace

std::optional<ReadOut> compositeReadOut(const CompositeMaps& maps, int nSpot, const CILImage& background, int nRow,
                                        const QString& strLabel, int nUnit, const QPoint& pixel)
{
    if (nRow < 0) {
        return std::nullopt;
    }
    const QSize frame = compositeFrame(maps, background);
    const bool bBackground = nRow >= maps.data.num_rows();
    const QSize image = bBackground ? sizeOf(background) : QSize(maps.width, maps.height);
    const QSize shown = bBackground ? frame : image.scaled(frame, Qt::KeepAspectRatio);
    const std::optional<QPoint> own = image.isEmpty() ? std::nullopt : pixelBefore(pixel, shown, image);
    if (!own) {
        return std::nullopt;
    }
    ReadOut found;
    found.image = strLabel;
    found.pixel = *own;
    found.value = bBackground
                      ? background.value(static_cast<std::size_t>(own->y()) * static_cast<std::size_t>(image.width()) +
                                         static_cast<std::size_t>(own->x()))
                      : valueOfMap(maps, nSpot, nRow, *own);
    found.quantity = displayUnitQuantity(bBackground ? DISPLAYUNIT_COUNTS : nUnit);
    return found;
}
