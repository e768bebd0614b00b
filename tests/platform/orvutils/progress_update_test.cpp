// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CAutoProgressUpdate.h"
#include "host/CORVProcess.h"
#include "platform/orvutils/ProgressDisplay.h"

#include <QSemaphore>

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace {

struct Shown
{
    QString m_strMessage;
    double m_dFraction;
    double m_dSeconds;
};

class ProgressUpdateTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        orv::setProgressDisplay([this](const QString& strMessage, double dFraction, double dSeconds) {
            {
                QMutexLocker lock(&m_mutex);
                m_shown.push_back({strMessage, dFraction, dSeconds});
            }
            m_calls.release();
        });
    }
    void TearDown() override { orv::setProgressDisplay({}); }

    // Waits until the display has shown the message; the limit only keeps a broken build from hanging.
    bool waitFor(const QString& strMessage)
    {
        while (m_calls.tryAcquire(1, 60000)) {
            QMutexLocker lock(&m_mutex);
            for (const auto& shown : m_shown) {
                if (shown.m_strMessage == strMessage) {
                    return true;
                }
            }
        }
        return false;
    }

    QMutex m_mutex;
    QSemaphore m_calls;
    std::vector<Shown> m_shown;
};

TEST_F(ProgressUpdateTest, ShowsTheFirstTextAndClearsAtTheEnd)
{
    CAutoProgressUpdate update("Starting");
    update.start();
    EXPECT_TRUE(waitFor("Starting"));
    update.stop();
    EXPECT_TRUE(update.isFinished());
    ASSERT_FALSE(m_shown.empty());
    EXPECT_EQ(m_shown.front().m_strMessage, "Starting");
    EXPECT_EQ(m_shown.front().m_dFraction, -1.0);
    EXPECT_TRUE(m_shown.back().m_strMessage.isNull());
}

TEST_F(ProgressUpdateTest, KeepsTheDisplayAliveWithoutNews)
{
    CAutoProgressUpdate update("Working");
    update.start();
    EXPECT_TRUE(m_calls.tryAcquire(4, 60000));
    update.stop();
    for (std::size_t i = 1; i < m_shown.size(); ++i) {
        EXPECT_GE(m_shown[i].m_dSeconds, m_shown[i - 1].m_dSeconds);
    }
}

TEST_F(ProgressUpdateTest, EmptyTextIsShownAndIsNotTheEnd)
{
    CAutoProgressUpdate update{QString()};
    update.start();
    EXPECT_TRUE(m_calls.tryAcquire(2, 60000));
    update.stop();
    EXPECT_FALSE(m_shown.front().m_strMessage.isNull());
    EXPECT_TRUE(m_shown.back().m_strMessage.isNull());
}

TEST_F(ProgressUpdateTest, MessagesMayComeFromOtherThreads)
{
    CAutoProgressUpdate update("Starting");
    update.start();
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&update, t] {
            for (int i = 0; i < 500; ++i) {
                update.setStatusMessage(QString("%1/%2").arg(t).arg(i));
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    update.setStatusMessage("last");
    EXPECT_EQ(update.statusMessage(), "last");
    EXPECT_TRUE(waitFor("last"));
    update.stop();
}

TEST_F(ProgressUpdateTest, ShareOfWorkIsThatOfTheProcess)
{
    CORVProcess::startLongProcess(0, LONGPROCESS_LOADING, false, QString());
    CORVProcess::setProcessMessage("Loading", 3, 12, nullptr);
    CAutoProgressUpdate update("Loading");
    update.start();
    EXPECT_TRUE(waitFor("Loading"));
    update.stop();
    CORVProcess::endLongProcess(LONGPROCESS_LOADING);
    EXPECT_EQ(m_shown.front().m_dFraction, 0.25);
}

TEST_F(ProgressUpdateTest, StopWithoutStartDoesNotSpoilALaterStart)
{
    CAutoProgressUpdate update("late");
    update.stop();
    update.stop();
    update.start();
    EXPECT_TRUE(waitFor("late"));
    update.stop();
    update.stop();
}

TEST_F(ProgressUpdateTest, StopRightAfterStartEndsTheThread)
{
    for (int i = 0; i < 50; ++i) {
        CAutoProgressUpdate update("brief");
        update.start(QThread::InheritPriority);
        update.stop();
        ASSERT_TRUE(update.isFinished());
    }
}

TEST_F(ProgressUpdateTest, StartsAgainAfterAStop)
{
    CAutoProgressUpdate update("first");
    update.start();
    update.stop();
    update.setStatusMessage("second");
    update.start();
    EXPECT_TRUE(waitFor("second"));
}

TEST_F(ProgressUpdateTest, DestructorStopsTheThread)
{
    {
        CAutoProgressUpdate update("running");
        update.start();
        EXPECT_TRUE(waitFor("running"));
    }
    EXPECT_TRUE(m_shown.back().m_strMessage.isNull());
}

TEST_F(ProgressUpdateTest, DisplayMayStopItsOwnUpdater)
{
    CAutoProgressUpdate update("x");
    orv::setProgressDisplay([&update](const QString&, double, double) { update.stop(); });
    update.start();
    EXPECT_TRUE(update.wait(60000));
}

TEST_F(ProgressUpdateTest, WithoutADisplayItRunsAndStops)
{
    orv::setProgressDisplay({});
    CAutoProgressUpdate update("unseen");
    update.start();
    update.setStatusMessage("still unseen");
    update.stop();
    EXPECT_TRUE(update.isFinished());
    EXPECT_TRUE(m_shown.empty());
}

} // namespace
