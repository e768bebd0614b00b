// SPDX-License-Identifier: GPL-3.0-or-later
#include "XTNT/simplex_fit.h"

#include "support/Numbers.h"
#include "support/NumericLaws.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

using testing::ElementsAre;
using testsupport::elements;
using testsupport::matrixOf;
using testsupport::randomMatrix;
using testsupport::vectorOf;
using XTNT::Matrix;
using XTNT::simplexFit;
using XTNT::Vector;

namespace {

Vector<double> boundsOf(const Vector<double>& d, double tolerance)
{
    Vector<double> bounds(d.n_);
    for (long long i = 0; i < d.n_; ++i) {
        bounds[i] = std::max(0.0, d[i] + tolerance * d.Max());
    }
    return bounds;
}

double objectiveOf(const Matrix<double>& A, const Vector<double>& x)
{
    return (x * A).cumulativeSum()[A.N - 1];
}

bool isFeasible(const Matrix<double>& A, const Vector<double>& bounds, const Vector<double>& x)
{
    const Vector<double> fitted = x * A;
    const double slack = 1e-9 * (bounds.Max() + 1e-300);
    for (long long i = 0; i < A.N; ++i) {
        if (fitted[i] > bounds[i] + slack) {
            return false;
        }
    }
    return x.Min() >= 0;
}

// The best objective over all vertices for two spectra: every vertex is the crossing of two of the lines of the bands
// and the axes.
double bestVertexOfTwo(const Matrix<double>& A, const Vector<double>& bounds)
{
    Matrix<double> lines(A.N + 2, 3);
    for (long long i = 0; i < A.N; ++i) {
        lines.setRow(i, vectorOf({A[0][i], A[1][i], bounds[i]}));
    }
    lines.setRow(A.N, vectorOf({1, 0, 0}));
    lines.setRow(A.N + 1, vectorOf({0, 1, 0}));
    double best = 0;
    for (long long p = 0; p < lines.M; ++p) {
        for (long long q = p + 1; q < lines.M; ++q) {
            const double determinant = lines[p][0] * lines[q][1] - lines[p][1] * lines[q][0];
            if (std::abs(determinant) < 1e-9) {
                continue;
            }
            const Vector<double> x =
                vectorOf({std::max(0.0, (lines[p][2] * lines[q][1] - lines[p][1] * lines[q][2]) / determinant),
                          std::max(0.0, (lines[p][0] * lines[q][2] - lines[p][2] * lines[q][0]) / determinant)});
            if (isFeasible(A, bounds, x)) {
                best = std::max(best, objectiveOf(A, x));
            }
        }
    }
    return best;
}

} // namespace

TEST(SimplexFitTest, OneSpectrumEqualToTheDataHasTheAmountOneAndNoResidual)
{
    const Vector<double> d = vectorOf({0.3, 1.7, 0.9, 0});
    Matrix<double> A(1, 4);
    A.setRow(0, d);
    Vector<double> residual;
    Vector<double> x;
    EXPECT_EQ(simplexFit(d, A, residual, x, 0), 0);
    EXPECT_THAT(elements(x), ElementsAre(1));
    EXPECT_THAT(elements(residual), ElementsAre(0, 0, 0, 0));
}

TEST(SimplexFitTest, DataOfNegativeValuesOnlyGiveZeroAmounts)
{
    Vector<double> residual;
    Vector<double> x;
    EXPECT_EQ(simplexFit(vectorOf({-1, -2, -3}), randomMatrix(2, 3, 1, 0.1, 1), residual, x, 0), 0);
    EXPECT_THAT(elements(x), ElementsAre(0, 0));
    EXPECT_THAT(elements(residual), ElementsAre(0, 0, 0));
}

TEST(SimplexFitTest, DifferentNumbersOfBandsGive2AndChangeNothing)
{
    Vector<double> residual = vectorOf({7});
    Vector<double> x = vectorOf({8});
    EXPECT_EQ(simplexFit(vectorOf({1, 2}), matrixOf({{1, 2, 3}}), residual, x, 0), 2);
    EXPECT_THAT(elements(residual), ElementsAre(7));
    EXPECT_THAT(elements(x), ElementsAre(8));
}

TEST(SimplexFitTest, ElementThatIsNotFiniteMakesTheSolverThrowAndGives3)
{
    const double infinity = std::numeric_limits<double>::infinity();
    Vector<double> residual = vectorOf({7});
    Vector<double> x = vectorOf({8});
    EXPECT_EQ(simplexFit(vectorOf({1, 2}), matrixOf({{1, std::nan("")}}), residual, x, 0), 3);
    EXPECT_EQ(simplexFit(vectorOf({1, infinity}), matrixOf({{1, 2}}), residual, x, 0.1), 3);
    EXPECT_THAT(elements(residual), ElementsAre(7));
    EXPECT_THAT(elements(x), ElementsAre(8));
}

TEST(SimplexFitTest, NegativeElementsLeaveTheObjectiveBounded)
{
    // Together the first two spectra cost the first band nothing.
    Vector<double> residual;
    Vector<double> x;
    EXPECT_EQ(simplexFit(vectorOf({1, 1}), matrixOf({{1, -1}, {-1, 1.5}}), residual, x, 0), 0);
    EXPECT_NEAR(x[0], 5, 1e-12);
    EXPECT_NEAR(x[1], 4, 1e-12);
}

