// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/JobThread.h"

#include "XTNT/xtnt_parallel.h"
#include "host/CORVLog.h"
#include "host/CORVProcess.h"
#include "services/basis/Failure.h"
#include "services/basis/JobMonitor.h"
#include "spectra/logLine.h"

#include <QCoreApplication>

#include <new>
#include <utility>

namespace {

// Longest pause between two looks at the events, in milliseconds; the end of the thread ends a pause at once.
constexpr unsigned long pause = 5;
constexpr int percents = 100;

// Hands on the wish to stop and takes down how far the work is.
class ThreadMonitor : public JobMonitor
{
public:
    ThreadMonitor(const std::atomic<bool>& bStop, std::atomic<double>& dFraction)
        : m_bStop(bStop), m_dFraction(dFraction)
    {
    }
    void startProgress(const QString& /*strMessage*/) override {}
    void showProgress(const QString& /*strMessage*/, double dFraction) override { m_dFraction = dFraction; }
    void endProgress() override {}
    void warn(const QString& strText) override { logLine(strText, CORVLOG_WARNING); }
    bool isStopRequested() const override { return m_bStop; }

private:
    const std::atomic<bool>& m_bStop;
    std::atomic<double>& m_dFraction;
};

} // namespace

JobThread::JobThread(Work work) : m_work(std::move(work)), m_strReason(tr("There is no thread to be had for this.")) {}

JobThread::~JobThread()
{
    stop();
    wait();
}

void JobThread::run()
{
    ThreadMonitor monitor(m_bStop, m_dFraction);
    const XTNT::CancellationCheck check([&monitor] { monitor.stopIfRequested(); });
    try {
        monitor.stopIfRequested();
        m_work(monitor);
        m_strReason.clear();
    } catch (const Failure& failure) {
        m_bStopped = failure.kind() == Failure::Kind::Aborted;
        m_strReason = failure.text();
    } catch (const std::bad_alloc&) {
        m_strReason = tr("There is not enough memory for this.");
    } catch (const std::exception& failure) {
        m_strReason = QString::fromUtf8(failure.what());
    }
}

void JobThread::runToEnd(const QString& strMessage, int nPatience, const std::function<void()>& begins)
{
    if (nPatience > 0) {
        start(QThread::InheritPriority);
        if (wait(static_cast<unsigned long>(nPatience))) {
            return;
        }
    }
    // The start takes back what was aborted before; whoever is told of it may abort it at once.
    CORVProcess::startLongProcess(0, LONGPROCESS_GENERAL, true, QStringLiteral("Aborting..."));
    begins();
    stopIfAborted();
    if (nPatience <= 0) {
        start(QThread::InheritPriority);
    }
    int nShown = -1;
    do {
        const int nPercent = static_cast<int>(fraction() * percents);
        if (nPercent != nShown) {
            nShown = nPercent;
            CORVProcess::setProcessMessage(strMessage, nPercent, percents, nullptr);
        }
        QCoreApplication::processEvents();
        stopIfAborted();
    } while (!wait(pause));
    CORVProcess::endLongProcess(LONGPROCESS_GENERAL);
}

void JobThread::stopIfAborted()
{
    if (CORVProcess::isProcessAborted()) {
        stop();
    }
}
