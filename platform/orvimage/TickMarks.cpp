// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvimage/TickMarks.h"

#include <algorithm>
#include <cmath>

namespace orvimage {

namespace {

// Numbers from a hundredth to ten thousand are read with ease as they are.
constexpr double kPlainFrom = 0.01;
constexpr double kPlainBelow = 1e4;
constexpr int kMaxDecimals = 12;

// Smallest of 1, 2, 5 times a power of ten that is not below `step`.
double niceStep(double step)
{
    const double power = std::pow(10.0, std::floor(std::log10(step)));
    for (const double factor : {1.0, 2.0, 5.0}) {
        if (factor * power >= step * (1.0 - 1e-9)) {
            return factor * power;
        }
    }
    return 10.0 * power;
}

} // namespace

std::vector<double> tickValues(double minimum, double maximum, int most)
{
    if (!std::isfinite(minimum)) {
        return {};
    }
    const double span = maximum - minimum;
    if (!std::isfinite(span) || !(span > std::fabs(minimum) * 1e-12) || most < 2) {
        return {minimum};
    }
    // Multiples of the step are counted, not added up, so that no rounding gathers.
    const double slack = 1e-9;
    double step = niceStep(span / most);
    double first = 0.0;
    double last = -1.0;
    for (int attempt = 0; attempt < 4; ++attempt) {
        first = std::ceil(minimum / step - slack);
        last = std::floor(maximum / step + slack);
        if (last - first + 1.0 <= most) {
            break;
        }
        step = niceStep(step * 1.5);
    }
    std::vector<double> values;
    for (int i = 0; first + i <= last; ++i) {
        values.push_back((first + i) * step);
    }
    if (values.empty()) {
        values.push_back(minimum);
    }
    return values;
}

TickLabels tickLabels(const std::vector<double>& values)
{
    TickLabels labels;
    double largest = 0.0;
    for (const double v : values) {
        largest = std::max(largest, std::fabs(v));
    }
    if (largest > 0.0 && (largest >= kPlainBelow || largest < kPlainFrom)) {
        labels.exponent = static_cast<int>(std::floor(std::log10(largest) + 1e-9));
    }
    const double unit = std::pow(10.0, labels.exponent);
    // Decimals of the smallest distance, or of three digits for a single value.
    double step = largest / unit / 100.0;
    for (std::size_t i = 1; i < values.size(); ++i) {
        const double distance = std::fabs(values[i] - values[i - 1]) / unit;
        step = i == 1 ? distance : std::min(step, distance);
    }
    const int decimals =
        step > 0.0 ? std::clamp(static_cast<int>(std::ceil(-std::log10(step) - 1e-9)), 0, kMaxDecimals) : 0;
    for (const double v : values) {
        const double shown = v / unit;
        labels.texts.append(QString::number(std::fabs(shown) < 1e-12 ? 0.0 : shown, 'f', decimals));
    }
    return labels;
}

QString exponentText(int exponent)
{
    if (exponent == 0) {
        return {};
    }
    static const char16_t superscripts[] = u"\u2070\u00b9\u00b2\u00b3\u2074\u2075\u2076\u2077\u2078\u2079";
    QString text = QStringLiteral("\u00d710");
    for (const QChar c : QString::number(exponent)) {
        text += c == QLatin1Char('-') ? QChar(u'\u207b') : QChar(superscripts[c.digitValue()]);
    }
    return text;
}

} // namespace orvimage
