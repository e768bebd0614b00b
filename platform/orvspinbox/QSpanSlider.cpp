// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/QSpanSlider.h"

#include "platform/orvspinbox/SpanHandle.h"
#include "platform/orvspinbox/spanGeometry.h"

#include <QEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>
#include <QSignalBlocker>

#include <algorithm>

using orv::SpanHandle;

QSpanSlider::QSpanSlider(QWidget* pParent) : QSpanSlider(Qt::Horizontal, pParent) {}

QSpanSlider::QSpanSlider(Qt::Orientation eOrientation, QWidget* pParent)
    : QWidget(pParent), m_pLowerHandle(new SpanHandle(this)), m_pUpperHandle(new SpanHandle(this)),
      m_pActive(m_pLowerHandle)
{
    m_pLowerHandle->setObjectName(QStringLiteral("lowerHandle"));
    m_pLowerHandle->setAccessibleName(tr("Lower end"));
    m_pUpperHandle->setObjectName(QStringLiteral("upperHandle"));
    m_pUpperHandle->setAccessibleName(tr("Upper end"));
    setFocusProxy(m_pLowerHandle);
    setTabOrder(m_pLowerHandle, m_pUpperHandle);
    setOrientation(eOrientation);
    connect(m_pLowerHandle, &QAbstractSlider::valueChanged, this, &QSpanSlider::setLowerValue);
    connect(m_pUpperHandle, &QAbstractSlider::valueChanged, this, &QSpanSlider::setUpperValue);
    apply(m_nLower, m_nUpper);
}

void QSpanSlider::setOrientation(Qt::Orientation eOrientation)
{
    m_eOrientation = eOrientation;
    m_pLowerHandle->setOrientation(eOrientation);
    m_pUpperHandle->setOrientation(eOrientation);
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Fixed, QSizePolicy::Slider);
    if (eOrientation == Qt::Vertical) {
        policy.transpose();
    }
    setSizePolicy(policy);
    updateGeometry();
    placeHandles();
}

QSize QSpanSlider::sizeHint() const
{
    const QSize size(120, SpanHandle::thickness + 4);
    return m_eOrientation == Qt::Horizontal ? size : size.transposed();
}

QSize QSpanSlider::minimumSizeHint() const
{
    const QSize size(60, SpanHandle::thickness + 4);
    return m_eOrientation == Qt::Horizontal ? size : size.transposed();
}

void QSpanSlider::setRange(int nMinimum, int nMaximum)
{
    m_nMinimum = nMinimum;
    m_nMaximum = std::max(nMinimum, nMaximum);
    apply(std::clamp(m_nLower, m_nMinimum, m_nMaximum), std::clamp(m_nUpper, m_nMinimum, m_nMaximum));
}

void QSpanSlider::setMinimum(int nMinimum)
{
    setRange(nMinimum, std::max(nMinimum, m_nMaximum));
}

void QSpanSlider::setMaximum(int nMaximum)
{
    setRange(std::min(m_nMinimum, nMaximum), nMaximum);
}

void QSpanSlider::setLowerValue(int nValue)
{
    apply(std::clamp(nValue, m_nMinimum, m_nUpper), m_nUpper);
}

void QSpanSlider::setUpperValue(int nValue)
{
    apply(m_nLower, std::clamp(nValue, m_nLower, m_nMaximum));
}

void QSpanSlider::setSpan(int nLower, int nUpper)
{
    apply(std::clamp(std::min(nLower, nUpper), m_nMinimum, m_nMaximum),
          std::clamp(std::max(nLower, nUpper), m_nMinimum, m_nMaximum));
}

void QSpanSlider::apply(int nLower, int nUpper)
{
    const bool bLowerChanged = nLower != m_nLower;
    const bool bUpperChanged = nUpper != m_nUpper;
    m_nLower = nLower;
    m_nUpper = nUpper;
    {
        // The handles tell of their own moves only. Assistive tools hear of these all the same.
        const QSignalBlocker lowerBlocker(m_pLowerHandle);
        const QSignalBlocker upperBlocker(m_pUpperHandle);
        m_pLowerHandle->setRange(m_nMinimum, m_nUpper);
        m_pUpperHandle->setRange(m_nLower, m_nMaximum);
        m_pLowerHandle->setValue(m_nLower);
        m_pUpperHandle->setValue(m_nUpper);
    }
    placeHandles();
    const QPointer<QSpanSlider> guard(this);
    if (bLowerChanged) {
        Q_EMIT lowerValueChanged(nLower);
    }
    if (guard && bUpperChanged) {
        Q_EMIT upperValueChanged(nUpper);
    }
}

// Upwards is where values grow; in a layout from right to left it is to the left.
bool QSpanSlider::isReversed() const
{
    return m_eOrientation == Qt::Vertical || layoutDirection() == Qt::RightToLeft;
}

// Each end has its handle outside of its place, so a handle's room is left at both sides.
int QSpanSlider::grooveLength() const
{
    return std::max(0, (m_eOrientation == Qt::Horizontal ? width() : height()) - 2 * SpanHandle::extent);
}

