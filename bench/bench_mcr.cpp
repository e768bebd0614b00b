// SPDX-License-Identifier: GPL-3.0-or-later
// Curve resolution with both factors non-negative: an iteration (both half-steps and the norm of the residual) and a
// whole run, plain path beside fast path; the parts of an iteration; the first estimate. Times also in units of R, one
// single-threaded pass that sums the same matrix; the highest memory beside the data in units of theirs.
#include "bench_support.h"
#include "process_memory.h"

#include "algorithms/MCR.h"
#include "algorithms/PlainSpectrumFit.h"
#include "algorithms/ReducedSpectrumFit.h"

#include "XTNT/concentration_pass.h"
#include "XTNT/constrained_concentrations.h"
#include "XTNT/least_squares.h"
#include "XTNT/residual_norm.h"

#include <sstream>
#include <string>

namespace {

using bench::Seconds;
using bench::Size;
using XTNT::Matrix;
using XTNT::Vector;

constexpr int partIterations = 15;
constexpr int slowIterations = 3;
constexpr int repetitions = 5;
// An iteration is the difference of a run of 1 and one of 1 + this many.
constexpr int countedIterations = 10;
// Limit of a whole run, so that the plain path ends in time. The settings are the engine's otherwise.
constexpr int runIterations = 20;
constexpr int runRepetitions = 3;
constexpr int nonNegativeLeastSquares = 2;

// The settings of a run of the engine.
void configure(MCR& mcr, const Size& size, bool plain)
{
    mcr.setNonNegMode(0, nonNegativeLeastSquares);
    mcr.setNonNegMode(1, nonNegativeLeastSquares);
    mcr.setTopology(Matrix<int>(1, size.bands, 1));
    mcr.forceAF = 0;
    mcr.maxIterations = runIterations;
    mcr.usePlainPath(plain);
}

struct Problem
{
    explicit Problem(const Size& of) : size(of), spectra(bench::makeSpectra(of)), pixels(bench::makePixels(of, spectra))
    {
        solution = XTNT::rightSolutionOperator(spectra);
        conc = Matrix<double>(pixels.num_rows(), spectra.num_rows());
        XTNT::ConcentrationPass(pixels, spectra, solution).run(conc);
        mcr.setData(pixels);
        mcr.setComponents(static_cast<int>(size.components));
        start = mcr.spec.deepCopy();
    }

