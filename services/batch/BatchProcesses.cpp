// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/batch/BatchProcesses.h"

#include "files/FileLock.h"
#include "files/StagedFolder.h"
#include "services/basis/Failure.h"
#include "services/basis/JobMonitor.h"
#include "services/batch/ChildProcess.h"
#include "services/batch/JobExamination.h"
#include "services/batch/childWords.h"
#include "services/batch/sequenceContent.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QFile>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <future>
#include <limits>
#include <system_error>

namespace {

constexpr int tickMilliseconds = 20;
constexpr int keepMilliseconds = 5000;
// A process that is asked to stop mostly does so within that; one that does not is ended, and the next run clears up.
constexpr int stopMilliseconds = 120;
constexpr int keptErrorBytes = 256 << 10;
// What a sequence takes beside its bytes, in bytes: the start of a process, pictures, the disk.
constexpr double fixedWeight = 4e6;

QString gibibytes(qint64 bytes)
{
    constexpr double gibibyte = 1 << 30;
    return QString::number(static_cast<double>(bytes) / gibibyte, 'g', 3);
}

} // namespace

// A sequence that was begun and has not ended.
struct BatchProcesses::Work
{
    explicit Work(int nJob, const QString& strLocked) : job(nJob), lock(strLocked) {}

    enum class Step
    {
        Examined, // on a thread
        Waiting,  // for memory
        Running
    };

    int job;
    Step step = Step::Examined;
    FileLock lock;
    std::future<JobExamination> examination;
    JobExamination found;
    ChildProcess process;
    QByteArray err;
    QElapsedTimer timer;
};

BatchProcesses::BatchProcesses(const BatchPlaces& places, const QList<BatchJob>& jobs, const BatchSettings& settings,
                               JobMonitor& monitor)
    : m_places(places), m_jobs(jobs), m_settings(settings), m_monitor(monitor)
{
}

BatchProcesses::~BatchProcesses()
{
    stopAll();
}

void BatchProcesses::run()
{
    m_monitor.startProgress(QStringLiteral("Looking at the sequences"));
    lookAhead();
    m_sinceKept.start();
    // Wakes the loop to look for a signal; what ends wakes it by itself.
    QTimer tick;
    tick.start(tickMilliseconds);
    while (m_nEnded < m_jobs.size()) {
        m_monitor.stopIfRequested();
        while (hasRoom()) {
            begin(m_nNext++);
        }
        for (std::size_t i = 0; i < m_work.size();) {
            if (advance(*m_work[i])) {
                ++i;
            } else {
                m_work.erase(m_work.begin() + static_cast<std::ptrdiff_t>(i));
            }
        }
        startNextWaiting();
        keepLocks();
        showProgress();
        if (m_nEnded < m_jobs.size() && !hasRoom()) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
    }
    m_monitor.endProgress();
}

// One more than run is looked at, so that it can start as soon as another one ends.
bool BatchProcesses::hasRoom() const
{
    return m_nNext < m_jobs.size() && static_cast<int>(m_work.size()) <= m_settings.jobs;
}

// Time goes with the bytes of a sequence, near enough to tell what is left.
void BatchProcesses::lookAhead()
{
    for (const BatchJob& job : m_jobs) {
        m_monitor.stopIfRequested();
        const auto bytes = bytesOfSequence(job.sequence, contentOfSequence(job.sequence));
        m_weights.push_back(fixedWeight + static_cast<double>(bytes));
        m_dWeight += m_weights.back();
        m_due.push_back(JobExamination::isDue(job, m_places, m_settings.programHash, m_settings.again));
    }
}

// How many run beside each other from now on: those that are left alone take no processor.
int BatchProcesses::atOnce() const
{
    const auto due = std::count(m_due.begin(), m_due.end(), true);
    const auto begun = std::count_if(m_work.begin(), m_work.end(),
                                     [](const auto& pWork) { return pWork->step != Work::Step::Examined; });
    return static_cast<int>(std::min<std::ptrdiff_t>(m_settings.jobs, due + begun));
}

void BatchProcesses::begin(int nJob)
{
    const BatchJob& job = m_jobs[nJob];
    auto pWork = std::make_unique<Work>(nJob, m_places.record(job.name));
    const int patience = m_settings.waits ? std::numeric_limits<int>::max() : 0;
    const auto outcome = pWork->lock.obtain(patience, [this] { return !m_monitor.isStopRequested(); });
    m_monitor.stopIfRequested();
    if (outcome != FileLock::Outcome::Obtained) {
        m_dDone += m_weights[static_cast<std::size_t>(nJob)];
        m_due[static_cast<std::size_t>(nJob)] = false;
        ++m_nEnded;
        BatchOutcome refused;
        refused.record.message = pWork->lock.reason();
        m_settings.ended(job, refused); // unrecorded: the other one will tell
        return;
    }
    // A result that a killed program had moved aside.
    StagedFolder::takeBackMissing(m_places.results(job.name));
    const auto examine = [this, nJob] {
        const JobExamination found = JobExamination::of(m_jobs[nJob], m_places, m_settings.programHash,
                                                        m_settings.again, [this] { return !m_bStop; });
        QAbstractEventDispatcher::instance(QCoreApplication::instance()->thread())->wakeUp();
        return found;
    };
    try {
        pWork->examination = std::async(std::launch::async, examine);
    } catch (const std::system_error&) {
        // The system gives no thread: this one does it.
        pWork->examination = std::async(std::launch::deferred, examine);
    }
    m_work.push_back(std::move(pWork));
}

