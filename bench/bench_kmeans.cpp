// SPDX-License-Identifier: GPL-3.0-or-later
// k-means: one sweep that compares every row with every centre, and whole runs with and without bounds. Times also in
// units of R, one single-threaded pass that sums the same matrix.
#include "bench_support.h"

#include "platform/orvreconstructionmath/kmeans_solver.h"

#include <memory>
#include <string>
#include <vector>

namespace {

using bench::Size;
using XTNT::KMeansSolver;
using XTNT::Matrix;

constexpr int sweepIterations = 25;
constexpr int runIterations = 1;
constexpr int repetitions = 5;
constexpr long long maxIterations = 10000;

struct Problem
{
    explicit Problem(const Size& of) : size(of), pixels(bench::makePixels(of, bench::makeSpectra(of))) {}

    KMeansSolver solver() const
    {
        std::vector<const double*> rows;
        for (long long p = 0; p < pixels.num_rows(); ++p) {
            rows.push_back(pixels[p]);
        }
        return KMeansSolver(std::move(rows), size.bands, size.components);
    }

    Size size;
    Matrix<double> pixels;
};

void sweepOneThread(benchmark::State& state)
{
    const Problem& p = bench::problemOf<Problem>(state.range(0));
    KMeansSolver solver = p.solver();
    solver.start();
    bench::timeInUnits(state, p.pixels, [&] {
        solver.moveCentres();
        benchmark::DoNotOptimize(solver.fullSweep());
    });
}

void sweepTwoThreads(benchmark::State& state)
{
    const Problem& p = bench::problemOf<Problem>(state.range(0));
    KMeansSolver solver = p.solver();
    solver.start();
    bench::timeTwoThreads(state, p.pixels, [&] {
        solver.moveCentres();
        benchmark::DoNotOptimize(solver.fullSweep());
    });
}

void wholeRun(benchmark::State& state, KMeansSolver::Method method)
{
    const Problem& p = bench::problemOf<Problem>(state.range(0));
    KMeansSolver solver = p.solver();
    bench::timeInUnits(state, p.pixels, [&] { solver.run(maxIterations, method); });
    state.counters["sweeps"] = static_cast<double>(solver.sweeps());
    const auto rows = static_cast<double>(p.pixels.num_rows());
    state.counters["compared"] =
        static_cast<double>(solver.comparedRows()) / rows / static_cast<double>(std::max(1LL, solver.sweeps()));
    if (method == KMeansSolver::Method::Bounded) {
        KMeansSolver reference = p.solver();
        reference.run(maxIterations, KMeansSolver::Method::Plain);
        long long different = 0;
        for (std::size_t i = 0; i < reference.labels().size(); ++i) {
            different += reference.labels()[i] != solver.labels()[i] ? 1 : 0;
        }
        state.counters["error"] = static_cast<double>(different);
    }
}

void settings(benchmark::internal::Benchmark* b, int size, int iterations)
{
    b->Arg(size)->ArgName("size")->Iterations(iterations)->Repetitions(repetitions)->UseManualTime();
    b->Unit(benchmark::kMillisecond)->ReportAggregatesOnly(true);
}

} // namespace

int main(int argc, char** argv)
{
    for (int size = 0; size < 3; ++size) {
        settings(benchmark::RegisterBenchmark("one_thread/sweep", sweepOneThread), size, sweepIterations);
        settings(benchmark::RegisterBenchmark("two_threads/sweep", sweepTwoThreads), size, sweepIterations);
        settings(benchmark::RegisterBenchmark("one_thread/run_bounded", wholeRun, KMeansSolver::Method::Bounded), size,
                 runIterations);
        settings(benchmark::RegisterBenchmark("one_thread/run_plain", wholeRun, KMeansSolver::Method::Plain), size,
                 runIterations);
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
