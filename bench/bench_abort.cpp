// SPDX-License-Identifier: GPL-3.0-or-later
// How long a user waits for an abort: the time from the press of the control to the return of the run loop, for aborts
// at random moments of a run at the largest size, from disk. The median and the worst are counters; a run that ended
// before its abort counts for nothing. The next run must give the result of the first.
#include "bench_sequence.h"

#include "engine/runEngine.h"
#include "platform/orvutils/ProcessControl.h"

#include <QCoreApplication>

#include <algorithm>
#include <iostream>
#include <random>
#include <string>
#include <thread>

namespace {

constexpr bench::Size size{1024, 24, 5};
constexpr int aborts = 30;
constexpr unsigned seed = 11;

using Clock = std::chrono::steady_clock;

double millisecondsSince(Clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

// A run that is aborted, and what it leaves.
struct Analysis
{
    const char* name;
    RunOutcome (*run)(CORVSpumKyvo& engine, const bench::DiskSequence& sequence);
    bench::Matrix<double> (*result)(const CORVSpumKyvo& engine);
};

bench::Matrix<double> mapsOf(const CORVSpumKyvo& engine)
{
    return engine.m_concentrations.deepCopy();
}

bench::Matrix<double> eigenvaluesOf(const CORVSpumKyvo& engine)
{
    bench::Matrix<double> row(1, engine.m_pcaResult.size());
    row.setRow(0, engine.m_pcaResult);
    return row;
}

RunOutcome fitSpectra(CORVSpumKyvo& engine, const bench::DiskSequence& sequence)
{
    engine.resetAnalysis(RUNMODE_MANUAL);
    sequence.takeSpectra(engine);
    return runEngine(engine);
}

// Sends the trace of a run nowhere; the benchmark's own report goes to the same stream afterwards.
class SilentTrace
{
public:
    SilentTrace() : m_former(std::cout.rdbuf(nullptr)) {}
    ~SilentTrace() { std::cout.rdbuf(m_former); }
    SilentTrace(const SilentTrace&) = delete;
    SilentTrace& operator=(const SilentTrace&) = delete;

private:
    std::streambuf* m_former;
};

// From the clustering through the decomposition to the half-steps.
RunOutcome resolve(CORVSpumKyvo& engine, const bench::DiskSequence&)
{
    const SilentTrace silence;
    engine.resetAnalysis(RUNMODE_AUTOMATIC);
    engine.m_analysisInput.componentNames.clear();
    for (long long k = 0; k < size.components; ++k) {
        engine.m_analysisInput.componentNames.append(QStringLiteral("Unknown"));
    }
    engine.takeComponents();
    return runEngine(engine);
}

RunOutcome analyseComponents(CORVSpumKyvo& engine, const bench::DiskSequence&)
{
    engine.resetAnalysis(RUNMODE_AUTOMATIC);
    CILImage& mask = engine.m_analysisInput.maskImage;
    mask.InitWithType(ORVTYPE_BYTE, size.side, size.side);
    std::fill_n(static_cast<unsigned char*>(mask.m_pData), size.side * size.side, static_cast<unsigned char>(1));
    mask.m_fBinning = 1;
    engine.m_bRunPCA = true;
    return runEngine(engine);
}

constexpr Analysis analyses[] = {
    {"fit", fitSpectra, mapsOf}, {"resolution", resolve, mapsOf}, {"components", analyseComponents, eigenvaluesOf}};

// The wait for an abort after that many milliseconds, in milliseconds; negative when the run ended before.
double abortAfter(const Analysis& analysis, CORVSpumKyvo& engine, const bench::DiskSequence& sequence, double moment)
{
    Clock::time_point pressed;
    std::thread user([&pressed, moment] {
        std::this_thread::sleep_for(std::chrono::duration<double, std::milli>(moment));
        pressed = Clock::now();
        orv::requestAbort();
    });
    const RunOutcome outcome = analysis.run(engine, sequence);
    const Clock::time_point returned = Clock::now();
    user.join();
    return outcome == RunOutcome::Aborted ? std::chrono::duration<double, std::milli>(returned - pressed).count()
                                          : -1.0;
}

void abortLatency(benchmark::State& state, const Analysis& analysis)
{
    const bench::DiskSequence sequence(size);
    CORVSpumKyvo engine(sequence.id());
    if (!engine.buildDatasetInfo() || analysis.run(engine, sequence) != RunOutcome::Succeeded) {
        bench::giveUp(QStringLiteral("the sequence cannot be unmixed"));
    }
    const bench::Matrix<double> first = analysis.result(engine);
    const Clock::time_point start = Clock::now();
    analysis.run(engine, sequence);
    const double whole = millisecondsSince(start);

    std::mt19937 random(seed);
    std::uniform_real_distribution<double> moment(0.0, whole);
    std::vector<double> waits;
    for (auto _ : state) {
        const double wait = abortAfter(analysis, engine, sequence, moment(random));
        if (wait >= 0.0) {
            waits.push_back(wait);
        }
        state.SetIterationTime(std::max(wait, 0.0) / 1e3);
    }
    if (analysis.run(engine, sequence) != RunOutcome::Succeeded || (analysis.result(engine) - first).norm(0) != 0.0) {
        bench::giveUp(QStringLiteral("the run after the aborts gave another result"));
    }
    if (waits.empty()) {
        bench::giveUp(QStringLiteral("no abort struck a run"));
    }
    state.counters["run_ms"] = whole;
    state.counters["aborted"] = static_cast<double>(waits.size());
    state.counters["median_ms"] = bench::medianOf(waits);
    state.counters["worst_ms"] = *std::max_element(waits.begin(), waits.end());
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    for (const Analysis& analysis : analyses) {
        benchmark::RegisterBenchmark((std::string("abort/") + analysis.name).c_str(), abortLatency, analysis)
            ->Unit(benchmark::kMillisecond)
            ->UseManualTime()
            ->Iterations(aborts);
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
