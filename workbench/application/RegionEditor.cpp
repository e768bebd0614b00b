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

bool isOutlineTool(RegionEditor::Tool eTool)
{
    return eTool == RegionEditor::Tool::Polygon || eTool == RegionEditor::Tool::FreeHand;
}

// A hundredth of a pixel of the sensor is as fine as anybody draws, and short to write.
double rounded(double dPixels, double dBinning, int nSide)
{
    return std::clamp(std::round(100.0 * dPixels * dBinning) / 100.0, 0.0, nSide * dBinning);
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
    const double binning = dBinning > 0.0 ? dBinning : 1.0;
    if (size == m_size && binning == m_dBinning) {
        return;
    }
    m_size = size;
    m_dBinning = binning;
    choose(m_nChosen);
}

void RegionEditor::setRegions(const QList<tagROIInfo>& regions)
{
    const QString name = m_nChosen >= 0 ? m_regions.at(m_nChosen).name : QString();
    m_regions = regions;
    if (m_sketch.isActive()) {
        m_nChosen = placeOf(name);
    } else {
        choose(placeOf(name));
    }
}

int RegionEditor::placeOf(const QString& strName) const
{
    const auto found = std::find_if(m_regions.cbegin(), m_regions.cend(),
                                    [&strName](const tagROIInfo& region) { return region.name == strName; });
    return found == m_regions.cend() ? -1 : static_cast<int>(found - m_regions.cbegin());
}

void RegionEditor::setTool(Tool eTool)
{
    if (eTool != m_eTool && m_sketch.isActive()) {
        giveUp();
    }
    m_eTool = eTool;
}

