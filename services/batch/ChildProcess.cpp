// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/batch/ChildProcess.h"

#include <csignal>
#include <sys/prctl.h>
#include <unistd.h>

ChildProcess::ChildProcess() : m_nParent(::getpid()) {}

ChildProcess::~ChildProcess()
{
    if (state() != NotRunning) {
        kill();
        waitForFinished();
    }
}

void ChildProcess::askToStop() const
{
    if (processId() > 0) {
        ::kill(static_cast<pid_t>(processId()), SIGTERM);
    }
}

// Between fork and exec: only calls that a signal handler may make.
void ChildProcess::setupChildProcess()
{
    ::setpgid(0, 0);
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    // The parent may have gone before that.
    if (::getppid() != m_nParent) {
        ::_exit(1);
    }
}
