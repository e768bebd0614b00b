// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "workbench/simulator/SimulationOptions.h"

#include <functional>

// Told of the work's progress, 0 to 1, on the calling thread; false asks to stop.
using SimulationProgress = std::function<bool(double fraction, const QString& message)>;

// Name of the folder with the truth, inside the sequence.
constexpr const char* const kTruthFolder = "truth";

// Writes a simulated sequence with its truth to the folder `strTarget`, whose parent must exist. The same options and
// folder name give the same bytes. False after a failure, with one sentence in *pError, and after `progress` asked to
// stop, with *pError empty; nothing is then left, and what was there is as it was. `progress` may be empty.
// docs/simulation.md has the model.
bool simulate(const QString& strTarget, const SimulationOptions& options, const SimulationProgress& progress,
              QString* pError);
