// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_matrix.h"
#include "host/CORVDatabase.h"
#include "spectra/KeyPair.h"

#include <QList>
#include <QStringList>

#include <limits>

// The smallest and the largest number among keys; without a key they stand as they start, crossed.
struct KeyLimits
{
    double lowest = std::numeric_limits<double>::max();
    double highest = 0.0;
};

// Of all values that a sequence has along the axis, selected or not: emission keys for the axes of emission and time,
// excitation keys for that of excitation. Where excitation counts, a key that is no wavelength is passed over;
// elsewhere a text that is no number counts as 0.
KeyLimits keyLimits(const QStringList& keys, int eAxis);

// Place in a sensor's curve, 0 to n - 1, of value `dValue` when the limits are stretched over the whole curve: however
// narrow the range of a selection is, its ends get the ends of the curve, so that near wavelengths differ in colour.
// Values beyond the limits take the nearer end. -1 for a curve whose wavelengths do not span anything.
int curveIndex(const sColorSensorRGBspecFileParameters& curve, double dValue, const KeyLimits& limits);

// How much red, green and blue each image of the selection gives to the overview: pairs x 3. Zeros for a curve that
// does not span anything. The curve has one wavelength at least.
XTNT::Matrix<double> responseWeights(const sColorSensorRGBspecFileParameters& curve, const QList<KeyPair>& selection,
                                     int eAxis, const KeyLimits& limits);
