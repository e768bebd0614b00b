// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/compositeControls.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr double kHundredths = 100.0;
// A hundredth is not a binary fraction: 0.29 * 100 is a little less than 29.
constexpr double kSlack = 1e-9;
constexpr double kStepsOfRange = 20.0;
constexpr int kEfficiency = 3;
constexpr int kEfficiencyDecimals = 10;
constexpr int kDecimals = 2;
constexpr double kLeastContrast = 3.0;
constexpr int kMixtures = 16;

int truncated(double dValue)
{
    constexpr double kLimit = std::numeric_limits<int>::max();
    return std::isnan(dValue) ? 0 : static_cast<int>(std::clamp(dValue, -kLimit, kLimit));
}

// Relative luminance by the guidelines for contrast.
double luminance(const QColor& color)
{
    const auto linear = [](double c) { return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4); };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

QColor mixed(const QColor& color, const QColor& ink, double dInk)
{
    return QColor::fromRgbF(color.redF() + (ink.redF() - color.redF()) * dInk,
                            color.greenF() + (ink.greenF() - color.greenF()) * dInk,
                            color.blueF() + (ink.blueF() - color.blueF()) * dInk);
}

} // namespace

int sliderOfFraction(double dFraction)
{
    return std::clamp(truncated(dFraction * kHundredths + kSlack), 0, 100);
}

double valueOfSlider(const DataRange& range, int nSlider)
{
    return range.first + (range.second - range.first) * nSlider / kHundredths;
}

std::optional<double> fractionOfValue(const DataRange& range, double dValue)
{
    const double width = range.second - range.first;
    if (!(width > 0.0)) {
        return std::nullopt;
    }
    return (dValue - range.first) / width;
}

int sliderOfValue(const DataRange& range, double dValue)
{
    const double width = range.second - range.first;
    return width > 0.0 ? truncated((dValue - range.first) * kHundredths / width) : 0;
}

bool showsExponent(int nUnit, bool bBackground)
{
    return nUnit >= 1 && !bBackground;
}

int shownDecimals(int nUnit)
{
    return nUnit == kEfficiency ? kEfficiencyDecimals : kDecimals;
}

double spinStep(const DataRange& range)
{
    return (range.second - range.first) / kStepsOfRange;
}

QString colorButtonStyle(const QColor& color)
{
    return QStringLiteral("QPushButton{ background-color: rgb(%1,%2,%3) }")
        .arg(color.red())
        .arg(color.green())
        .arg(color.blue());
}

double contrast(const QColor& a, const QColor& b)
{
    const double la = luminance(a);
    const double lb = luminance(b);
    return (std::max(la, lb) + 0.05) / (std::min(la, lb) + 0.05);
}

QColor legibleColor(const QColor& color, const QColor& paper)
{
    const QColor ink = luminance(paper) > 0.18 ? QColor(Qt::black) : QColor(Qt::white);
    for (int i = 0; i < kMixtures; ++i) {
        const QColor candidate = mixed(color, ink, static_cast<double>(i) / kMixtures);
        if (contrast(candidate, paper) >= kLeastContrast) {
            return i == 0 ? color : candidate;
        }
    }
    return ink;
}
