// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/simulator/FilterPlan.h"

#include "workbench/simulator/ProbeChoice.h"

#include <algorithm>

namespace {

constexpr int kFirstExcitation = 465; // the filters on hand, 35 nm apart
constexpr int kLastExcitation = 780;
constexpr int kExcitationStep = 35;
constexpr double kBeforeEmission = 25.0;
constexpr int kMostForOne = 8;
constexpr int kMostForTwo = 12;
constexpr int kMostExcitations = 8;

double bluestPeak(const QList<Probe>& probes)
{
    double peak = 1000.0;
    for (const Probe& probe : probes)
        peak = std::min(peak, probe.emission.peak());
    return peak;
}

// Three filters on hand that end before the bluest emission; of these the ones that the number of pairs calls for.
QList<int> chooseExcitations(int count, const QList<Probe>& probes)
{
    const double limit = bluestPeak(probes) - kBeforeEmission;
    int last = kFirstExcitation + 2 * kExcitationStep;
    while (last + kExcitationStep <= limit && last + kExcitationStep <= kLastExcitation)
        last += kExcitationStep;
    const int middle = last - kExcitationStep;
    if (count <= kMostForOne)
        return {middle};
    if (count <= kMostForTwo)
        return {middle, last};
    return {middle - kExcitationStep, middle, last};
}

// The first emission on the grid that the excitation's filter lets through unmixed.
int firstEmission(int excitation, int step)
{
    return (excitation + FilterPlan::kBandwidthNm) / step * step + step;
}

bool place(int count, const QList<int>& excitations, int step, QList<FilterPair>* pPairs)
{
    QList<FilterPair> pairs;
    for (int i = 0; i < excitations.size(); ++i) {
        const int share = count / excitations.size() + (i < count % excitations.size() ? 1 : 0);
        int emission = firstEmission(excitations.at(i), step);
        for (int j = 0; j < share; ++j, emission += step) {
            if (emission > FilterPlan::kLongestNm)
                return false;
            pairs.append({excitations.at(i), emission});
        }
    }
    *pPairs = pairs;
    return true;
}

QString checkExcitations(const QList<int>& excitations)
{
    if (excitations.size() > kMostExcitations)
        return QStringLiteral("There are more than %1 excitation filters.").arg(kMostExcitations);
    for (int i = 0; i < excitations.size(); ++i) {
        if (excitations.at(i) < 410 || excitations.at(i) > 800)
            return QStringLiteral("An excitation filter must lie between 410 and 800 nm, not at %1.")
                .arg(excitations.at(i));
        if (excitations.indexOf(excitations.at(i)) != i)
            return QStringLiteral("The excitation filter %1 nm is given twice.").arg(excitations.at(i));
    }
    return QString();
}

} // namespace

bool FilterPlan::choose(int count, const QList<int>& excitations, const QList<Probe>& probes, QList<FilterPair>* pPairs,
                        QString* pError)
{
    *pError = checkExcitations(excitations);
    if (!pError->isEmpty())
        return false;
    QList<int> filters = excitations.isEmpty() ? chooseExcitations(count, probes) : excitations;
    std::sort(filters.begin(), filters.end());
    for (const int step : {20, 10, 5, 2, 1})
        if (place(count, filters, step, pPairs))
            return true;
    *pError =
        QStringLiteral("There is no room for %1 bands between these excitations and %2 nm.").arg(count).arg(kLongestNm);
    return false;
}
