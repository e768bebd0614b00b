// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/StagedRun.h"

#include "services/basis/Failure.h"
#include "services/support/CliFixture.h"
#include "services/support/QuietMonitor.h"

#include <QDir>
#include <QFile>

namespace {

class StagedRunTest : public CliFixture
{
protected:
    static void writeMark(const StagedRun& run)
    {
        QFile file(run.path() + QStringLiteral("mark.json"));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("{}");
    }

    QuietMonitor m_monitor;
};

TEST_F(StagedRunTest, FilesAppearWithTheEndOfTheRun)
{
    {
        StagedRun run(path("out"), false, QStringLiteral("mark.json"));
        writeMark(run);
        EXPECT_FALSE(QFile::exists(path("out")));
        run.finish(m_monitor);
    }
    EXPECT_EQ(entriesOf(path("out")), QStringList("mark.json"));
}

TEST_F(StagedRunTest, ARunThatTheUserStopsLeavesNothing)
{
    {
        StagedRun run(path("out"), false, QStringLiteral("mark.json"));
        writeMark(run);
        m_monitor.stop = true;
        EXPECT_THROW(run.finish(m_monitor), Failure);
    }
    EXPECT_TRUE(entriesOf(path(".")).isEmpty());
}

TEST_F(StagedRunTest, AFolderThatIsThereIsRefusedAtOnce)
{
    write(QStringLiteral("out/mark.json"), "{}");
    EXPECT_TRUE(
        failureOf([this] { StagedRun(path("out"), false, QStringLiteral("mark.json")); }).contains(path("out")));
}

TEST_F(StagedRunTest, TheAnswerTellsTheFolder)
{
    const StagedRun run(path("out"), false, QStringLiteral("mark.json"));
    const RunAnswer answer = run.answer(QStringLiteral("done\n"), QJsonObject{{"images", 3}});
    EXPECT_EQ(answer.text, "done\nresults in " + run.target() + '\n');
    EXPECT_EQ(answer.json, (QJsonObject{{"images", 3}, {"folder", run.target()}}));
}

} // namespace
