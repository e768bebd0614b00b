// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

class CORVSequenceDataset;

// The unit in which the engine's ladder will end for a selection of images, told without reading a pixel.
struct UnitForecast
{
    int unit = -1; // -1: no unit can be had
    // Why the units ahead of it were refused, a sentence each with the image concerned; a unit beyond the host's limit
    // needs no reason.
    QStringList refusals;
};

// Walks the same ladder as the building of the cube, over the datasets of those click numbers, within the host's
// present limit of units.
UnitForecast forecastUnit(const CORVSequenceDataset& sequence, const QStringList& clickNumbers);
