// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QtEndian>

namespace orvexport {

// Numbers put one behind the other, the lowest byte first.
class LittleEndianBytes
{
public:
    // 16 bits each, of negative numbers too.
    template <typename... Numbers>
    LittleEndianBytes& words(Numbers... numbers)
    {
        (append(static_cast<quint16>(numbers)), ...);
        return *this;
    }
    // 32 bits each.
    template <typename... Numbers>
    LittleEndianBytes& doubleWords(Numbers... numbers)
    {
        (append(static_cast<quint32>(numbers)), ...);
        return *this;
    }
    LittleEndianBytes& raw(const QByteArray& bytes)
    {
        m_bytes.append(bytes);
        return *this;
    }

    const QByteArray& bytes() const { return m_bytes; }

private:
    template <typename Number>
    void append(Number number)
    {
        const Number little = qToLittleEndian(number);
        m_bytes.append(reinterpret_cast<const char*>(&little), static_cast<int>(sizeof little));
    }

    QByteArray m_bytes;
};

} // namespace orvexport
