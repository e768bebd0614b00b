// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVPaintQImageView.h"

#include "host/CORVMessageBox.h"
#include "host/CORVUtilityFns.h"
#include "platform/orvwidgets/PaintLayer.h"
#include "platform/orvwidgets/PaintMasks.h"
#include "platform/orvwidgets/viewOverlays.h"

#include <QActionGroup>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>

#include <algorithm>
#include <cmath>
#include <optional>

namespace {

constexpr int kDragStart = 3;       // view pixels after which a press of the right button is a drag
constexpr double kSmallestRing = 4; // view pixels

QPoint pixelOf(const QPointF& picture)
{
    return {static_cast<int>(std::floor(picture.x())), static_cast<int>(std::floor(picture.y()))};
}

} // namespace

struct CORVPaintQImageView::State
{
    orvwidgets::PaintMasks m_masks;
    orvwidgets::PaintLayer m_layer;
    bool m_bPaint = false;
    unsigned char m_nChannel = 0;
    PaintShape m_eShape = Brush;
    std::optional<QPoint> m_shapeFrom; // the pixels that the shape being drawn reaches over
    QPoint m_shapeTo;
    bool m_bShapeErases = false;
    std::optional<QPointF> m_pointer;    // in the view, while it is over it
    std::optional<QPointF> m_rightPress; // of a press that may become a drag
    Qt::MouseButton m_strokeButton = Qt::NoButton;
    QPoint m_cursor{-1, -1}; // told last
    int m_nPixels = -1;      // told last

    void redraw(const QRect& changed) { m_layer.update(m_masks, changed); }
    QRect shapeBox() const
    {
        return {QPoint(std::min(m_shapeFrom->x(), m_shapeTo.x()), std::min(m_shapeFrom->y(), m_shapeTo.y())),
                QPoint(std::max(m_shapeFrom->x(), m_shapeTo.x()), std::max(m_shapeFrom->y(), m_shapeTo.y()))};
    }
};

CORVPaintQImageView::CORVPaintQImageView(QWidget* pParent, const char* name)
    : CORVQImageView(pParent, name), m_state(std::make_unique<State>())
{
    setWhatsThis(tr("With a drawing tool: drag to paint a region, drag with Shift or with the right button to erase, "
                    "Ctrl+Z takes the last stroke back. [ and ] change the pen; R and E have a drag fill a rectangle "
                    "or an ellipse, B has it paint again. The wheel zooms, the middle button moves the picture."));
    connect(this, &GLImageView::pixelUnderPointer, this, [this](int x, int y) { tellCursor(QPoint(x, y)); });
}

CORVPaintQImageView::~CORVPaintQImageView() = default;

bool CORVPaintQImageView::replaceImage(const QImage& image)
{
    if (image.isNull()) {
        return false;
    }
    if (image.size() != m_state->m_masks.size()) {
        dropShape();
        m_state->m_masks.setSize(image.size());
        m_state->m_layer.clear();
    }
    setPicture(image);
    tellPixels();
    return true;
}

bool CORVPaintQImageView::isPainting() const
{
    return m_state->m_bPaint && !picture().isNull() && m_state->m_masks.contains(m_state->m_nChannel);
}

void CORVPaintQImageView::setPaintEnabled(bool bEnabled)
{
    m_state->m_bPaint = bEnabled;
    if (bEnabled) {
        tellCursor(QPoint(-1, -1));
    } else {
        dropShape();
        endStroke();
    }
    showCursorShape();
    update();
    tellPixels();
}

bool CORVPaintQImageView::isPaintEnabled() const
{
    return m_state->m_bPaint;
}

void CORVPaintQImageView::setCurrentChannel(unsigned char nChannel)
{
    dropShape();
    endStroke();
    m_state->m_nChannel = nChannel;
    showCursorShape();
    update();
    tellPixels();
}

void CORVPaintQImageView::setPaintShape(PaintShape eShape)
{
    dropShape();
    m_state->m_eShape = eShape;
    update();
}

