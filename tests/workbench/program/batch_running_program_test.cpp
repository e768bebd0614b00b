// SPDX-License-Identifier: GPL-3.0-or-later
// `spum batch` while it runs: signals, other batches, ended processes, memory, what a terminal shows.
#include "workbench/program/BatchProgramFixture.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QProcess>
#include <QRegularExpression>
#include <QThread>

#include <algorithm>
#include <csignal>

namespace {

// Sequences whose unmixing takes a while.
class LongBatchTest : public BatchProgramFixture
{
protected:
    static constexpr int count = 4;

    void SetUp() override
    {
        BatchProgramFixture::SetUp();
        succeed({"simulate", "large/s0", "--size", "192", "--bands", "12", "--quiet"});
        for (int i = 1; i < count; ++i) {
            const QString copy = QStringLiteral("large/s%1").arg(i);
            for (const auto& name : filesBelow(path("large/s0"))) {
                ASSERT_TRUE(QDir().mkpath(QFileInfo(path(copy + '/' + name)).path()));
                ASSERT_TRUE(QFile::copy(path("large/s0/" + name), path(copy + '/' + name)));
            }
        }
    }
    QStringList longBatch(const QString& strOut, const QStringList& options = {}, const QString& strJobs = "2") const
    {
        QStringList arguments = {"batch", "--out", strOut, "--ncomponents", "3", "--mask", "none", "--jobs", strJobs};
        for (int i = 0; i < count; ++i) {
            arguments.append(QStringLiteral("large/s%1").arg(i));
        }
        return arguments + options;
    }
    // Processes of this program that unmix into a folder of the test. Those that they start themselves, as the leak
    // check of a sanitizer does, bear the same words and are none.
    QStringList children() const
    {
        // A process may end meanwhile.
        const auto told = [](const QString& process, const char* pFile) {
            QFile file("/proc/" + process + pFile);
            return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        };
        QMap<QString, QString> parents;
        for (const QString& process : QDir("/proc").entryList({"[0-9]*"}, QDir::Dirs)) {
            const QByteArray line = told(process, "/cmdline");
            if (line.contains("unmix") && line.contains("--replace") && line.contains(path(".").chopped(2).toUtf8())) {
                // "1234 (spum) S 1230 ..."
                const QList<QByteArray> behindName = told(process, "/stat").split(')').last().split(' ');
                parents.insert(process, QString::fromLatin1(behindName.value(2)));
            }
        }
        QStringList found;
        for (auto i = parents.cbegin(); i != parents.cend(); ++i) {
            if (!parents.contains(i.value())) {
                found.append(i.key());
            }
        }
        return found;
    }
    // Starts a batch and gives it the signal once a sequence has ended and others run.
    // A batch that comes to its end before the signal reaches it, as on a busy machine, is begun again.
    ProgramResult interrupted(const QString& strOut, int nSignal)
    {
        constexpr int mostTries = 10;
        ProgramResult result;
        int tries = 0;
        do {
            QDir(path(strOut)).removeRecursively();
            result = program().runAndSignal(
                longBatch(strOut),
                [&] { return QFileInfo::exists(path(strOut + "/.batch/s0.json")) && !children().isEmpty(); }, nSignal);
        } while (result.status == 0 && ++tries < mostTries);
        return result;
    }
    bool childrenEndWithin(int nMilliseconds) const
    {
        QElapsedTimer timer;
        timer.start();
        while (!children().isEmpty()) {
            if (timer.elapsed() > nMilliseconds) {
                return false;
            }
            QThread::msleep(5);
        }
        return true;
    }
    // Result folders and overall files, without what tells the time.
    void expectSame(const QString& strOne, const QString& strOther) const
    {
        const auto lasting = [](QStringList files) {
            files.erase(
                std::remove_if(files.begin(), files.end(),
                               [](const QString& file) { return file.startsWith(".batch/") || file == "batch.html"; }),
                files.end());
            return files;
        };
        const QStringList files = lasting(filesBelow(path(strOne)));
        EXPECT_EQ(lasting(filesBelow(path(strOther))), files);
        for (const QString& file : files) {
            EXPECT_EQ(lastingContentOf(path(strOne + '/' + file)), lastingContentOf(path(strOther + '/' + file)))
                << qPrintable(file);
        }
        EXPECT_EQ(entriesOf(path(strOther + "/.batch")), entriesOf(path(strOne + "/.batch")));
        for (const QString& name : entriesOf(path(strOther))) {
            EXPECT_TRUE(!name.startsWith('.') || name == ".batch") << qPrintable(name);
        }
    }
};

} // namespace

TEST_F(LongBatchTest, AnInterruptStopsTheProcessesAndTheNextOneGoesOn)
{
    for (const int signalNumber : {SIGINT, SIGTERM}) {
        const ProgramResult result = interrupted("out", signalNumber);
        EXPECT_EQ(result.status, 130) << result.err.constData();
        EXPECT_TRUE(QRegularExpression("^spum: aborted by user: \\d of 4 sequences have ended; the same command goes "
                                       "on\n$")
                        .match(result.errText())
                        .hasMatch())
            << result.err.constData();
        EXPECT_EQ(children(), QStringList());
        const ProgramResult second = succeed(longBatch("out"));
        EXPECT_TRUE(endsIn(second).contains("s0: unchanged since its result")) << second.out.constData();
        EXPECT_LT(unmixedIn(second).split(' ').size(), count);
    }
    succeed(longBatch("plain", {"--quiet"}));
    expectSame("plain", "out");
}

