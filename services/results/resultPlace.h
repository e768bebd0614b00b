// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// Where the results of a command go.
struct ResultPlace
{
    QString folder;
    QString remark; // a line for the user, where that is not where he would look; else empty
};

// `strAsked`, or where that is empty the folder `strDefaultName` in the sequence's, or, where nothing can be written
// there (a disk that is read-only, a folder of somebody else), "NAME-of-the-sequence-DEFAULT" in the working folder.
ResultPlace resultPlace(const QString& strAsked, const QString& strSequenceFolder, const QString& strDefaultName);

// Whether a file could be made in that folder.
bool canBeWritten(const QString& strFolder);
