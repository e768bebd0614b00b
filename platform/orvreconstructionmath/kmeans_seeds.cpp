// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvreconstructionmath/kmeans_seeds.h"

#include "XTNT/xtnt_parallel.h"
#include "platform/orvreconstructionmath/kmeans_distances.h"

#include <algorithm>
#include <limits>
#include <random>

namespace XTNT {

namespace {

constexpr std::uint64_t seed = 20230417;

constexpr long long chunkRows = 2048;

// In [0, 1), from the upper 53 bits: the library's own distributions differ between systems.
double uniform(std::mt19937_64& generator)
{
    return static_cast<double>(generator() >> 11U) * 0x1p-53;
}

// The first row at which the running sum of `distances` passes `target`, found by whole chunks first. Where rounding
// keeps the sum below the target, the last row that is not a centre itself.
long long rowAt(double target, const std::vector<double>& distances, const std::vector<double>& chunkSums)
{
    const auto rows = static_cast<long long>(distances.size());
    std::size_t chunk = 0;
    for (; chunk + 1 < chunkSums.size() && target >= chunkSums[chunk]; ++chunk) {
        target -= chunkSums[chunk];
    }
    long long last = -1;
    for (long long row = static_cast<long long>(chunk) * chunkRows; row < rows; ++row) {
        const double distance = distances[static_cast<std::size_t>(row)];
        if (distance > 0) {
            last = row;
            if (target < distance) {
                return row;
            }
            target -= distance;
        }
    }
    for (long long row = rows - 1; last < 0; --row) {
        if (distances[static_cast<std::size_t>(row)] > 0) {
            last = row;
        }
    }
    return last;
}

} // namespace

KMeansSeeds drawSeeds(const std::vector<const double*>& rows, long long columns, long long clusters)
{
    const auto count = static_cast<long long>(rows.size());
    std::vector<double> distances(rows.size(), std::numeric_limits<double>::infinity());
    std::vector<double> chunkSums(static_cast<std::size_t>((count - 1) / chunkRows + 1));
    std::mt19937_64 generator(seed);

    KMeansSeeds seeds;
    seeds.labels.assign(rows.size(), 0);
    long long next = static_cast<long long>(uniform(generator) * static_cast<double>(count));
    for (;;) {
        const int label = static_cast<int>(seeds.rows.size());
        seeds.rows.push_back(next);
        const double* centre = rows[static_cast<std::size_t>(next)];
        parallelChunks(count, chunkRows, [&](long long begin, long long end) {
            double sum = 0;
            for (long long row = begin; row < end; ++row) {
                const auto i = static_cast<std::size_t>(row);
                const double distance = squaredDistance(rows[i], centre, columns);
                if (distance < distances[i]) {
                    distances[i] = distance;
                    seeds.labels[i] = label;
                }
                sum += distances[i];
            }
            chunkSums[static_cast<std::size_t>(begin / chunkRows)] = sum;
        });
        seeds.objective = 0;
        for (double sum : chunkSums) {
            seeds.objective += sum;
        }
        if (static_cast<long long>(seeds.rows.size()) >= clusters || !(seeds.objective > 0)) {
            return seeds;
        }
        next = rowAt(uniform(generator) * seeds.objective, distances, chunkSums);
    }
}

} // namespace XTNT
