// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/RegionEditor.h"

#include "platform/orvapi/ROIShape.h"
#include "platform/orvwidgets/viewOverlays.h"

#include <QFont>
#include <QFontMetricsF>
#include <QPainter>
#include <QPolygonF>

#include <algorithm>
#include <cmath>

using orvwidgets::CropPart;

namespace {

bool isBox(const tagROIInfo& region)
{
    return region.shape == ROISHAPE_RECTANGLE || region.shape == ROISHAPE_ELLIPSE;
}

// Of parts of an image in its place in the view.
QRectF placed(const QRectF& parts, const QRectF& shown)
{
    return {shown.left() + parts.left() * shown.width(), shown.top() + parts.top() * shown.height(),
            parts.width() * shown.width(), parts.height() * shown.height()};
}

// First and last edge on whole pixels, one pixel apart at least.
void snap(double dFirst, double dLast, int nSide, double* pFirst, double* pLength)
{
    const double first = std::clamp(std::round(dFirst), 0.0, nSide - 1.0);
    *pFirst = first;
    *pLength = std::max(1.0, std::round(dLast) - first);
}

} // namespace

void RegionEditor::setImage(const QSize& size, double dBinning)
{
    m_size = size;
    m_dBinning = dBinning > 0.0 ? dBinning : 1.0;
    choose(m_nChosen);
}

void RegionEditor::setRegions(const QList<tagROIInfo>& regions)
{
    const QString name = m_nChosen >= 0 ? m_regions.at(m_nChosen).name : QString();
    m_regions = regions;
    const auto found = std::find_if(m_regions.cbegin(), m_regions.cend(),
                                    [&name](const tagROIInfo& region) { return region.name == name; });
    choose(found == m_regions.cend() ? -1 : static_cast<int>(found - m_regions.cbegin()));
}

void RegionEditor::choose(int nRegion)
{
    m_nChosen = nRegion >= 0 && nRegion < m_regions.size() ? nRegion : -1;
    m_bNew = false;
    m_crop.set(m_nChosen >= 0 && isEditable(m_regions.at(m_nChosen))
                   ? std::optional<QRectF>(parts(m_regions.at(m_nChosen)))
                   : std::nullopt);
}

QRectF RegionEditor::parts(const tagROIInfo& region) const
{
    const ROIShape::Bounds bounds = ROIShape::boundsOf(region);
    return QRectF(QPointF(bounds.left / sensor().width(), bounds.top / sensor().height()),
                  QPointF(bounds.right / sensor().width(), bounds.bottom / sensor().height()));
}

bool RegionEditor::isEditable(const tagROIInfo& region) const
{
    return isBox(region) && !m_size.isEmpty() && QRectF(0.0, 0.0, 1.0, 1.0).contains(parts(region));
}

// The one that was made last lies above.
int RegionEditor::regionAt(const QPointF& point, const QRectF& shown) const
{
    for (int i = m_regions.size() - 1; i >= 0; --i) {
        if (!m_size.isEmpty() && placed(parts(m_regions.at(i)), shown).contains(point)) {
            return i;
        }
    }
    return -1;
}

CropPart RegionEditor::partAt(const QPointF& point, const QRectF& shown) const
{
    const CropPart part = m_crop.partAt(point, shown);
    if (part != CropPart::Outside || m_eTool != Tool::None) {
        return part;
    }
    return regionAt(point, shown) >= 0 ? CropPart::Inside : CropPart::Outside;
}

bool RegionEditor::press(const QPointF& point, const QRectF& shown)
{
    if (m_size.isEmpty()) {
        return false;
    }
    CropPart part = m_crop.partAt(point, shown);
    if (part == CropPart::Outside && m_eTool == Tool::None) {
        choose(regionAt(point, shown));
        if (m_nChosen < 0) {
            return false;
        }
        part = m_crop.partAt(point, shown);
        if (part == CropPart::Outside) {
            return true; // chosen, but no drag changes it
        }
    } else if (part == CropPart::Outside) {
        if (!shown.contains(point)) {
            return false;
        }
        m_crop.set(std::nullopt);
        m_bNew = true;
    }
    m_bMoving = part == CropPart::Inside;
    m_crop.press(point, shown);
    return true;
}

