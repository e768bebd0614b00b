// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

// Runs a function in a forked child and answers with what it returns (0 to 99), or with 200 and above when the child
// died. For states that a process cannot leave again: another user, a limit.
template <class Function>
int inForkedChild(Function function)
{
    const pid_t child = ::fork();
    if (child == 0) {
        ::_exit(function());
    }
    int status = 0;
    if (child < 0 || ::waitpid(child, &status, 0) != child) {
        return 200;
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 201;
}

// A user who may not write to a folder of mode 0555; root may, so root becomes nobody.
inline bool becomePlainUser()
{
    constexpr uid_t nobody = 65534;
    return ::geteuid() != 0 || (::setgid(nobody) == 0 && ::setuid(nobody) == 0);
}

// From here on no file can grow beyond that size, as on a full disk.
inline bool limitFileSize(rlim_t bytes)
{
    const rlimit limit{bytes, bytes};
    return std::signal(SIGXFSZ, SIG_IGN) != SIG_ERR && ::setrlimit(RLIMIT_FSIZE, &limit) == 0;
}
