// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/DatasetView.h"

#include "platform/orvimage/ColorBar.h"
#include "platform/orvwidgets/viewIcons.h"
#include "platform/orvwidgets/viewOverlays.h"

#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QTextOption>

#include <algorithm>

using orvwidgets::CropPart;

namespace {

constexpr int kBarFont = 14;
constexpr int kLeastSide = 512; // of a picture that is copied or saved
constexpr int kFastKey = 10;

} // namespace

DatasetView::DatasetView(QWidget* pParent) : CORVQImageView(pParent, "m_pDatasetView")
{
    setMinimumSize(120, 120);
}

void DatasetView::showPicture(const QImage& picture, const QSize& image)
{
    m_image = image;
    m_strMessage.clear();
    m_strNotice.clear();
    setImage(picture);
    setAccessibleDescription(tr("%1 x %2 pixels").arg(image.width()).arg(image.height()));
    update();
}

void DatasetView::showMessage(const QString& strText)
{
    m_image = QSize();
    m_strMessage = strText;
    m_strNotice.clear();
    setImage(QImage());
    setAccessibleDescription(strText);
    update();
}

void DatasetView::showNotice(const QString& strText)
{
    m_strNotice = strText;
    setAccessibleDescription(strText);
    update();
}

void DatasetView::setBar(const CILPalette& palette, const DisplayRange& range, const QString& strQuantity)
{
    m_palette = palette;
    m_range = range;
    m_strQuantity = strQuantity;
}

void DatasetView::showActualSize()
{
    setZoom(1.0 / devicePixelRatioF());
}

QSizeF DatasetView::contentSize() const
{
    return m_image;
}

QImage DatasetView::pictureToKeep() const
{
    const int side = std::max(picture().width(), picture().height());
    if (side == 0) {
        return picture();
    }
    // A small one by whole pixels, so that it can be looked at beside its bar.
    const int scale = (kLeastSide + side - 1) / side;
    const QImage kept = picture().scaled(picture().width() * scale, picture().height() * scale);
    if (m_range.isEmpty()) {
        return kept;
    }
    orvimage::ColorBarOptions options;
    options.fontPixels = std::max(kBarFont, kept.height() / 48);
    options.unitLines = QStringList{m_strQuantity};
    return orvimage::withColorBar(kept, m_palette, m_range.minimum, m_range.maximum, options);
}

void DatasetView::fillContextMenu(QMenu& menu)
{
    CORVQImageView::fillContextMenu(menu);
    QAction* pActual =
        menu.addAction(orvwidgets::viewIcon(orvwidgets::ViewIcon::Whole, palette().color(QPalette::Text)),
                       tr("&Actual Size"), this, &DatasetView::showActualSize);
    pActual->setEnabled(!picture().isNull());
}

// Reduced, a picture shows averages; enlarged, what was measured.
void DatasetView::paintGL()
{
    const double pixels = picture().isNull() || m_image.isEmpty()
                              ? 1.0
                              : zoom() * devicePixelRatioF() * m_image.width() / picture().width();
    const bool smooth = pixels < 1.0;
    if (smooth != isSmooth()) {
        setSmooth(smooth);
    }
    CORVQImageView::paintGL();
}

void DatasetView::paintOverlay(QPainter& painter) const
{
    CORVQImageView::paintOverlay(painter);
    if (m_strMessage.isEmpty()) {
        m_regions.paint(painter, pictureRect());
        if (!m_strNotice.isEmpty()) {
            const QFontMetricsF metrics(font());
            const QPointF start(width() - metrics.horizontalAdvance(m_strNotice), height() + metrics.capHeight());
            orvwidgets::paintOutlinedText(painter, start / 2.0, m_strNotice, font(), Qt::white);
        }
    } else {
        painter.setPen(palette().color(QPalette::WindowText));
        const int margin = 24;
        QTextOption wrapped(Qt::AlignCenter);
        wrapped.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
        painter.drawText(QRectF(rect().adjusted(margin, margin, -margin, -margin)), m_strMessage, wrapped);
    }
}

void DatasetView::mousePressEvent(QMouseEvent* pEvent)
{
    if (pEvent->button() == Qt::LeftButton && !m_image.isEmpty()) {
        const int before = m_regions.chosen();
        const bool meant = m_regions.press(pEvent->localPos(), pictureRect());
        if (before != m_regions.chosen()) {
            Q_EMIT regionChosen(m_regions.chosen());
        }
        update();
        if (meant) {
            pEvent->accept();
            return;
        }
    }
    if (pEvent->button() == Qt::LeftButton && !isFitted()) {
        m_bDragged = true;
        m_last = pEvent->pos();
        setCursor(Qt::ClosedHandCursor);
        pEvent->accept();
        return;
    }
    CORVQImageView::mousePressEvent(pEvent);
}

