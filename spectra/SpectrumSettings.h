// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// The part of a spectrum that a row of the list can show.
struct SpectrumSettings
{
    bool selected = true; // the spectrum takes part
    int index = 0;        // component number, from 0
    int curveId = -1;     // handle of the plot curve; carried through a row, stored in no file
    int curveFlag = 0;    // carried the same way
    QString name;
    QString color = QStringLiteral("Black"); // a name that QColor::setNamedColor understands
    int shape = 1;                           // drawing tool: 0 thin, 1 medium, 2 thick
    bool enabled = false;                    // the row's name edit is enabled
};
