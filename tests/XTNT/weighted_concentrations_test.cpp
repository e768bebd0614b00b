// SPDX-License-Identifier: GPL-3.0-or-later
#include "XTNT/weighted_concentrations.h"

#include "XTNT/constrained_concentrations.h"
#include "XTNT/xtnt_parallel.h"
#include "support/Numbers.h"
#include "support/NumericLaws.h"

#include <cmath>
#include <random>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

using testsupport::areClose;
using testsupport::elements;
using testsupport::isNonNegativeOptimum;
using testsupport::matrixOf;
using testsupport::randomMatrix;
using testsupport::vectorOf;
using XTNT::Matrix;
using XTNT::NoiseModel;
using XTNT::Vector;

namespace {

// Rounding of fits whose spectra have a condition of some tens.
constexpr double fitTolerance = 1e-10;

NoiseModel noiseOf(double slope, double floor, long long bands)
{
    return {Matrix<double>(1, bands, slope), Matrix<double>(1, bands, floor)};
}

// The counted light of `expected`, and what reading it adds.
Matrix<double> counted(const Matrix<double>& expected, double readNoise, std::uint32_t seed)
{
    std::mt19937_64 generator(seed);
    std::normal_distribution<double> reading(0.0, readNoise);
    Matrix<double> counts(expected.M, expected.N);
    for (long long i = 0; i < counts.storage.n_; ++i) {
        std::poisson_distribution<long long> light(std::max(expected.storage[i], 1e-9));
        counts.storage[i] = static_cast<double>(light(generator)) + (readNoise > 0.0 ? reading(generator) : 0.0);
    }
    return counts;
}

double root(const NoiseModel& noise, double expected, long long band, long long group = 0)
{
    return std::sqrt(noise.slopes[group][band] * std::max(expected, 0.0) + noise.floors[group][band]);
}

// The problem of a row, its bands divided by the standard deviations at the amounts of a first fit.
struct ScaledRow
{
    ScaledRow(const Matrix<double>& D, const Matrix<double>& S, const NoiseModel& noise, const Matrix<double>& first,
              long long row)
        : design(S.N, S.M), data(S.N)
    {
        const long long group = row / (D.M / noise.slopes.M);
        for (long long b = 0; b < S.N; ++b) {
            double expected = 0.0;
            for (long long k = 0; k < S.M; ++k) {
                expected += first[row][k] * S[k][b];
            }
            const double deviation = root(noise, expected, b, group);
            data[b] = D[row][b] / deviation;
            for (long long k = 0; k < S.M; ++k) {
                design[b][k] = S[k][b] / deviation;
            }
        }
    }

    Matrix<double> design;
    Vector<double> data;
};

// Every row of C is that of the weights at the first fit.
void expectOptima(const Matrix<double>& D, const Matrix<double>& S, const NoiseModel& noise,
                  const Matrix<double>& first, const Matrix<double>& C)
{
    for (long long p = 0; p < D.M; ++p) {
        const ScaledRow row(D, S, noise, first, p);
        EXPECT_TRUE(isNonNegativeOptimum(row.design, row.data, C.row(p), fitTolerance)) << p;
    }
}

Matrix<double> firstFit(const Matrix<double>& D, const Matrix<double>& S)
{
    Matrix<double> C;
    XTNT::constrainedConcentrations(D, S, C);
    return C;
}

void fast(const Matrix<double>& D, const Matrix<double>& S, const NoiseModel& noise, Matrix<double>& C)
{
    XTNT::weightedConcentrations(D, S, noise, C);
}

using Procedure = void (*)(const Matrix<double>&, const Matrix<double>&, const NoiseModel&, Matrix<double>&);

// The two paths have one contract.
class WeightedConcentrationsTest : public testing::TestWithParam<Procedure>
{
protected:
    Matrix<double> fit(const Matrix<double>& D, const Matrix<double>& S, const NoiseModel& noise) const
    {
        Matrix<double> C = firstFit(D, S);
        GetParam()(D, S, noise, C);
        return C;
    }
};

} // namespace

