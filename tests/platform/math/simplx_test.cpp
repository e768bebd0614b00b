// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/simplx.h"

#include "support/Numbers.h"

#include <cmath>
#include <limits>
#include <set>
#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

using testsupport::randomMatrix;
using XTNT::Matrix;

namespace {

// A linear program by its constraints a x (at most, at least, equal) b and the objective c x.
struct Program
{
    std::vector<double> c;
    std::vector<std::vector<double>> a;
    std::vector<double> b;
    std::size_t m1 = 0;
    std::size_t m2 = 0;
    std::size_t m3 = 0;

    NRMat<double> tableau() const
    {
        NRMat<double> t(a.size() + 2, c.size() + 1, 0.0);
        for (std::size_t j = 0; j < c.size(); ++j) {
            t[0][j + 1] = c[j];
        }
        for (std::size_t i = 0; i < a.size(); ++i) {
            t[i + 1][0] = b[i];
            for (std::size_t j = 0; j < c.size(); ++j) {
                t[i + 1][j + 1] = -a[i][j];
            }
        }
        return t;
    }
};

struct Optimum
{
    int icase = -99;
    double objective = 0;
    std::vector<double> x;
    NRMat<double> tableau;
    NRVec<int> izrov;
    NRVec<int> iposv;
};

Optimum solve(const Program& program)
{
    Optimum optimum;
    optimum.tableau = program.tableau();
    NR::simplx(optimum.tableau, program.m1, program.m2, program.m3, optimum.icase, optimum.izrov, optimum.iposv);
    optimum.x.assign(program.c.size(), 0.0);
    for (std::size_t i = 0; optimum.icase == 0 && i < optimum.iposv.size(); ++i) {
        if (optimum.iposv[i] < static_cast<int>(program.c.size())) {
            optimum.x[static_cast<std::size_t>(optimum.iposv[i])] = optimum.tableau[i + 1][0];
        }
    }
    optimum.objective = optimum.tableau[0][0];
    return optimum;
}

double value(const std::vector<double>& row, const std::vector<double>& x)
{
    double total = 0;
    for (std::size_t j = 0; j < x.size(); ++j) {
        total += row[j] * x[j];
    }
    return total;
}

void expectFeasible(const Program& program, const std::vector<double>& x)
{
    for (const double amount : x) {
        EXPECT_GE(amount, 0);
    }
    for (std::size_t i = 0; i < program.a.size(); ++i) {
        const double slack = program.b[i] - value(program.a[i], x);
        if (i < program.m1) {
            EXPECT_GE(slack, -1e-8) << "constraint " << i;
        } else if (i < program.m1 + program.m2) {
            EXPECT_LE(slack, 1e-8) << "constraint " << i;
        } else {
            EXPECT_NEAR(slack, 0, 1e-8) << "constraint " << i;
        }
    }
}

} // namespace

TEST(SimplxTest, TwoVariablesWorkedOutByHand)
{
    const Optimum optimum = solve({{3, 5}, {{1, 0}, {0, 2}, {3, 2}}, {4, 12, 18}, 3});
    EXPECT_EQ(optimum.icase, 0);
    EXPECT_NEAR(optimum.objective, 36, 1e-12);
    EXPECT_NEAR(optimum.x[0], 2, 1e-12);
    EXPECT_NEAR(optimum.x[1], 6, 1e-12);
}

TEST(SimplxTest, AllThreeKindsOfConstraints)
{
    // x0 + x1 <= 10, x0 >= 2, x0 + x1 + x2 = 12: the best is x0 = 2, x1 = 8, x2 = 2.
    const Program program{{1, 3, 0}, {{1, 1, 0}, {1, 0, 0}, {1, 1, 1}}, {10, 2, 12}, 1, 1, 1};
    const Optimum optimum = solve(program);
    EXPECT_EQ(optimum.icase, 0);
    EXPECT_NEAR(optimum.objective, 26, 1e-12);
    EXPECT_THAT(optimum.x, testing::Pointwise(testing::DoubleNear(1e-12), {2.0, 8.0, 2.0}));
    expectFeasible(program, optimum.x);
}

TEST(SimplxTest, IndexVectorsNameEveryVariableOnce)
{
    const Optimum optimum = solve({{1, 3, 0}, {{1, 1, 0}, {1, 0, 0}, {1, 1, 1}}, {10, 2, 12}, 1, 1, 1});
    std::set<int> named;
    for (std::size_t i = 0; i < optimum.iposv.size(); ++i) {
        named.insert(optimum.iposv[i]);
    }
    for (std::size_t j = 0; j < optimum.izrov.size(); ++j) {
        named.insert(optimum.izrov[j]);
    }
    EXPECT_THAT(named, testing::ElementsAre(0, 1, 2, 3, 4, 5));
}

