// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/BackgroundWork.h"

#include "faults/faults.h"

#include <QCoreApplication>
#include <QPointer>
#include <QSemaphore>
#include <QSignalSpy>
#include <QTest>
#include <QThread>

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <new>
#include <utility>

namespace {

constexpr int patience = 30000; // ms

class BackgroundWorkTest : public ::testing::Test
{
protected:
    ~BackgroundWorkTest() override { armFaults(nullptr, nullptr, nullptr); }

    std::unique_ptr<BackgroundWork> m_pWork = std::make_unique<BackgroundWork>();
    QSignalSpy m_done{m_pWork.get(), &BackgroundWork::done};
    QSemaphore m_go;
    std::atomic<int> m_nEnded{0};
    // Waits until it may end.
    const BackgroundWork::Work m_waiting = [this](const BackgroundWork::Progress&, QString*) {
        m_go.acquire();
        ++m_nEnded;
        return true;
    };
};

TEST_F(BackgroundWorkTest, RunsOnAThreadOfItsOwnAndTellsItsEnd)
{
    const QThread* pThread = nullptr;
    m_pWork->start([&pThread](const BackgroundWork::Progress&, QString* pError) {
        pThread = QThread::currentThread();
        *pError = "a reason";
        return false;
    });
    EXPECT_TRUE(m_pWork->isRunning());
    ASSERT_TRUE(m_done.wait(patience));
    EXPECT_FALSE(m_pWork->isRunning());
    EXPECT_NE(pThread, QThread::currentThread());
    EXPECT_EQ(m_done[0], (QVariantList{false, "a reason"}));
}

TEST_F(BackgroundWorkTest, ExhaustedMemoryIsAFailureInWords)
{
    m_pWork->start([](const BackgroundWork::Progress&, QString*) -> bool { throw std::bad_alloc(); });
    ASSERT_TRUE(m_done.wait(patience));
    EXPECT_EQ(m_done[0], (QVariantList{false, "there is not enough memory"}));
}

TEST_F(BackgroundWorkTest, WhoWaitsHearsTheEndAtOnceAndOnce)
{
    m_pWork->finish();
    EXPECT_EQ(m_done.size(), 0) << "nothing was done";
    m_go.release();
    m_pWork->start(m_waiting);
    m_pWork->finish();
    EXPECT_EQ(m_done.size(), 1);
    // What the first piece has left in the queue is not taken for the end of the second.
    m_pWork->start(m_waiting);
    QCoreApplication::processEvents();
    EXPECT_TRUE(m_pWork->isRunning());
    EXPECT_EQ(m_done.size(), 1);
    m_go.release();
    ASSERT_TRUE(m_done.wait(patience));
    EXPECT_EQ(m_done.size(), 2);
    EXPECT_EQ(m_nEnded, 2);
}

TEST_F(BackgroundWorkTest, WorkThatIsLetGoHoldsNobodyUpAndGoesByItself)
{
    const QPointer<BackgroundWork> pWork(m_pWork.get());
    m_pWork->start(m_waiting);
    BackgroundWork::letGo(std::move(m_pWork));
    ASSERT_FALSE(pWork.isNull());
    EXPECT_EQ(m_nEnded, 0);
    m_go.release();
    ASSERT_TRUE(QTest::qWaitFor([&] { return pWork.isNull(); }, patience));
    EXPECT_EQ(m_nEnded, 1);
    EXPECT_EQ(m_done.size(), 0) << "nobody hears of it";
}

TEST_F(BackgroundWorkTest, WithoutWorkNothingIsLeftOfIt)
{
    const QPointer<BackgroundWork> pWork(m_pWork.get());
    BackgroundWork::letGo(std::move(m_pWork));
    EXPECT_TRUE(pWork.isNull());
    BackgroundWork::letGo(nullptr);
}

TEST_F(BackgroundWorkTest, WhereTheSystemGivesNoThreadTheWorkIsDoneAllTheSame)
{
    for (const bool bWaits : {false, true}) {
        m_go.release();
        ASSERT_TRUE(armFaults("thread@1+=EAGAIN", nullptr, nullptr));
        m_pWork->start(m_waiting);
        armFaults(nullptr, nullptr, nullptr);
        EXPECT_TRUE(m_pWork->isRunning()) << "its end is told from the event loop";
        if (bWaits) {
            m_pWork->finish();
        } else {
            ASSERT_TRUE(m_done.wait(patience));
        }
        EXPECT_FALSE(m_pWork->isRunning());
        EXPECT_EQ(m_done.takeFirst(), (QVariantList{true, ""}));
    }
    QCoreApplication::processEvents();
    EXPECT_EQ(m_done.size(), 0);
    EXPECT_EQ(m_nEnded, 2);
}

} // namespace
