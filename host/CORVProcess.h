// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/orv_types.h"

#include <QString>

// The host's registry of long operations. Safe from any thread. Processes nest.
class CORVProcess
{
public:
    // Marks a long operation and shows its abort control, when it can be aborted. The outermost start clears an earlier
    // abort; a start inside another process keeps it.
    static void startLongProcess(int nReserved, tag_eLongProcessTypes eType, bool bCanAbort, QString strAbortText);
    // Ends the latest process of that type. LONGPROCESS_ANALYSIS also ends one that began as LONGPROCESS_GENERAL, as a
    // run of the engine does. Without such a process nothing ends.
    static void endLongProcess(tag_eLongProcessTypes eType);
    // As above with a last message, shown for nMilliseconds.
    static void endLongProcess(const QString& strMessage, int nMilliseconds, tag_eLongProcessTypes eType);
    // True once the user has pressed abort, until the next start.
    static bool isProcessAborted();
    // True while a process of that type runs.
    static bool isProcessInProgress(tag_eLongProcessTypes eType);
    // Shows step nStep of nSteps of a loading operation; *pAborted (may be null) tells whether the user has pressed
    // abort.
    static void setProcessMessage(const QString& strMessage, int nStep, int nSteps, bool* pAborted);
};
