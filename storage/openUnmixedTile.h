// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <functional>
#include <memory>

class CORVDataset;
class CORVSpumKyvo;

// What a tile of the unmixed images opens as.
struct OpenedTile
{
    enum class Kind
    {
        Nothing,   // the dataset could not be made; told in the log
        Composite, // to be shown by the composite window
        Dataset
    };

    OpenedTile();
    OpenedTile(OpenedTile&& other) noexcept;
    OpenedTile& operator=(OpenedTile&& other) noexcept;
    ~OpenedTile();

    Kind kind = Kind::Nothing;
    // Of a map that a host opened, which keeps it; null otherwise.
    CORVDataset* hostDataset = nullptr;
    // Of a map that no host opened, loaded; belongs to whoever asked for it, as a rule to hand it on to the window that
    // shows it. Its images are in memory, so that it stays what it is when the same tile is opened again and the folder
    // gets other files.
    std::unique_ptr<CORVDataset> dataset;
    // In a batch, where the dataset has been saved, with a separator at its end. Empty when it was not; the dataset
    // then lies in the system's temporary directory alone.
    QString savedFolder;
};

// Has a host open the dataset of a click info as its own; null when it did not.
using OpenByHost = std::function<CORVDataset*(const QString& strClickInfo)>;

// Opens a tile of the engine's unmixed images, from 0; with K components each scan spot has K + 1 of them, the last its
// composite. Any other becomes a dataset (CORVSpumKyvo::openUnmixedDataset): modified, as nobody has saved it yet, and
// with the regions of interest of the image in which its component is brightest, measured over the map.
//
// First of all the engine takes over (m_bBatchMode) whether the host has a batch under way. In a batch the dataset is
// saved into a folder of its own below m_strBatchPath, made when it is missing; a folder that cannot be made and a
// dataset that cannot be saved are told in the log, and the dataset is open all the same. Without a batch path there is
// no such folder.
//
// With `open` a host opens the dataset, and the window of its choice may show it before the rest is done to it.
OpenedTile openUnmixedTile(CORVSpumKyvo& engine, int nImgIndex, const OpenByHost& open = {});
