// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/SequenceGrid.h"

#include "host/CPLClickInfo.h"
#include "platform/orvapi/ChannelInfo.h"
#include "platform/orvapi/ClickInfoKeys.h"
#include "platform/orvapi/ClickInfoValues.h"
#include "platform/orvutils/NumberText.h"

#include <QSet>

#include <algorithm>
#include <cmath>

namespace {

// A light path that no filter is in.
bool isNoFilter(const QString& strFilter)
{
    return strFilter.isEmpty() || strFilter.compare(QLatin1String("Block"), Qt::CaseInsensitive) == 0;
}

QStringList different(const QStringList& texts)
{
    QStringList left = texts;
    left.removeDuplicates();
    std::stable_sort(left.begin(), left.end(), orv::numberAwareLess);
    return left;
}

// Coordinates by value; texts that are no numbers come first, as they are.
QStringList differentNumbers(const QStringList& texts)
{
    QStringList left = texts;
    left.removeDuplicates();
    std::stable_sort(left.begin(), left.end(),
                     [](const QString& a, const QString& b) { return a.toDouble() < b.toDouble(); });
    return left;
}

template <typename Text>
QStringList each(const QVector<TileKey>& keys, Text&& text)
{
    QStringList texts;
    texts.reserve(keys.size());
    for (const TileKey& key : keys) {
        texts.append(text(key));
    }
    return texts;
}

QString filters(const TileKey& key)
{
    if (!key.channel.isEmpty()) {
        return key.channel;
    }
    if (isNoFilter(key.excitation)) {
        return filterText(key.emission);
    }
    return key.emission.isEmpty()
               ? filterText(key.excitation)
               : QStringLiteral("%1 → %2").arg(filterText(key.excitation).remove(" nm"), filterText(key.emission));
}

QString spot(const TileKey& key)
{
    return key.spotX.isEmpty() && key.spotY.isEmpty() ? QString()
                                                      : QStringLiteral("x %1, y %2").arg(key.spotX, key.spotY);
}

QString captionOf(const TileKey& key)
{
    QStringList parts;
    if (key.time) {
        parts.append(clockText(*key.time));
    } else {
        parts.append(filters(key));
        parts.append(spot(key));
    }
    parts.removeAll(QString());
    return parts.isEmpty() ? key.name : parts.join(QStringLiteral("; "));
}

QString descriptionOf(const TileKey& key)
{
    QStringList parts;
    if (!key.channel.isEmpty()) {
        return QStringLiteral("%1: %2").arg(key.emission.toLower(), key.channel);
    }
    if (!isNoFilter(key.excitation)) {
        parts.append(QStringLiteral("excitation %1").arg(filterText(key.excitation)));
    }
    if (!key.emission.isEmpty()) {
        parts.append(QStringLiteral("emission %1").arg(filterText(key.emission)));
    }
    if (!spot(key).isEmpty()) {
        parts.append(QStringLiteral("spot ") + spot(key));
    }
    if (key.time) {
        parts.append(QStringLiteral("time ") + clockText(*key.time));
        parts.append(key.interval.isEmpty() ? QString() : QStringLiteral("interval ") + key.interval);
    }
    parts.removeAll(QString());
    return parts.isEmpty() ? QStringLiteral("image ") + key.name : parts.join(QStringLiteral(", "));
}

} // namespace

QString clockText(double dSeconds)
{
    if (!std::isfinite(dSeconds) || std::abs(dSeconds) > 1e12) {
        return orv::shortestText(dSeconds) + QStringLiteral(" s");
    }
    // Milliseconds, so that 59.9999 does not read as 60 seconds.
    const auto all = static_cast<long long>(std::llround(std::abs(dSeconds) * 1000.0));
    const long long seconds = all / 1000;
    QString text = QStringLiteral("%1:%2:%3")
                       .arg(seconds / 3600, 2, 10, QLatin1Char('0'))
                       .arg(seconds / 60 % 60, 2, 10, QLatin1Char('0'))
                       .arg(seconds % 60, 2, 10, QLatin1Char('0'));
    if (all % 1000 != 0) {
        QString fraction = QStringLiteral(".%1").arg(all % 1000, 3, 10, QLatin1Char('0'));
        while (fraction.endsWith(QLatin1Char('0'))) {
            fraction.chop(1);
        }
        text += fraction;
    }
    return dSeconds < 0.0 && all > 0 ? QLatin1Char('-') + text : text;
}

