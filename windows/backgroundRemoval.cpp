// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/backgroundRemoval.h"

#include "XTNT/simplex_fit.h"
#include "XTNT/xtnt_matrix.h"
#include "host/CORVLog.h"
#include "spectra/logLine.h"

namespace {

XTNT::Matrix<double> oneRow(const XTNT::Vector<double>& values)
{
    XTNT::Matrix<double> matrix(1, values.n_);
    for (long long i = 0; i < values.n_; ++i) {
        matrix[0][i] = values[i];
    }
    return matrix;
}

} // namespace

int backgroundRow(const QList<SpectrumPlotParams*>& spectra)
{
    for (int i = 0; i < spectra.size(); ++i) {
        if (spectra.at(i)->settings.selected && spectra.at(i)->hasData()) {
            return i;
        }
    }
    return -1;
}

bool removeBackground(XTNT::Vector<double>& spectrum, const XTNT::Vector<double>& background)
{
    XTNT::Vector<double> residual;
    XTNT::Vector<double> amount;
    if (XTNT::simplexFit(spectrum, oneRow(background), residual, amount, 0.0) != 0) {
        logLine("SpumKyvo: unable to remove the background spectrum!", CORVLOG_WARNING);
        return false;
    }
    spectrum = residual;
    return true;
}

QList<SpectrumPlotParams*> spectraToUnmix(const QList<SpectrumPlotParams*>& spectra, bool bBackgroundMode)
{
    const int nBackground = bBackgroundMode ? backgroundRow(spectra) : -1;
    QList<SpectrumPlotParams*> taken;
    for (int i = 0; i < spectra.size(); ++i) {
        if (!spectra.at(i)->hasData()) {
            continue;
        }
        auto* pCopy = new SpectrumPlotParams(*spectra.at(i));
        pCopy->control.clear();
        if (nBackground >= 0 && i != nBackground) {
            XTNT::Vector<double> values = pCopy->values();
            removeBackground(values, spectra.at(nBackground)->values());
            pCopy->setValues(values);
        }
        pCopy->settings.selected = true;
        pCopy->settings.index = taken.size();
        taken.append(pCopy);
    }
    return taken;
}
