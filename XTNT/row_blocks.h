// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>

namespace XTNT {

// How the passes over all pixels cut the rows. Every pass cuts alike, so that one may work on the blocks of another.

// Rows that are worked on together: their data stay in the first cache meanwhile.
constexpr long long blockRows = 64;

// Rows of a parallel chunk, a multiple of blockRows. Few enough that a chunk whose rows all need an expensive solver
// stays a part of a slice; with millions of rows more, so that the partial results of the chunks stay small beside the
// data. A function of the number of rows alone: with it the order of summation is.
inline long long passChunkRows(long long rows)
{
    constexpr long long fewest = 256;
    constexpr long long mostChunks = 4096;
    const long long fair = (rows + mostChunks - 1) / mostChunks;
    return std::max(fewest, (fair + blockRows - 1) / blockRows * blockRows);
}

} // namespace XTNT
