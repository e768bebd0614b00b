// SPDX-License-Identifier: GPL-3.0-or-later
#include "XTNT/xtnt_svd.h"

#include "XTNT/xtnt_parallel.h"

#include "support/AssertionReport.h"
#include "support/Numbers.h"
#include "support/SvdLaws.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

using testsupport::assertionReport;
using testsupport::elements;
using testsupport::isSvd;
using testsupport::matrixOf;
using testsupport::randomMatrix;
using testsupport::vectorOf;
using XTNT::Matrix;
using XTNT::SVD;
using XTNT::Vector;

namespace {

constexpr double epsilon = std::numeric_limits<double>::epsilon();
const double notANumber = std::numeric_limits<double>::quiet_NaN();
const double infinity = std::numeric_limits<double>::infinity();
const double pi = std::acos(-1.0);

::testing::AssertionResult decomposes(const Matrix<double>& A)
{
    const SVD svd(A);
    if (svd.m != A.M || svd.n != A.N) {
        return ::testing::AssertionFailure() << "m is " << svd.m << ", n is " << svd.n;
    }
    return isSvd(A, svd.U, svd.s, svd.V);
}

bool allNaN(const std::vector<double>& values)
{
    return std::all_of(values.begin(), values.end(), [](double value) { return std::isnan(value); });
}

// First differences of n numbers with zeros beside them, n + 1 rows, each set of rows `times` over. Its singular values
// are known: the square is the tridiagonal matrix of second differences.
Matrix<double> differences(long long n, long long times)
{
    Matrix<double> A((n + 1) * times, n);
    for (long long i = 0; i < A.M; ++i) {
        const long long row = i % (n + 1);
        if (row < n) {
            A[i][row] = 1;
        }
        if (row > 0) {
            A[i][row - 1] = -1;
        }
    }
    return A;
}

Matrix<double> scaledBy(const Matrix<double>& A, double factor)
{
    Matrix<double> result = A.deepCopy();
    for (long long i = 0; i < result.storage.n_; ++i) {
        result.storage[i] *= factor;
    }
    return result;
}

Matrix<double> standardised(const Matrix<double>& A, const Vector<double>& shift, const Vector<double>& divisor)
{
    Matrix<double> result = A.deepCopy();
    for (long long i = 0; i < A.M; ++i) {
        for (long long j = 0; j < A.N; ++j) {
            result[i][j] = (A[i][j] - (shift.n_ > 0 ? shift[j] : 0)) / (divisor.n_ > 0 ? divisor[j] : 1);
        }
    }
    return result;
}

void expectSameBits(const SVD& a, const SVD& b)
{
    EXPECT_EQ(elements(a.U), elements(b.U));
    EXPECT_EQ(elements(a.s), elements(b.s));
    EXPECT_EQ(elements(a.V), elements(b.V));
}

struct Shape
{
    long long rows;
    long long columns;
};

// Around the bounds of vectors, of the strips of a pass, of blocks and of the levels of blocks.
class SvdShapes : public testing::TestWithParam<Shape>
{
protected:
    Matrix<double> m_random = randomMatrix(GetParam().rows, GetParam().columns, 3);
};

// Puts the default number of threads back at the end of a test.
class SvdThreads : public testing::Test
{
protected:
    void TearDown() override { XTNT::setThreadCount(0); }
};

} // namespace

TEST_P(SvdShapes, RandomMatrixIsDecomposed)
{
    const auto before = elements(m_random);
    EXPECT_TRUE(decomposes(m_random));
    EXPECT_EQ(elements(m_random), before);
}

TEST_P(SvdShapes, FactorsAreOrthonormalWithoutFullRank)
{
    const long long half = std::max(1LL, std::min(m_random.M, m_random.N) / 2);
    EXPECT_TRUE(decomposes(randomMatrix(m_random.M, half, 4) * randomMatrix(half, m_random.N, 5)));
    EXPECT_TRUE(decomposes(Matrix<double>(m_random.M, m_random.N)));
    EXPECT_TRUE(decomposes(Matrix<double>(m_random.M, m_random.N, 0.1)));
}

