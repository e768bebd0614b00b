// SPDX-License-Identifier: GPL-3.0-or-later
// The parallel helper of XTNT/xtnt_parallel.h. Its threads are our own: what runs a pass must go on with fewer threads
// where the system gives no more, end with the process whatever they do, and show every hand-over to the thread
// sanitizer.
#include "XTNT/xtnt_assert.h"
#include "XTNT/xtnt_parallel.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <new>
#include <system_error>
#include <thread>
#include <utility>

#include <pthread.h>
#include <sched.h>
#include <unistd.h>

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

// An abort waits for the slice under way, so a slice aims below the 10 ms that users are promised: the time of the
// next one is only estimated from the ones before.
constexpr double sliceSeconds = 0.006;
// A slice holds at most this many times the chunks of the one before, lest a cheap first chunk (an empty corner of an
// image) makes the next slice far too long.
constexpr long long sliceGrowth = 4;

// True on a thread while it runs a chunk.
thread_local bool insideBody = false;

// What the thread's cancellation points ask; null for nothing.
thread_local const std::function<void()>* presentCheck = nullptr;

class BodyScope
{
public:
    BodyScope() { insideBody = true; }
    ~BodyScope() { insideBody = false; }
    BodyScope(const BodyScope&) = delete;
    BodyScope& operator=(const BodyScope&) = delete;
};

// Keeps the door closed while helpers work on a slice, which lies on the caller's stack. The former state comes back at
// the end and when the pass is unwound.
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

// Helpers that wait for slices. They are made when they are first needed; what the system refuses is not asked for
// again, and whoever is there, at least the caller, does the work.
class Workers
{
public:
    explicit Workers(int threads) : m_threads(threads) {}
    ~Workers();
    Workers(const Workers&) = delete;
    Workers& operator=(const Workers&) = delete;

    int threads() const { return m_threads; }
    // Runs the slice on up to `threads` threads, the caller's among them.
    void run(Slice& slice, int threads);
    // Whether the helpers exist: those of a process do not follow into its forked child.
    bool isAlive() const { return m_process == ::getpid(); }

    // Passes under way, by which it is told that nobody needs this object any more.
    void beginPass() { m_passes.fetch_add(1); }
    void endPass() { m_passes.fetch_sub(1); }
    bool isIdle() const { return m_passes.load() == 0; }

private:
    // A slice that helpers may be inside of. They have left it at the end, also when the caller's chunk throws.
    class OfferedSlice
    {
    public:
        explicit OfferedSlice(Workers& workers) : m_workers(workers) {}
        ~OfferedSlice() { m_workers.withdraw(); }
        OfferedSlice(const OfferedSlice&) = delete;
        OfferedSlice& operator=(const OfferedSlice&) = delete;

    private:
        Workers& m_workers;
    };

    void makeHelpers();
    bool offer(Slice& slice, int threads);
    void withdraw();
    void help();

    const int m_threads;
    const pid_t m_process = ::getpid();
    std::atomic<int> m_passes{0};
    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::condition_variable m_left;
    int m_helpers = 0;   // that live
    bool m_made = false; // as many as there will be
    bool m_ending = false;
    Slice* m_pSlice = nullptr;
    int m_places = 0; // helpers that may still join the slice
    int m_inside = 0; // helpers that have
};

Workers::~Workers()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_ending = true;
    m_wake.notify_all();
    m_left.wait(lock, [this] { return m_helpers == 0; });
}

void Workers::makeHelpers()
{
    m_made = true;
    try {
        while (m_helpers + 1 < m_threads) {
            std::thread([this] { help(); }).detach();
            ++m_helpers;
        }
    } catch (const std::system_error&) {
        // No further thread to be had.
    } catch (const std::bad_alloc&) {
        // No memory for one.
    }
}

void Workers::run(Slice& slice, int threads)
{
    if (!offer(slice, threads)) {
        slice.drain();
        return;
    }
    const OfferedSlice offered(*this);
    slice.drain();
}

// False where there are no helpers, or they are busy: of two passes at once the second has its own thread.
bool Workers::offer(Slice& slice, int threads)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_made) {
        makeHelpers();
    }
    if (m_pSlice != nullptr || m_helpers == 0) {
        return false;
    }
    m_pSlice = &slice;
    m_places = std::min(threads - 1, m_helpers);
    for (int i = 0; i < m_places; ++i) {
        m_wake.notify_one();
    }
    return true;
}

void Workers::withdraw()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_places = 0;
    m_left.wait(lock, [this] { return m_inside == 0; });
    m_pSlice = nullptr;
}

void Workers::help()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    for (;;) {
        m_wake.wait(lock, [this] { return m_ending || m_places > 0; });
        if (m_ending) {
            break;
        }
        --m_places;
        ++m_inside;
        Slice& slice = *m_pSlice;
        lock.unlock();
        slice.drain();
        lock.lock();
        --m_inside;
        m_left.notify_all();
    }
    --m_helpers;
    // Under the lock: the last thing that this thread does with the object.
    m_left.notify_all();
}

// Never destroyed: the end of a process waits for nobody.
std::atomic<Workers*>& workersSlot()
{
    static std::atomic<Workers*> s_pWorkers{new Workers(defaultThreadCount())};
    return s_pWorkers;
}

// Those of this process; a forked child makes its own, whichever of its threads asks first.
Workers& presentWorkers()
{
    std::atomic<Workers*>& slot = workersSlot();
    Workers* pWorkers = slot.load();
    while (!pWorkers->isAlive()) {
        auto pOwn = std::make_unique<Workers>(pWorkers->threads());
        if (slot.compare_exchange_strong(pWorkers, pOwn.get())) {
            pWorkers = pOwn.release();
        }
    }
    return *pWorkers;
}

// Of one pass; its end comes with an unwinding too.
class PassScope
{
public:
    explicit PassScope(Workers& workers) : m_workers(workers) { m_workers.beginPass(); }
    ~PassScope() { m_workers.endPass(); }
    PassScope(const PassScope&) = delete;
    PassScope& operator=(const PassScope&) = delete;

private:
    Workers& m_workers;
};

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
    Workers& workers = presentWorkers();
    const PassScope pass(workers);
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
    if (presentCheck != nullptr) {
        (*presentCheck)();
    }
}

CancellationCheck::CancellationCheck(std::function<void()> check) : m_check(std::move(check)), m_pOuter(presentCheck)
{
    presentCheck = &m_check;
}

CancellationCheck::~CancellationCheck()
{
    presentCheck = m_pOuter;
}

void setThreadCount(int n)
{
    XTNT_ASSERT(!insideBody);
    const int threads = n < 1 ? defaultThreadCount() : n;
    Workers& former = presentWorkers();
    XTNT_ASSERT(former.isIdle());
    if (threads != former.threads()) {
        workersSlot() = new Workers(threads);
        delete &former;
    }
}

int threadCount()
{
    return presentWorkers().threads();
}

} // namespace XTNT
