// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// What an automatic run is told of one component. The texts are compared by value.
struct ComponentConstraint
{
    int SpectrumType = 3;        // kind of the initial guess
    QString InitGuess = "Auto";  // name of the initial guess
    bool Locked = false;         // the spectrum is held fixed
    QString Unimodality = "N/A"; // "N/A", "Vertical", "Horizontal" or "Average"
    QString HighPass = "N/A";    // key along the axis at which the limit lies, or "N/A"
    QString LowPass = "N/A";
    QString SolutionMask = "All"; // carried; no use in a run
    QString PureMask = "N/A";     // carried; no use in a run
};