CORVPaintQImageView::PaintShape CORVPaintQImageView::paintShape() const
{
    return m_state->m_eShape;
}

void CORVPaintQImageView::showCursorShape()
{
    if (isPainting()) {
        setCursor(Qt::CrossCursor);
    } else {
        unsetCursor();
    }
}

void CORVPaintQImageView::setPenSize(unsigned char nChannel, const QString& strPen)
{
    m_state->m_masks.setPen(nChannel, orvwidgets::PaintMasks::penDiameter(strPen));
    update();
}

void CORVPaintQImageView::setUpChannelColor(unsigned char nChannel, const QColor& color, bool /*bFirst*/)
{
    if (m_state->m_masks.setColor(nChannel, color)) {
        m_state->redraw(m_state->m_masks.isEmpty(nChannel) ? QRect() : m_state->m_masks.all());
        showCursorShape();
        update();
    }
}

void CORVPaintQImageView::removeChannelColor(unsigned char nChannel, const QColor& /*color*/)
{
    m_state->redraw(m_state->m_masks.removeColor(nChannel));
    showCursorShape();
    update();
}

bool CORVPaintQImageView::containsChannel(unsigned char nChannel) const
{
    return m_state->m_masks.contains(nChannel);
}

void CORVPaintQImageView::resetMask(unsigned char nChannel)
{
    m_state->redraw(m_state->m_masks.reset(nChannel));
    update();
    tellPixels();
}

void CORVPaintQImageView::getPaintPixelIndex(unsigned char nChannel, QList<int>& indices) const
{
    indices = m_state->m_masks.pixels(nChannel);
}

unsigned char CORVPaintQImageView::getCurrentChannel(QList<int>& indices) const
{
    if (!m_state->m_masks.contains(m_state->m_nChannel)) {
        indices.clear();
        return 0;
    }
    indices = m_state->m_masks.pixels(m_state->m_nChannel);
    return m_state->m_nChannel;
}

void CORVPaintQImageView::tellCursor(const QPoint& pixel)
{
    // A painter's hand is not a question for the values under it.
    const QPoint told = m_state->m_bPaint ? QPoint(-1, -1) : pixel;
    if (told != m_state->m_cursor) {
        m_state->m_cursor = told;
        Q_EMIT updateCursorPosition(told.x(), told.y());
    }
}

void CORVPaintQImageView::tellPixels()
{
    tellPixels(isPainting() ? m_state->m_masks.count(m_state->m_nChannel) : -1);
}

void CORVPaintQImageView::tellPixels(int nPixels)
{
    if (nPixels != m_state->m_nPixels) {
        m_state->m_nPixels = nPixels;
        Q_EMIT paintedPixelsChanged(nPixels);
    }
}

bool CORVPaintQImageView::beginStroke(const QPointF& at, bool bErase)
{
    if (m_state->m_eShape != Brush) {
        m_state->m_shapeFrom = pixelOf(toPicture(at));
        m_state->m_bShapeErases = bErase;
    } else if (!m_state->m_masks.beginStroke(m_state->m_nChannel, bErase)) {
        return false;
    }
    continueStroke(at);
    return true;
}

void CORVPaintQImageView::continueStroke(const QPointF& at)
{
    const QPoint pixel = pixelOf(toPicture(at));
    m_state->m_shapeTo = pixel;
    m_state->redraw(m_state->m_masks.strokeTo(pixel));
    update();
}

void CORVPaintQImageView::endStroke()
{
    m_state->m_rightPress.reset();
    m_state->m_strokeButton = Qt::NoButton;
    if (m_state->m_shapeFrom && m_state->m_masks.beginStroke(m_state->m_nChannel, m_state->m_bShapeErases)) {
        m_state->redraw(m_state->m_masks.fill(m_state->shapeBox(), m_state->m_eShape == Ellipse));
        update();
    }
    m_state->m_shapeFrom.reset();
    if (m_state->m_masks.endStroke()) {
        Q_EMIT signalDrawComplete(1);
    }
}

