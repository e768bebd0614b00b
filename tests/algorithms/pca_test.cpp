// SPDX-License-Identifier: GPL-3.0-or-later
#include "algorithms/PCA.h"

#include "algorithms/columnStatistics.h"

#include "XTNT/xtnt_parallel.h"

#include "support/Numbers.h"
#include "support/NumericLaws.h"
#include "support/SvdLaws.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

using testsupport::areClose;
using testsupport::elements;
using testsupport::matrixOf;
using testsupport::randomMatrix;
using testsupport::vectorOf;
using XTNT::Matrix;
using XTNT::Vector;

namespace {

constexpr unsigned plain = 0;
constexpr unsigned autoscale = 1;
constexpr unsigned meanCentre = 2;

constexpr double epsilon = std::numeric_limits<double>::epsilon();
const double notANumber = std::numeric_limits<double>::quiet_NaN();

PCA decomposed(const Matrix<double>& x, unsigned mode)
{
    PCA pca;
    EXPECT_EQ(pca.decompose(x, mode), 1);
    return pca;
}

Matrix<double> reconstructed(const PCA& pca, int k)
{
    Matrix<double> out;
    pca.reconstruct(out, k);
    return out;
}

// U S V', one element at a time.
Matrix<double> product(const PCA& pca, long long k)
{
    Matrix<double> result(pca.U.M, pca.V.M);
    for (long long i = 0; i < result.M; ++i) {
        for (long long j = 0; j < result.N; ++j) {
            for (long long c = 0; c < k; ++c) {
                result[i][j] += pca.U[i][c] * pca.S[c][c] * pca.V[j][c];
            }
        }
    }
    return result;
}

// The pre-processing as a textbook has it.
Matrix<double> preprocessed(const Matrix<double>& x, unsigned mode)
{
    Matrix<double> result = x.deepCopy();
    for (long long j = 0; j < x.N && (mode == autoscale || mode == meanCentre); ++j) {
        long double sum = 0;
        for (long long i = 0; i < x.M; ++i) {
            sum += x[i][j];
        }
        const long double mean = sum / static_cast<long double>(x.M);
        long double squares = 0;
        for (long long i = 0; i < x.M; ++i) {
            squares += (x[i][j] - mean) * (x[i][j] - mean);
        }
        const long double deviation = mode == autoscale ? std::sqrt(squares / static_cast<long double>(x.M - 1)) : 1.0L;
        for (long long i = 0; i < x.M; ++i) {
            result[i][j] = static_cast<double>((x[i][j] - mean) / deviation);
        }
    }
    return result;
}

Vector<double> diagonalOf(const Matrix<double>& S, long long count)
{
    Vector<double> s(count);
    for (long long k = 0; k < count; ++k) {
        s[k] = S[k][k];
    }
    return s;
}

bool allNaN(const std::vector<double>& values)
{
    return std::all_of(values.begin(), values.end(), [](double value) { return std::isnan(value); });
}

// A decomposition with the given eigenvalues, whatever the matrix was.
PCA withEigenvalues(const std::vector<double>& values, int rank)
{
    PCA pca;
    const auto n = static_cast<long long>(values.size());
    pca.S = Matrix<double>(n, n);
    for (long long k = 0; k < n; ++k) {
        pca.S[k][k] = std::sqrt(values[static_cast<std::size_t>(k)]);
    }
    pca.rank = rank;
    return pca;
}

class PcaModes : public testing::TestWithParam<unsigned>
{
};

// The sizes at which the rank must be exact.
class PcaRank : public testing::TestWithParam<long long>
{
};

class PcaThreads : public testing::Test
{
protected:
    void TearDown() override { XTNT::setThreadCount(0); }
};

} // namespace

