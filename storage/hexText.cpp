// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/hexText.h"

namespace hexText {

QString fromIndices(const std::vector<std::uint32_t>& indices)
{
    static const char digits[] = "0123456789ABCDEF";
    constexpr int charactersAnIndex = 8;
    QString text(static_cast<int>(indices.size()) * charactersAnIndex, Qt::Uninitialized);
    QChar* out = text.data();
    for (const std::uint32_t index : indices) {
        for (unsigned shift = 0; shift < 32; shift += 8) {
            const std::uint32_t byte = (index >> shift) & 0xFFU;
            *out++ = QLatin1Char(digits[byte >> 4U]);
            *out++ = QLatin1Char(digits[byte & 0xFU]);
        }
    }
    return text;
}

} // namespace hexText