    Size size;
    Matrix<double> spectra;
    Matrix<double> pixels;
    Matrix<double> solution;
    Matrix<double> conc;
    MCR mcr;
    Matrix<double> start; // its first estimate
};

double relative(double value, double reference)
{
    return std::abs(value - reference) / std::abs(reference);
}

double largestDifference(const Matrix<double>& a, const Matrix<double>& b)
{
    return (a - b).norm(0) / b.norm(0);
}

// --- an iteration ----------------------------------------------------------------------------------------------------

// Exactly so many iterations from the first estimate.
void iterate(Problem& p, int iterations, bool plain)
{
    configure(p.mcr, p.size, plain);
    p.mcr.spec = p.start.deepCopy();
    p.mcr.iteration = 0;
    p.mcr.notImprovingCount = 0;
    p.mcr.convergenceTolerance = 0;
    p.mcr.maxIterations = iterations;
    std::ostringstream trace;
    p.mcr.run(trace);
}

Seconds secondsOfIteration(Problem& p, bool plain)
{
    const Seconds one = bench::secondsOf([&] { iterate(p, 1, plain); });
    const Seconds many = bench::secondsOf([&] { iterate(p, 1 + countedIterations, plain); });
    return {(many.wall - one.wall) / countedIterations, (many.processor - one.processor) / countedIterations};
}

void iterationOneThread(benchmark::State& state, bool plain)
{
    Problem& p = bench::problemOf<Problem>(state.range(0));
    XTNT::setThreadCount(1);
    const double peak = bench::peakBytes([&] { iterate(p, 2, plain); });
    std::vector<double> unit;
    std::vector<double> times;
    std::vector<double> unitProcessor;
    std::vector<double> timesProcessor;
    for (auto _ : state) {
        const Seconds one = bench::secondsOf(
            [&] { benchmark::DoNotOptimize(bench::sumPass(p.pixels.storage.data, p.pixels.storage.n_)); });
        const Seconds other = secondsOfIteration(p, plain);
        unit.push_back(one.wall);
        times.push_back(other.wall);
        unitProcessor.push_back(one.processor);
        timesProcessor.push_back(other.processor);
        state.SetIterationTime(other.wall);
    }
    const double lackOfFit = p.mcr.lackOfFitPCA;
    iterate(p, 1 + countedIterations, !plain);
    XTNT::setThreadCount(0);
    state.counters["R_ms"] = bench::medianOf(unit) * 1e3;
    state.counters["ratio"] = bench::medianOf(times) / bench::medianOf(unit);
    state.counters["ratio_cpu"] = bench::medianOf(timesProcessor) / bench::medianOf(unitProcessor);
    state.counters["error"] = relative(lackOfFit, p.mcr.lackOfFitPCA);
    state.counters["peak_per_8_bytes"] = peak / (8.0 * static_cast<double>(p.pixels.storage.n_));
}

void iterationTwoThreads(benchmark::State& state)
{
    Problem& p = bench::problemOf<Problem>(state.range(0));
    std::vector<double> sums[2];
    std::vector<double> times[2];
    for (auto _ : state) {
        for (int threads : {1, 2}) {
            XTNT::setThreadCount(threads);
            const auto sum = [&] {
                benchmark::DoNotOptimize(bench::parallelSumPass(p.pixels.storage.data, p.pixels.storage.n_));
            };
            sums[threads - 1].push_back(bench::secondsOf(sum).wall);
            times[threads - 1].push_back(secondsOfIteration(p, false).wall);
        }
        state.SetIterationTime(times[1].back());
    }
    XTNT::setThreadCount(0);
    state.counters["gain_sum"] = bench::medianOf(sums[0]) / bench::medianOf(sums[1]);
    state.counters["gain_path"] = bench::medianOf(times[0]) / bench::medianOf(times[1]);
    state.counters["gain_share"] = state.counters["gain_path"] / state.counters["gain_sum"];
}

// --- its parts -------------------------------------------------------------------------------------------------------

using Part = double (*)(Problem&);

// Each gives a number that its plain partner gives as well.

double concentrations(Problem& p)
{
    XTNT::ConcentrationPass(p.pixels, p.spectra, p.solution).run(p.conc);
    return p.conc[p.conc.num_rows() / 2][0];
}

double concentrationsPlain(Problem& p)
{
    Matrix<double> conc;
    XTNT::constrainedConcentrationsPlain(p.pixels, p.spectra, conc);
    return conc[conc.num_rows() / 2][0];
}

// The spectra, non-negative where they must be.
double spectraOf(SpectrumFit& fit)
{
    const Matrix<double> spec = fit.solve();
    double sum = spec[0][0];
    for (long long j = 0; j < spec.num_cols(); ++j) {
        if (spec.column(j).Min() < 0) {
            sum += fit.nonNegative(j)[0];
        }
    }
    return sum;
}

double spectraAlone(Problem& p)
{
    ReducedSpectrumFit fit(p.conc, p.pixels);
    return spectraOf(fit);
}

double spectraPlain(Problem& p)
{
    PlainSpectrumFit fit(p.conc, p.pixels, false);
    return spectraOf(fit);
}

// As an iteration has them: the rows are reduced as they are fitted.
double bothHalfSteps(Problem& p)
{
    auto reduction = std::make_unique<XTNT::LeftReduction>(p.pixels, p.size.components);
    XTNT::ConcentrationPass(p.pixels, p.spectra, p.solution).run(p.conc, [&](long long begin, long long end) {
        reduction->add(p.conc, begin, end);
    });
    reduction->finish();
    ReducedSpectrumFit fit(p.conc, p.pixels, std::move(reduction));
    return spectraOf(fit);
}

double bothHalfStepsPlain(Problem& p)
{
    concentrationsPlain(p);
    return spectraPlain(p);
}

double norm(Problem& p)
{
    return XTNT::residualNorm(p.pixels, p.conc, p.spectra);
}

double normPlain(Problem& p)
{
    return (p.pixels - p.conc * p.spectra).norm(2);
}

double bothResiduals(Problem& p)
{
    Matrix<double> fit;
    Matrix<double> raw;
    return XTNT::residuals(p.pixels, p.pixels, p.conc, p.spectra, fit, raw).raw;
}

double bothResidualsPlain(Problem& p)
{
    const Matrix<double> fit = p.pixels - p.conc * p.spectra;
    const Matrix<double> raw = (fit - p.pixels) + p.pixels;
    benchmark::DoNotOptimize(fit.norm(2));
    return raw.norm(2);
}

void partOneThread(benchmark::State& state, Part part, Part partner)
{
    Problem& p = bench::problemOf<Problem>(state.range(0));
    XTNT::setThreadCount(1);
    const double peak = bench::peakBytes([&] { benchmark::DoNotOptimize(part(p)); });
    bench::timeInUnits(state, p.pixels, [&] { benchmark::DoNotOptimize(part(p)); });
    state.counters["error"] = relative(part(p), partner(p));
    state.counters["peak_per_8_bytes"] = peak / (8.0 * static_cast<double>(p.pixels.storage.n_));
}

void partTwoThreads(benchmark::State& state, Part part)
{
    Problem& p = bench::problemOf<Problem>(state.range(0));
    bench::timeTwoThreads(state, p.pixels, [&] { benchmark::DoNotOptimize(part(p)); });
}

// --- the whole -------------------------------------------------------------------------------------------------------

void firstEstimate(benchmark::State& state)
{
    Problem& p = bench::problemOf<Problem>(state.range(0));
    bench::timeInUnits(state, p.pixels, [&] { p.mcr.computeInitialEstimate(0); });
    state.counters["error"] = largestDifference(p.mcr.spec, p.start);
}

struct Outcome
{
    int iterations = 0;
    double lackOfFit = 0;
};

Outcome wholeRun(const Problem& p, bool plain)
{
    MCR mcr;
    mcr.setData(p.pixels);
    mcr.setComponents(static_cast<int>(p.size.components));
    configure(mcr, p.size, plain);
    std::ostringstream trace;
    mcr.run(trace);
    return {mcr.iteration, mcr.lackOfFitPCA};
}

void runOneThread(benchmark::State& state, bool plain)
{
    const Problem& p = bench::problemOf<Problem>(state.range(0));
    Outcome outcome;
    double peak = 0;
    bench::timeInUnits(state, p.pixels, [&] { peak = bench::peakBytes([&] { outcome = wholeRun(p, plain); }); });
    state.counters["iterations"] = outcome.iterations;
    if (!plain) {
        state.counters["error"] = relative(outcome.lackOfFit, wholeRun(p, true).lackOfFit);
    }
    state.counters["peak_per_8_bytes"] = peak / (8.0 * static_cast<double>(p.pixels.storage.n_));
}

void runTwoThreads(benchmark::State& state)
{
    const Problem& p = bench::problemOf<Problem>(state.range(0));
    bench::timeTwoThreads(state, p.pixels, [&] { wholeRun(p, false); });
}

// --- list ------------------------------------------------------------------------------------------------------------

template <class Function, class... Arguments>
void add(const std::string& name, int size, int iterations, Function function, Arguments... arguments)
{
    const bool whole = name.find("/run") != std::string::npos;
    benchmark::internal::Benchmark* b = benchmark::RegisterBenchmark(name.c_str(), function, arguments...);
    b->Arg(size)
        ->ArgName("size")
        ->Iterations(iterations)
        ->Repetitions(whole ? runRepetitions : repetitions)
        ->UseManualTime();
    b->Unit(benchmark::kMillisecond)->ReportAggregatesOnly(true);
}

void registerAll()
{
    const struct
    {
        const char* name;
        Part fast;
        Part plain;
    } parts[] = {{"concentrations", concentrations, concentrationsPlain},
                 {"spectra", spectraAlone, spectraPlain},
                 {"both_half_steps", bothHalfSteps, bothHalfStepsPlain},
                 {"residual_norm", norm, normPlain},
                 {"residuals", bothResiduals, bothResidualsPlain}};
    for (int size = 0; size < 3; ++size) {
        add("one_thread/iteration", size, slowIterations, iterationOneThread, false);
        add("one_thread/iteration_plain", size, 1, iterationOneThread, true);
        add("two_threads/iteration", size, slowIterations, iterationTwoThreads);
        for (const auto& part : parts) {
            const std::string name = part.name;
            add("one_thread/" + name, size, partIterations, partOneThread, part.fast, part.plain);
            add("one_thread/" + name + "_plain", size, slowIterations, partOneThread, part.plain, part.fast);
            add("two_threads/" + name, size, partIterations, partTwoThreads, part.fast);
        }
        add("one_thread/first_estimate", size, 1, firstEstimate);
        add("one_thread/run", size, 1, runOneThread, false);
        add("one_thread/run_plain", size, 1, runOneThread, true);
        add("two_threads/run", size, 1, runTwoThreads);
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
