// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/BackgroundWork.h"

#include <QCoreApplication>
#include <QThread>

#include <new>

namespace {

constexpr int kPeriod = 50; // ms

} // namespace

BackgroundWork::BackgroundWork(QObject* pParent) : QObject(pParent)
{
    connect(&m_timer, &QTimer::timeout, this, &BackgroundWork::tellProgress);
}

BackgroundWork::~BackgroundWork()
{
    m_bStop = true;
    if (m_pThread != nullptr) {
        m_pThread->wait();
    }
}

void BackgroundWork::start(const Work& work)
{
    if (isRunning()) {
        return;
    }
    m_bStop = false;
    m_bNew = false;
    m_pThread.reset(QThread::create([this, work] { perform(work); }));
    // A piece of work that was waited for has told its end.
    connect(m_pThread.get(), &QThread::finished, this, [this, nStarted = ++m_nStarted] {
        if (isRunning() && nStarted == m_nStarted) {
            end();
        }
    });
    m_timer.start(kPeriod);
    m_pThread->start();
    if (isWithoutThread()) {
        perform(work);
    }
}

bool BackgroundWork::isWithoutThread() const
{
    return isRunning() && !m_pThread->isRunning() && !m_pThread->isFinished();
}

void BackgroundWork::perform(const Work& work)
{
    const Progress progress = [this](int nDone, int nSteps, const QString& strWhat) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_strWhat = strWhat;
        m_dFraction = nSteps > 0 ? static_cast<double>(nDone) / nSteps : -1.0;
        m_bNew = true;
        return !m_bStop;
    };
    QString error;
    bool success = false;
    try {
        success = work(progress, &error);
    } catch (const std::bad_alloc&) {
        error = QStringLiteral("there is not enough memory");
    }
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_bSuccess = success;
    m_strError = error;
}

void BackgroundWork::finish()
{
    if (isRunning()) {
        m_pThread->wait();
        end();
    }
}

void BackgroundWork::letGo(std::unique_ptr<BackgroundWork> pWork)
{
    if (pWork == nullptr || !pWork->isRunning()) {
        return;
    }
    BackgroundWork* pLeft = pWork.release();
    pLeft->stop();
    pLeft->disconnect();
    connect(pLeft, &BackgroundWork::done, pLeft, &QObject::deleteLater);
    pLeft->setParent(QCoreApplication::instance());
}

void BackgroundWork::tellProgress()
{
    if (isWithoutThread()) {
        end();
        return;
    }
    QString what;
    double fraction = -1.0;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (!m_bNew) {
            return;
        }
        m_bNew = false;
        what = m_strWhat;
        fraction = m_dFraction;
    }
    Q_EMIT progressed(what, fraction);
}

void BackgroundWork::end()
{
    m_timer.stop();
    m_pThread->wait();
    m_pThread.reset();
    Q_EMIT done(m_bSuccess, m_strError);
}
