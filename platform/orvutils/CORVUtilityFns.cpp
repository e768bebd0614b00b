// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVUtilityFns.h"

#include <QGuiApplication>
#include <QThread>

#include <atomic>
#include <vector>

namespace {

struct HostState
{
    std::atomic<bool> m_bCanClose{true};
    std::atomic<bool> m_bCloseAllClicked{false};
    std::atomic<bool> m_bNoToAllClicked{false};
    std::atomic<bool> m_bBatch{false};
    std::atomic<bool> m_bBatchNewFolder{false};
    std::atomic<int> m_nBatchCount{0};
    std::atomic<int> m_eBatchBackground{0};
};

HostState& state()
{
    static HostState hostState;
    return hostState;
}

// Whether each setCursor() reached the screen, so that restoreCursor() takes back what its own call set and nothing
// else. User-interface thread only.
std::vector<bool>& cursorCalls()
{
    static std::vector<bool> calls;
    return calls;
}

bool hasWindow()
{
    const auto* pApplication = qobject_cast<QGuiApplication*>(QCoreApplication::instance());
    return pApplication && QThread::currentThread() == pApplication->thread() &&
           !QGuiApplication::topLevelWindows().isEmpty();
}

} // namespace

QString CORVUtilityFns::getAppName()
{
    return QStringLiteral("Orvia");
}

void CORVUtilityFns::setCursor(const QCursor& cursor)
{
    const bool shown = hasWindow();
    if (shown) {
        QGuiApplication::setOverrideCursor(cursor);
    }
    cursorCalls().push_back(shown);
}

void CORVUtilityFns::restoreCursor()
{
    if (cursorCalls().empty()) {
        return;
    }
    if (cursorCalls().back() && qobject_cast<QGuiApplication*>(QCoreApplication::instance())) {
        QGuiApplication::restoreOverrideCursor();
    }
    cursorCalls().pop_back();
}

bool CORVUtilityFns::canClose()
{
    return state().m_bCanClose;
}

void CORVUtilityFns::setCanClose(bool bCanClose)
{
    state().m_bCanClose = bCanClose;
}

bool CORVUtilityFns::getCloseAllClicked()
{
    return state().m_bCloseAllClicked;
}

void CORVUtilityFns::setCloseAllClicked(bool bClicked)
{
    state().m_bCloseAllClicked = bClicked;
}

bool CORVUtilityFns::getNoToAllClicked()
{
    return state().m_bNoToAllClicked;
}

void CORVUtilityFns::setNoToAllClicked(bool bClicked)
{
    state().m_bNoToAllClicked = bClicked;
}

bool CORVUtilityFns::getSpumBatchStatus()
{
    return state().m_bBatch;
}

void CORVUtilityFns::setSpumBatchStatus(bool bRunning)
{
    state().m_bBatch = bRunning;
}

bool CORVUtilityFns::getSpumBatchNewFolderStatus()
{
    return state().m_bBatchNewFolder;
}

void CORVUtilityFns::setSpumBatchNewFolderStatus(bool bNewFolder)
{
    state().m_bBatchNewFolder = bNewFolder;
}

int CORVUtilityFns::getSpumBatchProcessingCount()
{
    return state().m_nBatchCount;
}

void CORVUtilityFns::setSpumBatchProcessingCount(int nCount)
{
    state().m_nBatchCount = nCount;
}

int CORVUtilityFns::getAdaptFLBgModeForSpumBatch()
{
    return state().m_eBatchBackground;
}

void CORVUtilityFns::setAdaptFLBgModeForSpumBatch(int nMode)
{
    state().m_eBatchBackground = nMode;
}
