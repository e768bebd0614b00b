// SPDX-License-Identifier: GPL-3.0-or-later
#include "algorithms/nonNegativeFit.h"

#include "XTNT/nnls.h"

#include <vector>

using XTNT::Matrix;
using XTNT::Vector;

Vector<double> nonNegativeFit(const Matrix<double>& design, const Vector<double>& rightHandSide)
{
    const int rows = static_cast<int>(design.num_rows());
    const int components = static_cast<int>(design.num_cols());
    Matrix<double> a = design.transpose(); // row by row the one is, column by column, the other
    Vector<double> b = rightHandSide.deepCopy();
    Vector<double> x(components);
    std::vector<double> dual(static_cast<std::size_t>(components));
    std::vector<double> work(static_cast<std::size_t>(rows));
    std::vector<int> index(static_cast<std::size_t>(components) + 1);
    double rnorm = 0;
    int mode = 0;
    XTNT::NNLS(a.storage.data, rows, rows, components, b.data, x.data, &rnorm, dual.data(), work.data(), index.data(),
               &mode);
    return x;
}