TEST(SimplxTest, TableauIsTheDictionaryAtTheOptimum)
{
    const Program program{{3, 5}, {{1, 0}, {0, 2}, {3, 2}}, {4, 12, 18}, 3};
    const Optimum optimum = solve(program);
    // Any x gives its slacks; the basic variables must follow from those at zero, and so must the objective.
    const double x[] = {0.5, 1.25};
    double variables[5] = {x[0], x[1]};
    for (std::size_t i = 0; i < 3; ++i) {
        variables[2 + i] = program.b[i] - value(program.a[i], {x[0], x[1]});
    }
    for (std::size_t i = 0; i <= 3; ++i) {
        double sum = optimum.tableau[i][0];
        for (std::size_t j = 0; j < 2; ++j) {
            sum += optimum.tableau[i][j + 1] * variables[optimum.izrov[j]];
        }
        EXPECT_NEAR(sum, i == 0 ? value(program.c, {x[0], x[1]}) : variables[optimum.iposv[i - 1]], 1e-12);
    }
    EXPECT_LE(optimum.tableau[0][1], 0);
    EXPECT_LE(optimum.tableau[0][2], 0);
}

TEST(SimplxTest, UnboundedObjectiveIsCase1)
{
    EXPECT_EQ(solve({{1, 1}, {{1, -1}}, {1}, 1}).icase, 1);
    EXPECT_EQ(solve({{1}, {{1}}, {1}, 0, 1}).icase, 1);
}

TEST(SimplxTest, ContradictingConstraintsAreCaseMinus1)
{
    EXPECT_EQ(solve({{1}, {{1}, {1}}, {1, 2}, 1, 1}).icase, -1);
    EXPECT_EQ(solve({{1}, {{1}, {1}}, {1, 2}, 0, 0, 2}).icase, -1);
    EXPECT_EQ(solve({{1}, {{0}}, {1}, 0, 0, 1}).icase, -1);
}

TEST(SimplxTest, RedundantEqualitiesAreNoContradiction)
{
    const Program program{{1, 2}, {{1, 1}, {2, 2}, {3, 3}}, {4, 8, 12}, 0, 0, 3};
    const Optimum optimum = solve(program);
    EXPECT_EQ(optimum.icase, 0);
    EXPECT_NEAR(optimum.objective, 8, 1e-12);
    expectFeasible(program, optimum.x);
}

TEST(SimplxTest, DegenerateVertexDoesNotMakeItCycle)
{
    // E. M. L. Beale, Cycling in the dual simplex algorithm, 1955: with the largest coefficient as rule the method
    // returns to its first tableau after six steps. The optimum is 1/20 at x0 = 1/25, x2 = 1.
    const Optimum optimum =
        solve({{0.75, -150, 0.02, -6}, {{0.25, -60, -0.04, 9}, {0.5, -90, -0.02, 3}, {0, 0, 1, 0}}, {0, 0, 1}, 3});
    EXPECT_EQ(optimum.icase, 0);
    EXPECT_NEAR(optimum.objective, 0.05, 1e-12);
    EXPECT_NEAR(optimum.x[0], 0.04, 1e-12);
    EXPECT_NEAR(optimum.x[2], 1, 1e-12);
}

TEST(SimplxTest, AllBoundsZeroEndAtTheOrigin)
{
    Program program;
    const Matrix<double> a = randomMatrix(24, 5, 1, 0, 1);
    program.c.assign(5, 1);
    program.b.assign(24, 0);
    program.m1 = 24;
    for (long long i = 0; i < 24; ++i) {
        program.a.emplace_back(a[i], a[i] + 5);
    }
    const Optimum optimum = solve(program);
    EXPECT_EQ(optimum.icase, 0);
    EXPECT_THAT(optimum.x, testing::Each(0.0));
}

TEST(SimplxTest, NoConstraintsOrNoVariables)
{
    EXPECT_EQ(solve({{-1, -2}, {}, {}}).icase, 0);
    EXPECT_EQ(solve({{1}, {}, {}}).icase, 1);
    EXPECT_EQ(solve({{}, {{}}, {3}, 1}).icase, 0);
}

