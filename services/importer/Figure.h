// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// Something that a name or metadata tell of an image.
struct Figure
{
    enum Kind
    {
        Excitation, // nm
        Emission,   // nm
        Time,       // s
        TimeNumber, // a time without a unit: seconds, or the number of a frame
        Frame,      // the number of a frame
        Interval,
        SpotX, // coordinates of a scan spot, in a unit that the instrument knows
        SpotY,
        Wavenumber // 1/cm
    };
    Kind kind = Frame;
    double value = 0.0;
    QString origin;           // for people: "name: ex640", "OME channel 2"
    QString text = QString(); // of a coordinate: the number as it was written
};
