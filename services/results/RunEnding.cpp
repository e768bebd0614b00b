// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/RunEnding.h"

QString endingText(MCR::Ending eEnding)
{
    switch (eEnding) {
    case MCR::Ending::Converged:
        return QStringLiteral("converged");
    case MCR::Ending::GoodFit:
        return QStringLiteral("good fit");
    case MCR::Ending::Diverged:
        return QStringLiteral("diverged");
    case MCR::Ending::IterationLimit:
        return QStringLiteral("iteration limit");
    case MCR::Ending::Degenerate:
        return QStringLiteral("degenerate");
    case MCR::Ending::NotRun:
        break;
    }
    return QStringLiteral("not run");
}
