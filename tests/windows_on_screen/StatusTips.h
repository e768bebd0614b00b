// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QEvent>
#include <QObject>
#include <QStatusTipEvent>
#include <QStringList>
#include <QWidget>

// The texts that a window is told to show in its status bar.
class StatusTips : public QObject
{
public:
    explicit StatusTips(QWidget& window) { window.installEventFilter(this); }

    QStringList m_told;

    QString last() const { return m_told.isEmpty() ? QStringLiteral("nothing told") : m_told.last(); }

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override
    {
        if (pEvent->type() == QEvent::StatusTip) {
            m_told.append(static_cast<QStatusTipEvent*>(pEvent)->tip());
        }
        return QObject::eventFilter(pWatched, pEvent);
    }
};
