// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CAutoProgressUpdate.h"

#include "platform/orvutils/ProcessControl.h"
#include "platform/orvutils/ProgressDisplay.h"

#include <QElapsedTimer>
#include <QMutexLocker>

#include <algorithm>

namespace orv {

namespace {

constexpr unsigned long intervalMilliseconds = 150;

struct Installed
{
    QMutex m_mutex;
    ProgressDisplay m_display;
};

Installed& installed()
{
    static auto* const pInstalled = new Installed;
    return *pInstalled;
}

double fractionDone()
{
    const auto state = processState();
    if (state.m_nSteps <= 0) {
        return -1.0;
    }
    return std::clamp(static_cast<double>(state.m_nStep) / state.m_nSteps, 0.0, 1.0);
}

void show(const QString& strMessage, double dFraction, double dSeconds)
{
    QMutexLocker lock(&installed().m_mutex);
    if (installed().m_display) {
        installed().m_display(strMessage, dFraction, dSeconds);
    }
}

} // namespace

void setProgressDisplay(ProgressDisplay display)
{
    QMutexLocker lock(&installed().m_mutex);
    installed().m_display = std::move(display);
}

} // namespace orv

CAutoProgressUpdate::CAutoProgressUpdate(const QString& strText, QObject* pParent)
    : QThread(pParent), m_strMessage(strText)
{
}

CAutoProgressUpdate::~CAutoProgressUpdate()
{
    stop();
}

void CAutoProgressUpdate::setStatusMessage(const QString& strMessage)
{
    QMutexLocker lock(&m_mutex);
    m_strMessage = strMessage;
    m_bChanged = true;
    m_wake.wakeAll();
}

QString CAutoProgressUpdate::statusMessage() const
{
    QMutexLocker lock(&m_mutex);
    return m_strMessage;
}

void CAutoProgressUpdate::stop()
{
    // Without a thread there is nothing to end, and a later start must not find the order to stop.
    if (!isRunning()) {
        return;
    }
    {
        QMutexLocker lock(&m_mutex);
        m_bStop = true;
        m_wake.wakeAll();
    }
    // A display that ends its own updater: the thread can't wait for itself, it ends with this turn.
    if (QThread::currentThread() == this) {
        return;
    }
    wait();
    QMutexLocker lock(&m_mutex);
    m_bStop = false;
}

void CAutoProgressUpdate::run()
{
    QElapsedTimer timer;
    timer.start();
    const auto seconds = [&timer] { return static_cast<double>(timer.elapsed()) / 1000.0; };
    QMutexLocker lock(&m_mutex);
    while (!m_bStop) {
        // A null message would tell the display that all is over.
        const QString message = m_strMessage.isNull() ? QString(QLatin1String("")) : m_strMessage;
        m_bChanged = false;
        lock.unlock();
        orv::show(message, orv::fractionDone(), seconds());
        lock.relock();
        if (!m_bStop && !m_bChanged) {
            m_wake.wait(&m_mutex, orv::intervalMilliseconds);
        }
    }
    lock.unlock();
    orv::show(QString(), -1.0, seconds());
}
