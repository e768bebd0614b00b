// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/widgets/ColumnArea.h"

#include <QEvent>
#include <QScrollBar>

ColumnArea::ColumnArea(QWidget* pParent) : QScrollArea(pParent)
{
    setWidgetResizable(true);
    setFrameShape(QFrame::NoFrame);
}

QSize ColumnArea::sizeHint() const
{
    return widget() != nullptr ? withBar(widget()->sizeHint()) : QScrollArea::sizeHint();
}

QSize ColumnArea::minimumSizeHint() const
{
    const QSize least = QScrollArea::minimumSizeHint();
    return widget() != nullptr ? QSize(withBar(widget()->minimumSizeHint()).width(), least.height()) : least;
}

bool ColumnArea::eventFilter(QObject* pWatched, QEvent* pEvent)
{
    const bool bTaken = QScrollArea::eventFilter(pWatched, pEvent);
    if (pWatched == widget() && pEvent->type() == QEvent::LayoutRequest) {
        updateGeometry();
    }
    return bTaken;
}

QSize ColumnArea::withBar(const QSize& size) const
{
    const int nFrame = 2 * frameWidth();
    return {size.width() + verticalScrollBar()->sizeHint().width() + nFrame, size.height() + nFrame};
}
