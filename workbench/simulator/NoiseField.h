// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

// Smooth random texture as a function of the place, so that it is the same at every resolution: gradient noise on a
// unit lattice (K. Perlin, Improving noise, 2002), its gradients from a hash of the lattice point and a seed.
class NoiseField
{
public:
    explicit NoiseField(std::uint64_t seed);

    // Within about -1 to 1, mean 0, twice continuously differentiable.
    double value(double x, double y) const;
    // Sum of octaves, each of twice the frequency and half the weight; weights add up to 1.
    double fractal(double x, double y, int octaves) const;

private:
    double corner(std::int64_t i, std::int64_t j, double dx, double dy) const;

    std::uint64_t m_seed;
};
