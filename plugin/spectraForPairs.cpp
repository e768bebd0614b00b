// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/spectraForPairs.h"

#include "spectra/spectrumOnPairs.h"

QList<SpectrumPlotParams*> spectraForPairs(const QList<SpectrumPlotParams*>& spectra, const QList<KeyPair>& pairs,
                                           int eAxis)
{
    QList<SpectrumPlotParams*> copies;
    for (const SpectrumPlotParams* pSpectrum : spectra) {
        copies.append(new SpectrumPlotParams(spectrumOnPairs(*pSpectrum, pairs, eAxis)));
    }
    return copies;
}
