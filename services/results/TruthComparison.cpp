// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/TruthComparison.h"

#include "engine/CORVSpumKyvo.h"
#include "engine/EngineEnums.h"
#include "platform/orvimage/TiffIo.h"
#include "services/basis/Failure.h"
#include "services/basis/TruthFiles.h"
#include "services/results/FitStatistics.h"
#include "services/session/LibrarySpectra.h"
#include "spectra/SpectrumPlotParams.h"

#include "XTNT/xtnt_parallel.h"

#include <QFileInfo>

#include <algorithm>

namespace {

// The truth at the pixels of the analysis, in the cube's order; empty when the sizes differ.
std::vector<double> pixelsOfAnalysis(const CORVSpumKyvo& engine, const CILImage& image)
{
    if (image.m_lWidth != engine.m_nWidth || image.m_lHeight != engine.m_nHeight) {
        return {};
    }
    std::vector<double> values;
    if (engine.m_cube.m_bHasMask) {
        for (const int index : engine.m_cube.m_maskIndices) {
            values.push_back(image.value(static_cast<std::size_t>(index)));
        }
        return values;
    }
    for (std::size_t i = 0; i < image.pixelCount(); ++i) {
        values.push_back(image.value(i));
    }
    return values;
}

// The true spectra at the images of the analysis; none where the truth has no such file or lacks an image.
std::vector<ComponentShape> trueSpectra(const CORVSpumKyvo& engine, const QString& strFolder)
{
    std::vector<ComponentShape> shapes;
    if (!QFileInfo::exists(strFolder + QStringLiteral("spectra.csv"))) {
        return shapes;
    }
    try {
        LibrarySpectra library;
        library.load(strFolder + QStringLiteral("spectra.csv"));
        const QList<SpectrumPlotParams*> spectra = library.fitTo(engine.m_selectedKeyPairs, engine.m_eAxis);
        for (const SpectrumPlotParams* spectrum : spectra) {
            const auto values = spectrum->values();
            ComponentShape shape;
            shape.name = spectrum->settings.name;
            for (long long j = 0; j < values.n_; ++j) {
                shape.spectrum.push_back(values[j]);
            }
            shapes.push_back(shape);
        }
        qDeleteAll(spectra);
    } catch (const Failure&) {
        // A truth that does not go with these images is no reason to fail: there is then nothing to compare with.
        shapes.clear();
    }
    return shapes;
}

// A name as its file has it: what a file name cannot hold tells no names apart.
QString comparable(const QString& strName)
{
    return truthMapFile(strName);
}

// The true maps of all spots; empty when one is missing or of another size.
std::vector<double> trueMap(const CORVSpumKyvo& engine, const QString& strFolder, const QString& strName)
{
    const int spots = engine.m_cube.m_nSpots;
    std::vector<double> map;
    for (int spot = 0; spot < spots; ++spot) {
        XTNT::cancellationPoint();
        const QString file = strFolder + (spots > 1 ? truthMapFile(strName, spot) : truthMapFile(strName));
        CILImage image;
        if (!QFileInfo::exists(file) || !readTiff(file, 0, image, nullptr)) {
            return {};
        }
        const std::vector<double> pixels = pixelsOfAnalysis(engine, image);
        if (pixels.empty()) {
            return {};
        }
        map.insert(map.end(), pixels.begin(), pixels.end());
    }
    return map;
}

// Every true component with a map of the analysis' size, under its comparable name.
std::vector<ComponentShape> shapesOfTruth(const CORVSpumKyvo& engine, const QString& strFolder)
{
    std::vector<ComponentShape> shapes = trueSpectra(engine, strFolder);
    for (const auto* plot : engine.m_spectrumPlots) {
        const bool known = std::any_of(shapes.begin(), shapes.end(), [&](const ComponentShape& shape) {
            return comparable(shape.name) == comparable(plot->settings.name);
        });
        if (!known) {
            shapes.push_back({plot->settings.name, {}, {}});
        }
    }
    std::vector<ComponentShape> complete;
    for (auto& shape : shapes) {
        shape.map = trueMap(engine, strFolder, shape.name);
        if (shape.map.empty()) {
            continue;
        }
        if (!shape.spectrum.empty()) {
            const double top = *std::max_element(shape.spectrum.begin(), shape.spectrum.end());
            for (double& value : shape.map) {
                value *= top;
            }
        }
        complete.push_back(std::move(shape));
    }
    return complete;
}

std::vector<int> partnersOf(const CORVSpumKyvo& engine, const std::vector<ComponentShape>& found,
                            const std::vector<ComponentShape>& truth)
{
    std::vector<ComponentShape> byFile;
    byFile.reserve(truth.size());
    for (const auto& shape : truth) {
        byFile.push_back({comparable(shape.name), {}, {}});
    }
    std::vector<ComponentShape> wanted;
    wanted.reserve(found.size());
    for (const auto& shape : found) {
        wanted.push_back({comparable(shape.name), {}, {}});
    }
    const std::vector<int> partners = matchByName(wanted, byFile);
    const bool named = std::any_of(partners.begin(), partners.end(), [](int partner) { return partner >= 0; });
    return named || engine.m_eMode != RUNMODE_AUTOMATIC ? partners : matchByShape(found, truth);
}

} // namespace

std::vector<ComponentShape> shapesOfResult(const CORVSpumKyvo& engine)
{
    const long long pixels = engine.m_cube.pixelsPerSpot() * engine.m_cube.m_nSpots;
    std::vector<ComponentShape> shapes;
    for (int k = 0; k < engine.m_spectrumPlots.size() && k < engine.m_concentrations.num_rows(); ++k) {
        ComponentShape shape;
        shape.name = engine.m_spectrumPlots[k]->settings.name;
        const double* map = engine.m_concentrations[k];
        shape.map.assign(map, map + pixels);
        const double* spectrum = engine.m_spectra[k];
        shape.spectrum.assign(spectrum, spectrum + engine.m_spectra.num_cols());
        shapes.push_back(std::move(shape));
    }
    return shapes;
}

std::vector<TrueComparison> compareWithTruth(const CORVSpumKyvo& engine, const QString& strFolder)
{
    std::vector<TrueComparison> list(static_cast<std::size_t>(engine.m_spectrumPlots.size()));
    if (strFolder.isEmpty()) {
        return list;
    }
    const std::vector<ComponentShape> found = shapesOfResult(engine);
    const std::vector<ComponentShape> truth = shapesOfTruth(engine, strFolder);
    const std::vector<int> partners = partnersOf(engine, found, truth);
    for (std::size_t k = 0; k < found.size(); ++k) {
        XTNT::cancellationPoint();
        if (partners[k] < 0) {
            continue;
        }
        const ComponentShape& partner = truth[static_cast<std::size_t>(partners[k])];
        list[k] = {true, FitStatistics::correlation(found[k].map, partner.map),
                   FitStatistics::relativeError(found[k].map, partner.map), partner.name,
                   FitStatistics::cosine(found[k].spectrum, partner.spectrum)};
    }
    return list;
}
