// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>
#include <QRect>

#include <map>
#include <utility>

class QPainter;

namespace orvwidgets {

class PaintMasks;

// The picture of painted regions, half transparent, in tiles: a stroke changes the few tiles under it, and only these
// go to OpenGL again.
class PaintLayer
{
public:
    static constexpr int kTile = 128; // pixels

    void clear() { m_tiles.clear(); }
    // Renders that part anew.
    void update(const PaintMasks& masks, const QRect& changed);
    // With a painter whose unit is a pixel of the picture.
    void draw(QPainter& painter) const;
    std::size_t tileCount() const { return m_tiles.size(); }

private:
    std::map<std::pair<int, int>, QImage> m_tiles; // by row and column
};

} // namespace orvwidgets
