// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvwidgets/PlotView.h"

#include <QMouseEvent>

namespace orv {

PlotView::PlotView(QWidget* pParent) : QChartView(pParent), m_band(QRubberBand::Rectangle, this)
{
    setFrameShape(QFrame::NoFrame);
    setRenderHint(QPainter::Antialiasing);
    setMouseTracking(true);
    // The marks of the chart react to nothing, and the view is no stop for the keyboard.
    setFocusPolicy(Qt::NoFocus);
}

void PlotView::mousePressEvent(QMouseEvent* pEvent)
{
    if (pEvent->button() != Qt::LeftButton) {
        pEvent->ignore();
        return;
    }
    m_origin = pEvent->pos();
    m_band.setGeometry(QRect(m_origin, QSize()));
    m_band.show();
}

void PlotView::mouseMoveEvent(QMouseEvent* pEvent)
{
    if (m_band.isVisible()) {
        m_band.setGeometry(QRect(m_origin, pEvent->pos()).normalized().intersected(rect()));
    } else {
        Q_EMIT pointed(pEvent->pos());
    }
}

void PlotView::mouseReleaseEvent(QMouseEvent* pEvent)
{
    if (pEvent->button() != Qt::LeftButton || !m_band.isVisible()) {
        return;
    }
    m_band.hide();
    const QRect drawn = QRect(m_origin, pEvent->pos()).normalized();
    // A click with a shaking hand is no rectangle.
    constexpr int smallest = 6;
    if (drawn.width() >= smallest && drawn.height() >= smallest) {
        Q_EMIT rectangleDrawn(drawn);
    }
}

void PlotView::mouseDoubleClickEvent(QMouseEvent*)
{
    m_band.hide();
    Q_EMIT doubleClicked();
}

void PlotView::resizeEvent(QResizeEvent* pEvent)
{
    QChartView::resizeEvent(pEvent);
    Q_EMIT resized();
}

void PlotView::leaveEvent(QEvent* pEvent)
{
    QChartView::leaveEvent(pEvent);
    Q_EMIT left();
}

} // namespace orv
