// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/noise_model.h"
#include "XTNT/xtnt_matrix.h"

// Curve resolution with a weight for each element: D (pixels x bands) is close to C S, neither below 0, in units of
// the noise, the sum of (D - C S)^2 over its variance `noise` at what C and S explain. Half-steps in turn, as in the
// alternating least squares of R. Tauler (Chemom. Intell. Lab. Syst. 30 (1995) 133), with the weights taken anew before
// each. Rows hold finite elements; shapes must agree (asserted); `noise` has one group of rows.

// One half-step: the spectra S (K x bands) that go with the amounts C (pixels x K); the weights are those at the
// present S. False, and S is as it was, where a spectrum would be 0.
bool weightedSpectra(const XTNT::Matrix<double>& D, const XTNT::Matrix<double>& C, const XTNT::NoiseModel& noise,
                     XTNT::Matrix<double>& S);

struct WeightedRounds
{
    int rounds = 0;
    bool converged = false; // the spectra stand still, each scaled to a maximum of 1
    bool failed = false;    // a spectrum vanished: S and C are of the round before
};

// Rounds of both half-steps from the spectra S and the amounts C on, `most` of them at most; S has maxima of 1
// afterwards and C goes with it. Passes cancellation points; an abort leaves both in between. The same bits on any
// number of threads.
WeightedRounds resolveWeighted(const XTNT::Matrix<double>& D, const XTNT::NoiseModel& noise, int most,
                               XTNT::Matrix<double>& S, XTNT::Matrix<double>& C);
