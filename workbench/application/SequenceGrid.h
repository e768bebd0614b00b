// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSize>
#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

class CPLClickInfo;

// What tells one image of a sequence from the others. Filters and spots are texts as the instrument wrote them; what an
// image lacks is empty.
struct TileKey
{
    QString excitation;
    QString emission;
    QString spotX;
    QString spotY;
    QString channel; // what is known of a numbered channel; empty for filters
    QString interval;
    std::optional<double> time; // s
    QString name;               // click number, for an image that nothing else tells from others

    // Times count only in a sequence of times.
    static TileKey of(const CPLClickInfo& info, bool bTemporal, const QString& strName);
};

// Where the thumbnails of a sequence stand. Where filters (excitation by emission), intervals of time or the spots of a
// scan make a table that is at least half full, it is that, with titles for rows and columns; else the tiles follow one
// another in sequence order. The photograph comes first: in a table in a column of its own, at the top.
class SequenceGrid
{
public:
    SequenceGrid() = default;
    SequenceGrid(const QVector<TileKey>& keys, bool bPhotograph);

    // Tiles, the photograph included.
    int count() const { return m_tiles.size(); }
    // Index of a tile's key; -1 for the photograph.
    int keyOf(int nTile) const { return nTile - (m_bPhotograph ? 1 : 0); }
    // Under the thumbnail: "675 → 720 nm", "00:01:30".
    const QString& caption(int nTile) const { return m_tiles.at(nTile).caption; }
    // For tool tips and assistive tools: "excitation 675 nm, emission 720 nm".
    const QString& description(int nTile) const { return m_tiles.at(nTile).description; }

    bool isTable() const { return !m_columnTitles.isEmpty(); }
    // Empty unless it is a table.
    const QStringList& rowTitles() const { return m_rowTitles; }
    const QStringList& columnTitles() const { return m_columnTitles; }

    // Without a table the tiles lie `nFlow` (1 at least) a row.
    int rows(int nFlow) const;
    int columns(int nFlow) const;
    int row(int nTile, int nFlow) const;
    int column(int nTile, int nFlow) const;
    // -1 where there is none.
    int tileAt(int nRow, int nColumn, int nFlow) const;

private:
    struct Tile
    {
        QString caption;
        QString description;
        int row = 0;
        int column = 0;
    };
    bool arrange(const QStringList& rowOf, const QStringList& columnOf, const QStringList& rowTitles,
                 const QStringList& columnTitles);
    void setCaptions(const QStringList& captions);
    void arrangeTimes(const QVector<TileKey>& keys);
    void arrangeSpots(const QVector<TileKey>& keys);
    void arrangeFilters(const QVector<TileKey>& keys);

    QVector<Tile> m_tiles;
    QStringList m_rowTitles;
    QStringList m_columnTitles;
    bool m_bPhotograph = false;
};

// The largest side of a thumbnail, from `nLeast` to `nMost`, at which all of the grid finds room; a cell takes `extra`
// more than its thumbnail. Where even the smallest do not: of a table the largest at which its columns do, else
// `nOtherwise`.
int fittingSide(const SequenceGrid& grid, const QSize& room, const QSize& extra, int nLeast, int nMost, int nOtherwise);

// "00:01:30", with hours beyond a day and with the fraction of a second where there is one.
QString clockText(double dSeconds);
// "675 nm" for "675nm"; other texts as they are.
QString filterText(const QString& strFilter);