TEST_P(PcaModes, PreprocessedMatrixIsDecomposedAndTheInputStays)
{
    for (const long long rows : {9LL, 5000LL}) {
        const Matrix<double> x = randomMatrix(rows, 6, 1, 3, 5);
        const auto before = elements(x);
        const PCA pca = decomposed(x, GetParam());
        EXPECT_EQ(pca.S.M, 6);
        EXPECT_EQ(pca.S.N, 6);
        const Matrix<double> expected = preprocessed(x, GetParam());
        EXPECT_TRUE(testsupport::isSvd(expected, pca.U, diagonalOf(pca.S, 6), pca.V));
        EXPECT_TRUE(areClose(reconstructed(pca, 6), expected));
        EXPECT_EQ(elements(x), before);
    }
}

INSTANTIATE_TEST_SUITE_P(Modes, PcaModes, testing::Values(plain, autoscale, meanCentre));

TEST(PcaTest, OtherModesAreModeZero)
{
    const Matrix<double> x = randomMatrix(40, 3, 2);
    const PCA expected = decomposed(x, plain);
    for (const unsigned mode : {3U, 100U, std::numeric_limits<unsigned>::max()}) {
        const PCA pca = decomposed(x, mode);
        EXPECT_EQ(elements(pca.U), elements(expected.U));
        EXPECT_EQ(elements(pca.S), elements(expected.S));
        EXPECT_EQ(elements(pca.V), elements(expected.V));
    }
}

TEST(PcaTest, MembersBeginEmpty)
{
    static_assert(std::has_virtual_destructor<PCA>::value, "may be derived from");
    const PCA pca;
    EXPECT_EQ(pca.rank, 0);
    EXPECT_EQ(pca.condition, 0);
    EXPECT_TRUE(pca.U.empty() && pca.S.empty() && pca.V.empty());
    EXPECT_EQ(pca.eigenvalues().n_, 0);
    EXPECT_TRUE(pca.scores().empty());
    EXPECT_TRUE(pca.loadings().empty());
    EXPECT_TRUE(reconstructed(pca, 3).empty());
    EXPECT_EQ(pca.suggestComponents(0.5), 0);
}

TEST(PcaTest, EmptyInputIsRefusedAndChangesNothing)
{
    PCA pca = decomposed(randomMatrix(20, 4, 3), plain);
    const PCA before = pca;
    for (const Matrix<double>& x : {Matrix<double>(), Matrix<double>(0, 4), Matrix<double>(4, 0)}) {
        EXPECT_EQ(pca.decompose(x, plain), 0);
        EXPECT_EQ(pca.rank, before.rank);
        EXPECT_EQ(pca.condition, before.condition);
        EXPECT_EQ(pca.U.storage.data, before.U.storage.data);
        EXPECT_EQ(pca.S.storage.data, before.S.storage.data);
        EXPECT_EQ(pca.V.storage.data, before.V.storage.data);
    }
}

TEST(PcaTest, OneRowIsAutoscaledWithoutDividingByItsNumberLessOne)
{
    EXPECT_EQ(elements(columnDeviations(matrixOf({{3, 5}}), vectorOf({1, 5}))), (std::vector<double>{2, 0}));
    // The deviation from the mean is 0 all the same.
    const PCA pca = decomposed(matrixOf({{3, 5}}), autoscale);
    EXPECT_EQ(pca.rank, 0);
    EXPECT_TRUE(allNaN(elements(pca.eigenvalues())));
}

TEST(PcaTest, OneRowIsDecomposed)
{
    const PCA pca = decomposed(matrixOf({{2, -3, 6}}), plain);
    EXPECT_EQ(pca.rank, 1);
    EXPECT_EQ(pca.condition, 1);
    EXPECT_EQ(pca.U.N, 2);
    EXPECT_NEAR(pca.eigenvalues()[0], 49, 100 * epsilon * 49);
    EXPECT_TRUE(areClose(reconstructed(pca, 3), matrixOf({{2, -3, 6}})));
}

