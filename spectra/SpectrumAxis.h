// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// Along what the images of a selection differ, and what a spectrum of them is drawn over.
enum tag_eSpectrumAxis
{
    SPECTRUMAXIS_EMISSION = 0,
    SPECTRUMAXIS_EXCITATION = 1,
    SPECTRUMAXIS_TIME = 2
};

// The label of that axis in a plot, with its unit; empty for any other number.
QString axisLabel(int nAxis);
