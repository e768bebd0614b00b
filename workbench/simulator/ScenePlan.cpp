// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/simulator/ScenePlan.h"

#include "XTNT/xtnt_parallel.h"
#include "workbench/simulator/ComponentSpectrum.h"
#include "workbench/simulator/DepthBlur.h"
#include "workbench/simulator/SimulationOptions.h"
#include "workbench/simulator/SourceShapes.h"

#include <algorithm>

namespace {

constexpr int kSamplesAcross = 256; // of the field of view at least, so that small images are means, not samples
constexpr int kMostSubsamples = 16;
constexpr const char* kFoodName = "Food";

// A component that the tissue blurs.
std::function<double(double, double, const MouseShape::Point&)> blurred(const DepthBlur::Density& density,
                                                                        const TissueOptics& tissue, double depthMm)
{
    const auto pBlur = std::make_shared<const DepthBlur>(density, MouseShape::kFieldOfView, tissue, depthMm);
    return [pBlur](double x, double y, const MouseShape::Point&) { return pBlur->at(x, y); };
}

void scaleToOne(std::vector<double>& map)
{
    const double top = map.empty() ? 0.0 : *std::max_element(map.begin(), map.end());
    if (top > 0.0)
        for (double& value : map)
            value /= top;
}

} // namespace

bool ScenePlan::build(const SimulationOptions& options, QString* pError)
{
    m_components.clear();
    m_shape = std::make_shared<const MouseShape>(options.seed);
    const QString tissue = QStringLiteral("Muscle");
    if (!m_tissue.load(tissue)) {
        *pError = QStringLiteral("The reference data lack the optical properties of \"%1\".").arg(tissue);
        return false;
    }
    QList<Probe> probes;
    if (!addTissue(options.seed, pError) || !addFood(options, pError) ||
        !resolveProbes(options.probes, &probes, pError))
        return false;
    for (int i = 0; i < probes.size(); ++i)
        addProbe(probes.at(i), i, options);
    return true;
}

bool ScenePlan::addTissue(std::uint64_t seed, QString* pError)
{
    SceneComponent component;
    component.name = QStringLiteral("TissueAF");
    component.depthMm = kTissueDepthMm;
    component.ratio = 0.0;
    if (!readAutofluorescence(QStringLiteral("ALFree"), &component.source)) {
        *pError = QStringLiteral("The reference data lack the spectra of \"ALFree\".");
        return false;
    }
    component.density = SourceShapes::tissueGlow(*m_shape, seed);
    m_components.append(component);
    return true;
}

bool ScenePlan::addFood(const SimulationOptions& options, QString* pError)
{
    if (!(options.foodRatio > 0.0))
        return true;
    SceneComponent component;
    component.name = QString::fromLatin1(kFoodName);
    component.depthMm = kFoodDepthMm;
    component.ratio = options.foodRatio;
    if (!readAutofluorescence(QStringLiteral("ALFood"), &component.source)) {
        *pError = QStringLiteral("The reference data lack the spectra of \"ALFood\".");
        return false;
    }
    component.density = blurred(SourceShapes::food(*m_shape, options.seed), m_tissue, kFoodDepthMm);
    m_components.append(component);
    return true;
}

void ScenePlan::leaveOutUnlitFood(const QList<Band>& bands)
{
    for (int i = 0; i < m_components.size(); ++i) {
        if (m_components.at(i).name != QLatin1String(kFoodName))
            continue;
        const std::vector<double> spectrum = componentSpectrum(m_components.at(i), m_tissue, bands);
        if (!(*std::max_element(spectrum.begin(), spectrum.end()) > 0.0))
            m_components.removeAt(i);
        return;
    }
}

void ScenePlan::addProbe(const Probe& probe, int index, const SimulationOptions& options)
{
    SceneComponent component;
    component.name = probe.name;
    component.source = probe;
    component.depthMm = probeDepthMm(options, index);
    component.ratio = options.ratio;
    component.density = blurred(SourceShapes::probePatch(*m_shape, index, options.seed), m_tissue, component.depthMm);
    m_components.append(component);
}

std::vector<std::vector<double>> ScenePlan::renderMaps(int size) const
{
    const auto width = static_cast<std::size_t>(size);
    const auto count = static_cast<std::size_t>(m_components.size());
    std::vector<std::vector<double>> maps(count, std::vector<double>(width * width, 0.0));
    const int sub = std::clamp((kSamplesAcross + size - 1) / size, 1, kMostSubsamples);
    const double step = MouseShape::kFieldOfView / (static_cast<double>(size) * sub);
    const auto place = [&](std::size_t pixel, int i) {
        return (static_cast<double>(pixel) * sub + i + 0.5) * step - 0.5 * MouseShape::kFieldOfView;
    };
    const double share = 1.0 / (sub * sub);
    XTNT::parallelChunks(size, 4, [&](long long begin, long long end) {
        for (auto row = static_cast<std::size_t>(begin); row < static_cast<std::size_t>(end); ++row)
            for (std::size_t column = 0; column < width; ++column)
                for (int i = 0; i < sub * sub; ++i) {
                    const double x = place(column, i % sub);
                    const double y = place(row, i / sub);
                    const MouseShape::Point point = m_shape->at(x, y);
                    const double weight = share * MouseShape::coverage(point);
                    if (weight <= 0.0)
                        continue;
                    for (std::size_t k = 0; k < count; ++k)
                        maps[k][row * width + column] +=
                            weight * m_components.at(static_cast<int>(k)).density(x, y, point);
                }
    });
    for (std::vector<double>& map : maps)
        scaleToOne(map);
    return maps;
}
