// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// One element of a spectrum: the value at one image of the band list.
struct SpectrumPoint
{
    QString first;    // excitation, or the interval in a temporal sequence
    QString second;   // emission, or the time
    double value = 0; // in the unit of the data that the spectrum belongs to
};
