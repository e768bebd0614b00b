// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "workbench/simulator/DepthBlur.h"
#include "workbench/simulator/MouseShape.h"
#include "workbench/simulator/ScanSpots.h"
#include "workbench/simulator/SceneComponent.h"
#include "workbench/simulator/TissueOptics.h"

#include <QList>
#include <QString>

#include <memory>
#include <vector>

struct Band;
struct SimulatedSource;
struct SimulationOptions;

// The animal and what shines in it. Place and shape do not depend on the size of the images.
class ScenePlan
{
public:
    // Depth in mm at which the skin and tissue's autofluorescence, and the food in the gut, count as lying.
    static constexpr double kTissueDepthMm = 0.5;
    static constexpr double kFoodDepthMm = 3.0;

    // Options must be valid. False with a sentence in *pError when the reference data lack something.
    bool build(const SimulationOptions& options, QString* pError);

    // Leaves food out when these bands give it no light at all, as filters far from its chlorophyll do.
    void leaveOutUnlitFood(const QList<Band>& bands);

    const MouseShape& shape() const { return *m_shape; }
    const TissueOptics& tissue() const { return m_tissue; }
    // The places from which a scan is lit, else none.
    const QList<ScanSpot>& spots() const { return m_spots; }
    // The tissue's own light first, then food (where there is excitation, and unless its ratio is 0), then the sources
    // in their order: probes, organs, or the isotope at its depths.
    const QList<SceneComponent>& components() const { return m_components; }

    // The map of each component, `size` x `size` pixels row by row, 0 outside the animal, the largest pixel 1 (a map
    // without light stays 0); in a scan the maps of all spots one after the other, the largest pixel of all 1. A pixel
    // is the mean over its area. Independent of the number of threads.
    std::vector<std::vector<double>> renderMaps(int size) const;

private:
    bool addTissue(const SimulationOptions& options, QString* pError);
    bool addFood(const SimulationOptions& options, QString* pError);
    bool addSources(const SimulationOptions& options, QString* pError);
    bool addIsotope(const SimulationOptions& options, QString* pError);
    void addSource(const SimulatedSource& source, const Probe& light, const DepthBlur::Density& density,
                   const SimulationOptions& options);
    std::vector<SceneComponent::Density> blurred(const DepthBlur::Density& density, double depthMm) const;
    double pathFromBelowMm(double depthMm) const;

    std::shared_ptr<const MouseShape> m_shape;
    TissueOptics m_tissue;
    QList<ScanSpot> m_spots;
    QList<SceneComponent> m_components;
};
