// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/warnings/RunWarning.h"

#include "services/support/QuietMonitor.h"
#include "services/warnings/WarningCollector.h"
#include "services/warnings/strictFailure.h"

#include <QJsonObject>

#include <gtest/gtest.h>

namespace {

const RunWarning mild{RunWarning::Severity::Warning, "decay", "it fades", "wait"};
const RunWarning bad{RunWarning::Severity::Error, "saturated", "too bright", ""};

} // namespace

TEST(RunWarningTest, TheSentenceEndsInTheAdviceWhereThereIsSome)
{
    EXPECT_EQ(mild.sentence(), "it fades; wait");
    EXPECT_EQ(bad.sentence(), "too bright");
    EXPECT_EQ(sentencesOf({bad, mild}), (QStringList{"too bright", "it fades; wait"}));
}

TEST(RunWarningTest, CodesAreToldOnce)
{
    EXPECT_EQ(codesOf({bad, mild, bad}), (QStringList{"saturated", "decay"}));
}

TEST(RunWarningTest, JsonHasSeverityCodeTextAndAdvice)
{
    const QJsonArray json = jsonOf({mild, bad});
    EXPECT_EQ(json[0].toObject(),
              (QJsonObject{{"severity", "warning"}, {"code", "decay"}, {"text", "it fades"}, {"advice", "wait"}}));
    EXPECT_EQ(json[1].toObject()["severity"], "error");
    const QList<RunWarning> back = warningsOfJson(json);
    ASSERT_EQ(back.size(), 2);
    EXPECT_EQ(back[0].sentence(), mild.sentence());
    EXPECT_EQ(codesOf(errorsAmong(back)), QStringList("saturated"));
    EXPECT_TRUE(warningsOfJson({1, "text", QJsonObject{}}).isEmpty());
}

TEST(RunWarningTest, ACollectorHandsOnAndKeepsInOrder)
{
    QuietMonitor monitor;
    WarningCollector collector(monitor);
    collector.warn("an image is gone");
    collector.addAll({bad, mild});
    EXPECT_EQ(monitor.warnings, (QStringList{"an image is gone", "too bright", "it fades; wait"}));
    EXPECT_EQ(codesOf(collector.warnings()), (QStringList{"input", "saturated", "decay"}));
    EXPECT_FALSE(collector.isStopRequested());
    monitor.stop = true;
    EXPECT_TRUE(collector.isStopRequested());
}

TEST(RunWarningTest, StrictEndsAsFailedOnlyWhereTheAnswerIsLikelyToBeWrong)
{
    EXPECT_EQ(strictKind({mild}), Failure::Kind::OnlyWarned);
    EXPECT_EQ(strictKind({mild, bad}), Failure::Kind::Failed);
    const Failure failure = strictFailure({mild, bad});
    EXPECT_EQ(failure.kind(), Failure::Kind::Failed);
    EXPECT_EQ(failure.text(), "the results are written, with 2 warnings: decay, saturated");
    EXPECT_EQ(strictFailure({mild}).text(), "the results are written, with a warning: decay");
}
