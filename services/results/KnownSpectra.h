// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

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

// Tissue or food, where a spectrum over the selected images is like that of the one or the other (0.9 at least); else
// empty.
QString backgroundLike(const CORVSpumKyvo& engine, const std::vector<double>& spectrum);

// Of the engine's present result, one a component: resolved spectra against the database's sources at the selected
// images, as they are and behind the tissue that the engine takes for the subject, whichever is more like them. Other
// sources are tissue, food, and those that the components are named after. None are known of a temporal sequence.
QList<KnownLikeness> likenessToNames(const CORVSpumKyvo& engine);
