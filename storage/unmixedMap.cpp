// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/unmixedMap.h"

#include "host/CILImage.h"

#include <algorithm>

namespace {

bool allInside(const std::vector<int>& pixels, std::size_t count)
{
    return std::all_of(pixels.begin(), pixels.end(),
                       [count](int i) { return i >= 0 && static_cast<std::size_t>(i) < count; });
}

} // namespace

SpectrumPeak spectrumPeak(const XTNT::Matrix<double>& spectra, int nComponent)
{
    SpectrumPeak peak;
    if (nComponent < 0 || nComponent >= spectra.num_rows() || spectra.num_cols() < 1) {
        return peak;
    }
    const double* pSpectrum = spectra[nComponent];
    peak.image = 0;
    peak.value = pSpectrum[0];
    for (long long j = 1; j < spectra.num_cols(); ++j) {
        if (pSpectrum[j] > peak.value) {
            peak.image = j;
            peak.value = pSpectrum[j];
        }
    }
    return peak;
}

bool unmixedMap(const XTNT::Matrix<double>& concentrations, const UnmixedMapPlace& place, double dSpectrumMaximum,
                CILImage& out)
{
    out.clear();
    CILImage map;
    if (place.component < 0 || place.component >= concentrations.num_rows() || place.spot < 0 ||
        map.InitWithType(ORVTYPE_FLOAT, place.width, place.height) != EIL_SUCCESS) {
        return false;
    }
    const std::size_t all = map.pixelCount();
    const std::size_t count = place.pixels != nullptr ? place.pixels->size() : all;
    const std::size_t first = static_cast<std::size_t>(place.spot) * count;
    if (static_cast<std::size_t>(concentrations.num_cols()) < first + count ||
        (place.pixels != nullptr && !allInside(*place.pixels, all))) {
        return false;
    }
    const double* pValues = concentrations[place.component] + first;
    float* pPixels = map.floats();
    for (std::size_t j = 0; j < count; ++j) {
        const std::size_t i = place.pixels != nullptr ? static_cast<std::size_t>((*place.pixels)[j]) : j;
        // Narrowed first, then divided.
        pPixels[i] = static_cast<float>(static_cast<double>(static_cast<float>(pValues[j])) / dSpectrumMaximum);
    }
    map.m_fBinning = static_cast<float>(place.binning);
    map.RefreshImageStats();
    out = map;
    return true;
}
