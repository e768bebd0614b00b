// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <QStringList>

namespace orvwidgets {

// Tiles of one size in rows, in order, with gaps between and around them. Units of its own, y downwards from the upper
// left.
class TileGrid
{
public:
    static constexpr double kLongSide = 100.0; // of a tile
    static constexpr double kGap = 3.0;

    TileGrid() = default;
    // `count` tiles of the aspect of `picture` (a square without one), `perRow` a row; a near-square grid for 0.
    TileGrid(int count, int perRow, const QSizeF& picture);

    int count() const { return m_nCount; }
    int columns() const { return m_nColumns; }
    int rows() const;
    QSizeF size() const; // empty without tiles
    QRectF tile(int nIndex) const;
    int tileAt(const QPointF& point) const; // -1 in a gap and beside the tiles

private:
    int m_nCount = 0;
    int m_nColumns = 0;
    QSizeF m_tile;
};

// Tiles a row for images of several spots, whose labels end in "_" and the three digits of the spot, "001" first, with
// as many for each; 0 when the labels are not of that kind.
int tilesPerSpot(const QStringList& labels);

// `picture` scaled into `tile` with its aspect kept, in its middle; `dScale` is the part of the tile that it fills.
QRectF pictureInTile(const QRectF& tile, const QSizeF& picture, double dScale);

} // namespace orvwidgets
