// SPDX-License-Identifier: GPL-3.0-or-later
#include "XTNT/least_squares.h"

#include "XTNT/row_product.h"

namespace XTNT {

namespace {

Matrix<double> identity(long long n)
{
    Matrix<double> one(n, n);
    for (long long i = 0; i < n; ++i) {
        one[i][i] = 1;
    }
    return one;
}

} // namespace

Matrix<double> solveForLeft(const Matrix<double>& A, const Matrix<double>& B)
{
    if (A.num_rows() != A.num_cols()) {
        return A.lssolve(B);
    }
    Matrix<double> rightHandSides(B);
    return A.solve(rightHandSides);
}

Matrix<double> solveForRight(const Matrix<double>& B, const Matrix<double>& A)
{
    if (A.num_cols() != B.num_cols() || B.empty()) {
        return Matrix<double>();
    }
    const Matrix<double> solutionOperator = rightSolutionOperator(A);
    return solutionOperator.empty() ? Matrix<double>() : multiplyRows(B, solutionOperator);
}

Matrix<double> rightSolutionOperator(const Matrix<double>& A)
{
    return transpose(solveForLeft(transpose(A), identity(A.num_cols())));
}

} // namespace XTNT
