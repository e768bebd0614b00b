// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_parallel.h"

#include <atomic>
#include <new>

namespace XTNT {

// parallelChunks for a body that takes memory: a shortage inside the body is thrown from here instead.
template <class Body>
void parallelWithMemory(long long count, long long grain, const Body& body)
{
    std::atomic<bool> exhausted{false};
    parallelChunks(count, grain, [&](long long begin, long long end) {
        try {
            body(begin, end);
        } catch (const std::bad_alloc&) {
            exhausted.store(true, std::memory_order_relaxed);
        }
    });
    if (exhausted.load()) {
        throw std::bad_alloc();
    }
}

} // namespace XTNT
