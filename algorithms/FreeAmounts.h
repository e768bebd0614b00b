// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/noise_model.h"
#include "XTNT/xtnt_matrix.h"

#include <cstddef>
#include <vector>

// Amounts of some of an analysis' rows that no bound has touched, with what is known of their noise: the weighted fits
// by spectra S (components x bands), below 0 where a row is none of their mixtures. They follow when a spectrum gives
// up part of another, without a look at the data, as what all spectra explain together stays the same.
class FreeAmounts
{
public:
    using Column = std::vector<double>; // a row each

    // Of D (pixels x bands), whose fit is C (pixels x components), at most 5000 rows, taken over the whole; the weights
    // are those of `noise`, of one group, at C. False where spectra depend on each other.
    bool fit(const XTNT::Matrix<double>& D, const XTNT::Matrix<double>& C, const XTNT::NoiseModel& noise,
             const XTNT::Matrix<double>& S);

    // What the amounts leave of the data that they were fitted to, over the errors of the elements: rows() x bands.
    // With the same arguments, before a spectrum has given up anything.
    XTNT::Matrix<double> leftover(const XTNT::Matrix<double>& D, const XTNT::Matrix<double>& C,
                                  const XTNT::NoiseModel& noise, const XTNT::Matrix<double>& S) const;

    std::size_t rows() const { return m_amounts.front().size(); }
    long long components() const { return static_cast<long long>(m_amounts.size()); }
    const Column& amounts(long long k) const { return m_amounts[static_cast<std::size_t>(k)]; }
    const Column& covariance(long long k, long long l) const { return m_covariances[place(k, l)]; }
    // Standard error of row p's amount of component k.
    double error(long long k, std::size_t p) const;

    // How much of spectrum j spectrum i can give up: no band of it comes below 0 by more than two standard errors.
    // Bands in which spectrum j is below a twentieth of its maximum do not count.
    double mostGivenUp(const XTNT::Matrix<double>& S, long long i, long long j) const;

    // Spectrum i gives up t times spectrum j (takes it up below 0), what comes below 0 is 0; the amounts of j grow by t
    // times those of i.
    void giveUp(long long i, long long j, double t, XTNT::Matrix<double>& S);

private:
    std::size_t place(long long k, long long l) const { return static_cast<std::size_t>(k * components() + l); }
    bool addRow(const double* data, const Column& variances, const XTNT::Matrix<double>& S);

    std::vector<Column> m_amounts;
    std::vector<Column> m_covariances;
    Column m_bandVariances; // means over the rows
};