void RegionEditor::choose(int nRegion)
{
    m_nChosen = nRegion >= 0 && nRegion < m_regions.size() ? nRegion : -1;
    m_bNew = false;
    m_sketch.giveUp();
    m_grip.giveUp();
    m_crop.set(isChosenEditable() && isBox(m_regions.at(m_nChosen))
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
    return !m_size.isEmpty() && QRectF(0.0, 0.0, 1.0, 1.0).contains(parts(region));
}

// The one that was made last lies above.
int RegionEditor::regionAt(const QPointF& point, const QRectF& shown) const
{
    if (m_size.isEmpty()) {
        return -1;
    }
    for (int i = m_regions.size() - 1; i >= 0; --i) {
        const tagROIInfo& region = m_regions.at(i);
        int corner = -1;
        if (isBox(region) ? placed(parts(region), shown).contains(point)
                          : OutlineGrip::isOn(OutlineGrip::placed(region, sensor(), shown), false, point, &corner)) {
            return i;
        }
    }
    return -1;
}

CropPart RegionEditor::partAt(const QPointF& point, const QRectF& shown) const
{
    if (m_sketch.isActive()) {
        return CropPart::Outside;
    }
    int corner = -1;
    if (isChosenEditable() && !isBox(m_regions.at(m_nChosen))) {
        const tagROIInfo& region = m_regions.at(m_nChosen);
        if (OutlineGrip::isOn(OutlineGrip::placed(region, sensor(), shown), OutlineGrip::hasHandles(region), point,
                              &corner)) {
            return CropPart::Inside;
        }
    }
    const CropPart part = m_crop.partAt(point, shown);
    if (part != CropPart::Outside || m_eTool != Tool::None) {
        return part;
    }
    return regionAt(point, shown) >= 0 ? CropPart::Inside : CropPart::Outside;
}

bool RegionEditor::grip(const QPointF& point, const QRectF& shown)
{
    if (isChosenEditable() && !isBox(m_regions.at(m_nChosen))) {
        const bool held = m_grip.press(m_regions.at(m_nChosen), point, shown, image());
        m_bNew = m_bNew && !held;
        return held;
    }
    const CropPart part = m_crop.partAt(point, shown);
    if (part == CropPart::Outside) {
        return false;
    }
    m_bMoving = part == CropPart::Inside;
    m_crop.press(point, shown);
    return true;
}

void RegionEditor::begin(const QPointF& point, const QRectF& shown)
{
    m_crop.set(std::nullopt);
    m_bNew = true;
    m_bMoving = false;
    if (isOutlineTool(m_eTool)) {
        m_sketch.begin(m_eTool == Tool::Polygon ? ROISHAPE_POLYGON : ROISHAPE_FREEHAND, m_size);
        m_sketch.press(point, shown);
    } else {
        m_crop.press(point, shown);
    }
}

bool RegionEditor::press(const QPointF& point, const QRectF& shown)
{
    if (m_size.isEmpty() || shown.isEmpty()) {
        return false;
    }
    if (m_sketch.isActive()) {
        m_sketch.press(point, shown);
        return true;
    }
    if (grip(point, shown)) {
        return true;
    }
    if (m_eTool == Tool::None) {
        choose(regionAt(point, shown));
        grip(point, shown); // one that no drag changes is chosen all the same
        return m_nChosen >= 0;
    }
    if (!shown.contains(point)) {
        return false;
    }
    begin(point, shown);
    return true;
}

void RegionEditor::dragTo(const QPointF& point, const QRectF& shown)
{
    m_crop.dragTo(point, shown);
    m_grip.dragTo(point);
    m_sketch.dragTo(point, shown);
}

tagROIInfo RegionEditor::drawn(const QRectF& shown) const
{
    return m_grip.isHeld() ? m_grip.applied(m_regions.at(m_nChosen), shown, image()) : drawnBox();
}

tagROIInfo RegionEditor::drawnBox() const
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

tagROIInfo RegionEditor::sketched() const
{
    tagROIInfo region;
    region.shape = m_sketch.shape();
    for (const tagROIInfo::Point& point : m_sketch.points()) {
        if (region.shape == ROISHAPE_POLYGON) {
            region.points.append({point.x * m_dBinning, point.y * m_dBinning});
        } else {
            region.points.append(
                {rounded(point.x, m_dBinning, m_size.width()), rounded(point.y, m_dBinning, m_size.height())});
        }
    }
    return region;
}

QString RegionEditor::reasonAgainst(const tagROIInfo& region) const
{
    const QString reason = ROIShape::reasonAgainst(region);
    if (!reason.isEmpty()) {
        return reason;
    }
    return ROIShape::pixelCount(region, m_size.width(), m_size.height(), m_dBinning) > 0
               ? QString()
               : QStringLiteral("the centre of no pixel lies inside");
}

std::optional<tagROIInfo> RegionEditor::close(QString* pReason)
{
    const tagROIInfo region = sketched();
    *pReason = reasonAgainst(region);
    if (!pReason->isEmpty()) {
        return std::nullopt;
    }
    m_sketch.giveUp();
    return region;
}

std::optional<tagROIInfo> RegionEditor::release(const QRectF& shown, QString* pReason)
{
    pReason->clear();
    if (m_sketch.isActive()) {
        if (!m_sketch.release()) {
            return std::nullopt;
        }
        std::optional<tagROIInfo> region = close(pReason);
        if (!region && !isDrawing()) {
            giveUp();
        }
        return region;
    }
    if (m_grip.isHeld()) {
        const tagROIInfo region = drawn(shown);
        const bool changed = ROIShape::toText(region) != ROIShape::toText(m_regions.at(m_nChosen));
        if (m_grip.release() && changed) {
            *pReason = reasonAgainst(region);
        }
        giveUp();
        return changed && pReason->isEmpty() ? std::optional<tagROIInfo>(region) : std::nullopt;
    }
    if (!m_crop.isDragging()) {
        return std::nullopt;
    }
    if (!m_crop.release(shown)) {
        choose(m_nChosen);
        return std::nullopt;
    }
    return drawnBox();
}

void RegionEditor::cancelDrag()
{
    if (isDrawing()) {
        m_sketch.release();
    } else {
        giveUp();
    }
}

void RegionEditor::giveUp()
{
    choose(m_nChosen);
}

void RegionEditor::takeBackCorner()
{
    m_sketch.takeBack();
    if (!m_sketch.isActive()) {
        giveUp();
    }
}

std::optional<tagROIInfo> RegionEditor::moved(const QPoint& pixels) const
{
    if (!isChosenEditable()) {
        return std::nullopt;
    }
    tagROIInfo region = m_regions.at(m_nChosen);
    if (isBox(region)) {
        region.x += pixels.x() * m_dBinning;
        region.y += pixels.y() * m_dBinning;
        return isEditable(region) ? std::optional<tagROIInfo>(region) : std::nullopt;
    }
    const QString before = ROIShape::toText(region);
    region = OutlineGrip::shifted(region, pixels, image());
    return ROIShape::toText(region) != before ? std::optional<tagROIInfo>(region) : std::nullopt;
}

void RegionEditor::paintRegion(QPainter& painter, const QRectF& shown, const tagROIInfo& region, bool bChosen) const
{
    const QRectF place = placed(parts(region), shown);
    if (!isBox(region)) {
        const QPolygonF outline = OutlineGrip::placed(region, sensor(), shown);
        orvwidgets::paintOutline(painter, outline);
        if (bChosen && isEditable(region) && OutlineGrip::hasHandles(region)) {
            orvwidgets::paintHandles(painter, outline);
        } else if (bChosen) {
            orvwidgets::paintFrame(painter, place);
        }
    } else if (bChosen && isEditable(region)) {
        orvwidgets::paintCrop(painter, place, region.shape == ROISHAPE_ELLIPSE);
    } else {
        orvwidgets::paintOutline(painter, place, region.shape == ROISHAPE_ELLIPSE);
    }
    QFont font = painter.font();
    font.setBold(bChosen);
    // Above the region, or in it where that is beyond the view.
    const double baseline = std::max(place.top() - 4.0, QFontMetricsF(font).ascent() + 2.0);
    orvwidgets::paintOutlinedText(painter, QPointF(place.left() + 2.0, baseline), region.name.simplified(), font,
                                  Qt::white);
}

void RegionEditor::paint(QPainter& painter, const QRectF& shown) const
{
    if (m_size.isEmpty()) {
        return;
    }
    const bool dragging = m_grip.isHeld() || (m_crop.isDragging() && !m_crop.isEmpty());
    for (int i = 0; i < m_regions.size(); ++i) {
        const bool chosen = i == m_nChosen && !m_sketch.isActive();
        paintRegion(painter, shown, chosen && dragging && !m_bNew ? drawn(shown) : m_regions.at(i), chosen);
    }
    if (dragging && m_bNew) {
        orvwidgets::paintCrop(painter, placed(parts(drawnBox()), shown), m_eTool == Tool::Ellipse);
    }
    m_sketch.paint(painter, shown);
}
