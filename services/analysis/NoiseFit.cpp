// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/analysis/NoiseFit.h"

#include "engine/CORVSpumKyvo.h"
#include "host/CORVSequenceDataset.h"
#include "services/analysis/CountedNoise.h"
#include "services/results/ComponentNumber.h"

#include <algorithm>
#include <cmath>

namespace {

using XTNT::Matrix;
using Kind = NoiseRequest::Kind;

// Noise of one image over that of another: a smaller one is not believed, as an image that the fit happens to meet
// would take all weight.
constexpr double mostRatio = 100.0;

double squareOf(double value)
{
    return value * value;
}

} // namespace

XTNT::NoiseModel noiseByImage(const Matrix<double>& data, const Matrix<double>& light)
{
    const long long images = data.num_cols();
    std::vector<double> deviations = ComponentNumber::of(data).noiseOfImages;
    if (deviations.empty()) {
        deviations.assign(light[0], light[0] + images);
    }
    const double largest = *std::max_element(deviations.begin(), deviations.end());
    XTNT::NoiseModel model{Matrix<double>(1, images), Matrix<double>(1, images, 1.0)};
    for (long long j = 0; j < images && largest > 0.0; ++j) {
        model.floors[0][j] = squareOf(std::max(deviations[static_cast<std::size_t>(j)] / largest, 1.0 / mostRatio));
    }
    return model;
} // NOLINT(clang-analyzer-cplusplus.NewDeleteLeaks): the shares of a matrix are counted

NoiseFitResult fitWithNoise(const NoiseRequest& request, const CORVSequenceDataset& sequence, CORVSpumKyvo& engine)
{
    NoiseFitResult result;
    const Matrix<double>& data = engine.m_cube.m_data;
    const Matrix<double>& spectra = engine.m_spectra;
    Matrix<double> fit = engine.m_concentrations.transpose();
    CountedNoise counted;
    XTNT::NoiseModel noise{Matrix<double>(1, data.num_cols()), Matrix<double>(1, data.num_cols(), 1.0)};
    result.facts.model = QStringLiteral("uniform");
    if (request.kind != Kind::None) {
        counted = CountedNoise::of(engine, sequence);
    }
    if (request.kind == Kind::Poisson) {
        result.facts.model = QStringLiteral("poisson");
        result.facts.estimated = !counted.gain || !counted.readNoise;
        counted.estimate(data, spectra, fit);
        noise = counted.model();
        if (counted.calibrated) {
            result.facts.electronsPerCount = counted.gain;
            result.facts.readNoise = counted.readNoise;
        }
    }
    if (request.kind == Kind::Gaussian) {
        result.facts.model = QStringLiteral("gaussian");
        noise = noiseByImage(data, counted.light);
    }
    if (request.kind != Kind::None) {
        XTNT::weightedConcentrations(data, spectra, noise, fit);
    }
    const XTNT::WeightedResidual left = XTNT::weightedResidual(data, spectra, noise, fit);
    const double size = std::sqrt(left.squares / left.freedom);
    if (request.kind == Kind::Poisson && !result.facts.estimated) {
        result.facts.residualOverNoise = size;
    }
    if (request.errors) {
        Matrix<double> errors = XTNT::standardErrors(spectra, noise, fit).transpose();
        for (long long i = 0; i < errors.storage.n_; ++i) {
            errors.storage[i] *= size;
        }
        result.errors = errors;
    }
    if (request.kind != Kind::None) {
        engine.m_concentrations = fit.transpose();
    }
    return result;
} // NOLINT(clang-analyzer-cplusplus.NewDeleteLeaks): the shares of a matrix are counted
