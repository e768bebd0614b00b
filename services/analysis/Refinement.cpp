// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/analysis/Refinement.h"

#include "algorithms/enclosingSpectra.h"
#include "algorithms/independentSpectra.h"
#include "algorithms/purestSpectra.h"
#include "algorithms/rowPasses.h"
#include "algorithms/weightedResolution.h"
#include "engine/CORVSpumKyvo.h"
#include "services/analysis/CountedNoise.h"
#include "services/results/resultFindings.h"
#include "services/warnings/RunFindings.h"
#include "services/warnings/runWarnings.h"

#include "XTNT/constrained_concentrations.h"
#include "XTNT/residual_norm.h"
#include "XTNT/weighted_concentrations.h"
#include "XTNT/xtnt_parallel.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>
#include <vector>

namespace {

using XTNT::Matrix;
using XTNT::Vector;

// Rounds by the noise that the start tells of, and by that of the spectra then. Few: where the images leave open how
// much of one source another takes, further rounds lead away from the purest pixels, which are better evidence.
constexpr int firstRounds = 5;
constexpr int lastRounds = 12;

// Elements that serve for the spectra, and pixels that do in any case.
constexpr long long enoughElements = 1000000;
constexpr long long enoughPixels = 10000;

// An offset that is there is one source more for spectra that were resolved with it in the images: without it no more
// than noise is left, up to 3 % above what they leave in dim simulated images and far less in bright ones. More is left
// where the darkest pixels have the scene's own light, which no sources explain that begin at a level of 0.
constexpr double mostLeft = 1.1;

// Pixels without light have one level, so that the darkest fiftieth and the darkest twentieth are alike, while a scene
// goes on getting brighter: of simulated ones by 6 % and more of the mean light, where stains with an offset have less
// than 1 %.
constexpr long long darkPart = 50;
constexpr long long widerPart = 20;
constexpr double mostRise = 0.02;

void reportShare(const std::function<void(double)>& step, double dShare)
{
    if (step) {
        step(dShare);
    }
}

double sumOfEveryOther(const double* row, long long first, long long n)
{
    double sum = 0.0;
    for (long long j = first; j < n; j += 2) {
        sum += row[j];
    }
    return sum;
}

// A pixel that is 0 in all images is a broken one, or was set to 0: the camera's offset is not in it.
bool hasLight(const double* row, long long images)
{
    return std::any_of(row, row + images, [](double value) { return value != 0.0; });
}

bool tells(const double* row, long long images)
{
    return hasLight(row, images) && std::all_of(row, row + images, [](double value) { return std::isfinite(value); });
}

// Of the pixels that tell something those taken evenly, less an offset.
Matrix<double> tellingPixels(const Matrix<double>& data, double dOffset)
{
    const long long images = data.num_cols();
    const long long wanted = std::max(enoughPixels, enoughElements / std::max(1LL, images));
    const long long stride = std::max(1LL, (data.num_rows() + wanted - 1) / wanted);
    std::vector<const double*> rows;
    for (long long p = 0; p < data.num_rows(); p += stride) {
        const double* row = data[p];
        if (tells(row, images)) {
            rows.push_back(row);
        }
    }
    Matrix<double> pixels(static_cast<long long>(rows.size()), images);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        std::transform(rows[i], rows[i] + images, pixels[static_cast<long long>(i)],
                       [dOffset](double value) { return value - dOffset; });
    }
    return pixels;
} // NOLINT(clang-analyzer-cplusplus.NewDeleteLeaks): the shares of a matrix are counted

std::optional<double> offsetOf(const CORVSpumKyvo& engine)
{
    RunFindings findings;
    findings.images = static_cast<int>(engine.m_cube.m_data.num_cols());
    findOffset(engine, findings);
    if (!tellsOfOffset(findings)) {
        return std::nullopt;
    }
    const double level = darkLevel(engine.m_cube.m_data, darkPart);
    const double rise = darkLevel(engine.m_cube.m_data, widerPart) - level;
    return rise <= mostRise * (findings.meanLight - level) ? std::optional<double>(level) : std::nullopt;
}

// With both figures, from what the fit leaves where the sequence does not tell them.
CountedNoise noiseOf(const CountedNoise& told, const Matrix<double>& pixels, const Matrix<double>& spectra,
                     const Matrix<double>& fit)
{
    CountedNoise noise = told;
    noise.estimate(pixels, spectra, fit);
    return noise;
}

