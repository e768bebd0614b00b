// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/basis/ChannelLabels.h"
#include "services/pictures/PlotCurve.h"
#include "services/pictures/SpectrumPlot.h"
#include "spectra/KeyPair.h"

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

// The images that a plot is over, in the order of its values, and how they lie along its axis.
struct PlottedImages
{
    QList<KeyPair> pairs;
    int axis = 0; // as the engine's
    ChannelLabels channels;

    // Those of the engine's selection.
    static PlottedImages of(const CORVSpumKyvo& engine);
    // Some of its sequence.
    static PlottedImages of(const CORVSpumKyvo& engine, const QList<KeyPair>& pairs);
};

// Values of the images, one each, under a name.
struct ValuesOverImages
{
    QString name;
    QColor color;
    std::vector<double> values;
    bool beneath = false; // a broad line without markers, for what lies beneath others and is met by them
};

// The same axis and lines for other values than those of the spectra. Values of none have their place among colours and
// markers, and no curve.
SpectrumPlot plotOverImages(const PlottedImages& images, const QString& strTitle, const QString& strYLabel,
                            const QList<ValuesOverImages>& all);

// What a legend apart from the plots shows: the curve of those values at that place (from 0) in the list, without
// points, and the lines that a plot over these images has; none where a curve is not broken.
PlotCurve curveInLegend(const ValuesOverImages& values, int nPlace);
QList<PlotCurve> linesInLegend(const PlottedImages& images);
