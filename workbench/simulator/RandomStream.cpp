// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/simulator/RandomStream.h"

#include <cmath>

namespace {

constexpr double kInversionBelow = 10.0;
constexpr double kHalfLogTwoPi = 0.91893853320467274;

std::uint64_t finalise(std::uint64_t z)
{
    z += 0x9e3779b97f4a7c15ULL;
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9ULL;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebULL;
    return z ^ (z >> 31);
}

} // namespace

double logFactorial(double k)
{
    if (k < 10.0) {
        double product = 1.0;
        for (double i = 2.0; i <= k; i += 1.0) {
            product *= i;
        }
        return std::log(product);
    }
    // Stirling's series; the first term left out is below 1e-10 from k = 10 on.
    const double inverse = 1.0 / k;
    const double square = inverse * inverse;
    const double tail = inverse * (1.0 / 12.0 - square * (1.0 / 360.0 - square * (1.0 / 1260.0 - square / 1680.0)));
    return (k + 0.5) * std::log(k) - k + kHalfLogTwoPi + tail;
}

std::uint64_t RandomStream::mix(std::uint64_t a, std::uint64_t b, std::uint64_t c)
{
    return finalise(finalise(finalise(a) ^ b) ^ c);
}

RandomStream::RandomStream(std::uint64_t seed, std::uint64_t stream, std::uint64_t substream)
    : m_engine(mix(seed, stream, substream))
{
}

double RandomStream::uniform()
{
    constexpr double kTwoToMinus53 = 1.0 / 9007199254740992.0;
    return static_cast<double>(m_engine() >> 11) * kTwoToMinus53;
}

double RandomStream::normal()
{
    if (m_bHasSpare) {
        m_bHasSpare = false;
        return m_spare;
    }
    for (;;) {
        const double x = 2.0 * uniform() - 1.0;
        const double y = 2.0 * uniform() - 1.0;
        const double square = x * x + y * y;
        if (square >= 1.0 || square <= 0.0) {
            continue;
        }
        const double factor = std::sqrt(-2.0 * std::log(square) / square);
        m_spare = y * factor;
        m_bHasSpare = true;
        return x * factor;
    }
}

double RandomStream::poisson(double mean)
{
    if (!(mean > 0.0)) {
        return 0.0;
    }
    return mean < kInversionBelow ? smallPoisson(mean) : largePoisson(mean);
}

double RandomStream::smallPoisson(double mean)
{
    constexpr double kBeyondAnyDraw = 200.0; // a mean below 10 reaches this with a probability far below 2^-53
    double rest = uniform();
    double probability = std::exp(-mean);
    double k = 0.0;
    while (rest >= probability && k < kBeyondAnyDraw) {
        rest -= probability;
        k += 1.0;
        probability *= mean / k;
    }
    return k;
}

double RandomStream::largePoisson(double mean)
{
    // The constants of the published algorithm.
    const double b = 0.931 + 2.53 * std::sqrt(mean);
    const double a = -0.059 + 0.02483 * b;
    const double inverseAlpha = 1.1239 + 1.1328 / (b - 3.4);
    const double acceptBelow = 0.9277 - 3.6224 / (b - 2.0);
    const double logMean = std::log(mean);
    for (;;) {
        const double u = uniform() - 0.5;
        const double v = uniform();
        const double us = 0.5 - std::fabs(u);
        if (us <= 0.0) {
            continue;
        }
        const double k = std::floor((2.0 * a / us + b) * u + mean + 0.43);
        if (us >= 0.07 && v <= acceptBelow) {
            return k;
        }
        if (k < 0.0 || (us < 0.013 && v > us) || v <= 0.0) {
            continue;
        }
        if (std::log(v * inverseAlpha / (a / (us * us) + b)) <= k * logMean - mean - logFactorial(k)) {
            return k;
        }
    }
}
