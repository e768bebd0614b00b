// SPDX-License-Identifier: GPL-3.0-or-later
#include "AllocationCount.h"

#include <cstddef>

#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define ORV_SANITIZED
#endif
#endif
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define ORV_SANITIZED
#endif

namespace {

// No initialiser that would have to run, and so to allocate, at the first block of a thread.
thread_local long long nAllocations = 0;

} // namespace

long long allocationsOfThisThread()
{
    return nAllocations;
}

#if defined(ORV_SANITIZED)

// A sanitizer brings functions of its own and tells of each block.
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*onMalloc)(const volatile void*, std::size_t),
                                                         void (*onFree)(const volatile void*));

namespace {

const int nInstalled = __sanitizer_install_malloc_and_free_hooks(
    [](const volatile void*, std::size_t) { ++nAllocations; }, [](const volatile void*) {});

} // namespace

#else

extern "C" {

void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);

void* malloc(std::size_t size) noexcept
{
    ++nAllocations;
    return __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) noexcept
{
    ++nAllocations;
    return __libc_calloc(count, size);
}

} // extern "C"

#endif
