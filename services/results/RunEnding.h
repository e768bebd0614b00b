// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "algorithms/MCR.h"

#include <QString>

// How an automatic run ended, in the words of the summary: "converged", "good fit", "diverged", "iteration limit",
// "degenerate", "not run".
QString endingText(MCR::Ending eEnding);
