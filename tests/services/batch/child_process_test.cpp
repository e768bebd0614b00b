// SPDX-License-Identifier: GPL-3.0-or-later
// A process ends with its parent, whatever ended that.
#include "services/batch/ChildProcess.h"

#include "support/ForkedChild.h"

#include <gtest/gtest.h>

#include <csignal>
#include <poll.h>
#include <pthread.h>

namespace {

constexpr int patience = 20000; // ms

extern "C" void killSelf()
{
    ::kill(::getpid(), SIGKILL);
}

// Runs `parent` in a process of its own and tells whether that one and all that it has started end: they hold the
// writing end of a pipe.
template <class Function>
bool allEnd(Function parent)
{
    int ends[2];
    if (::pipe(ends) != 0) {
        return false;
    }
    inForkedChild(parent);
    ::close(ends[1]);
    pollfd reader = {ends[0], POLLIN, 0};
    const bool ended = ::poll(&reader, 1, patience) == 1 && (reader.revents & POLLHUP) != 0;
    ::close(ends[0]);
    return ended;
}

} // namespace

TEST(ChildProcessTest, EndsWithAParentThatEnds)
{
    EXPECT_TRUE(allEnd([] {
        auto* process = new ChildProcess;
        process->startBound(QStringLiteral("/bin/sleep"), {QStringLiteral("300")});
        return process->waitForStarted() ? 0 : 1;
    }));
}

TEST(ChildProcessTest, EndsWithAParentThatIsKilledWhileItStartsIt)
{
    EXPECT_TRUE(allEnd([] {
        ::pthread_atfork(nullptr, killSelf, nullptr);
        auto* process = new ChildProcess;
        process->startBound(QStringLiteral("/bin/sleep"), {QStringLiteral("300")});
        return 0;
    }));
}

TEST(ChildProcessTest, EndsWhenItIsAsked)
{
    ChildProcess process;
    process.askToStop();
    process.startBound(QStringLiteral("/bin/sleep"), {QStringLiteral("300")});
    ASSERT_TRUE(process.waitForStarted());
    process.askToStop();
    ASSERT_TRUE(process.waitForFinished(patience));
    EXPECT_EQ(process.exitStatus(), QProcess::CrashExit);
    EXPECT_EQ(process.exitCode(), SIGTERM);
}

// Ctrl-C reaches the group of the terminal; who runs the batch passes it on.
TEST(ChildProcessTest, StandsInAGroupOfItsOwn)
{
    ChildProcess process;
    process.startBound(QStringLiteral("/bin/sleep"), {QStringLiteral("300")});
    ASSERT_TRUE(process.waitForStarted());
    const auto id = static_cast<pid_t>(process.processId());
    EXPECT_EQ(::getpgid(id), id);
}
