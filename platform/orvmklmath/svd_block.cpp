// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvmklmath/svd_block.h"

#include "XTNT/xtnt_assert.h"
#include "XTNT/xtnt_lanes.h"
#include "XTNT/xtnt_strips.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

namespace XTNT {

namespace {

// Squared lengths from here down have lost bits to underflow: such a column counts as zero.
constexpr double negligibleSquare = std::numeric_limits<double>::min() /
                                    (std::numeric_limits<double>::epsilon() * std::numeric_limits<double>::epsilon());

// Magnitudes between these powers of two have squares that can be summed without care.
constexpr int safeExponent = 128;

// Vectors of a row that a pass keeps sums for in registers.
constexpr long long passVectors = 6;

// Rows whose terms are summed before the sum is added to that of the rows before.
constexpr long long runRows = 64;

long long padded(long long columns)
{
    return (columns + lanes - 1) / lanes * lanes;
}

// The rows of a tile that a pass goes over, and the column whose elements weigh the rows.
struct PassRows
{
    double* first;       // first row, at the first column of the strip
    const double* pivot; // first row, at the column of the weights
    long long stride;
    long long count;
};

// sums[j] += sum over rows of pivot * row[j], for `width` vectors of j. With an update each row first loses
// pivot[-1] * update[j]: the column before the pivot is the one just reflected. Narrow strips keep several sets of
// sums, lest every addition waits for the one before.
template <int width, bool updates>
void passRun(const PassRows& rows, const double* __restrict update, double* __restrict sums)
{
    constexpr int sets = width == 1 ? 4 : width <= 3 ? 2 : 1;
    Lanes taken[width];
    Lanes total[sets][width] = {};
    for (int v = 0; v < width; ++v) {
        taken[v] = updates ? lanesAt(update + v * lanes) : Lanes{};
    }
    const auto addRow = [&](long long r, Lanes* to) {
        double* row = rows.first + r * rows.stride;
        const double* pivot = rows.pivot + r * rows.stride;
        Lanes values[width];
        if constexpr (updates) {
            const double reflected = pivot[-1];
            for (int v = 0; v < width; ++v) {
                values[v] = lanesAt(row + v * lanes) - reflected * taken[v];
                putLanes(row + v * lanes, values[v]);
            }
        } else {
            for (int v = 0; v < width; ++v) {
                values[v] = lanesAt(row + v * lanes);
            }
        }
        const double weight = *pivot;
        for (int v = 0; v < width; ++v) {
            to[v] += weight * values[v];
        }
    };
    long long r = 0;
    for (; r + sets <= rows.count; r += sets) {
        for (int set = 0; set < sets; ++set) {
            addRow(r + set, total[set]);
        }
    }
    for (; r < rows.count; ++r) {
        addRow(r, total[0]);
    }
    for (int v = 0; v < width; ++v) {
        for (int set = 1; set < sets; ++set) {
            total[0][v] += total[set][v];
        }
        putLanes(sums + v * lanes, lanesAt(sums + v * lanes) + total[0][v]);
    }
}

// The same from zero, in runs of rows: the errors of a sum grow with the number of terms that are added one after the
// other.
template <int width, bool updates>
void passStrip(PassRows rows, const double* __restrict update, double* __restrict sums)
{
    std::fill_n(sums, width * lanes, 0.0);
    for (long long left = rows.count; left > 0; left -= runRows) {
        rows.count = std::min(left, runRows);
        passRun<width, updates>(rows, update, sums);
        rows.first += runRows * rows.stride;
        rows.pivot += runRows * rows.stride;
    }
}

template <bool updates>
void passStrips(PassRows rows, long long vectors, const double* update, double* sums)
{
    while (vectors > 0) {
        const long long width = std::min(vectors, passVectors);
        switch (width) {
        case 1:
            passStrip<1, updates>(rows, update, sums);
            break;
        case 2:
            passStrip<2, updates>(rows, update, sums);
            break;
        case 3:
            passStrip<3, updates>(rows, update, sums);
            break;
        case 4:
            passStrip<4, updates>(rows, update, sums);
            break;
        case 5:
            passStrip<5, updates>(rows, update, sums);
            break;
        default:
            passStrip<6, updates>(rows, update, sums);
        }
        rows.first += width * lanes;
        update += width * lanes;
        sums += width * lanes;
        vectors -= width;
    }
}

// A small matrix in the order in which the kernel of four rows reads it.
class PackedMatrix
{
public:
    PackedMatrix(const double* matrix, long long rows, long long columns)
        : m_rows(rows), m_columns(columns), m_padded(padded(columns)),
          m_packed(static_cast<std::size_t>(rows * m_padded), 0.0),
          m_results(static_cast<std::size_t>(stripRows * m_padded))
    {
        double* to = m_packed.data();
        for (long long first = 0; first < m_padded; first += stripColumns) {
            const long long width = stripWidth(first, m_padded);
            const long long used = std::min(width, columns - first);
            for (long long i = 0; i < rows; ++i, to += width) {
                std::copy_n(matrix + i * columns + first, used, to);
            }
        }
    }

