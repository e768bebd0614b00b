// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/ResultFacts.h"

#include "engine/CORVSpumKyvo.h"
#include "host/CORVSequenceDataset.h"
#include "services/basis/ImageExtent.h"
#include "services/basis/ModeNames.h"
#include "services/basis/UnitNames.h"
#include "services/results/FitStatistics.h"
#include "services/results/ResultNumbers.h"
#include "services/results/keptWarnings.h"
#include "services/session/PixelSize.h"
#include "spectra/SpectrumPlotParams.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double micrometresPerCentimetre = 1e4;

// Of an image that a sequence holds; a result without its sequence has none.
std::optional<double> pixelMicrometresOf(const CORVSpumKyvo& engine)
{
    const CORVSequenceDataset* pSequence = CORVSequenceDataset::getSequenceDataset(engine.m_strSeqId);
    const std::optional<double> size = pSequence != nullptr ? pixelSizeOfSequence(*pSequence) : std::nullopt;
    return size ? std::optional<double>(*size * micrometresPerCentimetre * engine.m_nBinning) : std::nullopt;
}

// Bytes of a name within a file name; a folder takes names of 255, and there is more in ours.
constexpr int longestPart = 150;

QString endingText(MCREnding eEnding)
{
    switch (eEnding) {
    case MCREnding::Converged:
        return QStringLiteral("converged");
    case MCREnding::GoodFit:
        return QStringLiteral("good fit");
    case MCREnding::Diverged:
        return QStringLiteral("diverged");
    case MCREnding::IterationLimit:
        return QStringLiteral("iteration limit");
    case MCREnding::Degenerate:
        return QStringLiteral("degenerate");
    case MCREnding::NotRun:
        break;
    }
    return QStringLiteral("not run");
}

// The number of a component, where it is one.
std::optional<double> knownOf(const std::vector<double>& values, std::size_t nComponent)
{
    return nComponent < values.size() && std::isfinite(values[nComponent]) ? std::optional<double>(values[nComponent])
                                                                           : std::nullopt;
}

ComponentFacts componentOf(const CORVSpumKyvo& engine, const ResultNumbers& numbers, int nComponent, int nSpots)
{
    const auto i = static_cast<std::size_t>(nComponent);
    const SpectrumSettings& settings = engine.m_spectrumPlots[nComponent]->settings;
    ComponentFacts facts;
    facts.name = settings.name;
    facts.color = settings.color;
    facts.map = resultMapName(nComponent, settings.name, 0, nSpots) + QStringLiteral(".tif");
    if (!numbers.errors.empty()) {
        facts.errorMap = resultErrorMapName(nComponent, settings.name, 0, nSpots) + QStringLiteral(".tif");
    }
    facts.share = numbers.shares[i];
    facts.maximum = engine.m_concentrations.row(nComponent).Max();
    facts.truth = numbers.truth[i];
    facts.standardError = knownOf(numbers.standardErrors, i);
    facts.amplification = knownOf(numbers.amplifications, i);
    facts.knownCosine = knownOf(numbers.knownCosines, i);
    const auto& constraints = engine.m_lastParams.Constraints;
    if (numbers.automatic && nComponent < constraints.size()) {
        const ComponentConstraint& constraint = constraints[nComponent];
        if (constraint.HighPass != QLatin1String("N/A")) {
            facts.highPass = constraint.HighPass;
        }
        facts.locked = constraint.Locked;
    }
    return facts;
}

// What the first `nKept` of the squares of singular values leave, in percent of the data's norm.
double lackOfFitBeyond(int nKept, const std::vector<double>& eigenvalues)
{
    double left = 0.0;
    double total = 0.0;
    for (std::size_t i = eigenvalues.size(); i > 0; --i) {
        total += eigenvalues[i - 1];
        left = static_cast<int>(i) > nKept ? total : left;
    }
    return nKept > 0 && total > 0.0 ? 100.0 * std::sqrt(left / total) : 0.0;
}

