// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <random>

// A stream of random numbers that a seed and two counters name. The generator is std::mt19937_64, whose output the
// language fixes; the distributions are computed here, because those of the standard library differ from one library to
// the next. Streams are cheap enough to have one for each row of an image, so what is drawn does not depend on the
// number of threads.
class RandomStream
{
public:
    RandomStream(std::uint64_t seed, std::uint64_t stream, std::uint64_t substream = 0);

    // Uniform in [0, 1), 53 bits.
    double uniform();
    // Mean 0, variance 1 (G. Marsaglia and T. A. Bray, A convenient method for generating normal variables, 1964).
    double normal();
    // A whole number, Poisson distributed. Sequential inversion below a mean of 10; above it transformed rejection (W.
    // Hoermann, The transformed rejection method for generating Poisson random variables, Insurance: Mathematics and
    // Economics 12 (1993), algorithm PTRS). A mean that is not above 0, or not a number, gives 0.
    double poisson(double mean);

    // Bits of three numbers well mixed (the finaliser of SplitMix64; G. L. Steele, D. Lea, C. H. Flood, 2014).
    static std::uint64_t mix(std::uint64_t a, std::uint64_t b, std::uint64_t c);

private:
    double smallPoisson(double mean);
    double largePoisson(double mean);

    std::mt19937_64 m_engine;
    double m_spare = 0.0;
    bool m_bHasSpare = false;
};

// ln(k!) of a whole number k >= 0; relative error below 1e-9. Unlike lgamma it keeps no state, so any thread may call
// it.
double logFactorial(double k);
