// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/lane_product.h"
#include "XTNT/noise_model.h"
#include "XTNT/passive_set_cache.h"
#include "XTNT/xtnt_lanes.h"
#include "XTNT/xtnt_matrix.h"

#include <array>
#include <vector>

namespace XTNT {

// What rows with weights of their own are solved with, the same for all of them: read-only, threads may share it.
struct WeightedSpectra
{
    WeightedSpectra(const Matrix<double>& spectra, const NoiseModel& model);

    // Sets of more components do not fit into a mask: nothing below may be made for them.
    bool usable() const { return components <= ReducedSpectra::maxComponents; }

    const Matrix<double>& spectra;
    const NoiseModel& noise;
    long long components;
    long long bands;
    LaneProduct fit;   // amounts to bands
    LaneProduct share; // bands to components
    LaneProduct gram;  // weights to the pairs of components, row by row of the lower triangle
};

// As many rows as a register has lanes, solved side by side: their numbers lie interleaved, and each lane does what it
// would do alone. A work space, one a thread.
class WeightedRows
{
public:
    using Mask = PassiveSetCache::Mask;
    static constexpr std::size_t count = lanes;

    explicit WeightedRows(const WeightedSpectra& problem);

    // Takes the weights from the amounts of a fit, `amounts` one pointer a lane (a pointer may repeat), of rows of one
    // group of the noise. Lanes whose amounts are not finite are not `regular`.
    void setAmounts(const std::array<const double*, count>& amounts, long long nGroup);
    bool isRegular(std::size_t lane) const { return m_regular[lane]; }
    // Weight of a band.
    double weight(long long band, std::size_t lane) const { return m_weights[at(band, lane)]; }

    // The fit of these data, after setAmounts(). Afterwards solution() is that of each lane that is `solved`.
    void solve(const std::array<const double*, count>& data);
    bool isSolved(std::size_t lane) const { return m_solved[lane]; }
    double solution(long long component, std::size_t lane) const;

    // Variances of the amounts, after setAmounts(); those of a lane that is not `solved` are none.
    void findVariances();
    double variance(long long component, std::size_t lane) const { return m_trial[at(component, lane)]; }

private:
    static std::size_t at(long long i, std::size_t lane) { return static_cast<std::size_t>(i * lanes) + lane; }
    static long long pair(long long i, long long k) { return i * (i + 1) / 2 + k; }
    Lanes gram(long long i, long long k) const
    {
        return lanesAt(m_gram.data() + lanes * (i >= k ? pair(i, k) : pair(k, i)));
    }

    void setMasks();
    void factorise();
    void solveFactored(const double* right, double* x) const;
    void findDuals(double* duals) const;
    void load(const std::array<const double*, count>& data);
    void pivot();
    void improve();
    bool exchange(std::size_t lane, const double* x, const double* duals);
    Mask offenders(std::size_t lane, const double* x, const double* duals) const;

    const WeightedSpectra& m_problem;
    std::vector<double> m_amounts;
    std::vector<double> m_expected;
    std::vector<double> m_weights;
    std::vector<double> m_gram;
    std::vector<double> m_data;
    std::vector<double> m_weighted;
    std::vector<double> m_right;
    std::vector<double> m_limits; // squares of what a dual may be and count as 0
    std::vector<double> m_masks;  // 1 for a component of the set, else 0
    std::vector<double> m_factor; // L below its diagonal of ones
    std::vector<double> m_factorTimesPivots;
    std::vector<double> m_pivots; // their inverses
    std::vector<double> m_trial;
    std::vector<double> m_duals;
    std::vector<double> m_step;
    std::array<Mask, count> m_passive{};
    std::array<int, count> m_fewest{};
    std::array<int, count> m_chances{};
    std::array<bool, count> m_regular{};
    std::array<bool, count> m_solved{};
    std::array<bool, count> m_singular{};
};

} // namespace XTNT
