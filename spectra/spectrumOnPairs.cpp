// SPDX-License-Identifier: GPL-3.0-or-later
#include "spectra/spectrumOnPairs.h"

SpectrumPlotParams spectrumOnPairs(const SpectrumPlotParams& spectrum, const QList<KeyPair>& pairs, int nAxis)
{
    SpectrumPlotParams copy(spectrum);
    copy.control.clear();
    copy.axis = nAxis;
    if (spectrum.coversPairs(pairs)) {
        copy.setPairs(pairs);
        copy.setValues(spectrum.valuesAt(pairs));
    }
    return copy;
}
