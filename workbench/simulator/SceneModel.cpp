// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/simulator/SceneModel.h"

#include "XTNT/xtnt_parallel.h"
#include "workbench/simulator/ComponentSpectrum.h"
#include "workbench/simulator/ScenePlan.h"
#include "workbench/simulator/SimulationOptions.h"

#include <algorithm>

namespace {

constexpr long long kGrain = 16384; // pixels a chunk

std::size_t maximumIndex(const std::vector<double>& values)
{
    return static_cast<std::size_t>(std::max_element(values.begin(), values.end()) - values.begin());
}

void scale(std::vector<double>& values, double factor)
{
    for (double& value : values) {
        value *= factor;
    }
}

} // namespace

std::vector<double> binTwofold(const std::vector<double>& pixels, int size)
{
    const auto width = static_cast<std::size_t>(size);
    const std::size_t half = width / 2;
    std::vector<double> coarse(half * half);
    for (std::size_t row = 0; row < half; ++row) {
        for (std::size_t column = 0; column < half; ++column) {
            const double* pPixel = pixels.data() + 2 * row * width + 2 * column;
            coarse[row * half + column] = (pPixel[0] + pPixel[1]) + (pPixel[width] + pPixel[width + 1]);
        }
    }
    return coarse;
}

bool SceneModel::build(const ScenePlan& plan, const SimulationOptions& options, const QList<Band>& bands,
                       QString* pError)
{
    size = options.size;
    spots = std::max(1, plan.spots().size());
    maps = plan.renderMaps(size);
    if (!plan.spots().isEmpty()) {
        reference = ScanSpots::transmittedReference(plan.spots(), plan.shape(), plan.tissue(), size);
    }
    const QList<Band> bandsOfSpot = bands.mid(0, bands.size() / spots);
    for (int i = 0; i < plan.components().size(); ++i) {
        const SceneComponent& component = plan.components().at(i);
        const auto index = static_cast<std::size_t>(i);
        names.append(component.name);
        std::vector<double> spectrum = componentSpectrum(component, plan.tissue(), bandsOfSpot);
        const std::size_t brightest = maximumIndex(spectrum);
        const std::size_t peak = maximumIndex(maps[index]);
        if (!(spectrum[brightest] > 0.0) || !(maps[index][peak] > 0.0)) {
            *pError = (options.kind == SimulationKind::Temporal
                           ? QStringLiteral("\"%1\" gives no light with this filter at these times; choose others.")
                           : QStringLiteral(
                                 "\"%1\" gives no light in these filters; choose other excitations or more bands."))
                          .arg(component.name);
            return false;
        }
        scale(spectrum, 1.0 / spectrum[brightest]);
        spectra.push_back(spectrum);
        if (i > 0) {
            scale(maps[index], component.ratio * maps[0][peak] * spectra[0][brightest] / maps[index][peak]);
        }
    }

    double top = 0.0;
    for (int band = 0; band < bands.size(); ++band) {
        std::vector<double> counts = expectedCounts(band);
        if (bands.at(band).binning != options.binning) {
            counts = binTwofold(counts, size);
        }
        top = std::max(top, *std::max_element(counts.begin(), counts.end()));
    }
    for (std::vector<double>& map : maps) {
        scale(map, options.peakElectrons / options.gain / top);
    }
    return true;
}

std::vector<double> SceneModel::expectedCounts(int band) const
{
    std::vector<double> counts(pixelsPerSpot(), 0.0);
    const std::size_t bandsOfSpot = spectra.front().size();
    const std::size_t first = static_cast<std::size_t>(band) / bandsOfSpot * counts.size();
    XTNT::parallelChunks(static_cast<long long>(counts.size()), kGrain, [&](long long begin, long long end) {
        for (std::size_t k = 0; k < maps.size(); ++k) {
            const double weight = spectra[k][static_cast<std::size_t>(band) % bandsOfSpot];
            const double* __restrict pMap = maps[k].data() + first;
            double* __restrict pOut = counts.data();
            for (long long i = begin; i < end; ++i) {
                pOut[i] += weight * pMap[i];
            }
        }
    });
    return counts;
}
