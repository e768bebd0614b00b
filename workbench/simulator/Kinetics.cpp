// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/simulator/Kinetics.h"

#include "workbench/simulator/SourceShapes.h"

#include <cmath>

namespace {

constexpr int kTumourPlace = 2; // of the probes' patches: the hind back
constexpr double kFastEnd = 300.0;
constexpr double kFastStep = 20.0;
constexpr double kSlowEnd = 3600.0;
constexpr double kSlowStep = 300.0;

} // namespace

QList<Organ> Kinetics::organs()
{
    return {{QStringLiteral("Liver"), 4.0, {15.0, 120.0, 2400.0}},
            {QStringLiteral("Kidneys"), 3.0, {8.0, 30.0, 450.0}},
            {QStringLiteral("Tumour"), 2.0, {25.0, 900.0, 20000.0}}};
}

DepthBlur::Density Kinetics::density(int index, const MouseShape& shape, std::uint64_t seed)
{
    switch (index) {
    case 0:
        return SourceShapes::liver(shape);
    case 1:
        return SourceShapes::kidneys(shape);
    default:
        return SourceShapes::probePatch(shape, kTumourPlace, seed);
    }
}

TimeCourse Kinetics::tracer(int index)
{
    static const TimeCourse courses[] = {{10.0, 60.0, 600.0},    {20.0, 900.0, 15000.0}, {15.0, 200.0, 2500.0},
                                         {12.0, 20.0, 250.0},    {60.0, 400.0, 8000.0},  {5.0, 10.0, 120.0},
                                         {240.0, 600.0, 4000.0}, {30.0, 1800.0, 40000.0}};
    return courses[index % static_cast<int>(sizeof courses / sizeof courses[0])];
}

QList<double> Kinetics::standardTimes()
{
    QList<double> times;
    for (double t = 0.0; t <= kFastEnd; t += kFastStep) {
        times.append(t);
    }
    for (double t = kFastEnd + kSlowStep; t <= kSlowEnd; t += kSlowStep) {
        times.append(t);
    }
    return times;
}

int Kinetics::standardInterval(double seconds)
{
    return seconds <= kFastEnd ? 1 : 2;
}
