// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

#include <vector>

namespace orvimage {

// Values between `minimum` and `maximum` (both included when they fall on one) at multiples of 1, 2 or 5 times a power
// of ten: the finest such step that gives at most `most` of them, ascending. A range that is empty or not finite gives
// its minimum alone, or nothing when that is not finite.
std::vector<double> tickValues(double minimum, double maximum, int most);

// Texts for ticks, with as many decimals as tell them apart.
struct TickLabels
{
    QStringList texts; // the values over ten to the exponent
    int exponent = 0;  // 0 while the numbers stay short without one
};

TickLabels tickLabels(const std::vector<double>& values);

// "×10⁷" for 7; empty for 0.
QString exponentText(int exponent);

} // namespace orvimage
