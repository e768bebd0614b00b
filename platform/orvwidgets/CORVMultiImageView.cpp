// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVMultiImageView.h"

#include "host/CILImage.h"
#include "host/CORVPreference.h"
#include "host/S3DViewSettings.h"
#include "platform/orvwidgets/MultiImageState.h"
#include "platform/orvwidgets/tileLabel.h"
#include "platform/orvwidgets/viewOverlays.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>
#include <QWheelEvent>

#include <algorithm>

namespace {

constexpr int kPaintTime = 60;       // milliseconds that a painting of the screen may spend on making pictures
constexpr double kLeastTile = 56.0;  // view pixels of a tile where spots are in rows
constexpr int kRowsInSight = 4;      // of spots
constexpr double kWheelScroll = 0.5; // view pixels by an eighth of a degree
constexpr double kScrollMark = 4.0;  // view pixels
constexpr double kLabelMargin = 4.0;
constexpr double kLeastLabelledHeight = 2.5; // font heights of a tile that shows its label

} // namespace

CORVMultiImageView::CORVMultiImageView(QWidget* pParent, const char* name)
    : GLImageView(pParent, name), m_state(std::make_unique<State>())
{
    setAccessibleName(tr("Images"));
    setWhatsThis(
        tr("A double click opens an image; so does Return on the one chosen with the arrow keys. The wheel zooms, "
           "the middle button moves the images, 0 shows all."));
    updateFontByPreference();
}

CORVMultiImageView::~CORVMultiImageView() = default;

void CORVMultiImageView::addImage(CILImage* pImage, bool bFrame, const QString& strLabel, int nSmooth)
{
    if (pImage == nullptr) {
        return;
    }
    Tile tile{orvwidgets::TilePicture(*pImage)};
    tile.m_strLabel = strLabel;
    tile.m_bFrame = bFrame;
    tile.m_bSmooth = nSmooth != 0;
    m_state->m_tiles.push_back(std::move(tile));
    m_state->m_bGridKnown = false;
    update();
}

void CORVMultiImageView::addScaledImage(CILImage* pImage, double dScale)
{
    if (pImage != nullptr) {
        addImage(pImage, false, QString(), 1);
        m_state->m_tiles.back().m_dScale = dScale;
    }
}

void CORVMultiImageView::removeAllImages()
{
    m_state->m_tiles.clear();
    m_state->m_bGridKnown = false;
    QToolTip::hideText();
    update();
}

int CORVMultiImageView::getImageNumber() const
{
    return static_cast<int>(m_state->m_tiles.size());
}

QString CORVMultiImageView::imageLabel(int nIndex) const
{
    return m_state->isTile(nIndex) ? m_state->tile(nIndex).m_strLabel : QString();
}

const CILImage* CORVMultiImageView::image(int nIndex) const
{
    return m_state->isTile(nIndex) ? &m_state->tile(nIndex).m_picture.image() : nullptr;
}

void CORVMultiImageView::setImageToolTip(int nIndex, const QString& strText)
{
    if (m_state->isTile(nIndex)) {
        m_state->m_tiles[static_cast<std::size_t>(nIndex)].m_strToolTip = strText;
    }
}

QSizeF CORVMultiImageView::contentSize() const
{
    // Between two sets of images the last size stands in, so that an equal one keeps the zoom.
    if (!m_state->m_tiles.empty()) {
        m_state->m_lastSize = m_state->grid().size();
    }
    return m_state->m_lastSize;
}

QSizeF CORVMultiImageView::contentArea() const
{
    return {std::max(1.0, width() - colorBarMargin().width()), static_cast<double>(height())};
}

double CORVMultiImageView::leastFittedZoom() const
{
    if (m_state->m_tiles.empty()) {
        return 0.0;
    }
    const orvwidgets::TileGrid& grid = m_state->grid();
    if (!m_state->m_bSpots) {
        return 0.0;
    }
    // As wide as the view, as long as some rows are seen at once.
    const double dWide = contentArea().width() / grid.size().width();
    const double dRows = contentArea().height() * grid.rows() / (kRowsInSight * grid.size().height());
    return std::max(kLeastTile / orvwidgets::TileGrid::kLongSide, std::min(dWide, dRows));
}

// Whether the rows of spots need more than the height of the view.
bool CORVMultiImageView::isScrolled() const
{
    return m_state->m_bSpots && pictureRect().height() > contentArea().height();
}

QRectF CORVMultiImageView::imageRect(int nIndex) const
{
    if (!m_state->isTile(nIndex)) {
        return {};
    }
    const Tile& tile = m_state->tile(nIndex);
    const QRectF place = orvwidgets::pictureInTile(m_state->grid().tile(nIndex), tile.m_picture.size(), tile.m_dScale);
    return {toView(place.topLeft()), place.size() * zoom()};
}