    // Rows of `left` (of rows() elements, one after the other) times the matrix, into `result`, which may be `left`
    // when both have rows of one length.
    void multiply(const double* left, long long count, double* result)
    {
        for (long long first = 0; first < count; first += stripRows) {
            const double* rows[stripRows];
            for (long long r = 0; r < stripRows; ++r) {
                rows[r] = left + std::min(first + r, count - 1) * m_rows;
            }
            sumStrips(rows, m_rows, m_packed.data(), m_padded, m_results.data(),
                      [](Lanes& sum, double value, const Lanes& factor) { sum += value * factor; });
            for (long long r = 0; r < std::min<long long>(stripRows, count - first); ++r) {
                std::copy_n(m_results.data() + r * m_padded, m_columns, result + (first + r) * m_columns);
            }
        }
    }

private:
    long long m_rows;
    long long m_columns;
    long long m_padded;
    std::vector<double> m_packed;
    std::vector<double> m_results;
};

} // namespace

HouseholderBlock::HouseholderBlock(long long rows, long long columns)
    : m_rows(rows), m_columns(columns), m_stride(padded(columns)), m_tile(static_cast<std::size_t>(rows * m_stride)),
      m_t(static_cast<std::size_t>(columns * columns)), m_inverses(static_cast<std::size_t>(columns)),
      m_products(static_cast<std::size_t>(m_stride)), m_update(static_cast<std::size_t>(m_stride))
{
    XTNT_ASSERT(columns > 0 && rows >= columns);
}

bool HouseholderBlock::scale(int& exponent)
{
    // Magnitudes compare as their bits do, and what is not finite is above all others.
    std::int64_t largestBits = 0;
    for (const double& value : m_tile) {
        std::int64_t bits = 0;
        std::memcpy(&bits, &value, sizeof bits);
        bits &= std::numeric_limits<std::int64_t>::max();
        largestBits = bits > largestBits ? bits : largestBits;
    }
    double largest = 0;
    std::memcpy(&largest, &largestBits, sizeof largest);
    if (!std::isfinite(largest)) {
        return false;
    }
    exponent = largest > 0 ? std::ilogb(largest) : zeroBlock;
    if (largest > 0 && std::abs(exponent) > safeExponent) {
        for (double& value : m_tile) {
            value = std::ldexp(value, -exponent);
        }
    } else if (largest > 0) {
        exponent = 0;
    }
    return true;
}

void HouseholderBlock::factorise()
{
    const PassRows below{row(0) + m_stride, row(0) + m_stride, m_stride, m_rows - 1};
    passStrips<false>(below, m_stride / lanes, m_update.data(), m_products.data());
    for (long long k = 0; k < m_columns; ++k) {
        reflect(k);
        if (k + 1 < m_columns) {
            passRows(k);
        }
    }
}

// Finds reflection k and applies it to row k; the rows below are left to the pass.
void HouseholderBlock::reflect(long long k)
{
    double* top = row(k);
    const double square = m_products[static_cast<std::size_t>(k)];
    std::fill(m_update.begin(), m_update.end(), 0.0);
    m_inverses[static_cast<std::size_t>(k)] = 0;
    if (!(square > negligibleSquare)) {
        return;
    }
    const double beta = -std::copysign(std::sqrt(top[k] * top[k] + square), top[k]);
    const double tau = (beta - top[k]) / beta;
    const double inverse = 1 / (top[k] - beta);
    m_inverses[static_cast<std::size_t>(k)] = inverse;
    setTriangularColumn(k, tau);
    for (long long j = k + 1; j < m_columns; ++j) {
        const double taken = tau * (top[j] + inverse * m_products[static_cast<std::size_t>(j)]);
        top[j] -= taken;
        m_update[static_cast<std::size_t>(j)] = inverse * taken;
    }
    top[k] = beta;
}

// Column k of T: -tau T V' v above the diagonal, tau on it.
void HouseholderBlock::setTriangularColumn(long long k, double tau)
{
    const auto inverse = [this](long long j) { return m_inverses[static_cast<std::size_t>(j)]; };
    const double* top = row(k);
    for (long long j = 0; j < k; ++j) {
        const double product = inverse(j) * (top[j] + inverse(k) * m_products[static_cast<std::size_t>(j)]);
        for (long long i = 0; i <= j; ++i) {
            t(i)[k] -= tau * t(i)[j] * product;
        }
    }
    t(k)[k] = tau;
}

// Applies reflection k to the rows below row k, and adds up the inner products of column k + 1 below row k + 1.
void HouseholderBlock::passRows(long long k)
{
    const long long next = k + 1;
    double* top = row(next);
    const double reflected = top[k];
    for (long long j = next; j < m_columns; ++j) {
        top[j] -= reflected * m_update[static_cast<std::size_t>(j)];
    }

    const long long done = next / lanes * lanes;
    double* below = top + m_stride;
    PassRows rows{below + done, below + next, m_stride, m_rows - next - 1};
    passStrips<true>(rows, (m_stride - done) / lanes, m_update.data() + done, m_products.data() + done);
    rows.first = below;
    passStrips<false>(rows, done / lanes, m_update.data(), m_products.data());
}

void HouseholderBlock::storeFactors(double* to) const
{
    for (long long r = 0; r < m_rows; ++r) {
        const double* from = m_tile.data() + r * m_stride;
        double* __restrict result = to + r * m_columns;
        const long long below = std::min(r, m_columns);
        for (long long j = 0; j < below; ++j) {
            result[j] = from[j] * m_inverses[static_cast<std::size_t>(j)];
        }
        if (r < m_columns) {
            std::copy(t(r) + r, t(r) + m_columns, result + r);
        }
    }
}

void HouseholderBlock::storeTriangle(double* to) const
{
    for (long long r = 0; r < m_columns; ++r) {
        const double* from = m_tile.data() + r * m_stride;
        std::fill_n(to + r * m_columns, r, 0.0);
        std::copy(from + r, from + m_columns, to + r * m_columns + r);
    }
}

// Q C = [C; 0] - V (T (V1' C)), with V1 the square top of V.
void applyFactors(double* block, long long rows, long long columns, const double* c)
{
    const long long n = columns;
    std::vector<double> lower(static_cast<std::size_t>(n * n));
    std::vector<double> lowerTransposed(lower.size());
    std::vector<double> minusT(lower.size());
    for (long long i = 0; i < n; ++i) {
        lower[static_cast<std::size_t>(i * n + i)] = lowerTransposed[static_cast<std::size_t>(i * n + i)] = 1;
        for (long long j = 0; j < i; ++j) {
            lower[static_cast<std::size_t>(i * n + j)] = lowerTransposed[static_cast<std::size_t>(j * n + i)] =
                block[i * n + j];
        }
        for (long long j = i; j < n; ++j) {
            minusT[static_cast<std::size_t>(i * n + j)] = -block[i * n + j];
        }
    }
    std::vector<double> factor(lower.size());
    PackedMatrix(c, n, n).multiply(lowerTransposed.data(), n, factor.data());
    PackedMatrix(factor.data(), n, n).multiply(minusT.data(), n, factor.data());
    PackedMatrix packed(factor.data(), n, n);
    packed.multiply(lower.data(), n, block);
    for (long long i = 0; i < n * n; ++i) {
        block[i] += c[i];
    }
    packed.multiply(block + n * n, rows - n, block + n * n);
}

} // namespace XTNT
