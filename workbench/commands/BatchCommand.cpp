// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/commands/BatchCommand.h"

#include "XTNT/xtnt_parallel.h"
#include "files/FileLock.h"
#include "host/CORVPreference.h"
#include "services/basis/Failure.h"
#include "services/basis/TextTable.h"
#include "services/batch/BatchProcesses.h"
#include "services/batch/JobExamination.h"
#include "services/batch/batchFiles.h"
#include "services/batch/batchTables.h"
#include "services/batch/programHash.h"
#include "services/batch/resultOfFolder.h"
#include "services/batch/sequenceContent.h"
#include "services/batch/unmixMemory.h"
#include "services/results/ResultReport.h"
#include "services/session/LibrarySpectra.h"
#include "services/warnings/strictFailure.h"
#include "workbench/commands/BatchJobs.h"
#include "workbench/commands/CliProgress.h"
#include "workbench/commands/CliSession.h"
#include "workbench/commands/CommandParser.h"
#include "workbench/commands/Options.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonObject>
#include <QLocale>
#include <QVector>

#include <algorithm>
#include <cmath>

namespace {

QString countText(int nCount, const char* pOne, const char* pMany)
{
    return QStringLiteral("%1 %2").arg(nCount).arg(QLatin1String(nCount == 1 ? pOne : pMany));
}

double mebibytes(qint64 bytes)
{
    constexpr double mebibyte = 1 << 20;
    return static_cast<double>(bytes) / mebibyte;
}

// One run of the command from the options to the answer.
class BatchSession
{
public:
    BatchSession(const QCommandLineParser& parser, CliSession& session)
        : m_wishes(batchWishesOf(parser)), m_strThreads(parser.value(QStringLiteral("threads"))), m_session(session),
          m_places(m_wishes.out), m_lock(m_places.batch()), m_jobs(batchJobsOf(parser, session))
    {
        m_settings.jobs = m_wishes.jobs;
        m_settings.memory = m_wishes.memory;
        m_settings.again = m_wishes.again;
        m_settings.program = QCoreApplication::applicationFilePath();
        m_settings.arguments = [this](const BatchJob& job, int nAtOnce) {
            const QString threads = threadsOfJob(nAtOnce);
            const QStringList arguments = unmixArguments(job, m_places.results(job.name));
            return threads.isEmpty() ? arguments : arguments + QStringList(QStringLiteral("--threads=") + threads);
        };
        m_settings.ended = [this](const BatchJob& job, const BatchOutcome& outcome) { tell(job, outcome); };
        m_settings.keep = [this] { m_lock.keep(); };
        // A library that cannot be read would fail every sequence.
        if (parser.isSet(QStringLiteral("library"))) {
            LibrarySpectra().loadWithTables(parser.value(QStringLiteral("library")));
        }
    }

    void run()
    {
        if (m_wishes.list) {
            list();
        } else if (m_wishes.dryRun) {
            tellPlan();
        } else if (m_wishes.gather) {
            lockAll();
            finish();
        } else if (!m_wishes.only.isEmpty()) {
            unmixOne();
        } else {
            lockAll();
            unmixAll();
            finish();
        }
    }

private:
    // Those that run at once share the processors: on threads of each other's they would only wait. One alone, as a
    // scheduler starts it, has what that gives it.
    QString threadsOfJob(int nAtOnce) const
    {
        return !m_strThreads.isEmpty() || nAtOnce < 2 ? m_strThreads
                                                      : QString::number(std::max(1, XTNT::threadCount() / nAtOnce));
    }
    QJsonObject jsonOf(const BatchJob& job, int nAtOnce) const
    {
        const QStringList command = QStringList(QStringLiteral("spum")) + m_settings.arguments(job, nAtOnce);
        return QJsonObject{{"name", job.name},
                           {"group", job.group},
                           {"sequence", job.sequence},
                           {"command", QJsonArray::fromStringList(command)}};
    }

    // For programs, with what a scheduler asks about memory; no image is read, only headers.
    void list()
    {
        QJsonArray sequences;
        QString text;
        for (const BatchJob& job : m_jobs) {
            m_session.stopIfRequested();
            QJsonObject json = jsonOf(job, 1);
            const SequenceSize size = sizeOfSequence(job.sequence, contentOfSequence(job.sequence));
            json.insert(QStringLiteral("memoryMiB"), std::ceil(mebibytes(unmixMemory(size, job.demand))));
            sequences.append(json);
            text += job.name + QLatin1Char('\n');
        }
        m_session.answer(text);
        m_session.setCommand(QStringLiteral("batch list"));
        m_session.answerJson(QJsonObject{{"sequences", sequences}});
    }

