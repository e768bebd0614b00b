// SPDX-License-Identifier: GPL-3.0-or-later
// What Ctrl-C leaves behind.
#include "storage/exportNames.h"
#include "workbench/program/ProgramFixture.h"

#include <QDir>
#include <QElapsedTimer>
#include <QJsonDocument>
#include <QLockFile>

#include <csignal>
#include <vector>

namespace {

class InterruptProgramTest : public ProgramFixture
{
protected:
    // Whoever runs the tests may ignore signals, as a shell does for its background; programs inherit that.
    void SetUp() override
    {
        ProgramFixture::SetUp();
        std::signal(SIGINT, SIG_DFL);
        std::signal(SIGHUP, SIG_DFL);
    }
    static bool isHidden(const QString& strName) { return strName.startsWith('.'); }

    // Interrupted: status 130, nothing left. Otherwise it was done already, and all is there.
    void expectAllOrNothing(const ProgramResult& result, const QString& strParent, const QStringList& before,
                            const QString& strOut, const QString& strLastFile) const
    {
        QStringList after = entriesOf(strParent);
        if (result.status == 0) {
            EXPECT_TRUE(QFileInfo::exists(strParent + '/' + strOut + '/' + strLastFile));
            EXPECT_TRUE(after.removeOne(strOut));
        } else {
            EXPECT_EQ(result.status, 130) << result.err.constData();
            EXPECT_TRUE(result.err.startsWith("spum: ")) << result.err.constData();
            EXPECT_TRUE(result.err.contains("abort")) << result.err.constData();
            EXPECT_EQ(result.out, QByteArray());
        }
        EXPECT_EQ(after, before);
    }
};

} // namespace

TEST_F(InterruptProgramTest, AnInterruptedSimulationLeavesNothing)
{
    int interrupted = 0;
    for (const int delay : {0, 50, 200}) {
        const ProgramResult result =
            program().runAndInterrupt({"simulate", "seq", "--size", "768"}, path("."), delay, SIGINT);
        expectAllOrNothing(result, path("."), {}, "seq", "SequenceInfo.txt");
        interrupted += result.status == 130 ? 1 : 0;
        QDir(path("seq")).removeRecursively();
    }
    EXPECT_GT(interrupted, 0);
    simulate();
    EXPECT_EQ(entriesOf(path(".")), (QStringList{"seq"}));
}

TEST_F(InterruptProgramTest, AnInterruptedUnmixingLeavesNothing)
{
    succeed({"simulate", "seq", "--size", "384", "--bands", "12", "--quiet"});
    const QStringList before = entriesOf(path("seq"));
    int interrupted = 0;
    for (const int delay : {0, 30, 90, 180, 350}) {
        const ProgramResult result =
            program().runAndInterrupt({"unmix", "seq", "--library", truth()}, path("seq"), delay, SIGINT);
        expectAllOrNothing(result, path("seq"), before, "unmixed-library", "summary.json");
        interrupted += result.status == 130 ? 1 : 0;
        QDir(path("seq/unmixed-library")).removeRecursively();
    }
    EXPECT_GT(interrupted, 0);
    succeed({"unmix", "seq", "--library", truth()});
    EXPECT_TRUE(entriesOf(path("seq")).contains("unmixed-library"));
}

TEST_F(InterruptProgramTest, AnInterruptedResolutionLeavesNothing)
{
    succeed({"simulate", "seq", "--size", "384", "--bands", "12", "--quiet"});
    const QStringList before = entriesOf(path("seq"));
    const QStringList resolve = {"unmix", "seq", "--ncomponents", "3", "--mask", "none"};
    int interrupted = 0;
    for (const int delay : {0, 60, 150, 400}) {
        const ProgramResult result = program().runAndInterrupt(resolve, path("seq"), delay, SIGINT);
        expectAllOrNothing(result, path("seq"), before, "unmixed-automatic", "summary.json");
        interrupted += result.status == 130 ? 1 : 0;
        QDir(path("seq/unmixed-automatic")).removeRecursively();
    }
    EXPECT_GT(interrupted, 0);
}

TEST_F(InterruptProgramTest, ATerminationLeavesNothing)
{
    const ProgramResult result = program().runAndInterrupt({"simulate", "seq", "--size", "768"}, path("."), 0, SIGTERM);
    expectAllOrNothing(result, path("."), {}, "seq", "SequenceInfo.txt");
    EXPECT_EQ(result.status, 130);
}

// With --force the earlier result stays until the new one is complete.
TEST_F(InterruptProgramTest, AnInterruptedReplacementKeepsWhatWasThere)
{
    succeed({"simulate", "seq", "--size", "384", "--bands", "12", "--quiet"});
    succeed({"unmix", "seq", "--library", truth(), "--unit", "radiance"});
    const QStringList before = entriesOf(path("seq"));
    const QByteArray summary = contentOf(path("seq/unmixed-library/summary.json"));
    int interrupted = 0;
    for (const int delay : {0, 40, 120, 250}) {
        const ProgramResult result = program().runAndInterrupt(
            {"unmix", "seq", "--library", truth(), "--unit", "radiance", "--force"}, path("seq"), delay, SIGINT);
        EXPECT_TRUE(result.status == 130 || result.status == 0) << result.status;
        interrupted += result.status == 130 ? 1 : 0;
        EXPECT_EQ(entriesOf(path("seq")), before);
        const QByteArray now = contentOf(path("seq/unmixed-library/summary.json"));
        EXPECT_TRUE(QJsonDocument::fromJson(now).isObject());
        if (result.status == 130) {
            EXPECT_EQ(now, summary);
            continue;
        }
        break;
    }
    EXPECT_GT(interrupted, 0);
}