// As the engine sorts.
Matrix<double> sorted(const Matrix<double>& spectra)
{
    const Vector<long long> order = rowpass::orderByCentre(spectra);
    Matrix<double> result(spectra.num_rows(), spectra.num_cols());
    for (long long k = 0; k < order.size(); ++k) {
        result.setRow(k, spectra.row(order[k]));
    }
    return result;
}

// The fit of all rows alike. False where the spectra depend on each other, whatever the rows are.
bool fitWithoutWeights(const Matrix<double>& data, const Matrix<double>& spectra, Matrix<double>& fit)
{
    try {
        XTNT::constrainedConcentrations(data, spectra, fit);
    } catch (int) { // what it throws; an abort is none and goes on
        return false;
    }
    return true;
}

// Squares that a fit without weights leaves, over its degrees of freedom: dark pixels have amounts at 0.
double meanSquareLeft(const Matrix<double>& data, const Matrix<double>& spectra, const Matrix<double>& fit)
{
    const double left = XTNT::residualNorm(data, fit, spectra);
    const auto amounts =
        std::count_if(fit.storage.data, fit.storage.data + fit.storage.n_, [](double c) { return c > 0.0; });
    const long long freedom = data.storage.n_ - static_cast<long long>(amounts);
    return left * left / static_cast<double>(std::max(freedom, 1LL));
}

// What a resolution from the purest pixels comes to.
struct Resolved
{
    QString reason;         // why it comes to nothing
    Matrix<double> spectra; // sorted
    CountedNoise noise;
    int rounds = 0;
    bool independent = false;
    bool enclosing = false;
    double left = 0.0; // by meanSquareLeft(), before the spectra were moved to either
};

Resolved nothing(const QString& strReason)
{
    Resolved resolved;
    resolved.reason = strReason;
    return resolved;
}

QString dependentText()
{
    return QStringLiteral("their spectra depend on each other");
}

Resolved resolve(const Matrix<double>& pixels, int components, const CountedNoise& told,
                 const std::function<void(double)>& step)
{
    // About as long as the parts take.
    constexpr double started = 0.1;
    constexpr double afterFirst = 0.4;
    constexpr double afterLast = 0.7;
    Matrix<double> spectra = purestSpectra(pixels, components);
    Matrix<double> fit;
    if (spectra.empty()) {
        return nothing(QStringLiteral("there are fewer pure pixels than components"));
    }
    if (!fitWithoutWeights(pixels, spectra, fit)) {
        return nothing(dependentText());
    }
    reportShare(step, started);
    Resolved resolved;
    resolved.noise = noiseOf(told, pixels, spectra, fit);
    for (const int most : {firstRounds, lastRounds}) {
        const WeightedRounds rounds = resolveWeighted(pixels, resolved.noise.model(), most, spectra, fit);
        if (rounds.failed) {
            return nothing(QStringLiteral("a component vanishes"));
        }
        resolved.rounds += rounds.rounds;
        resolved.noise = noiseOf(told, pixels, spectra, fit);
        reportShare(step, most == firstRounds ? afterFirst : afterLast);
    }
    Matrix<double> moved = spectra.deepCopy();
    const bool bIndependent = makeIndependent(pixels, fit, resolved.noise.model(), moved);
    const bool bMoved = bIndependent || encloseMixtures(pixels, fit, resolved.noise.model(), moved);
    if (!fitWithoutWeights(pixels, spectra, fit)) {
        return nothing(dependentText());
    }
    resolved.left = meanSquareLeft(pixels, spectra, fit);
    const bool bTaken = bMoved && fitWithoutWeights(pixels, moved, fit);
    resolved.independent = bTaken && bIndependent;
    resolved.enclosing = bTaken && !bIndependent;
    if (resolved.enclosing) {
        resolved.noise = noiseOf(told, pixels, moved, fit); // rows beyond the faces had a part in it
    }
    resolved.spectra = sorted(bTaken ? moved : spectra);
    reportShare(step, 1.0);
    return resolved;
}

// The same of the engine's spectra, for which an offset is light.
double leftByFirstSpectra(const CORVSpumKyvo& engine)
{
    const Matrix<double> pixels = tellingPixels(engine.m_cube.m_data, 0.0);
    Matrix<double> fit;
    return fitWithoutWeights(pixels, engine.m_spectra, fit) ? meanSquareLeft(pixels, engine.m_spectra, fit)
                                                            : std::numeric_limits<double>::infinity();
}

