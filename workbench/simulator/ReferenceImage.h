// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"
#include "host/CPLSection.h"
#include "workbench/simulator/BandPlan.h"

struct SceneModel;
struct SimulationOptions;

// The fluorescent reference of an image: the exciting light as the camera sees it, transmitted by the animal in a scan,
// else sent back by a white diffuser in its place.
struct ReferenceImage
{
    // Counts of the brightest pixel above the offset; the exposure is what gives them.
    static constexpr double kBrightest = 40000.0;

    CILImage image;     // at the analysis' binning; empty without memory
    CPLSection section; // how it was taken

    // Of image `index` of the sequence, which the click info describes; `imageNumber` is its own for the noise.
    static ReferenceImage take(const SimulationOptions& options, const SceneModel& model, const QList<Band>& bands,
                               int index, int imageNumber);
};
