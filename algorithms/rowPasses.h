// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_matrix.h"
#include "XTNT/xtnt_vector.h"

// Small passes over the rows of tall matrices, in parallel and with the same bits on any number of threads. All pass
// cancellation points.
namespace rowpass {

// Euclidean norm of each row; a NaN counts as 0, as in Vector::clampedSqrt.
XTNT::Vector<double> rowNorms(const XTNT::Matrix<double>& a);

// Frobenius norm. Partial sums over chunks of rows; a sum that leaves the range of normal numbers is taken again by
// Matrix::norm.
double frobeniusNorm(const XTNT::Matrix<double>& a);

// Multiplies, or divides, the elements of row i by factors[i], without guard. In place, so every share sees it.
void multiplyRows(XTNT::Matrix<double>& a, const XTNT::Vector<double>& factors);
void divideRows(XTNT::Matrix<double>& a, const XTNT::Vector<double>& factors);

// The rows in the order of their centres of mass over the column numbers: the i-th is row order[i]. A row that sums to
// zero has no centre; where it comes is undefined.
XTNT::Vector<long long> orderByCentre(const XTNT::Matrix<double>& rows);

// Column i becomes what was column order[i]. In place.
void reorderColumns(XTNT::Matrix<double>& a, const XTNT::Vector<long long>& order);

// Every negative element of the columns whose flag is 1 becomes 0. Missing flags count as 0.
void clampColumns(XTNT::Matrix<double>& a, const XTNT::Vector<int>& flags, long long begin, long long end);

bool allFinite(const XTNT::Matrix<double>& a);

// Mean of the rows of each label 0 to k - 1, as a k x N matrix; a label without rows gives a row of zeros.
XTNT::Matrix<double> labelMeans(const XTNT::Matrix<double>& a, const XTNT::Vector<long long>& labels, long long k);

} // namespace rowpass
