// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>

struct SimulationOptions;

// A source that the options ask for, beside the light of the animal itself.
struct SimulatedSource
{
    QString name;
    double depthMm;
};

// How many sources the options ask for, whether or not they can be had.
int sourceCount(const SimulationOptions& options);
// The sources in the order of the components, with their depths; options must be valid. An isotope at several depths
// is several sources, named after them: "F-18 at 2 mm".
QList<SimulatedSource> sourcesOf(const SimulationOptions& options);
// Whether one tracer goes to several organs.
bool hasOrgans(const SimulationOptions& options);
// The depth of probe `index`, by the rule of SimulationOptions::depthsMm; options must be valid.
double probeDepthMm(const SimulationOptions& options, int index);
