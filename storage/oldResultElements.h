// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/ComponentConstraint.h"
#include "engine/MCRParams.h"

#include "XTNT/xtnt_matrix.h"

#include <QDomElement>
#include <QList>
#include <QString>

// The elements that only results files of the first generation have. They are read and never written.
namespace oldResultElements {

// The settings of the curve resolution, all but the constraints, which stay. What is missing or no number is 0.
void readParams(const QDomElement& element, MCRParams* pParams);
// One constraint a child. What is missing is empty, 0 or false, not what a new constraint has.
QList<ComponentConstraint> readConstraints(const QDomElement& element);

// What such a file tells of a spectrum.
struct OldSpectrum
{
    QString label;
    QString color;
};

// The children that describe resolved spectra, in order; others are skipped. A colour that is none of the twelve
// default ones is the default colour at the child's own place.
QList<OldSpectrum> readSpectra(const QDomElement& element);

// A matrix of the size that the element tells, from the text of its first child. False when a file cannot hold so much
// (hexText::isDoubleCount) or a size is negative; *pSize then tells it as "rows x columns", and the matrix is
// untouched.
bool readMatrix(const QDomElement& element, XTNT::Matrix<double>* pMatrix, QString* pSize);

} // namespace oldResultElements