QString filterText(const QString& strFilter)
{
    if (!strFilter.endsWith(QLatin1String("nm"))) {
        return strFilter;
    }
    return strFilter.chopped(2).trimmed() + QStringLiteral(" nm");
}

TileKey TileKey::of(const CPLClickInfo& info, bool bTemporal, const QString& strName)
{
    const auto luminescent = [&info](const char* pKey) { return clickText(info, ClickKeys::kLuminescentImage, pKey); };
    TileKey key;
    key.excitation = luminescent(ClickKeys::kExcitationFilter);
    key.emission = luminescent(ClickKeys::kEmissionFilter);
    key.spotX = luminescent(ClickKeys::kFLXSpot);
    key.spotY = luminescent(ClickKeys::kFLYSpot);
    key.name = strName;
    if (const auto channel = ChannelInfo::of(info)) {
        key.channel = channel->label(ChannelInfo::numberOf(key.emission));
    }
    if (bTemporal) {
        key.time = clickNumberValue(info, {QString::fromLatin1(ClickKeys::kClickNumber)}, ClickKeys::kKyVoTime);
        key.interval = clickText(info, ClickKeys::kClickNumber, ClickKeys::kKyVoInterval);
    }
    return key;
}

SequenceGrid::SequenceGrid(const QVector<TileKey>& keys, bool bPhotograph) : m_bPhotograph(bPhotograph)
{
    if (bPhotograph) {
        m_tiles.append({QStringLiteral("Photograph"), QStringLiteral("photograph"), 0, 0});
    }
    for (const TileKey& key : keys) {
        m_tiles.append({captionOf(key), descriptionOf(key), 0, 0});
    }
    const auto has = [&keys](auto&& test) { return std::any_of(keys.cbegin(), keys.cend(), test); };
    if (has([](const TileKey& key) { return key.time.has_value(); })) {
        arrangeTimes(keys);
    } else if (has([](const TileKey& key) { return !spot(key).isEmpty(); })) {
        arrangeSpots(keys);
    } else {
        arrangeFilters(keys);
    }
}

// Rows and columns by those of each key. False, and nothing done, when two keys share a cell, when there is one row or
// one column only, or when more than half of the cells would be empty.
bool SequenceGrid::arrange(const QStringList& rowOf, const QStringList& columnOf, const QStringList& rowTitles,
                           const QStringList& columnTitles)
{
    if (rowTitles.size() < 2 || columnTitles.size() < 2 || 2 * rowOf.size() < rowTitles.size() * columnTitles.size()) {
        return false;
    }
    const int first = m_bPhotograph ? 1 : 0;
    QSet<QPair<int, int>> taken;
    QVector<Tile> tiles = m_tiles;
    for (int i = 0; i < rowOf.size(); ++i) {
        Tile& tile = tiles[first + i];
        tile.row = rowTitles.indexOf(rowOf.at(i));
        tile.column = first + columnTitles.indexOf(columnOf.at(i));
        if (taken.contains({tile.row, tile.column})) {
            return false;
        }
        taken.insert({tile.row, tile.column});
    }
    m_tiles = tiles;
    m_rowTitles = rowTitles;
    m_columnTitles = columnTitles;
    if (m_bPhotograph) {
        m_columnTitles.prepend(QStringLiteral("Photograph"));
    }
    return true;
}

void SequenceGrid::arrangeTimes(const QVector<TileKey>& keys)
{
    const QStringList intervals = each(keys, [](const TileKey& key) { return key.interval; });
    QStringList numbers; // within the interval
    for (int i = 0; i < intervals.size(); ++i) {
        numbers.append(QString::number(intervals.mid(0, i + 1).count(intervals.at(i))));
    }
    if (arrange(intervals, numbers, different(intervals), different(numbers))) {
        for (QString& title : m_rowTitles) {
            title = QStringLiteral("Interval %1").arg(title);
        }
        for (int i = m_bPhotograph ? 1 : 0; i < m_columnTitles.size(); ++i) {
            m_columnTitles[i] = QStringLiteral("Image %1").arg(m_columnTitles.at(i));
        }
    }
}

