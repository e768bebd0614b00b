// SPDX-License-Identifier: GPL-3.0-or-later
#include "spectra/bandCoverage.h"

#include <algorithm>

namespace {

bool haveSameBands(const SpectrumPlotParams& a, const SpectrumPlotParams& b)
{
    return std::equal(a.points.begin(), a.points.end(), b.points.begin(), b.points.end(),
                      [](const SpectrumPoint& left, const SpectrumPoint& right) {
                          return left.first == right.first && left.second == right.second;
                      });
}

} // namespace

QVector<bool> bandCoverage(const QList<SpectrumPlotParams*>& spectra, const QList<KeyPair>& pairs)
{
    QVector<bool> covered;
    covered.reserve(spectra.size());
    for (int i = 0; i < spectra.size(); ++i) {
        const SpectrumPlotParams& spectrum = *spectra.at(i);
        const bool bAsBefore = i > 0 && haveSameBands(*spectra.at(i - 1), spectrum);
        covered.append(bAsBefore ? covered.last() : spectrum.coversPairs(pairs));
    }
    return covered;
}

KeyPair firstMissingPair(const SpectrumPlotParams& spectrum, const QList<KeyPair>& pairs)
{
    const auto missing = std::find_if(pairs.begin(), pairs.end(),
                                      [&spectrum](const KeyPair& pair) { return !spectrum.coversPairs({pair}); });
    return missing != pairs.end() ? *missing : KeyPair();
}
