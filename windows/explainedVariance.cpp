// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/explainedVariance.h"

namespace {

// Index of the first element that reaches the target, -1 when none does.
long long firstExplained(const XTNT::Vector<double>& percent)
{
    for (long long i = 0; i < percent.size(); ++i) {
        if (percent[i] >= kExplainedTarget) {
            return i;
        }
    }
    return -1;
}

} // namespace

ExplainedVariance explainedVariance(const XTNT::Vector<double>& eigenvalues)
{
    if (eigenvalues.empty() || !(eigenvalues.Max() > 0.0)) {
        return {};
    }
    double sum = 0.0;
    for (long long i = 0; i < eigenvalues.size(); ++i) {
        sum += eigenvalues[i];
    }
    XTNT::Vector<double> percent(eigenvalues.size());
    double share = 0.0;
    for (long long i = 0; i < eigenvalues.size(); ++i) {
        share += eigenvalues[i] / sum;
        percent[i] = share * 100.0;
    }
    // The last element is 100 up to rounding unless the sum is no number.
    const long long found = firstExplained(percent);
    if (found < 0) {
        return {};
    }
    ExplainedVariance result;
    result.percent = percent;
    result.nSuggested = static_cast<int>(found) + 1;
    result.dSuggestedPercent = percent[found];
    return result;
}

QString explainedVarianceText(double dPercent)
{
    return QString::number(dPercent, 'g', 6);
}
