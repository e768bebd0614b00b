// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CPLClickInfo.h"
#include "host/orv_types.h"
#include "workbench/simulator/FilterPlan.h"
#include "workbench/simulator/ScanSpots.h"

#include <QDateTime>
#include <QList>
#include <QString>

struct SimulationOptions;

// One image of the sequence: its filters, light, exposure and place in time, and its scan spot.
struct Band
{
    FilterPair filters{0, 0};
    double exposureSeconds = 1.0;
    double irradiance = 0.0;        // uW/cm^2 on the animal; 0 without excitation
    double referenceRadiance = 0.0; // p/s/cm^2/sr that a white diffuser sends back under that irradiance; of a scan
                                    // what the brightest pixel of the transmitted reference does
    double photonsPerCount = 0.0;   // photons through the lens for a count, at the emission filter's centre
    int binning = 1;
    QString clickNumber;
    QDateTime start;              // UTC
    double timeSeconds = 0.0;     // from the first image's start, or from the injection, to this one's start
    double decayCorrection = 1.0; // what the isotope's light in this image is to be multiplied by for the first start
    QString spotX;                // of a scan: coordinates of the spot
    QString spotY;
    QString kyvoTime; // of a temporal sequence whose images tell their times
    QString kyvoInterval;
    QString firstKey; // what the image is known by: excitation and emission, or interval and time
    QString secondKey;
};

// The camera and lens as its calibration knows them; all figures are those of a plausible cooled camera, not of a
// product.
namespace CameraFigures {

constexpr double kFNumber = 2.0;
constexpr double kLensSolidAngle = 0.0216; // sr at f/1: an aperture of 50 mm at 301 mm
constexpr double kTransmission = 0.70;     // of lens and filter

// Electrons a photon on the sensor: a back-illuminated, cooled sensor.
double quantumEfficiency(double nm);
// Excitation light on the animal in uW/cm^2: a filtered lamp.
double irradiance(double nm);

} // namespace CameraFigures

// The images of a sequence in order of acquisition: all pairs, or times, and in a scan all pairs of the first spot,
// then those of the next. Five seconds lie between them for filters and read-out, unless the kind has times of its own.
// Options must be valid; `strPrefix` begins the click numbers.
QList<Band> planBands(const SimulationOptions& options, const QList<FilterPair>& pairs, const QString& strPrefix,
                      const QList<ScanSpot>& spots = {});

// The click info of a band's image at the binning given, as the sequence stores it: everything but the section of the
// photograph. `strProbes` is the text of the entry "Probe".
CPLClickInfo describeBand(const SimulationOptions& options, const Band& band, int binning, const QString& strProbes);

// What a count of the band, at the analysis' binning, is in the unit; as a dataset of that click info converts it. 0
// when it can't.
double unitOfCount(const SimulationOptions& options, const Band& band, tag_edisplayunit eUnit);

// A number as the files hold it: it reads back as the same double.
QString exactText(double value);