void takeOff(double dOffset, Matrix<double>& data)
{
    for (long long p = 0; p < data.num_rows(); ++p) {
        if (hasLight(data[p], data.num_cols())) {
            std::for_each(data[p], data[p] + data.num_cols(), [dOffset](double& value) { value -= dOffset; });
        }
    }
}

// Fits all pixels and hands the result to the engine; the spectra are those of a fit before.
void handOver(const Matrix<double>& spectra, const XTNT::NoiseModel& noise, const Matrix<double>& data,
              CORVSpumKyvo& engine)
{
    Matrix<double> fit;
    XTNT::constrainedConcentrations(data, spectra, fit);
    XTNT::weightedConcentrations(data, spectra, noise, fit);
    engine.m_concentrations = fit.transpose();
    engine.m_spectra = spectra;
    engine.createSpectrumPlots();
}

} // namespace

double darkLevel(const Matrix<double>& data, long long nPart)
{
    constexpr long long fewest = 20;
    std::vector<long long> rows;
    for (long long p = 0; p < data.num_rows(); ++p) {
        if (tells(data[p], data.num_cols())) {
            rows.push_back(p);
        }
    }
    if (rows.empty()) {
        return 0.0;
    }
    const auto all = static_cast<long long>(rows.size());
    const long long count = std::min(std::max(all / nPart, fewest), all);
    double sum = 0.0;
    for (const long long half : {0LL, 1LL}) {
        XTNT::cancellationPoint();
        std::vector<std::pair<double, long long>> order;
        order.reserve(rows.size());
        for (const long long p : rows) {
            order.emplace_back(sumOfEveryOther(data[p], half, data.num_cols()), p);
        }
        std::nth_element(order.begin(), order.begin() + static_cast<std::ptrdiff_t>(count - 1), order.end());
        for (long long i = 0; i < count; ++i) {
            sum += sumOfEveryOther(data[order[static_cast<std::size_t>(i)].second], 1 - half, data.num_cols());
        }
    }
    return sum / static_cast<double>(count) / static_cast<double>(data.num_cols());
}

RefinedSpectra refinedSpectra(const CORVSequenceDataset& sequence, const CORVSpumKyvo& engine, CameraOffset eOffset,
                              const std::function<void(double dShare)>& step)
{
    const Matrix<double>& data = engine.m_cube.m_data;
    RefinedSpectra refined;
    if (engine.m_cube.m_nSpots > 1 || data.empty() || engine.m_spectra.num_rows() < 1) {
        refined.reason = QStringLiteral("they are not those of images at one spot");
        return refined;
    }
    const CountedNoise told = CountedNoise::of(engine, sequence);
    const int components = static_cast<int>(engine.m_spectra.num_rows());
    refined.facts.offset = eOffset == CameraOffset::TakenOff ? offsetOf(engine) : std::nullopt;
    XTNT::cancellationPoint();
    Resolved found;
    if (refined.facts.offset) {
        found = resolve(tellingPixels(data, *refined.facts.offset), components, told, step);
        if (!found.reason.isEmpty() || found.left > mostLeft * leftByFirstSpectra(engine)) {
            refined.facts.offset.reset();
        }
    }
    if (!refined.facts.offset) {
        found = resolve(tellingPixels(data, 0.0), components, told, step);
    }
    refined.reason = found.reason;
    if (!found.reason.isEmpty()) {
        return refined;
    }
    refined.spectra = found.spectra;
    refined.weights = found.noise.model();
    refined.facts.rounds = found.rounds;
    refined.facts.independent = found.independent;
    refined.facts.enclosing = found.enclosing;
    refined.noise.model = QStringLiteral("poisson");
    refined.noise.estimated = !told.gain || !told.readNoise;
    if (found.noise.calibrated) {
        refined.noise.electronsPerCount = found.noise.gain;
        refined.noise.readNoise = found.noise.readNoise;
    }
    return refined;
} // NOLINT(clang-analyzer-cplusplus.NewDeleteLeaks): the shares of a matrix are counted

std::optional<RefinementResult> refineResolution(const CORVSequenceDataset& sequence, CORVSpumKyvo& engine)
{
    const RefinedSpectra refined = refinedSpectra(sequence, engine, CameraOffset::TakenOff);
    if (!refined.reason.isEmpty()) {
        return std::nullopt;
    }
    Matrix<double>& data = engine.m_cube.m_data;
    if (refined.facts.offset) {
        takeOff(*refined.facts.offset, data);
    }
    handOver(refined.spectra, refined.weights, data, engine);
    return RefinementResult{refined.facts, refined.noise};
}
