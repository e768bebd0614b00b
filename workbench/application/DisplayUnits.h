// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/orv_types.h"

#include <QList>
#include <QString>
#include <QVector>

class CORVDataset;

// A unit as a window offers it.
struct UnitOffer
{
    tag_edisplayunit unit = DISPLAYUNIT_COUNTS;
    QString text;     // "Radiant Efficiency"
    QString quantity; // "(p/s/cm²/sr) / (µW/cm²)"
    QString reason;   // why it cannot be had; empty when it can
};

// All units, in the order of their numbers. One can be had when a dataset has it; else the reason is that of the first.
QVector<UnitOffer> unitOffers(const QList<CORVDataset*>& datasets);

// The unit to start with, of those that can be had: that in which the data are stored, else the calibrated one that
// takes most off, which is radiant efficiency for fluorescence and radiance without. Counts when none can be had.
tag_edisplayunit startUnit(const QVector<UnitOffer>& offers, bool bFluorescence);