void DatasetView::mouseMoveEvent(QMouseEvent* pEvent)
{
    // A release is lost when the view was disabled in between.
    if (m_bDragged && (pEvent->buttons() & Qt::LeftButton) == 0) {
        m_bDragged = false;
        unsetCursor();
    }
    if (m_bDragged) {
        panBy(pEvent->pos() - m_last);
        m_last = pEvent->pos();
    }
    if (m_regions.isDragging()) {
        if ((pEvent->buttons() & Qt::LeftButton) == 0) {
            m_regions.cancelDrag();
        } else {
            m_regions.dragTo(pEvent->localPos(), pictureRect());
        }
        update();
    } else if (m_regions.isDrawing()) {
        m_regions.hover(pEvent->localPos(), pictureRect());
        update();
    }
    CORVQImageView::mouseMoveEvent(pEvent);
    if (pEvent->buttons() == Qt::NoButton) {
        showCursorAt(pEvent->localPos());
    }
}

void DatasetView::showCursorAt(const QPointF& point)
{
    const CropPart ePart = m_image.isEmpty() ? CropPart::Outside : m_regions.partAt(point, pictureRect());
    if (ePart == CropPart::Outside && m_regions.tool() == RegionEditor::Tool::None) {
        unsetCursor();
    } else {
        setCursor(orvwidgets::cursorOver(ePart));
    }
}

// While a tool is chosen two short drags in one place draw. The first click of two has set the last corner already.
void DatasetView::mouseDoubleClickEvent(QMouseEvent* pEvent)
{
    if (pEvent->button() == Qt::LeftButton && m_regions.isDrawing()) {
        closePolygon();
        return;
    }
    if (pEvent->button() == Qt::LeftButton &&
        (m_regions.tool() != RegionEditor::Tool::None || m_regions.chosen() >= 0)) {
        mousePressEvent(pEvent);
        return;
    }
    CORVQImageView::mouseDoubleClickEvent(pEvent);
}

bool DatasetView::event(QEvent* pEvent)
{
    // While something is drawn or dragged undo is of that, whatever shortcut the window has.
    if (pEvent->type() == QEvent::ShortcutOverride && (m_regions.isDrawing() || m_regions.isDragging()) &&
        static_cast<QKeyEvent*>(pEvent)->matches(QKeySequence::Undo)) {
        pEvent->accept();
        return true;
    }
    return CORVQImageView::event(pEvent);
}

void DatasetView::keyPressEvent(QKeyEvent* pEvent)
{
    if (!regionKey(*pEvent)) {
        CORVQImageView::keyPressEvent(pEvent);
    }
}

void DatasetView::closePolygon()
{
    QString reason;
    const std::optional<tagROIInfo> region = m_regions.close(&reason);
    tell(-1, region, reason);
    update();
}

void DatasetView::tell(int nRegion, const std::optional<tagROIInfo>& region, const QString& strReason)
{
    if (region) {
        Q_EMIT regionEdited(nRegion, *region, false);
    } else if (!strReason.isEmpty()) {
        Q_EMIT drawingRefused(strReason);
    }
}

bool DatasetView::polygonKey(const QKeyEvent& event)
{
    if (event.matches(QKeySequence::Undo)) {
        m_regions.takeBackCorner();
        update();
        return true;
    }
    switch (event.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        closePolygon();
        return true;
    case Qt::Key_Backspace:
        m_regions.takeBackCorner();
        break;
    case Qt::Key_Escape:
        m_regions.giveUp();
        break;
    default:
        return false;
    }
    update();
    return true;
}

bool DatasetView::regionKey(const QKeyEvent& event)
{
    if (m_regions.isDrawing()) {
        return polygonKey(event);
    }
    const int chosen = m_regions.chosen();
    if (m_regions.isDragging()) {
        const bool gaveUp = event.key() == Qt::Key_Escape || event.matches(QKeySequence::Undo);
        if (gaveUp) {
            m_regions.giveUp();
            update();
        }
        return gaveUp;
    }
    if (chosen < 0) {
        return false;
    }
    if (event.key() == Qt::Key_Escape) {
        m_regions.choose(-1);
        Q_EMIT regionChosen(-1);
        update();
        return true;
    }
    if (event.key() == Qt::Key_Delete || event.key() == Qt::Key_Backspace) {
        Q_EMIT regionRemovalWanted(chosen);
        return true;
    }
    const int step = event.modifiers().testFlag(Qt::ShiftModifier) ? kFastKey : 1;
    const QPoint delta(event.key() == Qt::Key_Left    ? -step
                       : event.key() == Qt::Key_Right ? step
                                                      : 0,
                       event.key() == Qt::Key_Up     ? -step
                       : event.key() == Qt::Key_Down ? step
                                                     : 0);
    if (delta.isNull()) {
        return false;
    }
    if (const std::optional<tagROIInfo> region = m_regions.moved(delta)) {
        Q_EMIT regionEdited(chosen, *region, event.isAutoRepeat());
    }
    return true;
}

void DatasetView::mouseReleaseEvent(QMouseEvent* pEvent)
{
    if (pEvent->button() == Qt::LeftButton && m_regions.isDragging()) {
        m_regions.dragTo(pEvent->localPos(), pictureRect());
        QString reason;
        const std::optional<tagROIInfo> region = m_regions.release(pictureRect(), &reason);
        tell(m_regions.isNew() ? -1 : m_regions.chosen(), region, reason);
        update();
    }
    if (pEvent->button() == Qt::LeftButton && m_bDragged) {
        m_bDragged = false;
        unsetCursor();
    }
    CORVQImageView::mouseReleaseEvent(pEvent);
}
