// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_matrix.h"
#include "XTNT/xtnt_vector.h"

namespace XTNT {

// Distance between a row and a centre.
enum KMEANS_DISTFUN
{
    KMEANS_EUCLIDEAN = 0
};

// Lloyd's clustering (S. P. Lloyd, Least squares quantization in PCM, 1982) of the rows of `data` (rows x columns) into
// `k` clusters, from a seeded k-means++ start (D. Arthur, S. Vassilvitskii, 2007): same input, same labels, always, on
// any number of threads. `labels` comes back with one entry a row, 0 to k - 1. No cluster stays empty while there are k
// distinct rows. k < 1 counts as 1; no rows give no labels. Rows that hold a NaN or an infinity, and rows of zeros,
// take label 0 and move no centre. `maxIterations` bounds the sweeps; `option` is accepted and has no effect.
void kmeans(Matrix<double>& data, long long k, Vector<long long>& labels, long long maxIterations,
            KMEANS_DISTFUN distance, int option);

} // namespace XTNT
