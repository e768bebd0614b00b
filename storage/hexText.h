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

} // namespace hexText
