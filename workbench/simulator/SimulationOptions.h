// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "workbench/simulator/SimulationKind.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <cstdint>

// What is simulated: a sequence of a mouse, of one of several kinds. The defaults are those of the first kind; see
// standard().
struct SimulationOptions
{
    SimulationKind kind = SimulationKind::Epi;
    int size = 256; // pixels along a side at the binning below
    int bands = 18; // filter pairs, an image each (in a scan: for each spot); not for a temporal sequence
    // Probes by their names in the reference data (other names in use will do): dyes, or luciferases in a luminescent
    // sequence. In a temporal sequence one is the tracer of three organs, several are tracers in places of their own.
    QStringList probes{QStringLiteral("AlexaFluor 750"), QStringLiteral("AlexaFluor 790")};
    // Each source lies at one depth below the skin; a single depth serves for all, none means 2 mm for the first to 6
    // mm for the last, or the organs' own. The isotope lies at each depth given, as a source of its own.
    QList<double> depthsMm;
    QList<int> excitationsNm; // centres of the excitation filters; empty: chosen after the probes
    // Peak of each probe over the tissue's autofluorescence at the same pixel, in the band where the probe is
    // brightest.
    double ratio = 3.0;
    // The same for food in the gut; 0 leaves it out. Epi and transillumination only.
    double foodRatio = 1.5;

    int spots = 4;                            // of a transillumination scan
    QList<double> timesSeconds;               // of a temporal sequence; empty: chosen
    bool timeKeys = true;                     // whether its images tell their times
    QString isotope = QStringLiteral("F-18"); // of a Cherenkov sequence
    double spanHalfLives = 1.0;               // from its first image's start to the last one's
    bool full = false;                        // every image, flag and section that a dataset can have

    bool noise = true; // false: expected counts as floats, without noise, offset, rounding and saturation
    std::uint64_t seed = 1;
    double peakElectrons = 20000.0; // expectation at the brightest pixel of the sequence
    int binning = 4;
    bool mixedBinning = false;           // the first two images at twice the binning
    double gain = 1.0;                   // electrons a count
    double readNoise = 10.0;             // electrons, standard deviation a stored pixel
    double offset = 300.0;               // counts a stored pixel
    QList<double> exposuresSeconds{1.0}; // one for all bands, or one each; of a Cherenkov sequence none: chosen

    QString name; // of the sequence; empty: the target folder's
    QString subject = QStringLiteral("Mouse");
    bool force = false;          // replace a sequence that exists
    bool discardResults = false; // even when it holds saved results

    // The defaults of a kind.
    static SimulationOptions standard(SimulationKind eKind);
};

// The times of a temporal sequence, given or chosen, in seconds.
QList<double> timesOf(const SimulationOptions& options);
// Images of a scan spot, or of the sequence where it has none.
int bandCount(const SimulationOptions& options);
// Seconds from image to image of a Cherenkov sequence.
double bandStepSeconds(const SimulationOptions& options);
// Seconds of band `index`; options must be valid.
double bandExposureSeconds(const SimulationOptions& options, int index);
