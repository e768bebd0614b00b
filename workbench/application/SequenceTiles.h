// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "workbench/application/SequenceGrid.h"

#include <QList>
#include <QString>
#include <QVector>

class CORVDataset;
class CORVSequenceDataset;

// The images of a sequence that a table of thumbnails shows, in sequence order: the datasets, those that could not be
// opened among them, and ahead of all the photograph when there is one.
class SequenceTiles
{
public:
    struct Tile
    {
        CORVDataset* dataset = nullptr; // borrowed from the sequence; null for one that could not be opened
        bool photograph = false;
        QString reason; // why it could not be opened
    };

    SequenceTiles() = default;
    explicit SequenceTiles(const CORVSequenceDataset& sequence);

    int count() const { return m_tiles.size(); }
    const Tile& tile(int nTile) const { return m_tiles.at(nTile); }
    const SequenceGrid& grid() const { return m_grid; }
    QList<CORVDataset*> datasets() const; // those that could be opened

private:
    QVector<Tile> m_tiles;
    SequenceGrid m_grid;
};
