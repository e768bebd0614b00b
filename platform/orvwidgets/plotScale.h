// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace orv {

// The power of ten that numbers up to `dLargest` (in size) are told with, so that their mantissas need few digits: 0 as
// long as they lie between `dSmallest` and `dLimit`, else that of `dLargest`.
int commonPower(double dLargest, double dSmallest, double dLimit);

// dValue / 10^nPower and dValue * 10^nPower, for every power that a double can have.
double mantissa(double dValue, int nPower);
double fromMantissa(double dMantissa, int nPower);

// What stands at an axis whose numbers are to be multiplied: "×10⁹"; empty for the power 0.
QString powerText(int nPower);

// The decimals of a format such as "%.2f"; 2 for any other.
int formatDecimals(const QString& strFormat);

// The ends of an axis and its marks, all of them as mantissas.
struct AxisScale
{
    double m_dLow = 0.0;
    double m_dHigh = 1.0;
    double m_dStep = 1.0; // marks stand at its multiples
    int m_nPower = 0;
    int m_nDecimals = 0; // of the numbers at the marks
};

// An axis for values from dLow to dHigh (finite, in this order, the same value allowed) with about `nMarks` steps, of
// 1, 2 or 5 times a power of ten. Its numbers have `nDecimals` decimals, or more when marks would read alike. When
// rounded the ends are moved outwards to marks. The power is that of commonPower() for the limits.
AxisScale axisScale(double dLow, double dHigh, int nMarks, int nDecimals, bool bRounded, double dSmallest,
                    double dLimit);

} // namespace orv
