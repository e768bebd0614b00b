// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/relativeResidual.h"

#include "XTNT/residual_norm.h"

#include <cmath>

std::optional<double> relativeResidual(const XTNT::Matrix<double>& data, const XTNT::Matrix<double>& concentrations,
                                       const XTNT::Matrix<double>& spectra)
{
    if (data.num_rows() == 0 || concentrations.num_rows() == 0 || concentrations.num_cols() != data.num_rows() ||
        spectra.num_rows() != concentrations.num_rows() || spectra.num_cols() != data.num_cols()) {
        return std::nullopt;
    }
    // What a model of nothing leaves is all of the data.
    const XTNT::Matrix<double> noMaps(data.num_rows(), 1, 0.0);
    const XTNT::Matrix<double> noSpectra(1, data.num_cols(), 0.0);
    const double dAll = XTNT::residualNorm(data, noMaps, noSpectra);
    const double dRest = XTNT::residualNorm(data, concentrations.transpose(), spectra);
    const double dShare = dRest / dAll;
    return std::isfinite(dShare) ? std::optional<double>(dShare) : std::nullopt;
}
