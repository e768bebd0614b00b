// SPDX-License-Identifier: GPL-3.0-or-later
// How long a user waits for an abort: the time from the press of the control to the return of the run loop, for aborts at
// random moments of a run at the largest size, from disk. The median and the worst are counters; a run that ended before
// its abort counts for nothing. The next run must give the result of the first.
#include "bench_sequence.h"

#include "engine/runEngine.h"
#include "platform/orvutils/ProcessControl.h"

#include <QCoreApplication>

#include <random>
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

RunOutcome run(CORVSpumKyvo& engine, const bench::DiskSequence& sequence)
{
    engine.resetAnalysis(RUNMODE_MANUAL);
    sequence.takeSpectra(engine);
    return runEngine(engine);
}

// The wait for an abort after that many milliseconds, in milliseconds; negative when the run ended before.
double abortAfter(CORVSpumKyvo& engine, const bench::DiskSequence& sequence, double moment)
{
    Clock::time_point pressed;
    std::thread user([&pressed, moment] {
        std::this_thread::sleep_for(std::chrono::duration<double, std::milli>(moment));
        pressed = Clock::now();
        orv::requestAbort();
    });
    const RunOutcome outcome = run(engine, sequence);
    const Clock::time_point returned = Clock::now();
    user.join();
    return outcome == RunOutcome::Aborted ? std::chrono::duration<double, std::milli>(returned - pressed).count()
                                          : -1.0;
}

void abortLatency(benchmark::State& state)
{
    const bench::DiskSequence sequence(size);
    CORVSpumKyvo engine(sequence.id());
    if (!engine.buildDatasetInfo() || run(engine, sequence) != RunOutcome::Succeeded)
        bench::giveUp(QStringLiteral("the sequence cannot be unmixed"));
    const bench::Matrix<double> first = engine.m_concentrations.deepCopy();
    const Clock::time_point start = Clock::now();
    run(engine, sequence);
    const double whole = millisecondsSince(start);

    std::mt19937 random(seed);
    std::uniform_real_distribution<double> moment(0.0, whole);
    std::vector<double> waits;
    for (auto _ : state) {
        const double wait = abortAfter(engine, sequence, moment(random));
        if (wait >= 0.0)
            waits.push_back(wait);
        state.SetIterationTime(std::max(wait, 0.0) / 1e3);
    }
    if (run(engine, sequence) != RunOutcome::Succeeded || (engine.m_concentrations - first).norm(0) != 0.0)
        bench::giveUp(QStringLiteral("the run after the aborts gave another result"));
    if (waits.empty())
        bench::giveUp(QStringLiteral("no abort struck a run"));
    state.counters["run_ms"] = whole;
    state.counters["aborted"] = static_cast<double>(waits.size());
    state.counters["median_ms"] = bench::medianOf(waits);
    state.counters["worst_ms"] = *std::max_element(waits.begin(), waits.end());
}

BENCHMARK(abortLatency)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(aborts);

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
