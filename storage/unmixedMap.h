// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_matrix.h"

#include <vector>

class CILImage;

// Where one component is brightest, and how bright its spectrum is there.
struct SpectrumPeak
{
    long long image = -1; // place in the spectrum, the first of equal ones; below 0 when there is no such component
    double value = 0.0;
};

// Of row nComponent of the spectra (components x images).
SpectrumPeak spectrumPeak(const XTNT::Matrix<double>& spectra, int nComponent);

// One component at one scan spot as an image.
struct UnmixedMapPlace
{
    int component = 0;
    int spot = 0;
    int width = 0;
    int height = 0;
    int binning = 1;
    // Row-major places of the pixels that were analysed; null when all were. Borrowed.
    const std::vector<int>* pixels = nullptr;
};

// Fills `out` with the component's concentrations (components x pixels of all spots, one spot after the other), as
// floats divided by the largest value of its spectrum; 0 where nothing was analysed. False, and `out` empty, when the
// concentrations have no such component or spot, or a pixel lies outside the image.
bool unmixedMap(const XTNT::Matrix<double>& concentrations, const UnmixedMapPlace& place, double dSpectrumMaximum,
                CILImage& out);
