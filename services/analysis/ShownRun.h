// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/runEngine.h"

#include <QString>

class JobMonitor;

// Runs the engine once; meanwhile the progress line shows the text with the time that has passed (`dFraction` below 0)
// or at that fraction.
RunOutcome runShown(CORVSpumKyvo& engine, JobMonitor& monitor, const QString& strText, double dFraction);
