// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

class CILImage;
class CPLClickInfo;

// How maps are shown.
struct ExportDisplay
{
    bool reversed = false;
    bool logScale = false;
    QString colorTable; // by name
    int opacity = 100;  // percent
};

// What the click info of a map says besides what its source says.
struct ExportClickFacts
{
    QString sequenceId;  // of the sequence that was unmixed
    QString label;       // of the map's dataset
    QString unit;        // of the map's pixels, as click infos name it
    QString version;     // of the application
    QString buildDate;   // of the program
    int clickNumber = 0; // 1 and up by scan spot; 0 when there is no choice of spots
    QString spotX;       // of the scan spot; empty without one
    QString spotY;
    bool backgroundSubtracted = false; // of the source
    bool flatFieldCorrected = false;
    bool fluorescentBackgroundSubtracted = false;
    ExportDisplay display;
    // Take the source's entries over; without, a section holds what is said here alone.
    bool merge = true;
    // Keep the source's click number and folder.
    bool keepInfo = false;
};

// Appends the seven sections of a map's click info to `out`: "ClickNumber", "User Input", "Analysis User Input",
// "luminescent image", "User Label Name Set", "photographic image", "Graph Controls", in this order, each with the name
// of the source's section. Min and max of the map are those of its last RefreshImageStats().
void exportClickInfo(const CPLClickInfo& source, const CILImage& map, const ExportClickFacts& facts, CPLClickInfo& out);