TEST_P(SvdShapes, FarPowersOfTwoChangeTheValuesExactly)
{
    const SVD svd(m_random);
    for (const double factor : {std::ldexp(1.0, -900), std::ldexp(1.0, 900)}) {
        const SVD scaled(scaledBy(m_random, factor));
        EXPECT_EQ(elements(scaled.s), elements(svd.s * factor));
        EXPECT_EQ(elements(scaled.U), elements(svd.U));
        EXPECT_EQ(elements(scaled.V), elements(svd.V));
    }
}

INSTANTIATE_TEST_SUITE_P(Sweep, SvdShapes,
                         testing::Values(Shape{1, 1}, Shape{1, 4}, Shape{4, 1}, Shape{2, 3}, Shape{3, 9}, Shape{7, 7},
                                         Shape{8, 7}, Shape{24, 24}, Shape{100, 18}, Shape{511, 24}, Shape{512, 5},
                                         Shape{1023, 4}, Shape{1024, 24}, Shape{1025, 25}, Shape{1537, 29},
                                         Shape{2000, 50}, Shape{3001, 1}, Shape{9000, 49}, Shape{60000, 13},
                                         Shape{300, 60}));

TEST(SvdTest, SmallMatricesHaveTheValuesThatFollowByHand)
{
    const SVD square(matrixOf({{3, 0}, {4, 5}}));
    EXPECT_NEAR(square.s[0], 3 * std::sqrt(5.0), 8 * epsilon * square.s[0]);
    EXPECT_NEAR(square.s[1], std::sqrt(5.0), 8 * epsilon * square.s[0]);
    EXPECT_NEAR(std::abs(square.V[0][0]), std::sqrt(0.5), 8 * epsilon);

    const SVD row(matrixOf({{2, -3, 6}}));
    EXPECT_NEAR(row.s[0], 7, 16 * epsilon * 7);
    EXPECT_EQ(row.s[1], 0);

    const SVD column(matrixOf({{2}, {-3}, {6}}));
    EXPECT_NEAR(column.s[0], 7, 16 * epsilon * 7);

    const SVD diagonal(matrixOf({{0, -2, 0}, {0, 0, 1}, {5, 0, 0}, {0, 0, 0}}));
    EXPECT_NEAR(diagonal.s[0], 5, 16 * epsilon * 5);
    EXPECT_NEAR(diagonal.s[1], 2, 16 * epsilon * 5);
    EXPECT_NEAR(diagonal.s[2], 1, 16 * epsilon * 5);
}

TEST(SvdTest, DifferencesHaveTheValuesThatTheSineGives)
{
    for (const long long times : {1LL, 200LL, 5000LL}) {
        constexpr long long n = 12;
        const SVD svd(differences(n, times));
        for (long long k = 0; k < n; ++k) {
            const double expected =
                2 * std::sin(pi * static_cast<double>(n - k) / (2.0 * static_cast<double>(n + 1))) * std::sqrt(times);
            EXPECT_NEAR(svd.s[k], expected, testsupport::svdTolerance(n) * svd.s[0]) << times << " times, value " << k;
        }
    }
}

TEST(SvdTest, ValuesThatAGramMatrixWouldLoseAreKept)
{
    constexpr double small = 1e-9; // its square is below the rounding of 1
    Matrix<double> A(5000, 3);
    for (long long j = 0; j < 3; ++j) {
        A[4000][j] = 1;
        A[10 + 1500 * j][j] = small;
    }
    const SVD svd(A);
    EXPECT_NEAR(svd.s[0], std::sqrt(3.0), 8 * epsilon);
    EXPECT_NEAR(svd.s[1], small, 8 * epsilon);
    EXPECT_NEAR(svd.s[2], small, 8 * epsilon);
}