bool BatchProcesses::advance(Work& work)
{
    const BatchJob& job = m_jobs[work.job];
    const double weight = m_weights[static_cast<std::size_t>(work.job)];
    if (work.step == Work::Step::Examined) {
        if (work.examination.wait_for(std::chrono::seconds(0)) == std::future_status::timeout) {
            return true;
        }
        work.found = work.examination.get();
        m_due[static_cast<std::size_t>(work.job)] = false;
        if (work.found.reason == BatchReason::Unchanged) {
            m_dWeight -= weight;
            ++m_nEnded;
            m_settings.ended(job, {BatchReason::Unchanged, *work.found.record});
            return false;
        }
        if (work.found.memory > m_settings.memory) {
            m_dDone += weight;
            fail(job, work.found.fingerprint,
                 QStringLiteral("it takes %1 GiB of memory, where %2 are to be had; a coarser --binning takes less, "
                                "--max-memory allows more")
                     .arg(gibibytes(work.found.memory), gibibytes(m_settings.memory)));
            return false;
        }
        work.step = Work::Step::Waiting;
    }
    if (work.step == Work::Step::Running) {
        work.err = (work.err + work.process.readAllStandardError()).right(keptErrorBytes);
        if (work.process.state() == QProcess::NotRunning) {
            m_dDone += weight;
            finish(work);
            return false;
        }
    }
    return true;
}

// The earliest alone, or a large one could wait for ever.
void BatchProcesses::startNextWaiting()
{
    for (;;) {
        int running = 0;
        qint64 used = 0;
        Work* pFirst = nullptr;
        for (const auto& pWork : m_work) {
            if (pWork->step == Work::Step::Running) {
                ++running;
                used += pWork->found.memory;
            } else if (pWork->step == Work::Step::Waiting && (pFirst == nullptr || pWork->job < pFirst->job)) {
                pFirst = pWork.get();
            }
        }
        if (pFirst == nullptr || running >= m_settings.jobs || used + pFirst->found.memory > m_settings.memory) {
            return;
        }
        start(*pFirst);
    }
}

void BatchProcesses::start(Work& work)
{
    // Until it ends nothing is known of it, whatever ends this program.
    const QString name = m_jobs[work.job].name;
    QFile::remove(m_places.record(name));
    QFile::remove(m_places.ended(name));
    work.step = Work::Step::Running;
    work.timer.start();
    work.process.startBound(m_settings.program, m_settings.arguments(m_jobs[work.job], atOnce()));
}

void BatchProcesses::finish(Work& work)
{
    const BatchJob& job = m_jobs[work.job];
    const QProcess& process = work.process;
    if (process.error() == QProcess::FailedToStart) {
        fail(job, work.found.fingerprint, QStringLiteral("%1: %2").arg(m_settings.program, process.errorString()));
        return;
    }
    const bool crashed = process.exitStatus() != QProcess::NormalExit;
    BatchOutcome outcome;
    outcome.reason = work.found.reason;
    BatchRecord& record = outcome.record;
    record.done = !crashed && process.exitCode() == 0;
    const ChildWords words = childWords(work.err, !record.done);
    record.warnings = words.warnings;
    record.message = words.message;
    if (record.done && !isCompleteResult(m_places.results(job.name))) {
        record.done = false;
        record.message = QStringLiteral("the program ended well, but its result is not there");
    }
    if (!record.done && record.message.isEmpty()) {
        record.message = silentEndText(process.exitCode(), crashed);
    }
    record.seconds = static_cast<double>(work.timer.elapsed()) / 1000.0;
    record.fingerprint = work.found.fingerprint;
    settle(job, outcome);
}

void BatchProcesses::fail(const BatchJob& job, const BatchFingerprint& fingerprint, const QString& strMessage)
{
    BatchOutcome outcome;
    outcome.record.message = strMessage;
    outcome.record.fingerprint = fingerprint;
    settle(job, outcome);
}

void BatchProcesses::settle(const BatchJob& job, const BatchOutcome& outcome)
{
    outcome.record.write(m_places.record(job.name));
    ++m_nEnded;
    m_settings.ended(job, outcome);
}

void BatchProcesses::keepLocks()
{
    if (m_sinceKept.elapsed() < keepMilliseconds) {
        return;
    }
    m_sinceKept.restart();
    m_settings.keep();
    for (const auto& pWork : m_work) {
        pWork->lock.keep();
    }
}

void BatchProcesses::showProgress()
{
    QStringList names;
    for (const auto& pWork : m_work) {
        if (pWork->step == Work::Step::Running) {
            names.append(m_jobs[pWork->job].name);
        }
    }
    QString text = QStringLiteral("%1 of %2").arg(m_nEnded).arg(m_jobs.size());
    if (!names.isEmpty()) {
        constexpr int shown = 3;
        const QString more = names.size() > shown ? QStringLiteral(", ...") : QString();
        text += QStringLiteral(": ") + QStringList(names.mid(0, shown)).join(QStringLiteral(", ")) + more;
    }
    m_monitor.showProgress(text, m_dWeight > 0.0 ? m_dDone / m_dWeight : -1.0);
}

void BatchProcesses::stopAll()
{
    m_bStop = true;
    for (const auto& pWork : m_work) {
        pWork->process.askToStop();
    }
    QElapsedTimer timer;
    timer.start();
    for (const auto& pWork : m_work) {
        const auto left = static_cast<int>(std::max<qint64>(0, stopMilliseconds - timer.elapsed()));
        if (pWork->process.state() != QProcess::NotRunning && !pWork->process.waitForFinished(left)) {
            pWork->process.kill();
            pWork->process.waitForFinished();
        }
    }
    m_work.clear();
}
