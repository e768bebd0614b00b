// SPDX-License-Identifier: GPL-3.0-or-later
#include "XTNT/nnls.h"

#include "support/CapturedOutput.h"
#include "support/NnlsProblem.h"
#include "support/Numbers.h"
#include "support/NumericLaws.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

using testing::Each;
using testing::ElementsAre;
using testsupport::elements;
using testsupport::isNonNegativeOptimum;
using testsupport::length;
using testsupport::matrixOf;
using testsupport::NnlsResult;
using testsupport::randomMatrix;
using testsupport::residualSize;
using testsupport::runNnls;
using testsupport::vectorOf;
using XTNT::Matrix;
using XTNT::Vector;

namespace {

// A problem on which variables enter and leave nineteen times, past the limit of 3 * 6 triangular solves.
Matrix<double> wanderingMatrix()
{
    return matrixOf({{0.00758059, 0.0505131, -0.0366768, 0.0172545, -0.0163249, 0.035353},
                     {-2.22445e+06, 1.37618e+06, 1.20236e+06, 2.44254e+06, 1.63431e+06, 3.71794e+06},
                     {309629, -240564, -113187, 480399, -352503, 403142},
                     {-0.0010777, -0.00138965, 1.32609e-05, -0.000945819, 0.00117881, -0.000440517},
                     {3.02752e-05, -2.13709e-06, -0.000307636, 1.61339e-06, 7.16062e-06, 3.81186e-06},
                     {36669, 361875, -20249.5, 36575.9, -29643.1, -14772.3}})
        .transpose();
}

Vector<double> wanderingRightHandSide()
{
    return vectorOf({0.62662, 1.61975, -3.3556, 0.765245, 0.0337975, 0.696464});
}

// The solution of a small positive definite system in extended precision; nothing when a pivot vanishes.
std::optional<std::vector<long double>> solveDefinite(std::vector<std::vector<long double>> a,
                                                      std::vector<long double> b)
{
    const std::size_t n = b.size();
    for (std::size_t k = 0; k < n; ++k) {
        if (!(a[k][k] > 1e-13L)) {
            return std::nullopt;
        }
        for (std::size_t i = k + 1; i < n; ++i) {
            const long double factor = a[i][k] / a[k][k];
            for (std::size_t j = k; j < n; ++j) {
                a[i][j] -= factor * a[k][j];
            }
            b[i] -= factor * b[k];
        }
    }
    for (std::size_t k = n; k-- > 0;) {
        for (std::size_t j = k + 1; j < n; ++j) {
            b[k] -= a[k][j] * b[j];
        }
        b[k] /= a[k][k];
    }
    return b;
}

// The smallest residual over all passive sets whose least-squares solution is feasible: the optimum is among them.
double smallestResidual(const Matrix<double>& A, const Vector<double>& b)
{
    double best = length(b);
    for (unsigned set = 1; set < (1U << A.N); ++set) {
        std::vector<long long> chosen;
        for (long long j = 0; j < A.N; ++j) {
            if ((set >> j & 1U) != 0) {
                chosen.push_back(j);
            }
        }
        std::vector<std::vector<long double>> gram(chosen.size(), std::vector<long double>(chosen.size()));
        std::vector<long double> right(chosen.size());
        for (std::size_t p = 0; p < chosen.size(); ++p) {
            for (long long i = 0; i < A.M; ++i) {
                right[p] += static_cast<long double>(A[i][chosen[p]]) * b[i];
                for (std::size_t q = 0; q < chosen.size(); ++q) {
                    gram[p][q] += static_cast<long double>(A[i][chosen[p]]) * A[i][chosen[q]];
                }
            }
        }
        const auto values = solveDefinite(gram, right);
        if (!values || *std::min_element(values->begin(), values->end()) < 0) {
            continue;
        }
        Vector<double> x(A.N);
        for (std::size_t p = 0; p < chosen.size(); ++p) {
            x[chosen[p]] = static_cast<double>((*values)[p]);
        }
        best = std::min(best, length(b - A * x));
    }
    return best;
}

enum class Kind
{
    Dense,
    RankDeficient,
    Scaled,
    DuplicateColumns,
    NonNegative,
    SmallIntegers
};

Matrix<double> problemOf(Kind kind, int m, int n, std::uint32_t seed)
{
    Matrix<double> A = randomMatrix(m, n, seed);
    const Matrix<double> more = randomMatrix(n, n, seed + 1);
    switch (kind) {
    case Kind::Dense:
        break;
    case Kind::RankDeficient:
        A = randomMatrix(m, (n + 1) / 2, seed) * randomMatrix((n + 1) / 2, n, seed + 1);
        break;
    case Kind::Scaled:
        for (int j = 0; j < n; ++j) {
            for (int i = 0; i < m; ++i) {
                A[i][j] *= std::pow(10.0, std::round(8 * more[0][j]));
            }
        }
        break;
    case Kind::DuplicateColumns:
        for (int i = 0; i < m; ++i) {
            for (int j = n / 2; j < n; ++j) {
                A[i][j] = A[i][j - n / 2];
            }
        }
        break;
    case Kind::NonNegative:
        A = A.absolute();
        break;
    case Kind::SmallIntegers:
        for (long long i = 0; i < A.storage.n_; ++i) {
            A.storage[i] = std::round(2 * A.storage[i]);
        }
        break;
    }
    return A;
}

rc::Gen<Kind> anyKind()
{
    return rc::gen::element(Kind::Dense, Kind::RankDeficient, Kind::Scaled, Kind::DuplicateColumns, Kind::NonNegative,
                            Kind::SmallIntegers);
}

} // namespace

