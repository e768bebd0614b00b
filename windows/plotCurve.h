// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_vector.h"

#include <QVector>

// A vector as the plot takes it.
QVector<double> plotValues(const XTNT::Vector<double>& values);

// The values of a line; with bNormalized by the largest of them, if that is above 0.
QVector<double> plotCurve(const XTNT::Vector<double>& values, bool bNormalized);
