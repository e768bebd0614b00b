// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

#include <optional>

class CORVSpumKyvo;
class JobMonitor;

// An export that is done.
struct ExportedMaps
{
    QString folder;    // of the new sequence
    QString id;        // of the new sequence
    QStringList names; // of the datasets' folders inside it, in the order of the maps
};

// Exports the maps of an engine's result as a sequence in the folder `strOutFolder`, whose parent must exist: of all
// components, or at several scan spots of the component with that number (from 1; without one the user is asked, by way
// of CORVInputDialog). The datasets are made where openUnmixedDataset() makes them and moved; each gets a click number,
// the binning of its map, the component's name and the regions of interest of its source, measured over the map. When
// no map has a photograph, the first gets that of the sequence. `bForce` replaces an earlier sequence that holds no
// saved results. Throws Failure, and the folder is as it was, when there is no result, no component is chosen, or
// anything cannot be written, or the monitor (may be null) asks to stop.
ExportedMaps exportResult(CORVSpumKyvo& engine, std::optional<int> component, const QString& strOutFolder,
                          bool bForce = false, JobMonitor* pMonitor = nullptr);
