// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

namespace XTNT {

// Runs body(begin, end) over the index range [0, count) in chunks of `grain` indices (the last may be shorter), on all
// threads of the process. Chunk bounds follow from count and grain alone, never from the number of threads, so a
// reduction that keeps one partial result per chunk (begin / grain) and adds them in order gives the same bits always.
// The pass is cut into slices of about 10 ms; between slices the calling thread passes a cancellationPoint(), so the
// caller must hold no lock and leave nothing half written that matters. The body must not throw, must not call
// cancellationPoint() and must not start another parallel pass. count < 1 does nothing; grain < 1 counts as 1.
void parallelChunks(long long count, long long grain, const std::function<void(long long begin, long long end)>& body);

// Opens and closes the door for thread cancellation: a worker that was told to terminate ends here, by an unwinding
// that looks like an exception (abi::__forced_unwind) and must not be swallowed. On any other thread it makes the check
// that a CancellationCheck asks for, and nothing else of note. Never to be called inside a parallel body, a destructor
// or a noexcept function.
void cancellationPoint();

// As long as it lives, every cancellationPoint() of its thread calls `check`, which throws to end the work: for a
// thread that nobody terminates. Of several on one thread the innermost is asked. Within its scope all that passes
// cancellation points must be fit to be left by an exception.
class CancellationCheck
{
public:
    explicit CancellationCheck(std::function<void()> check);
    ~CancellationCheck();
    CancellationCheck(const CancellationCheck&) = delete;
    CancellationCheck& operator=(const CancellationCheck&) = delete;

private:
    const std::function<void()> m_check;
    const std::function<void()>* const m_pOuter;
};

// Number of threads that parallelChunks uses; n < 1 restores the default, the number of processors. Results do not
// depend on it. Not to be called while a pass is under way.
void setThreadCount(int n);
int threadCount();

} // namespace XTNT
