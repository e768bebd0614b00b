// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QEvent>
#include <QFrame>
#include <QList>
#include <QPoint>

class QAction;

namespace orvwidgets {

// A strip of buttons over a view. A click is the button's; a drag that starts on the strip goes to the view under it as
// if the strip were not there, so that a picture can be drawn on up to its edges.
class ViewStrip : public QFrame
{
public:
    explicit ViewStrip(QWidget* pView);

    void setActions(const QList<QAction*>& actions);
    bool hasButtons() const { return m_bButtons; }
    // Whether drags go through.
    void setDragsThrough(bool bThrough) { m_bDragsThrough = bThrough; }

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

private:
    bool drag(QObject* pWatched, QEvent* pEvent);
    void pass(QEvent::Type type, const QPoint& global, Qt::MouseButton button, Qt::MouseButtons buttons);

    bool m_bButtons = false;
    bool m_bDragsThrough = false;
    bool m_bPassing = false;
    QPoint m_pressed; // on the screen
};

} // namespace orvwidgets
