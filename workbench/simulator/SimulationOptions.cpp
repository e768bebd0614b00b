// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/simulator/SimulationOptions.h"

#include "workbench/simulator/FilterPlan.h"
#include "workbench/simulator/ProbeChoice.h"

#include <cmath>

namespace {

constexpr int kSmallestSize = 16;
constexpr int kLargestSize = 4096;
constexpr int kCoarsestBinning = 64;
constexpr int kFewestMixedBands = 5; // two coarse images must be outnumbered, or the coarse binning would be analysed
constexpr double kShallowestMm = 0.5;
constexpr double kDeepestMm = 20.0;

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
    for (const Range& range : ranges)
        if (!(range.value >= range.low && range.value <= range.high))
            return outOfRange(range.what, range.value, range.low, range.high);
    return QString();
}

QString checkCamera(const SimulationOptions& options)
{
    const QString range = checkRanges({{"The gain (electrons a count)", options.gain, 0.01, 1000.0},
                                       {"The read noise (electrons)", options.readNoise, 0.0, 10000.0},
                                       {"The offset (counts)", options.offset, 0.0, 60000.0},
                                       {"The brightest pixel (electrons)", options.peakElectrons, 1.0, 1e7},
                                       {"The binning", static_cast<double>(options.binning), 1.0, kCoarsestBinning}});
    if (!range.isEmpty())
        return range;
    const int count = options.exposuresSeconds.size();
    if (count != 1 && count != options.bands)
        return QStringLiteral("There are %1 exposures for %2 bands; give one for all or one each.")
            .arg(count)
            .arg(options.bands);
    for (const double seconds : options.exposuresSeconds)
        if (!(seconds >= 1e-3 && seconds <= 3600.0))
            return outOfRange("An exposure (seconds)", seconds, 1e-3, 3600.0);
    return QString();
}

QString checkMixedBinning(const SimulationOptions& options)
{
    if (!options.mixedBinning)
        return QString();
    if (!options.noise)
        return QStringLiteral(
            "A sequence without noise has one binning; leave out the mixed binning or the missing noise.");
    if (options.bands < kFewestMixedBands)
        return QStringLiteral("Mixed binning needs at least %1 bands.").arg(kFewestMixedBands);
    if (options.size % 2 != 0 || options.size < 2 * kSmallestSize)
        return QStringLiteral("Mixed binning needs an even size of at least %1 pixels.").arg(2 * kSmallestSize);
    return QString();
}

QString checkScene(const SimulationOptions& options)
{
    const QString range = checkRanges({{"The ratio of probe to autofluorescence", options.ratio, 1e-3, 1e4},
                                       {"The ratio of food to autofluorescence", options.foodRatio, 0.0, 1e4}});
    if (!range.isEmpty())
        return range;
    for (const double depth : options.depthsMm)
        if (!(depth >= kShallowestMm && depth <= kDeepestMm))
            return outOfRange("A depth (mm)", depth, kShallowestMm, kDeepestMm);
    const int depths = options.depthsMm.size();
    if (depths > 1 && depths != options.probes.size())
        return QStringLiteral("There are %1 depths for %2 probes; give one for all or one each.")
            .arg(depths)
            .arg(options.probes.size());
    return QString();
}

bool isOneLine(const QString& strText)
{
    for (const QChar c : strText)
        if (c.category() == QChar::Other_Control)
            return false;
    return true;
}

} // namespace

QString validate(const SimulationOptions& options)
{
    QString problem = checkRanges(
        {{"The size", static_cast<double>(options.size), kSmallestSize, kLargestSize},
         {"The number of bands", static_cast<double>(options.bands), FilterPlan::kFewest, FilterPlan::kMost}});
    if (!problem.isEmpty())
        return problem;
    problem = checkCamera(options);
    if (problem.isEmpty())
        problem = checkMixedBinning(options);
    if (problem.isEmpty())
        problem = checkScene(options);
    if (!problem.isEmpty())
        return problem;
    if (!isOneLine(options.name) || !isOneLine(options.subject))
        return QStringLiteral("The name and the subject must be a single line each.");
    QList<Probe> probes;
    if (!resolveProbes(options.probes, &probes, &problem))
        return problem;
    QList<FilterPair> pairs;
    FilterPlan::choose(options.bands, options.excitationsNm, probes, &pairs, &problem);
    return problem;
}

double probeDepthMm(const SimulationOptions& options, int index)
{
    constexpr double kFirstMm = 2.0;
    constexpr double kLastMm = 6.0;
    if (options.depthsMm.size() == 1)
        return options.depthsMm.first();
    if (!options.depthsMm.isEmpty())
        return options.depthsMm.at(index);
    const int last = options.probes.size() - 1;
    return last < 1 ? kFirstMm : kFirstMm + (kLastMm - kFirstMm) * index / last;
}

double bandExposureSeconds(const SimulationOptions& options, int index)
{
    return options.exposuresSeconds.size() == 1 ? options.exposuresSeconds.first() : options.exposuresSeconds.at(index);
}
