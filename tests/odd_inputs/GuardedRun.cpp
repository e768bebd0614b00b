// SPDX-License-Identifier: GPL-3.0-or-later
#include "odd_inputs/GuardedRun.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr rlim_t processorLimit = 25;
constexpr unsigned clockLimit = 30;

double seconds(const timeval& time)
{
    return static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_usec);
}

[[noreturn]] void runChild(const std::function<int(int)>& work, int descriptor)
{
    const rlimit processor{processorLimit, processorLimit};
    ::setrlimit(RLIMIT_CPU, &processor);
    const rlimit noCore{0, 0};
    ::setrlimit(RLIMIT_CORE, &noCore);
#ifdef ODD_MEMORY_COUNTS
    // Not the measure, but the machine must outlive a reader gone wild.
    const rlimit memory{rlim_t{4} << 30, rlim_t{4} << 30};
    ::setrlimit(RLIMIT_AS, &memory);
#endif
    ::alarm(clockLimit);
    ::_exit(work(descriptor));
}

QByteArray readAll(int descriptor)
{
    QByteArray bytes;
    char buffer[65536];
    for (;;) {
        const ssize_t n = ::read(descriptor, buffer, sizeof buffer);
        if (n > 0) {
            bytes.append(buffer, static_cast<int>(n));
        } else if (n == 0 || errno != EINTR) {
            return bytes;
        }
    }
}

} // namespace

GuardedRun runGuarded(const std::function<int(int descriptor)>& work)
{
    GuardedRun run;
    int ends[2] = {-1, -1};
    if (::pipe2(ends, O_CLOEXEC) != 0) {
        return run;
    }
    const pid_t child = ::fork();
    if (child == 0) {
        runChild(work, ends[1]);
    }
    ::close(ends[1]);
    run.output = readAll(ends[0]);
    ::close(ends[0]);
    int status = 0;
    rusage usage = {};
    if (child < 0 || ::wait4(child, &status, 0, &usage) != child) {
        return run;
    }
    run.exited = WIFEXITED(status);
    run.status = run.exited ? WEXITSTATUS(status) : 0;
    run.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    run.processorSeconds = seconds(usage.ru_utime) + seconds(usage.ru_stime);
    run.peakKiB = usage.ru_maxrss;
    return run;
}
