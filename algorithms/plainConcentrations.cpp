// SPDX-License-Identifier: GPL-3.0-or-later
#include "algorithms/plainConcentrations.h"

#include "XTNT/least_squares.h"
#include "XTNT/nnls_row_fit.h"
#include "XTNT/xtnt_parallel.h"

#include <algorithm>
#include <iostream>

using XTNT::Matrix;

namespace {

// Rows between two looks at the door.
constexpr long long rowsAtOnce = 1024;

} // namespace

Matrix<double> plainConcentrations(const Matrix<double>& data, const Matrix<double>& spec, bool trace)
{
    const Matrix<double> conc = XTNT::solveForRight(data, spec);
    if (trace) {
        std::cout << "DATA\n" << data << "SPEC\n" << spec << "CONC\n" << conc;
    }
    return conc;
}

void makeRowsNonNegative(const Matrix<double>& data, const Matrix<double>& spec, Matrix<double>& conc, bool trace)
{
    XTNT::NnlsRowFit fit(spec);
    for (long long i = 0; i < conc.num_rows(); ++i) {
        if (i % rowsAtOnce == 0) {
            XTNT::cancellationPoint();
        }
        double* row = conc[i];
        if (std::none_of(row, row + conc.num_cols(), [](double value) { return value < 0; })) {
            continue;
        }
        if (trace) {
            std::cout << "CONC[i][*]\n" << conc.row(i);
        }
        fit.fit(data[i], row);
        if (trace) {
            std::cout << "x\n" << conc.row(i);
        }
    }
}
