// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/analysis/ShownRun.h"

#include "platform/orvutils/ProgressDisplay.h"
#include "services/basis/CliProgress.h"

// The engine's progress thread alone draws the line while the run is on.
RunOutcome runShown(CORVSpumKyvo& engine, CliProgress& progress, const QString& strText, double dFraction)
{
    orv::setProgressDisplay([&](const QString& message, double, double) {
        if (!message.isNull()) {
            progress.show(strText, dFraction);
        }
    });
    const RunOutcome outcome = runEngine(engine);
    orv::setProgressDisplay({});
    return outcome;
}
