// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_vector.h"

#include <QVector>

// Values of spectra as they are compared and drawn.

// A new vector: the values by the largest of them, whatever its sign. Values that are all 0 become NaNs.
XTNT::Vector<double> dividedByLargest(const XTNT::Vector<double>& values);

// The values as a plot takes them.
QVector<double> curveValues(const XTNT::Vector<double>& values);

// Whether there is anything to draw.
bool hasFiniteValue(const QVector<double>& values);
