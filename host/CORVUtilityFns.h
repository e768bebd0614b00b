// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCursor>
#include <QString>

// Small services of the host: its name, the cursor, the state of closing all windows and of batch processing.
class CORVUtilityFns
{
public:
    static QString getAppName();

    // Without a window (a command line) the cursor calls do nothing.
    static void setCursor(const QCursor& cursor);
    static void restoreCursor();

    static bool canClose();
    static void setCanClose(bool bCanClose);
    static bool getCloseAllClicked();
    static void setCloseAllClicked(bool bClicked);
    static bool getNoToAllClicked();
    static void setNoToAllClicked(bool bClicked);

    static bool getSpumBatchStatus();
    static void setSpumBatchStatus(bool bRunning);
    static bool getSpumBatchNewFolderStatus();
    static void setSpumBatchNewFolderStatus(bool bNewFolder);
    static int getSpumBatchProcessingCount();
    static void setSpumBatchProcessingCount(int nCount);
    static int getAdaptFLBgModeForSpumBatch();
    static void setAdaptFLBgModeForSpumBatch(int nMode);
};
