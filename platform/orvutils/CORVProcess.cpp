// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVProcess.h"

#include "platform/orvutils/ProcessControl.h"

#include <QMutex>
#include <QMutexLocker>

#include <algorithm>
#include <atomic>
#include <map>
#include <vector>

namespace orv {

namespace {

struct Process
{
    tag_eLongProcessTypes m_eType;
    bool m_bCanAbort;
    QString m_strAbortText;
};

using Observers = std::map<int, std::function<void(const ProcessState&)>>;

struct Registry
{
    QMutex m_mutex;
    std::vector<Process> m_processes; // in order of start
    QString m_strMessage;
    int m_nMilliseconds = 0;
    int m_nStep = 0;
    int m_nSteps = 0;
    Observers m_observers;
    int m_nNextId = 1;
};

Registry& registry()
{
    static auto* const pRegistry = new Registry;
    return *pRegistry;
}

// Outside the registry: a signal handler can store to them and to nothing else.
std::atomic<bool> aborted{false};
std::atomic<bool> abortedForGood{false};
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler stores the abort");

ProcessState stateOf(const Registry& all)
{
    ProcessState state;
    state.m_nRunning = static_cast<int>(all.m_processes.size());
    if (!all.m_processes.empty()) {
        state.m_bCanAbort = all.m_processes.back().m_bCanAbort;
        state.m_strAbortText = all.m_processes.back().m_strAbortText;
    }
    state.m_bAborted = aborted || abortedForGood;
    state.m_strMessage = all.m_strMessage;
    state.m_nMilliseconds = all.m_nMilliseconds;
    state.m_nStep = all.m_nStep;
    state.m_nSteps = all.m_nSteps;
    return state;
}

// Unlocks before the observers are called: they may ask the registry.
void announce(QMutexLocker& lock)
{
    const auto state = stateOf(registry());
    const Observers observers = registry().m_observers;
    lock.unlock();
    for (const auto& [id, observer] : observers) {
        observer(state);
    }
}

void setMessage(const QString& strMessage, int nMilliseconds, int nStep, int nSteps)
{
    auto& all = registry();
    all.m_strMessage = strMessage;
    all.m_nMilliseconds = nMilliseconds;
    all.m_nStep = nStep;
    all.m_nSteps = nSteps;
}

// A run of the engine starts with the general type and ends with the type of an analysis, so the latter ends either.
bool endsType(tag_eLongProcessTypes eEnd, tag_eLongProcessTypes eStarted)
{
    return eEnd == eStarted || (eEnd == LONGPROCESS_ANALYSIS && eStarted == LONGPROCESS_GENERAL);
}

void endProcess(const QString& strMessage, int nMilliseconds, tag_eLongProcessTypes eType)
{
    auto& all = registry();
    QMutexLocker lock(&all.m_mutex);
    const auto last = std::find_if(all.m_processes.rbegin(), all.m_processes.rend(),
                                   [eType](const Process& process) { return endsType(eType, process.m_eType); });
    if (last != all.m_processes.rend()) {
        all.m_processes.erase(std::next(last).base());
    }
    setMessage(strMessage, nMilliseconds, 0, 0);
    announce(lock);
}

} // namespace

ProcessState processState()
{
    QMutexLocker lock(&registry().m_mutex);
    return stateOf(registry());
}

QString currentMessage()
{
    return processState().m_strMessage;
}

void requestAbort()
{
    aborted = true;
}

void requestAbortForGood()
{
    abortedForGood = true;
}

void clearAborts()
{
    aborted = false;
    abortedForGood = false;
}

int addProcessObserver(std::function<void(const ProcessState&)> observer)
{
    QMutexLocker lock(&registry().m_mutex);
    const int id = registry().m_nNextId++;
    registry().m_observers[id] = std::move(observer);
    return id;
}

void removeProcessObserver(int nObserver)
{
    QMutexLocker lock(&registry().m_mutex);
    registry().m_observers.erase(nObserver);
}

} // namespace orv

void CORVProcess::startLongProcess(int, tag_eLongProcessTypes eType, bool bCanAbort, QString strAbortText)
{
    auto& all = orv::registry();
    QMutexLocker lock(&all.m_mutex);
    if (all.m_processes.empty()) {
        orv::aborted = false;
    }
    all.m_processes.push_back({eType, bCanAbort, strAbortText});
    orv::setMessage(QString(), 0, 0, 0);
    orv::announce(lock);
}

void CORVProcess::endLongProcess(tag_eLongProcessTypes eType)
{
    orv::endProcess(QString(), 0, eType);
}

void CORVProcess::endLongProcess(const QString& strMessage, int nMilliseconds, tag_eLongProcessTypes eType)
{
    orv::endProcess(strMessage, nMilliseconds, eType);
}

bool CORVProcess::isProcessAborted()
{
    return orv::aborted || orv::abortedForGood;
}

bool CORVProcess::isProcessInProgress(tag_eLongProcessTypes eType)
{
    auto& all = orv::registry();
    QMutexLocker lock(&all.m_mutex);
    return std::any_of(all.m_processes.begin(), all.m_processes.end(),
                       [eType](const orv::Process& process) { return process.m_eType == eType; });
}

void CORVProcess::setProcessMessage(const QString& strMessage, int nStep, int nSteps, bool* pAborted)
{
    if (pAborted) {
        *pAborted = isProcessAborted();
    }
    auto& all = orv::registry();
    QMutexLocker lock(&all.m_mutex);
    orv::setMessage(strMessage, 0, nStep, nSteps);
    orv::announce(lock);
}