TEST(SimplxTest, WrongTableausAreRefused)
{
    NRVec<int> izrov;
    NRVec<int> iposv;
    int icase = 42;
    NRMat<double> wrongSize(3, 2, 0.0);
    EXPECT_THROW(NR::simplx(wrongSize, 2, 0, 0, icase, izrov, iposv), std::invalid_argument);
    NRMat<double> negative(3, 2, 0.0);
    negative[1][0] = -1;
    EXPECT_THROW(NR::simplx(negative, 1, 0, 0, icase, izrov, iposv), std::invalid_argument);
    for (const double odd : {std::nan(""), std::numeric_limits<double>::infinity()}) {
        NRMat<double> notFinite(3, 2, 0.0);
        notFinite[1][1] = odd;
        EXPECT_THROW(NR::simplx(notFinite, 1, 0, 0, icase, izrov, iposv), std::invalid_argument);
    }
    EXPECT_EQ(icase, 42);
}

// Duality: with a x <= b and every coefficient above 0, the multipliers in row 0 of the optimal tableau are a feasible
// point of the dual program of the same value, which no point of the program can exceed.
RC_GTEST_PROP(SimplxLaw, OptimumHasADualWitness, (std::uint32_t seed))
{
    const int n = *rc::gen::inRange(1, 8);
    const int m = *rc::gen::inRange(1, 25);
    const double unit = *rc::gen::element(1e-8, 1.0, 1e8);
    Program program;
    const Matrix<double> a = randomMatrix(m, n, seed, 0.01, 1);
    const Matrix<double> b = randomMatrix(1, m, seed + 1, -0.3, 1);
    const Matrix<double> c = randomMatrix(1, n, seed + 2, -0.2, 1);
    program.m1 = static_cast<std::size_t>(m);
    program.c.assign(c[0], c[0] + n);
    for (int i = 0; i < m; ++i) {
        program.a.emplace_back(a[i], a[i] + n);
        program.b.push_back(std::max(0.0, b[0][i]) * unit);
    }
    const Optimum optimum = solve(program);
    RC_ASSERT(optimum.icase == 0);
    std::vector<double> dual(static_cast<std::size_t>(m), 0.0);
    for (std::size_t j = 0; j < optimum.izrov.size(); ++j) {
        if (optimum.izrov[j] >= n) {
            dual[static_cast<std::size_t>(optimum.izrov[j] - n)] = -optimum.tableau[0][j + 1];
        }
    }
    for (const double multiplier : dual) {
        RC_ASSERT(multiplier >= -1e-10);
    }
    for (int j = 0; j < n; ++j) {
        double price = 0;
        for (int i = 0; i < m; ++i) {
            price += dual[static_cast<std::size_t>(i)] * a[i][j];
        }
        RC_ASSERT(price >= c[0][j] - 1e-9);
    }
    RC_ASSERT(std::abs(value(program.b, dual) - value(program.c, optimum.x)) <= 1e-9 * unit);
    RC_ASSERT(std::abs(optimum.objective - value(program.c, optimum.x)) <= 1e-9 * unit);
    for (int i = 0; i < m; ++i) {
        const auto row = static_cast<std::size_t>(i);
        RC_ASSERT(value(program.a[row], optimum.x) <= program.b[row] + 1e-9 * unit);
    }
}

RC_GTEST_PROP(SimplxLaw, MixedConstraintsAreMetOrRefusedWithReason, (std::uint32_t seed))
{
    const int n = *rc::gen::inRange(1, 6);
    Program program;
    program.m1 = static_cast<std::size_t>(*rc::gen::inRange(0, 5));
    program.m2 = static_cast<std::size_t>(*rc::gen::inRange(0, 4));
    program.m3 = static_cast<std::size_t>(*rc::gen::inRange(0, 3));
    const auto m = static_cast<long long>(program.m1 + program.m2 + program.m3);
    const Matrix<double> a = randomMatrix(m, n, seed);
    const Matrix<double> point = randomMatrix(n, 1, seed + 1, 0, 1);
    const Matrix<double> c = randomMatrix(1, n, seed + 2);
    program.c.assign(c[0], c[0] + n);
    for (long long i = 0; i < m; ++i) {
        // Constraints that `point` meets, their right-hand sides turned positive where the kind allows it.
        std::vector<double> row(a[i], a[i] + n);
        double at = value(row, std::vector<double>(point.storage.data, point.storage.data + n));
        if (at < 0) {
            at = -at;
            for (double& coefficient : row) {
                coefficient = -coefficient;
            }
        }
        program.a.push_back(row);
        program.b.push_back(at);
    }
    const Optimum optimum = solve(program);
    RC_ASSERT(optimum.icase != -1); // `point` meets all
    if (optimum.icase == 0) {
        expectFeasible(program, optimum.x);
        RC_ASSERT(!testing::Test::HasFailure());
        const double atPoint = value(program.c, std::vector<double>(point.storage.data, point.storage.data + n));
        RC_ASSERT(value(program.c, optimum.x) >= atPoint - 1e-8);
    }
}
