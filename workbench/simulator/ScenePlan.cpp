// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/simulator/ScenePlan.h"

#include "XTNT/xtnt_parallel.h"
#include "workbench/simulator/ComponentSpectrum.h"
#include "workbench/simulator/Kinetics.h"
#include "workbench/simulator/SimulationOptions.h"
#include "workbench/simulator/SourceList.h"
#include "workbench/simulator/SourceShapes.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int kSamplesAcross = 256; // of the field of view at least, so that small images are means, not samples
constexpr int kMostSubsamples = 16;
constexpr const char* kFoodName = "Food";
constexpr double kMmPerCm = 10.0;
constexpr double kLitTissueDepthMm = 5.0; // where tissue that is lit from below counts as lying

void scaleToOne(std::vector<double>& map)
{
    const double top = map.empty() ? 0.0 : *std::max_element(map.begin(), map.end());
    if (top > 0.0) {
        for (double& value : map) {
            value /= top;
        }
    }
}

} // namespace

bool ScenePlan::build(const SimulationOptions& options, QString* pError)
{
    m_components.clear();
    m_shape = std::make_shared<const MouseShape>(options.seed);
    m_spots.clear();
    if (options.kind == SimulationKind::Transillumination) {
        m_spots = ScanSpots::plan(options.spots, *m_shape);
    }
    const QString tissue = QStringLiteral("Muscle");
    if (!m_tissue.load(tissue)) {
        *pError = QStringLiteral("The reference data lack the optical properties of \"%1\".").arg(tissue);
        return false;
    }
    return addTissue(options, pError) && addFood(options, pError) && addSources(options, pError);
}

// The mean over the trunk, from the bed to a source below the back.
double ScenePlan::pathFromBelowMm(double depthMm) const
{
    constexpr double kTrunkMm = 15.0;
    return std::max(1.0, kTrunkMm - depthMm);
}

// A component that the tissue blurs; in a scan its density counts by the light that it gets from each spot.
std::vector<SceneComponent::Density> ScenePlan::blurred(const DepthBlur::Density& density, double depthMm) const
{
    std::vector<SceneComponent::Density> densities;
    const auto add = [&](const DepthBlur::Density& lit) {
        const auto pBlur = std::make_shared<const DepthBlur>(lit, MouseShape::kFieldOfView, m_tissue, depthMm);
        densities.emplace_back([pBlur](double x, double y, const MouseShape::Point&) { return pBlur->at(x, y); });
    };
    if (m_spots.isEmpty()) {
        add(density);
    }
    for (const ScanSpot& spot : m_spots) {
        add([&](double x, double y) {
            const double content = density(x, y);
            if (!(content > 0.0)) {
                return 0.0;
            }
            const double height = kMmPerCm * m_shape->at(x, y).height - depthMm;
            return content * ScanSpots::fluence(m_tissue, height, kMmPerCm * std::hypot(x - spot.x, y - spot.y));
        });
    }
    return densities;
}

bool ScenePlan::addTissue(const SimulationOptions& options, QString* pError)
{
    SceneComponent component;
    component.name = QStringLiteral("TissueAF");
    component.depthMm = kTissueDepthMm;
    component.ratio = 0.0;
    if (!readAutofluorescence(QStringLiteral("ALFree"), &component.source)) {
        *pError = QStringLiteral("The reference data lack the spectra of \"ALFree\".");
        return false;
    }
    const SceneComponent::Density glow = SourceShapes::tissueGlow(*m_shape, options.seed);
    if (m_spots.isEmpty()) {
        component.densities.push_back(glow);
    } else {
        component.depthMm = kLitTissueDepthMm;
        component.excitationPathMm = pathFromBelowMm(kLitTissueDepthMm);
    }
    for (const ScanSpot& spot : m_spots) {
        component.densities.emplace_back([this, glow, spot](double x, double y, const MouseShape::Point& point) {
            return glow(x, y, point) * ScanSpots::fluence(m_tissue, kMmPerCm * point.height - kLitTissueDepthMm,
                                                          kMmPerCm * std::hypot(x - spot.x, y - spot.y));
        });
    }
    m_components.append(component);
    return true;
}

bool ScenePlan::addFood(const SimulationOptions& options, QString* pError)
{
    const bool fits = options.kind == SimulationKind::Epi || options.kind == SimulationKind::Transillumination;
    if (!fits || !(options.foodRatio > 0.0)) {
        return true;
    }
    SceneComponent component;
    component.name = QString::fromLatin1(kFoodName);
    component.depthMm = kFoodDepthMm;
    component.ratio = options.foodRatio;
    if (!readAutofluorescence(QStringLiteral("ALFood"), &component.source)) {
        *pError = QStringLiteral("The reference data lack the spectra of \"ALFood\".");
        return false;
    }
    if (!m_spots.isEmpty()) {
        component.excitationPathMm = pathFromBelowMm(kFoodDepthMm);
    }
    component.densities = blurred(SourceShapes::food(*m_shape, options.seed), kFoodDepthMm);
    m_components.append(component);
    return true;
}