void QSpanSlider::placeHandles()
{
    const orv::SpanGeometry geometry{m_nMinimum, m_nMaximum, grooveLength(), isReversed()};
    const int nLower = geometry.pixelOf(m_nLower) + SpanHandle::extent;
    const int nUpper = geometry.pixelOf(m_nUpper) + SpanHandle::extent;
    // In a reversed slider of an empty range both ends are at pixel 0 as well.
    const int nBeforeLower = isReversed() ? nLower : nLower - SpanHandle::extent;
    const int nBehindUpper = isReversed() ? nUpper - SpanHandle::extent : nUpper;
    if (m_eOrientation == Qt::Horizontal) {
        const int nTop = (height() - SpanHandle::thickness) / 2;
        m_pLowerHandle->setGeometry(nBeforeLower, nTop, SpanHandle::extent, SpanHandle::thickness);
        m_pUpperHandle->setGeometry(nBehindUpper, nTop, SpanHandle::extent, SpanHandle::thickness);
    } else {
        const int nLeft = (width() - SpanHandle::thickness) / 2;
        m_pLowerHandle->setGeometry(nLeft, nBeforeLower, SpanHandle::thickness, SpanHandle::extent);
        m_pUpperHandle->setGeometry(nLeft, nBehindUpper, SpanHandle::thickness, SpanHandle::extent);
    }
    update();
}

int QSpanSlider::valueAt(const QPoint& place) const
{
    const orv::SpanGeometry geometry{m_nMinimum, m_nMaximum, grooveLength(), isReversed()};
    return geometry.valueAt((m_eOrientation == Qt::Horizontal ? place.x() : place.y()) - SpanHandle::extent);
}

SpanHandle* QSpanSlider::nearerHandle(const QPoint& place) const
{
    const orv::SpanGeometry geometry{m_nMinimum, m_nMaximum, grooveLength(), isReversed()};
    const int nPixel = (m_eOrientation == Qt::Horizontal ? place.x() : place.y()) - SpanHandle::extent;
    const bool bLower =
        orv::isLowerNearer(nPixel, geometry.pixelOf(m_nLower), geometry.pixelOf(m_nUpper), isReversed());
    return bLower ? m_pLowerHandle : m_pUpperHandle;
}

void QSpanSlider::drag(SpanHandle* pHandle, int nValue)
{
    if (pHandle == m_pLowerHandle) {
        setLowerValue(nValue);
    } else {
        setUpperValue(nValue);
    }
}

void QSpanSlider::mousePressEvent(QMouseEvent* pEvent)
{
    if (pEvent->button() != Qt::LeftButton) {
        pEvent->ignore();
        return;
    }
    m_pActive = nearerHandle(pEvent->pos());
    m_pActive->setFocus(Qt::MouseFocusReason);
    m_pActive->setSliderDown(true);
    drag(m_pActive, valueAt(pEvent->pos()));
}

void QSpanSlider::mouseMoveEvent(QMouseEvent* pEvent)
{
    if (m_pActive->isSliderDown()) {
        drag(m_pActive, valueAt(pEvent->pos()));
    }
}

void QSpanSlider::mouseReleaseEvent(QMouseEvent* pEvent)
{
    if (pEvent->button() == Qt::LeftButton) {
        m_pActive->setSliderDown(false);
        m_pActive->update();
    }
}

void QSpanSlider::keyPressEvent(QKeyEvent* pEvent)
{
    m_pActive->pressKey(pEvent);
}

void QSpanSlider::changeEvent(QEvent* pEvent)
{
    QWidget::changeEvent(pEvent);
    if (pEvent->type() == QEvent::LayoutDirectionChange) {
        placeHandles();
    }
    update();
}

void QSpanSlider::resizeEvent(QResizeEvent* pEvent)
{
    QWidget::resizeEvent(pEvent);
    placeHandles();
}

void QSpanSlider::paintEvent(QPaintEvent*)
{
    constexpr int thickness = 5;
    const bool bHorizontal = m_eOrientation == Qt::Horizontal;
    const QRect groove = bHorizontal ? QRect(SpanHandle::extent, (height() - thickness) / 2, grooveLength(), thickness)
                                     : QRect((width() - thickness) / 2, SpanHandle::extent, thickness, grooveLength());
    const QRect lower = m_pLowerHandle->geometry();
    const QRect upper = m_pUpperHandle->geometry();
    QRect span = groove;
    if (bHorizontal) {
        span.setLeft(std::min(lower.right(), upper.right()));
        span.setRight(std::max(lower.left(), upper.left()));
    } else {
        span.setTop(std::min(lower.bottom(), upper.bottom()));
        span.setBottom(std::max(lower.top(), upper.top()));
    }
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    QColor faint = palette().color(QPalette::WindowText);
    faint.setAlpha(70);
    painter.setBrush(faint);
    painter.drawRoundedRect(groove, 2.0, 2.0);
    painter.setBrush(palette().color(QPalette::Highlight));
    painter.drawRect(span);
}
