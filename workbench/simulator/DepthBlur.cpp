// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/simulator/DepthBlur.h"

#include "XTNT/xtnt_parallel.h"
#include "workbench/simulator/TissueOptics.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int kFinestSide = 384;         // grid points over the field of view
constexpr double kNodesInReach = 32.0;   // grid steps from the spread's centre to its end
constexpr double kReachInDepths = 4.0;   // the spread ends at this many depths
constexpr double kShortestReachCm = 0.3; // but not nearer than this
constexpr int kSubsamples = 3;           // of a grid cell along a side, where source and spread are sampled

double subOffset(int i)
{
    return (i + 0.5) / kSubsamples - 0.5;
}

// Rows and columns between which all light of a grid lies; beyond them there is nothing to add.
struct LitPart
{
    int top;
    int bottom = -1;
    int left;
    int right = -1;
};

LitPart litPart(const std::vector<double>& grid, int side)
{
    LitPart part{side, -1, side, -1};
    for (int row = 0; row < side; ++row) {
        for (int column = 0; column < side; ++column) {
            if (grid[static_cast<std::size_t>(row) * static_cast<std::size_t>(side) +
                     static_cast<std::size_t>(column)] == 0.0) {
                continue;
            }
            part.top = std::min(part.top, row);
            part.bottom = row;
            part.left = std::min(part.left, column);
            part.right = std::max(part.right, column);
        }
    }
    return part;
}

double cubic(double a, double b, double c, double d, double t)
{
    return b + 0.5 * t * (c - a + t * (2.0 * a - 5.0 * b + 4.0 * c - d + t * (3.0 * (b - c) + d - a)));
}

} // namespace

DepthBlur::DepthBlur(const Density& density, double fieldCm, const TissueOptics& tissue, double depthMm)
    : m_field(fieldCm)
{
    const double reachCm = std::max(kReachInDepths * depthMm / 10.0, kShortestReachCm);
    const double wantedStep = std::max(fieldCm / kFinestSide, reachCm / kNodesInReach);
    m_side = std::max(4, static_cast<int>(std::ceil(fieldCm / wantedStep)));
    m_step = fieldCm / m_side;
    sample(density);
    const int reach = static_cast<int>(std::ceil(reachCm / m_step));
    convolve(makeKernel(tissue, depthMm, reachCm, reach), reach);
}

void DepthBlur::sample(const Density& density)
{
    const auto width = static_cast<std::size_t>(m_side);
    m_grid.assign(width * width, 0.0);
    XTNT::parallelChunks(m_side, 8, [&](long long begin, long long end) {
        for (auto row = static_cast<std::size_t>(begin); row < static_cast<std::size_t>(end); ++row) {
            for (std::size_t column = 0; column < width; ++column) {
                double sum = 0.0;
                for (int i = 0; i < kSubsamples; ++i) {
                    for (int j = 0; j < kSubsamples; ++j) {
                        sum += density((static_cast<double>(column) + 0.5 + subOffset(j)) * m_step - 0.5 * m_field,
                                       (static_cast<double>(row) + 0.5 + subOffset(i)) * m_step - 0.5 * m_field);
                    }
                }
                m_grid[row * width + column] = sum / (kSubsamples * kSubsamples);
            }
        }
    });
}

std::vector<double> DepthBlur::makeKernel(const TissueOptics& tissue, double depthMm, double reachCm, int reach) const
{
    const int side = 2 * reach + 1;
    std::vector<double> kernel(static_cast<std::size_t>(side) * static_cast<std::size_t>(side), 0.0);
    const double end = tissue.surfaceSpread(kReferenceNm, depthMm, 10.0 * reachCm); // taken off: no step at the end
    double total = 0.0;
    for (int row = -reach; row <= reach; ++row) {
        for (int column = -reach; column <= reach; ++column) {
            double sum = 0.0;
            for (int i = 0; i < kSubsamples; ++i) {
                for (int j = 0; j < kSubsamples; ++j) {
                    const double distance = m_step * std::hypot(row + subOffset(i), column + subOffset(j));
                    if (distance < reachCm) {
                        sum += tissue.surfaceSpread(kReferenceNm, depthMm, 10.0 * distance) - end;
                    }
                }
            }
            kernel[static_cast<std::size_t>((row + reach) * side + column + reach)] = sum;
            total += sum;
        }
    }
    for (double& value : kernel) {
        value /= total;
    }
    return kernel;
}

void DepthBlur::convolve(const std::vector<double>& kernel, int reach)
{
    // On a grid with a margin of zeros the loops need no tests; the spread is symmetric, so correlation is convolution.
    const auto side = static_cast<std::size_t>(m_side);
    const auto span = static_cast<std::size_t>(2 * reach + 1);
    const std::size_t wide = side + span - 1;
    std::vector<double> padded(wide * wide, 0.0);
    for (std::size_t row = 0; row < side; ++row) {
        std::copy_n(m_grid.begin() + static_cast<std::ptrdiff_t>(row * side), side,
                    padded.begin() + static_cast<std::ptrdiff_t>((row + span / 2) * wide + span / 2));
    }
    const LitPart lit = litPart(m_grid, m_side);
    std::fill(m_grid.begin(), m_grid.end(), 0.0);
    XTNT::parallelChunks(m_side, 4, [&](long long begin, long long end) {
        for (auto row = static_cast<std::size_t>(begin); row < static_cast<std::size_t>(end); ++row) {
            double* __restrict pOut = m_grid.data() + row * side;
            for (std::size_t i = 0; i < span; ++i) {
                const int source = static_cast<int>(row + i) - reach;
                if (source < lit.top || source > lit.bottom) {
                    continue;
                }
                for (std::size_t j = 0; j < span; ++j) {
                    const double weight = kernel[i * span + j];
                    const double* __restrict pIn = padded.data() + (row + i) * wide + j;
                    const int shift = reach - static_cast<int>(j);
                    const int last = std::min(m_side - 1, lit.right + shift);
                    for (int column = std::max(0, lit.left + shift); column <= last; ++column) {
                        pOut[column] += weight * pIn[column];
                    }
                }
            }
        }
    });
}

double DepthBlur::node(int row, int column) const
{
    if (row < 0 || column < 0 || row >= m_side || column >= m_side) {
        return 0.0;
    }
    return m_grid[static_cast<std::size_t>(row) * static_cast<std::size_t>(m_side) + static_cast<std::size_t>(column)];
}

double DepthBlur::at(double x, double y) const
{
    const double u = (x + 0.5 * m_field) / m_step - 0.5;
    const double v = (y + 0.5 * m_field) / m_step - 0.5;
    if (!(std::fabs(u) < 1e6 && std::fabs(v) < 1e6)) {
        return 0.0;
    }
    const int column = static_cast<int>(std::floor(u));
    const int row = static_cast<int>(std::floor(v));
    double lines[4];
    for (int i = 0; i < 4; ++i) {
        lines[i] = cubic(node(row + i - 1, column - 1), node(row + i - 1, column), node(row + i - 1, column + 1),
                         node(row + i - 1, column + 2), u - column);
    }
    // The interpolation may swing below 0 at an edge; light does not.
    return std::max(0.0, cubic(lines[0], lines[1], lines[2], lines[3], v - row));
}
