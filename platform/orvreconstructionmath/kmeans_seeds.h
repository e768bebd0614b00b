// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

namespace XTNT {

// A start of k-means++ (D. Arthur, S. Vassilvitskii, k-means++: the advantages of careful seeding, 2007) from a fixed
// seed: the first centre is any row, each next one a row drawn with a chance in proportion to its squared distance from
// the nearest centre so far.
struct KMeansSeeds
{
    // Indices of the rows that were drawn. Fewer than asked for when all rows coincide with one of them.
    std::vector<long long> rows;
    // For each row the number of the nearest drawn row, the first at a tie.
    std::vector<int> labels;
    // Sum over all rows of the squared distance to that one.
    double objective = 0;
};

// `rows` are pointers to `columns` finite elements, at least one row; `clusters` >= 1. In parallel; the same for any
// number of threads.
KMeansSeeds drawSeeds(const std::vector<const double*>& rows, long long columns, long long clusters);

} // namespace XTNT
