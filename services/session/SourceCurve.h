// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_vector.h"
#include "host/CORVDatabase.h"
#include "spectra/KeyPair.h"

#include <QList>
#include <QString>

// Spectra of the database's sources at the images of a sequence.
namespace SourceCurve {

// The curve at a wavelength, linear between its entries and 0 outside.
double valueAt(const sSourceSpecFileParameters& curve, double dWavelength);
// A fluorescent or a luminescent source's curve; its name ends in "Em" or "Ex".
bool read(const QString& strName, sSourceSpecFileParameters* pCurve);

// The name that the database has for a source or probe of that name, in any case, or of another name in use; the text
// itself where it has none.
QString nameOf(const QString& strName);
// Where a curve (with its suffix) has its maximum, in nm; NaN without one.
double peakOf(const QString& strCurve);

// What a source (without a suffix, by any name in use) gives at each pair: its emission times its excitation, the
// latter where the database has it and the pairs have several excitations. Not normalised. Empty when the database
// lacks the emission.
XTNT::Vector<double> valuesAt(const QString& strName, const QList<KeyPair>& pairs);
// Whether the database can tell the pairs' excitations apart for that source, or need not.
bool coversExcitations(const QString& strName, const QList<KeyPair>& pairs);

} // namespace SourceCurve
