// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "odd_inputs/OddReaders.h"

#include <QByteArray>
#include <QString>

#include <functional>
#include <ostream>
#include <vector>

// One odd input: how it is made, who reads it, and what is said about it.
struct OddCase
{
    enum Outcome
    {
        Refused, // an error
        Warned,  // read, with a warning
        Silent   // read, and nothing to say
    };

    QByteArray name; // letters and digits
    OddReader read;
    QString file; // below the case's own folder; what `read` is given, and {path} in `says`
    std::function<void(const QString& path)> make;
    Outcome outcome = Refused;
    // The whole error, one whole warning or, where the outcome is Silent, what was read. {path} is the file, {dir} its
    // folder, {n} stands for a whole number and {...} for anything.
    QString says;
    bool plainUser = false; // read by a user who is not root
};

inline std::ostream& operator<<(std::ostream& out, const OddCase& oddCase)
{
    return out << oddCase.name.constData();
}

using OddCases = std::vector<OddCase>;

// The collection, reader by reader.
OddCases sectionCases();
OddCases sequenceCases();
OddCases regionCases();
OddCases tiffCases();
OddCases metadataCases();
OddCases imagesTableCases();
OddCases cubeCases();
OddCases pictureCases();
OddCases referenceTableCases();
OddCases libraryCases();
OddCases resultCases();
OddCases savedResultCases();
OddCases placeCases();
OddCases programCases();

// A file cut off at each tenth of its length; `says[i]` belongs to (i + 1) tenths, with "ok: " ahead where the rest is
// read in silence and "warning: " where it is read with one.
OddCases cutAtEachTenth(const QByteArray& name, OddReader read, const QString& file, const QByteArray& whole,
                        const std::vector<QString>& says);

// The collection's folder holds these bytes under that name; folders on the way are made.
void putFile(const QString& path, const QByteArray& bytes);
