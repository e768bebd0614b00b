// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/simulator/NoiseField.h"

#include <cmath>

namespace {

// Gradients in sixteen directions: enough that no direction shows.
constexpr int kDirections = 16;
struct Direction
{
    double x;
    double y;
};
struct DirectionTable
{
    Direction at[kDirections];
    DirectionTable()
    {
        for (int i = 0; i < kDirections; ++i) {
            const double angle = 6.283185307179586 * (i + 0.5) / kDirections;
            at[i] = {std::cos(angle), std::sin(angle)};
        }
    }
};
const DirectionTable kTable;

double fade(double t)
{
    return t * t * t * (t * (t * 6.0 - 15.0) + 10.0);
}

double lerp(double a, double b, double t)
{
    return a + t * (b - a);
}

} // namespace

NoiseField::NoiseField(std::uint64_t seed) : m_seed(seed * 0x9e3779b97f4a7c15ULL + 0x632be59bd9b4e019ULL) {}

double NoiseField::corner(std::int64_t i, std::int64_t j, double dx, double dy) const
{
    std::uint64_t h = m_seed ^ (static_cast<std::uint64_t>(i) * 0xd6e8feb86659fd93ULL);
    h = (h ^ (h >> 32)) * 0xd6e8feb86659fd93ULL;
    h ^= static_cast<std::uint64_t>(j) * 0xa0761d6478bd642fULL;
    h = (h ^ (h >> 29)) * 0xbf58476d1ce4e5b9ULL;
    const Direction& direction = kTable.at[(h >> 40) % kDirections];
    return direction.x * dx + direction.y * dy;
}

double NoiseField::value(double x, double y) const
{
    constexpr double kToUnitRange = 1.4142135623730951;
    const double fx = std::floor(x);
    const double fy = std::floor(y);
    const auto i = static_cast<std::int64_t>(fx);
    const auto j = static_cast<std::int64_t>(fy);
    const double dx = x - fx;
    const double dy = y - fy;
    const double u = fade(dx);
    const double top = lerp(corner(i, j, dx, dy), corner(i + 1, j, dx - 1.0, dy), u);
    const double bottom = lerp(corner(i, j + 1, dx, dy - 1.0), corner(i + 1, j + 1, dx - 1.0, dy - 1.0), u);
    return kToUnitRange * lerp(top, bottom, fade(dy));
}

double NoiseField::fractal(double x, double y, int octaves) const
{
    double sum = 0.0;
    double weights = 0.0;
    double weight = 1.0;
    double frequency = 1.0;
    for (int i = 0; i < octaves; ++i) {
        // Octaves are shifted, or their lattice points would coincide at the origin.
        sum += weight * value(frequency * x + 17.3 * i, frequency * y - 9.1 * i);
        weights += weight;
        weight *= 0.5;
        frequency *= 2.0;
    }
    return weights > 0.0 ? sum / weights : 0.0;
}
