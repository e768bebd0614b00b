// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>

#include <functional>

// What a process of its own came to.
struct GuardedRun
{
    bool exited = false; // else it died of `signal`
    int status = 0;
    int signal = 0;
    double processorSeconds = 0.0; // its own and the system's for it
    long peakKiB = 0;              // resident; a forked process counts what it shares with this one
    QByteArray output;
};

// Runs `work` in a forked process; what it writes to the descriptor is `output`, what it returns is `status`. Ended by
// SIGXCPU after 25 seconds of the processor's time and by SIGALRM after 30 on the clock.
GuardedRun runGuarded(const std::function<int(int descriptor)>& work);
