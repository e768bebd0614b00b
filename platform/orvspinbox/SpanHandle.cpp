// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvspinbox/SpanHandle.h"

#include "host/QSpanSlider.h"

#include <QMouseEvent>
#include <QPainter>

namespace orv {

SpanHandle::SpanHandle(QSpanSlider* pSlider) : QAbstractSlider(pSlider), m_pSlider(pSlider)
{
    setFocusPolicy(Qt::StrongFocus);
    setSingleStep(1);
    setPageStep(10);
    setAttribute(Qt::WA_Hover);
}

void SpanHandle::focusInEvent(QFocusEvent* pEvent)
{
    m_pSlider->m_pActive = this;
    QAbstractSlider::focusInEvent(pEvent);
    update();
}

void SpanHandle::focusOutEvent(QFocusEvent* pEvent)
{
    QAbstractSlider::focusOutEvent(pEvent);
    update();
}

void SpanHandle::mousePressEvent(QMouseEvent* pEvent)
{
    if (pEvent->button() != Qt::LeftButton) {
        pEvent->ignore();
        return;
    }
    // This end's place lies at the inner edge of the handle of the lower end, and so on; the distance to it is kept.
    const bool bLower = this == m_pSlider->m_pLowerHandle;
    const bool bInnerIsLast = bLower != m_pSlider->isReversed();
    const QPoint inner = bInnerIsLast ? QPoint(width(), height()) : QPoint(0, 0);
    m_grip = pEvent->pos() - inner;
    m_pSlider->m_pActive = this;
    setSliderDown(true);
    update();
}

void SpanHandle::mouseMoveEvent(QMouseEvent* pEvent)
{
    if (isSliderDown()) {
        m_pSlider->drag(this, m_pSlider->valueAt(mapToParent(pEvent->pos()) - m_grip));
    }
}

void SpanHandle::mouseReleaseEvent(QMouseEvent* pEvent)
{
    if (pEvent->button() == Qt::LeftButton) {
        setSliderDown(false);
        update();
    }
}

void SpanHandle::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor face = palette().color(QPalette::Button);
    if (isSliderDown()) {
        face = palette().color(QPalette::Highlight);
    } else if (underMouse() && isEnabled()) {
        face = palette().color(QPalette::Midlight);
    }
    const bool bFocus = hasFocus();
    // The colour of a button's text stands off from the window in light and in dark palettes.
    painter.setPen(bFocus ? QPen(palette().color(QPalette::Highlight), 2.0)
                          : QPen(palette().color(QPalette::ButtonText), 1.0));
    painter.setBrush(face);
    const double edge = bFocus ? 1.0 : 0.5;
    painter.drawRoundedRect(QRectF(rect()).adjusted(edge, edge, -edge, -edge), 2.5, 2.5);
}

} // namespace orv
