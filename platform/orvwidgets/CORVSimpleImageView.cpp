// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVSimpleImageView.h"

#include "host/CILImage.h"
#include "platform/orvwidgets/CropGeometry.h"
#include "platform/orvwidgets/ViewStrip.h"
#include "platform/orvwidgets/viewIcons.h"
#include "platform/orvwidgets/viewOverlays.h"

#include <QActionGroup>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>

#include <algorithm>

using orvwidgets::CropGeometry;
using orvwidgets::ViewIcon;

namespace {

constexpr double kLegend = 25.0; // view pixels
constexpr int kStripMargin = 4;
constexpr double kFastKey = 10.0;

} // namespace

struct CORVSimpleImageView::State
{
    CropGeometry m_crop;
    bool m_bCropEnabled = false;
    bool m_bEllipse = false;
    int m_nItems = CopyItems | SaveItems | ZoomItems | CropItems;

    orvwidgets::ViewStrip* m_pStrip = nullptr;
    QAction* m_pCopy = nullptr;
    QAction* m_pSave = nullptr;
    QAction* m_pZoomIn = nullptr;
    QAction* m_pZoomOut = nullptr;
    QAction* m_pFit = nullptr;
    QAction* m_pRectangle = nullptr;
    QAction* m_pEllipse = nullptr;
    QAction* m_pWhole = nullptr;
    QAction* m_pTakeBack = nullptr;
    QAction* m_pClear = nullptr;

    // The actions on offer, by group.
    QList<QList<QAction*>> groups() const
    {
        QList<QList<QAction*>> all;
        QList<QAction*> keep;
        if ((m_nItems & CopyItems) != 0) {
            keep << m_pCopy;
        }
        if ((m_nItems & SaveItems) != 0) {
            keep << m_pSave;
        }
        all << keep;
        if ((m_nItems & ZoomItems) != 0) {
            all << QList<QAction*>{m_pZoomIn, m_pZoomOut, m_pFit};
        }
        if ((m_nItems & CropItems) != 0 && m_bCropEnabled) {
            all << QList<QAction*>{m_pRectangle, m_pEllipse} << QList<QAction*>{m_pWhole, m_pTakeBack, m_pClear};
        }
        return all;
    }
    QList<QPair<QAction*, ViewIcon>> icons() const
    {
        return {{m_pCopy, ViewIcon::Copy},       {m_pSave, ViewIcon::Save},   {m_pZoomIn, ViewIcon::ZoomIn},
                {m_pZoomOut, ViewIcon::ZoomOut}, {m_pFit, ViewIcon::Fit},     {m_pRectangle, ViewIcon::Rectangle},
                {m_pEllipse, ViewIcon::Ellipse}, {m_pWhole, ViewIcon::Whole}, {m_pTakeBack, ViewIcon::TakeBack},
                {m_pClear, ViewIcon::Clear}};
    }
};

CORVSimpleImageView::CORVSimpleImageView(QWidget* pParent, const char* name, CILImage* pImage)
    : GLImageView(pParent, name), m_state(std::make_unique<State>())
{
    setWhatsThis(
        tr("While a mask can be drawn: drag to draw it, drag inside to move it, drag a corner to resize it. The "
           "arrow keys move it (Ctrl: faster; Shift: its lower right corner), Ctrl+A takes the whole picture, "
           "Esc takes the last change back, Del clears it."));
    makeActions();
    m_state->m_pStrip = new orvwidgets::ViewStrip(this);
    m_state->m_pStrip->hide();
    updateActions();
    fillStrip();
    setImage(pImage);
}

CORVSimpleImageView::~CORVSimpleImageView() = default;