TEST_P(WeightedConcentrationsTest, TrueAmountsComeBackWhateverTheWeights)
{
    const Matrix<double> S = randomMatrix(4, 18, 1, 0, 1);
    const Matrix<double> truth = randomMatrix(501, 4, 2, 0, 1);
    EXPECT_TRUE(areClose(fit(truth * S, S, noiseOf(1.0, 1e-3, 18)), truth, fitTolerance));
    EXPECT_TRUE(areClose(fit(truth * S, S, noiseOf(0.0, 1.0, 18)), truth, fitTolerance));
}

// With one weight for all it is the fit without weights.
TEST_P(WeightedConcentrationsTest, EqualWeightsChangeNothing)
{
    const Matrix<double> S = randomMatrix(5, 24, 1, 0, 1);
    const Matrix<double> D = randomMatrix(1000, 24, 2, -0.5, 1);
    EXPECT_TRUE(areClose(fit(D, S, noiseOf(0.0, 7.0, 24)), firstFit(D, S), fitTolerance));
}

TEST_P(WeightedConcentrationsTest, EveryRowMeetsTheOptimalityConditionsOfItsWeights)
{
    rc::check([this] {
        const auto seed = *rc::gen::arbitrary<std::uint32_t>();
        const int components = *rc::gen::inRange(1, 9);
        const int bands = *rc::gen::inRange(components, 25);
        const int groups = *rc::gen::inRange(1, 3);
        const Matrix<double> S = randomMatrix(components, bands, seed, 0, 1);
        const Matrix<double> D = randomMatrix(groups * 23, bands, seed + 1, -0.5, 1);
        const NoiseModel noise{randomMatrix(groups, bands, seed + 2, 0, 1),
                               randomMatrix(groups, bands, seed + 3, 0.001, 0.1)};
        const Matrix<double> first = firstFit(D, S);
        const Matrix<double> C = fit(D, S, noise);
        for (long long p = 0; p < D.M; ++p) {
            const ScaledRow row(D, S, noise, first, p);
            const auto verdict = isNonNegativeOptimum(row.design, row.data, C.row(p), fitTolerance);
            RC_LOG() << "pixel " << p << ": " << verdict.message();
            RC_ASSERT(static_cast<bool>(verdict));
        }
    });
}

TEST_P(WeightedConcentrationsTest, SameBitsOnAnyNumberOfThreads)
{
    const Matrix<double> S = randomMatrix(5, 24, 1, 0, 1);
    const Matrix<double> D = randomMatrix(10001, 24, 2, -0.5, 1);
    const NoiseModel noise = noiseOf(1.0, 0.01, 24);
    XTNT::setThreadCount(1);
    const Matrix<double> one = fit(D, S, noise);
    XTNT::setThreadCount(3);
    const Matrix<double> three = fit(D, S, noise);
    XTNT::setThreadCount(0);
    EXPECT_EQ(elements(one), elements(three));
}

// Rows are solved several at a time; none shows in another.
TEST_P(WeightedConcentrationsTest, ARowsBitsDoNotDependOnItsNeighbours)
{
    const Matrix<double> S = randomMatrix(4, 12, 1, 0, 1);
    const Matrix<double> D = randomMatrix(64, 12, 2, -0.5, 1);
    const NoiseModel noise = noiseOf(1.0, 0.01, 12);
    const Matrix<double> all = fit(D, S, noise);
    Matrix<double> shifted = D.subMatrix(3, 63, 0, 11);
    shifted[1][2] = std::nan("");
    const Matrix<double> some = fit(shifted, S, noise);
    for (long long p = 2; p < some.M; ++p) {
        ASSERT_EQ(elements(some.row(p)), elements(all.row(p + 3))) << p;
    }
}

