// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/cli/TruthComparison.h"

#include "engine/CORVSpumKyvo.h"
#include "platform/orvimage/TiffIo.h"
#include "spectra/SpectrumPlotParams.h"
#include "workbench/cli/ResultSummary.h"
#include "workbench/simulator/TruthWriter.h"

#include <QFileInfo>

namespace {

std::vector<double> mapOf(const CORVSpumKyvo& engine, long long component)
{
    const long long pixels = engine.m_cube.pixelsPerSpot();
    const double* row = engine.m_concentrations[component];
    return std::vector<double>(row, row + pixels);
}

// The truth at the pixels of the analysis, in the cube's order; empty when the sizes differ.
std::vector<double> truthOf(const CORVSpumKyvo& engine, const CILImage& image)
{
    if (image.m_lWidth != engine.m_nWidth || image.m_lHeight != engine.m_nHeight)
        return {};
    std::vector<double> values;
    if (engine.m_cube.m_bHasMask) {
        for (const int index : engine.m_cube.m_maskIndices)
            values.push_back(image.value(static_cast<std::size_t>(index)));
        return values;
    }
    for (std::size_t i = 0; i < image.pixelCount(); ++i)
        values.push_back(image.value(i));
    return values;
}

MapComparison compareMap(const CORVSpumKyvo& engine, long long component, const QString& strFile)
{
    CILImage image;
    if (!QFileInfo::exists(strFile) || !readTiff(strFile, 0, image, nullptr))
        return {};
    const auto truth = truthOf(engine, image);
    const auto map = mapOf(engine, component);
    if (truth.size() != map.size())
        return {};
    return {true, ResultSummary::correlation(map, truth), ResultSummary::relativeError(map, truth)};
}

} // namespace

std::vector<MapComparison> compareWithTruth(const CORVSpumKyvo& engine, const QString& strFolder)
{
    std::vector<MapComparison> list;
    for (int k = 0; k < engine.m_spectrumPlots.size(); ++k) {
        const QString name = engine.m_spectrumPlots[k]->settings.name;
        const bool wanted = !strFolder.isEmpty() && k < engine.m_concentrations.num_rows();
        list.push_back(wanted ? compareMap(engine, k, strFolder + truthMapFile(name)) : MapComparison{});
    }
    return list;
}
