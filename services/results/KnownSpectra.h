// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_matrix.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <limits>
#include <vector>

class CORVSpumKyvo;

// How like its name a resolved spectrum is.
struct KnownLikeness
{
    double own = std::numeric_limits<double>::quiet_NaN(); // cosine with the source of its name; NaN: none is known
    QString nearest;                                       // the other source that is most like it; empty: none
    double other = std::numeric_limits<double>::quiet_NaN();
};

// Cosine of a spectrum with a known one where only the shape along the axis is known: `groups` tells for each value at
// which other wavelength it was taken, and within each group the known one is scaled as fits best. What a known
// spectrum is at another excitation depends on lamp, unit and depth. NaN for spectra of zeros.
double cosineByGroups(const std::vector<double>& spectrum, const std::vector<double>& known,
                      const std::vector<int>& groups);

// A source's spectrum over the selected images as it is and, but for autofluorescence, behind the tissue that the
// engine takes for the subject; empty when the database has none.
std::vector<std::vector<double>> sourceSpectra(const CORVSpumKyvo& engine, const QString& strName);
// Of each selected image the number of its other wavelength, from 0.
std::vector<int> groupsOfImages(const CORVSpumKyvo& engine);

// Cosine of what a fit leaves with what a known spectrum would leave of itself beside the fitted `spectra` (K x N): of
// both the parts that the spectra explain are taken off first. The known one is scaled in each group as fits best, by
// no negative factor. 0 where fewer than three images are left to tell by.
double likenessOfRest(const std::vector<double>& rest, const std::vector<double>& known, const std::vector<int>& groups,
                      const XTNT::Matrix<double>& spectra);

// Tissue, food or a probe of the sequence, where what the engine's result leaves is like the one that is none of its
// components (0.9 at least); else empty.
QString sourceLikeRest(const CORVSpumKyvo& engine, const std::vector<double>& rest);

// Of the engine's present result, one a component: resolved spectra against the database's sources at the selected
// images, as they are and behind the tissue that the engine takes for the subject, whichever is more like them. Other
// sources are tissue, food, and those that the components are named after. None are known of a temporal sequence.
QList<KnownLikeness> likenessToNames(const CORVSpumKyvo& engine);
