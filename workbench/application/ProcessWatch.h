// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/orvutils/ProcessControl.h"

#include <QObject>

#include <memory>

// Brings what long processes tell, on whichever thread, to the thread of this object. There is one at a time.
class ProcessWatch : public QObject
{
    Q_OBJECT

public:
    explicit ProcessWatch(QObject* pParent = nullptr);
    ~ProcessWatch() override;

    // As last brought here.
    const orv::ProcessState& state() const { return m_state; }
    bool isRunning() const { return m_state.m_nRunning > 0; }
    // Of the process or of the thread that keeps its progress alive.
    QString message() const;
    double fraction() const; // 0 to 1, or -1 when it is not known

Q_SIGNALS:
    // At once when it happened on this thread, which may then be busy for a while.
    void changed();

private:
    struct Inbox;

    Q_INVOKABLE void takeNews();

    std::shared_ptr<Inbox> m_pInbox;
    int m_nObserver;
    orv::ProcessState m_state;
    QString m_strMessage; // of the progress thread
    double m_dFraction = -1.0;
};
