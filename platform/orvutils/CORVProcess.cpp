// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVProcess.h"

#include "platform/orvutils/ProcessControl.h"

#include <QMap>
#include <QMutex>
#include <QMutexLocker>

#include <algorithm>
#include <atomic>

namespace {

std::atomic<bool> abortRequested{false};
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler sets it");

struct Registry
{
    QMutex mutex;
    QMap<int, int> running; // count by type
    orv::ProcessState state;
};

Registry& registry()
{
    static Registry instance;
    return instance;
}

bool anyRunning(const Registry& processes)
{
    return std::any_of(processes.running.begin(), processes.running.end(), [](int count) { return count > 0; });
}

// An end of a type that does not run ends the general process: a run starts as one type and ends as another.
void endOne(Registry& processes, int nType)
{
    const int type = processes.running.value(nType) > 0 ? nType : LONGPROCESS_GENERAL;
    if (processes.running.value(type) > 0)
        --processes.running[type];
    if (!anyRunning(processes))
        processes.state = orv::ProcessState();
}

} // namespace

namespace orv {

void requestAbort()
{
    abortRequested.store(true);
}

ProcessState currentProcess()
{
    QMutexLocker lock(&registry().mutex);
    ProcessState state = registry().state;
    state.running = anyRunning(registry());
    return state;
}

} // namespace orv

void CORVProcess::startLongProcess(int, tag_eLongProcessTypes eType, bool bCanAbort, QString strAbortText)
{
    QMutexLocker lock(&registry().mutex);
    ++registry().running[eType];
    registry().state.canAbort = bCanAbort;
    registry().state.abortText = strAbortText;
    abortRequested.store(false);
}

void CORVProcess::endLongProcess(tag_eLongProcessTypes eType)
{
    QMutexLocker lock(&registry().mutex);
    endOne(registry(), eType);
}

void CORVProcess::endLongProcess(const QString& strMessage, int, tag_eLongProcessTypes eType)
{
    QMutexLocker lock(&registry().mutex);
    endOne(registry(), eType);
    registry().state.message = strMessage;
}

bool CORVProcess::isProcessAborted()
{
    return abortRequested.load();
}

bool CORVProcess::isProcessInProgress(tag_eLongProcessTypes eType)
{
    QMutexLocker lock(&registry().mutex);
    return registry().running.value(eType) > 0;
}

void CORVProcess::setProcessMessage(const QString& strMessage, int nStep, int nSteps, bool* pAborted)
{
    QMutexLocker lock(&registry().mutex);
    registry().state.message = strMessage;
    registry().state.step = nStep;
    registry().state.steps = nSteps;
    if (pAborted != nullptr)
        *pAborted = abortRequested.load();
}
