// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/NoiseEstimate.h"

#include <cmath>
#include <limits>

namespace {

constexpr std::size_t fewestImages = 3;

} // namespace

NoiseEstimate NoiseEstimate::ofEigenvalues(const std::vector<double>& eigenvalues)
{
    NoiseEstimate estimate;
    const std::size_t images = eigenvalues.size();
    if (images < fewestImages) {
        return estimate;
    }
    // left[k]: what k components leave, summed from the small end so that it does not cancel.
    std::vector<double> left(images + 1, 0.0);
    for (std::size_t k = images; k > 0; --k) {
        left[k - 1] = left[k] + eigenvalues[k - 1];
    }
    if (!std::isfinite(left[0]) || !(left[0] > 0.0)) {
        return estimate;
    }
    double smallest = std::numeric_limits<double>::infinity();
    for (std::size_t k = 1; k < images; ++k) {
        // The pixels' number is the same for all k and left out.
        const auto rest = static_cast<double>(images - k);
        const double indicator = std::sqrt(left[k] / rest) / (rest * rest);
        if (indicator < smallest) {
            smallest = indicator;
            estimate.components = static_cast<int>(k);
            estimate.lackOfFit = 100.0 * std::sqrt(left[k] / left[0]);
        }
    }
    return estimate;
}