void CORVSimpleImageView::makeActions()
{
    State& s = *m_state;
    const auto add = [this](const QString& text, const QString& tip) {
        auto* pAction = new QAction(text, this);
        pAction->setToolTip(tip);
        return pAction;
    };
    s.m_pCopy = add(tr("&Copy Picture"), tr("Copy the picture"));
    s.m_pSave = add(tr("&Save Picture ..."), tr("Save the picture to a file"));
    s.m_pZoomIn = add(tr("Zoom &In"), tr("Zoom in (+)"));
    s.m_pZoomOut = add(tr("Zoom &Out"), tr("Zoom out (-)"));
    s.m_pFit = add(tr("&Fit to View"), tr("Fit the picture to the view (0)"));
    s.m_pRectangle = add(tr("&Rectangle"), tr("Draw a rectangle"));
    s.m_pEllipse = add(tr("&Ellipse"), tr("Draw an ellipse"));
    s.m_pWhole = add(tr("&Whole Picture"), tr("Take the whole picture (Ctrl+A)"));
    s.m_pTakeBack = add(tr("&Take Back"), tr("Take the last change back (Esc)"));
    s.m_pClear = add(tr("C&lear"), tr("Clear the drawn shape (Del)"));

    connect(s.m_pCopy, &QAction::triggered, this, &GLImageView::copyPicture);
    connect(s.m_pSave, &QAction::triggered, this, &GLImageView::savePicture);
    connect(s.m_pZoomIn, &QAction::triggered, this, &GLImageView::zoomIn);
    connect(s.m_pZoomOut, &QAction::triggered, this, &GLImageView::zoomOut);
    connect(s.m_pFit, &QAction::triggered, this, &GLImageView::fit);
    auto* pShapes = new QActionGroup(this);
    pShapes->addAction(s.m_pRectangle);
    pShapes->addAction(s.m_pEllipse);
    for (QAction* pShape : {s.m_pRectangle, s.m_pEllipse}) {
        pShape->setCheckable(true);
        connect(pShape, &QAction::triggered, this, [this] { chooseShape(m_state->m_pEllipse->isChecked()); });
    }
    s.m_pRectangle->setChecked(true);
    connect(s.m_pWhole, &QAction::triggered, this, [this] {
        m_state->m_crop.setWhole();
        cropChanged(true);
    });
    connect(s.m_pTakeBack, &QAction::triggered, this, [this] { cropChanged(m_state->m_crop.takeBack()); });
    connect(s.m_pClear, &QAction::triggered, this, [this] { cropChanged(m_state->m_crop.clear()); });
}

void CORVSimpleImageView::updateActions()
{
    const State& s = *m_state;
    const bool bPicture = !picture().isNull();
    for (QAction* pAction : {s.m_pCopy, s.m_pSave, s.m_pZoomIn, s.m_pZoomOut, s.m_pFit, s.m_pWhole}) {
        pAction->setEnabled(bPicture);
    }
    s.m_pTakeBack->setEnabled(s.m_crop.canTakeBack());
    s.m_pClear->setEnabled(!s.m_crop.isEmpty());
}

void CORVSimpleImageView::fillStrip()
{
    State& s = *m_state;
    for (const auto& [pAction, icon] : s.icons()) {
        pAction->setIcon(orvwidgets::viewIcon(icon, palette().color(QPalette::ButtonText)));
    }
    QList<QAction*> actions;
    for (const auto& group : s.groups()) {
        actions += group;
    }
    s.m_pStrip->setActions(actions);
    s.m_pStrip->setDragsThrough(isCropShown());
    if (actions.isEmpty()) {
        s.m_pStrip->hide();
    }
    placeStrip();
}

void CORVSimpleImageView::placeStrip()
{
    QWidget* pStrip = m_state->m_pStrip;
    pStrip->move(std::max(0, width() - pStrip->width() - kStripMargin), kStripMargin);
}

void CORVSimpleImageView::setImage(CILImage* pImage)
{
    const QImage shown = pImage != nullptr ? pImage->toQImage() : QImage();
    if (shown.size() != picture().size()) {
        m_state->m_crop.reset();
    }
    setPicture(shown);
    updateActions();
}

void CORVSimpleImageView::showMenuItems(int nItems)
{
    m_state->m_nItems = nItems;
    fillStrip();
}

void CORVSimpleImageView::enableCropMenu(bool bEnable)
{
    if (!bEnable && m_state->m_crop.isDragging()) {
        m_state->m_crop.takeBack();
    }
    m_state->m_bCropEnabled = bEnable;
    unsetCursor();
    fillStrip();
    update();
}

bool CORVSimpleImageView::isCropMenuEnabled() const
{
    return m_state->m_bCropEnabled;
}

