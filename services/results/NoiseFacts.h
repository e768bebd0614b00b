// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QJsonObject>
#include <QString>

#include <limits>
#include <optional>

// What the noise was taken for by a fit with weights or by its standard errors.
struct NoiseFacts
{
    QString model;                           // "poisson", "gaussian", "uniform"
    std::optional<double> electronsPerCount; // of counted light in a unit that counts can be had in
    std::optional<double> readNoise;         // electrons a stored pixel
    bool estimated = false;                  // one of them, from what the fit leaves
    bool resolved = false;                   // spectra that were resolved from the same images
    // Root mean square of what the fit leaves, over the noise: 1 where noise is all. NaN where the noise's size is
    // itself taken from what is left.
    double residualOverNoise = std::numeric_limits<double>::quiet_NaN();

    QJsonObject json() const;
    // A sentence without its full stop.
    QString text() const;
    // Some words: "Poisson, 1 e a count, read noise 10 e".
    QString label() const;

private:
    QString modelLabel() const;
    // Whether the estimate is no number of electrons: the noise does not grow with the light.
    bool hidesLight() const;
};
