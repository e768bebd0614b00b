// SPDX-License-Identifier: GPL-3.0-or-later
#include "algorithms/weightedUpdate.h"

#include "XTNT/xtnt_parallel.h"
#include "XTNT/xtnt_vector.h"

using XTNT::Matrix;
using XTNT::Vector;

namespace {

// Rows between two looks at the door.
constexpr long long rowsAtOnce = 256;

// Adds w * u u' to the K x K matrix and w * d * u to the K vector, u being `stride` elements apart.
void accumulate(const double* u, long long stride, double w, double d, Matrix<double>& gram, Vector<double>& right)
{
    for (long long a = 0; a < gram.num_rows(); ++a) {
        const double weighted = w * u[a * stride];
        right[a] += weighted * d;
        for (long long b = 0; b < gram.num_cols(); ++b) {
            gram[a][b] += weighted * u[b * stride];
        }
    }
}

} // namespace

void projectOnSpectra(const Matrix<double>& target, const Matrix<double>& weights, const Matrix<double>& spec,
                      Matrix<double>& data)
{
    const long long components = spec.num_rows();
    const long long bands = spec.num_cols();
    for (long long i = 0; i < target.num_rows(); ++i) {
        if (i % rowsAtOnce == 0) {
            XTNT::cancellationPoint();
        }
        Matrix<double> gram(components, components);
        Vector<double> right(components);
        for (long long j = 0; j < bands; ++j) {
            accumulate(spec.storage.data + j, bands, weights[i][j], target[i][j], gram, right);
        }
        const Matrix<double> inverse = gram.inverse();
        if (inverse.empty()) {
            continue;
        }
        const Vector<double> row = (right * inverse) * spec;
        data.setRow(i, row);
    }
}

void projectOnConcentrations(const Matrix<double>& target, const Matrix<double>& weights, const Matrix<double>& conc,
                             Matrix<double>& data)
{
    const long long components = conc.num_cols();
    for (long long j = 0; j < target.num_cols(); ++j) {
        XTNT::cancellationPoint();
        Matrix<double> gram(components, components);
        Vector<double> right(components);
        for (long long i = 0; i < target.num_rows(); ++i) {
            accumulate(conc[i], 1, weights[i][j], target[i][j], gram, right);
        }
        const Matrix<double> inverse = gram.inverse();
        if (inverse.empty()) {
            continue;
        }
        const Vector<double> column = conc * (inverse * right);
        for (long long i = 0; i < target.num_rows(); ++i) {
            data[i][j] = column[i];
        }
    }
}
