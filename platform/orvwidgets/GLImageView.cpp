// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/GLImageView.h"

#include "platform/orvwidgets/ScaledPicture.h"
#include "platform/orvwidgets/ViewTransform.h"

#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include <cmath>

namespace {

constexpr double kKeyPan = 20.0; // view pixels
constexpr int kDefaultSide = 300;
constexpr int kSmallestSide = 100;

// A painter on a QOpenGLWidget takes the widget's own ratio of device pixels.
QSize deviceSize(const QWidget& widget)
{
    const double ratio = widget.devicePixelRatioF();
    return {static_cast<int>(std::lround(widget.width() * ratio)),
            static_cast<int>(std::lround(widget.height() * ratio))};
}

} // namespace

struct GLImageView::State
{
    orvwidgets::ScaledPicture m_picture;
    orvwidgets::ViewTransform m_transform;
    bool m_bSmooth = true;
    int m_nMenuItems = CopyItem | SaveItem | ZoomItem;
    bool m_bPanning = false;
    QPoint m_last;
    QPoint m_pixel{-1, -1}; // told last
};

GLImageView::GLImageView(QWidget* pParent, const char* name)
    : QOpenGLWidget(pParent), m_state(std::make_unique<State>())
{
    setObjectName(QString::fromLatin1(name));
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(tr("Image"));
}

GLImageView::~GLImageView() = default;

void GLImageView::setPicture(const QImage& picture)
{
    m_state->m_picture.setPicture(picture);
    update();
}

const QImage& GLImageView::picture() const
{
    return m_state->m_picture.picture();
}

void GLImageView::setSmooth(bool bSmooth)
{
    m_state->m_bSmooth = bSmooth;
    update();
}

bool GLImageView::isSmooth() const
{
    return m_state->m_bSmooth;
}

// A view that was never shown gets no event of its size.
void GLImageView::syncTransform() const
{
    m_state->m_transform.setPictureSize(contentSize());
    m_state->m_transform.setViewSize(contentArea());
    m_state->m_transform.setLeastFittedZoom(leastFittedZoom());
}

double GLImageView::leastFittedZoom() const
{
    return 0.0;
}

QSizeF GLImageView::contentSize() const
{
    return picture().size();
}

QSizeF GLImageView::contentArea() const
{
    return size();
}

double GLImageView::zoom() const
{
    syncTransform();
    return m_state->m_transform.zoom();
}

void GLImageView::setZoom(double dZoom)
{
    const QSizeF area = contentArea();
    setZoomAbout(dZoom, QPointF(area.width() / 2.0, area.height() / 2.0));
}

void GLImageView::setZoomAbout(double dZoom, const QPointF& about)
{
    syncTransform();
    m_state->m_transform.setZoom(dZoom, about);
    update();
}

void GLImageView::panBy(const QPointF& delta)
{
    syncTransform();
    m_state->m_transform.pan(delta);
    update();
}

void GLImageView::zoomIn()
{
    setZoom(zoom() * orvwidgets::ViewTransform::kWheelStep);
}

void GLImageView::zoomOut()
{
    setZoom(zoom() / orvwidgets::ViewTransform::kWheelStep);
}

void GLImageView::fit()
{
    syncTransform();
    m_state->m_transform.fit();
    update();
}

bool GLImageView::isFitted() const
{
    syncTransform();
    return m_state->m_transform.isFitted();
}

QRectF GLImageView::pictureRect() const
{
    syncTransform();
    return m_state->m_transform.pictureRect();
}

QPointF GLImageView::toPicture(const QPointF& view) const
{
    syncTransform();
    return m_state->m_transform.toPicture(view);
}

QPointF GLImageView::toView(const QPointF& picture) const
{
    syncTransform();
    return m_state->m_transform.toView(picture);
}

bool GLImageView::pixelAt(const QPointF& view, QPoint& pixel) const
{
    syncTransform();
    return m_state->m_transform.pixelAt(view, pixel);
}

QSize GLImageView::sizeHint() const
{
    return {kDefaultSide, kDefaultSide};
}

QSize GLImageView::minimumSizeHint() const
{
    return {kSmallestSide, kSmallestSide};
}

void GLImageView::setMenuItems(int nItems)
{
    m_state->m_nMenuItems = nItems;
}

int GLImageView::menuItems() const
{
    return m_state->m_nMenuItems;
}

void GLImageView::paintGL()
{
    QPainter painter(this);
    painter.fillRect(rect(), palette().color(QPalette::Window));
    paintScene(painter);
    if (hasFocus()) {
        paintFocus(painter);
    }
}

