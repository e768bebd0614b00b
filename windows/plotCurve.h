// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_vector.h"

#include <QVector>

// The values of a line; with bNormalized by the largest of them, if that is above 0.
QVector<double> plotCurve(const XTNT::Vector<double>& values, bool bNormalized);