TEST(SimplexFitTest, ToleranceRaisesEveryBoundByAShareOfTheMaximum)
{
    Vector<double> residual;
    Vector<double> x;
    EXPECT_EQ(simplexFit(vectorOf({1, 10}), matrixOf({{1, 1}}), residual, x, 0), 0);
    EXPECT_DOUBLE_EQ(x[0], 1);
    EXPECT_THAT(elements(residual), ElementsAre(0, 9));
    EXPECT_EQ(simplexFit(vectorOf({1, 10}), matrixOf({{1, 1}}), residual, x, 0.1), 0);
    EXPECT_DOUBLE_EQ(x[0], 2);
    EXPECT_THAT(elements(residual), ElementsAre(0, 8));
}

TEST(SimplexFitTest, ResultMayTakeThePlaceOfTheData)
{
    Vector<double> d = vectorOf({1, 10});
    Vector<double> x;
    EXPECT_EQ(simplexFit(d, matrixOf({{1, 1}}), d, x, 0), 0);
    EXPECT_THAT(elements(d), ElementsAre(0, 9));
}

TEST(SimplexFitTest, NoSpectraAndNoBands)
{
    Vector<double> residual;
    Vector<double> x = vectorOf({1});
    EXPECT_EQ(simplexFit(vectorOf({1, -2}), Matrix<double>(0, 2), residual, x, 0), 0);
    EXPECT_TRUE(x.empty());
    EXPECT_THAT(elements(residual), ElementsAre(1, 0));
    EXPECT_EQ(simplexFit(Vector<double>(), Matrix<double>(2, 0), residual, x, 0), 0);
    EXPECT_THAT(elements(x), ElementsAre(0, 0));
    EXPECT_TRUE(residual.empty());
}

TEST(SimplexFitTest, ZeroSpectrumGetsNoAmount)
{
    Vector<double> residual;
    Vector<double> x;
    EXPECT_EQ(simplexFit(vectorOf({2, 2}), matrixOf({{0, 0}, {1, 1}}), residual, x, 0), 0);
    EXPECT_THAT(elements(x), ElementsAre(0, 2));
}

TEST(SimplexFitTest, ScaleOfDataAndSpectraDoesNotMatter)
{
    const Matrix<double> A = matrixOf({{1, 2, 1}, {2, 1, 0.5}});
    for (const double scale : {1e-8, 1.0, 1e8}) {
        Matrix<double> scaled(2, 3);
        for (long long i = 0; i < 3; ++i) {
            scaled[0][i] = A[0][i] * scale;
            scaled[1][i] = A[1][i] / scale;
        }
        Vector<double> residual;
        Vector<double> x;
        ASSERT_EQ(simplexFit(vectorOf({4, 5, 30}) * (scale * scale), scaled, residual, x, 0), 0);
        EXPECT_NEAR(x[0] / scale, 2, 1e-9);
        EXPECT_NEAR(x[1] / (scale * scale * scale), 1, 1e-9);
    }
}

TEST(SubtractAmountsTest, SubtractsAndClampsOrRefuses)
{
    Vector<double> residual = vectorOf({7});
    const Matrix<double> A = matrixOf({{1, 2}, {3, 1}});
    EXPECT_EQ(subtractAmounts(vectorOf({5, 5}), A, residual, vectorOf({1})), 2);
    EXPECT_EQ(subtractAmounts(vectorOf({5}), A, residual, vectorOf({1, 1})), 2);
    EXPECT_THAT(elements(residual), ElementsAre(7));
    EXPECT_EQ(subtractAmounts(vectorOf({5, 2}), A, residual, vectorOf({1, 1})), 0);
    EXPECT_THAT(elements(residual), ElementsAre(1, 0));
}

RC_GTEST_PROP(SimplexFitLaw, AmountsAreFeasibleAndNoVertexIsBetter, (std::uint32_t seed))
{
    const int bands = *rc::gen::inRange(1, 20);
    const double tolerance = *rc::gen::element(0.0, 0.05, 0.1);
    const double low = *rc::gen::element(0.0, -0.5);
    const Matrix<double> A = randomMatrix(2, bands, seed, 0.01, 1);
    const Vector<double> d = randomMatrix(1, bands, seed + 1, low, 1).row(0);
    Vector<double> residual;
    Vector<double> x;
    RC_ASSERT(simplexFit(d, A, residual, x, tolerance) == 0);
    const Vector<double> bounds = boundsOf(d, tolerance);
    RC_ASSERT(isFeasible(A, bounds, x));
    const double best = bestVertexOfTwo(A, bounds);
    RC_LOG() << "objective " << objectiveOf(A, x) << ", best vertex " << best;
    RC_ASSERT(std::abs(objectiveOf(A, x) - best) <= 1e-8 * (best + 1e-9));
}

RC_GTEST_PROP(SimplexFitLaw, ResidualIsTheClampedRestOfTheData, (std::uint32_t seed))
{
    const int bands = *rc::gen::inRange(1, 30);
    const int spectra = *rc::gen::inRange(1, 8);
    const Matrix<double> A = randomMatrix(spectra, bands, seed, 0.01, 1);
    const Vector<double> d = randomMatrix(1, bands, seed + 1, -0.1, 1).row(0);
    Vector<double> residual;
    Vector<double> x;
    RC_ASSERT(simplexFit(d, A, residual, x, 0.05) == 0);
    RC_ASSERT(isFeasible(A, boundsOf(d, 0.05), x));
    const Vector<double> rest = d - x * A;
    for (long long i = 0; i < bands; ++i) {
        RC_ASSERT(residual[i] >= 0);
        RC_ASSERT(std::abs(residual[i] - std::max(0.0, rest[i])) <= 1e-12);
    }
}
