// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>
#include <QString>

class CILImage;
class ResultComparison;

// How the maps of a comparison are shown.
struct ComparisonStyle
{
    const CILImage* photograph = nullptr; // under the maps; null: black
    QString unit;                         // what the maps' numbers are
    int colorTable = 1;
    bool reversed = true;
};

// The picture of a comparison: a row for each result and a column for each component, the maps of a column in the range
// of its uppermost one, and under them a plot with the column's spectra.
QImage comparisonPicture(const ResultComparison& comparison, const ComparisonStyle& style);
