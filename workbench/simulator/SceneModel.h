// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "workbench/simulator/BandPlan.h"

#include <QList>
#include <QStringList>

#include <vector>

class ScenePlan;
struct SimulationOptions;

// The sequence without noise: expected counts = sum over the components of map times spectrum.
struct SceneModel
{
    QStringList names;
    int size = 0;
    int spots = 1;                            // of a scan
    std::vector<std::vector<double>> maps;    // a component each: spots times size x size pixels in counts
    std::vector<std::vector<double>> spectra; // a component each: a value for each band of a spot, the largest 1
    // Of a scan: transmitted reference of each spot as the maps lie, the largest value 1; else empty.
    std::vector<double> reference;

    // Renders and scales the scene. Each component but the first has its peak at `ratio` times the first one's counts,
    // at the pixel (and spot) of its map's maximum and in the band of its spectrum's maximum; then all are scaled so
    // that the brightest pixel of the sequence (a coarse image's pixel gathers four) expects options.peakElectrons.
    // False with a sentence when a component gives no light in any band.
    bool build(const ScenePlan& plan, const SimulationOptions& options, const QList<Band>& bands, QString* pError);

    // Pixels of the map of one spot.
    std::size_t pixelsPerSpot() const { return maps.front().size() / static_cast<std::size_t>(spots); }
    // Expected counts of a band of the sequence at the analysis' binning, row by row.
    std::vector<double> expectedCounts(int band) const;
};

// Sums each 2 x 2 pixels of an image with an even side.
std::vector<double> binTwofold(const std::vector<double>& pixels, int size);
