// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/batch/ChildProcess.h"

#include <csignal>
#include <pthread.h>
#include <sys/prctl.h>
#include <unistd.h>

namespace {

// Of a process that is being started; 0 at all other times.
pid_t startingParent = 0;

// In the child, as soon as there is one: it waits for a word of its parent before it does anything else, and would wait
// for ever, with all locks of the parent in its hands, were that killed meanwhile.
extern "C" void endWithParent()
{
    if (startingParent == 0) {
        return;
    }
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != startingParent) {
        ::_exit(1);
    }
}

} // namespace

ChildProcess::ChildProcess() : m_nParent(::getpid()) {}

ChildProcess::~ChildProcess()
{
    if (state() != NotRunning) {
        kill();
        waitForFinished();
    }
}

void ChildProcess::startBound(const QString& strProgram, const QStringList& arguments)
{
    static const int registered = ::pthread_atfork(nullptr, nullptr, endWithParent);
    setStandardInputFile(nullDevice());
    setStandardOutputFile(nullDevice());
    if (registered == 0) {
        startingParent = ::getpid();
    }
    start(strProgram, arguments, ReadOnly);
    startingParent = 0;
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
