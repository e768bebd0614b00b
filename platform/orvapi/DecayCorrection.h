// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QVector>

// One exposure: its start in seconds since any common instant, and its length in seconds.
struct Exposure
{
    double start = 0.0;
    double length = 0.0;
};

// For each exposure the factor that turns the mean of a decaying signal over it into the signal's value at t0, the
// earliest start. With L = ln 2 / half life, t the start and dt the length, the mean over the exposure is exp(-L (t -
// t0)) (1 - exp(-L dt)) / (L dt) times the value at t0; the factor is one over that. An infinite half life gives 1.
// False when the half life or a length is not above 0, a figure is not a number, or a factor exceeds what a double
// holds; `factors` is then empty.
bool decayCorrectionFactors(const QVector<Exposure>& exposures, double dHalfLifeSec, QVector<double>& factors);
