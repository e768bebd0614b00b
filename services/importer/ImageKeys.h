// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/importer/ImageStack.h"
#include "services/importer/ImagesTable.h"

#include <QString>
#include <QVector>

#include <optional>

// What tells one image of the new sequence from the others, as it will stand in its click info.
struct ImageKey
{
    QString excitation; // "488nm", or "Block" without excitation; of a temporal sequence may be empty
    QString emission;   // "510nm", "Channel 001" of a numbered one, or "Open" without a filter; the same
    QString interval;   // of a temporal sequence, else empty
    QString time;       // s
    QString spotX;      // of a scan, else empty
    QString spotY;
};

// The kind of the sequence and the keys of its images.
struct ImageKeys
{
    bool temporal = false;
    bool fluorescence = false;
    bool transillumination = false;
    bool numbered = false; // channels without wavelengths of filters
    QVector<ImageKey> images;

    // Times make a temporal sequence (wavelengths, the same in all, may stand beside), excitations one of fluorescence,
    // scan spots besides one of transillumination; every row must say the same kind of things. An emission that the
    // table leaves open is taken from the ENVI header, if that tells it. Wavelengths are rounded to whole nanometres.
    // Where a table with a column for channels says none of these, its rows are channels numbered in their order.
    // False with "file:line: reason" in *pError as importStack() tells.
    bool make(const ImagesTable& table, const ImageStack& stack, QString* pError);

private:
    bool checkSpot(const ImageRow& row, QString* pReason) const;
    bool addTemporal(const ImageRow& row, QString* pReason);
    bool number(const ImagesTable& table, QString* pError);
    bool addSpectral(const ImageRow& row, std::optional<double> emission, bool bEmissions, QString* pReason);
    bool refuseDuplicates(const ImagesTable& table, const ImageStack& stack, QString* pError) const;
};

// Why such a wavelength (nm) or time (s) cannot be that of an image; empty when it can. `strWhat` is "excitation" or
// "emission".
QString reasonAgainstWavelength(const QString& strWhat, double dNanometres);
QString reasonAgainstTime(double dSeconds);

// The second under which an image is known: the time as single precision holds it, cut to a whole number.
int wholeSecond(const QString& strTime);
