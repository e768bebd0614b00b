// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QJsonObject>
#include <QPoint>
#include <QString>
#include <QStringList>

#include <functional>

class QWidget;

// Gestures as they come from a mouse and a keyboard: through the window of the widget, so that grabs, popups, modal
// windows and disabled widgets take their part. They come back when the program has dealt with them, which may be when
// a dialog that they opened is over. Coordinates are of the widget.
struct MouseGesture
{
    QPoint from;
    QPoint to;
    int steps = 0; // of the way between them, with the button held
    Qt::MouseButton button = Qt::LeftButton;
    Qt::KeyboardModifiers modifiers = Qt::NoModifier;
    bool twice = false; // a double click
};

// From a command's words ("at", "from", "to", "steps", "button", "modifiers", "double").
MouseGesture gestureOf(const QJsonObject& words, const QWidget& widget);

// `last` is called right before the button comes up again.
void sendMouse(QWidget* pWidget, const MouseGesture& gesture, const std::function<void()>& last = nullptr);
void sendMove(QWidget* pWidget, const QPoint& at);
void sendWheel(QWidget* pWidget, const QPoint& at, int nAngle, Qt::KeyboardModifiers eModifiers);
// A sequence as "Ctrl+O" or "Tab"; to the window of the widget, whose focus decides who gets it.
void sendKeys(QWidget* pWidget, const QString& strKeys);
// `last` is called right before the last letter.
void sendText(QWidget* pWidget, const QString& strText, const std::function<void()>& last);
// Files dragged in from outside and let go; false when the widget does not take them.
bool sendDrop(QWidget* pWidget, const QPoint& at, const QStringList& files);