TEST(SvdTest, MagnitudesAtTheEndsOfTheRangeAreDecomposed)
{
    const Matrix<double> A = randomMatrix(3000, 5, 6);
    EXPECT_TRUE(decomposes(scaledBy(A, 1e-300)));
    EXPECT_TRUE(decomposes(scaledBy(A, 1e300)));
    constexpr double smallest = std::numeric_limits<double>::denorm_min();
    const SVD svd(Matrix<double>(3000, 5, smallest));
    EXPECT_EQ(svd.s[0], 122 * smallest) << "the root of 15000, as closely as there are numbers";
    EXPECT_TRUE(testsupport::areOrthonormal(svd.U, 5, testsupport::svdTolerance(5)));
    EXPECT_TRUE(decomposes(scaledBy(randomMatrix(3, 8, 7), 1e300)));
    EXPECT_TRUE(decomposes(scaledBy(randomMatrix(3, 8, 7), 1e-300)));
}

TEST(SvdTest, ValueBeyondTheRangeIsInfiniteAndTheFactorsStand)
{
    const SVD svd(Matrix<double>(2000, 3, std::numeric_limits<double>::max()));
    EXPECT_EQ(svd.s[0], infinity);
    EXPECT_TRUE(testsupport::areOrthonormal(svd.U, 3, testsupport::svdTolerance(3)));
    EXPECT_TRUE(testsupport::areOrthonormal(svd.V, 3, testsupport::svdTolerance(3)));
}

TEST(SvdTest, BlocksOfFarMagnitudesAreDecomposedTogether)
{
    for (const double factor : {0.0, 1e-300, 1e-160, 1e-60, 1e60, 1e160, 1e300}) {
        Matrix<double> A = randomMatrix(4000, 6, 8);
        for (long long i = 0; i < 2000 * A.N; ++i) {
            A.storage[i] *= factor;
        }
        EXPECT_TRUE(decomposes(A)) << factor;
        EXPECT_TRUE(decomposes(scaledBy(A, 1e-8))) << factor;
    }
    Matrix<double> tiny(4000, 3);
    tiny[3000][1] = 1e-305;
    EXPECT_EQ(SVD(tiny).s[0], 1e-305);
}

TEST(SvdTest, ColumnsOfFarMagnitudesAreDecomposedTogether)
{
    Matrix<double> A = randomMatrix(3000, 6, 9);
    for (long long i = 0; i < A.M; ++i) {
        for (long long j = 0; j < A.N; ++j) {
            A[i][j] *= std::pow(10.0, -60.0 * static_cast<double>(j));
        }
    }
    EXPECT_TRUE(decomposes(A));
}

TEST(SvdTest, ElementThatIsNotFiniteMakesEveryResultNaN)
{
    for (const Shape& shape : {Shape{1, 1}, Shape{3, 5}, Shape{10, 4}, Shape{5000, 7}}) {
        for (const double bad : {notANumber, infinity, -infinity}) {
            for (const long long where : {0LL, shape.rows * shape.columns - 1, shape.rows * shape.columns / 2}) {
                Matrix<double> A = randomMatrix(shape.rows, shape.columns, 10);
                A.storage[where] = bad;
                const SVD svd(A);
                EXPECT_EQ(svd.U.N, std::min(shape.rows + 1, shape.columns));
                EXPECT_TRUE(allNaN(elements(svd.U)) && allNaN(elements(svd.s)) && allNaN(elements(svd.V)))
                    << shape.rows << " rows, " << bad << " at " << where;
            }
        }
    }
}

TEST(SvdTest, EmptyMatrixGivesEmptyMembers)
{
    for (const Matrix<double>& A : {Matrix<double>(), Matrix<double>(0, 3), Matrix<double>(3, 0)}) {
        const SVD svd(A);
        EXPECT_TRUE(svd.U.empty());
        EXPECT_EQ(svd.s.n_, 0);
        EXPECT_TRUE(svd.V.empty());
    }
}

