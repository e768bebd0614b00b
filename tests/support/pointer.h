// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QApplication>
#include <QMouseEvent>
#include <QWheelEvent>
#include <QWidget>

// Mouse events as a user makes them: they reach the child under the place of the press, and a move knows the buttons
// that are held (QTest's moves do not).
namespace pointer {

inline void send(QWidget& widget, QEvent::Type type, const QPointF& at, Qt::MouseButton button, Qt::MouseButtons held,
                 Qt::KeyboardModifiers keys = Qt::NoModifier)
{
    const QPointF global(widget.mapToGlobal(QPoint(0, 0)) + at);
    QMouseEvent event(type, at, global, button, held, keys);
    QApplication::sendEvent(&widget, &event);
}

inline QWidget& under(QWidget& widget, const QPointF& at)
{
    QWidget* pChild = widget.childAt(at.toPoint());
    return pChild != nullptr ? *pChild : widget;
}

inline QPointF inside(QWidget& target, QWidget& widget, const QPointF& at)
{
    return at - QPointF(target.mapTo(&widget, QPoint(0, 0)));
}

inline void press(QWidget& widget, const QPointF& at, Qt::MouseButton button = Qt::LeftButton,
                  Qt::KeyboardModifiers keys = Qt::NoModifier)
{
    QWidget& target = under(widget, at);
    send(target, QEvent::MouseButtonPress, inside(target, widget, at), button, button, keys);
}

inline void move(QWidget& widget, const QPointF& at, Qt::MouseButtons held = Qt::NoButton,
                 Qt::KeyboardModifiers keys = Qt::NoModifier)
{
    send(widget, QEvent::MouseMove, at, Qt::NoButton, held, keys);
}

inline void release(QWidget& widget, const QPointF& at, Qt::MouseButton button = Qt::LeftButton,
                    Qt::KeyboardModifiers keys = Qt::NoModifier)
{
    send(widget, QEvent::MouseButtonRelease, at, button, Qt::NoButton, keys);
}

// A press, moves in steps and a release; `from` may lie on a child of the widget, which then gets all of them.
inline void drag(QWidget& widget, const QPointF& from, const QPointF& to, Qt::MouseButton button = Qt::LeftButton,
                 Qt::KeyboardModifiers keys = Qt::NoModifier)
{
    QWidget& target = under(widget, from);
    press(widget, from, button, keys);
    constexpr int kSteps = 8;
    for (int i = 1; i <= kSteps; ++i) {
        move(target, inside(target, widget, from + (to - from) * i / kSteps), button, keys);
    }
    release(target, inside(target, widget, to), button, keys);
}

inline void wheel(QWidget& widget, const QPointF& at, int nAngle, Qt::KeyboardModifiers keys = Qt::NoModifier)
{
    QWheelEvent event(at, QPointF(widget.mapToGlobal(QPoint(0, 0))) + at, QPoint(), QPoint(0, nAngle), Qt::NoButton,
                      keys, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&widget, &event);
}

} // namespace pointer
