// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/knownSpectra.h"

#include "spectra/SpectrumPlotParams.h"

bool scaledSpectra(const QList<SpectrumPlotParams*>& plots, int nImages, XTNT::Matrix<double>& spectra)
{
    spectra.reshape(plots.size(), nImages);
    for (int i = 0; i < plots.size(); ++i) {
        XTNT::Vector<double> values = plots.at(i)->values();
        if (values.size() != nImages) {
            return false;
        }
        const double largest = values.Max();
        for (long long j = 0; j < values.size(); ++j) {
            values[j] /= largest;
        }
        spectra.setRow(i, values);
    }
    return true;
}
