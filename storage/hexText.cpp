// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/hexText.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace {

constexpr long long countWithoutText = 1LL << 24U;
constexpr std::uint8_t noDigit = 0xFF;

// The value of each character below 128 as a digit.
constexpr std::array<std::uint8_t, 128> makeDigitValues()
{
    std::array<std::uint8_t, 128> values{};
    for (std::size_t c = 0; c < values.size(); ++c) {
        values[c] = noDigit;
    }
    for (std::uint8_t d = 0; d < 10; ++d) {
        values[static_cast<std::size_t>('0') + d] = d;
    }
    for (std::uint8_t d = 0; d < 6; ++d) {
        values[static_cast<std::size_t>('A') + d] = static_cast<std::uint8_t>(10 + d);
        values[static_cast<std::size_t>('a') + d] = static_cast<std::uint8_t>(10 + d);
    }
    return values;
}

constexpr std::array<std::uint8_t, 128> digitValues = makeDigitValues();

unsigned digitValue(QChar c)
{
    return c.unicode() < digitValues.size() ? digitValues[c.unicode()] : noDigit;
}

template <class Bits>
constexpr std::size_t charactersOf()
{
    return 2 * sizeof(Bits);
}

template <class Bits>
QChar* writeDigits(Bits bits, QChar* out)
{
    static const char digits[] = "0123456789ABCDEF";
    for (std::size_t i = 0; i < sizeof(Bits); ++i) {
        const auto byte = static_cast<std::size_t>((bits >> (8 * i)) & 0xFFU);
        *out++ = QLatin1Char(digits[byte >> 4U]);
        *out++ = QLatin1Char(digits[byte & 0xFU]);
    }
    return out;
}

// The number whose text begins at `in`, of which `nThere` characters are there.
template <class Bits>
Bits readDigits(const QChar* in, std::size_t nThere)
{
    Bits bits = 0;
    for (std::size_t i = 0; i < sizeof(Bits) && 2 * i + 1 < nThere; ++i) {
        const unsigned high = digitValue(in[2 * i]);
        const unsigned low = digitValue(in[2 * i + 1]);
        if (high != noDigit && low != noDigit) {
            bits |= static_cast<Bits>(high << 4U | low) << (8 * i);
        }
    }
    return bits;
}

template <class Bits, class Store>
void readAll(const QString& text, std::size_t nCount, const Store& store)
{
    const std::size_t nLength = static_cast<std::size_t>(text.size());
    const QChar* const in = text.constData();
    for (std::size_t i = 0; i < nCount; ++i) {
        const std::size_t nBegin = i * charactersOf<Bits>();
        const bool bThere = nBegin < nLength;
        store(i, bThere ? readDigits<Bits>(in + nBegin, nLength - nBegin) : Bits(0));
    }
}

template <class Bits>
bool isCount(long long nCount, const QString& text)
{
    const long long nInText = text.size() / static_cast<long long>(charactersOf<Bits>());
    return nCount >= 0 && nCount <= std::max(nInText, countWithoutText);
}

} // namespace

namespace hexText {

QString fromIndices(const std::vector<std::uint32_t>& indices)
{
    QString text(static_cast<int>(indices.size() * charactersOf<std::uint32_t>()), Qt::Uninitialized);
    QChar* out = text.data();
    for (const std::uint32_t index : indices) {
        out = writeDigits(index, out);
    }
    return text;
}

QString fromDoubles(const double* pValues, std::size_t nCount)
{
    QString text(static_cast<int>(nCount * charactersOf<std::uint64_t>()), Qt::Uninitialized);
    QChar* out = text.data();
    for (std::size_t i = 0; i < nCount; ++i) {
        std::uint64_t bits = 0;
        std::memcpy(&bits, pValues + i, sizeof bits);
        out = writeDigits(bits, out);
    }
    return text;
}

std::vector<std::uint32_t> toIndices(const QString& text, std::size_t nCount)
{
    std::vector<std::uint32_t> indices(nCount);
    readAll<std::uint32_t>(text, nCount, [&](std::size_t i, std::uint32_t bits) { indices[i] = bits; });
    return indices;
}

void toDoubles(const QString& text, double* pValues, std::size_t nCount)
{
    readAll<std::uint64_t>(text, nCount,
                           [&](std::size_t i, std::uint64_t bits) { std::memcpy(pValues + i, &bits, sizeof bits); });
}

bool isIndexCount(long long nCount, const QString& text)
{
    return isCount<std::uint32_t>(nCount, text);
}

bool isDoubleCount(long long nCount, const QString& text)
{
    return isCount<std::uint64_t>(nCount, text);
}

} // namespace hexText
