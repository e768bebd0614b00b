// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "workbench/simulator/BandPlan.h"

#include <QList>
#include <QString>

struct SceneModel;
struct SimulationOptions;

// Writes the truth of a simulation: in `strFolder` (with its separator at the end) a folder for each unit ("counts",
// "radiance", "radiant-efficiency", "efficiency") with
//
//     spectra.csv   effective spectra in that unit, the largest value of each 1, as a spectrum library with 17 digits
//     <name>.tif    a component's map in that unit as floats, at the analysis' binning
//
// so that the data in the unit, without noise, are the sum of map times spectrum. Units that the sequence does not have
// are left out. In place of a spectrum stands the course over time of a temporal sequence, with interval and time in
// its first two columns; a scan of several spots has a map "<name>_spot1.tif" and so on for each. A Cherenkov sequence
// has the folders "counts-decay-corrected" and "radiance-decay-corrected" besides, for data corrected with the
// isotope's half life. False with a sentence that names the file.
bool writeTruth(const QString& strFolder, const SceneModel& model, const SimulationOptions& options,
                const QList<Band>& bands, QString* pError);
