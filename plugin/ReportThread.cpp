// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/ReportThread.h"

#include "XTNT/xtnt_parallel.h"
#include "engine/CORVSpumKyvo.h"
#include "host/CORVLog.h"
#include "services/basis/Failure.h"
#include "services/basis/JobMonitor.h"
#include "services/results/ResultFiles.h"
#include "services/results/StagedRun.h"
#include "spectra/logLine.h"

#include <QDateTime>
#include <QLocale>

#include <exception>
#include <new>
#include <utility>

namespace {

// Hands on the wish to stop; how far the work is the thread tells by itself.
class StoppableMonitor : public JobMonitor
{
public:
    explicit StoppableMonitor(const std::atomic<bool>& bStop) : m_bStop(bStop) {}
    void startProgress(const QString& /*strMessage*/) override {}
    void showProgress(const QString& /*strMessage*/, double /*dFraction*/) override {}
    void endProgress() override {}
    void warn(const QString& strText) override { logLine(strText, CORVLOG_WARNING); }
    bool isStopRequested() const override { return m_bStop; }

private:
    const std::atomic<bool>& m_bStop;
};

} // namespace

ReportThread::ReportThread(const CORVSpumKyvo& engine, ReportRequest request)
    : m_engine(engine), m_request(std::move(request)), m_strReason(tr("There is no thread to be had for the report."))
{
}

ReportThread::~ReportThread()
{
    stop();
    wait();
}

void ReportThread::run()
{
    try {
        write();
        m_strReason.clear();
    } catch (const Failure& failure) {
        m_bStopped = failure.kind() == Failure::Kind::Aborted;
        m_strReason = failure.text();
    } catch (const std::bad_alloc&) {
        m_strReason = tr("There is not enough memory for the report.");
    } catch (const std::exception& failure) {
        // What leaves a thread ends the program.
        m_strReason = tr("The report cannot be written: %1").arg(QString::fromUtf8(failure.what()));
    }
}

Provenance ReportThread::hashed(Provenance provenance) const
{
    provenance.files = hashedFiles(provenance.sequence, provenance.files, [this] { return !m_bStop; });
    return provenance;
}

void ReportThread::write()
{
    StoppableMonitor monitor(m_bStop);
    const XTNT::CancellationCheck check([&monitor] { monitor.stopIfRequested(); });
    StagedRun staged(m_request.folder, false, QStringLiteral("summary.json"));
    ReportFrame frame;
    frame.sequenceName = m_request.sequenceName;
    frame.note = m_request.note;
    frame.made = QLocale::c().toString(QDateTime::currentDateTime(), QStringLiteral("yyyy-MM-dd hh:mm"));
    ResultFiles files(m_engine, numbersOfResult(m_engine, QString()), staged.path());
    files.setRun(staged.name());
    files.setProvenance(hashed(m_request.provenance));
    files.setReport(frame, false);
    if (!m_request.composite.isNull()) {
        files.setComposites({{QStringLiteral("composite.png"), m_request.composite}});
    }
    files.write([this, &monitor](double dFraction) {
        monitor.stopIfRequested();
        m_dFraction = dFraction;
    });
    staged.finish(monitor);
}
