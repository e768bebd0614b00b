// SPDX-License-Identifier: GPL-3.0-or-later
// The parallel helper of XTNT/xtnt_parallel.h: oneTBB in a product build, std::thread where the thread sanitizer has to
// see every hand-over (ORV_PARALLEL_STD_THREAD).
#include "XTNT/xtnt_assert.h"
#include "XTNT/xtnt_parallel.h"

#ifdef ORV_PARALLEL_STD_THREAD
#include <system_error>
#include <thread>
#include <vector>
#else
#include <oneapi/tbb/blocked_range.h>
#include <oneapi/tbb/global_control.h>
#include <oneapi/tbb/parallel_for.h>
#include <oneapi/tbb/partitioner.h>
#include <oneapi/tbb/task_arena.h>
#endif

#include <algorithm>
#include <atomic>
#include <chrono>
#include <memory>

#include <pthread.h>
#include <sched.h>

#if defined(__SANITIZE_ADDRESS__)
#define ORV_ADDRESS_SANITIZER
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ORV_ADDRESS_SANITIZER
#endif
#endif
#ifdef ORV_ADDRESS_SANITIZER
#include <sanitizer/asan_interface.h>
#endif

namespace XTNT {

namespace {

// An abort waits for the slice under way, so a slice aims below the 10 ms that the contract names: the time of the next
// one is only estimated from the ones before.
constexpr double sliceSeconds = 0.006;
// A slice holds at most this many times the chunks of the one before, lest a cheap first chunk (an empty corner of an
// image) makes the next slice far too long.
constexpr long long sliceGrowth = 4;

// True on a thread while it runs a chunk.
thread_local bool insideBody = false;

class BodyScope
{
public:
    BodyScope() { insideBody = true; }
    ~BodyScope() { insideBody = false; }
    BodyScope(const BodyScope&) = delete;
    BodyScope& operator=(const BodyScope&) = delete;
};

// Keeps the door closed while the pass is inside the parallel library, which must not be unwound. The former state
// comes back at the end and when the pass is unwound.
class ClosedDoor
{
public:
    ClosedDoor() { pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &m_formerState); }
    ~ClosedDoor() { pthread_setcancelstate(m_formerState, nullptr); }
    ClosedDoor(const ClosedDoor&) = delete;
    ClosedDoor& operator=(const ClosedDoor&) = delete;

private:
    int m_formerState = PTHREAD_CANCEL_ENABLE;
};

// The processors that this process may use.
int defaultThreadCount()
{
    cpu_set_t set;
    CPU_ZERO(&set);
    if (sched_getaffinity(0, sizeof set, &set) != 0) {
        return 1;
    }
    return std::max(1, CPU_COUNT(&set));
}

// Chunks [first, last) of a pass, handed out one by one to whichever thread is free.
class Slice
{
public:
    Slice(long long count, long long grain, const std::function<void(long long, long long)>& body, long long first,
          long long last)
        : m_count(count), m_grain(grain), m_body(body), m_next(first), m_last(last)
    {
    }

    // Runs chunks until none is left.
    void drain()
    {
        const BodyScope scope;
        for (long long chunk = m_next.fetch_add(1, std::memory_order_relaxed); chunk < m_last;
             chunk = m_next.fetch_add(1, std::memory_order_relaxed)) {
            const long long begin = chunk * m_grain;
            m_body(begin, begin + std::min(m_grain, m_count - begin));
        }
    }

private:
    const long long m_count;
    const long long m_grain;
    const std::function<void(long long, long long)>& m_body;
    std::atomic<long long> m_next;
    const long long m_last;
};

#ifdef ORV_PARALLEL_STD_THREAD

class Workers
{
public:
    explicit Workers(int threads) : m_threads(threads) {}
    int threads() const { return m_threads; }

    void run(Slice& slice, int threads)
    {
        std::vector<std::thread> helpers;
        try {
            for (int i = 1; i < threads; ++i) {
                helpers.emplace_back([&slice] { slice.drain(); });
            }
        } catch (const std::system_error&) {
            // No further thread to be had: those that run, at least this one, do the work.
        }
        slice.drain();
        for (std::thread& helper : helpers) {
            helper.join();
        }
    }

private:
    int m_threads;
};

#else

class Workers
{
public:
    // The library starts no more workers than processors unless it is told so.
    explicit Workers(int threads)
        : m_threads(threads), m_limit(tbb::global_control::max_allowed_parallelism,
                                      static_cast<std::size_t>(std::max(threads, defaultThreadCount()))),
          m_arena(threads)
    {
    }
    int threads() const { return m_threads; }

    void run(Slice& slice, int threads)
    {
        m_arena.execute([&slice, threads] {
            tbb::parallel_for(
                tbb::blocked_range<int>(0, threads, 1), [&slice](const tbb::blocked_range<int>&) { slice.drain(); },
                tbb::simple_partitioner());
        });
    }

private:
    int m_threads;
    tbb::global_control m_limit;
    tbb::task_arena m_arena;
};

#endif

std::unique_ptr<Workers>& workersSlot()
{
    static std::unique_ptr<Workers> slot = std::make_unique<Workers>(defaultThreadCount());
    return slot;
}

// Number of chunks of the next slice, from the time that the last one took.
long long nextSliceLength(long long length, double seconds, long long threads)
{
    const double fitting = static_cast<double>(length) * sliceSeconds / std::max(seconds, 1e-9);
    const double bounded = std::min(fitting, static_cast<double>(length * sliceGrowth));
    return std::max(threads, static_cast<long long>(bounded) / threads * threads);
}

} // namespace

void parallelChunks(long long count, long long grain, const std::function<void(long long begin, long long end)>& body)
{
    XTNT_ASSERT(!insideBody);
    if (count < 1) {
        return;
    }
    grain = std::max(grain, 1LL);

    const ClosedDoor door;
    Workers& workers = *workersSlot();
    const long long threads = workers.threads();
    const long long chunks = (count - 1) / grain + 1;
    long long length = threads;
    for (long long first = 0; first < chunks;) {
        cancellationPoint();
        const auto start = std::chrono::steady_clock::now();
        const long long last = first + std::min(length, chunks - first);
        Slice slice(count, grain, body, first, last);
        const int helpers = static_cast<int>(std::min(threads, last - first));
        if (helpers == 1) {
            slice.drain();
        } else {
            workers.run(slice, helpers);
        }
        const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
        length = nextSliceLength(last - first, elapsed.count(), threads);
        first = last;
    }
}

void cancellationPoint()
{
    XTNT_ASSERT(!insideBody);
    int formerState = PTHREAD_CANCEL_ENABLE;
    pthread_setcancelstate(PTHREAD_CANCEL_ENABLE, &formerState);
#ifdef ORV_ADDRESS_SANITIZER
    // The sanitizer sees a thrown exception and clears the marks of the frames that it skips, but not this unwinding.
    __asan_handle_no_return();
#endif
    pthread_testcancel();
    pthread_setcancelstate(formerState, nullptr);
}

void setThreadCount(int n)
{
    XTNT_ASSERT(!insideBody);
    const int threads = n < 1 ? defaultThreadCount() : n;
    if (threads != threadCount()) {
        workersSlot() = std::make_unique<Workers>(threads);
    }
}

int threadCount()
{
    return workersSlot()->threads();
}

} // namespace XTNT