void RegionEditor::dragTo(const QPointF& point, const QRectF& shown)
{
    m_crop.dragTo(point, shown);
}

tagROIInfo RegionEditor::drawn() const
{
    tagROIInfo region;
    if (m_bNew) {
        region.shape = m_eTool == Tool::Ellipse ? ROISHAPE_ELLIPSE : ROISHAPE_RECTANGLE;
    } else {
        region = m_regions.at(m_nChosen);
    }
    const QRectF pixels = m_crop.rect(QRectF(QPointF(), QSizeF(m_size)));
    if (m_bMoving) {
        // A size that is not one of whole pixels stays.
        const QRectF before = parts(region);
        region.x += std::round(pixels.left() - before.left() * m_size.width()) * m_dBinning;
        region.y += std::round(pixels.top() - before.top() * m_size.height()) * m_dBinning;
        return region;
    }
    snap(pixels.left(), pixels.right(), m_size.width(), &region.x, &region.width);
    snap(pixels.top(), pixels.bottom(), m_size.height(), &region.y, &region.height);
    for (double* pValue : {&region.x, &region.y, &region.width, &region.height}) {
        *pValue *= m_dBinning;
    }
    return region;
}

std::optional<tagROIInfo> RegionEditor::release(const QRectF& shown)
{
    if (!m_crop.isDragging()) {
        return std::nullopt;
    }
    if (!m_crop.release(shown)) {
        choose(m_nChosen);
        return std::nullopt;
    }
    return drawn();
}

void RegionEditor::giveUp()
{
    choose(m_nChosen);
}

std::optional<tagROIInfo> RegionEditor::moved(const QPoint& pixels) const
{
    if (m_nChosen < 0 || !isEditable(m_regions.at(m_nChosen))) {
        return std::nullopt;
    }
    tagROIInfo region = m_regions.at(m_nChosen);
    region.x += pixels.x() * m_dBinning;
    region.y += pixels.y() * m_dBinning;
    return isEditable(region) ? std::optional<tagROIInfo>(region) : std::nullopt;
}

void RegionEditor::paint(QPainter& painter, const QRectF& shown) const
{
    if (m_size.isEmpty()) {
        return;
    }
    const bool dragging = m_crop.isDragging() && !m_crop.isEmpty();
    for (int i = 0; i < m_regions.size(); ++i) {
        const bool chosen = i == m_nChosen;
        const tagROIInfo region = chosen && dragging && !m_bNew ? drawn() : m_regions.at(i);
        const QRectF place = placed(parts(region), shown);
        if (!isBox(region)) {
            QPolygonF outline;
            for (const tagROIInfo::Point& point : region.points) {
                outline << QPointF(shown.left() + point.x / sensor().width() * shown.width(),
                                   shown.top() + point.y / sensor().height() * shown.height());
            }
            orvwidgets::paintOutline(painter, outline);
        } else if (chosen) {
            orvwidgets::paintCrop(painter, place, region.shape == ROISHAPE_ELLIPSE);
        } else {
            orvwidgets::paintOutline(painter, place, region.shape == ROISHAPE_ELLIPSE);
        }
        QFont font = painter.font();
        font.setBold(chosen);
        // Above the region, or in it where that is beyond the view.
        const double baseline = std::max(place.top() - 4.0, QFontMetricsF(font).ascent() + 2.0);
        orvwidgets::paintOutlinedText(painter, QPointF(place.left() + 2.0, baseline), region.name.simplified(), font,
                                      Qt::white);
    }
    if (dragging && m_bNew) {
        orvwidgets::paintCrop(painter, placed(parts(drawn()), shown), m_eTool == Tool::Ellipse);
    }
}
