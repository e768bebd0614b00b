// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/resultFindings.h"

#include "algorithms/rowPasses.h"
#include "engine/CORVSpumKyvo.h"
#include "engine/EngineEnums.h"
#include "host/CORVDataset.h"
#include "host/CORVSequenceDataset.h"
#include "services/basis/ChannelLabels.h"
#include "services/basis/ImageExtent.h"
#include "services/results/ComponentNumber.h"
#include "services/results/FitRest.h"
#include "services/results/KnownSpectra.h"
#include "services/results/MaskLight.h"
#include "services/results/ResultNumbers.h"
#include "services/results/SaturatedPixels.h"
#include "services/results/SpectraLikeness.h"
#include "services/session/PairSelection.h"
#include "spectra/SpectrumPlotParams.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

void findSaturation(const CORVSpumKyvo& engine, const ChannelLabels& channels, RunFindings& findings)
{
    const int spots = std::max(1, engine.m_cube.m_nSpots);
    const SaturatedPixels found =
        SaturatedPixels::of(engine.m_cube.m_data, spots, engine.m_concentrations, engine.m_spectra);
    findings.pixels = engine.m_cube.m_data.num_rows();
    findings.saturatedPixels = found.pixels;
    for (const int image : found.images) {
        findings.saturatedImages.append(pairText(engine.m_selectedKeyPairs.value(image), channels));
    }
    if (found.component >= 0) {
        findings.saturatedComponent = engine.m_spectrumPlots[found.component]->settings.name;
    }
}

// The images with most of them first, each once, though a scan has one a spot.
void findCut(const CORVSpumKyvo& engine, const ChannelLabels& channels, const ComponentNumber& above,
             RunFindings& findings)
{
    const ImageFindings::Negatives& negatives = engine.m_imageFindings.negatives();
    if (negatives.elements < 1) {
        return;
    }
    findings.cutElements = static_cast<double>(negatives.cut) / static_cast<double>(negatives.elements);
    QList<QPair<QString, long long>> images = negatives.images;
    std::stable_sort(images.begin(), images.end(), [](const auto& a, const auto& b) { return a.second > b.second; });
    const int columns = std::max(1, engine.m_selectedKeyPairs.size());
    double noise = 0.0; // as much as all of them would have
    for (const auto& image : qAsConst(images)) {
        const int column = engine.m_imageList.indexOf(image.first) % columns;
        const auto known = static_cast<std::size_t>(std::max(column, 0));
        noise += known < above.noiseOfImages.size() ? above.noiseOfImages[known] * static_cast<double>(image.second)
                                                    : RunFindings::notKnown;
        const QString text = pairText(engine.m_selectedKeyPairs.value(column), channels);
        if (!findings.cutImages.contains(text)) {
            findings.cutImages.append(text);
        }
    }
    findings.cutOverNoise = negatives.cut > 0 ? negatives.cutLight / noise : RunFindings::notKnown;
}

// The value that a hundredth of an image's pixels lie below; of many pixels some serve.
double darkLevelOf(const XTNT::Matrix<double>& data, long long nImage)
{
    constexpr long long enough = 20000;
    constexpr long long part = 100;
    const long long stride = std::max(1LL, data.num_rows() / enough);
    std::vector<double> values;
    for (long long p = 0; p < data.num_rows(); p += stride) {
        values.push_back(data[p][nImage]);
    }
    const auto level = values.begin() + static_cast<std::ptrdiff_t>(values.size()) / part;
    std::nth_element(values.begin(), level, values.end());
    return *level;
}

// A mask may be that of the images' own pixels, where others were added to make a square.
bool leavesPixelsOut(const CORVSpumKyvo& engine)
{
    const QSize extent = analysedExtent(engine);
    const auto all = static_cast<std::size_t>(extent.width()) * static_cast<std::size_t>(extent.height());
    return engine.m_cube.m_bHasMask && engine.m_maskIndices.size() < all;
}

