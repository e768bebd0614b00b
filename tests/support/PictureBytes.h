// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>
#include <QString>

#include <cstdint>
#include <string>

// Pictures that must stay as they are to the byte: numbers to make them from that no standard library changes, and a
// fingerprint of what came out.
namespace testsupport {

// The generator of S. Vigna's "splitmix64": the same numbers everywhere.
class FixedNumbers
{
public:
    explicit FixedNumbers(std::uint64_t seed) : m_state(seed) {}

    std::uint64_t next()
    {
        m_state += 0x9e3779b97f4a7c15U;
        std::uint64_t z = m_state;
        z = (z ^ (z >> 30U)) * 0xbf58476d1ce4e5b9U;
        z = (z ^ (z >> 27U)) * 0x94d049bb133111ebU;
        return z ^ (z >> 31U);
    }
    int below(int n) { return static_cast<int>(next() % static_cast<std::uint64_t>(n)); }
    // 0 to 1, in steps of 2^-53.
    double fraction() { return static_cast<double>(next() >> 11U) * 0x1p-53; }

private:
    std::uint64_t m_state;
};

// FNV-1a over the sides and the pixels, row by row, whatever is between the rows.
inline std::uint64_t fingerprint(const QImage& picture)
{
    std::uint64_t hash = 0xcbf29ce484222325U;
    const auto add = [&hash](std::uint32_t word) {
        for (unsigned shift = 0; shift < 32; shift += 8) {
            hash = (hash ^ ((word >> shift) & 0xffU)) * 0x100000001b3U;
        }
    };
    add(static_cast<std::uint32_t>(picture.width()));
    add(static_cast<std::uint32_t>(picture.height()));
    for (int y = 0; y < picture.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(picture.constScanLine(y));
        for (int x = 0; x < picture.width(); ++x) {
            add(line[x]);
        }
    }
    return hash;
}

// Empty when two pictures of 32 bit pixels are alike, else the first place where they are not.
inline std::string firstDifference(const QImage& expected, const QImage& actual)
{
    if (expected.size() != actual.size() || expected.format() != actual.format()) {
        return "another size or format";
    }
    for (int y = 0; y < expected.height(); ++y) {
        const auto* a = reinterpret_cast<const QRgb*>(expected.constScanLine(y));
        const auto* b = reinterpret_cast<const QRgb*>(actual.constScanLine(y));
        for (int x = 0; x < expected.width(); ++x) {
            if (a[x] != b[x]) {
                return QStringLiteral("at %1, %2: %3, expected %4")
                    .arg(x)
                    .arg(y)
                    .arg(b[x], 8, 16, QLatin1Char('0'))
                    .arg(a[x], 8, 16, QLatin1Char('0'))
                    .toStdString();
            }
        }
    }
    return {};
}

} // namespace testsupport
