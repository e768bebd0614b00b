// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/simulator/FilterPlan.h"

#include "workbench/simulator/ProbeChoice.h"
#include "workbench/simulator/SimulationOptions.h"

#include <algorithm>

namespace {

constexpr int kShortestNm = 410; // excitation filters
constexpr int kLongestExcitationNm = 800;
constexpr int kLastChosenNm = 675; // beyond it too little of the emission would be left of a far-red dye
constexpr int kExcitationStep = 70;
constexpr double kBeforeEmission = 25.0;
constexpr int kWholeSteps = 5; // nm to which a chosen excitation is rounded
constexpr int kMostForOne = 8;
constexpr int kMostEmissions = 10; // of one excitation: in steps of 20 nm they reach over the peak of a far-red dye
constexpr int kMostChosen = 4;     // excitations
constexpr int kMostExcitations = 8;
constexpr int kLastForTimes = 720;
constexpr int kCoarseStep = 20;
constexpr double kBeforePeak = 40.0;      // where the emissions of a luciferase begin
constexpr int kShortestEmissionNm = 420;  // of luciferases
constexpr int kCherenkovEmissionNm = 520; // tissue leaves little of the bluer light
constexpr int kFinestSteps[] = {20, 10, 5, 2, 1};

double bluestPeak(const QList<Probe>& probes)
{
    double peak = 1000.0;
    for (const Probe& probe : probes) {
        peak = std::min(peak, probe.emission.peak());
    }
    return peak;
}

// As many filters as the number of pairs calls for, the last one before the bluest emission, the first one not below
// the shortest: for a blue probe the last one then lies further on.
QList<int> chooseExcitations(int count, const QList<Probe>& probes)
{
    const int needed = (count + kMostEmissions - 1) / kMostEmissions;
    const int filters = count <= kMostForOne ? 1 : std::clamp(needed, 2, kMostChosen);
    const int before = kWholeSteps * qRound((bluestPeak(probes) - kBeforeEmission) / kWholeSteps);
    const int first = std::max(kShortestNm, std::min(before, kLastChosenNm) - (filters - 1) * kExcitationStep);
    QList<int> excitations;
    for (int i = 0; i < filters; ++i) {
        excitations.append(first + i * kExcitationStep);
    }
    return excitations;
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
            if (emission > FilterPlan::kLongestNm) {
                return false;
            }
            pairs.append({excitations.at(i), emission});
        }
    }
    *pPairs = pairs;
    return true;
}

QString checkExcitations(const QList<int>& excitations)
{
    if (excitations.size() > kMostExcitations) {
        return QStringLiteral("There are more than %1 excitation filters.").arg(kMostExcitations);
    }
    for (int i = 0; i < excitations.size(); ++i) {
        if (excitations.at(i) < kShortestNm || excitations.at(i) > kLongestExcitationNm) {
            return QStringLiteral("An excitation filter must lie between %1 and %2 nm, not at %3.")
                .arg(kShortestNm)
                .arg(kLongestExcitationNm)
                .arg(excitations.at(i));
        }
        if (excitations.indexOf(excitations.at(i)) != i) {
            return QStringLiteral("The excitation filter %1 nm is given twice.").arg(excitations.at(i));
        }
    }
    return QString();
}

} // namespace

bool FilterPlan::choose(int count, const QList<int>& excitations, const QList<Probe>& probes, QList<FilterPair>* pPairs,
                        QString* pError)
{
    *pError = checkExcitations(excitations);
    if (!pError->isEmpty()) {
        return false;
    }
    QList<int> filters = excitations.isEmpty() ? chooseExcitations(count, probes) : excitations;
    std::sort(filters.begin(), filters.end());
    for (const int step : kFinestSteps) {
        if (place(count, filters, step, pPairs)) {
            return true;
        }
    }
    *pError =
        QStringLiteral("There is no room for %1 bands between these excitations and %2 nm.").arg(count).arg(kLongestNm);
    return false;
}

bool FilterPlan::chooseEmissions(int count, int firstNm, QList<FilterPair>* pPairs, QString* pError)
{
    for (const int step : kFinestSteps) {
        if (firstNm + (count - 1) * step > kLongestNm) {
            continue;
        }
        pPairs->clear();
        for (int i = 0; i < count; ++i) {
            pPairs->append({0, firstNm + i * step});
        }
        return true;
    }
    *pError =
        QStringLiteral("There is no room for %1 bands between %2 and %3 nm.").arg(count).arg(firstNm).arg(kLongestNm);
    return false;
}

bool FilterPlan::chooseOne(const QList<int>& excitations, const QList<Probe>& probes, FilterPair* pPair,
                           QString* pError)
{
    *pError = checkExcitations(excitations);
    if (pError->isEmpty() && excitations.size() > 1) {
        *pError = QStringLiteral("A temporal sequence has one excitation filter, not %1.").arg(excitations.size());
    }
    if (!pError->isEmpty()) {
        return false;
    }
    const int before = kWholeSteps * qRound((bluestPeak(probes) - kBeforeEmission) / kWholeSteps);
    pPair->excitation =
        excitations.isEmpty() ? std::max(kShortestNm, std::min(before, kLastForTimes)) : excitations.first();
    double mean = 0.0;
    for (const Probe& probe : probes) {
        mean += probe.emission.peak() / probes.size();
    }
    pPair->emission = std::max(firstEmission(pPair->excitation, kCoarseStep), kCoarseStep * qRound(mean / kCoarseStep));
    pPair->emission = std::min(pPair->emission, kLongestNm);
    return true;
}

bool choosePairs(const SimulationOptions& options, QList<FilterPair>* pPairs, QString* pError)
{
    if (options.kind == SimulationKind::Cherenkov) {
        return FilterPlan::chooseEmissions(options.bands, kCherenkovEmissionNm, pPairs, pError);
    }
    QList<Probe> probes;
    if (!resolveProbes(options.probes, lightOf(options.kind), &probes, pError)) {
        return false;
    }
    if (options.kind == SimulationKind::Luminescent) {
        const int first = kCoarseStep * qRound((bluestPeak(probes) - kBeforePeak) / kCoarseStep);
        return FilterPlan::chooseEmissions(options.bands, std::max(first, kShortestEmissionNm), pPairs, pError);
    }
    if (options.kind != SimulationKind::Temporal) {
        return FilterPlan::choose(options.bands, options.excitationsNm, probes, pPairs, pError);
    }
    FilterPair pair{0, 0};
    if (!FilterPlan::chooseOne(options.excitationsNm, probes, &pair, pError)) {
        return false;
    }
    *pPairs = {pair};
    return true;
}
