// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <cstdint>

// What is simulated: an epi-fluorescence sequence of a mouse.
struct SimulationOptions
{
    int size = 256; // pixels along a side at the binning below
    int bands = 18; // filter pairs, an image each
    // Probes by their names in the reference data (other names in use will do). Each lies at one depth below the skin;
    // a single depth serves for all, none means 2 mm for the first to 6 mm for the last.
    QStringList probes{QStringLiteral("AlexaFluor 750"), QStringLiteral("AlexaFluor 790")};
    QList<double> depthsMm;
    QList<int> excitationsNm; // centres of the excitation filters; empty: chosen after the probes
    // Peak of each probe over the tissue's autofluorescence at the same pixel, in the band where the probe is
    // brightest.
    double ratio = 3.0;
    // The same for food in the gut; 0 leaves it out.
    double foodRatio = 1.5;

    bool noise = true; // false: expected counts as floats, without noise, offset, rounding and saturation
    std::uint64_t seed = 1;
    double peakElectrons = 20000.0; // expectation at the brightest pixel of the sequence
    int binning = 4;
    bool mixedBinning = false;           // the first two images at twice the binning
    double gain = 1.0;                   // electrons a count
    double readNoise = 10.0;             // electrons, standard deviation a stored pixel
    double offset = 300.0;               // counts a stored pixel
    QList<double> exposuresSeconds{1.0}; // one for all bands, or one each

    QString name; // of the sequence; empty: the target folder's
    QString subject = QStringLiteral("Mouse");
    bool force = false; // replace a sequence that exists
};

// An empty text when the options can be simulated, else one sentence that says what is wrong and what to do. Asks the
// reference data for the probes.
QString validate(const SimulationOptions& options);

// The depth of probe `index`, by the rule above; options must be valid.
double probeDepthMm(const SimulationOptions& options, int index);
// Seconds of band `index`; options must be valid.
double bandExposureSeconds(const SimulationOptions& options, int index);
