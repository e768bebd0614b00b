// SPDX-License-Identifier: GPL-3.0-or-later
// The fit of all pixels with known spectra: unconstrained, and non-negative by the fast path, by the plain path and
// with every row through NNLS; the same once more with weights from the first fit, and the standard errors. Times also
// in units of R, one single-threaded pass that sums the same matrix.
#include "bench_support.h"

#include "XTNT/concentration_pass.h"
#include "XTNT/constrained_concentrations.h"
#include "XTNT/least_squares.h"
#include "XTNT/nnls_row_fit.h"
#include "XTNT/weighted_concentrations.h"

#include <string>

namespace {

using bench::Size;
using XTNT::Matrix;

constexpr int fastIterations = 25;
constexpr int slowIterations = 5;
constexpr int repetitions = 5;

struct Problem
{
    explicit Problem(const Size& of) : size(of), spectra(bench::makeSpectra(of)), pixels(bench::makePixels(of, spectra))
    {
    }

    Size size;
    Matrix<double> spectra;
    Matrix<double> pixels;
};

// Largest difference of an element from the reference, relative to the largest magnitude of the reference's row.
double largestError(const Matrix<double>& result, const Matrix<double>& reference)
{
    double error = 0;
    for (long long p = 0; p < reference.num_rows(); ++p) {
        double largest = 0;
        double difference = 0;
        for (long long k = 0; k < reference.num_cols(); ++k) {
            largest = std::max(largest, std::abs(reference[p][k]));
            difference = std::max(difference, std::abs(result[p][k] - reference[p][k]));
        }
        if (largest > 0) {
            error = std::max(error, difference / largest);
        }
    }
    return error;
}

double negativeShare(const Matrix<double>& fit)
{
    long long rows = 0;
    for (long long p = 0; p < fit.num_rows(); ++p) {
        rows += std::any_of(fit[p], fit[p] + fit.num_cols(), [](double c) { return c < 0; }) ? 1 : 0;
    }
    return static_cast<double>(rows) / static_cast<double>(fit.num_rows());
}

Matrix<double> everyRowThroughNnls(const Problem& p)
{
    Matrix<double> result(p.pixels.num_rows(), p.spectra.num_rows());
    XTNT::WorkspacePool<XTNT::NnlsRowFit> pool([&p] { return std::make_unique<XTNT::NnlsRowFit>(p.spectra); });
    XTNT::parallelChunks(p.pixels.num_rows(), 64, [&](long long begin, long long end) {
        const XTNT::WorkspacePool<XTNT::NnlsRowFit>::Lease lease(pool);
        for (long long row = begin; row < end; ++row) {
            (*lease).fit(p.pixels[row], result[row]);
        }
    });
    return result;
}

Matrix<double> plain(const Problem& p)
{
    Matrix<double> result;
    XTNT::constrainedConcentrationsPlain(p.pixels, p.spectra, result);
    return result;
}

Matrix<double> fast(const Problem& p)
{
    Matrix<double> result;
    XTNT::constrainedConcentrations(p.pixels, p.spectra, result);
    return result;
}

Matrix<double> unconstrained(const Problem& p)
{
    return XTNT::solveForRight(p.pixels, p.spectra);
}

// Noise that grows with the light, as large as that of the pixels where they are of middling brightness.
XTNT::NoiseModel noiseOf(const Problem& p)
{
    const double variance = bench::noiseLevel * bench::noiseLevel;
    return {Matrix<double>(1, p.size.bands, variance), Matrix<double>(1, p.size.bands, 0.5 * variance)};
}

// Both fits: the first without weights, from which they follow.
Matrix<double> weighted(const Problem& p)
{
    Matrix<double> result = fast(p);
    XTNT::weightedConcentrations(p.pixels, p.spectra, noiseOf(p), result);
    return result;
}

Matrix<double> weightedPlain(const Problem& p)
{
    Matrix<double> result = fast(p);
    XTNT::weightedConcentrationsPlain(p.pixels, p.spectra, noiseOf(p), result);
    return result;
}

Matrix<double> weightedWithErrors(const Problem& p)
{
    const Matrix<double> fit = weighted(p);
    return XTNT::standardErrors(p.spectra, noiseOf(p), fit);
}

// One orthogonal factorisation for a slice of the pixels as right-hand sides.
double unconstrainedError(const Problem& p)
{
    const Matrix<double> some = p.pixels.subMatrix(0, 4095, 0, p.size.bands - 1);
    return largestError(XTNT::solveForRight(some, p.spectra),
                        transpose(XTNT::solveForLeft(transpose(p.spectra), transpose(some))));
}

using Path = Matrix<double> (*)(const Problem&);

double errorOf(const Problem& p, Path path)
{
    if (path == unconstrained) {
        return unconstrainedError(p);
    }
    const bool hasWeights = path == weighted || path == weightedPlain;
    return largestError(path(p), hasWeights ? weightedPlain(p) : plain(p));
}

void oneThread(benchmark::State& state, Path path)
{
    const Problem& p = bench::problemOf<Problem>(state.range(0));
    bench::timeInUnits(state, p.pixels, [&] { benchmark::DoNotOptimize(path(p).storage.data); });
    state.counters["negative"] = negativeShare(unconstrained(p));
    if (path != weightedWithErrors) {
        state.counters["error"] = errorOf(p, path);
    }
}

void twoThreads(benchmark::State& state, Path path)
{
    const Problem& p = bench::problemOf<Problem>(state.range(0));
    bench::timeTwoThreads(state, p.pixels, [&] { benchmark::DoNotOptimize(path(p).storage.data); });
}

void settings(benchmark::internal::Benchmark* b, int size, int iterations)
{
    b->Arg(size)->ArgName("size")->Iterations(iterations)->Repetitions(repetitions)->UseManualTime();
    b->Unit(benchmark::kMillisecond)->ReportAggregatesOnly(true);
}

void registerAll()
{
    const struct
    {
        const char* name;
        Path path;
        int iterations;
    } paths[] = {{"unconstrained", unconstrained, fastIterations},
                 {"constrained_fast", fast, fastIterations},
                 {"constrained_plain", plain, slowIterations},
                 {"every_row_nnls", everyRowThroughNnls, slowIterations},
                 {"weighted_fast", weighted, fastIterations},
                 {"weighted_plain", weightedPlain, slowIterations},
                 {"weighted_with_errors", weightedWithErrors, slowIterations}};
    for (int size = 0; size < 3; ++size) {
        for (const auto& path : paths) {
            settings(
                benchmark::RegisterBenchmark((std::string("one_thread/") + path.name).c_str(), oneThread, path.path),
                size, path.iterations);
            settings(
                benchmark::RegisterBenchmark((std::string("two_threads/") + path.name).c_str(), twoThreads, path.path),
                size, path.iterations);
        }
    }
}

} // namespace

int main(int argc, char** argv)
{
    registerAll();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
