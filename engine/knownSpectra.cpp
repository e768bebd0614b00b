// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/knownSpectra.h"

#include "XTNT/constrained_concentrations.h"
#include "spectra/SpectrumPlotParams.h"

#include <cxxabi.h>
#include <new>

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

// The unwinding of an aborted thread has no object: the reference that catches it refers to nothing and is not used,
// which the sanitizer of undefined behaviour would report.
[[gnu::no_sanitize("null")]] bool fitConcentrations(const XTNT::Matrix<double>& data,
                                                    const XTNT::Matrix<double>& spectra,
                                                    XTNT::Matrix<double>& concentrations)
{
    try {
        XTNT::Matrix<double> byPixel;
        XTNT::constrainedConcentrations(data, spectra, byPixel);
        concentrations = byPixel.transpose();
        return true;
    } catch (const abi::__forced_unwind&) {
        throw;
    } catch (const std::bad_alloc&) {
        throw;
    } catch (...) {
        // The fit throws plain integers.
        return false;
    }
}
