// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "workbench/simulator/DepthBlur.h"
#include "workbench/simulator/MouseShape.h"
#include "workbench/simulator/TimeCourse.h"

#include <QList>
#include <QString>

#include <cstdint>

// Where a tracer goes in a temporal sequence, and when. The figures are plausible ones for a dye of low weight that
// liver and kidneys clear and a tumour keeps; they are ours.
struct Organ
{
    QString name;
    double depthMm;
    TimeCourse course;
};

namespace Kinetics {

// Liver, kidneys and tumour.
QList<Organ> organs();
// What organ `index` holds of the tracer, over the place in cm.
DepthBlur::Density density(int index, const MouseShape& shape, std::uint64_t seed);

// The course of tracer `index` of several, each in a place of its own.
TimeCourse tracer(int index);

// The times that a sequence has for want of others, in seconds: every 20 for five minutes, then every 300 for an hour.
QList<double> standardTimes();
// The interval of a time among those, from 1.
int standardInterval(double seconds);

} // namespace Kinetics
