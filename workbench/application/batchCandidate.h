// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

// Filters that the spectra of a batch have values for, a pair an image; none where that is not known.
struct BatchBands
{
    QStringList excitation;
    QStringList emission;
};

// A folder that may be a sequence of a batch, as its info files tell; no image is read.
struct BatchCandidate
{
    QString folder;
    QString name;
    int images = 0;
    QString reason; // why it cannot be analysed; empty when it can
    bool isUsable() const { return reason.isEmpty(); }
};

// What can be seen of a folder from outside, to be unmixed with spectra that have values for those bands.
BatchCandidate batchCandidate(const QString& strFolder, const BatchBands& bands = BatchBands());

// The sequences that a folder stands for: itself, or those that lie in it, by name. A folder without any stands for
// itself, so that it is told why it cannot be analysed.
QStringList sequencesIn(const QString& strFolder);
