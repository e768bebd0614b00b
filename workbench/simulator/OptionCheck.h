// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

struct SimulationOptions;

// An empty text when the options can be simulated, else one sentence that says what is wrong and what to do. Asks the
// reference data for the probes.
QString validate(const SimulationOptions& options);
