// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/ThumbnailView.h"

#include "workbench/application/ThumbnailDelegate.h"
#include "workbench/application/ThumbnailModel.h"

#include <QApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace {

constexpr double kStep = 1.15; // of a notch of the wheel
constexpr int kNotch = 120;
constexpr double kMostNotches = 20.0; // at once
// Sides of thumbnails that are chosen for the room there is.
constexpr int kLeastFitting = 64;
constexpr int kMostFitting = 256;
constexpr int kOtherwise = 112;

} // namespace

ThumbnailView::ThumbnailView(ThumbnailModel& model, QWidget* pParent) : QTableView(pParent), m_model(model)
{
    setObjectName(QStringLiteral("m_pThumbnailView"));
    setAccessibleName(tr("Images of the sequence"));
    setModel(&model);
    setItemDelegate(new ThumbnailDelegate(this));
    setShowGrid(false);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setTabKeyNavigation(false);
    setCornerButtonEnabled(false);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setWordWrap(false);
    viewport()->setMouseTracking(true);
    const bool table = model.grid().isTable();
    for (QHeaderView* pHeader : {horizontalHeader(), verticalHeader()}) {
        pHeader->setVisible(table);
        pHeader->setSectionResizeMode(QHeaderView::Fixed);
        pHeader->setMinimumSectionSize(1);
        pHeader->setSectionsClickable(false);
        pHeader->setHighlightSections(false);
    }
    connect(this, &QAbstractItemView::doubleClicked, this, [this](const QModelIndex& index) {
        const int tile = m_model.tileAt(index);
        if (tile >= 0) {
            Q_EMIT tileActivated(tile);
        }
    });
    layOut();
    setCurrentTile(0);
}

void ThumbnailView::setSide(int nSide)
{
    if (nSide != m_nSide) {
        m_bOwnSide = true;
        takeSide(std::clamp(nSide, kSmallest, kLargest));
        layOut();
    }
}

void ThumbnailView::takeSide(int nSide)
{
    if (nSide != m_nSide) {
        m_nSide = nSide;
        Q_EMIT sideChanged(nSide);
    }
}

int ThumbnailView::currentTile() const
{
    return m_model.tileAt(currentIndex());
}

void ThumbnailView::setCurrentTile(int nTile)
{
    const QModelIndex cell = m_model.indexOf(nTile);
    if (cell.isValid()) {
        setCurrentIndex(cell);
    }
}

void ThumbnailView::layOut()
{
    const int tile = currentTile();
    const bool ranges = m_model.thumbnails().isIndividual();
    // Room for the vertical bar is kept, lest it come and go with the number of rows.
    const int width = size().width() - 2 * frameWidth() - verticalScrollBar()->sizeHint().width();
    if (!m_bOwnSide) {
        const bool table = m_model.grid().isTable();
        const QSize titles(table ? verticalHeader()->sizeHint().width() : 0,
                           table ? horizontalHeader()->sizeHint().height() : 0);
        const QSize room(width - titles.width(), size().height() - 2 * frameWidth() - titles.height());
        const QSize extra = ThumbnailDelegate::cellSize(0, fontMetrics(), ranges);
        takeSide(fittingSide(m_model.grid(), room, extra, kLeastFitting, kMostFitting, kOtherwise));
    }
    const QSize cell = ThumbnailDelegate::cellSize(m_nSide, fontMetrics(), ranges);
    m_model.thumbnails().setSide(static_cast<int>(std::ceil(m_nSide * devicePixelRatioF())));
    horizontalHeader()->setDefaultSectionSize(cell.width());
    verticalHeader()->setDefaultSectionSize(cell.height());
    m_model.setFlow(width / cell.width());
    if (tile >= 0 && currentTile() != tile) {
        setCurrentTile(tile);
    }
}

void ThumbnailView::resizeEvent(QResizeEvent* pEvent)
{
    QTableView::resizeEvent(pEvent);
    layOut();
}

void ThumbnailView::changeEvent(QEvent* pEvent)
{
    QTableView::changeEvent(pEvent);
    if (pEvent->type() == QEvent::FontChange) {
        layOut();
    }
}

