// SPDX-License-Identifier: GPL-3.0-or-later
#include "XTNT/xtnt_parallel.h"

#include "faults/faults.h"
#include "support/ForkedChild.h"

#include <QThread>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <mutex>
#include <set>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

#include <pthread.h>

using XTNT::CancellationCheck;
using XTNT::cancellationPoint;
using XTNT::parallelChunks;
using XTNT::setThreadCount;
using XTNT::threadCount;

namespace {

// Puts the default number of threads back at the end of a test.
class ParallelTest : public ::testing::Test
{
protected:
    void TearDown() override { setThreadCount(0); }
};

std::vector<double> partialSums(long long count, long long grain, int threads)
{
    setThreadCount(threads);
    std::vector<double> sums(static_cast<std::size_t>((count + grain - 1) / grain), 0.0);
    parallelChunks(count, grain, [&](long long begin, long long end) {
        double sum = 0;
        for (long long i = begin; i < end; ++i) {
            sum += std::sin(static_cast<double>(i)) / static_cast<double>(i + 1);
        }
        sums[static_cast<std::size_t>(begin / grain)] = sum;
    });
    return sums;
}

using Chunks = std::set<std::pair<long long, long long>>;

Chunks chunksOf(long long count, long long grain)
{
    Chunks chunks;
    std::mutex mutex;
    parallelChunks(count, grain, [&](long long begin, long long end) {
        const std::lock_guard<std::mutex> lock(mutex);
        EXPECT_TRUE(chunks.insert({begin, end}).second);
    });
    return chunks;
}

void spin(std::chrono::microseconds time)
{
    const auto end = std::chrono::steady_clock::now() + time;
    while (std::chrono::steady_clock::now() < end) {
    }
}

// What a pass that is cancelled in the middle leaves behind.
struct Interrupted
{
    std::function<void(Interrupted&)> pass;
    std::atomic<bool> started{false};
    std::atomic<bool> destructorRan{false};
    std::atomic<bool> cameBack{false};
    std::atomic<long long> chunksDone{0};
    std::atomic<int> inside{0};
    std::atomic<int> insideAfterwards{-1};
};

class Witness
{
public:
    explicit Witness(Interrupted& record) : m_record(record), m_heap(1000, 1.0) {}
    ~Witness()
    {
        m_record.insideAfterwards = m_record.inside.load();
        m_record.destructorRan = m_heap.size() == 1000;
    }

private:
    Interrupted& m_record;
    std::vector<double> m_heap;
};

void* runInterrupted(void* argument)
{
    Interrupted& record = *static_cast<Interrupted*>(argument);
    int former = 0;
    pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &former);
    const Witness witness(record);
    record.pass(record);
    record.cameBack = true;
    return nullptr;
}

// 20,000 chunks of 200 us: seconds of work, of which the test waits for a few hundredths.
void longPass(Interrupted& record)
{
    parallelChunks(20000, 1, [&record](long long, long long) {
        ++record.inside;
        record.started = true;
        spin(std::chrono::microseconds(200));
        ++record.chunksDone;
        --record.inside;
    });
}

void* cancelWhenStarted(Interrupted& record)
{
    pthread_t thread{};
    EXPECT_EQ(0, pthread_create(&thread, nullptr, &runInterrupted, &record));
    while (!record.started) {
        spin(std::chrono::microseconds(50));
    }
    EXPECT_EQ(0, pthread_cancel(thread));
    void* result = nullptr;
    EXPECT_EQ(0, pthread_join(thread, &result));
    return result;
}

} // namespace

TEST_F(ParallelTest, PartialSumsHaveTheSameBitsForAnyNumberOfThreads)
{
    const std::vector<double> one = partialSums(100003, 97, 1);
    EXPECT_EQ(one, partialSums(100003, 97, 2));
    EXPECT_EQ(one, partialSums(100003, 97, 4));
}

