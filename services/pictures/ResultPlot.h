// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/pictures/SpectrumPlot.h"

class CORVSpumKyvo;

// The spectra (or time courses) of the engine's result against the axis of the analysis. Where the selection has
// several values of the other key (several excitations, say), each component gets a curve for each, told apart by the
// style of the line.
SpectrumPlot plotOfSpectra(const CORVSpumKyvo& engine);