int CORVMultiImageView::imageAt(const QPointF& view) const
{
    const QSizeF area = contentArea();
    if (m_state->m_tiles.empty() || !QRectF(QPointF(), area).contains(view)) {
        return -1;
    }
    const int index = m_state->grid().tileAt(toPicture(view));
    return index >= 0 && imageRect(index).contains(view) ? index : -1;
}

int CORVMultiImageView::currentImage() const
{
    return std::min(m_state->m_nCurrent, getImageNumber() - 1);
}

void CORVMultiImageView::setFontSize(int nPoints)
{
    if (nPoints > 0) {
        m_state->m_font.setPointSize(nPoints);
        update();
    }
}

int CORVMultiImageView::fontSize() const
{
    return m_state->m_font.pointSize();
}

void CORVMultiImageView::updateFontByPreference()
{
    S3DViewSettings settings;
    CORVPreference::get3DViewPreferences(settings);
    m_state->m_font.setFamily(settings.fontFamily);
    m_state->m_font.setStyleHint(QFont::SansSerif);
    m_state->m_font.setPointSize(settings.labelFontSize);
    m_state->lower().updateFontByPreference();
    m_state->upper().updateFontByPreference();
    update();
    Q_EMIT colorBarMarginChanged();
}

bool CORVMultiImageView::getImageByRender(QImage& image, bool bAll) const
{
    image = renderImage(bAll);
    return !image.isNull();
}

QImage CORVMultiImageView::pictureToKeep() const
{
    return m_state->m_tiles.empty() ? QImage() : renderImage();
}

bool CORVMultiImageView::event(QEvent* pEvent)
{
    if (pEvent->type() != QEvent::ToolTip) {
        return GLImageView::event(pEvent);
    }
    auto* pHelp = static_cast<QHelpEvent*>(pEvent);
    const int index = imageAt(pHelp->pos());
    if (index < 0) {
        QToolTip::hideText();
        return GLImageView::event(pEvent);
    }
    const Tile& tile = m_state->tile(index);
    QStringList lines{tile.m_strLabel, tile.m_strToolTip};
    lines.removeAll(QString());
    // Labels are the user's words: plain, whatever they look like.
    QToolTip::showText(pHelp->globalPos(), lines.join(QLatin1Char('\n')).toHtmlEscaped().replace('\n', "<br>"), this,
                       imageRect(index).toAlignedRect());
    return true;
}

void CORVMultiImageView::wheelEvent(QWheelEvent* pEvent)
{
    if (!isScrolled() || (pEvent->modifiers() & Qt::ControlModifier) != 0) {
        GLImageView::wheelEvent(pEvent);
        return;
    }
    panBy(QPointF(0.0, pEvent->angleDelta().y() * kWheelScroll));
    tellPixel(pEvent->position());
    pEvent->accept();
}

void CORVMultiImageView::mouseMoveEvent(QMouseEvent* pEvent)
{
    GLImageView::mouseMoveEvent(pEvent);
    tellPixel(pEvent->localPos());
}

void CORVMultiImageView::leaveEvent(QEvent* pEvent)
{
    GLImageView::leaveEvent(pEvent);
    tellPixel(QPointF(-1.0, -1.0));
}

void CORVMultiImageView::tellPixel(const QPointF& view)
{
    const int index = imageAt(view);
    QPoint pixel(-1, -1);
    if (index >= 0) {
        const QRectF shown = imageRect(index);
        const QSize size = m_state->tile(index).m_picture.size();
        pixel.setX(std::min(size.width() - 1, static_cast<int>((view.x() - shown.x()) * size.width() / shown.width())));
        pixel.setY(
            std::min(size.height() - 1, static_cast<int>((view.y() - shown.y()) * size.height() / shown.height())));
    }
    if (index != m_state->m_toldIndex || pixel != m_state->m_toldPixel) {
        m_state->m_toldIndex = index;
        m_state->m_toldPixel = pixel;
        Q_EMIT imagePixelUnderPointer(index, pixel.x(), pixel.y());
    }
}

bool CORVMultiImageView::moveCurrent(int nKey)
{
    const int columns = m_state->grid().columns();
    const int step = nKey == Qt::Key_Left    ? -1
                     : nKey == Qt::Key_Right ? 1
                     : nKey == Qt::Key_Up    ? -columns
                     : nKey == Qt::Key_Down  ? columns
                                             : 0;
    const int next = currentImage() + step;
    if (step == 0 || !m_state->isTile(next)) {
        return false;
    }
    m_state->m_nCurrent = next;
    showCurrent();
    return true;
}