TEST(PcaTest, WideMatrixIsDecomposed)
{
    const Matrix<double> x = randomMatrix(3, 7, 4);
    const PCA pca = decomposed(x, plain);
    EXPECT_EQ(pca.rank, 3);
    EXPECT_EQ(pca.eigenvalues().n_, 7);
    EXPECT_TRUE(testsupport::isSvd(x, pca.U, diagonalOf(pca.S, 4), pca.V));
    EXPECT_TRUE(areClose(reconstructed(pca, 7), x));
    EXPECT_EQ(pca.scores().N, 7);
    EXPECT_EQ(pca.condition, pca.S[0][0] / pca.S[2][2]) << "the smallest of as many values as rows";
}

TEST(PcaTest, ConstantColumnIsDividedByZeroWithoutGuard)
{
    for (const long long rows : {10LL, 10000LL}) {
        Matrix<double> x = randomMatrix(rows, 3, 5);
        for (long long i = 0; i < rows; ++i) {
            x[i][1] = 0.1;
        }
        const PCA pca = decomposed(x, autoscale);
        EXPECT_EQ(pca.rank, 0);
        EXPECT_TRUE(std::isnan(pca.condition));
        EXPECT_TRUE(allNaN(elements(pca.eigenvalues())));
        EXPECT_EQ(pca.suggestComponents(0.99), 0);
        // A mean that is taken off leaves an exact zero.
        EXPECT_EQ(decomposed(x, meanCentre).rank, 2);
    }
}

TEST(PcaTest, NaNPassesIntoEveryMember)
{
    for (const unsigned mode : {plain, autoscale, meanCentre}) {
        Matrix<double> x = randomMatrix(3000, 3, 6);
        x[1700][1] = notANumber;
        const PCA pca = decomposed(x, mode);
        EXPECT_EQ(pca.rank, 0);
        EXPECT_TRUE(allNaN(elements(pca.U)));
        EXPECT_TRUE(allNaN(elements(pca.V)));
        EXPECT_EQ(elements(reconstructed(pca, 2)), elements(Matrix<double>(3000, 3)));
    }
}

TEST_P(PcaRank, ColumnsThatRepeatOneHaveRankOne)
{
    Matrix<double> x = randomMatrix(GetParam(), 1, 7) * Matrix<double>(1, 8, 1.0);
    EXPECT_EQ(decomposed(x, plain).rank, 1);
    EXPECT_EQ(decomposed(x, autoscale).rank, 1);
}

TEST_P(PcaRank, ProductOfKColumnsAndRowsHasRankK)
{
    for (const long long k : {2LL, 3LL, 5LL, 7LL}) {
        EXPECT_EQ(decomposed(randomMatrix(GetParam(), k, 8) * randomMatrix(k, 8, 9), plain).rank, k);
    }
}

TEST_P(PcaRank, PositiveProductOfKColumnsAndRowsHasRankK)
{
    for (const long long k : {2LL, 4LL}) {
        EXPECT_EQ(decomposed(randomMatrix(GetParam(), k, 10, 0, 1000) * randomMatrix(k, 8, 11, 0, 1), plain).rank, k);
    }
}

TEST_P(PcaRank, MatrixWithNoiseHasFullRank)
{
    EXPECT_EQ(decomposed(randomMatrix(GetParam(), 8, 12), plain).rank, 8);
}

TEST_P(PcaRank, ZeroMatrixHasRankZeroAndSuggestsNoComponent)
{
    const PCA pca = decomposed(Matrix<double>(GetParam(), 8), plain);
    EXPECT_EQ(pca.rank, 0);
    EXPECT_EQ(pca.suggestComponents(0.99), 0);
    EXPECT_EQ(elements(pca.eigenvalues()), std::vector<double>(8));
}

INSTANTIATE_TEST_SUITE_P(Rows, PcaRank, testing::Values(10, 1000, 1000000));