TEST_F(ParallelTest, EveryIndexIsVisitedOnceAndTheLastChunkIsShorter)
{
    for (int threads : {1, 2, 3, 8}) {
        setThreadCount(threads);
        EXPECT_EQ((Chunks{{0, 4}, {4, 8}, {8, 10}}), chunksOf(10, 4)) << threads;
        EXPECT_EQ((Chunks{{0, 5}}), chunksOf(5, 1000)) << threads;
        EXPECT_EQ((Chunks{{0, 1}}), chunksOf(1, 1)) << threads;
        EXPECT_EQ(5000u, chunksOf(10000, 2).size()) << threads;
    }
}

TEST_F(ParallelTest, CountBelowOneDoesNothing)
{
    EXPECT_TRUE(chunksOf(0, 8).empty());
    EXPECT_TRUE(chunksOf(-3, 8).empty());
}

TEST_F(ParallelTest, GrainBelowOneCountsAsOne)
{
    EXPECT_EQ((Chunks{{0, 1}, {1, 2}, {2, 3}}), chunksOf(3, 0));
    EXPECT_EQ((Chunks{{0, 1}, {1, 2}, {2, 3}}), chunksOf(3, -5));
}

TEST_F(ParallelTest, GrainAsLargeAsItGetsDoesNotOverflow)
{
    const long long largest = 0x7fffffffffffffffLL;
    EXPECT_EQ((Chunks{{0, 7}}), chunksOf(7, largest));
}

TEST_F(ParallelTest, ThreadCountBelowOneRestoresTheDefault)
{
    setThreadCount(0);
    const int standard = threadCount();
    EXPECT_GE(standard, 1);
    setThreadCount(7);
    EXPECT_EQ(7, threadCount());
    setThreadCount(-1);
    EXPECT_EQ(standard, threadCount());
}

TEST_F(ParallelTest, TwoThreadsWorkAtTheSameTime)
{
    setThreadCount(2);
    // The first chunk ends only when the second has begun: on one thread this would never end.
    std::atomic<int> begun{0};
    parallelChunks(2, 1, [&](long long, long long) {
        ++begun;
        const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (begun < 2 && std::chrono::steady_clock::now() < limit) {
            spin(std::chrono::microseconds(10));
        }
    });
    EXPECT_EQ(2, begun);
}

TEST_F(ParallelTest, CancelledThreadUnwindsBetweenSlicesAndThePoolWorksAfterwards)
{
    const std::vector<double> expected = partialSums(10007, 13, 1);
    for (int threads : {1, 2, 4}) {
        setThreadCount(threads);
        Interrupted record;
        record.pass = longPass;
        EXPECT_EQ(PTHREAD_CANCELED, cancelWhenStarted(record)) << threads;
        EXPECT_TRUE(record.destructorRan) << threads;
        EXPECT_FALSE(record.cameBack) << threads;
        EXPECT_EQ(0, record.insideAfterwards) << "no chunk may run when the caller's frames go";
        EXPECT_LT(record.chunksDone, 20000) << threads;
        EXPECT_EQ(expected, partialSums(10007, 13, threads)) << threads;
    }
}

TEST_F(ParallelTest, ManyCancelledPassesLeaveThePoolUsable)
{
    setThreadCount(2);
    for (int round = 0; round < 50; ++round) {
        Interrupted record;
        record.pass = longPass;
        ASSERT_EQ(PTHREAD_CANCELED, cancelWhenStarted(record));
        ASSERT_TRUE(record.destructorRan);
    }
    EXPECT_EQ(partialSums(1000, 7, 1), partialSums(1000, 7, 2));
}