void findMask(const CORVSpumKyvo& engine, RunFindings& findings, ResultNumbers& numbers)
{
    if (!engine.m_cube.m_bHasMask) {
        return;
    }
    const MaskLight light =
        MaskLight::of(engine.m_imageFindings.light(), engine.m_cube.m_nWidth, engine.m_cube.m_maskIndices);
    findings.maskLight = numbers.maskLight = light.share;
    findings.maskArea = light.area;
}

// Noise of one image and pixel, from what the fit leaves: the square root of the sum of squares over its degrees of
// freedom.
double noiseOf(const CORVSpumKyvo& engine, double dResidual)
{
    const auto& data = engine.m_cube.m_data;
    const long long free = data.num_cols() - engine.m_spectra.num_rows();
    if (free < 1) {
        return RunFindings::notKnown;
    }
    return dResidual * rowpass::frobeniusNorm(data) /
           std::sqrt(static_cast<double>(data.num_rows()) * static_cast<double>(free));
}

// Root mean square of a component's standard errors, where there are any.
double meanOfErrors(const XTNT::Matrix<double>& errors, std::size_t nComponent)
{
    const double* row = errors[static_cast<long long>(nComponent)];
    double squares = 0.0;
    long long known = 0;
    for (long long p = 0; p < errors.num_cols(); ++p) {
        if (std::isfinite(row[p])) {
            squares += row[p] * row[p];
            ++known;
        }
    }
    return known > 0 ? std::sqrt(squares / static_cast<double>(known)) : RunFindings::notKnown;
}

void findLikeness(const CORVSpumKyvo& engine, RunFindings& findings, ResultNumbers& numbers)
{
    const SpectraLikeness likeness = SpectraLikeness::of(engine.m_spectra);
    numbers.condition = likeness.condition;
    numbers.amplifications = likeness.amplifications;
    const double noise = noiseOf(engine, numbers.residual);
    numbers.standardErrors.clear();
    for (std::size_t k = 0; k < likeness.deviations.size(); ++k) {
        numbers.standardErrors.push_back(numbers.errors.empty() ? noise * likeness.deviations[k]
                                                                : meanOfErrors(numbers.errors, k));
        findings.components[static_cast<int>(k)].amplification = likeness.amplifications[k];
    }
    if (likeness.first >= 0) {
        findings.alikeFirst = findings.components[likeness.first].name;
        findings.alikeSecond = findings.components[likeness.second].name;
        findings.alikeCosine = likeness.cosine;
    }
}

void findRest(const CORVSpumKyvo& engine, const ChannelLabels& channels, RunFindings& findings,
              const ResultNumbers& numbers)
{
    const ComponentNumber& above = numbers.above;
    findings.likelyComponents = above.likely;
    findings.leastComponents = above.least;
    findings.mostComponents = above.most;
    if (above.likely < 1) {
        return;
    }
    const double images = static_cast<double>(engine.m_cube.m_data.num_cols());
    const double free = images - static_cast<double>(engine.m_spectra.num_rows());
    findings.residual = numbers.residual;
    findings.floor = above.noise * std::sqrt(std::max(free, 1.0) / images);
    const FitRest rest = FitRest::of(engine.m_cube.m_data, engine.m_concentrations, engine.m_spectra);
    std::vector<std::pair<double, int>> worst;
    constexpr double beyond = 2.0;
    for (std::size_t j = 0; j < rest.ofImages.size(); ++j) {
        const double size = rest.ofImages[j];
        if (size > beyond * above.noiseOfImages[j]) {
            worst.emplace_back(-size / std::max(above.noiseOfImages[j], std::numeric_limits<double>::min()),
                               static_cast<int>(j));
        }
    }
    std::sort(worst.begin(), worst.end());
    for (const auto& image : worst) {
        findings.unexplainedImages.append(pairText(engine.m_selectedKeyPairs.value(image.second), channels));
    }
    findings.restLooksLike = sourceLikeRest(engine, rest.spectrum);
}

