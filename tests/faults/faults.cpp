// SPDX-License-Identifier: GPL-3.0-or-later
#include "faults/rules.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <dlfcn.h>
#include <fcntl.h>
#include <malloc.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <type_traits>
#include <unistd.h>

// The C library's functions as every library of the process finds them: these come first, the true ones next.

using namespace faults;

namespace {

// The function of that name in the libraries behind this one, looked up once at each place.
#define NEXT(name) static auto* const pNext = reinterpret_cast<decltype(&::name)>(::dlsym(RTLD_NEXT, #name))

// `pass` makes the call. Its answer where it is made, otherwise `failed` or, where success is to be feigned, `feigned`.
template <class Pass, class Result = std::invoke_result_t<Pass>>
Result decide(const Verdict& verdict, Pass pass, Result failed = Result(-1), Result feigned = Result(0))
{
    switch (verdict.action) {
    case Action::pass:
        return pass();
    case Action::skip:
        return feigned;
    case Action::fail:
        errno = verdict.error;
        return failed;
    case Action::killAfter:
        pass();
        die();
    case Action::kill:
    case Action::half:
    case Action::brief:
        break;
    }
    die();
}

// A write of `size` bytes; `pass` writes as many as it is told.
template <class Pass>
ssize_t decideWrite(const Verdict& verdict, size_t size, Pass pass)
{
    if (verdict.action == Action::half || verdict.action == Action::brief) {
        const ssize_t written = pass(size / 2);
        if (verdict.action == Action::half) {
            die();
        }
        return written;
    }
    return decide(
        verdict, [&] { return ssize_t{pass(size)}; }, ssize_t{-1}, static_cast<ssize_t>(size));
}

bool hasMode(int flags)
{
    return (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
}

Kind openKind(int flags)
{
    return hasMode(flags) || (flags & (O_WRONLY | O_RDWR | O_TRUNC)) != 0 ? Kind::open : Kind::openRead;
}

bool refusesMemory(size_t size)
{
    if (size < memoryLimit()) {
        return false;
    }
    const Verdict verdict = judge(Kind::memory);
    if (verdict.action == Action::pass) {
        return false;
    }
    if (verdict.action != Action::fail) {
        die();
    }
    errno = ENOMEM;
    return true;
}

} // namespace

#define MODE_OF_REST(mode)                                                                                             \
    va_list rest;                                                                                                      \
    va_start(rest, flags);                                                                                             \
    const mode_t mode = hasMode(flags) ? va_arg(rest, mode_t) : 0;                                                     \
    va_end(rest)

extern "C" {

int open(const char* pPath, int flags, ...)
{
    NEXT(open);
    MODE_OF_REST(mode);
    return decide(judge(openKind(flags), AT_FDCWD, pPath), [&] { return pNext(pPath, flags, mode); });
}

int open64(const char* pPath, int flags, ...)
{
    NEXT(open64);
    MODE_OF_REST(mode);
    return decide(judge(openKind(flags), AT_FDCWD, pPath), [&] { return pNext(pPath, flags, mode); });
}

int openat(int folder, const char* pPath, int flags, ...)
{
    NEXT(openat);
    MODE_OF_REST(mode);
    return decide(judge(openKind(flags), folder, pPath), [&] { return pNext(folder, pPath, flags, mode); });
}

int openat64(int folder, const char* pPath, int flags, ...)
{
    NEXT(openat64);
    MODE_OF_REST(mode);
    return decide(judge(openKind(flags), folder, pPath), [&] { return pNext(folder, pPath, flags, mode); });
}

// What a stream of C opens inside; its writes are not to be had from outside, those of a stream of C++ are.
FILE* fopen(const char* pPath, const char* pMode)
{
    NEXT(fopen);
    const Kind kind = pMode[0] == 'r' && pMode[1] != '+' ? Kind::openRead : Kind::open;
    return decide(
        judge(kind, AT_FDCWD, pPath), [&] { return pNext(pPath, pMode); }, static_cast<FILE*>(nullptr),
        static_cast<FILE*>(nullptr));
}

FILE* fopen64(const char* pPath, const char* pMode)
{
    return ::fopen(pPath, pMode);
}

ssize_t read(int file, void* pBytes, size_t size)
{
    NEXT(read);
    return decide(judge(Kind::read, file), [&] { return pNext(file, pBytes, size); });
}

ssize_t pread(int file, void* pBytes, size_t size, off_t at)
{
    NEXT(pread);
    return decide(judge(Kind::read, file), [&] { return pNext(file, pBytes, size, at); });
}

ssize_t pread64(int file, void* pBytes, size_t size, off64_t at)
{
    return ::pread(file, pBytes, size, at);
}

ssize_t write(int file, const void* pBytes, size_t size)
{
    NEXT(write);
    return decideWrite(judge(Kind::write, file), size, [&](size_t n) { return pNext(file, pBytes, n); });
}

ssize_t pwrite(int file, const void* pBytes, size_t size, off_t at)
{
    NEXT(pwrite);
    return decideWrite(judge(Kind::write, file), size, [&](size_t n) { return pNext(file, pBytes, n, at); });
}

ssize_t pwrite64(int file, const void* pBytes, size_t size, off64_t at)
{
    return ::pwrite(file, pBytes, size, at);
}

ssize_t writev(int file, const iovec* pParts, int count)
{
    NEXT(writev);
    size_t size = 0;
    for (int p = 0; p < count; ++p) {
        size += pParts[p].iov_len;
    }
    // Of half the bytes the first parts are enough.
    return decideWrite(judge(Kind::write, file), size,
                       [&](size_t n) { return pNext(file, pParts, n == size ? count : count / 2); });
}

ssize_t sendfile(int to, int from, off_t* pAt, size_t size)
{
    NEXT(sendfile);
    return decideWrite(judge(Kind::write, to), size, [&](size_t n) { return pNext(to, from, pAt, n); });
}

ssize_t sendfile64(int to, int from, off64_t* pAt, size_t size)
{
    return ::sendfile(to, from, pAt, size);
}

ssize_t copy_file_range(int from, off64_t* pFrom, int to, off64_t* pTo, size_t size, unsigned flags)
{
    NEXT(copy_file_range);
    return decideWrite(judge(Kind::write, to), size, [&](size_t n) { return pNext(from, pFrom, to, pTo, n, flags); });
}

int fsync(int file)
{
    NEXT(fsync);
    return decide(judge(Kind::sync, file), [&] { return pNext(file); });
}

int fdatasync(int file)
{
    NEXT(fdatasync);
    return decide(judge(Kind::sync, file), [&] { return pNext(file); });
}

int syncfs(int file) noexcept
{
    NEXT(syncfs);
    return decide(judge(Kind::sync, file), [&] { return pNext(file); });
}

int rename(const char* pFrom, const char* pTo) noexcept
{
    NEXT(rename);
    return decide(judge(Kind::rename, AT_FDCWD, pFrom, AT_FDCWD, pTo), [&] { return pNext(pFrom, pTo); });
}

int renameat(int fromFolder, const char* pFrom, int toFolder, const char* pTo) noexcept
{
    NEXT(renameat);
    return decide(judge(Kind::rename, fromFolder, pFrom, toFolder, pTo),
                  [&] { return pNext(fromFolder, pFrom, toFolder, pTo); });
}

int renameat2(int fromFolder, const char* pFrom, int toFolder, const char* pTo, unsigned flags) noexcept
{
    NEXT(renameat2);
    return decide(judge(Kind::rename, fromFolder, pFrom, toFolder, pTo),
                  [&] { return pNext(fromFolder, pFrom, toFolder, pTo, flags); });
}

int link(const char* pFrom, const char* pTo) noexcept
{
    NEXT(link);
    return decide(judge(Kind::link, AT_FDCWD, pFrom, AT_FDCWD, pTo), [&] { return pNext(pFrom, pTo); });
}

int linkat(int fromFolder, const char* pFrom, int toFolder, const char* pTo, int flags) noexcept
{
    NEXT(linkat);
    return decide(judge(Kind::link, fromFolder, pFrom, toFolder, pTo),
                  [&] { return pNext(fromFolder, pFrom, toFolder, pTo, flags); });
}

int symlink(const char* pTarget, const char* pPath) noexcept
{
    NEXT(symlink);
    return decide(judge(Kind::symlink, AT_FDCWD, pPath), [&] { return pNext(pTarget, pPath); });
}

int unlink(const char* pPath) noexcept
{
    NEXT(unlink);
    return decide(judge(Kind::unlink, AT_FDCWD, pPath), [&] { return pNext(pPath); });
}

int unlinkat(int folder, const char* pPath, int flags) noexcept
{
    NEXT(unlinkat);
    const Kind kind = (flags & AT_REMOVEDIR) != 0 ? Kind::rmdir : Kind::unlink;
    return decide(judge(kind, folder, pPath), [&] { return pNext(folder, pPath, flags); });
}

int remove(const char* pPath) noexcept
{
    NEXT(remove);
    return decide(judge(Kind::unlink, AT_FDCWD, pPath), [&] { return pNext(pPath); });
}

int rmdir(const char* pPath) noexcept
{
    NEXT(rmdir);
    return decide(judge(Kind::rmdir, AT_FDCWD, pPath), [&] { return pNext(pPath); });
}

int mkdir(const char* pPath, mode_t mode) noexcept
{
    NEXT(mkdir);
    return decide(judge(Kind::mkdir, AT_FDCWD, pPath), [&] { return pNext(pPath, mode); });
}

int mkdirat(int folder, const char* pPath, mode_t mode) noexcept
{
    NEXT(mkdirat);
    return decide(judge(Kind::mkdir, folder, pPath), [&] { return pNext(folder, pPath, mode); });
}

int chmod(const char* pPath, mode_t mode) noexcept
{
    NEXT(chmod);
    return decide(judge(Kind::chmod, AT_FDCWD, pPath), [&] { return pNext(pPath, mode); });
}

int fchmod(int file, mode_t mode) noexcept
{
    NEXT(fchmod);
    return decide(judge(Kind::chmod, file), [&] { return pNext(file, mode); });
}

int ftruncate(int file, off_t size) noexcept
{
    NEXT(ftruncate);
    return decide(judge(Kind::truncate, file), [&] { return pNext(file, size); });
}

int ftruncate64(int file, off64_t size) noexcept
{
    return ::ftruncate(file, size);
}

int close(int file)
{
    NEXT(close);
    const Verdict verdict = judge(Kind::close, file);
    if (verdict.action == Action::fail) {
        pNext(file);
    }
    return decide(verdict, [&] { return pNext(file); });
}

int pthread_create(pthread_t* pThread, const pthread_attr_t* pAttributes, void* (*start)(void*),
                   void* pArgument) noexcept
{
    NEXT(pthread_create);
    const Verdict verdict = judge(Kind::thread);
    return decide(
        verdict, [&] { return pNext(pThread, pAttributes, start, pArgument); }, verdict.error);
}

// A sanitizer brings its own.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) && !defined(ORV_SANITIZED)

void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* pBlock, size_t size);
void* __libc_memalign(size_t alignment, size_t size);

void* malloc(size_t size) noexcept
{
    return refusesMemory(size) ? nullptr : __libc_malloc(size);
}

void* calloc(size_t count, size_t size) noexcept
{
    size_t total = 0;
    const bool tooMuch = __builtin_mul_overflow(count, size, &total);
    return !tooMuch && refusesMemory(total) ? nullptr : __libc_calloc(count, size);
}

void* realloc(void* pBlock, size_t size) noexcept
{
    return refusesMemory(size) ? nullptr : __libc_realloc(pBlock, size);
}

void* memalign(size_t alignment, size_t size) noexcept
{
    return refusesMemory(size) ? nullptr : __libc_memalign(alignment, size);
}

void* aligned_alloc(size_t alignment, size_t size) noexcept
{
    return ::memalign(alignment, size);
}

int posix_memalign(void** ppBlock, size_t alignment, size_t size) noexcept
{
    void* const pBlock = ::memalign(alignment, size);
    if (pBlock == nullptr) {
        return ENOMEM;
    }
    *ppBlock = pBlock;
    return 0;
}

void* mmap(void* pAt, size_t size, int protection, int flags, int file, off_t offset) noexcept
{
    NEXT(mmap);
    if ((flags & MAP_ANONYMOUS) != 0 && refusesMemory(size)) {
        return MAP_FAILED;
    }
    return pNext(pAt, size, protection, flags, file, offset);
}

void* mmap64(void* pAt, size_t size, int protection, int flags, int file, off64_t offset) noexcept
{
    return ::mmap(pAt, size, protection, flags, file, offset);
}

#endif

} // extern "C"