TEST_P(WeightedConcentrationsTest, ARowThatIsNotFiniteStaysAsItIs)
{
    const Matrix<double> S = randomMatrix(2, 6, 1, 0, 1);
    Matrix<double> D = randomMatrix(9, 6, 2, 0, 1);
    D[4][1] = std::nan("");
    const Matrix<double> first = firstFit(D, S);
    ASSERT_TRUE(std::isnan(first[4][0]));
    const Matrix<double> C = fit(D, S, noiseOf(1.0, 0.1, 6));
    EXPECT_TRUE(std::isnan(C[4][0]) && std::isnan(C[4][1]));
    for (const long long p : {3, 5}) {
        EXPECT_TRUE(std::isfinite(C[p][0]) && std::isfinite(C[p][1]));
    }
}

TEST_P(WeightedConcentrationsTest, RowsOfZerosHaveNothing)
{
    const Matrix<double> S = randomMatrix(3, 8, 1, 0, 1);
    const Matrix<double> C = fit(Matrix<double>(7, 8), S, noiseOf(1.0, 1.0, 8));
    for (const double value : elements(C)) {
        EXPECT_EQ(value, 0.0);
    }
}

TEST_P(WeightedConcentrationsTest, OnePixelAndOneComponentIsTheWeightedMean)
{
    // Amounts 2 and 8 by band; their weights are 1 / (4 + 1) and 1 / (4 + 3) at the first fit's 5.
    const NoiseModel noise{matrixOf({{0.8, 0.8}}), matrixOf({{1.0, 3.0}})};
    const Matrix<double> C = fit(matrixOf({{2, 8}}), matrixOf({{1, 1}}), noise);
    EXPECT_NEAR(C[0][0], (2.0 / 5.0 + 8.0 / 7.0) / (1.0 / 5.0 + 1.0 / 7.0), 1e-14);
}

TEST_P(WeightedConcentrationsTest, ConstantImagesGiveConstantMaps)
{
    const Matrix<double> S = randomMatrix(3, 8, 1, 0, 1);
    const Matrix<double> C = fit(Matrix<double>(21, 8, 5.0), S, noiseOf(1.0, 1.0, 8));
    for (long long p = 1; p < C.M; ++p) {
        EXPECT_EQ(elements(C.row(p)), elements(C.row(0)));
    }
}

// More components than bands, and two that are one: no unique answer, but one that is optimal.
TEST_P(WeightedConcentrationsTest, MoreComponentsThanTheRankStillGiveAnOptimum)
{
    const NoiseModel noise = noiseOf(1.0, 0.1, 4);
    Matrix<double> S = randomMatrix(6, 4, 1, 0, 1);
    S.setRow(5, S.row(2));
    const Matrix<double> D = randomMatrix(30, 4, 2, 0, 1);
    Matrix<double> first(30, 6, 0.1);
    Matrix<double> C = first.deepCopy();
    GetParam()(D, S, noise, C);
    expectOptima(D, S, noise, first, C);
}

TEST_P(WeightedConcentrationsTest, MoreComponentsThanAMaskHoldsAreFitted)
{
    const Matrix<double> S = randomMatrix(34, 40, 1, 0, 1);
    const Matrix<double> D = randomMatrix(40, 40, 2, 0, 1);
    const NoiseModel noise = noiseOf(0.5, 0.1, 40);
    const Matrix<double> first = firstFit(D, S);
    const Matrix<double> C = fit(D, S, noise);
    expectOptima(D, S, noise, first, C);
}