// What is only outlined yet counts for nothing.
void CORVPaintQImageView::dropShape()
{
    if (m_state->m_shapeFrom) {
        m_state->m_shapeFrom.reset();
        m_state->m_strokeButton = Qt::NoButton;
        update();
    }
}

void CORVPaintQImageView::takePenBeside(bool bThinner)
{
    const QString strPen = orvwidgets::PaintMasks::penBeside(m_state->m_masks.pen(m_state->m_nChannel), bThinner);
    if (!strPen.isEmpty()) {
        setPenSize(m_state->m_nChannel, strPen);
        Q_EMIT penChanged(strPen);
    }
}

// A release does not come when the view was disabled in between.
void CORVPaintQImageView::endLostStroke(Qt::MouseButtons held)
{
    if ((held & Qt::RightButton) == 0) {
        m_state->m_rightPress.reset();
    }
    if (m_state->m_strokeButton != Qt::NoButton && (held & m_state->m_strokeButton) == 0) {
        dropShape();
        endStroke();
    }
}

void CORVPaintQImageView::mousePressEvent(QMouseEvent* pEvent)
{
    if (!isPainting() || (pEvent->button() != Qt::LeftButton && pEvent->button() != Qt::RightButton)) {
        CORVQImageView::mousePressEvent(pEvent);
        return;
    }
    pEvent->accept();
    const QPointer<CORVPaintQImageView> alive(this);
    endLostStroke(pEvent->buttons() & ~pEvent->button());
    if (alive.isNull() || m_state->m_strokeButton != Qt::NoButton) {
        return;
    }
    if (pEvent->button() == Qt::RightButton) {
        m_state->m_rightPress = pEvent->localPos();
        return;
    }
    if (beginStroke(pEvent->localPos(), (pEvent->modifiers() & Qt::ShiftModifier) != 0)) {
        m_state->m_strokeButton = Qt::LeftButton;
        tellPixels();
    }
}

void CORVPaintQImageView::mouseMoveEvent(QMouseEvent* pEvent)
{
    m_state->m_pointer = pEvent->localPos();
    const QPointer<CORVPaintQImageView> alive(this);
    CORVQImageView::mouseMoveEvent(pEvent);
    if (alive.isNull()) {
        return;
    }
    endLostStroke(pEvent->buttons());
    if (alive.isNull()) {
        return;
    }
    if (m_state->m_rightPress && (pEvent->localPos() - *m_state->m_rightPress).manhattanLength() > kDragStart &&
        beginStroke(*m_state->m_rightPress, true)) {
        m_state->m_rightPress.reset();
        m_state->m_strokeButton = Qt::RightButton;
    }
    if (m_state->m_strokeButton != Qt::NoButton) {
        continueStroke(pEvent->localPos());
    }
    if (isPainting()) {
        update();
        tellPixels();
    }
}

void CORVPaintQImageView::mouseReleaseEvent(QMouseEvent* pEvent)
{
    CORVQImageView::mouseReleaseEvent(pEvent);
    if (pEvent->button() == Qt::RightButton && m_state->m_rightPress) {
        m_state->m_rightPress.reset();
        QContextMenuEvent event(QContextMenuEvent::Other, pEvent->pos(), pEvent->globalPos());
        CORVQImageView::contextMenuEvent(&event);
        return;
    }
    if (pEvent->button() == Qt::MiddleButton) {
        showCursorShape();
    }
    if (pEvent->button() == m_state->m_strokeButton && pEvent->button() != Qt::NoButton) {
        const QPointer<CORVPaintQImageView> alive(this);
        continueStroke(pEvent->localPos());
        endStroke();
        if (!alive.isNull()) {
            tellPixels();
        }
    }
}

