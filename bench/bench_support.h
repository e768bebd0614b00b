// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_matrix.h"
#include "XTNT/xtnt_parallel.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <memory>
#include <random>
#include <vector>

#include <time.h>

// What the benchmarks share: data with a fixed seed, the pass that is the unit R, and timing of a path in turns with
// it.
namespace bench {

using XTNT::Matrix;

struct Size
{
    long long side;
    long long bands;
    long long components;
};

// The sweep of every benchmark.
constexpr Size sizes[] = {{256, 18, 4}, {512, 24, 5}, {1024, 24, 5}};

// The problem of sizes[index], made from its size and kept until another size is asked for: one at a time is in memory.
template <class Problem>
Problem& problemOf(long long index)
{
    static std::unique_ptr<Problem> current;
    static long long held = -1;
    if (held != index) {
        current.reset();
        current = std::make_unique<Problem>(sizes[index]);
        held = index;
    }
    return *current;
}

// Share of a row's components that are truly absent. Noise makes half of these negative, so with five components half
// of the rows have a negative element.
constexpr double absentShare = 0.26;
constexpr double noiseLevel = 0.01;

// Emission-like curves side by side: one Gaussian each over the bands, with some overlap.
inline Matrix<double> makeSpectra(const Size& size)
{
    Matrix<double> spectra(size.components, size.bands);
    const double spacing = static_cast<double>(size.bands) / static_cast<double>(size.components);
    for (long long k = 0; k < size.components; ++k) {
        for (long long b = 0; b < size.bands; ++b) {
            const double away = (static_cast<double>(b) - (static_cast<double>(k) + 0.5) * spacing) / (0.9 * spacing);
            spectra[k][b] = std::exp(-0.5 * away * away) + 0.02;
        }
    }
    return spectra;
}

inline Matrix<double> makePixels(const Size& size, const Matrix<double>& spectra)
{
    std::mt19937_64 generator(7);
    std::uniform_real_distribution<double> chance(0, 1);
    std::uniform_real_distribution<double> amount(0.2, 1);
    std::normal_distribution<double> noise(0, noiseLevel);
    Matrix<double> pixels(size.side * size.side, size.bands);
    for (long long p = 0; p < pixels.num_rows(); ++p) {
        double* d = pixels[p];
        for (long long k = 0; k < size.components; ++k) {
            const double c = chance(generator) < absentShare ? 0 : amount(generator);
            for (long long b = 0; b < size.bands; ++b) {
                d[b] += c * spectra[k][b];
            }
        }
        for (long long b = 0; b < size.bands; ++b) {
            d[b] += noise(generator);
        }
    }
    return pixels;
}

// Sum of n numbers at the speed of the memory: 32 running sums in eight vectors, so that no addition waits for another.
inline double sumPass(const double* p, long long n)
{
    constexpr int width = 32;
    double sums[width] = {};
    long long i = 0;
    for (; i + width <= n; i += width) {
        for (int j = 0; j < width; ++j) {
            sums[j] += p[i + j];
        }
    }
    double sum = 0;
    for (; i < n; ++i) {
        sum += p[i];
    }
    for (double part : sums) {
        sum += part;
    }
    return sum;
}

// The same with the parallel helper.
inline double parallelSumPass(const double* p, long long n)
{
    constexpr long long grain = 1 << 16;
    std::vector<double> parts(static_cast<std::size_t>((n - 1) / grain + 1));
    XTNT::parallelChunks(n, grain, [&](long long begin, long long end) {
        parts[static_cast<std::size_t>(begin / grain)] = sumPass(p + begin, end - begin);
    });
    double sum = 0;
    for (double part : parts) {
        sum += part;
    }
    return sum;
}

// Time on the clock, and time that the calling thread had a processor: on a busy machine the latter is the steadier.
struct Seconds
{
    double wall;
    double processor;
};

inline double threadSeconds()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

template <class Function>
Seconds secondsOf(const Function& function)
{
    const double processor = threadSeconds();
    const auto start = std::chrono::steady_clock::now();
    function();
    const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - start;
    return {wall.count(), threadSeconds() - processor};
}

inline double medianOf(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

// Times `path` on one thread in turns with the unit R, so that a busy machine slows both. Counters: R_ms the unit,
// ratio the path in units of R, ratio_cpu the same in processor time, ratio_least of the least times, and bytes a
// second of the matrix.
template <class Path>
void timeInUnits(benchmark::State& state, const Matrix<double>& pixels, const Path& path)
{
    XTNT::setThreadCount(1);
    std::vector<double> unit;
    std::vector<double> times;
    std::vector<double> unitProcessor;
    std::vector<double> timesProcessor;
    for (auto _ : state) {
        const Seconds one =
            secondsOf([&] { benchmark::DoNotOptimize(sumPass(pixels.storage.data, pixels.storage.n_)); });
        const Seconds other = secondsOf(path);
        unit.push_back(one.wall);
        times.push_back(other.wall);
        unitProcessor.push_back(one.processor);
        timesProcessor.push_back(other.processor);
        state.SetIterationTime(other.wall);
    }
    XTNT::setThreadCount(0);
    state.SetBytesProcessed(state.iterations() * pixels.storage.n_ * static_cast<long long>(sizeof(double)));
    state.counters["R_ms"] = medianOf(unit) * 1e3;
    state.counters["ratio"] = medianOf(times) / medianOf(unit);
    state.counters["ratio_cpu"] = medianOf(timesProcessor) / medianOf(unitProcessor);
    state.counters["ratio_least"] =
        *std::min_element(times.begin(), times.end()) / *std::min_element(unit.begin(), unit.end());
}

// What two threads gain, `path` and the plain sum in turns. Counters: gain_sum, gain_path, and gain_share, the path's
// gain over the sum's; and the same of the least times, which on a busy machine are those with both processors free.
template <class Path>
void timeTwoThreads(benchmark::State& state, const Matrix<double>& pixels, const Path& path)
{
    const auto sum = [&] { benchmark::DoNotOptimize(parallelSumPass(pixels.storage.data, pixels.storage.n_)); };
    std::vector<double> sums[2];
    std::vector<double> times[2];
    for (auto _ : state) {
        for (int threads : {1, 2}) {
            XTNT::setThreadCount(threads);
            sums[threads - 1].push_back(secondsOf(sum).wall);
            times[threads - 1].push_back(secondsOf(path).wall);
        }
        state.SetIterationTime(times[1].back());
    }
    XTNT::setThreadCount(0);
    state.counters["gain_sum"] = medianOf(sums[0]) / medianOf(sums[1]);
    state.counters["gain_path"] = medianOf(times[0]) / medianOf(times[1]);
    state.counters["gain_share"] = state.counters["gain_path"] / state.counters["gain_sum"];
    const auto least = [](const std::vector<double>& values) {
        return *std::min_element(values.begin(), values.end());
    };
    state.counters["gain_sum_least"] = least(sums[0]) / least(sums[1]);
    state.counters["gain_path_least"] = least(times[0]) / least(times[1]);
    state.counters["gain_share_least"] = state.counters["gain_path_least"] / state.counters["gain_sum_least"];
}

} // namespace bench