// Amounts far apart in size: an image of ten thousand counts beside one of a tenth.
TEST_P(WeightedConcentrationsTest, WeightsOfManyMagnitudesAreMet)
{
    Matrix<double> S = randomMatrix(4, 12, 5, 0, 1);
    for (long long k = 0; k < S.M; ++k) {
        for (long long b = 0; b < S.N; ++b) {
            S[k][b] *= std::pow(10.0, static_cast<double>(b % 6) - 1.0);
        }
    }
    const Matrix<double> D = counted(randomMatrix(200, 4, 6, 0, 1) * S, 0.0, 7);
    const NoiseModel noise = noiseOf(1.0, 1.0, 12);
    const Matrix<double> first = firstFit(D, S);
    const Matrix<double> C = fit(D, S, noise);
    expectOptima(D, S, noise, first, C);
}

// What the weights are for: counted light whose images differ in brightness. The covariances of both fits say that the
// second one's errors are 0.6 of the first one's where the amounts are 2,000 and 200.
TEST_P(WeightedConcentrationsTest, CountedLightIsFittedNearerToTheTruth)
{
    constexpr int pixels = 4000;
    Matrix<double> S(2, 12);
    for (long long b = 0; b < 4; ++b) {
        S[0][b] = 1.0;
        S[1][b] = 0.9;
        S[0][b + 4] = 0.5;
        S[1][b + 4] = 0.1;
        S[0][b + 8] = 0.01;
        S[1][b + 8] = 0.15;
    }
    Matrix<double> truth = randomMatrix(pixels, 2, 2, 200, 500);
    for (long long p = 0; p < pixels; ++p) {
        truth[p][0] *= 5.0;
    }
    const Matrix<double> D = counted(truth * S, 2.0, 3);
    const double unweighted = (firstFit(D, S) - truth).norm(2);
    const double weighted = (fit(D, S, noiseOf(1.0, 4.0, 12)) - truth).norm(2);
    EXPECT_LT(weighted, 0.85 * unweighted);
}

INSTANTIATE_TEST_SUITE_P(BothPaths, WeightedConcentrationsTest,
                         testing::Values(&fast, &XTNT::weightedConcentrationsPlain),
                         [](const auto& tested) { return tested.index == 0 ? "Fast" : "Plain"; });

TEST(WeightedConcentrationsFastTest, WellSeparatedSpectraNeedNoNnls)
{
    const Matrix<double> S = randomMatrix(5, 24, 1, 0, 1);
    const Matrix<double> D = randomMatrix(2000, 24, 2, -0.5, 1);
    Matrix<double> C = firstFit(D, S);
    EXPECT_EQ(XTNT::weightedConcentrations(D, S, noiseOf(1.0, 0.01, 24), C), 0);
}

TEST(WeightedConcentrationsFastTest, SpectraNearToDependentGoToNnls)
{
    Matrix<double> S = randomMatrix(2, 24, 1, 0.5, 1);
    S.setRow(1, S.row(0));
    S[1][3] += 1e-5;
    const Matrix<double> D = randomMatrix(100, 24, 2, 0.5, 1);
    const Matrix<double> first(100, 2, 0.5);
    Matrix<double> C = first.deepCopy();
    EXPECT_GT(XTNT::weightedConcentrations(D, S, noiseOf(1.0, 0.01, 24), C), 0);
    Matrix<double> plain = first.deepCopy();
    XTNT::weightedConcentrationsPlain(D, S, noiseOf(1.0, 0.01, 24), plain);
    EXPECT_TRUE(areClose(C * S, plain * S, fitTolerance));
}

TEST(WeightedResidualTest, NoiseThatIsTheModelsLeavesOnePerDegreeOfFreedom)
{
    const Matrix<double> S = randomMatrix(3, 12, 1, 0.1, 1);
    const Matrix<double> D = counted(randomMatrix(3000, 3, 2, 100, 1000) * S, 5.0, 3);
    const NoiseModel noise = noiseOf(1.0, 25.0, 12);
    Matrix<double> C = firstFit(D, S);
    XTNT::weightedConcentrations(D, S, noise, C);
    const XTNT::WeightedResidual residual = XTNT::weightedResidual(D, S, noise, C);
    EXPECT_GE(residual.freedom, 9.0 * 3000);
    // 27,000 squares of about 1: a standard deviation of less than a hundredth.
    EXPECT_NEAR(residual.squares / residual.freedom, 1.0, 0.04);
}

