// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvwidgets/TileGrid.h"

#include <algorithm>
#include <cmath>

namespace orvwidgets {

namespace {

constexpr int kSpotSuffix = 4; // "_001"

// The spot that a label tells, counted from 1; 0 for none.
int spotOf(const QString& label)
{
    const QString suffix = label.right(kSpotSuffix);
    if (suffix.size() < kSpotSuffix || suffix.front() != QLatin1Char('_')) {
        return 0;
    }
    const auto isDigit = [](QChar c) { return c >= QLatin1Char('0') && c <= QLatin1Char('9'); };
    return std::all_of(suffix.begin() + 1, suffix.end(), isDigit) ? suffix.midRef(1).toInt() : 0;
}

} // namespace

TileGrid::TileGrid(int count, int perRow, const QSizeF& picture) : m_nCount(std::max(0, count))
{
    m_nColumns = perRow > 0 ? std::min(perRow, m_nCount) : static_cast<int>(std::ceil(std::sqrt(m_nCount)));
    const QSizeF shape = picture.isEmpty() ? QSizeF(1.0, 1.0) : picture;
    m_tile = shape * (kLongSide / std::max(shape.width(), shape.height()));
}

int TileGrid::rows() const
{
    return m_nColumns > 0 ? (m_nCount + m_nColumns - 1) / m_nColumns : 0;
}

QSizeF TileGrid::size() const
{
    if (m_nCount == 0) {
        return {};
    }
    return {m_nColumns * (m_tile.width() + kGap) + kGap, rows() * (m_tile.height() + kGap) + kGap};
}

QRectF TileGrid::tile(int nIndex) const
{
    if (nIndex < 0 || nIndex >= m_nCount) {
        return {};
    }
    const int row = nIndex / m_nColumns;
    const int column = nIndex % m_nColumns;
    return {QPointF(kGap + column * (m_tile.width() + kGap), kGap + row * (m_tile.height() + kGap)), m_tile};
}

int TileGrid::tileAt(const QPointF& point) const
{
    if (m_nCount == 0 || point.x() < 0.0 || point.y() < 0.0) {
        return -1;
    }
    const int column = static_cast<int>(point.x() / (m_tile.width() + kGap));
    const int row = static_cast<int>(point.y() / (m_tile.height() + kGap));
    const int index = row * m_nColumns + column;
    return column < m_nColumns && index < m_nCount && tile(index).contains(point) ? index : -1;
}

int tilesPerSpot(const QStringList& labels)
{
    const auto spots = labels.isEmpty() ? 0 : spotOf(labels.last());
    if (spots < 1 || labels.size() % spots != 0) {
        return 0;
    }
    const int perSpot = labels.size() / spots;
    for (int i = 0; i < labels.size(); ++i) {
        if (spotOf(labels[i]) != i / perSpot + 1) {
            return 0;
        }
    }
    return perSpot;
}

QRectF pictureInTile(const QRectF& tile, const QSizeF& picture, double dScale)
{
    if (picture.isEmpty() || tile.isEmpty()) {
        return {};
    }
    const QSizeF size = picture.scaled(tile.size(), Qt::KeepAspectRatio) * std::clamp(dScale, 0.0, 1.0);
    return {tile.center() - QPointF(size.width() / 2.0, size.height() / 2.0), size};
}

} // namespace orvwidgets
