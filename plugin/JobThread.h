// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QThread>

#include <atomic>
#include <functional>

class JobMonitor;

// Work that reads what a result holds, on a thread of its own, while events go on. What it reads is borrowed and must
// not change before the thread has ended. The work may throw what comes of std::exception; it hears of the wish to stop
// by its monitor and at cancellation points.
class JobThread : public QThread
{
    Q_OBJECT

public:
    using Work = std::function<void(JobMonitor& monitor)>;
    explicit JobThread(Work work);
    // Stops and waits.
    ~JobThread() override;

    // The thread ends soon, by a failure of the work.
    void stop() { m_bStop = true; }
    // Share of the work that is done, from 0 to 1.
    double fraction() const { return m_dFraction; }
    // Once the thread has ended: why the work is not done, for the user; empty where it is.
    QString reason() const { return m_strReason; }
    // Once the thread has ended: whether stop() has ended it ahead of time.
    bool isStopped() const { return m_bStopped; }

    // Starts it and comes back when it has ended. Where that takes longer than `nPatience` milliseconds, `begins` is
    // called, and events go on under a long process of that message, whose abort stops the work.
    void runToEnd(const QString& strMessage, int nPatience, const std::function<void()>& begins);

protected:
    void run() override;

private:
    void stopIfAborted();

    const Work m_work;
    std::atomic<bool> m_bStop{false};
    std::atomic<double> m_dFraction{0.0};
    bool m_bStopped = false;
    QString m_strReason;
};