TEST(NnlsTest, RightHandSideInTheNegativeConeGivesZero)
{
    const Matrix<double> A = matrixOf({{1, 0}, {0, 2}, {1, 1}});
    const Vector<double> b = vectorOf({-1, -2, -2});
    const NnlsResult result = runNnls(A, b);
    EXPECT_THAT(elements(result.x), ElementsAre(0, 0));
    EXPECT_EQ(result.rnorm, 3);
    EXPECT_EQ(result.mode, 1);
    EXPECT_EQ(result.returned, 0);
}

TEST(NnlsTest, NoVariablesOrNoRowsSetMode2AndNothingElse)
{
    const NnlsResult noVariables = runNnls(Matrix<double>(3, 0), vectorOf({1, 2, 3}));
    EXPECT_EQ(noVariables.mode, 2);
    EXPECT_EQ(noVariables.rnorm, -1);
    EXPECT_EQ(noVariables.returned, 0);
    const NnlsResult noRows = runNnls(Matrix<double>(0, 2), Vector<double>());
    EXPECT_EQ(noRows.mode, 2);
    EXPECT_EQ(noRows.index[0], -77);
}

TEST(NnlsTest, InteriorSolutionIsTheLeastSquaresSolution)
{
    const Matrix<double> A = matrixOf({{1, 0}, {0, 1}, {0, 0}});
    const NnlsResult result = runNnls(A, vectorOf({3, 4, 5}));
    EXPECT_THAT(elements(result.x), ElementsAre(3, 4));
    EXPECT_DOUBLE_EQ(result.rnorm, 5);
    EXPECT_EQ(result.mode, 1);
}

TEST(NnlsTest, OneVariableAtItsBound)
{
    // Unconstrained, the solution is (2, -1).
    const NnlsResult result = runNnls(matrixOf({{1, 1}, {0, 1}}), vectorOf({1, -1}));
    EXPECT_THAT(elements(result.x), ElementsAre(1, 0));
    EXPECT_EQ(result.rnorm, 1);
    EXPECT_EQ(result.index[0], 0);
    EXPECT_EQ(result.index[1], 1);
    EXPECT_LE(result.w[1], 0);
}

TEST(NnlsTest, FirstVariableEntersAtATie)
{
    const NnlsResult result = runNnls(matrixOf({{1, 1}, {1, 1}}), vectorOf({2, 2}));
    EXPECT_NEAR(result.x[0], 2, 1e-15);
    EXPECT_EQ(result.x[1], 0);
    EXPECT_EQ(result.index[0], 0);
}

TEST(NnlsTest, DualIsClearedWhenThePositiveSetTakesAllRows)
{
    const NnlsResult result = runNnls(matrixOf({{1, 2, 5}}), vectorOf({10}));
    EXPECT_EQ(result.x[2], 2);
    EXPECT_EQ(result.rnorm, 0);
    EXPECT_THAT(std::vector<double>(result.w.begin(), result.w.end() - 1), Each(0.0));
}

TEST(NnlsTest, LeadingDimensionMayExceedTheRows)
{
    const Matrix<double> A = randomMatrix(7, 4, 3);
    const Vector<double> b = randomMatrix(7, 1, 4).column(0);
    EXPECT_EQ(elements(runNnls(A, b).x), elements(runNnls(A, b, 5).x));
}

TEST(NnlsTest, ColumnThatStandsOutLessThanAHundredthOfARoundingIsRefused)
{
    // The second column sticks out of the first by t; x[1] would be 1 / t.
    const auto secondAmount = [](double t) { return runNnls(matrixOf({{2, -1}, {0, t}}), vectorOf({1, 1})).x[1]; };
    EXPECT_EQ(secondAmount(1e-14), 0);
    EXPECT_NEAR(secondAmount(3e-14) * 3e-14, 1, 1e-12);
}

TEST(NnlsTest, IndependenceTestRoundsEveryOperation)
{
    // A hundredth of t that rounds to half an ulp of 1, but lies above it: one rounding at the end would accept.
    const double halfUlp = std::ldexp(1.0, -53);
    double t = halfUlp / 0.01;
    int found = 0;
    for (int step = -8; step <= 8; ++step) {
        double candidate = t;
        for (int k = 0; k < std::abs(step); ++k) {
            candidate = std::nextafter(candidate, step < 0 ? 0.0 : 1.0);
        }
        if (candidate * 0.01 == halfUlp && std::fma(candidate, 0.01, -halfUlp) > 0) {
            ++found;
            EXPECT_EQ(runNnls(matrixOf({{2, -1}, {0, candidate}}), vectorOf({1, 1})).x[1], 0);
        }
    }
    EXPECT_GT(found, 0);
}

