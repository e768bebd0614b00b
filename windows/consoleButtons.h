// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QVector>

// A row of the spectrum list, as far as the buttons of the console depend on it.
struct ConsoleRow
{
    bool hasData = false;
    bool selected = false;
    bool selectEnabled = false; // its select box
};

struct ConsoleState
{
    QVector<ConsoleRow> rows;
    int removedCount = 0;        // since the list was last empty
    bool backgroundMode = false; // drawing step before an analysis
    bool modified = false;       // since the last unmixing
};

// Which buttons are enabled.
struct ConsoleButtons
{
    bool add = true;
    bool remove = false;
    bool save = false;
    bool unmix = false;
    bool compute = false;
};

// Spectra that an unmixing can use: those with data; outside the drawing step only if they are selected.
int usableSpectra(const QVector<ConsoleRow>& rows, bool bBackgroundMode);

// No row can be added to exactly nine and one more for each removed one; a list that passed this goes on growing.
ConsoleButtons consoleButtons(const ConsoleState& state);
