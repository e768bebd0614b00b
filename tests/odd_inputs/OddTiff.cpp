// SPDX-License-Identifier: GPL-3.0-or-later
#include "odd_inputs/OddTiff.h"

#include <cstddef>
#include <utility>

namespace {

constexpr int side = 32;
constexpr int rowsPerStrip = 4;
constexpr int tileSide = 16;
constexpr int zlibAhead = 4; // qCompress() puts a length ahead of the stream

int widthOf(OddTiff::Type type)
{
    switch (type) {
    case OddTiff::Ascii:
        return 1;
    case OddTiff::Short:
        return 2;
    case OddTiff::Long:
        return 4;
    case OddTiff::Long8:
        return 8;
    }
    return 1;
}

} // namespace

OddTiff::OddTiff()
{
    set(Width, Short, {side});
    set(Height, Short, {side});
    set(Bits, Short, {16});
    set(Compression, Short, {1});
    set(Photometric, Short, {1});
    set(Samples, Short, {1});
    set(RowsPerStrip, Short, {rowsPerStrip});
    int pixel = 0;
    for (int strip = 0; strip < side / rowsPerStrip; ++strip) {
        QByteArray block;
        for (int i = 0; i < side * rowsPerStrip; ++i, ++pixel) {
            append(block, static_cast<quint64>(pixel), 2);
        }
        m_blocks.push_back(block);
    }
}

OddTiff& OddTiff::big()
{
    m_big = true;
    return *this;
}

OddTiff& OddTiff::motorola()
{
    m_motorola = true;
    for (QByteArray& block : m_blocks) {
        for (int i = 0; i + 1 < block.size(); i += 2) {
            std::swap(block.data()[i], block.data()[i + 1]);
        }
    }
    return *this;
}

OddTiff& OddTiff::tiled()
{
    m_tiled = true;
    m_blocks.clear();
    for (int tile = 0; tile < (side / tileSide) * (side / tileSide); ++tile) {
        QByteArray block;
        for (int i = 0; i < tileSide * tileSide; ++i) {
            append(block, static_cast<quint64>(tile * tileSide * tileSide + i), 2);
        }
        m_blocks.push_back(block);
    }
    set(TileWidth, Short, {tileSide});
    set(TileHeight, Short, {tileSide});
    return remove(RowsPerStrip);
}

OddTiff& OddTiff::deflated()
{
    for (QByteArray& block : m_blocks) {
        block = qCompress(block).mid(zlibAhead);
    }
    return set(Compression, Short, {8});
}

OddTiff& OddTiff::directoryLast()
{
    m_directoryLast = true;
    return *this;
}

OddTiff& OddTiff::set(int tag, Type type, const std::vector<quint64>& values)
{
    Entry entry;
    entry.type = type;
    entry.count = values.size();
    entry.values = values;
    m_entries[tag] = entry;
    return *this;
}

OddTiff& OddTiff::setText(int tag, const QByteArray& text)
{
    Entry entry;
    entry.type = Ascii;
    entry.text = text + '\0';
    entry.count = static_cast<quint64>(entry.text.size());
    m_entries[tag] = entry;
    return *this;
}

OddTiff& OddTiff::claim(int tag, Type type, quint64 count, quint64 offset)
{
    Entry entry;
    entry.type = type;
    entry.count = count;
    entry.values = {offset};
    entry.claimed = true;
    m_entries[tag] = entry;
    return *this;
}

OddTiff& OddTiff::remove(int tag)
{
    m_entries.erase(tag);
    return *this;
}

OddTiff& OddTiff::next(quint64 offset)
{
    m_next = offset;
    return *this;
}

OddTiff& OddTiff::setBlocks(const std::vector<QByteArray>& blocks)
{
    m_blocks = blocks;
    return *this;
}

void OddTiff::append(QByteArray& to, quint64 value, int width) const
{
    for (int i = 0; i < width; ++i) {
        const int shift = 8 * (m_motorola ? width - 1 - i : i);
        to.append(static_cast<char>(value >> shift & 0xff));
    }
}

QByteArray OddTiff::valueBytes(const Entry& entry) const
{
    if (!entry.text.isEmpty()) {
        return entry.text;
    }
    QByteArray bytes;
    for (const quint64 value : entry.values) {
        append(bytes, value, entry.claimed ? (m_big ? 8 : 4) : widthOf(entry.type));
    }
    return bytes;
}

QByteArray OddTiff::header(quint64 directoryAt) const
{
    QByteArray bytes = m_motorola ? "MM" : "II";
    append(bytes, m_big ? 43 : 42, 2);
    if (m_big) {
        append(bytes, 8, 2);
        append(bytes, 0, 2);
    }
    append(bytes, directoryAt, m_big ? 8 : 4);
    return bytes;
}

// With what its entries hold behind it.
QByteArray OddTiff::directory(const std::map<int, Entry>& entries, quint64 at) const
{
    const int word = m_big ? 8 : 4;
    const quint64 length = (m_big ? 8U : 2U) + entries.size() * (m_big ? 20U : 12U) + static_cast<quint64>(word);
    QByteArray bytes;
    QByteArray behind;
    append(bytes, entries.size(), m_big ? 8 : 2);
    for (const auto& [tag, entry] : entries) {
        append(bytes, static_cast<quint64>(tag), 2);
        append(bytes, static_cast<quint64>(entry.type), 2);
        append(bytes, entry.count, word);
        QByteArray value = valueBytes(entry);
        if (value.size() > word) {
            const quint64 place = at + length + static_cast<quint64>(behind.size());
            behind += value;
            value.clear();
            append(value, place, word);
        }
        bytes += value.leftJustified(word, '\0');
    }
    append(bytes, m_next, word);
    return bytes + behind;
}

QByteArray OddTiff::bytes() const
{
    std::map<int, Entry> entries = m_entries;
    const auto put = [&](int tag, const std::vector<quint64>& values) {
        if (m_entries.count(tag) == 0) {
            entries[tag] = Entry{Long, values.size(), values, {}, false};
        }
    };
    std::vector<quint64> lengths;
    QByteArray blocks;
    for (const QByteArray& block : m_blocks) {
        lengths.push_back(static_cast<quint64>(block.size()));
        blocks += block;
    }
    // The directory is as long with any offsets.
    const auto putOffsets = [&](quint64 first) {
        std::vector<quint64> offsets;
        for (const quint64 length : lengths) {
            offsets.push_back(first);
            first += length;
        }
        put(m_tiled ? TileOffsets : Offsets, offsets);
    };
    put(m_tiled ? TileByteCounts : ByteCounts, lengths);
    putOffsets(0);
    const quint64 begin = directoryOffset();
    if (m_directoryLast) {
        putOffsets(begin);
        const quint64 at = begin + static_cast<quint64>(blocks.size());
        return header(at) + blocks + directory(entries, at);
    }
    putOffsets(begin + static_cast<quint64>(directory(entries, begin).size()));
    return header(begin) + directory(entries, begin) + blocks;
}