    // What would be done with a sequence.
    struct Plan
    {
        bool unmix = false;
        double memory = 0.0; // MiB
        QString why;
    };

    QVector<Plan> makePlans()
    {
        const QString program = programHash();
        QVector<Plan> plans;
        m_session.startProgress(QStringLiteral("Looking at the sequences"));
        for (const BatchJob& job : qAsConst(m_jobs)) {
            m_session.showProgress(QStringLiteral("Looking at the sequences"), plans.size() / (m_jobs.size() + 0.0));
            const JobExamination found = JobExamination::of(job, m_places, program, m_wishes.again,
                                                            [this] { return !m_session.isStopRequested(); });
            m_session.stopIfRequested();
            plans.append(
                {found.reason != BatchReason::Unchanged, std::ceil(mebibytes(found.memory)), reasonText(found.reason)});
        }
        m_session.endProgress();
        return plans;
    }

    void tellPlan()
    {
        const QVector<Plan> plans = makePlans();
        const auto runs =
            static_cast<int>(std::count_if(plans.begin(), plans.end(), [](const Plan& plan) { return plan.unmix; }));
        TextTable table({QStringLiteral("sequence"), QStringLiteral("unmix"), QStringLiteral("memory [MiB]"),
                         QStringLiteral("why")});
        QJsonArray sequences;
        for (int i = 0; i < m_jobs.size(); ++i) {
            const Plan& plan = plans[i];
            table.addRow({m_jobs[i].name, plan.unmix ? QStringLiteral("yes") : QStringLiteral("no"),
                          QString::number(plan.memory), plan.why});
            QJsonObject json = jsonOf(m_jobs[i], std::min(m_wishes.jobs, runs));
            json.insert(QStringLiteral("unmix"), plan.unmix);
            json.insert(QStringLiteral("why"), plan.why);
            json.insert(QStringLiteral("memoryMiB"), plan.memory);
            sequences.append(json);
        }
        m_session.answer(table.toText() + QStringLiteral("\n%1 of %2 would be unmixed\n")
                                              .arg(runs)
                                              .arg(countText(m_jobs.size(), "sequence", "sequences")));
        m_session.setCommand(QStringLiteral("batch plan"));
        m_session.answerJson(QJsonObject{{"sequences", sequences}, {"unmix", runs}});
    }

    // Two batches in one folder would undo each other's overall files.
    void lockAll()
    {
        m_places.make();
        if (m_lock.obtain(0) != FileLock::Outcome::Obtained) {
            throw Failure(
                QStringLiteral("%1: %2; one batch at a time can work there").arg(m_places.folder(), m_lock.reason()));
        }
    }

    void unmixAll()
    {
        m_settings.programHash = programHash();
        BatchProcesses processes(m_places, m_jobs, m_settings, m_session);
        try {
            processes.run();
        } catch (const Failure& failure) {
            if (failure.kind() != Failure::Kind::Aborted) {
                throw;
            }
            throw Failure(QStringLiteral("aborted by user: %1 of %2 have ended; the same command goes on")
                              .arg(processes.endedCount())
                              .arg(countText(m_jobs.size(), "sequence", "sequences")),
                          Failure::Kind::Aborted);
        }
    }

    void unmixOne()
    {
        const auto isMeant = [this](const BatchJob& job) { return job.name == m_wishes.only; };
        const auto found = std::find_if(m_jobs.begin(), m_jobs.end(), isMeant);
        if (found == m_jobs.end()) {
            refuseUsage("batch",
                        QStringLiteral("there is no sequence \"%1\"; --list tells the names.").arg(m_wishes.only));
        }
        m_jobs = {*found};
        m_settings.jobs = 1;
        m_settings.waits = true;
        m_places.make();
        unmixAll();
        m_session.answerJson(batchJson(batchEntries(m_places, m_jobs)));
        complainAbout(batchEntries(m_places, m_jobs));
    }