TEST(PcaTest, RankCountsValuesAboveTheLargestTimesSizeAndEpsilon)
{
    // A diagonal matrix keeps its values exactly.
    const double bound = 3 * 1.0 * std::ldexp(1.0, -52);
    EXPECT_EQ(decomposed(matrixOf({{1, 0, 0}, {0, bound, 0}, {0, 0, 0.5}}), plain).rank, 2);
    EXPECT_EQ(decomposed(matrixOf({{1, 0, 0}, {0, 2 * bound, 0}, {0, 0, 0.5}}), plain).rank, 3);
}

TEST(PcaTest, ConditionIsLargestValueOverSmallestWithoutGuard)
{
    EXPECT_EQ(decomposed(matrixOf({{4, 0}, {0, 0.5}}), plain).condition, 8);
    EXPECT_EQ(decomposed(matrixOf({{4, 0}, {0, 0}}), plain).condition, std::numeric_limits<double>::infinity());
    EXPECT_TRUE(std::isnan(decomposed(Matrix<double>(4, 2), plain).condition));
}

TEST(PcaTest, ReconstructionIsTheProductOfTheFirstComponents)
{
    for (const long long rows : {6LL, 5001LL}) {
        const PCA pca = decomposed(randomMatrix(rows, 5, 13), meanCentre);
        for (int k = 1; k <= 5; ++k) {
            EXPECT_TRUE(areClose(reconstructed(pca, k), product(pca, k))) << k;
        }
    }
}

TEST(PcaTest, ReconstructionFromMoreComponentsThanTheRankUsesTheRank)
{
    const Matrix<double> x = randomMatrix(3000, 2, 14) * randomMatrix(2, 6, 15);
    const PCA pca = decomposed(x, plain);
    ASSERT_EQ(pca.rank, 2);
    for (const int k : {3, 6, 1000}) {
        EXPECT_EQ(elements(reconstructed(pca, k)), elements(reconstructed(pca, pca.rank)));
    }
    EXPECT_TRUE(areClose(reconstructed(pca, 6), x));
}

TEST(PcaTest, ReconstructionWithoutAComponentIsZero)
{
    const Matrix<double> zero(30, 4);
    const PCA pca = decomposed(randomMatrix(30, 4, 16), plain);
    for (const int k : {0, -1, std::numeric_limits<int>::min()}) {
        const Matrix<double> out = reconstructed(pca, k);
        EXPECT_EQ(out.M, 30);
        EXPECT_EQ(elements(out), elements(zero));
    }
    EXPECT_EQ(elements(reconstructed(decomposed(zero, plain), 3)), elements(zero));
}

TEST(PcaTest, ReconstructionReturnsItsArgumentAndLeavesOtherSharesAlone)
{
    const PCA pca = decomposed(randomMatrix(30, 4, 17), plain);
    Matrix<double> out(2, 2, 5.0);
    const Matrix<double> share = out;
    EXPECT_EQ(&pca.reconstruct(out, 2), &out);
    EXPECT_EQ(out.M, 30);
    EXPECT_EQ(elements(share), std::vector<double>(4, 5.0));
}

TEST(PcaTest, EigenvaluesAreTheSquaresInDescendingOrder)
{
    const PCA pca = decomposed(randomMatrix(500, 6, 18), autoscale);
    const Vector<double> values = pca.eigenvalues();
    ASSERT_EQ(values.n_, 6);
    double total = 0;
    for (long long k = 0; k < 6; ++k) {
        EXPECT_EQ(values[k], pca.S[k][k] * pca.S[k][k]);
        EXPECT_TRUE(k == 0 || values[k] <= values[k - 1]);
        total += values[k];
    }
    EXPECT_NEAR(total, 499.0 * 6, 1e-9) << "columns of variance 1";
}

TEST(PcaTest, ScoresAreUTimesSAndLoadingsShareV)
{
    const PCA pca = decomposed(randomMatrix(3000, 5, 19), plain);
    EXPECT_TRUE(areClose(pca.scores(), pca.U * pca.S));
    EXPECT_EQ(pca.loadings().storage.data, pca.V.storage.data);
}

