// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/spectraForPairs.h"

#include "spectra/SpectrumPlotParams.h"

QList<SpectrumPlotParams*> spectraForPairs(const QList<SpectrumPlotParams*>& spectra, const QList<KeyPair>& pairs,
                                           int eAxis)
{
    QList<SpectrumPlotParams*> copies;
    for (const SpectrumPlotParams* pSpectrum : spectra) {
        auto* pCopy = new SpectrumPlotParams(*pSpectrum);
        if (pCopy->coversPairs(pairs)) {
            const XTNT::Vector<double> values = pSpectrum->valuesAt(pairs);
            pCopy->setPairs(pairs);
            pCopy->setValues(values);
        }
        pCopy->axis = eAxis;
        copies.append(pCopy);
    }
    return copies;
}
