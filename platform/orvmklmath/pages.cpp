// SPDX-License-Identifier: GPL-3.0-or-later
#include "XTNT/xtnt_pages.h"

#include <cstddef>
#include <cstdint>

#include <sys/mman.h>

namespace XTNT {

namespace {

constexpr std::uintptr_t largePage = 2U << 20U;

// Below this the rounding to whole large pages is not worth it.
constexpr std::uintptr_t smallestBlock = 4 * largePage;

} // namespace

void preferLargePages(Matrix<double>& matrix)
{
#ifdef MADV_HUGEPAGE
    const auto begin = reinterpret_cast<std::uintptr_t>(matrix.storage.data);
    const std::uintptr_t bytes = static_cast<std::uintptr_t>(matrix.storage.n_) * sizeof(double);
    if (bytes < smallestBlock) {
        return;
    }
    const std::uintptr_t first = (begin + largePage - 1) / largePage * largePage;
    const std::uintptr_t last = (begin + bytes) / largePage * largePage;
    // Only whole large pages inside the block: what lies beside it is not ours. A refusal is no loss.
    static_cast<void>(madvise(reinterpret_cast<void*>(first), last - first, MADV_HUGEPAGE));
#else
    static_cast<void>(matrix);
#endif
}

} // namespace XTNT
