// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QtGlobal>

// The size of an unmixing, as far as its memory depends on it.
struct RunSize
{
    double elements = 0.0;   // of the cube: analysed pixels by images, over all spots
    double pixels = 0.0;     // of an image of the analysis
    double otherBytes = 0.0; // to read its other images: photograph, references
    bool automatic = true;
    bool keepsRaw = false; // a second cube: the images of an isotope before its decay is corrected
};

// Bytes that such a run holds at its peak, and the program around it.
qint64 unmixMemory(const RunSize& size);

// Bytes of this machine, as the system tells them, within the limit of the control group.
struct SystemMemory
{
    // What programs may take beside those that run already: free, or can be freed. Without a word of the system 2 GiB.
    qint64 free = 0;
    // What there is at all, swap included; 0 where the system does not tell.
    qint64 whole = 0;

    static SystemMemory ofThisMachine();
};

// A sentence about a run that takes `lBytes`: empty where they can be had.
QString tooMuchMemoryText(qint64 lBytes, const SystemMemory& memory);
