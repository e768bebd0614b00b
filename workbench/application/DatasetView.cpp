// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/DatasetView.h"

#include "platform/orvimage/ColorBar.h"
#include "platform/orvwidgets/viewIcons.h"

#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QTextOption>

#include <algorithm>

namespace {

constexpr int kBarFont = 14;
constexpr int kLeastSide = 512; // of a picture that is copied or saved

} // namespace

DatasetView::DatasetView(QWidget* pParent) : CORVQImageView(pParent, "m_pDatasetView")
{
    setMinimumSize(160, 160);
}

void DatasetView::showPicture(const QImage& picture, const QSize& image)
{
    m_image = image;
    m_strMessage.clear();
    setImage(picture);
    setAccessibleDescription(tr("%1 x %2 pixels").arg(image.width()).arg(image.height()));
    update();
}

void DatasetView::showMessage(const QString& strText)
{
    m_image = QSize();
    m_strMessage = strText;
    setImage(QImage());
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
    if (!m_strMessage.isEmpty()) {
        painter.setPen(palette().color(QPalette::WindowText));
        const int margin = 24;
        QTextOption wrapped(Qt::AlignCenter);
        wrapped.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
        painter.drawText(QRectF(rect().adjusted(margin, margin, -margin, -margin)), m_strMessage, wrapped);
    }
}

void DatasetView::mousePressEvent(QMouseEvent* pEvent)
{
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
    CORVQImageView::mouseMoveEvent(pEvent);
}

void DatasetView::mouseReleaseEvent(QMouseEvent* pEvent)
{
    if (pEvent->button() == Qt::LeftButton && m_bDragged) {
        m_bDragged = false;
        unsetCursor();
    }
    CORVQImageView::mouseReleaseEvent(pEvent);
}
