// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/FitRest.h"

#include <algorithm>
#include <cmath>

FitRest FitRest::of(const XTNT::Matrix<double>& data, const XTNT::Matrix<double>& maps,
                    const XTNT::Matrix<double>& spectra)
{
    const auto images = static_cast<std::size_t>(data.num_cols());
    FitRest rest;
    rest.ofImages.assign(images, 0.0);
    rest.spectrum.assign(images, 0.0);
    std::vector<double> left(images);
    for (long long p = 0; p < data.num_rows(); ++p) {
        double sum = 0.0;
        double squares = 0.0;
        for (std::size_t j = 0; j < images; ++j) {
            const auto image = static_cast<long long>(j);
            left[j] = data[p][image];
            for (long long k = 0; k < spectra.num_rows(); ++k) {
                left[j] -= maps[k][p] * spectra[k][image];
            }
            sum += left[j];
            squares += left[j] * left[j];
            rest.ofImages[j] += left[j] * left[j];
        }
        for (std::size_t j = 0; j < images; ++j) {
            rest.spectrum[j] += std::max(sum, 0.0) * left[j];
        }
        rest.ofRows.push_back(std::sqrt(squares / static_cast<double>(images)));
    }
    for (double& image : rest.ofImages) {
        image = std::sqrt(image / static_cast<double>(std::max(data.num_rows(), 1LL)));
    }
    return rest;
}
