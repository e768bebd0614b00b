// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// What is in front while the palette is off.
struct PaletteFacts
{
    bool anythingOpen = false;
    bool sequenceInFront = false;
    QString name; // of the sequence or the image in front
    int images = 0;
    bool analysable = false; // as the host or the tool found, or a temporal sequence
    QString tab;             // the current one of the sequence's window
    bool running = false;
    QString lastComplaint; // of the log, since the tool was told what is in front; empty for none
};

// Why the palette is off and what to do, for the user, in one or two sentences of plain text.
QString paletteReason(const PaletteFacts& facts);
