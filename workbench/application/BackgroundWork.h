// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>
#include <QTimer>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>

class QThread;

// One piece of work on a thread of its own, with progress and the wish to stop. Signals come on the thread of this
// object. The destructor stops the work and waits for it. Where the system gives no thread, start() does the work.
class BackgroundWork : public QObject
{
    Q_OBJECT

public:
    // Told by the work as often as it likes; false asks it to stop.
    using Progress = std::function<bool(int nDone, int nSteps, const QString& strWhat)>;
    // True on success, else with one sentence in *pError.
    using Work = std::function<bool(const Progress& progress, QString* pError)>;

    explicit BackgroundWork(QObject* pParent = nullptr);
    ~BackgroundWork() override;

    // Nothing while a piece of work runs.
    void start(const Work& work);
    void stop() { m_bStop = true; }
    // Waits for the end of the work, if there is any, and tells it.
    void finish();
    // Stops the work, which nobody waits for and whose signals nobody hears any more; it is waited for at the end of
    // the program.
    static void letGo(std::unique_ptr<BackgroundWork> pWork);
    bool isRunning() const { return m_pThread != nullptr; }
    bool isStopWanted() const { return m_bStop; }

Q_SIGNALS:
    // At most twenty times a second. A fraction below 0 is not known.
    void progressed(const QString& strWhat, double dFraction);
    void done(bool bSuccess, const QString& strError);

private:
    // The system has given none: the work is done, its end not told.
    bool isWithoutThread() const;
    void perform(const Work& work);
    void tellProgress();
    void end();

    std::unique_ptr<QThread> m_pThread;
    int m_nStarted = 0; // pieces of work
    QTimer m_timer;
    std::atomic<bool> m_bStop{false};
    std::mutex m_mutex; // of what follows
    QString m_strWhat;
    double m_dFraction = -1.0;
    bool m_bNew = false;
    bool m_bSuccess = false;
    QString m_strError;
};
