// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

struct UnmixDemand;

// What the headers of a sequence tell of its size.
struct SequenceSize
{
    int images = 0;          // that can be analysed
    qint64 pixels = 0;       // of the largest of them
    qint64 pictureBytes = 0; // to read the largest of the others: photograph, references
    double binning = 1.0;    // of the first of them; 1 where it is not told
    bool hasIsotope = false; // the first of them
};

// Reads the headers of the images among `files`, which contentOfSequence() has told. Images that cannot be read count
// for nothing: who opens the sequence says so. Safe to call from several threads at once.
SequenceSize sizeOfSequence(const QString& strSequence, const QStringList& files);

// Bytes that an unmixing of all images and all pixels holds at its peak, and the program around it. A selection of
// images and a mask leave less; nothing that `spum unmix` takes leaves more.
qint64 unmixMemory(const SequenceSize& size, const UnmixDemand& demand);

// What is free of SystemMemory.
qint64 memoryToBeHad();
