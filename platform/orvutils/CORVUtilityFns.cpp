// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVUtilityFns.h"

#include <QApplication>

namespace {

struct State
{
    bool canClose = true;
    bool closeAll = false;
    bool noToAll = false;
    bool batch = false;
    bool batchNewFolder = false;
    int batchCount = 0;
    int batchBackgroundMode = 0;
};

// User-interface thread only.
State& state()
{
    static State instance;
    return instance;
}

bool hasWindows()
{
    return qobject_cast<QApplication*>(QCoreApplication::instance()) != nullptr &&
           !QApplication::topLevelWidgets().isEmpty();
}

} // namespace

QString CORVUtilityFns::getAppName()
{
    return QStringLiteral("Orvia");
}

void CORVUtilityFns::setCursor(const QCursor& cursor)
{
    if (hasWindows())
        QApplication::setOverrideCursor(cursor);
}

void CORVUtilityFns::restoreCursor()
{
    if (hasWindows())
        QApplication::restoreOverrideCursor();
}

bool CORVUtilityFns::canClose()
{
    return state().canClose;
}

void CORVUtilityFns::setCanClose(bool bCanClose)
{
    state().canClose = bCanClose;
}

bool CORVUtilityFns::getCloseAllClicked()
{
    return state().closeAll;
}

void CORVUtilityFns::setCloseAllClicked(bool bClicked)
{
    state().closeAll = bClicked;
}

bool CORVUtilityFns::getNoToAllClicked()
{
    return state().noToAll;
}

void CORVUtilityFns::setNoToAllClicked(bool bClicked)
{
    state().noToAll = bClicked;
}

bool CORVUtilityFns::getSpumBatchStatus()
{
    return state().batch;
}

void CORVUtilityFns::setSpumBatchStatus(bool bRunning)
{
    state().batch = bRunning;
}

bool CORVUtilityFns::getSpumBatchNewFolderStatus()
{
    return state().batchNewFolder;
}

void CORVUtilityFns::setSpumBatchNewFolderStatus(bool bNewFolder)
{
    state().batchNewFolder = bNewFolder;
}

int CORVUtilityFns::getSpumBatchProcessingCount()
{
    return state().batchCount;
}

void CORVUtilityFns::setSpumBatchProcessingCount(int nCount)
{
    state().batchCount = nCount;
}

int CORVUtilityFns::getAdaptFLBgModeForSpumBatch()
{
    return state().batchBackgroundMode;
}

void CORVUtilityFns::setAdaptFLBgModeForSpumBatch(int nMode)
{
    state().batchBackgroundMode = nMode;
}
