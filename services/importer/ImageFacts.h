// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <optional>

// What is known of an image beside what tells it from the others. Nothing here is ever in doubt: what cannot be read is
// not known.
struct ImageFacts
{
    std::optional<double> exposure;   // s, above 0
    std::optional<double> pixelSize;  // side of a pixel in the object, in um, above 0
    QString start;                    // of the exposure, UTC, "yyyy-MM-ddTHH:mm:ss.zzz"; empty when it is not known
    QString isotope;                  // name; empty without
    QString unit;                     // of the pixels: "Radiance", ...; empty for counts
    bool temporal = false;            // said to be of a series of times, whatever wavelengths are told as well
    bool numbered = false;            // said to be a numbered channel, whatever wavelengths are told as well
    std::optional<double> wavenumber; // 1/cm, above 0, as an export of this program notes it

    // A number above 0, else nothing.
    static std::optional<double> positive(const QString& strText);
    // An instant in the form of `start`, from any in ISO 8601 (taken for UTC when it tells no zone); empty for another
    // text.
    static QString instant(const QString& strText);
    // The unit's name as click infos have it, without regard to case; empty for counts and for another text.
    static QString unitName(const QString& strText);
};