TEST(SvdTest, ShiftAndDivisorAreAppliedToTheColumns)
{
    for (const Shape& shape : {Shape{3, 5}, Shape{9, 5}, Shape{3000, 5}}) {
        const Matrix<double> A = randomMatrix(shape.rows, shape.columns, 11);
        const Vector<double> shift = vectorOf({0.5, -1, 2, 0, 3});
        const Vector<double> divisor = vectorOf({3, 0.1, -2, 1e6, 7});
        const Vector<double> none;
        const auto before = elements(A);
        expectSameBits(SVD(A, shift, divisor), SVD(standardised(A, shift, divisor)));
        expectSameBits(SVD(A, shift, none), SVD(standardised(A, shift, none)));
        expectSameBits(SVD(A, none, divisor), SVD(standardised(A, none, divisor)));
        EXPECT_EQ(elements(A), before);
    }
}

TEST(SvdTest, ZeroDivisorIsNotGuardedAgainst)
{
    EXPECT_TRUE(allNaN(elements(SVD(randomMatrix(2000, 2, 12), Vector<double>(), vectorOf({1, 0})).s)));
}

TEST(SvdDeathTest, ShiftOrDivisorOfAnotherLengthIsAContractViolation)
{
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    const Matrix<double> A(4, 3, 1.0);
    const Vector<double> two(2);
    EXPECT_DEATH(SVD(A, two, Vector<double>()),
                 assertionReport("platform/orvmklmath/svd.cpp", "shift.n_ == 0 || shift.n_ == a.N"));
    EXPECT_DEATH(SVD(A, Vector<double>(), two),
                 assertionReport("platform/orvmklmath/svd.cpp", "divisor.n_ == 0 || divisor.n_ == a.N"));
}

TEST_F(SvdThreads, ResultHasTheSameBitsForAnyNumberOfThreads)
{
    const Matrix<double> A = randomMatrix(100003, 7, 13);
    XTNT::setThreadCount(1);
    const SVD one(A);
    for (const int threads : {1, 2, 4}) {
        XTNT::setThreadCount(threads);
        expectSameBits(one, SVD(A));
    }
}

RC_GTEST_PROP(SvdLaws, AnyMatrixIsDecomposed, ())
{
    const auto rows = *rc::gen::weightedOneOf<long long>(
        {{3, rc::gen::inRange<long long>(1, 40)}, {1, rc::gen::inRange<long long>(1000, 3000)}});
    const auto columns = *rc::gen::inRange<long long>(1, 30);
    const auto rank = *rc::gen::inRange<long long>(1, 1 + std::min(rows, columns));
    const auto exponent = *rc::gen::inRange(-300, 300);
    const auto seed = *rc::gen::arbitrary<std::uint32_t>();
    const Matrix<double> A =
        scaledBy(randomMatrix(rows, rank, seed) * randomMatrix(rank, columns, seed + 1), std::pow(10.0, exponent));
    const auto holds = decomposes(A);
    RC_LOG() << holds.message();
    RC_ASSERT(bool(holds));
}

RC_GTEST_PROP(SvdLaws, OrderOfTheRowsDoesNotChangeTheValues, ())
{
    const auto rows = *rc::gen::inRange<long long>(1000, 3000);
    const auto columns = *rc::gen::inRange<long long>(1, 20);
    const Matrix<double> A = randomMatrix(rows, columns, *rc::gen::arbitrary<std::uint32_t>());
    Matrix<double> reversed(rows, columns);
    for (long long i = 0; i < rows; ++i) {
        reversed.setRow(i, A.row(rows - 1 - i));
    }
    const SVD svd(A);
    const SVD other(reversed);
    for (long long k = 0; k < columns; ++k) {
        RC_ASSERT(std::abs(svd.s[k] - other.s[k]) <= testsupport::svdTolerance(columns) * svd.s[0]);
    }
}