void ThumbnailView::focusInEvent(QFocusEvent* pEvent)
{
    QTableView::focusInEvent(pEvent);
    if (!currentIndex().isValid()) {
        setCurrentTile(0);
    }
}

void ThumbnailView::wheelEvent(QWheelEvent* pEvent)
{
    if (!pEvent->modifiers().testFlag(Qt::ControlModifier)) {
        // Of a table that is wide only, the wheel moves the columns.
        if (verticalScrollBar()->maximum() == 0 && horizontalScrollBar()->maximum() > 0) {
            QApplication::sendEvent(horizontalScrollBar(), pEvent);
        } else {
            QTableView::wheelEvent(pEvent);
        }
        return;
    }
    const double notches =
        std::clamp(static_cast<double>(pEvent->angleDelta().y()) / kNotch, -kMostNotches, kMostNotches);
    setSide(static_cast<int>(std::lround(m_nSide * std::pow(kStep, notches))));
    pEvent->accept();
}

void ThumbnailView::keyPressEvent(QKeyEvent* pEvent)
{
    const bool enter = pEvent->key() == Qt::Key_Return || pEvent->key() == Qt::Key_Enter;
    if (enter && currentTile() >= 0) {
        pEvent->accept();
        Q_EMIT tileActivated(currentTile());
        return;
    }
    if (pEvent->modifiers().testFlag(Qt::ControlModifier) &&
        (pEvent->key() == Qt::Key_Plus || pEvent->key() == Qt::Key_Equal || pEvent->key() == Qt::Key_Minus)) {
        setSide(static_cast<int>(std::lround(m_nSide * (pEvent->key() == Qt::Key_Minus ? 1.0 / kStep : kStep))));
        return;
    }
    QTableView::keyPressEvent(pEvent);
}

QModelIndex ThumbnailView::moveCursor(CursorAction eAction, Qt::KeyboardModifiers keys)
{
    const int tile = currentTile();
    if (!m_model.grid().isTable() && tile >= 0) {
        int next = 0;
        switch (eAction) {
        case MoveLeft:
        case MovePrevious:
            next = tile - 1;
            break;
        case MoveRight:
        case MoveNext:
            next = tile + 1;
            break;
        case MoveDown:
            next = tile + m_model.flow();
            // Below the end of a full row the last row may be shorter.
            next = next >= m_model.grid().count() && tile / m_model.flow() + 1 < m_model.rowCount()
                       ? m_model.grid().count() - 1
                       : next;
            break;
        case MoveHome:
            break;
        case MoveEnd:
            next = m_model.grid().count() - 1;
            break;
        default:
            return QTableView::moveCursor(eAction, keys);
        }
        return m_model.indexOf(next >= 0 && next < m_model.grid().count() ? next : tile);
    }
    const QModelIndex index = QTableView::moveCursor(eAction, keys);
    return m_model.tileAt(index) >= 0 ? index : currentIndex();
}

void ThumbnailView::mouseMoveEvent(QMouseEvent* pEvent)
{
    QTableView::mouseMoveEvent(pEvent);
    tellPlace(pEvent->pos());
}

bool ThumbnailView::viewportEvent(QEvent* pEvent)
{
    if (pEvent->type() == QEvent::Leave) {
        Q_EMIT pointed(-1, QPointF());
    }
    return QTableView::viewportEvent(pEvent);
}

void ThumbnailView::tellPlace(const QPoint& at)
{
    const QModelIndex index = indexAt(at);
    const int tile = m_model.tileAt(index);
    if (tile >= 0) {
        const QRectF picture = ThumbnailDelegate::pictureRect(visualRect(index), m_model.thumbnails().imageSize(tile),
                                                              fontMetrics(), m_model.thumbnails().isIndividual());
        if (picture.contains(at)) {
            Q_EMIT pointed(tile, QPointF((at.x() - picture.left()) / picture.width(),
                                         (at.y() - picture.top()) / picture.height()));
            return;
        }
    }
    Q_EMIT pointed(-1, QPointF());
}