bool CORVSimpleImageView::isCropShown() const
{
    return m_state->m_bCropEnabled && !picture().isNull();
}

void CORVSimpleImageView::setCropShape(bool bEllipse)
{
    m_state->m_bEllipse = bEllipse;
    (bEllipse ? m_state->m_pEllipse : m_state->m_pRectangle)->setChecked(true);
    update();
}

bool CORVSimpleImageView::getCropShape() const
{
    return m_state->m_bEllipse;
}

void CORVSimpleImageView::chooseShape(bool bEllipse)
{
    if (bEllipse == m_state->m_bEllipse) {
        return;
    }
    setCropShape(bEllipse);
    Q_EMIT cropShapeChanged(bEllipse);
    cropChanged(!m_state->m_crop.isEmpty());
}

QRect CORVSimpleImageView::getImageViewCrop() const
{
    return m_state->m_crop.reported(pictureRect().size());
}

std::array<float, 4> CORVSimpleImageView::getImageRect() const
{
    const QRectF shown = pictureRect();
    const double legend = m_bShowLegend ? kLegend : 0.0;
    return {static_cast<float>(shown.left()), static_cast<float>(shown.top()),
            static_cast<float>(std::max(0.0, shown.width() - legend)),
            static_cast<float>(std::max(0.0, shown.height() - legend))};
}

// What is drawn, in pixels of the picture, for who does not see it.
void CORVSimpleImageView::describeCrop()
{
    const QRect pixels = m_state->m_crop.rect(QRectF(QPointF(), QSizeF(picture().size()))).toAlignedRect();
    setAccessibleDescription(m_state->m_crop.isEmpty() ? QString()
                                                       : tr("%1, columns %2 to %3, rows %4 to %5")
                                                             .arg(m_state->m_bEllipse ? tr("Ellipse") : tr("Rectangle"))
                                                             .arg(pixels.left())
                                                             .arg(pixels.right())
                                                             .arg(pixels.top())
                                                             .arg(pixels.bottom()));
}

void CORVSimpleImageView::cropChanged(bool bChanged)
{
    updateActions();
    describeCrop();
    update();
    if (bChanged && m_state->m_bCropEnabled) {
        Q_EMIT cropModifiedSignal(0);
    }
}

void CORVSimpleImageView::showCursorOf(const QPointF& point)
{
    setCursor(orvwidgets::cursorOver(m_state->m_crop.partAt(point, pictureRect())));
}

void CORVSimpleImageView::mousePressEvent(QMouseEvent* pEvent)
{
    if (pEvent->button() != Qt::LeftButton || !isCropShown()) {
        GLImageView::mousePressEvent(pEvent);
        return;
    }
    m_state->m_crop.press(pEvent->localPos(), pictureRect());
    pEvent->accept();
}

void CORVSimpleImageView::mouseMoveEvent(QMouseEvent* pEvent)
{
    GLImageView::mouseMoveEvent(pEvent);
    if (!isCropShown()) {
        return;
    }
    if (m_state->m_crop.isDragging() && (pEvent->buttons() & Qt::LeftButton) == 0) {
        // The release was lost, as when the view was disabled in between.
        m_state->m_crop.takeBack();
        update();
    }
    if (m_state->m_crop.isDragging()) {
        m_state->m_pStrip->hide();
        m_state->m_crop.dragTo(pEvent->localPos(), pictureRect());
        update();
    } else if (pEvent->buttons() == Qt::NoButton) {
        showCursorOf(pEvent->localPos());
    }
}

void CORVSimpleImageView::mouseReleaseEvent(QMouseEvent* pEvent)
{
    GLImageView::mouseReleaseEvent(pEvent);
    if (pEvent->button() == Qt::LeftButton && m_state->m_crop.isDragging()) {
        m_state->m_crop.dragTo(pEvent->localPos(), pictureRect());
        cropChanged(m_state->m_crop.release(pictureRect()));
    }
}

void CORVSimpleImageView::mouseDoubleClickEvent(QMouseEvent* pEvent)
{
    // Two short drags in one place are not a wish to see the whole picture.
    if (pEvent->button() == Qt::LeftButton && isCropShown()) {
        mousePressEvent(pEvent);
        return;
    }
    GLImageView::mouseDoubleClickEvent(pEvent);
}

