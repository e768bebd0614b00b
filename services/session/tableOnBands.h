// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_vector.h"
#include "services/session/SpectralBands.h"

#include <QPointF>
#include <QString>
#include <QVector>

class SpectraTable;

// The curve (ascending in x, two points or more, or one for a width of 0) at `dCentre`, linear between its points; over
// a width the mean, exactly that of the straight lines. False beyond its ends.
bool curveOverBand(const QVector<QPointF>& curve, double dCentre, double dWidth, double* pValue);

// A spectrum of a table at the bands of a sequence, one value a band. A table of pairs has values of images: those of a
// band's own excitation and emission as they stand, else interpolated along `nAxis` among the rows of the same other
// wavelength. Any other table is a curve over wavelength, brought to the bands by their widths along the axis; the
// other filter must then be the same in all. Throws Failure that names source, spectrum and each band without a value.
XTNT::Vector<double> tableOnBands(const SpectraTable& table, int nSpectrum, const QList<SpectralBand>& bands, int nAxis,
                                  const QString& strSource);
