// SPDX-License-Identifier: GPL-3.0-or-later
// Building the image cube from disk (16 bit TIFF, which the system's cache holds): time, bytes of the cube a second,
// and the highest memory during it, above that of before, as a multiple of 8 bytes an element. Beside it the storing of
// the images alone, one by one and four in a pass.
#include "bench_sequence.h"
#include "process_memory.h"

#include <QCoreApplication>

#include <memory>

namespace {

constexpr int repetitions = 5;

double elements(const bench::Size& size)
{
    return static_cast<double>(size.side) * static_cast<double>(size.side) * static_cast<double>(size.bands);
}

void cubeFromDisk(benchmark::State& state)
{
    const bench::Size size = bench::sizes[state.range(0)];
    const bench::DiskSequence sequence(size);
    CORVSpumKyvo engine(sequence.id());
    if (!engine.buildDatasetInfo()) {
        bench::giveUp(QStringLiteral("the sequence cannot be analysed"));
    }
    double peak = 0.0;
    for (auto _ : state) {
        state.PauseTiming();
        engine.resetAnalysis(RUNMODE_MANUAL);
        bench::forgetPeak();
        const double before = bench::processBytes("VmRSS:");
        state.ResumeTiming();
        const bool ok = engine.buildImageCube();
        state.PauseTiming();
        if (!ok || engine.m_eUnit != DISPLAYUNIT_RADIANT_EFFICIENCY) {
            bench::giveUp(QStringLiteral("the cube cannot be built"));
        }
        peak = std::max(peak, bench::processBytes("VmHWM:") - before);
        state.ResumeTiming();
    }
    const double bytes = 8.0 * elements(size);
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes) * state.iterations());
    state.counters["peak_MB"] = peak / 1e6;
    state.counters["peak_per_8_bytes"] = peak / bytes;
}

void storeImages(benchmark::State& state)
{
    const bench::Size size = bench::sizes[state.range(0)];
    const std::vector<float> image(static_cast<std::size_t>(size.side * size.side), 1.0F);
    const int side = static_cast<int>(size.side);
    const int bands = static_cast<int>(size.bands);
    const int together = static_cast<int>(state.range(1));
    for (auto _ : state) {
        CImageCube cube;
        cube.init(side, side, 1, bands, {});
        for (int i = 0; i < bands; i += together) {
            cube.setImages(
                0, i, std::vector<const float*>(static_cast<std::size_t>(std::min(together, bands - i)), image.data()),
                image.size());
        }
        benchmark::DoNotOptimize(cube.m_data.storage.data);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(8.0 * elements(size)) * state.iterations());
}

BENCHMARK(cubeFromDisk)->DenseRange(0, 2)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(repetitions);
BENCHMARK(storeImages)
    ->ArgsProduct({{0, 1, 2}, {1, 4}})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Iterations(repetitions);

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
