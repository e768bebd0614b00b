// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace orv {

// Asks the running long process to end, as its abort control would. Safe in a signal handler.
void requestAbort();

// What the present long process says of itself.
struct ProcessState
{
    bool running = false;
    bool canAbort = false;
    QString abortText;
    QString message;
    int step = 0;
    int steps = 0;
};
ProcessState currentProcess();

} // namespace orv
