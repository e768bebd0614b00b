// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_matrix.h"
#include "spectra/KeyPair.h"

#include <QList>
#include <QString>
#include <QStringList>

class SpectrumPlotParams;

// The name of component i of n: the label when there are n of them, else "UMX" and its number from 1.
QString plotLabel(const QStringList& labels, int i, int n);

// Brings the plots to the spectra (components x images, the images in the order of `selection`). As many plots as
// components keep all but their points; any other number is deleted and made anew, each with the axis, its label, the
// default colour of its place and its points. Widgets that show a plot are not touched, so a worker may do this.
void updateSpectrumPlots(QList<SpectrumPlotParams*>& plots, const XTNT::Matrix<double>& spectra,
                         const QList<KeyPair>& selection, int eAxis, const QStringList& labels);
