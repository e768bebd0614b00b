// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/simulator/SourceList.h"

#include "host/CORVDatabase.h"
#include "workbench/simulator/Kinetics.h"
#include "workbench/simulator/ProbeChoice.h"
#include "workbench/simulator/SimulationOptions.h"

#include <algorithm>

bool hasOrgans(const SimulationOptions& options)
{
    return options.kind == SimulationKind::Temporal && options.probes.size() == 1;
}

int sourceCount(const SimulationOptions& options)
{
    if (options.kind == SimulationKind::Cherenkov) {
        return std::max(1, options.depthsMm.size());
    }
    return hasOrgans(options) ? Kinetics::organs().size() : options.probes.size();
}

QList<SimulatedSource> sourcesOf(const SimulationOptions& options)
{
    QList<SimulatedSource> sources;
    if (options.kind == SimulationKind::Cherenkov) {
        QString name;
        CORVDatabase::isCherenkovIsotope(options.isotope, &name);
        const int count = sourceCount(options);
        for (int i = 0; i < count; ++i) {
            const double depth = probeDepthMm(options, i);
            sources.append({count > 1 ? QStringLiteral("%1 at %2 mm").arg(name, QString::number(depth)) : name, depth});
        }
        return sources;
    }
    if (hasOrgans(options)) {
        const QList<Organ> organs = Kinetics::organs();
        for (int i = 0; i < organs.size(); ++i) {
            sources.append(
                {organs.at(i).name, options.depthsMm.isEmpty() ? organs.at(i).depthMm : probeDepthMm(options, i)});
        }
        return sources;
    }
    QList<Probe> probes;
    QString error;
    resolveProbes(options.probes, lightOf(options.kind), &probes, &error);
    for (int i = 0; i < probes.size(); ++i) {
        sources.append({probes.at(i).name, probeDepthMm(options, i)});
    }
    return sources;
}

double probeDepthMm(const SimulationOptions& options, int index)
{
    constexpr double kFirstMm = 2.0;
    constexpr double kLastMm = 6.0;
    if (options.depthsMm.size() == 1) {
        return options.depthsMm.first();
    }
    if (!options.depthsMm.isEmpty()) {
        return options.depthsMm.at(index);
    }
    const int last = sourceCount(options) - 1;
    return last < 1 ? kFirstMm : kFirstMm + (kLastMm - kFirstMm) * index / last;
}
