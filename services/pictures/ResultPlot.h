// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/pictures/SpectrumPlot.h"

#include <QColor>
#include <QList>
#include <QString>

#include <vector>

class CORVSpumKyvo;

// The spectra (or time courses) of the engine's result against the axis of the analysis: wavelengths in nm, or the time
// of each image. A component has a colour and a marker. Where the selection has several values of the other key
// (several excitations, say), its line is broken between them, and each has a style of its own, which the legend names.
// Time runs on through the intervals of a sequence, unless they overlap. There is a colour for each component; one that
// is too light for a white ground is darkened.
SpectrumPlot plotOfSpectra(const CORVSpumKyvo& engine, const QList<QColor>& colors);

// Values of the selected images, one each, under a name.
struct ValuesOverImages
{
    QString name;
    QColor color;
    std::vector<double> values;
};

// The same axis and lines for other values than those of the spectra.
SpectrumPlot plotOverImages(const CORVSpumKyvo& engine, const QString& strTitle, const QString& strYLabel,
                            const QList<ValuesOverImages>& all);
