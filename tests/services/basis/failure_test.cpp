// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/basis/Failure.h"

#include "services/support/QuietMonitor.h"

#include <gtest/gtest.h>

TEST(FailureTest, TheTextIsTheMessageWithWhatToDoBehindIt)
{
    const Failure failure(QStringLiteral("seq exists already"), QStringLiteral("--force replaces it"));
    EXPECT_EQ(failure.message(), "seq exists already");
    EXPECT_EQ(failure.whatToDo(), "--force replaces it");
    EXPECT_EQ(failure.text(), "seq exists already; --force replaces it");
    EXPECT_STREQ(failure.what(), "seq exists already; --force replaces it");
    EXPECT_EQ(failure.kind(), Failure::Kind::Failed);
}

TEST(FailureTest, WithoutAdviceTheTextIsTheMessage)
{
    const Failure failure(QStringLiteral("--select names no image."), Failure::Kind::BadRequest);
    EXPECT_EQ(failure.text(), "--select names no image.");
    EXPECT_EQ(failure.whatToDo(), "");
    EXPECT_EQ(failure.kind(), Failure::Kind::BadRequest);
}

TEST(JobMonitorTest, WorkStopsOnceThatIsAskedFor)
{
    QuietMonitor monitor;
    EXPECT_NO_THROW(monitor.stopIfRequested());
    monitor.stop = true;
    try {
        monitor.stopIfRequested();
        FAIL() << "the work went on";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.kind(), Failure::Kind::Aborted);
        EXPECT_EQ(failure.text(), "aborted by user");
    }
}
