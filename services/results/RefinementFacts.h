// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QJsonObject>
#include <QString>

#include <optional>

// What a resolution by number alone went through after the engine's own answer.
struct RefinementFacts
{
    int rounds = 0;
    bool independent = false;     // the spectra are those of the amounts that depend on each other least
    bool enclosing = false;       // the spectra are those whose mixtures hold all pixels, none of which is pure
    std::optional<double> offset; // of the camera, taken off all images; in their unit

    QJsonObject json() const;
    // A sentence without its full stop.
    QString text() const;
};
