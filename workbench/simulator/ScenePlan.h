// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "workbench/simulator/MouseShape.h"
#include "workbench/simulator/ProbeChoice.h"
#include "workbench/simulator/TissueOptics.h"

#include <QList>
#include <QString>
#include <QVector>

#include <functional>
#include <memory>
#include <vector>

struct Band;
struct SimulationOptions;

// One source of light in the animal.
struct SceneComponent
{
    QString name;   // "TissueAF", "Food" or the probe's
    Probe source;   // its spectra
    double depthMm; // that light passes on its way in and out
    double ratio;   // of its peak over the autofluorescence beneath; 0 for the autofluorescence itself
    // Its map at a place in cm, without the animal's soft edge and in a unit of its own.
    std::function<double(double x, double y, const MouseShape::Point& point)> density;
};

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
    // The tissue's autofluorescence first, then food (unless its ratio is 0), then the probes in their order.
    const QList<SceneComponent>& components() const { return m_components; }

    // The map of each component, `size` x `size` pixels row by row, 0 outside the animal, the largest pixel 1 (a map
    // without light stays 0). A pixel is the mean over its area. Independent of the number of threads.
    std::vector<std::vector<double>> renderMaps(int size) const;

private:
    bool addTissue(std::uint64_t seed, QString* pError);
    bool addFood(const SimulationOptions& options, QString* pError);
    void addProbe(const Probe& probe, int index, const SimulationOptions& options);

    std::shared_ptr<const MouseShape> m_shape;
    TissueOptics m_tissue;
    QList<SceneComponent> m_components;
};