TEST_F(InterruptProgramTest, AHangUpLeavesNothing)
{
    const ProgramResult result = program().runAndInterrupt({"simulate", "seq", "--size", "768"}, path("."), 0, SIGHUP);
    expectAllOrNothing(result, path("."), {}, "seq", "SequenceInfo.txt");
    EXPECT_EQ(result.status, 130);
}

// nohup: who ignores a hang-up wants the work done.
TEST_F(InterruptProgramTest, AHangUpThatIsIgnoredEndsNothing)
{
    std::signal(SIGHUP, SIG_IGN);
    const ProgramResult result = program().runAndInterrupt({"simulate", "seq", "--size", "256"}, path("."), 0, SIGHUP);
    std::signal(SIGHUP, SIG_DFL);
    EXPECT_EQ(result.status, 0) << result.err.constData();
}

TEST_F(InterruptProgramTest, AnExportEndsWhileItWaitsForAnother)
{
    smallSequence().writeTo(path("seq"));
    succeed({"unmix", "seq", "--library", library(), "--save", "--quiet"});
    const QString target = unmixedTargetFolder("SMALL");
    QLockFile lock(target + ".lock");
    ASSERT_TRUE(lock.tryLock(30000));
    QElapsedTimer timer;
    timer.start();
    const ProgramResult result =
        program().runAndInterrupt({"results", "export", "seq", "SPUM_001", "--out", "maps"}, path("."), 100, SIGTERM);
    EXPECT_EQ(result.status, 130) << result.err.constData();
    EXPECT_TRUE(result.err.contains("abort")) << result.err.constData();
    EXPECT_LT(timer.elapsed(), 20000);
    EXPECT_FALSE(entriesOf(path(".")).contains("maps"));
    lock.unlock();
    succeed({"results", "export", "seq", "SPUM_001", "--out", "maps", "--quiet"});
}

TEST_F(InterruptProgramTest, AnInterruptedExportOfMapsLeavesNothing)
{
    succeed({"simulate", "seq", "--size", "256", "--bands", "12", "--quiet"});
    succeed({"unmix", "seq", "--library", truth(), "--save", "--out", "unmixed", "--quiet"});
    const QStringList before = entriesOf(path("."));
    const QStringList temporary = entriesOf(QDir::tempPath());
    int interrupted = 0;
    for (const int delay : {0, 10, 30, 60, 100}) {
        const ProgramResult result = program().runAndInterrupt(
            {"results", "export", "seq", "SPUM_001", "--out", "maps"}, path("."), delay, SIGTERM);
        expectAllOrNothing(result, path("."), before, "maps", "SequenceInfo.txt");
        EXPECT_EQ(entriesOf(QDir::tempPath()), temporary);
        interrupted += result.status == 130 ? 1 : 0;
        QDir(path("maps")).removeRecursively();
    }
    EXPECT_GT(interrupted, 0);
}

TEST_F(InterruptProgramTest, ASecondSignalEndsItAtOnce)
{
    const ProgramResult result = program().runAndInterrupt({"simulate", "seq", "--size", "768"}, path("."), 0,
                                                           std::vector<int>{SIGINT, SIGTERM});
    // Of two that are both on their way any may be the second.
    EXPECT_TRUE(result.signal == SIGINT || result.signal == SIGTERM) << result.status << " " << result.signal;
    EXPECT_EQ(result.err, QByteArray());
    EXPECT_EQ(entriesOf(path(".")).size(), 1) << "what it was about to write should be there still";
    // And goes with the next program for that folder.
    succeed({"simulate", "seq", "--size", "64", "--bands", "8", "--quiet"});
    EXPECT_EQ(entriesOf(path(".")), (QStringList{"seq"}));
}

class QuestionProgramTest : public InterruptProgramTest
{
protected:
    void SetUp() override
    {
        InterruptProgramTest::SetUp();
        smallSequence().writeTo(path("seq"));
        succeed({"unmix", "seq", "--library", library(), "--save", "--quiet"});
    }
    QStringList saved() const
    {
        QStringList names;
        for (const auto& result : succeed({"results", "list", "seq", "--json"}).json()["results"].toArray()) {
            names.append(result.toObject()["name"].toString());
        }
        return names;
    }

    const QStringList m_deletion{"results", "delete", "seq", "SPUM_001"};
};

TEST_F(QuestionProgramTest, IsAnsweredOnATerminal)
{
    const ProgramResult no = program().runAtQuestion(m_deletion, "n\n");
    EXPECT_EQ(no.status, 1) << no.err.constData();
    EXPECT_TRUE(no.err.endsWith("spum: the result \"SPUM_001\" was not deleted; --yes deletes it without a "
                                "question\n"))
        << no.err.constData();
    EXPECT_EQ(saved(), (QStringList{"SPUM_001"}));
    const ProgramResult yes = program().runAtQuestion(m_deletion, "yes\n");
    EXPECT_EQ(yes.status, 0) << yes.err.constData();
    EXPECT_EQ(saved(), QStringList());
}

TEST_F(QuestionProgramTest, EndsWithASignal)
{
    for (const int signalNumber : {SIGINT, SIGTERM, SIGHUP}) {
        const ProgramResult result = program().runAtQuestion(m_deletion, {}, signalNumber);
        EXPECT_EQ(result.status, 130) << result.err.constData();
        EXPECT_TRUE(result.err.endsWith("spum: aborted by user: the result \"SPUM_001\" was not deleted; --yes deletes "
                                        "it without a question\n"))
            << result.err.constData();
        EXPECT_EQ(saved(), (QStringList{"SPUM_001"}));
    }
}