void GLImageView::paintFocus(QPainter& painter) const
{
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setPen(palette().color(QPalette::Highlight));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

QImage GLImageView::renderImage(bool bWhole) const
{
    QImage image(deviceSize(*this), QImage::Format_ARGB32_Premultiplied);
    if (image.isNull()) {
        return image;
    }
    syncTransform();
    const orvwidgets::ViewTransform shown = m_state->m_transform;
    if (bWhole) {
        m_state->m_transform.showWhole();
    }
    image.setDevicePixelRatio(devicePixelRatioF());
    image.fill(palette().color(QPalette::Window));
    QPainter painter(&image);
    paintScene(painter);
    painter.end();
    if (bWhole) {
        m_state->m_transform = shown;
    }
    return image;
}

void GLImageView::paintScene(QPainter& painter) const
{
    m_state->m_picture.draw(painter, pictureRect(), m_state->m_bSmooth);
    paintOverlay(painter);
}

void GLImageView::paintOverlay(QPainter& /*painter*/) const {}

void GLImageView::resizeEvent(QResizeEvent* pEvent)
{
    QOpenGLWidget::resizeEvent(pEvent);
    syncTransform();
    update();
}

void GLImageView::changeEvent(QEvent* pEvent)
{
    QOpenGLWidget::changeEvent(pEvent);
    if (pEvent->type() == QEvent::PaletteChange || pEvent->type() == QEvent::FontChange ||
        pEvent->type() == QEvent::EnabledChange) {
        update();
    }
}

void GLImageView::wheelEvent(QWheelEvent* pEvent)
{
    const int angle = pEvent->angleDelta().y();
    syncTransform();
    if (angle == 0 || m_state->m_transform.pictureSize().isEmpty()) {
        pEvent->ignore();
        return;
    }
    m_state->m_transform.zoomByWheel(angle, pEvent->position());
    update();
    tellPixel(pEvent->position());
    pEvent->accept();
}

void GLImageView::mousePressEvent(QMouseEvent* pEvent)
{
    if (pEvent->button() == Qt::MiddleButton) {
        m_state->m_bPanning = true;
        m_state->m_last = pEvent->pos();
        setCursor(Qt::ClosedHandCursor);
        pEvent->accept();
    }
}

void GLImageView::mouseMoveEvent(QMouseEvent* pEvent)
{
    // A release is lost when the view was disabled in between.
    m_state->m_bPanning = m_state->m_bPanning && (pEvent->buttons() & Qt::MiddleButton) != 0;
    if (m_state->m_bPanning) {
        panBy(pEvent->pos() - m_state->m_last);
        m_state->m_last = pEvent->pos();
    }
    tellPixel(pEvent->localPos());
}

void GLImageView::mouseReleaseEvent(QMouseEvent* pEvent)
{
    if (pEvent->button() == Qt::MiddleButton && m_state->m_bPanning) {
        m_state->m_bPanning = false;
        unsetCursor();
    }
}

void GLImageView::mouseDoubleClickEvent(QMouseEvent* pEvent)
{
    if (pEvent->button() == Qt::LeftButton) {
        fit();
    } else {
        mousePressEvent(pEvent);
    }
}

void GLImageView::leaveEvent(QEvent* pEvent)
{
    QOpenGLWidget::leaveEvent(pEvent);
    tellPixel(QPointF(-1.0, -1.0));
}

void GLImageView::tellPixel(const QPointF& view)
{
    QPoint pixel(-1, -1);
    if (QRectF(rect()).contains(view)) {
        pixelAt(view, pixel);
    }
    if (pixel != m_state->m_pixel) {
        m_state->m_pixel = pixel;
        Q_EMIT pixelUnderPointer(pixel.x(), pixel.y());
    }
}

void GLImageView::keyPressEvent(QKeyEvent* pEvent)
{
    switch (pEvent->key()) {
    case Qt::Key_Plus:
    case Qt::Key_Equal:
        zoomIn();
        return;
    case Qt::Key_Minus:
        zoomOut();
        return;
    case Qt::Key_0:
        fit();
        return;
    default:
        break;
    }
    QPointF delta;
    delta.rx() = pEvent->key() == Qt::Key_Left ? kKeyPan : pEvent->key() == Qt::Key_Right ? -kKeyPan : 0.0;
    delta.ry() = pEvent->key() == Qt::Key_Up ? kKeyPan : pEvent->key() == Qt::Key_Down ? -kKeyPan : 0.0;
    if (delta.isNull() || isFitted()) {
        QOpenGLWidget::keyPressEvent(pEvent);
        return;
    }
    panBy(delta);
}

void GLImageView::focusInEvent(QFocusEvent* pEvent)
{
    QOpenGLWidget::focusInEvent(pEvent);
    update();
}

void GLImageView::focusOutEvent(QFocusEvent* pEvent)
{
    QOpenGLWidget::focusOutEvent(pEvent);
    update();
}
