// SPDX-License-Identifier: GPL-3.0-or-later
#include "algorithms/weightedResolution.h"

#include "XTNT/nnls.h"
#include "XTNT/row_blocks.h"
#include "XTNT/weighted_concentrations.h"
#include "XTNT/xtnt_assert.h"
#include "XTNT/xtnt_parallel.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace {

using XTNT::Matrix;

// Change of a spectrum's largest difference, over its maximum, at which it stands still.
constexpr double still = 1e-4;
// A component that others explain is told from them by this part of its own squares.
constexpr double ridge = 1e-12;

// Sums over rows of what the normal equations of all bands take: a band after the other the upper triangle of its
// K x K matrix, and its right-hand side.
class BandSums
{
public:
    BandSums(long long bands, long long components)
        : m_bands(bands), m_components(components),
          m_size(static_cast<std::size_t>(components * (components + 1) / 2 + components)),
          m_sums(static_cast<std::size_t>(bands) * m_size)
    {
    }

    void add(const double* data, const double* amounts, const Matrix<double>& S, const XTNT::NoiseModel& noise)
    {
        double* to = m_sums.data();
        for (long long b = 0; b < m_bands; ++b) {
            double expected = 0.0;
            for (long long k = 0; k < m_components; ++k) {
                expected += amounts[k] * S[k][b];
            }
            const double weight = 1.0 / (noise.slopes[0][b] * std::max(expected, 0.0) + noise.floors[0][b]);
            for (long long k = 0; k < m_components; ++k) {
                const double weighted = weight * amounts[k];
                for (long long l = k; l < m_components; ++l) {
                    *to++ += weighted * amounts[l];
                }
            }
            for (long long k = 0; k < m_components; ++k) {
                *to++ += weight * amounts[k] * data[b];
            }
        }
    }

    void add(const BandSums& other)
    {
        for (std::size_t i = 0; i < m_sums.size(); ++i) {
            m_sums[i] += other.m_sums[i];
        }
    }

    // The non-negative solution of band b.
    std::vector<double> solve(long long b) const;

private:
    long long m_bands;
    long long m_components;
    std::size_t m_size;
    std::vector<double> m_sums;
};

// The normal equations as a least-squares problem of K rows: with R' R their matrix, min |R s - R'^-1 h|.
std::vector<double> BandSums::solve(long long b) const
{
    const auto count = static_cast<std::size_t>(m_components);
    const double* from = m_sums.data() + static_cast<std::size_t>(b) * m_size;
    std::vector<double> triangle(count * count); // R, column-major
    std::vector<double> right(count);
    for (std::size_t k = 0; k < count; ++k) {
        for (std::size_t l = k; l < count; ++l) {
            triangle[k + l * count] = *from++;
        }
    }
    std::copy_n(from, count, right.begin());
    for (std::size_t k = 0; k < count; ++k) {
        const double whole = triangle[k + k * count];
        double rest = whole;
        for (std::size_t i = 0; i < k; ++i) {
            rest -= triangle[i + k * count] * triangle[i + k * count];
        }
        const double pivot = std::sqrt(std::max(rest, ridge * whole));
        triangle[k + k * count] = pivot;
        for (std::size_t l = k + 1; l < count; ++l) {
            for (std::size_t i = 0; i < k; ++i) {
                triangle[k + l * count] -= triangle[i + k * count] * triangle[i + l * count];
            }
            triangle[k + l * count] = pivot > 0.0 ? triangle[k + l * count] / pivot : 0.0;
        }
        for (std::size_t i = 0; i < k; ++i) {
            right[k] -= triangle[i + k * count] * right[i];
        }
        right[k] = pivot > 0.0 ? right[k] / pivot : 0.0;
    }
    std::vector<double> x(count);
    std::vector<double> dual(count);
    std::vector<double> zz(count);
    std::vector<int> index(count + 1);
    double norm = 0.0;
    int mode = 0;
    const int size = static_cast<int>(m_components);
    XTNT::NNLS(triangle.data(), size, size, size, right.data(), x.data(), &norm, dual.data(), zz.data(), index.data(),
               &mode);
    return x;
}

double largest(const double* row, long long n)
{
    return *std::max_element(row, row + n);
}

// Brings the maxima of the spectra to 1.
void scale(Matrix<double>& S, Matrix<double>& C)
{
    for (long long k = 0; k < S.num_rows(); ++k) {
        const double maximum = largest(S[k], S.num_cols());
        std::for_each(S[k], S[k] + S.num_cols(), [maximum](double& value) { value /= maximum; });
        for (long long p = 0; p < C.num_rows(); ++p) {
            C[p][k] *= maximum;
        }
    }
}

double largestDifference(const Matrix<double>& a, const Matrix<double>& b)
{
    double difference = 0.0;
    for (long long i = 0; i < a.storage.n_; ++i) {
        difference = std::max(difference, std::abs(a.storage[i] - b.storage[i]));
    }
    return difference;
}

bool hasLight(const Matrix<double>& S)
{
    for (long long k = 0; k < S.num_rows(); ++k) {
        const double maximum = largest(S[k], S.num_cols());
        if (!(maximum > 0.0) || !std::isfinite(maximum)) {
            return false;
        }
    }
    return true;
}

} // namespace

bool weightedSpectra(const Matrix<double>& D, const Matrix<double>& C, const XTNT::NoiseModel& noise, Matrix<double>& S)
{
    XTNT_ASSERT(C.num_rows() == D.num_rows() && C.num_cols() == S.num_rows() && S.num_cols() == D.num_cols());
    XTNT_ASSERT(noise.slopes.num_rows() == 1 && noise.floors.num_rows() == 1);
    const long long rows = D.num_rows();
    const long long grain = XTNT::passChunkRows(rows);
    std::vector<BandSums> parts(static_cast<std::size_t>((rows + grain - 1) / grain),
                                BandSums(D.num_cols(), S.num_rows()));
    XTNT::parallelChunks(rows, grain, [&](long long begin, long long end) {
        BandSums& sums = parts[static_cast<std::size_t>(begin / grain)];
        for (long long p = begin; p < end; ++p) {
            sums.add(D[p], C[p], S, noise);
        }
    });
    BandSums whole(D.num_cols(), S.num_rows());
    for (const BandSums& part : parts) {
        whole.add(part);
    }
    Matrix<double> solved(S.num_rows(), S.num_cols());
    for (long long b = 0; b < S.num_cols(); ++b) {
        const std::vector<double> x = whole.solve(b);
        for (long long k = 0; k < S.num_rows(); ++k) {
            solved[k][b] = x[static_cast<std::size_t>(k)];
        }
    }
    if (!hasLight(solved)) {
        return false;
    }
    S = solved;
    return true;
} // NOLINT(clang-analyzer-cplusplus.NewDeleteLeaks): the shares of a matrix are counted

WeightedRounds resolveWeighted(const Matrix<double>& D, const XTNT::NoiseModel& noise, int most, Matrix<double>& S,
                               Matrix<double>& C)
{
    WeightedRounds done;
    scale(S, C);
    while (done.rounds < most && !done.converged) {
        XTNT::cancellationPoint();
        const Matrix<double> before = S.deepCopy();
        XTNT::weightedConcentrations(D, S, noise, C);
        if (!weightedSpectra(D, C, noise, S)) {
            done.failed = true;
            return done;
        }
        scale(S, C);
        ++done.rounds;
        done.converged = largestDifference(S, before) < still;
    }
    return done;
} // NOLINT(clang-analyzer-cplusplus.NewDeleteLeaks): the shares of a matrix are counted
