// SPDX-License-Identifier: GPL-3.0-or-later
// The arrays of the non-negative solver are taken once for all bands, whichever way the spectra are fitted.
#include "algorithms/PlainSpectrumFit.h"
#include "algorithms/ReducedSpectrumFit.h"

#include "AllocationCount.h"

#include "support/Numbers.h"
#include "support/NumericLaws.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

using testsupport::isNonNegativeOptimum;
using testsupport::randomMatrix;
using XTNT::Matrix;
using XTNT::Vector;

namespace {

constexpr long long rows = 60;
constexpr long long components = 4;
constexpr long long bands = 30;
constexpr unsigned seed = 11;

class SpectrumFitArraysTest : public ::testing::TestWithParam<bool>
{
protected:
    static std::unique_ptr<SpectrumFit> fitOf(const Matrix<double>& conc, const Matrix<double>& data)
    {
        if (GetParam()) {
            return std::make_unique<PlainSpectrumFit>(conc, data, false);
        }
        return std::make_unique<ReducedSpectrumFit>(conc, data);
    }
    static Vector<long long> firstOf(long long n, long long from = 0)
    {
        Vector<long long> list(n);
        for (long long i = 0; i < n; ++i) {
            list[i] = from + i;
        }
        return list;
    }

    const Matrix<double> m_conc = randomMatrix(rows, components, seed, -0.2, 1);
    // Of both signs, so that most bands have a component below 0.
    const Matrix<double> m_data = randomMatrix(rows, bands, seed + 1, -1, 1);
};

TEST_P(SpectrumFitArraysTest, NoBandTakesMemory)
{
    const std::unique_ptr<SpectrumFit> fit = fitOf(m_conc, m_data);
    fit->nonNegative(0);
    const long long before = allocationsOfThisThread();
    for (long long j = 1; j < bands; ++j) {
        fit->nonNegative(j);
    }
    EXPECT_EQ(allocationsOfThisThread() - before, 0);
    fit->solve(); // the count counts
    EXPECT_GT(allocationsOfThisThread(), before);
}

TEST_P(SpectrumFitArraysTest, NoBandOfARefitTakesMemory)
{
    const std::unique_ptr<SpectrumFit> fit = fitOf(m_conc, m_data);
    const Matrix<double> spec = randomMatrix(components, bands, seed + 2);
    const auto allocations = [&](long long n) {
        const Vector<long long> some = firstOf(n);
        const Vector<long long> free = firstOf(components - 1, 1);
        const Vector<long long> fixed = firstOf(1);
        const long long before = allocationsOfThisThread();
        const Matrix<double> solution = fit->refit(free, fixed, some, spec);
        const long long taken = allocationsOfThisThread() - before;
        EXPECT_GE(*std::min_element(solution.storage.data, solution.storage.data + solution.storage.size()), 0.0);
        return taken;
    };
    allocations(2); // what is kept from a first time on
    EXPECT_LT(allocations(bands) - allocations(2), bands - 2);
}

TEST_P(SpectrumFitArraysTest, ComponentsInAnotherOrderAreFittedInThatOrder)
{
    Matrix<double> conc = m_conc.deepCopy();
    const std::unique_ptr<SpectrumFit> fit = fitOf(conc, m_data);
    fit->nonNegative(0);
    Vector<long long> order(components);
    for (long long k = 0; k < components; ++k) {
        order[k] = (k + 1) % components;
        for (long long i = 0; i < rows; ++i) {
            conc[i][k] = m_conc[i][order[k]];
        }
    }
    fit->reorder(order);
    for (long long j = 0; j < bands; ++j) {
        EXPECT_TRUE(isNonNegativeOptimum(conc, m_data.column(j), fit->nonNegative(j))) << j;
    }
}

INSTANTIATE_TEST_SUITE_P(Paths, SpectrumFitArraysTest, ::testing::Values(true, false),
                         [](const auto& test) { return test.param ? "Plain" : "Reduced"; });

} // namespace
