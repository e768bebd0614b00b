// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// What the engine remembers of one image of the sequence. A spectral image is known by its filters (and scan spot), a
// temporal one by interval and time.
struct ImageRecord
{
    QString name; // left empty
    int type = 4;
    QString excitation; // normalised filter text
    QString emission;
    QString spot; // "x,y" in a transillumination scan, else empty
    QString interval;
    QString time; // whole seconds, or a running count
    int reserved1 = 0;
    int reserved2 = 0;
};
