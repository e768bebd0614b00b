// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/results/ComponentNumber.h"
#include "services/results/NoiseFacts.h"
#include "services/results/RefinementFacts.h"
#include "services/results/TruthComparison.h"
#include "services/warnings/RunWarning.h"

#include <QJsonObject>
#include <QList>
#include <QPair>
#include <QString>

#include <optional>

class CORVSpumKyvo;
struct ResultNumbers;

// What there is to tell of one component of a result.
struct ComponentFacts
{
    QString name;
    QString color;
    QString map;                     // name of its map's file, of a scan that of the first spot
    QString errorMap;                // that of its standard errors, likewise; empty without
    double share = 0.0;              // of the signal, 0 to 1
    double maximum = 0.0;            // of its map
    std::optional<QString> highPass; // of an automatic run, where it was bound
    std::optional<bool> locked;      // of an automatic run
    // Where it is known: of the map in a pixel, in its unit; times that the noise is larger than of a fit of this
    // spectrum alone; cosine of the resolved spectrum with the known one of its name.
    std::optional<double> standardError;
    std::optional<double> amplification;
    std::optional<double> knownCosine;
    TrueComparison truth;
};

// How an automatic run went.
struct AutomaticFacts
{
    int iterations = 0;
    QString ending;
    double lackOfFit = 0.0; // percent
    double lackOfFitDenoised = 0.0;
    int rank = 0;
    double principalLackOfFit = 0.0; // percent: of as many principal components as stand above the noise; 0: unknown
    bool decayCorrected = false;
    QString isotope;
    double halfLifeSeconds = 0.0;
};

// What there is to tell of a result, for every form in which it is told: resultJson(), resultCsv(), resultText() and
// the report. A number that cannot be had is no number (NaN).
struct ResultFacts
{
    QString sequence; // its id
    QString run;      // name of the folder of results
    QString method;   // as an option
    QString unit;     // as shown
    int images = 0;
    int width = 0;
    int height = 0;
    int binning = 0;
    long long pixels = 0;                   // analysed, of a spot
    int spots = 1;                          // of a scan
    std::optional<double> pixelMicrometres; // side of a map's pixels in the object, where it is known
    double residual = 0.0;                  // of the data's norm
    double explainedVariance = 0.0;         // percent
    double seconds = 0.0;                   // of the run
    QList<ComponentFacts> components;
    QList<QPair<QString, QString>> properties;
    std::optional<AutomaticFacts> automatic;
    std::optional<double> maskLight;           // part of the images' light that lies inside the mask, 0 to 1
    std::optional<double> condition;           // of the spectra, each scaled to length 1
    ComponentNumber above;                     // the noise; none of a result that was loaded
    std::optional<NoiseFacts> noise;           // of a fit with weights, or standard errors
    std::optional<RefinementFacts> refinement; // of a resolution by number that was refined
    QList<RunWarning> warnings;
    QJsonObject provenance; // empty where it is not known

    bool hasTruth() const;
    // Whether a component has another name than its true one.
    bool isRenamed() const;
    bool hasHighPass() const;
    bool hasKnownCosine() const;
};

// Those of the engine's present result.
ResultFacts factsOfResult(const CORVSpumKyvo& engine, const ResultNumbers& numbers);

// Name of a component as part of a file name: letters, digits, dot and dash stay, blanks become "_", the rest goes. A
// long name is cut.
QString resultFileName(const QString& strLabel);
// Name of the file of a component's map without its ending; the number in front keeps two components of one name apart.
QString resultMapName(int nComponent, const QString& strLabel, int nSpot, int nSpots);
// The same of the map of its standard errors.
QString resultErrorMapName(int nComponent, const QString& strLabel, int nSpot, int nSpots);
// Name of the file with all maps in one.
inline const char* const allMapsName = "maps.ome.tif";
// What the components leave of the images.
inline const char* const residualMapName = "residual.tif";
