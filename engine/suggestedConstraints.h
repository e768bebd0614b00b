// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_vector.h"
#include "engine/ComponentConstraint.h"

#include <QList>
#include <QString>
#include <QStringList>

// Where named components will lie along the spectrum, and what can be asked of them because of it.

// Whether anything can be predicted from the names: two at least, none of them "Unknown", and not a luminescent
// sequence.
bool canPredict(const QStringList& labels, int eSeqKind);

// The name of the source in the host's database, without a suffix: "ALFree" for a label with "TissueAF", "ALFood" for
// one with "Food" (for one with both too), else the label itself.
QString sourceOfLabel(const QString& strLabel);
// Whether the source is one of the two autofluorescences, which reach the camera as their curves say.
bool isAutofluorescence(const QString& strSource);

struct ComponentPrediction
{
    double position = 0.0; // 1000 times the wavelength of the peak (nm) plus the centroid; a NaN when there is no light
    QString highPass = "N/A";
};

// From a spectrum over the keys (wavelengths as texts, as many as the spectrum has values). The high pass lies at the
// last key before the peak at which the spectrum is at most an eighth of the peak; it needs a peak of at least 0.5. The
// autofluorescence of a curve that nowhere falls to half of its peak counts as lying at the first key.
ComponentPrediction predictComponent(const XTNT::Vector<double>& spectrum, const QStringList& bandKeys,
                                     bool bAutofluorescence);

// Constraints and labels from blue to red.
struct SuggestedConstraints
{
    QList<ComponentConstraint> constraints;
    QStringList labels;
};

// Orders the components (as many predictions as labels). Of components at the same position the last stays alone, so
// the result can be shorter than the labels; components without light come last and count as being at one position. The
// first of the order is locked when it is tissue autofluorescence, unless the selection begins above 720 nm.
SuggestedConstraints orderedConstraints(const QStringList& labels, const QList<ComponentPrediction>& predictions,
                                        const QStringList& bandKeys);
