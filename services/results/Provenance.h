// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/session/AnalysedFiles.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>

class CORVSequenceDataset;
class CORVSpumKyvo;

// Where a result comes from: what makes it again, and tells what has changed since. In "summary.json" it is the object
// "provenance", whose every key docs/json.md has.
struct Provenance
{
    QStringList command;   // as given, the program's name first; empty for a result of a window
    QStringList arguments; // its options with absolute files, which make the result again; of "spum unmix" alone
    QJsonObject options;   // as resolved
    QString sequence;      // its folder, absolute
    QString sequenceId;
    QList<AnalysedFile> files;
    QJsonArray corrections; // an object an analysed image that an import has subtracted something from
    QString library;        // file of the spectra, absolute; empty without one
    QString librarySha1;
    QString maskFile; // absolute; empty where the mask comes from no file
    QString maskFileSha1;
    QString maskSha1; // of the pixels that were analysed, see maskHash()
    QDateTime started;
    QDateTime finished;

    // With the program, the host and the folder of the process. Times and these two alone differ between two runs of
    // the same; they stand together in "made".
    QJsonObject json() const;
};

// What an engine that has run tells of its origin: sequence, options as resolved, mask. The sequence's files and the
// times are still to be set.
Provenance provenanceOf(const CORVSequenceDataset& sequence, const CORVSpumKyvo& engine);

// Of the mask's pixels, row by row, a byte each: 255 where a pixel was analysed, else 0.
QString maskHash(const CORVSpumKyvo& engine);

// A summary without what tells times and places (the command names the folder of the results): of two runs of the
// same thing the same.
QJsonObject lastingSummary(QJsonObject summary);