void SequenceGrid::arrangeSpots(const QVector<TileKey>& keys)
{
    const QStringList spots = each(keys, spot);
    const QStringList pairs = each(keys, filters);
    QStringList spotTitles = spots;
    spotTitles.removeDuplicates();
    if (arrange(spots, pairs, spotTitles, different(pairs))) {
        setCaptions(pairs);
        return;
    }
    // One pair of filters: the spots stand as they lie, y upwards.
    const QStringList x = each(keys, [](const TileKey& key) { return key.spotX; });
    const QStringList y = each(keys, [](const TileKey& key) { return key.spotY; });
    QStringList rows = differentNumbers(y);
    std::reverse(rows.begin(), rows.end());
    if (!arrange(y, x, rows, differentNumbers(x))) {
        return;
    }
    setCaptions(spots);
    for (QString& title : m_rowTitles) {
        title = QStringLiteral("y %1").arg(title);
    }
    for (int i = m_bPhotograph ? 1 : 0; i < m_columnTitles.size(); ++i) {
        m_columnTitles[i] = QStringLiteral("x %1").arg(m_columnTitles.at(i));
    }
}

void SequenceGrid::arrangeFilters(const QVector<TileKey>& keys)
{
    const QStringList excitations = each(keys, [](const TileKey& key) { return filterText(key.excitation); });
    const QStringList emissions = each(keys, [](const TileKey& key) { return filterText(key.emission); });
    if (arrange(excitations, emissions, different(excitations), different(emissions))) {
        for (QString& title : m_rowTitles) {
            title = QStringLiteral("Excitation\n%1").arg(title);
        }
        for (int i = m_bPhotograph ? 1 : 0; i < m_columnTitles.size(); ++i) {
            m_columnTitles[i] = QStringLiteral("Emission\n%1").arg(m_columnTitles.at(i));
        }
        setCaptions(each(keys, filters).replaceInStrings(QStringLiteral(" nm"), QString()));
    }
}

// A table tells the rest by its titles.
void SequenceGrid::setCaptions(const QStringList& captions)
{
    for (int i = 0; i < captions.size(); ++i) {
        m_tiles[i + (m_bPhotograph ? 1 : 0)].caption = captions.at(i);
    }
}

int SequenceGrid::rows(int nFlow) const
{
    return isTable() ? m_rowTitles.size() : (count() + std::max(1, nFlow) - 1) / std::max(1, nFlow);
}

int SequenceGrid::columns(int nFlow) const
{
    return isTable() ? m_columnTitles.size() : std::min(count(), std::max(1, nFlow));
}

int SequenceGrid::row(int nTile, int nFlow) const
{
    return isTable() ? m_tiles.at(nTile).row : nTile / std::max(1, nFlow);
}

int SequenceGrid::column(int nTile, int nFlow) const
{
    return isTable() ? m_tiles.at(nTile).column : nTile % std::max(1, nFlow);
}

int SequenceGrid::tileAt(int nRow, int nColumn, int nFlow) const
{
    if (nRow < 0 || nColumn < 0 || nColumn >= columns(nFlow) || nRow >= rows(nFlow)) {
        return -1;
    }
    if (!isTable()) {
        const int tile = nRow * std::max(1, nFlow) + nColumn;
        return tile < count() ? tile : -1;
    }
    for (int i = 0; i < count(); ++i) {
        if (m_tiles.at(i).row == nRow && m_tiles.at(i).column == nColumn) {
            return i;
        }
    }
    return -1;
}

int fittingSide(const SequenceGrid& grid, const QSize& room, const QSize& extra, int nLeast, int nMost, int nOtherwise)
{
    const auto cell = [&](int side) { return extra + QSize(side, side); };
    const auto widthFits = [&](int side) {
        return grid.columns(room.width() / cell(side).width()) * cell(side).width() <= room.width();
    };
    for (int side = nMost; side >= nLeast; --side) {
        if (widthFits(side) && grid.rows(room.width() / cell(side).width()) * cell(side).height() <= room.height()) {
            return side;
        }
    }
    for (int side = nMost; grid.isTable() && side >= nLeast; --side) {
        if (widthFits(side)) {
            return side;
        }
    }
    return nOtherwise;
}
