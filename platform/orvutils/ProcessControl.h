// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/orv_types.h"

#include <QString>

#include <functional>

// The application's side of CORVProcess: what a display shows and what its abort control does. Every function is safe
// from any thread.
namespace orv {

// The innermost process under way. Without one the message of the last end remains, everything else is empty.
struct ProcessState
{
    int m_nRunning = 0; // processes of all types
    bool m_bCanAbort = false;
    bool m_bAborted = false;
    QString m_strAbortText; // to show once abort was pressed
    QString m_strMessage;
    int m_nMilliseconds = 0; // how long the message of an end is to be shown
    int m_nStep = 0;
    int m_nSteps = 0; // 0: the share of work done is not known
};

ProcessState processState();
QString currentMessage();

// What the abort control does: CORVProcess::isProcessAborted() is true from now on until the next outermost start. May
// be called from a signal handler.
void requestAbort();
// As above, but no start takes it back, only clearAborts(). For an interrupt of the whole program, which must not be
// lost between two processes. May be called from a signal handler.
void requestAbortForGood();
void clearAborts();

// Called after every start, end and message, on the thread of the caller and with nothing locked. The number is for
// removeProcessObserver(); a call that is under way on another thread may still end after it.
int addProcessObserver(std::function<void(const ProcessState&)> observer);
void removeProcessObserver(int nObserver);

} // namespace orv
