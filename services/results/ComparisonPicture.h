// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/pictures/ResultPlot.h"

#include <QImage>
#include <QString>

class CILImage;
class ResultComparison;

// How the maps of a comparison are shown.
struct ComparisonStyle
{
    const CILImage* photograph = nullptr; // under the maps; null: black
    PlottedImages images;                 // those that the spectra are compared over
    QString unit;                         // what the maps' numbers are
    int colorTable = 1;
    bool reversed = true;
};

// The picture of a comparison: a row for each result and a column for each component, the maps of a column in the range
// of its uppermost one, under them a plot with the column's spectra, and the legend of all plots.
QImage comparisonPicture(const ResultComparison& comparison, const ComparisonStyle& style);

// The spectra of a column over the images, references broad and pale beneath the others; without a legend of its own.
SpectrumPlot comparisonPlot(const ResultComparison& comparison, int nColumn, const PlottedImages& images);