TEST(WeightedResidualTest, RowsThatAreNotFiniteDoNotCount)
{
    const Matrix<double> S = matrixOf({{1, 1}});
    const Matrix<double> D = matrixOf({{1, 3}, {std::nan(""), 1}});
    const Matrix<double> C = matrixOf({{2}, {std::nan("")}});
    const XTNT::WeightedResidual residual = XTNT::weightedResidual(D, S, noiseOf(0.0, 0.5, 2), C);
    EXPECT_EQ(residual.squares, 4.0);
    EXPECT_EQ(residual.freedom, 1.0);
}

// Darkness whose noise was cut off at 0 says nothing of its size, as long as there is light.
TEST(WeightedResidualTest, RowsThatWereCutOffDoNotCountBesideLight)
{
    const Matrix<double> S = matrixOf({{1, 1, 1, 1}});
    const Matrix<double> D = matrixOf({{1, 3, 1, 3}, {0, 4, 0, 0}});
    const Matrix<double> C = matrixOf({{2}, {1}});
    EXPECT_EQ(XTNT::weightedResidual(D, S, noiseOf(0.0, 1.0, 4), C).squares, 4.0);
    EXPECT_EQ(XTNT::weightedResidual(D, S, noiseOf(0.0, 1.0, 4), C).freedom, 3.0);
    const Matrix<double> dark = matrixOf({{0, 4, 0, 0}});
    EXPECT_EQ(XTNT::weightedResidual(dark, S, noiseOf(0.0, 1.0, 4), matrixOf({{1}})).squares, 12.0);
    EXPECT_TRUE(XTNT::tellsOfNoise(D[0], 4));
    EXPECT_FALSE(XTNT::tellsOfNoise(D[1], 4));
}

// What repeating the same scene scatters by, in each component that is above 0.
TEST(StandardErrorsTest, AgreeWithTheScatterOfRepeatedScenes)
{
    constexpr int repeats = 20000;
    const Matrix<double> S = randomMatrix(4, 16, 1, 0.05, 1);
    const Vector<double> amounts = vectorOf({400, 90, 900, 250});
    Matrix<double> truth(repeats, 4);
    for (long long p = 0; p < repeats; ++p) {
        truth.setRow(p, amounts);
    }
    const Matrix<double> D = counted(truth * S, 4.0, 11);
    const NoiseModel noise = noiseOf(1.0, 16.0, 16);
    Matrix<double> C = firstFit(D, S);
    XTNT::weightedConcentrations(D, S, noise, C);
    const Matrix<double> errors = XTNT::standardErrors(S, noise, truth.subMatrix(0, 0, 0, 3));
    for (long long k = 0; k < 4; ++k) {
        double squares = 0;
        for (long long p = 0; p < repeats; ++p) {
            squares += (C[p][k] - amounts[k]) * (C[p][k] - amounts[k]);
        }
        // 20,000 squares tell their mean to 1 in 100, its root to 1 in 200.
        EXPECT_NEAR(errors[0][k] / std::sqrt(squares / repeats), 1.0, 0.025) << k;
    }
}

// Of two orthogonal spectra each has the error of a fit of its own, also one at 0.
TEST(StandardErrorsTest, OfSpectraThatShareNothingAreThoseOfEach)
{
    const Matrix<double> S = matrixOf({{3, 4, 0}, {0, 0, 2}});
    const NoiseModel noise = noiseOf(0.0, 4.0, 3);
    const Matrix<double> errors = XTNT::standardErrors(S, noise, matrixOf({{1, 1}, {1, 0}}));
    for (const long long p : {0, 1}) {
        EXPECT_NEAR(errors[p][0], 2.0 / 5.0, 1e-14);
        EXPECT_NEAR(errors[p][1], 2.0 / 2.0, 1e-14);
    }
}