TEST_F(LongBatchTest, AKilledBatchTakesItsProcessesAlongAndTheNextOneGoesOn)
{
    const ProgramResult result = interrupted("out", SIGKILL);
    EXPECT_EQ(result.signal, SIGKILL);
    EXPECT_TRUE(childrenEndWithin(2000));
    const ProgramResult second = succeed(longBatch("out"));
    EXPECT_TRUE(endsIn(second).contains("s0: unchanged since its result")) << second.out.constData();
    succeed(longBatch("plain", {"--quiet"}));
    expectSame("plain", "out");
}

TEST_F(LongBatchTest, ASecondBatchInTheFolderIsRefused)
{
    QProcess first;
    program().startInBackground(first, longBatch("out"));
    QElapsedTimer timer;
    timer.start();
    while (children().isEmpty() && timer.elapsed() < 60000) {
        QThread::msleep(5);
    }
    const QString refused = refusal(longBatch("out"));
    EXPECT_TRUE(refused.startsWith(path("out/") + ": another program is changing it (spum, process "))
        << qPrintable(refused);
    EXPECT_TRUE(refused.endsWith("; one batch at a time can work there")) << qPrintable(refused);
    ASSERT_TRUE(first.waitForFinished(120000));
    EXPECT_EQ(first.exitCode(), 0) << first.readAllStandardError().constData();
    EXPECT_EQ(unmixedIn(succeed(longBatch("out"))), "");
}

// As the system does where memory runs out.
TEST_F(LongBatchTest, AProcessThatIsKilledIsToldByItsSequenceAndTheOthersAreDone)
{
    QProcess batch;
    program().startInBackground(batch, longBatch("out", {}, "1"));
    QElapsedTimer timer;
    timer.start();
    while ((children().isEmpty() || !QFileInfo::exists(path("out/.batch/s0.json"))) && timer.elapsed() < 60000) {
        QThread::msleep(2);
    }
    const QStringList victims = children();
    ASSERT_EQ(victims.size(), 1);
    ASSERT_EQ(::kill(victims.first().toInt(), SIGKILL), 0);
    ASSERT_TRUE(batch.waitForFinished(120000));
    EXPECT_EQ(batch.exitCode(), 1);
    const QString said = QString::fromUtf8(batch.readAllStandardError());
    EXPECT_TRUE(
        QRegularExpression("\ns\\d        the program was ended by signal 9, as the system does when memory runs "
                           "out\nspum: 1 sequence without a result\n$")
            .match(said)
            .hasMatch())
        << qPrintable(said);
    EXPECT_EQ(unmixedIn(succeed(longBatch("out"))).split(' ').size(), 1) << "that one alone is tried again";
    succeed(longBatch("plain", {"--quiet"}));
    expectSame("plain", "out");
}

// A sanitizer takes all the address space there is.
#if !defined(ORV_SANITIZED)
TEST_F(LongBatchTest, ASequenceThatRunsOutOfMemoryIsToldAndTheOthersAreDone)
{
    constexpr int megabytes = 500; // less than the images take as doubles, twice
    succeed({"simulate", "huge", "--size", "1024", "--bands", "24", "--quiet"});
    program().setMemoryLimit(megabytes);
    const ProgramResult result = spum({"batch", "large/s0", "huge", "large/s1", "--out", "out", "--ncomponents", "3",
                                       "--mask", "none", "--jobs", "2", "--max-memory", "100"});
    program().setMemoryLimit(0);
    EXPECT_EQ(result.status, 1);
    const QStringList ends = endsIn(result);
    ASSERT_EQ(ends.size(), 3) << result.out.constData();
    EXPECT_TRUE(ends.at(0).startsWith("huge: failed: ") && ends.at(0).contains("memory")) << qPrintable(ends.at(0));
    EXPECT_TRUE(ends.at(1).startsWith("s0: 3 components")) << qPrintable(ends.at(1));
    EXPECT_TRUE(ends.at(2).startsWith("s1: 3 components")) << qPrintable(ends.at(2));
    EXPECT_TRUE(result.errText().endsWith("\nspum: 1 sequence without a result\n")) << result.err.constData();
    EXPECT_FALSE(QFileInfo::exists(path("out/huge")));
}
#endif

// Two that need most of what is allowed run one after the other.
TEST_F(LongBatchTest, NoMoreRunAtOnceThanMemoryAllows)
{
    const double need = succeed(longBatch("out", {"--list", "--json"}))
                            .json()["sequences"]
                            .toArray()[0]
                            .toObject()["memoryMiB"]
                            .toDouble();
    const auto mostAtOnce = [&](double dTimes) {
        const QString allowed = QString::number(dTimes * need / 1024.0);
        QProcess process;
        program().startInBackground(process, longBatch("out", {"--again", "--max-memory", allowed}, "4"));
        int most = 0;
        while (!process.waitForFinished(5) && process.state() != QProcess::NotRunning) {
            most = std::max(most, static_cast<int>(children().size()));
        }
        EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().constData();
        return most;
    };
    EXPECT_EQ(mostAtOnce(1.5), 1);
    EXPECT_EQ(mostAtOnce(2.5), 2);
}

TEST_F(LongBatchTest, ATerminalShowsHowFarAllAre)
{
    const ProgramResult result = program().runOnTerminal(longBatch("out"));
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(
        QRegularExpression("\\d of 4: s\\d(, s\\d)?  \\d+ %, [0-9a-z ]+ left").match(result.errText()).hasMatch())
        << result.err.constData();
}