    // Overall files and answer.
    void finish()
    {
        const QList<BatchEntry> entries = batchEntries(m_places, m_jobs);
        BatchPageFrame frame;
        frame.command = shellLine(QStringList(QStringLiteral("spum")) + QCoreApplication::arguments().mid(1));
        frame.program =
            QStringLiteral("spum %1, %2")
                .arg(CORVPreference::getAppVersion(),
                     QLocale::c().toString(QDateTime::currentDateTime(), QStringLiteral("yyyy-MM-dd hh:mm")));
        writeBatchFiles(m_places, entries, frame, m_session, m_settings.keep);
        QJsonObject json = batchJson(entries);
        json.insert(QStringLiteral("unchanged"), m_nUnchanged);
        json.insert(QStringLiteral("folder"), m_places.folder());
        m_session.answer(
            QStringLiteral("%1, %2 without a result; %3batch.html tells of all\n")
                .arg(countText(json.value(QStringLiteral("done")).toInt(), "sequence is", "sequences are") +
                         QStringLiteral(" unmixed"),
                     QString::number(entries.size() - json.value(QStringLiteral("done")).toInt()), m_places.folder()));
        m_session.answerJson(json);
        complainAbout(entries);
    }

    void complainAbout(const QList<BatchEntry>& entries) const
    {
        TextTable failures({QStringLiteral("sequence"), QStringLiteral("message")});
        TextTable warnings({QStringLiteral("sequence"), QStringLiteral("warning")});
        QList<RunWarning> all;
        for (const BatchEntry& entry : entries) {
            if (entry.state != BatchEntry::State::Done) {
                failures.addRow({entry.job.name, entry.message});
                continue;
            }
            for (const QString& warning : entry.warnings) {
                warnings.addRow({entry.job.name, warning});
            }
            all += warningsOfJson(entry.summary.value(QStringLiteral("warnings")).toArray());
        }
        if (failures.rowCount() > 0) {
            m_session.tellDetails(failures.toText());
            throw Failure(countText(failures.rowCount(), "sequence", "sequences") +
                          QStringLiteral(" without a result"));
        }
        if (m_wishes.strict && warnings.rowCount() > 0) {
            m_session.tellDetails(warnings.toText());
            throw Failure(countText(warnings.rowCount(), "warning", "warnings"), strictKind(all));
        }
    }

    // The line of a sequence that has ended.
    void tell(const BatchJob& job, const BatchOutcome& outcome)
    {
        ++m_nTold;
        m_nUnchanged += outcome.reason == BatchReason::Unchanged ? 1 : 0;
        m_session.answer(QStringLiteral("%1/%2 ").arg(m_nTold).arg(m_jobs.size()) + job.name + QStringLiteral(": ") +
                         TextTable::oneLine(endText(job, outcome)) + QLatin1Char('\n'));
    }

    QString endText(const BatchJob& job, const BatchOutcome& outcome) const
    {
        const BatchRecord& record = outcome.record;
        if (!record.done) {
            return QStringLiteral("failed: ") + record.message;
        }
        if (outcome.reason == BatchReason::Unchanged) {
            return reasonText(outcome.reason);
        }
        const QJsonObject summary = summaryOfFolder(m_places.results(job.name));
        const int components = summary.value(QStringLiteral("components")).toArray().size();
        QString text = QStringLiteral("%1, residual %2 %, %3 s")
                           .arg(countText(components, "component", "components"),
                                TextTable::number(100.0 * summary.value(QStringLiteral("residual")).toDouble(), 4),
                                TextTable::number(record.seconds, 3));
        if (!record.warnings.isEmpty()) {
            text += QStringLiteral(", ") + countText(record.warnings.size(), "warning", "warnings");
        }
        return text;
    }

    const BatchWishes m_wishes;
    const QString m_strThreads; // as the user says; empty: as many as there are to be had
    CliSession& m_session;
    const BatchPlaces m_places;
    FileLock m_lock; // of the whole folder
    QList<BatchJob> m_jobs;
    BatchSettings m_settings;
    int m_nTold = 0;
    int m_nUnchanged = 0;
};

} // namespace

void BatchCommand::declare(CommandParser& parser) const
{
    declareBatchOptions(parser);
}

QList<CommandManual::Example> BatchCommand::examples() const
{
    return {{QStringLiteral("spum batch mice/* --library by-name/spectra.csv --out out"),
             QStringLiteral("Unmix every sequence below \"mice\" with one library; out/batch.html tells of all.")},
            {QStringLiteral("spum batch mice/* --library by-name/spectra.csv --out out --dry-run"),
             QStringLiteral("Only tell what that would do, and why.")}};
}

void BatchCommand::run(const QCommandLineParser& parser, CliSession& session)
{
    BatchSession(parser, session).run();
}