TEST(NnlsTest, PassingTheLimitOfSolvesSetsMode3AndKeepsAFeasiblePoint)
{
    const testsupport::CapturedOutput output;
    const NnlsResult result = runNnls(wanderingMatrix(), wanderingRightHandSide());
    EXPECT_EQ(result.mode, 3);
    EXPECT_EQ(result.returned, 0);
    EXPECT_EQ(output.text(), "\n NNLS quitting on iteration count.\n");
    EXPECT_EQ(output.flushedText(), output.text());
    EXPECT_GE(result.x.Min(), 0);
    EXPECT_GE(result.rnorm, 0);
}

TEST(NnlsTest, EndsOnElementsThatAreNotFinite)
{
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double odd : {std::nan(""), infinity, -infinity, 1e308, 5e-324}) {
        for (int place = 0; place < 6; ++place) {
            Matrix<double> A = randomMatrix(3, 2, 9, 0, 1);
            A.storage[place] = odd;
            EXPECT_EQ(runNnls(A, vectorOf({1, 2, 3})).returned, 0);
            EXPECT_EQ(runNnls(randomMatrix(3, 2, 9, 0, 1), vectorOf({1, odd, 3})).returned, 0);
        }
    }
}

TEST(NnlsTest, CallsMayRunSideBySide)
{
    const Matrix<double> A = randomMatrix(24, 8, 11, 0, 1);
    const Matrix<double> right = randomMatrix(24, 200, 12);
    std::vector<std::vector<double>> expected;
    std::vector<Vector<double>> columns;
    for (long long c = 0; c < right.N; ++c) {
        columns.push_back(right.column(c));
        expected.push_back(elements(runNnls(A, columns.back()).x));
    }
    int wrong[4] = {0, 0, 0, 0};
    std::vector<std::thread> threads;
    for (int& count : wrong) {
        threads.emplace_back([&A, &columns, &expected, &count] {
            for (std::size_t c = 0; c < columns.size(); ++c) {
                count += elements(runNnls(A, columns[c]).x) == expected[c] ? 0 : 1;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_THAT(wrong, Each(0));
}

RC_GTEST_PROP(NnlsLaw, SolutionMeetsTheOptimalityConditions, ())
{
    const Kind kind = *anyKind();
    const int m = *rc::gen::inRange(1, 30);
    const int n = *rc::gen::inRange(1, 13);
    const auto seed = *rc::gen::arbitrary<std::uint32_t>();
    const Matrix<double> A = problemOf(kind, m, n, seed);
    const Vector<double> b = randomMatrix(m, 1, seed + 2).column(0);
    const NnlsResult result = runNnls(A, b);
    RC_ASSERT(result.mode == 1);
    const auto verdict = isNonNegativeOptimum(A, b, result.x);
    RC_LOG() << verdict.message();
    RC_ASSERT(static_cast<bool>(verdict));
    RC_ASSERT(std::abs(result.rnorm - length(b - A * result.x)) <=
              testsupport::lawTolerance * residualSize(A, b, result.x));
}

RC_GTEST_PROP(NnlsLaw, ResidualIsTheSmallestOverAllPassiveSets, ())
{
    const Kind kind = *rc::gen::element(Kind::Dense, Kind::NonNegative, Kind::SmallIntegers, Kind::DuplicateColumns);
    const int m = *rc::gen::inRange(1, 9);
    const int n = *rc::gen::inRange(1, 7);
    const auto seed = *rc::gen::arbitrary<std::uint32_t>();
    const Matrix<double> A = problemOf(kind, m, n, seed);
    const Vector<double> b = randomMatrix(m, 1, seed + 2).column(0);
    const NnlsResult result = runNnls(A, b);
    const double best = smallestResidual(A, b);
    RC_LOG() << "rnorm " << result.rnorm << ", smallest over all sets " << best;
    RC_ASSERT(std::abs(result.rnorm - best) <= 1e-9 * length(b));
}

RC_GTEST_PROP(NnlsLaw, ScalingTheRightHandSideScalesTheSolution, (std::uint32_t seed))
{
    const Matrix<double> A = randomMatrix(10, 5, seed, 0, 1);
    const Vector<double> b = randomMatrix(10, 1, seed + 1).column(0);
    const double factor = std::ldexp(1.0, *rc::gen::inRange(-300, 300));
    const Vector<double> plain = runNnls(A, b).x;
    const Vector<double> scaled = runNnls(A, b * factor).x;
    RC_ASSERT(elements(scaled) == elements(plain * factor));
}
