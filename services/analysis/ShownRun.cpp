// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/analysis/ShownRun.h"

#include "platform/orvutils/ProgressDisplay.h"
#include "services/basis/JobMonitor.h"

// The engine's progress thread alone draws the line while the run is on.
RunOutcome runShown(CORVSpumKyvo& engine, JobMonitor& monitor, const QString& strText, double dFraction)
{
    orv::setProgressDisplay([&](const QString& message, double, double) {
        if (!message.isNull()) {
            monitor.showProgress(strText, dFraction);
        }
    });
    const RunOutcome outcome = runEngine(engine);
    orv::setProgressDisplay({});
    return outcome;
}