TEST_F(ParallelTest, TerminatedQThreadWithTerminationDisabledEndsAtACancellationPoint)
{
    class Worker : public QThread
    {
    public:
        std::atomic<bool> started{false};
        std::atomic<bool> ended{false};

    protected:
        void run() override
        {
            setTerminationEnabled(false);
            // The thread sanitizer does not see the locks by which Qt hands over.
            struct HandOver
            {
                std::atomic<bool>& ended;
                ~HandOver() { ended = true; }
            } const handOver{ended};
            for (;;) {
                parallelChunks(100, 1, [this](long long, long long) {
                    started = true;
                    spin(std::chrono::microseconds(20));
                });
            }
        }
    };
    Worker worker;
    worker.start();
    while (!worker.started) {
        QThread::usleep(100);
    }
    worker.terminate();
    EXPECT_TRUE(worker.wait(60000));
    EXPECT_TRUE(worker.ended);
    EXPECT_FALSE(worker.isRunning());
}

TEST_F(ParallelTest, WhereTheSystemGivesNoThreadsTheCallerDoesTheWork)
{
    for (const char* rules : {"thread@1+=EAGAIN", "thread@2+=EAGAIN"}) {
        EXPECT_EQ(inForkedChild([rules] {
                      armFaults(rules, nullptr, nullptr);
                      setThreadCount(5);
                      std::atomic<long long> sum{0};
                      parallelChunks(1000, 1, [&sum](long long begin, long long) { sum += begin; });
                      return sum == 499500 && threadCount() == 5 ? 0 : 1;
                  }),
                  0)
            << rules;
    }
}

TEST_F(ParallelTest, AProcessEndsWhateverItsHelpersDo)
{
    EXPECT_EQ(inForkedChild([] {
                  ::alarm(60);
                  setThreadCount(4);
                  std::atomic<bool> started{false};
                  std::thread([&started] {
                      parallelChunks(100000, 1, [&started](long long, long long) {
                          started = true;
                          spin(std::chrono::microseconds(200));
                      });
                  }).detach();
                  while (!started) {
                      spin(std::chrono::microseconds(50));
                  }
                  std::exit(7);
                  return 0;
              }),
              7);
}

TEST_F(ParallelTest, AForkedChildHasHelpersOfItsOwn)
{
    setThreadCount(3);
    // Until every helper runs: one that is being started holds locks of a sanitizer, which a child would wait for.
    std::atomic<int> inside{0};
    parallelChunks(3, 1, [&inside](long long, long long) {
        ++inside;
        while (inside < 3) {
            spin(std::chrono::microseconds(50));
        }
    });
    EXPECT_EQ(inForkedChild([] {
                  ::alarm(60);
                  std::atomic<int> done{0};
                  parallelChunks(1000, 1, [&done](long long, long long) { ++done; });
                  setThreadCount(2);
                  parallelChunks(1000, 1, [&done](long long, long long) { ++done; });
                  return done == 2000 ? 0 : 1;
              }),
              0);
}

TEST_F(ParallelTest, TwoPassesAtOnceBothEnd)
{
    setThreadCount(3);
    std::atomic<long long> done{0};
    const auto pass = [&done] {
        for (int i = 0; i < 50; ++i) {
            parallelChunks(200, 1, [&done](long long, long long) { ++done; });
        }
    };
    std::thread other(pass);
    pass();
    other.join();
    EXPECT_EQ(done, 2 * 50 * 200);
}

// It is not to throw; when it does, the caller's frames go, and helpers must have left them.
TEST_F(ParallelTest, WhatABodyThrowsOnTheCallersThreadArrivesWhenNoHelperIsInsideAnyMore)
{
    setThreadCount(2);
    const auto caller = std::this_thread::get_id();
    std::atomic<int> begun{0};
    std::atomic<int> inside{0};
    int insideAfterwards = -1;
    try {
        parallelChunks(2, 1, [&](long long, long long) {
            if (std::this_thread::get_id() == caller) {
                const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(60);
                while (begun == 0 && std::chrono::steady_clock::now() < limit) {
                    spin(std::chrono::microseconds(10));
                }
                throw std::runtime_error("thrown by a body");
            }
            ++inside;
            ++begun;
            spin(std::chrono::milliseconds(200));
            --inside;
        });
    } catch (const std::runtime_error&) {
        insideAfterwards = inside;
    }
    EXPECT_EQ(begun, 1);
    EXPECT_EQ(insideAfterwards, 0);
    EXPECT_EQ(partialSums(1000, 7, 1), partialSums(1000, 7, 2));
}

