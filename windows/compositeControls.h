// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QPair>
#include <QString>

#include <optional>

// What the controls of the composite's layers show and write. A range is the smallest and the largest value of a
// layer's data; the slider counts its hundredths, a layer keeps fractions of it.

using DataRange = QPair<double, double>;

// Hundredths of a fraction, truncated and limited to 0 to 100. What a slider of hundredths has written it gives back.
int sliderOfFraction(double dFraction);
double valueOfSlider(const DataRange& range, int nSlider);
// Nothing for a range without a width.
std::optional<double> fractionOfValue(const DataRange& range, double dValue);
// Truncated, without limits but those of an integer; 0 for a range without a width.
int sliderOfValue(const DataRange& range, double dValue);

// Whether values in that unit (0 counts, 1 radiance, 2 radiant efficiency, 3 efficiency) are shown with an exponent;
// those of the background are counts whatever the unit.
bool showsExponent(int nUnit, bool bBackground);
int shownDecimals(int nUnit);
// Of the spin boxes for the ends of the display window.
double spinStep(const DataRange& range);

QString colorButtonStyle(const QColor& color);

// From 1 to 21, by the Web Content Accessibility Guidelines 2.1, 1.4.3, which ask for 3 for large or bold text.
double contrast(const QColor& a, const QColor& b);

// The colour, or, where it could hardly be read on the paper, one between it and black or white that can be: with a
// contrast of 3.
QColor legibleColor(const QColor& color, const QColor& paper);
