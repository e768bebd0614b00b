// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "spectra/KeyPair.h"

#include <QList>
#include <QString>
#include <QStringList>

// Makes a filter text such as "500nm" its three-digit key "500" and gives true; a text with fewer than three digits
// stays as it is and gives false. Filters are three-digit wavelengths: a fourth digit is lost on purpose ("520/30" is
// "520").
bool wavelengthDigits(QString& strKey);

// Whether a selection of images can be unmixed, and along which axis.
struct SelectionCheck
{
    enum Result
    {
        Unusable = 0,
        Adjusted = 1, // usable after entries were removed
        Usable = 2
    };
    int result = Unusable;
    int axis = 0;       // of a usable selection
    QString strMessage; // what to tell at warning level; empty when all is well
};

// Two values along the axis at least. A temporal selection loses the first of two neighbours with the same time; any
// other loses the pairs whose value along the axis is no wavelength. Of two axes the one with more wavelengths counts,
// emission at a tie. An unusable selection stays as it is.
SelectionCheck checkSelection(QList<KeyPair>& selection, bool bTemporal);

// The distinct values of a selection along the axis and across it, in selection order; wavelengths as their keys.
struct AxisKeys
{
    QStringList primary;
    QStringList secondary;
};
AxisKeys axisKeys(const QList<KeyPair>& selection, int eAxis);
