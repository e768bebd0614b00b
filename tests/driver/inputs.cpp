// SPDX-License-Identifier: GPL-3.0-or-later
#include "driver/inputs.h"

#include <QApplication>
#include <QDragEnterEvent>
#include <QJsonArray>
#include <QKeySequence>
#include <QMimeData>
#include <QUrl>
#include <QWidget>
#include <QWindow>
#include <QtTest/QTest>

namespace {

QPoint pointOf(const QJsonValue& value, const QPoint& otherwise)
{
    const QJsonArray pair = value.toArray();
    return pair.size() == 2 ? QPoint(pair[0].toInt(), pair[1].toInt()) : otherwise;
}

Qt::KeyboardModifiers modifiersOf(const QString& strNames)
{
    Qt::KeyboardModifiers eFound = Qt::NoModifier;
    for (const QString& strName : strNames.split('+', Qt::SkipEmptyParts)) {
        eFound |= strName.compare("ctrl", Qt::CaseInsensitive) == 0    ? Qt::ControlModifier
                  : strName.compare("shift", Qt::CaseInsensitive) == 0 ? Qt::ShiftModifier
                  : strName.compare("alt", Qt::CaseInsensitive) == 0   ? Qt::AltModifier
                                                                       : Qt::NoModifier;
    }
    return eFound;
}

// The native window that gets the widget's events. It is active then, as a window manager would have it.
QWindow* windowOf(QWidget* pWidget)
{
    QWidget* pModal = QApplication::activeModalWidget();
    const bool bBlocked = pModal != nullptr && pModal != pWidget->window() && !pModal->isAncestorOf(pWidget);
    if (QApplication::activePopupWidget() == nullptr && !bBlocked && !pWidget->window()->isActiveWindow()) {
        QApplication::setActiveWindow(pWidget->window());
    }
    return pWidget->window()->windowHandle();
}

QPoint inWindow(QWidget* pWidget, const QPoint& at)
{
    return pWidget->mapTo(pWidget->window(), at);
}

} // namespace

MouseGesture gestureOf(const QJsonObject& words, const QWidget& widget)
{
    const QPoint centre = widget.rect().center();
    MouseGesture gesture;
    gesture.from = pointOf(words["from"], pointOf(words["at"], centre));
    gesture.to = pointOf(words["to"], gesture.from);
    gesture.steps = gesture.to == gesture.from ? 0 : words["steps"].toInt(10);
    const QString strButton = words["button"].toString();
    gesture.button = strButton == "right" ? Qt::RightButton : strButton == "middle" ? Qt::MiddleButton : Qt::LeftButton;
    gesture.modifiers = modifiersOf(words["modifiers"].toString());
    gesture.twice = words["double"].toBool();
    return gesture;
}

void sendMouse(QWidget* pWidget, const MouseGesture& gesture, const std::function<void()>& last)
{
    QWindow* pWindow = windowOf(pWidget);
    const QPoint from = inWindow(pWidget, gesture.from);
    const QPoint to = inWindow(pWidget, gesture.to);
    QTest::mouseMove(pWindow, from);
    if (gesture.twice) {
        QTest::mouseDClick(pWindow, gesture.button, gesture.modifiers, from);
        return;
    }
    // A press may open a menu that takes its window along.
    const QPointer<QWindow> pAlive(pWindow);
    QTest::mousePress(pWindow, gesture.button, gesture.modifiers, from);
    for (int i = 1; i <= gesture.steps && pAlive; ++i) {
        QTest::mouseMove(pWindow, from + (to - from) * i / gesture.steps);
    }
    if (last) {
        last();
    }
    if (pAlive) {
        QTest::mouseRelease(pWindow, gesture.button, gesture.modifiers, to);
    }
}

void sendMove(QWidget* pWidget, const QPoint& at)
{
    QTest::mouseMove(windowOf(pWidget), inWindow(pWidget, at));
}

void sendWheel(QWidget* pWidget, const QPoint& at, int nAngle, Qt::KeyboardModifiers eModifiers)
{
    QWidget* pTarget = pWidget;
    if (QWidget* pInner = pWidget->childAt(at)) {
        pTarget = pInner;
    }
    QWheelEvent event(pTarget->mapFrom(pWidget, at), pWidget->mapToGlobal(at), QPoint(), QPoint(0, nAngle),
                      Qt::NoButton, eModifiers, Qt::NoScrollPhase, false);
    QApplication::sendEvent(pTarget, &event);
}

void sendKeys(QWidget* pWidget, const QString& strKeys)
{
    const QKeySequence sequence(strKeys, QKeySequence::PortableText);
    QWindow* pWindow = windowOf(pWidget);
    for (int i = 0; i < sequence.count(); ++i) {
        const int nKey = sequence[static_cast<uint>(i)];
        QTest::keyClick(pWindow, static_cast<Qt::Key>(nKey & ~Qt::KeyboardModifierMask),
                        Qt::KeyboardModifiers(nKey & static_cast<int>(Qt::KeyboardModifierMask)));
    }
}

void sendText(QWidget* pWidget, const QString& strText, const std::function<void()>& last)
{
    QWindow* pWindow = windowOf(pWidget);
    for (int i = 0; i < strText.size(); ++i) {
        if (i + 1 == strText.size()) {
            last();
        }
        // QTest knows the keys of ASCII only, and stops at others; the text is what edits read.
        const QString strOne = strText.mid(i, 1);
        const char cKey = strOne.at(0).unicode() < 128 ? strOne.at(0).toLatin1() : 'a';
        QTest::sendKeyEvent(QTest::Click, pWindow, QTest::asciiToKey(cKey), strOne, Qt::NoModifier);
    }
}

bool sendDrop(QWidget* pWidget, const QPoint& at, const QStringList& files)
{
    QMimeData data;
    QList<QUrl> urls;
    for (const QString& strFile : files) {
        urls.append(QUrl::fromLocalFile(strFile));
    }
    data.setUrls(urls);
    // As a drag is offered: to the widget under the pointer, then to those around it, until one takes it.
    QWidget* pTarget = pWidget->childAt(at) != nullptr ? pWidget->childAt(at) : pWidget;
    for (; pTarget != nullptr; pTarget = pTarget->isWindow() ? nullptr : pTarget->parentWidget()) {
        if (!pTarget->acceptDrops() || !pTarget->isEnabled()) {
            continue;
        }
        const QPoint inTarget = pTarget->mapFromGlobal(pWidget->mapToGlobal(at));
        QDragEnterEvent enter(inTarget, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(pTarget, &enter);
        if (!enter.isAccepted()) {
            continue;
        }
        QDragMoveEvent move(inTarget, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(pTarget, &move);
        QDropEvent drop(inTarget, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(pTarget, &drop);
        return drop.isAccepted();
    }
    return false;
}