void ScenePlan::addSource(const SimulatedSource& source, const Probe& light, const DepthBlur::Density& density,
                          const SimulationOptions& options)
{
    SceneComponent component;
    component.name = source.name;
    component.source = light;
    component.depthMm = source.depthMm;
    component.ratio = options.ratio;
    component.decays = options.kind == SimulationKind::Cherenkov;
    if (!m_spots.isEmpty()) {
        component.excitationPathMm = pathFromBelowMm(source.depthMm);
    }
    component.densities = blurred(density, source.depthMm);
    m_components.append(component);
}

bool ScenePlan::addIsotope(const SimulationOptions& options, QString* pError)
{
    Probe light;
    if (!readIsotope(options.isotope, &light)) {
        *pError = QStringLiteral("The reference data hold no light of \"%1\".").arg(options.isotope);
        return false;
    }
    const QList<SimulatedSource> sources = sourcesOf(options);
    for (int i = 0; i < sources.size(); ++i) {
        addSource(sources.at(i), light, SourceShapes::probePatch(*m_shape, i, options.seed), options);
    }
    return true;
}

bool ScenePlan::addSources(const SimulationOptions& options, QString* pError)
{
    if (options.kind == SimulationKind::Cherenkov) {
        return addIsotope(options, pError);
    }
    QList<Probe> probes;
    if (!resolveProbes(options.probes, lightOf(options.kind), &probes, pError)) {
        return false;
    }
    const QList<SimulatedSource> sources = sourcesOf(options);
    const bool organs = hasOrgans(options);
    for (int i = 0; i < sources.size(); ++i) {
        addSource(sources.at(i), probes.at(organs ? 0 : i),
                  organs ? Kinetics::density(i, *m_shape, options.seed)
                         : SourceShapes::probePatch(*m_shape, i, options.seed),
                  options);
        if (options.kind == SimulationKind::Temporal) {
            m_components.last().course = organs ? Kinetics::organs().at(i).course : Kinetics::tracer(i);
        }
    }
    return true;
}

void ScenePlan::leaveOutUnlitFood(const QList<Band>& bands)
{
    for (int i = 0; i < m_components.size(); ++i) {
        if (m_components.at(i).name != QLatin1String(kFoodName)) {
            continue;
        }
        const std::vector<double> spectrum = componentSpectrum(m_components.at(i), m_tissue, bands);
        if (!(*std::max_element(spectrum.begin(), spectrum.end()) > 0.0)) {
            m_components.removeAt(i);
        }
        return;
    }
}

std::vector<std::vector<double>> ScenePlan::renderMaps(int size) const
{
    const auto width = static_cast<std::size_t>(size);
    const auto count = static_cast<std::size_t>(m_components.size());
    const std::size_t pixels = width * width;
    const auto spots = static_cast<std::size_t>(std::max(1, m_spots.size()));
    std::vector<std::vector<double>> maps(count, std::vector<double>(spots * pixels, 0.0));
    const int sub = std::clamp((kSamplesAcross + size - 1) / size, 1, kMostSubsamples);
    const double step = MouseShape::kFieldOfView / (static_cast<double>(size) * sub);
    const auto place = [&](std::size_t pixel, int i) {
        return (static_cast<double>(pixel) * sub + i + 0.5) * step - 0.5 * MouseShape::kFieldOfView;
    };
    const double share = 1.0 / (sub * sub);
    XTNT::parallelChunks(size, 4, [&](long long begin, long long end) {
        for (auto row = static_cast<std::size_t>(begin); row < static_cast<std::size_t>(end); ++row) {
            for (std::size_t column = 0; column < width; ++column) {
                for (int i = 0; i < sub * sub; ++i) {
                    const double x = place(column, i % sub);
                    const double y = place(row, i / sub);
                    const MouseShape::Point point = m_shape->at(x, y);
                    const double weight = share * MouseShape::coverage(point);
                    if (weight <= 0.0) {
                        continue;
                    }
                    for (std::size_t k = 0; k < count; ++k) {
                        for (std::size_t spot = 0; spot < spots; ++spot) {
                            maps[k][spot * pixels + row * width + column] +=
                                weight * m_components.at(static_cast<int>(k)).densities[spot](x, y, point);
                        }
                    }
                }
            }
        }
    });
    for (std::vector<double>& map : maps) {
        scaleToOne(map);
    }
    return maps;
}
