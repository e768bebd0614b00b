// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "algorithms/NonNegativeFit.h"
#include "algorithms/SpectrumFit.h"

#include <optional>

// Every answer straight from the whole matrices, with a solver call each: the reference for the faster fit.
class PlainSpectrumFit : public SpectrumFit
{
public:
    // Takes shares. With `trace` the non-negative solver's columns go to standard output.
    PlainSpectrumFit(const XTNT::Matrix<double>& conc, const XTNT::Matrix<double>& data, bool trace);

    XTNT::Matrix<double> solve() override;
    const XTNT::Vector<double>& nonNegative(long long band) override;
    XTNT::Matrix<double> refit(const XTNT::Vector<long long>& free, const XTNT::Vector<long long>& fixed,
                               const XTNT::Vector<long long>& bands, const XTNT::Matrix<double>& spec) override;
    void reorder(const XTNT::Vector<long long>& order) override;
    double residualNorm(const XTNT::Matrix<double>& target, const XTNT::Matrix<double>& spec) override;

private:
    XTNT::Matrix<double> m_conc;
    XTNT::Matrix<double> m_data;
    bool m_trace;
    std::optional<NonNegativeFit> m_nonNegative; // made for the first band that needs it
};