AutomaticFacts automaticFactsOf(const CORVSpumKyvo& engine, const AutomaticRunFacts& run, int nAbove)
{
    AutomaticFacts facts;
    facts.iterations = run.iterations;
    facts.ending = endingText(run.ending);
    facts.lackOfFit = run.lackOfFitRaw;
    facts.lackOfFitDenoised = run.lackOfFitDenoised;
    facts.rank = run.rank;
    facts.principalLackOfFit = lackOfFitBeyond(nAbove, run.eigenvalues);
    const AnalysisInput& input = engine.m_analysisInput;
    facts.decayCorrected = engine.m_bCherenkov && input.decayCorrection;
    if (facts.decayCorrected) {
        facts.isotope = input.isotope;
        facts.halfLifeSeconds = input.halfLifeSeconds;
    }
    return facts;
}

} // namespace

bool ResultFacts::hasTruth() const
{
    return std::any_of(components.begin(), components.end(), [](const ComponentFacts& c) { return c.truth.known; });
}

bool ResultFacts::isRenamed() const
{
    return std::any_of(components.begin(), components.end(),
                       [](const ComponentFacts& c) { return c.truth.known && c.truth.trueName != c.name; });
}

bool ResultFacts::hasHighPass() const
{
    return std::any_of(components.begin(), components.end(),
                       [](const ComponentFacts& c) { return c.highPass.has_value(); });
}

bool ResultFacts::hasKnownCosine() const
{
    return std::any_of(components.begin(), components.end(),
                       [](const ComponentFacts& c) { return c.knownCosine.has_value(); });
}

ResultFacts factsOfResult(const CORVSpumKyvo& engine, const ResultNumbers& numbers)
{
    ResultFacts facts;
    facts.sequence = engine.getSequenceId();
    facts.method = ModeNames::option(engine.m_eMode);
    facts.unit = UnitNames::text(engine.m_eUnit);
    facts.images = engine.m_selectedKeyPairs.size();
    const QSize extent = analysedExtent(engine);
    facts.width = extent.width();
    facts.height = extent.height();
    facts.binning = engine.m_nBinning;
    facts.pixels = engine.m_cube.pixelsPerSpot();
    facts.spots = std::max(1, engine.m_cube.m_nSpots);
    facts.pixelMicrometres = pixelMicrometresOf(engine);
    facts.residual = numbers.residual;
    facts.explainedVariance = FitStatistics::explainedVariance(numbers.residual);
    facts.seconds = numbers.seconds;
    facts.warnings = numbers.warnings;
    facts.above = numbers.above;
    facts.noise = numbers.noise;
    facts.refinement = numbers.refinement;
    if (std::isfinite(numbers.condition)) {
        facts.condition = numbers.condition;
    }
    if (std::isfinite(numbers.maskLight)) {
        facts.maskLight = numbers.maskLight;
    }
    for (int k = 0; k < engine.m_spectrumPlots.size(); ++k) {
        facts.components.append(componentOf(engine, numbers, k, facts.spots));
    }
    // Warnings have a place of their own.
    facts.properties = withoutWarnings(engine.m_properties);
    if (numbers.automatic) {
        facts.automatic = automaticFactsOf(engine, numbers.facts, numbers.above.likely);
    }
    return facts;
}

QString resultFileName(const QString& strLabel)
{
    QString name;
    for (const QChar c : strLabel.trimmed()) {
        if (c.isLetterOrNumber() || c == QLatin1Char('.') || c == QLatin1Char('-') || c == QLatin1Char('_')) {
            name += c;
        } else if (c.isSpace()) {
            name += QLatin1Char('_');
        }
    }
    while (name.toUtf8().size() > longestPart) {
        name.chop(1);
    }
    return name.startsWith(QLatin1Char('.')) ? QLatin1Char('_') + name : name;
}

QString resultMapName(int nComponent, const QString& strLabel, int nSpot, int nSpots)
{
    const QString spot = nSpots > 1 ? QStringLiteral("_spot%1").arg(nSpot + 1) : QString();
    return QStringLiteral("%1_%2%3").arg(nComponent + 1, 2, 10, QLatin1Char('0')).arg(resultFileName(strLabel), spot);
}

QString resultErrorMapName(int nComponent, const QString& strLabel, int nSpot, int nSpots)
{
    return resultMapName(nComponent, strLabel, nSpot, nSpots) + QStringLiteral("_error");
}