bool CORVSimpleImageView::isCropKey(const QKeyEvent& event) const
{
    switch (event.key()) {
    case Qt::Key_Escape:
        return m_state->m_crop.canTakeBack();
    case Qt::Key_Delete:
    case Qt::Key_Backspace:
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Up:
    case Qt::Key_Down:
        return !m_state->m_crop.isEmpty();
    default:
        return event.matches(QKeySequence::SelectAll);
    }
}

bool CORVSimpleImageView::event(QEvent* pEvent)
{
    // A shortcut of the window does not take away what the crop understands.
    if (pEvent->type() == QEvent::ShortcutOverride && isCropShown() && isCropKey(*static_cast<QKeyEvent*>(pEvent))) {
        pEvent->accept();
        return true;
    }
    return GLImageView::event(pEvent);
}

bool CORVSimpleImageView::cropKey(QKeyEvent* pEvent)
{
    CropGeometry& crop = m_state->m_crop;
    if (pEvent->key() == Qt::Key_Escape) {
        // With nothing to take back the key is the window's.
        const bool bDragging = crop.isDragging();
        const bool bTaken = crop.takeBack();
        cropChanged(bTaken && !bDragging);
        return bTaken;
    }
    if (pEvent->key() == Qt::Key_Delete || pEvent->key() == Qt::Key_Backspace) {
        const bool bCleared = crop.clear();
        cropChanged(bCleared);
        return bCleared;
    }
    if (pEvent->matches(QKeySequence::SelectAll)) {
        crop.setWhole();
        cropChanged(true);
        return true;
    }
    QPointF step;
    step.rx() = pEvent->key() == Qt::Key_Left ? -1.0 : pEvent->key() == Qt::Key_Right ? 1.0 : 0.0;
    step.ry() = pEvent->key() == Qt::Key_Up ? -1.0 : pEvent->key() == Qt::Key_Down ? 1.0 : 0.0;
    if (step.isNull() || crop.isEmpty()) {
        return false;
    }
    if ((pEvent->modifiers() & Qt::ControlModifier) != 0) {
        step *= kFastKey;
    }
    const bool bGrow = (pEvent->modifiers() & Qt::ShiftModifier) != 0;
    cropChanged(bGrow ? crop.growBy(step, pictureRect()) : crop.moveBy(step, pictureRect()));
    return true;
}

void CORVSimpleImageView::keyPressEvent(QKeyEvent* pEvent)
{
    if (isCropShown() && cropKey(pEvent)) {
        pEvent->accept();
        return;
    }
    GLImageView::keyPressEvent(pEvent);
}

void CORVSimpleImageView::enterEvent(QEvent* pEvent)
{
    GLImageView::enterEvent(pEvent);
    updateActions();
    const bool bRoom = m_state->m_pStrip->width() + 2 * kStripMargin <= width();
    m_state->m_pStrip->setVisible(bRoom && !picture().isNull() && m_state->m_pStrip->hasButtons());
}

void CORVSimpleImageView::leaveEvent(QEvent* pEvent)
{
    GLImageView::leaveEvent(pEvent);
    m_state->m_pStrip->hide();
}

void CORVSimpleImageView::resizeEvent(QResizeEvent* pEvent)
{
    GLImageView::resizeEvent(pEvent);
    placeStrip();
}

void CORVSimpleImageView::changeEvent(QEvent* pEvent)
{
    GLImageView::changeEvent(pEvent);
    if (pEvent->type() == QEvent::PaletteChange && m_state->m_pStrip != nullptr) {
        fillStrip();
    }
}

void CORVSimpleImageView::fillContextMenu(QMenu& menu)
{
    updateActions();
    for (const auto& group : m_state->groups()) {
        menu.addSeparator();
        menu.addActions(group);
    }
}

void CORVSimpleImageView::paintOverlay(QPainter& painter) const
{
    if (m_bShowLegend) {
        orvwidgets::paintPixelLegend(painter, pictureRect(), picture().size(), kLegend, palette());
    }
    if (isCropShown() && !m_state->m_crop.isEmpty()) {
        orvwidgets::paintCrop(painter, m_state->m_crop.rect(pictureRect()), m_state->m_bEllipse);
    }
}
