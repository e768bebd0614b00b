// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "spectra/KeyPair.h"

#include <QString>

// What is selected of a library, as far as it decides whether it can be taken.
struct LibraryChoice
{
    bool anyLibrary = true;     // there is one to choose from
    bool multiSelect = true;    // false where one spectrum is imported
    bool appendOffered = false; // the spectra may also be added to those that there are
    int selected = 0;
    bool covered = true; // each of them has a value for every image of the analysis
    QString uncovered;   // the name of the first that has not
    KeyPair missing;     // and the image that it has none for
};

// Of several spectra two are needed where they can be appended, else one; an import takes exactly one. All of them must
// have a value for every image.
bool canBeTaken(const LibraryChoice& choice);

// What the user can do about a choice that cannot be taken; empty for one that can.
QString choiceHint(const LibraryChoice& choice);
