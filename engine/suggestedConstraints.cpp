// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/suggestedConstraints.h"

#include "engine/EngineEnums.h"

#include "XTNT/xtnt_assert.h"

#include <cmath>
#include <map>

namespace {

constexpr const char* tissueLabel = "TissueAF";
constexpr const char* foodLabel = "Food";
constexpr const char* tissueSource = "ALFree";
constexpr const char* foodSource = "ALFood";
constexpr const char* notApplicable = "N/A";

constexpr double lowestPeak = 0.5;
constexpr double edgeShare = 0.125;  // of the peak, at or below which a component is dark
constexpr double flatShare = 0.5;    // of the peak, above which a curve has no place of its own
constexpr double redBeginning = 720; // nm, beyond which tissue autofluorescence is weak
constexpr double peakWeight = 1000.0;

// A strict weak order also with NaNs, which come after every number.
struct NumbersThenNans
{
    bool operator()(double a, double b) const { return a < b || (std::isnan(b) && !std::isnan(a)); }
};

double centroid(const XTNT::Vector<double>& spectrum, const QStringList& bandKeys)
{
    double weighted = 0.0;
    double total = 0.0;
    for (int k = 0; k < bandKeys.size(); ++k) {
        weighted += bandKeys.at(k).toDouble() * spectrum[k];
        total += spectrum[k];
    }
    return weighted / total;
}

QString risingEdge(const XTNT::Vector<double>& spectrum, const QStringList& bandKeys, int nPeak)
{
    const double peak = spectrum[nPeak];
    if (peak >= lowestPeak) {
        for (int k = nPeak - 1; k >= 0; --k) {
            if (spectrum[k] <= edgeShare * peak) {
                return bandKeys.at(k);
            }
        }
    }
    return notApplicable;
}

} // namespace

bool canPredict(const QStringList& labels, int eSeqKind)
{
    return labels.size() > 1 && !labels.contains("Unknown") && eSeqKind != SEQKIND_LUMINESCENT;
}

QString sourceOfLabel(const QString& strLabel)
{
    if (strLabel.contains(foodLabel)) {
        return foodSource;
    }
    return strLabel.contains(tissueLabel) ? QString(tissueSource) : strLabel;
}

bool isAutofluorescence(const QString& strSource)
{
    return strSource == tissueSource || strSource == foodSource;
}

ComponentPrediction predictComponent(const XTNT::Vector<double>& spectrum, const QStringList& bandKeys,
                                     bool bAutofluorescence)
{
    XTNT_ASSERT(spectrum.size() == bandKeys.size());
    ComponentPrediction prediction;
    if (bandKeys.isEmpty()) {
        prediction.position = std::nan("");
        return prediction;
    }
    long long nPeak = 0;
    const double peak = spectrum.Max(&nPeak);
    prediction.highPass = risingEdge(spectrum, bandKeys, static_cast<int>(nPeak));
    const bool bFlat = bAutofluorescence && spectrum.Min() / peak > flatShare;
    const double wavelength = bandKeys.at(bFlat ? 0 : static_cast<int>(nPeak)).toDouble();
    prediction.position = wavelength * peakWeight + centroid(spectrum, bandKeys);
    return prediction;
}

SuggestedConstraints orderedConstraints(const QStringList& labels, const QList<ComponentPrediction>& predictions,
                                        const QStringList& bandKeys)
{
    XTNT_ASSERT(labels.size() == predictions.size());
    std::map<double, int, NumbersThenNans> order;
    for (int i = 0; i < predictions.size(); ++i) {
        order[predictions.at(i).position] = i;
    }
    const bool bRed = bandKeys.value(0).toDouble() > redBeginning;
    SuggestedConstraints suggested;
    for (const auto& [position, i] : order) {
        ComponentConstraint constraint;
        constraint.HighPass = predictions.at(i).highPass;
        constraint.Locked = suggested.constraints.isEmpty() && labels.at(i).contains(tissueLabel) && !bRed;
        suggested.constraints.append(constraint);
        suggested.labels.append(labels.at(i).trimmed());
    }
    return suggested;
}