TEST(PcaTest, SuggestionIsTheSmallestNumberWhoseShareReachesTheFraction)
{
    const PCA pca = withEigenvalues({64, 16, 16, 4, 0}, 4);
    EXPECT_EQ(pca.suggestComponents(0.0), 1);
    EXPECT_EQ(pca.suggestComponents(0.5), 1);
    EXPECT_EQ(pca.suggestComponents(0.64), 1);
    EXPECT_EQ(pca.suggestComponents(0.65), 2);
    EXPECT_EQ(pca.suggestComponents(0.96), 3);
    EXPECT_EQ(pca.suggestComponents(0.99), 4);
    EXPECT_EQ(pca.suggestComponents(1.0), 4);
}

TEST(PcaTest, SuggestionIsTheRankWithoutATotalAndForAFractionThatIsNone)
{
    const PCA pca = withEigenvalues({9, 1}, 7);
    for (const double fraction : {-0.01, 1.01, notANumber, std::numeric_limits<double>::infinity()}) {
        EXPECT_EQ(pca.suggestComponents(fraction), 7) << fraction;
    }
    EXPECT_EQ(withEigenvalues({0, 0}, 5).suggestComponents(0.5), 5);
    EXPECT_EQ(withEigenvalues({notANumber, notANumber}, 3).suggestComponents(0.5), 3) << "no share reaches it";
}

TEST(PcaTest, MeansAndDeviationsOfColumnsFarFromZeroKeepTheirDigits)
{
    Matrix<double> x(40000, 2);
    for (long long i = 0; i < x.M; ++i) {
        x[i][0] = 1e9 + static_cast<double>(i % 2);
        x[i][1] = 0.1;
    }
    const Vector<double> means = columnMeans(x);
    EXPECT_EQ(means[0], 1e9 + 0.5);
    EXPECT_EQ(means[1], 0.1);
    const Vector<double> deviations = columnDeviations(x, means);
    EXPECT_NEAR(deviations[0], 0.5 * std::sqrt(40000.0 / 39999.0), 1e-14);
    EXPECT_EQ(deviations[1], 0);
}

TEST_F(PcaThreads, ResultsHaveTheSameBitsForAnyNumberOfThreads)
{
    const Matrix<double> x = randomMatrix(50021, 6, 20);
    XTNT::setThreadCount(1);
    const PCA one = decomposed(x, autoscale);
    const Matrix<double> expected = reconstructed(one, 3);
    for (const int threads : {1, 2, 4}) {
        XTNT::setThreadCount(threads);
        const PCA pca = decomposed(x, autoscale);
        EXPECT_EQ(elements(pca.U), elements(one.U));
        EXPECT_EQ(elements(pca.S), elements(one.S));
        EXPECT_EQ(elements(pca.V), elements(one.V));
        EXPECT_EQ(elements(reconstructed(pca, 3)), elements(expected));
    }
}

// What rank k leaves over is, squared, what the other eigenvalues add up to (C. Eckart, G. Young, The approximation of
// one matrix by another of lower rank, 1936).
RC_GTEST_PROP(PcaLaws, ReconstructionLeavesTheOtherEigenvalues, ())
{
    const auto rows = *rc::gen::inRange<long long>(1, 2500);
    const auto columns = *rc::gen::inRange<long long>(1, 12);
    const auto k = *rc::gen::inRange(0, 14);
    const auto mode = *rc::gen::element(plain, meanCentre);
    const Matrix<double> x = randomMatrix(rows, columns, *rc::gen::arbitrary<std::uint32_t>(), 0, 2);
    PCA pca;
    RC_ASSERT(pca.decompose(x, mode) == 1);
    const double left = (preprocessed(x, mode) - reconstructed(pca, k)).norm(2);
    const Vector<double> values = pca.eigenvalues();
    double others = 0;
    for (long long i = k; i < values.n_; ++i) {
        others += values[i];
    }
    RC_ASSERT(std::abs(left - std::sqrt(others)) <= testsupport::lawTolerance * (1 + pca.S[0][0]));
}
