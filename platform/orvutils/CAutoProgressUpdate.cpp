// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CAutoProgressUpdate.h"

#include "platform/orvutils/ProgressDisplay.h"

#include <QElapsedTimer>
#include <QMutexLocker>

namespace {

constexpr unsigned long refreshMilliseconds = 200;

struct Display
{
    QMutex mutex;
    std::function<void(const QString&, double)> function;
};

Display& display()
{
    static Display instance;
    return instance;
}

void show(const QString& strMessage, double dElapsedSeconds)
{
    QMutexLocker lock(&display().mutex);
    if (display().function)
        display().function(strMessage, dElapsedSeconds);
}

} // namespace

namespace orv {

void setProgressDisplay(std::function<void(const QString&, double)> function)
{
    QMutexLocker lock(&display().mutex);
    display().function = std::move(function);
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
    {
        QMutexLocker lock(&m_mutex);
        m_bStop = true;
        m_wake.wakeAll();
    }
    wait();
}

void CAutoProgressUpdate::run()
{
    QElapsedTimer timer;
    timer.start();
    QMutexLocker lock(&m_mutex);
    while (!m_bStop) {
        const QString message = m_strMessage;
        m_bChanged = false;
        lock.unlock();
        show(message, static_cast<double>(timer.elapsed()) / 1000.0);
        lock.relock();
        if (!m_bStop && !m_bChanged)
            m_wake.wait(&m_mutex, refreshMilliseconds);
    }
}
