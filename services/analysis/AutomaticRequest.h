// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

// What an automatic unmixing is asked for beside its images.
struct AutomaticRequest
{
    QStringList components; // names; empty with a count of 0: as proposed
    bool anyName = false;   // names that the database does not know, too
    int count = 0;          // above 0: so many unknown components
    bool beyondSix = false; // more components than the wizard takes
    bool refine = true;     // see refineResolution()
    bool useConstraints = true;
    bool constraintsAsked = false; // --constraints was given
    bool correctDecay = false;
    double halfLifeMinutes = 0.0; // 0: that of the isotope
};
