// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/simulator/SimulationOptions.h"

#include "host/CORVDatabase.h"
#include "workbench/simulator/Kinetics.h"

#include <algorithm>

SimulationOptions SimulationOptions::standard(SimulationKind eKind)
{
    SimulationOptions options;
    options.kind = eKind;
    switch (eKind) {
    case SimulationKind::Luminescent:
        options.bands = 12;
        options.probes =
            QStringList{QStringLiteral("Click-Beetle Green Luciferase"), QStringLiteral("Click-Beetle Red Luciferase")};
        options.ratio = 50.0;
        options.exposuresSeconds = {60.0};
        break;
    case SimulationKind::Transillumination:
        options.bands = 8;
        options.probes = QStringList{QStringLiteral("AlexaFluor 680"), QStringLiteral("AlexaFluor 750")};
        options.foodRatio = 0.0;
        break;
    case SimulationKind::Temporal:
        options.probes = QStringList{QStringLiteral("AlexaFluor 750")};
        options.ratio = 5.0;
        break;
    case SimulationKind::Cherenkov:
        options.bands = 12;
        options.ratio = 30.0;
        options.exposuresSeconds.clear();
        break;
    default:
        break;
    }
    return options;
}

QList<double> timesOf(const SimulationOptions& options)
{
    return options.timesSeconds.isEmpty() ? Kinetics::standardTimes() : options.timesSeconds;
}

int bandCount(const SimulationOptions& options)
{
    return options.kind == SimulationKind::Temporal ? timesOf(options).size() : options.bands;
}

double bandStepSeconds(const SimulationOptions& options)
{
    const double halfLife = CORVDatabase::getCherenkovRADHalflife(options.isotope);
    return options.spanHalfLives * halfLife / std::max(1, options.bands - 1);
}

double bandExposureSeconds(const SimulationOptions& options, int index)
{
    if (options.exposuresSeconds.isEmpty()) {
        constexpr double kChosenSeconds = 60.0;
        return std::min(kChosenSeconds, 0.5 * bandStepSeconds(options));
    }
    return options.exposuresSeconds.size() == 1 ? options.exposuresSeconds.first() : options.exposuresSeconds.at(index);
}