TEST_F(ParallelTest, ThreadThatWasNotCancelledPassesACancellationPointUnchanged)
{
    int state = -1;
    cancellationPoint();
    pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &state);
    EXPECT_EQ(PTHREAD_CANCEL_ENABLE, state);
    cancellationPoint();
    pthread_setcancelstate(PTHREAD_CANCEL_ENABLE, &state);
    EXPECT_EQ(PTHREAD_CANCEL_DISABLE, state) << "the caller's own state comes back";
}

TEST_F(ParallelTest, PassLeavesTheCallersCancelStateAsItWas)
{
    int state = -1;
    parallelChunks(100, 1, [](long long, long long) {});
    pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &state);
    EXPECT_EQ(PTHREAD_CANCEL_ENABLE, state);
    parallelChunks(100, 1, [](long long, long long) {});
    pthread_setcancelstate(PTHREAD_CANCEL_ENABLE, &state);
    EXPECT_EQ(PTHREAD_CANCEL_DISABLE, state);
}

TEST_F(ParallelTest, ACheckEndsAPassOfItsThreadBetweenSlices)
{
    int asked = 0;
    std::atomic<int> done{0};
    const auto pass = [&done] { parallelChunks(10000, 1, [&done](long long, long long) { ++done; }); };
    {
        const CancellationCheck check([&asked] {
            if (++asked == 3) {
                throw std::runtime_error("enough");
            }
        });
        EXPECT_THROW(pass(), std::runtime_error);
        EXPECT_EQ(asked, 3);
        EXPECT_GT(done, 0);
        EXPECT_LT(done, 10000);
        // Other threads have nothing to do with it.
        std::thread(pass).join();
        EXPECT_EQ(asked, 3);
    }
    done = 0;
    pass();
    EXPECT_EQ(done, 10000);
    EXPECT_EQ(asked, 3);
}

TEST_F(ParallelTest, OfTwoChecksTheInnerOneIsAsked)
{
    int outer = 0;
    int inner = 0;
    const CancellationCheck check([&outer] { ++outer; });
    {
        const CancellationCheck second([&inner] { ++inner; });
        cancellationPoint();
    }
    EXPECT_EQ(inner, 1);
    EXPECT_EQ(outer, 0);
    cancellationPoint();
    EXPECT_EQ(outer, 1);
}

TEST(ParallelDeathTest, NestedPassIsAContractViolation)
{
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_DEATH(
        {
            setThreadCount(1);
            parallelChunks(1, 1, [](long long, long long) { parallelChunks(1, 1, [](long long, long long) {}); });
        },
        "parallel.cpp.*!insideBody");
}

TEST(ParallelDeathTest, CancellationPointInsideABodyIsAContractViolation)
{
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_DEATH(
        {
            setThreadCount(1);
            parallelChunks(1, 1, [](long long, long long) { cancellationPoint(); });
        },
        "parallel.cpp.*!insideBody");
}

// The helpers of that pass would go from under it.
TEST(ParallelDeathTest, AnotherNumberOfThreadsDuringAPassIsAContractViolation)
{
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_DEATH(
        {
            ::alarm(60);
            setThreadCount(2);
            std::atomic<bool> started{false};
            std::thread([&started] {
                parallelChunks(1000000, 1, [&started](long long, long long) {
                    started = true;
                    spin(std::chrono::microseconds(200));
                });
            }).detach();
            while (!started) {
                spin(std::chrono::microseconds(50));
            }
            setThreadCount(3);
        },
        "parallel.cpp.*isIdle");
}
