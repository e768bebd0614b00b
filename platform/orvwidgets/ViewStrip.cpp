// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvwidgets/ViewStrip.h"

#include <QAction>
#include <QApplication>
#include <QHBoxLayout>
#include <QMouseEvent>
#include <QToolButton>

namespace orvwidgets {

namespace {

constexpr int kDragStart = 3; // pixels

} // namespace

ViewStrip::ViewStrip(QWidget* pView) : QFrame(pView)
{
    setObjectName(QStringLiteral("ViewStrip"));
    setAutoFillBackground(true);
    setFrameShape(QFrame::StyledPanel);
    auto* pLayout = new QHBoxLayout(this);
    pLayout->setContentsMargins(1, 1, 1, 1);
    pLayout->setSpacing(0);
    installEventFilter(this);
}

void ViewStrip::setActions(const QList<QAction*>& actions)
{
    qDeleteAll(findChildren<QToolButton*>());
    for (QAction* pAction : actions) {
        auto* pButton = new QToolButton(this);
        pButton->setDefaultAction(pAction);
        pButton->setAutoRaise(true);
        // The keys of the view do the same; a strip that comes and goes can't hold the focus.
        pButton->setFocusPolicy(Qt::NoFocus);
        pButton->setAccessibleName(pAction->toolTip());
        pButton->installEventFilter(this);
        layout()->addWidget(pButton);
    }
    m_bButtons = !actions.isEmpty();
    adjustSize();
}

bool ViewStrip::eventFilter(QObject* pWatched, QEvent* pEvent)
{
    return (m_bDragsThrough && drag(pWatched, pEvent)) || QFrame::eventFilter(pWatched, pEvent);
}

bool ViewStrip::drag(QObject* pWatched, QEvent* pEvent)
{
    const QEvent::Type type = pEvent->type();
    if (type != QEvent::MouseButtonPress && type != QEvent::MouseMove && type != QEvent::MouseButtonRelease) {
        return false;
    }
    auto* pMouse = static_cast<QMouseEvent*>(pEvent);
    if (type == QEvent::MouseButtonPress) {
        m_bPassing = false;
        m_pressed = pMouse->globalPos();
        return false;
    }
    const bool bHeld = (pMouse->buttons() & Qt::LeftButton) != 0;
    if (!m_bPassing) {
        if (!bHeld || (pMouse->globalPos() - m_pressed).manhattanLength() < kDragStart) {
            return false;
        }
        m_bPassing = true;
        if (auto* pButton = qobject_cast<QToolButton*>(pWatched)) {
            pButton->setDown(false);
        }
        pass(QEvent::MouseButtonPress, m_pressed, Qt::LeftButton, Qt::LeftButton);
    }
    pass(type, pMouse->globalPos(), pMouse->button(), pMouse->buttons());
    m_bPassing = bHeld;
    return true;
}

void ViewStrip::pass(QEvent::Type type, const QPoint& global, Qt::MouseButton button, Qt::MouseButtons buttons)
{
    QWidget* pView = parentWidget();
    QMouseEvent event(type, pView->mapFromGlobal(global), global, button, buttons, QApplication::keyboardModifiers());
    QApplication::sendEvent(pView, &event);
}

} // namespace orvwidgets
