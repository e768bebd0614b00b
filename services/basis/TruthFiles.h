// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/orv_types.h"

#include <QString>

// Where the truth of a simulation lies within its folder.

// Name of the folder of a unit's truth.
QString truthUnitFolder(tag_edisplayunit eUnit);
// The same for data corrected for decay.
QString truthDecayFolder(tag_edisplayunit eUnit);
// Name of the file of a component's map: its name, characters that a file name should not have replaced by "_".
QString truthMapFile(const QString& strComponent);
// The same of a spot of a scan, from 0.
QString truthMapFile(const QString& strComponent, int nSpot);
