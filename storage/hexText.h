// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <cstddef>
#include <cstdint>
#include <vector>

// Numbers as hexadecimal text: the bytes of each from the least significant to the most significant, two digits of
// "0123456789ABCDEF" a byte, high nibble first, nothing between them. The same text on every machine.
namespace hexText {

// 8 characters an index.
QString fromIndices(const std::vector<std::uint32_t>& indices);
// 16 characters a double, the bytes of its IEEE form.
QString fromDoubles(const double* pValues, std::size_t nCount);

// Reading takes small letters too. The count says how many numbers there are, not the text: a byte whose two characters
// are not both digits, or not both there, is 0, and what the text holds beyond the count is not looked at.
std::vector<std::uint32_t> toIndices(const QString& text, std::size_t nCount);
void toDoubles(const QString& text, double* pValues, std::size_t nCount);

// Whether a file may ask for that many numbers: not fewer than none, and no more than the text holds or, of a text that
// was cut short, 2^24 (a square of 4096 pixels). Keeps a wrong count from taking all memory.
bool isIndexCount(long long nCount, const QString& text);
bool isDoubleCount(long long nCount, const QString& text);

} // namespace hexText
