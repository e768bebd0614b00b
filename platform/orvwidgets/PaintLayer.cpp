// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvwidgets/PaintLayer.h"

#include "platform/orvwidgets/PaintMasks.h"

#include <QPainter>

namespace orvwidgets {

namespace {

constexpr int kAlpha = 150;

// True when something is painted in that part of the tile.
bool renderTile(QImage& tile, const QPoint& origin, const PaintMasks& masks, const QRect& part)
{
    bool bPainted = false;
    for (int y = part.top(); y <= part.bottom(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(tile.scanLine(y - origin.y()));
        for (int x = part.left(); x <= part.right(); ++x) {
            const auto color = masks.colorAt(y * masks.size().width() + x);
            bPainted = bPainted || color.has_value();
            line[x - origin.x()] =
                color ? qPremultiply(qRgba(qRed(*color), qGreen(*color), qBlue(*color), kAlpha)) : 0U;
        }
    }
    return bPainted;
}

} // namespace

void PaintLayer::update(const PaintMasks& masks, const QRect& changed)
{
    const QRect part = changed.intersected(masks.all());
    if (part.isEmpty()) {
        return;
    }
    for (int row = part.top() / kTile; row <= part.bottom() / kTile; ++row) {
        for (int column = part.left() / kTile; column <= part.right() / kTile; ++column) {
            const QRect square(column * kTile, row * kTile, kTile, kTile);
            const auto key = std::make_pair(row, column);
            auto found = m_tiles.find(key);
            const bool bNew = found == m_tiles.end();
            if (bNew) {
                QImage tile(kTile, kTile, QImage::Format_ARGB32_Premultiplied);
                tile.fill(0);
                found = m_tiles.emplace(key, tile).first;
            }
            if (!renderTile(found->second, square.topLeft(), masks, square.intersected(part)) && bNew) {
                m_tiles.erase(found);
            }
        }
    }
}

void PaintLayer::draw(QPainter& painter) const
{
    painter.setRenderHint(QPainter::SmoothPixmapTransform, false);
    for (const auto& [place, tile] : m_tiles) {
        painter.drawImage(QPoint(place.second * kTile, place.first * kTile), tile);
    }
}

} // namespace orvwidgets
