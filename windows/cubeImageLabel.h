// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "spectra/KeyPair.h"

#include <QString>

// A time from zero as "hh:mm:ss"; a day and more are more hours. What is no number, or below 0, counts as 0; parts of a
// second are dropped.
QString clockTime(const QString& strSeconds);

// What is written over an image of the cube: its filters or, with spectra over time (type 2), its time and interval.
QString cubeImageLabel(const KeyPair& key, int nSpectrumType);

// The part of the cube's range that is shown at a position (1 to 10) of the brightness slider: 1.0 down to 0.1.
double cubeMaxScale(int nSliderValue);
