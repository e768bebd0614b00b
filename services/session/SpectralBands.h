// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "spectra/KeyPair.h"

#include <QList>
#include <QString>

#include <limits>

class CORVSequenceDataset;

// One filter of an image as far as it is known: its middle in nm, NaN where there is none, and its width in nm, 0 where
// nobody tells it.
struct FilterBand
{
    double centre = std::numeric_limits<double>::quiet_NaN();
    double width = 0.0;

    bool isKnown() const { return centre == centre; }
};

// Where the image of a pair lies in the spectrum.
struct SpectralBand
{
    KeyPair pair;
    FilterBand excitation;
    FilterBand emission;

    // "640/700", and with the width of the filter along the axis "640/700 (690 to 710 nm)".
    QString text(int nAxis) const;
};

// The width of the filter in a text such as "520/30" or "520nm / 30nm"; 0 for a text that tells none.
double filterWidth(const QString& strFilter);

// The bands of a spectral sequence's images, one a pair, in their order; of numbered channels the wavelengths that
// their file told. A pair that no image has is taken by its keys alone.
QList<SpectralBand> bandsOf(const CORVSequenceDataset& sequence, const QList<KeyPair>& pairs);
// By the keys alone.
QList<SpectralBand> bandsOf(const QList<KeyPair>& pairs);