void findNames(const CORVSpumKyvo& engine, RunFindings& findings, ResultNumbers& numbers)
{
    const QList<KnownLikeness> likeness = likenessToNames(engine);
    for (int k = 0; k < likeness.size(); ++k) {
        findings.components[k].knownCosine = likeness[k].own;
        findings.components[k].nearest = likeness[k].nearest;
        findings.components[k].nearestCosine = likeness[k].other;
        numbers.knownCosines.push_back(likeness[k].own);
    }
}

void findBinning(const CORVSpumKyvo& engine, const CORVSequenceDataset& sequence, RunFindings& findings)
{
    findings.binning = engine.m_nBinning;
    for (const QString& click : engine.m_imageList) {
        CORVDataset* pDataset = sequence.getDataset(click);
        if (pDataset != nullptr) {
            const int binning = static_cast<int>(pDataset->getBinningForImage(IMAGETYPE_MAIN_DATA));
            findings.smallestBinning =
                std::min(findings.smallestBinning > 0 ? findings.smallestBinning : binning, binning);
        }
    }
}

void findDecay(const CORVSpumKyvo& engine, const CORVSequenceDataset& sequence, RunFindings& findings)
{
    const AnalysisInput& input = engine.m_analysisInput;
    QVector<double> factors;
    if (!engine.m_bCherenkov || input.decayCorrection || !(input.halfLifeSeconds > 0.0) ||
        !sequence.calculateDecayCorrectFactor_CherenkovData(engine.m_imageList, input.halfLifeSeconds, factors) ||
        factors.isEmpty()) {
        return;
    }
    findings.isotope = input.isotope;
    const auto ends = std::minmax_element(factors.begin(), factors.end());
    findings.decaySpan = *ends.second / *ends.first;
}

} // namespace

void findOffset(const CORVSpumKyvo& engine, RunFindings& findings)
{
    const auto& data = engine.m_cube.m_data;
    if (leavesPixelsOut(engine) || engine.m_eUnit != DISPLAYUNIT_COUNTS || data.empty()) {
        return;
    }
    double sum = 0.0;
    std::vector<double> levels;
    for (long long j = 0; j < data.num_cols(); ++j) {
        levels.push_back(darkLevelOf(data, j));
    }
    for (long long p = 0; p < data.num_rows(); ++p) {
        sum = std::accumulate(data[p], data[p] + data.num_cols(), sum);
    }
    const auto ends = std::minmax_element(levels.begin(), levels.end());
    findings.darkestLevel = *ends.first;
    findings.brightestLevel = *ends.second;
    findings.meanLight = sum / static_cast<double>(data.num_rows()) / static_cast<double>(data.num_cols());
}

RunFindings findingsOfResult(const CORVSpumKyvo& engine, const CORVSequenceDataset& sequence, bool bResolved,
                             ResultNumbers& numbers)
{
    RunFindings findings;
    findings.resolved = bResolved;
    findings.images = engine.m_selectedKeyPairs.size();
    for (const SpectrumPlotParams* plot : engine.m_spectrumPlots) {
        RunFindings::Component component;
        component.name = plot->settings.name;
        findings.components.append(component);
        findings.givenNames.append(component.name);
    }
    const ChannelLabels channels(engine);
    findSaturation(engine, channels, findings);
    findOffset(engine, findings);
    findMask(engine, findings, numbers);
    findLikeness(engine, findings, numbers);
    if (!numbers.above.isKnown()) {
        numbers.above = ComponentNumber::of(engine.m_cube.m_data);
    }
    findCut(engine, channels, numbers.above, findings);
    findRest(engine, channels, findings, numbers);
    findBinning(engine, sequence, findings);
    if (bResolved) {
        findNames(engine, findings, numbers);
        findings.iterationLimit = !numbers.refinement && numbers.facts.ending == MCREnding::IterationLimit;
        findDecay(engine, sequence, findings);
    }
    return findings;
}