// The inverse of the products of unit vectors at a cosine c has 1 / (1 - c^2) on its diagonal; without the other it is
// 1.
TEST(StandardErrorsTest, ComponentsAtZeroDoNotMakeTheOthersWorse)
{
    const double c = 0.8;
    const Matrix<double> S = matrixOf({{1, 0}, {c, 0.6}});
    const Matrix<double> errors = XTNT::standardErrors(S, noiseOf(0.0, 1.0, 2), matrixOf({{1, 1}, {1, 0}}));
    EXPECT_NEAR(errors[0][0], 1.0 / 0.6, 1e-14);
    EXPECT_NEAR(errors[0][1], 1.0 / 0.6, 1e-14);
    EXPECT_NEAR(errors[1][0], 1.0, 1e-14);
    EXPECT_NEAR(errors[1][1], 1.0 / 0.6, 1e-14);
}

TEST(StandardErrorsTest, OfDependentSpectraHaveNoLimit)
{
    const Matrix<double> S = matrixOf({{1, 2, 0}, {2, 4, 0}, {0, 0, 1}});
    const Matrix<double> errors =
        XTNT::standardErrors(S, noiseOf(0.0, 1.0, 3), matrixOf({{1, 0, 1}, {1, 1, 1}, {0, 0, 0}}));
    EXPECT_NEAR(errors[0][0], 1.0 / std::sqrt(5.0), 1e-14);
    EXPECT_TRUE(std::isinf(errors[0][1]));
    EXPECT_EQ(errors[0][2], 1.0);
    EXPECT_TRUE(std::isinf(errors[1][0]) && std::isinf(errors[1][1]));
    EXPECT_NEAR(errors[2][1], 1.0 / std::sqrt(20.0), 1e-14);
}

// Between 1e7 and the limit of what is told apart the factorisation of the spectra themselves tells.
TEST(StandardErrorsTest, OfSpectraNearToDependentAreThoseOfTheirAngle)
{
    const double angle = 1e-5;
    const Matrix<double> S = matrixOf({{1, 0, 0}, {std::cos(angle), std::sin(angle), 0}});
    const Matrix<double> errors = XTNT::standardErrors(S, noiseOf(0.0, 1.0, 3), matrixOf({{1, 1}, {0, 1}}));
    for (const long long p : {0, 1}) {
        EXPECT_NEAR(errors[p][0] * angle, 1.0, 1e-6);
    }
    EXPECT_NEAR(errors[0][1] * angle, 1.0, 1e-6);
}

TEST(StandardErrorsTest, ARowThatIsNotFiniteHasNone)
{
    const Matrix<double> S = randomMatrix(2, 5, 1, 0, 1);
    const Matrix<double> errors =
        XTNT::standardErrors(S, noiseOf(1.0, 1.0, 5), matrixOf({{1, 1}, {std::nan(""), 1}, {0, 0}}));
    EXPECT_TRUE(std::isfinite(errors[0][0]) && std::isfinite(errors[2][1]));
    EXPECT_TRUE(std::isnan(errors[1][0]) && std::isnan(errors[1][1]));
}

// The rows of the second spot have the noise of the second group.
TEST(StandardErrorsTest, FollowTheNoiseOfTheRowsGroup)
{
    const Matrix<double> S = matrixOf({{1, 0}, {0, 1}});
    const NoiseModel noise{matrixOf({{0, 0}, {0, 0}}), matrixOf({{1, 4}, {9, 16}})};
    const Matrix<double> errors = XTNT::standardErrors(S, noise, Matrix<double>(6, 2, 1.0));
    for (long long p = 0; p < 6; ++p) {
        EXPECT_NEAR(errors[p][0], p < 3 ? 1.0 : 3.0, 1e-14);
        EXPECT_NEAR(errors[p][1], p < 3 ? 2.0 : 4.0, 1e-14);
    }
}
