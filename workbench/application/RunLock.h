// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QObject>
#include <QPointer>
#include <QTimer>

class QWidget;

// Keeps everything that belongs to a run out of the user's reach while it lasts: the widgets that were named are
// disabled, and enabled again with the focus where it was.
class RunLock : public QObject
{
    Q_OBJECT

public:
    explicit RunLock(QObject* pParent = nullptr);

    // Widgets that are locked, with all that is in them.
    void addWidget(QWidget* pWidget);
    bool isLocked() const { return m_bLocked; }
    // A second call of either does nothing.
    void lock();
    void unlock();
    // Locked until release(), whatever runs begin and end meanwhile.
    void hold();
    void release();

Q_SIGNALS:
    void changed(bool bLocked);
    // Unlocked, and the widget that had the focus is hidden or gone.
    void focusMissing();

private:
    void noteFocus(QWidget* pOld, QWidget* pNow);
    void restoreFocus();

    QList<QPointer<QWidget>> m_widgets;
    QList<QPointer<QWidget>> m_disabled; // by this lock
    // The tool disables itself ahead of the lock; where the focus was then is known from that moment.
    QPointer<QWidget> m_pDisabledFocus;
    QTimer m_forget;
    QPointer<QWidget> m_pFocus;
    bool m_bLocked = false;
    bool m_bHeld = false;
};
