// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/noise_model.h"
#include "XTNT/xtnt_matrix.h"

namespace XTNT {

// The non-negative fit of known spectra with a weight for each element: for every row d of D (pixels x bands) the row
// c >= 0 of C (pixels x K) that minimises the sum over the bands of w[b] (c S - d)[b]^2, S being K x bands. The weights
// are the inverse variances of `noise` at what the row's present amounts explain: C holds a first fit, such as that of
// constrainedConcentrations, and takes the second. A row of C with an element that is not finite stays as it is.
//
// Several rows are solved side by side from their small weighted Gram matrices (a set of components at a time, by the
// pivoting of ConcentrationPass, from those on that the first fit has above 0), improved once by the residual of the
// data themselves, and checked: no amount below 0, no dual above rounding. Where the Gram matrix is too near to
// singular, and what does not pass, goes to NNLS. A row's result follows from that row alone: the same bits on any
// number of threads. Passes cancellation points; an abort leaves C with rows of both fits.
//
// Shapes must agree (asserted). Returns the number of rows that went to NNLS.
long long weightedConcentrations(const Matrix<double>& D, const Matrix<double>& S, const NoiseModel& noise,
                                 Matrix<double>& C);

// The same with every row through NNLS: the reference for the above.
void weightedConcentrationsPlain(const Matrix<double>& D, const Matrix<double>& S, const NoiseModel& noise,
                                 Matrix<double>& C);

// Whether a row's noise shows: no more than an eighth of its elements are 0 or below, as where a camera's noise is cut
// off at 0.
bool tellsOfNoise(const double* row, long long bands);

// How well fitted amounts explain the data, in units of the noise: the sum of the squares of the residuals, each over
// its variance, and how many degrees of freedom they have (bands less the components above 0, over all rows). Their
// quotient is 1 where noise is all that is left and the model is its. Rows that are not finite do not count, nor do
// those that do not tell of the noise, where the others have a tenth of the degrees of freedom.
struct WeightedResidual
{
    double squares = 0;
    double freedom = 0;
};
WeightedResidual weightedResidual(const Matrix<double>& D, const Matrix<double>& S, const NoiseModel& noise,
                                  const Matrix<double>& C);

// Standard errors of fitted amounts C under `noise`, pixels x K: the square roots of the diagonal of the inverse of
// S W S' for the components above 0, with the weights at those amounts. For a component at 0 it is the error that it
// would have as one more of them; infinite where it depends on them. NaN in a row that is not finite. Passes
// cancellation points; the same bits on any number of threads.
Matrix<double> standardErrors(const Matrix<double>& S, const NoiseModel& noise, const Matrix<double>& C);

} // namespace XTNT
