// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cmath>

// Steps from a value to a colour that more than one path takes. Fusions are written out: which products a compiler
// fuses is its own choice, and where results are rounded to integers two choices can differ.
namespace orvimage {

// What a positive number gets before it is truncated, so that it is rounded to nearest, halves up: the double below one
// half, because 0.5 itself would lift the double below one half to one.
constexpr double kNearlyHalf = 0x1.fffffffffffffp-2;

// Half of maximum - minimum; halves, so that the width of a range over the whole of the doubles stays finite.
inline double halfSpan(double halfMinimum, double maximum)
{
    return std::fma(maximum, 0.5, -halfMinimum);
}

// Place of a value inside a range.
inline double fractionInside(double value, double halfMinimum, double span)
{
    return std::fma(value, 0.5, -halfMinimum) / span;
}

// Of a fraction of the range.
inline double logarithmic(double fraction)
{
    return std::log10(std::fma(fraction, 9.0, 1.0));
}

} // namespace orvimage