void CORVPaintQImageView::mouseDoubleClickEvent(QMouseEvent* pEvent)
{
    // Two quick dabs are two strokes.
    if (isPainting()) {
        mousePressEvent(pEvent);
        return;
    }
    CORVQImageView::mouseDoubleClickEvent(pEvent);
}

void CORVPaintQImageView::leaveEvent(QEvent* pEvent)
{
    m_state->m_pointer.reset();
    update();
    const QPointer<CORVPaintQImageView> alive(this);
    CORVQImageView::leaveEvent(pEvent);
    if (!alive.isNull()) {
        tellPixels(-1);
    }
}

bool CORVPaintQImageView::event(QEvent* pEvent)
{
    if (pEvent->type() == QEvent::ShortcutOverride) {
        // Undo is the stroke's while there is one, and Escape the shape's, whatever shortcut the window has.
        const auto* pKey = static_cast<QKeyEvent*>(pEvent);
        if ((pKey->matches(QKeySequence::Undo) && m_state->m_masks.canTakeBack(m_state->m_nChannel)) ||
            (pKey->key() == Qt::Key_Escape && m_state->m_shapeFrom)) {
            pEvent->accept();
            return true;
        }
    }
    return CORVQImageView::event(pEvent);
}

// True for a key that means something to who paints.
bool CORVPaintQImageView::pressPaintKey(int nKey)
{
    switch (nKey) {
    case Qt::Key_BracketLeft:
    case Qt::Key_BracketRight:
        takePenBeside(nKey == Qt::Key_BracketLeft);
        return true;
    case Qt::Key_B:
        setPaintShape(Brush);
        return true;
    case Qt::Key_R:
        setPaintShape(Rectangle);
        return true;
    case Qt::Key_E:
        setPaintShape(Ellipse);
        return true;
    case Qt::Key_Escape: {
        const bool bShape = m_state->m_shapeFrom.has_value();
        dropShape();
        return bShape;
    }
    default:
        return false;
    }
}

void CORVPaintQImageView::keyPressEvent(QKeyEvent* pEvent)
{
    if (pEvent->matches(QKeySequence::Undo) && m_state->m_masks.contains(m_state->m_nChannel)) {
        takeStrokeBack();
        return;
    }
    // Brackets come with a modifier on many keyboards.
    const bool bCommand = (pEvent->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) != 0;
    const bool bBracket = pEvent->key() == Qt::Key_BracketLeft || pEvent->key() == Qt::Key_BracketRight;
    if (isPainting() && (!bCommand || bBracket) && pressPaintKey(pEvent->key())) {
        return;
    }
    CORVQImageView::keyPressEvent(pEvent);
}

void CORVPaintQImageView::takeStrokeBack()
{
    // Those of the current channel alone: who listens asks for the region of that one.
    dropShape();
    const auto changed = m_state->m_masks.takeBack(m_state->m_nChannel);
    if (!changed) {
        return;
    }
    m_state->m_strokeButton = Qt::NoButton;
    m_state->redraw(*changed);
    update();
    const QPointer<CORVPaintQImageView> alive(this);
    Q_EMIT signalDrawComplete(1);
    if (!alive.isNull()) {
        tellPixels();
    }
}

void CORVPaintQImageView::useRegionForAll()
{
    if (!m_state->m_masks.contains(m_state->m_nChannel) || m_state->m_masks.isEmpty(m_state->m_nChannel)) {
        return;
    }
    const QPointer<CORVPaintQImageView> alive(this);
    const int answer = CORVMessageBox::warning(
        this, CORVUtilityFns::getAppName(),
        tr("Every row of the list gets the spectrum of this region; the spectra they have now are lost.\nGo on?"),
        CORVMessageBox::YesButton | CORVMessageBox::NoButtonAnswer, CORVMessageBox::NoButtonAnswer);
    if (!alive.isNull() && answer == CORVMessageBox::YesButton) {
        Q_EMIT signalDrawComplete(2);
    }
}

