// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>

#include <map>
#include <vector>

// A TIFF file byte by byte, so that everything in it can be wrong. As it begins: 32 x 32 pixels of 16 bits that count
// from 0, in strips of four rows, behind the directory.
class OddTiff
{
public:
    enum Type
    {
        Ascii = 2,
        Short = 3,
        Long = 4,
        Long8 = 16
    };
    enum Tag
    {
        Width = 256,
        Height = 257,
        Bits = 258,
        Compression = 259,
        Photometric = 262,
        Description = 270,
        Offsets = 273,
        Samples = 277,
        RowsPerStrip = 278,
        ByteCounts = 279,
        PageName = 285,
        TileWidth = 322,
        TileHeight = 323,
        TileOffsets = 324,
        TileByteCounts = 325,
        SampleFormat = 339
    };

    OddTiff();

    OddTiff& big(); // BigTIFF
    OddTiff& motorola();
    OddTiff& tiled(); // four tiles of 16 x 16
    OddTiff& deflated();
    OddTiff& directoryLast();
    OddTiff& set(int tag, Type type, const std::vector<quint64>& values);
    OddTiff& setText(int tag, const QByteArray& text);
    // An entry that claims `count` values at that place of the file, whatever is there.
    OddTiff& claim(int tag, Type type, quint64 count, quint64 offset);
    OddTiff& remove(int tag);
    // Where the directory says that the next one lies; 0 for none.
    OddTiff& next(quint64 offset);
    // The strips or tiles.
    OddTiff& setBlocks(const std::vector<QByteArray>& blocks);

    QByteArray bytes() const;
    quint64 directoryOffset() const { return m_big ? 16 : 8; } // unless it comes last

private:
    struct Entry
    {
        Type type = Short;
        quint64 count = 0;
        std::vector<quint64> values; // or
        QByteArray text;             // or
        bool claimed = false;        // of one value, an offset
    };
    void append(QByteArray& to, quint64 value, int width) const;
    QByteArray valueBytes(const Entry& entry) const;
    QByteArray directory(const std::map<int, Entry>& entries, quint64 at) const;
    QByteArray header(quint64 directoryAt) const;

    bool m_big = false;
    bool m_motorola = false;
    bool m_directoryLast = false;
    bool m_tiled = false;
    quint64 m_next = 0;
    std::map<int, Entry> m_entries;
    std::vector<QByteArray> m_blocks;
};
