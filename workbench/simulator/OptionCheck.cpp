// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/simulator/OptionCheck.h"

#include "host/CORVDatabase.h"
#include "workbench/simulator/FilterPlan.h"
#include "workbench/simulator/Kinetics.h"
#include "workbench/simulator/ProbeChoice.h"
#include "workbench/simulator/ScanSpots.h"
#include "workbench/simulator/SimulationOptions.h"
#include "workbench/simulator/SourceList.h"

#include <QSet>

#include <algorithm>
#include <cmath>

namespace {

constexpr int kSmallestSize = 16;
constexpr int kLargestSize = 4096;
constexpr int kCoarsestBinning = 64;
constexpr int kFewestMixedBands = 5; // two coarse images must be outnumbered, or the coarse binning would be analysed
constexpr double kShallowestMm = 0.5;
constexpr double kDeepestMm = 20.0;
constexpr double kLongestExposure = 3600.0; // s
constexpr double kLatestTime = 1e7;         // s
constexpr int kMostTimes = 2000;

QString outOfRange(const char* pWhat, double value, double low, double high)
{
    return QStringLiteral("%1 must lie between %2 and %3, not at %4.")
        .arg(QString::fromLatin1(pWhat))
        .arg(low)
        .arg(high)
        .arg(value);
}

// One figure and the range that makes sense for it; NaN lies in none.
struct Range
{
    const char* what;
    double value;
    double low;
    double high;
};

QString checkRanges(const QList<Range>& ranges)
{
    for (const Range& range : ranges) {
        if (!(range.value >= range.low && range.value <= range.high)) {
            return outOfRange(range.what, range.value, range.low, range.high);
        }
    }
    return QString();
}

QString checkCamera(const SimulationOptions& options)
{
    const QString range = checkRanges({{"The gain (electrons a count)", options.gain, 0.01, 1000.0},
                                       {"The read noise (electrons)", options.readNoise, 0.0, 10000.0},
                                       {"The offset (counts)", options.offset, 0.0, 60000.0},
                                       {"The brightest pixel (electrons)", options.peakElectrons, 1.0, 1e7},
                                       {"The binning", static_cast<double>(options.binning), 1.0, kCoarsestBinning}});
    if (!range.isEmpty()) {
        return range;
    }
    const int count = options.exposuresSeconds.size();
    const bool chosen = count == 0 && options.kind == SimulationKind::Cherenkov;
    if (count != 1 && count != bandCount(options) && !chosen) {
        return QStringLiteral("There are %1 exposures for %2 %3; give one for all or one each.")
            .arg(count)
            .arg(bandCount(options))
            .arg(options.kind == SimulationKind::Temporal ? QStringLiteral("times") : QStringLiteral("bands"));
    }
    for (const double seconds : options.exposuresSeconds) {
        if (!(seconds >= 1e-3 && seconds <= kLongestExposure)) {
            return outOfRange("An exposure (seconds)", seconds, 1e-3, kLongestExposure);
        }
    }
    return QString();
}

QString checkMixedBinning(const SimulationOptions& options)
{
    if (!options.mixedBinning) {
        return QString();
    }
    if (!options.noise) {
        return QStringLiteral(
            "A sequence without noise has one binning; leave out the mixed binning or the missing noise.");
    }
    if (options.kind == SimulationKind::Transillumination) {
        return QStringLiteral("A transillumination scan has one binning; leave out the mixed binning.");
    }
    if (bandCount(options) < kFewestMixedBands) {
        return QStringLiteral("Mixed binning needs at least %1 bands.").arg(kFewestMixedBands);
    }
    if (options.size % 2 != 0 || options.size < 2 * kSmallestSize) {
        return QStringLiteral("Mixed binning needs an even size of at least %1 pixels.").arg(2 * kSmallestSize);
    }
    return QString();
}

QString checkScene(const SimulationOptions& options)
{
    const QString range = checkRanges({{"The ratio of probe to autofluorescence", options.ratio, 1e-3, 1e4},
                                       {"The ratio of food to autofluorescence", options.foodRatio, 0.0, 1e4}});
    if (!range.isEmpty()) {
        return range;
    }
    for (const double depth : options.depthsMm) {
        if (!(depth >= kShallowestMm && depth <= kDeepestMm)) {
            return outOfRange("A depth (mm)", depth, kShallowestMm, kDeepestMm);
        }
    }
    const int depths = options.depthsMm.size();
    if (depths > 1 && depths != sourceCount(options)) {
        return QStringLiteral("There are %1 depths for %2 probes; give one for all or one each.")
            .arg(depths)
            .arg(sourceCount(options));
    }
    return QString();
}

QString checkTimes(const SimulationOptions& options)
{
    const QList<double> times = timesOf(options);
    if (times.size() < FilterPlan::kFewest || times.size() > kMostTimes) {
        return QStringLiteral("A temporal sequence takes %1 to %2 times, not %3.")
            .arg(FilterPlan::kFewest)
            .arg(kMostTimes)
            .arg(times.size());
    }
    for (int i = 0; i < times.size(); ++i) {
        if (!(times.at(i) >= 0.0 && times.at(i) <= kLatestTime)) {
            return outOfRange("A time (seconds)", times.at(i), 0.0, kLatestTime);
        }
        if (i == 0) {
            continue;
        }
        if (std::floor(times.at(i)) <= std::floor(times.at(i - 1))) {
            return QStringLiteral("The times must ascend by a whole second at least; %1 follows %2.")
                .arg(times.at(i))
                .arg(times.at(i - 1));
        }
        const double exposure = bandExposureSeconds(options, i - 1);
        if (times.at(i) - times.at(i - 1) < exposure) {
            return QStringLiteral("The exposure of %1 s does not end before the next image at %2 s.")
                .arg(exposure)
                .arg(times.at(i));
        }
    }
    return QString();
}

QString checkIsotope(const SimulationOptions& options)
{
    if (!(CORVDatabase::isCherenkovIsotope(options.isotope) &&
          CORVDatabase::getCherenkovRADHalflife(options.isotope) > 0.0)) {
        QStringList known;
        for (const QString& name : CORVDatabase::isotopeList()) {
            if (CORVDatabase::isCherenkovIsotope(name) && CORVDatabase::getCherenkovRADHalflife(name) > 0.0) {
                known.append(name);
            }
        }
        return QStringLiteral("\"%1\" is no isotope with Cherenkov light; there are %2.")
            .arg(options.isotope, known.join(QStringLiteral(", ")));
    }
    const QString range = checkRanges({{"The time span (half lives)", options.spanHalfLives, 0.01, 10.0}});
    if (!range.isEmpty()) {
        return range;
    }
    QSet<double> depths;
    for (const double depth : options.depthsMm) {
        if (depths.contains(depth)) {
            return QStringLiteral("The depth %1 mm is given twice.").arg(depth);
        }
        depths.insert(depth);
    }
    if (options.depthsMm.size() > kMostProbes) {
        return QStringLiteral("An isotope lies at %1 depths at most.").arg(kMostProbes);
    }
    const double step = bandStepSeconds(options);
    for (int i = 0; i < options.bands; ++i) {
        if (bandExposureSeconds(options, i) > step) {
            return QStringLiteral("The exposure of %1 s is longer than the %2 s from image to image; choose a shorter "
                                  "one, fewer bands or a longer span.")
                .arg(bandExposureSeconds(options, i))
                .arg(step);
        }
    }
    return QString();
}

// What only one kind has.
QString checkKind(const SimulationOptions& options)
{
    switch (options.kind) {
    case SimulationKind::Transillumination:
        return checkRanges(
            {{"The number of scan spots", static_cast<double>(options.spots), ScanSpots::kFewest, ScanSpots::kMost}});
    case SimulationKind::Temporal:
        return checkTimes(options);
    case SimulationKind::Cherenkov:
        return checkIsotope(options);
    default:
        return QString();
    }
}

bool isOneLine(const QString& strText)
{
    for (const QChar c : strText) {
        if (c.category() == QChar::Other_Control) {
            return false;
        }
    }
    return true;
}

} // namespace

QString validate(const SimulationOptions& options)
{
    QString problem = checkRanges(
        {{"The size", static_cast<double>(options.size), kSmallestSize, kLargestSize},
         {"The number of bands", static_cast<double>(options.bands), FilterPlan::kFewest, FilterPlan::kMost}});
    if (!problem.isEmpty()) {
        return problem;
    }
    problem = checkCamera(options);
    if (problem.isEmpty()) {
        problem = checkMixedBinning(options);
    }
    if (problem.isEmpty()) {
        problem = checkScene(options);
    }
    if (problem.isEmpty()) {
        problem = checkKind(options);
    }
    if (!problem.isEmpty()) {
        return problem;
    }
    if (!isOneLine(options.name) || !isOneLine(options.subject)) {
        return QStringLiteral("The name and the subject must be a single line each.");
    }
    QList<FilterPair> pairs;
    choosePairs(options, &pairs, &problem);
    return problem;
}