void CORVPaintQImageView::contextMenuEvent(QContextMenuEvent* pEvent)
{
    // While painting the right button may still become a drag; its release opens the menu.
    if (pEvent->reason() == QContextMenuEvent::Mouse && isPainting()) {
        pEvent->accept();
        return;
    }
    CORVQImageView::contextMenuEvent(pEvent);
}

void CORVPaintQImageView::fillContextMenu(QMenu& menu)
{
    const bool bRegion = isPainting() && !m_state->m_masks.isEmpty(m_state->m_nChannel);
    QAction* pBack = menu.addAction(tr("&Take Stroke Back"), this, &CORVPaintQImageView::takeStrokeBack);
    // Told for its key only: the view itself handles it.
    pBack->setText(tr("&Take Stroke Back") + QLatin1Char('\t') +
                   QKeySequence(QKeySequence::Undo).toString(QKeySequence::NativeText));
    pBack->setEnabled(m_state->m_masks.canTakeBack(m_state->m_nChannel));
    menu.addAction(tr("Use this region for every spectrum"), this, &CORVPaintQImageView::useRegionForAll)
        ->setEnabled(bRegion);
    menu.addSeparator();
    addShapes(menu);
    menu.addSeparator();
    CORVQImageView::fillContextMenu(menu);
}

// Told with their keys only: the view itself handles them.
void CORVPaintQImageView::addShapes(QMenu& menu)
{
    auto* pGroup = new QActionGroup(&menu);
    const auto add = [this, pGroup, &menu](const QString& strText, char cKey, PaintShape eShape) {
        QAction* pAction =
            menu.addAction(strText + QLatin1Char('\t') + QLatin1Char(cKey), this, [=] { setPaintShape(eShape); });
        pAction->setCheckable(true);
        pAction->setChecked(m_state->m_eShape == eShape);
        pAction->setActionGroup(pGroup);
    };
    add(tr("&Brush"), 'B', Brush);
    add(tr("&Rectangle"), 'R', Rectangle);
    add(tr("&Ellipse"), 'E', Ellipse);
    pGroup->setEnabled(isPainting());
    const auto addPen = [this, &menu](const QString& strText, char cKey, bool bThinner) {
        const int nPen = m_state->m_masks.pen(m_state->m_nChannel);
        menu.addAction(strText + QLatin1Char('\t') + QLatin1Char(cKey), this, [=] { takePenBeside(bThinner); })
            ->setEnabled(isPainting() && !orvwidgets::PaintMasks::penBeside(nPen, bThinner).isEmpty());
    };
    addPen(tr("Thi&nner Pen"), '[', true);
    addPen(tr("Thic&ker Pen"), ']', false);
}

void CORVPaintQImageView::paintOverlay(QPainter& painter) const
{
    const QRectF shown = pictureRect();
    if (!shown.isEmpty()) {
        painter.save();
        painter.translate(shown.topLeft());
        painter.scale(zoom(), zoom());
        painter.setClipRect(QRectF(QPointF(0.0, 0.0), QSizeF(picture().size())));
        m_state->m_layer.draw(painter);
        painter.restore();
    }
    QPoint pixel;
    if (m_state->m_shapeFrom) {
        const QRect box = m_state->shapeBox();
        const QRectF outline(toView(box.topLeft()), toView(QPointF(box.bottomRight()) + QPointF(1.0, 1.0)));
        orvwidgets::paintOutline(painter, outline, m_state->m_eShape == Ellipse);
    } else if (m_state->m_eShape == Brush && isPainting() && m_state->m_pointer &&
               pixelAt(*m_state->m_pointer, pixel)) {
        const double diameter = m_state->m_masks.pen(m_state->m_nChannel) * zoom();
        orvwidgets::paintRing(painter, toView(QPointF(pixel) + QPointF(0.5, 0.5)), std::max(kSmallestRing, diameter));
    }
    CORVQImageView::paintOverlay(painter);
}
