// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CORVDatabase.h"

#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

struct IsotopeRecord
{
    QString name;
    double halfLifeSec = 0.0;
    bool cherenkov = false;
};

// The reference tables of one folder, or of several of which a later one adds to the earlier: its entry of the same
// name wins.
struct ReferenceTables
{
    QMap<QString, sSourceSpecFileParameters> luminescentSources;
    QMap<QString, sSourceSpecFileParameters> librarySources;
    QMap<QString, sSourceSpecFileParameters> radioactiveSources;
    QMap<QString, sTissuePropFileParameters> tissues;
    QMap<QString, sColorSensorRGBspecFileParameters> colorResponses;
    QList<IsotopeRecord> isotopes;  // names differ without regard to case
    QList<sProbeParameters> probes; // likewise
    QStringList problems;

    // Adds the folder's tables. A row that cannot be read is left out and told in `problems` with file and line. A
    // table that is not there is told when `bExpected`.
    void addFolder(const QString& strFolder, bool bExpected);
};