// Brings the current tile into view and tells assistive tools of it.
void CORVMultiImageView::showCurrent()
{
    const QRectF shown = imageRect(currentImage());
    const QSizeF area = contentArea();
    QPointF by;
    by.rx() = shown.left() < 0.0 ? -shown.left() : std::min(0.0, area.width() - shown.right());
    by.ry() = shown.top() < 0.0 ? -shown.top() : std::min(0.0, area.height() - shown.bottom());
    panBy(by);
    setAccessibleDescription(imageLabel(currentImage()));
}

void CORVMultiImageView::keyPressEvent(QKeyEvent* pEvent)
{
    const int key = pEvent->key();
    if ((key == Qt::Key_Return || key == Qt::Key_Enter) && currentImage() >= 0) {
        Q_EMIT imageActivated(currentImage());
        return;
    }
    if (key == Qt::Key_PageUp || key == Qt::Key_PageDown) {
        panBy(QPointF(0.0, key == Qt::Key_PageUp ? height() : -height()));
        return;
    }
    if (pEvent->modifiers() == Qt::NoModifier && moveCurrent(key)) {
        return;
    }
    GLImageView::keyPressEvent(pEvent);
}

void CORVMultiImageView::resizeEvent(QResizeEvent* pEvent)
{
    GLImageView::resizeEvent(pEvent);
    Q_EMIT colorBarMarginChanged();
}

void CORVMultiImageView::paintGL()
{
    m_state->m_bPicturesMissing = false;
    m_state->m_deadline.setRemainingTime(kPaintTime);
    GLImageView::paintGL();
    m_state->m_deadline = QDeadlineTimer(QDeadlineTimer::Forever);
    if (m_state->m_bPicturesMissing) {
        QMetaObject::invokeMethod(this, "update", Qt::QueuedConnection);
    }
}

void CORVMultiImageView::paintScene(QPainter& painter) const
{
    painter.save();
    painter.setClipRect(QRectF(QPointF(), contentArea()));
    const QRectF visible(QPointF(), contentArea());
    for (int i = 0; i < getImageNumber(); ++i) {
        if (imageRect(i).intersects(visible)) {
            paintTile(painter, i);
        }
    }
    painter.restore();
    paintScrollMark(painter);
    if (isColorBarShown()) {
        paintColorBar(painter);
        paintTexts(painter);
    }
}

// Which part of the rows is seen.
void CORVMultiImageView::paintScrollMark(QPainter& painter) const
{
    if (!isScrolled()) {
        return;
    }
    const QRectF all = pictureRect();
    const QSizeF area = contentArea();
    const double length = area.height() * area.height() / all.height();
    const double top = -all.top() * area.height() / all.height();
    painter.fillRect(QRectF(area.width() - kScrollMark, top, kScrollMark, length), palette().color(QPalette::Mid));
}

void CORVMultiImageView::paintTile(QPainter& painter, int nIndex) const
{
    const Tile& tile = m_state->tile(nIndex);
    const QRectF shown = imageRect(nIndex);
    if (m_state->m_deadline.hasExpired() &&
        !tile.m_picture.isReady(orvwidgets::devicePixels(painter, shown), tile.m_bSmooth)) {
        m_state->m_bPicturesMissing = true;
        painter.fillRect(shown, palette().color(QPalette::Mid));
    } else {
        tile.m_picture.draw(painter, shown, tile.m_bSmooth);
    }
    if (tile.m_bFrame) {
        painter.setPen(palette().color(QPalette::Text));
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(shown);
    }
    const QFontMetricsF metrics(m_state->m_font);
    if (m_bShowLabels && !tile.m_strLabel.isEmpty() && shown.height() >= kLeastLabelledHeight * metrics.height()) {
        QPointF at(shown.left() + kLabelMargin, shown.top() + kLabelMargin + metrics.ascent());
        for (const QString& line : orvwidgets::tileLabelLines(tile.m_strLabel, m_state->m_bSpots, metrics,
                                                              shown.width() - 2.0 * kLabelMargin)) {
            orvwidgets::paintOutlinedText(painter, at, line, m_state->m_font, Qt::white);
            at.ry() += metrics.lineSpacing();
        }
    }
}

void CORVMultiImageView::paintFocus(QPainter& painter) const
{
    GLImageView::paintFocus(painter);
    const QRectF shown = imageRect(currentImage());
    if (!shown.isEmpty()) {
        painter.setClipRect(QRectF(QPointF(), contentArea()));
        painter.setPen(QPen(palette().color(QPalette::Highlight), 2.0));
        painter.drawRect(shown);
    }
}
