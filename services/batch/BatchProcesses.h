// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/batch/BatchJob.h"
#include "services/batch/BatchPlaces.h"
#include "services/batch/BatchRecord.h"
#include "services/batch/batchDecision.h"

#include <QElapsedTimer>
#include <QList>
#include <QString>
#include <QStringList>

#include <atomic>
#include <functional>
#include <memory>
#include <vector>

class JobMonitor;
struct JobExamination;

// What became of a sequence of a batch.
struct BatchOutcome
{
    BatchReason reason = BatchReason::NoResult; // Unchanged: it was not unmixed
    BatchRecord record;
};

// What a batch is run with.
struct BatchSettings
{
    QString program; // path of the program that unmixes a sequence
    QString programHash;
    // Its arguments for one, which will have `nAtOnce` beside each other, itself among them.
    std::function<QStringList(const BatchJob& job, int nAtOnce)> arguments;
    int jobs = 1;      // at once
    qint64 memory = 0; // bytes that all of them may take together
    bool again = false;
    bool waits = false; // for another program that has a sequence; otherwise that one fails
    // Called as each ends, in whatever order.
    std::function<void(const BatchJob& job, const BatchOutcome& outcome)> ended;
    // Called every few seconds, for the locks of whoever runs the batch.
    std::function<void()> keep;
};

// Unmixes sequences, each in a process of its own, as many at once as settings and memory allow. A sequence is read
// once, on a thread and while others run, to see whether it has changed since its result; its process starts once
// memory for it is free, the earliest first. How each ended is recorded at once, so that the next run goes on where
// this one was stopped, whatever stopped it.
class BatchProcesses
{
public:
    // `places` must be there. The settings and the monitor are borrowed.
    BatchProcesses(const BatchPlaces& places, const QList<BatchJob>& jobs, const BatchSettings& settings,
                   JobMonitor& monitor);
    ~BatchProcesses();
    BatchProcesses(const BatchProcesses&) = delete;
    BatchProcesses& operator=(const BatchProcesses&) = delete;

    // Returns once all have ended. Throws Failure when the user stops it, or a record cannot be written; the processes
    // have ended then.
    void run();
    int endedCount() const { return m_nEnded; }

private:
    struct Work;

    bool hasRoom() const;
    void lookAhead();
    int atOnce() const;
    void begin(int nJob);
    // True while there is something to do for it.
    bool advance(Work& work);
    void startNextWaiting();
    void start(Work& work);
    void finish(Work& work);
    void fail(const BatchJob& job, const BatchFingerprint& fingerprint, const QString& strMessage);
    void settle(const BatchJob& job, const BatchOutcome& outcome);
    void keepLocks();
    void showProgress();
    void stopAll();

    const BatchPlaces m_places;
    const QList<BatchJob>& m_jobs;
    const BatchSettings& m_settings;
    JobMonitor& m_monitor;
    std::vector<std::unique_ptr<Work>> m_work;
    std::vector<double> m_weights;
    std::vector<bool> m_due; // not examined yet, and unmixed in any case
    double m_dWeight = 0.0;  // of all that is or will be unmixed
    double m_dDone = 0.0;
    int m_nNext = 0;
    int m_nEnded = 0;
    QElapsedTimer m_sinceKept;
    std::atomic<bool> m_bStop{false};
};
