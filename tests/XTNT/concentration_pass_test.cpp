// SPDX-License-Identifier: GPL-3.0-or-later
#include "XTNT/concentration_pass.h"

#include "XTNT/constrained_concentrations.h"
#include "XTNT/least_squares.h"
#include "XTNT/nnls_row_fit.h"
#include "XTNT/passive_set_cache.h"
#include "XTNT/row_blocks.h"
#include "XTNT/xtnt_parallel.h"

#include "support/Numbers.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <mutex>
#include <ostream>
#include <random>
#include <vector>

using testsupport::randomMatrix;
using XTNT::ConcentrationPass;
using XTNT::Matrix;
using XTNT::ReducedSpectra;

namespace {

constexpr double epsilon = std::numeric_limits<double>::epsilon();

// Rows that mix the spectra with some amounts at zero, plus noise.
Matrix<double> mixtures(const Matrix<double>& spectra, long long rows, double noise, std::uint64_t seed)
{
    std::mt19937_64 generator(seed);
    std::uniform_real_distribution<double> chance(0, 1);
    std::normal_distribution<double> error(0, noise);
    Matrix<double> result(rows, spectra.num_cols());
    for (long long r = 0; r < rows; ++r) {
        for (long long k = 0; k < spectra.num_rows(); ++k) {
            const double amount = chance(generator) < 0.4 ? 0 : chance(generator);
            for (long long b = 0; b < spectra.num_cols(); ++b) {
                result[r][b] += amount * spectra[k][b];
            }
        }
        for (long long b = 0; b < spectra.num_cols(); ++b) {
            result[r][b] += error(generator);
        }
    }
    return result;
}

struct Counts
{
    long long negative;
    long long nnls;
};

Counts runPass(const Matrix<double>& D, const Matrix<double>& S, Matrix<double>& C)
{
    C = Matrix<double>(D.num_rows(), S.num_rows());
    ConcentrationPass pass(D, S, XTNT::rightSolutionOperator(S));
    pass.run(C);
    return {pass.negativeRows(), pass.nnlsRows()};
}

Matrix<double> plainResult(const Matrix<double>& D, const Matrix<double>& S)
{
    Matrix<double> C;
    XTNT::constrainedConcentrationsPlain(D, S, C);
    return C;
}

bool sameBits(const Matrix<double>& a, const Matrix<double>& b)
{
    return a.num_rows() == b.num_rows() && a.num_cols() == b.num_cols() &&
           std::equal(a.storage.data, a.storage.data + a.storage.n_, b.storage.data,
                      [](double x, double y) { return x == y || (std::isnan(x) && std::isnan(y)); });
}

// Largest difference from the reference, relative to the largest magnitude of its row.
double rowError(const Matrix<double>& result, const Matrix<double>& reference)
{
    double error = 0;
    for (long long p = 0; p < reference.num_rows(); ++p) {
        double largest = 0;
        double difference = 0;
        for (long long k = 0; k < reference.num_cols(); ++k) {
            largest = std::max(largest, std::abs(reference[p][k]));
            difference = std::max(difference, std::abs(result[p][k] - reference[p][k]));
        }
        if (difference > 0) {
            error = std::max(error, difference / largest);
        }
    }
    return error;
}

double norm(const double* v, long long n)
{
    double sum = 0;
    for (long long i = 0; i < n; ++i) {
        sum += v[i] * v[i];
    }
    return std::sqrt(sum);
}

// The largest breach of an optimality condition of min |x S - d|, x >= 0: a negative x, a positive dual, a dual that is
// not zero beside a positive x; each relative to what its rounding is measured by.
double optimalityBreach(const double* d, const Matrix<double>& S, const double* x)
{
    const long long bands = S.num_cols();
    std::vector<double> rest(d, d + bands);
    double size = norm(d, bands);
    for (long long k = 0; k < S.num_rows(); ++k) {
        for (long long b = 0; b < bands; ++b) {
            rest[static_cast<std::size_t>(b)] -= x[k] * S[k][b];
        }
        size += std::abs(x[k]) * norm(S[k], bands);
    }
    double breach = 0;
    for (long long k = 0; k < S.num_rows(); ++k) {
        double dual = 0;
        for (long long b = 0; b < bands; ++b) {
            dual += S[k][b] * rest[static_cast<std::size_t>(b)];
        }
        dual /= std::max(norm(S[k], bands) * size, std::numeric_limits<double>::min());
        breach = std::max({breach, x[k] < 0 ? 1.0 : 0.0, x[k] > 0 ? std::abs(dual) : dual});
    }
    return breach;
}

// Roundings of a residual and a dual: a few for every band and component.
double roundings(const Matrix<double>& S)
{
    return 16 * epsilon * static_cast<double>(S.num_rows() + S.num_cols());
}

struct Shape
{
    long long components;
    long long bands;
};

std::ostream& operator<<(std::ostream& stream, const Shape& shape)
{
    return stream << shape.components << " components, " << shape.bands << " bands";
}

class ShapesTest : public ::testing::TestWithParam<Shape>
{
};

} // namespace

TEST_P(ShapesTest, FastPathAgreesWithThePlainOne)
{
    const Shape shape = GetParam();
    const Matrix<double> S = randomMatrix(shape.components, shape.bands, 17, 0, 1);
    const Matrix<double> D = mixtures(S, 1500, 0.05, 18);
    Matrix<double> C;
    const Counts counts = runPass(D, S, C);
    EXPECT_GT(counts.negative, 0);
    // Where a component is near zero both paths round; the spectra's condition carries it into the others.
    EXPECT_LT(rowError(C, plainResult(D, S)), 1e-11);
    for (long long p = 0; p < D.num_rows(); ++p) {
        ASSERT_LE(optimalityBreach(D[p], S, C[p]), roundings(S)) << "row " << p;
    }
}

TEST_P(ShapesTest, NegativeDataAreFittedToo)
{
    const Shape shape = GetParam();
    const Matrix<double> S = randomMatrix(shape.components, shape.bands, 19);
    const Matrix<double> D = randomMatrix(400, shape.bands, 20);
    Matrix<double> C;
    runPass(D, S, C);
    EXPECT_LT(rowError(C, plainResult(D, S)), 1e-10);
}

TEST_P(ShapesTest, UnconstrainedPartAgreesWithTheFactorisationOfAllPixels)
{
    const Shape shape = GetParam();
    const Matrix<double> S = randomMatrix(shape.components, shape.bands, 21);
    const Matrix<double> D = randomMatrix(203, shape.bands, 22);
    const Matrix<double> direct = transpose(XTNT::solveForLeft(transpose(S), transpose(D)));
    EXPECT_LT(rowError(XTNT::solveForRight(D, S), direct), 1e-11);
}

INSTANTIATE_TEST_SUITE_P(Sizes, ShapesTest,
                         ::testing::Values(Shape{1, 1}, Shape{1, 7}, Shape{2, 3}, Shape{3, 18}, Shape{4, 18},
                                           Shape{4, 9}, Shape{5, 24}, Shape{6, 24}, Shape{7, 24}, Shape{8, 24},
                                           Shape{9, 31}, Shape{10, 32}, Shape{11, 40}, Shape{12, 50}, Shape{16, 50},
                                           Shape{32, 64}, Shape{40, 64}));

TEST(ConcentrationPassTest, WellConditionedSpectraNeedNoNnls)
{
    const Matrix<double> S = randomMatrix(5, 24, 1, 0, 1);
    const Matrix<double> D = mixtures(S, 5000, 0.05, 2);
    Matrix<double> C;
    const Counts counts = runPass(D, S, C);
    EXPECT_GT(counts.negative, 1000);
    EXPECT_EQ(0, counts.nnls);
}

TEST(ConcentrationPassTest, RowsWithoutNegativeElementKeepTheUnconstrainedBits)
{
    const Matrix<double> S = randomMatrix(5, 24, 3, 0, 1);
    const Matrix<double> D = mixtures(S, 2000, 0.02, 4);
    const Matrix<double> fit = XTNT::solveForRight(D, S);
    Matrix<double> C;
    const Counts counts = runPass(D, S, C);
    long long kept = 0;
    for (long long p = 0; p < D.num_rows(); ++p) {
        if (std::none_of(fit[p], fit[p] + 5, [](double c) { return c < 0; })) {
            ASSERT_TRUE(std::equal(fit[p], fit[p] + 5, C[p])) << p;
            ++kept;
        }
    }
    EXPECT_GT(kept, 0);
    EXPECT_EQ(D.num_rows(), kept + counts.negative);
}

TEST(ConcentrationPassTest, NumberOfThreadsDoesNotChangeABit)
{
    const Matrix<double> S = randomMatrix(11, 24, 5, 0, 1);
    const Matrix<double> D = mixtures(S, 6000, 0.1, 6);
    XTNT::setThreadCount(1);
    Matrix<double> one;
    runPass(D, S, one);
    for (int threads : {2, 4}) {
        XTNT::setThreadCount(threads);
        Matrix<double> many;
        runPass(D, S, many);
        EXPECT_TRUE(sameBits(one, many)) << threads;
        EXPECT_TRUE(sameBits(plainResult(D, S), plainResult(D, S)));
    }
    XTNT::setThreadCount(0);
}

TEST(ConcentrationPassTest, RowDoesNotDependOnItsNeighbours)
{
    const Matrix<double> S = randomMatrix(6, 15, 7, 0, 1);
    const Matrix<double> D = mixtures(S, 331, 0.2, 8);
    Matrix<double> all;
    runPass(D, S, all);
    for (long long p : {0LL, 1LL, 63LL, 64LL, 255LL, 256LL, 330LL}) {
        Matrix<double> one;
        runPass(D.subMatrix(p, p, 0, 14), S, one);
        EXPECT_TRUE(std::equal(one[0], one[0] + 6, all[p])) << p;
    }
}

TEST(ConcentrationPassTest, ZeroPixelStaysZero)
{
    const Matrix<double> S = randomMatrix(4, 12, 9, 0, 1);
    Matrix<double> C;
    const Counts counts = runPass(Matrix<double>(5, 12), S, C);
    EXPECT_EQ(0, counts.negative) << "minus zero is not below zero";
    for (long long i = 0; i < C.storage.n_; ++i) {
        EXPECT_EQ(0, C.storage[i]);
    }
}

TEST(ConcentrationPassTest, PixelInTheNegativeConeGivesZeros)
{
    const Matrix<double> S = randomMatrix(4, 12, 9, 0.1, 1);
    const Matrix<double> D(3, 12, -2.0);
    Matrix<double> C;
    EXPECT_EQ(3, runPass(D, S, C).negative);
    for (long long i = 0; i < C.storage.n_; ++i) {
        EXPECT_EQ(0, C.storage[i]);
        EXPECT_FALSE(std::signbit(C.storage[i]));
    }
}

TEST(ConcentrationPassTest, BadlyScaledSpectraAreFittedAsWell)
{
    Matrix<double> S = randomMatrix(5, 20, 23, 0, 1);
    const double scales[] = {1e-8, 1, 1e8, 3e-4, 7e5};
    Matrix<double> unscaled = S.deepCopy();
    for (long long k = 0; k < 5; ++k) {
        for (long long b = 0; b < 20; ++b) {
            S[k][b] *= scales[k];
        }
    }
    const Matrix<double> D = mixtures(unscaled, 1000, 0.1, 24);
    Matrix<double> C;
    const Counts counts = runPass(D, S, C);
    EXPECT_GT(counts.negative, 0);
    EXPECT_EQ(0, counts.nnls);
    Matrix<double> reference = plainResult(D, unscaled);
    for (long long p = 0; p < D.num_rows(); ++p) {
        for (long long k = 0; k < 5; ++k) {
            C[p][k] *= scales[k];
        }
    }
    EXPECT_LT(rowError(C, reference), 1e-11);
}

TEST(ConcentrationPassTest, PixelsOfAnyMagnitudeAreFitted)
{
    const Matrix<double> S = randomMatrix(4, 16, 25, 0, 1);
    const Matrix<double> base = mixtures(S, 200, 0.3, 26);
    for (double scale : {1e-300, 1e-250, 1e-8, 1e8, 1e250, 1e290}) {
        Matrix<double> D = base.deepCopy();
        for (long long i = 0; i < D.storage.n_; ++i) {
            D.storage[i] *= scale;
        }
        Matrix<double> C;
        runPass(D, S, C);
        EXPECT_LT(rowError(C, plainResult(D, S)), 1e-11) << scale;
    }
}

TEST(ConcentrationPassTest, DependentSpectraGoToNnls)
{
    Matrix<double> S = randomMatrix(4, 16, 27, 0, 1);
    for (long long b = 0; b < 16; ++b) {
        S[3][b] = S[1][b];
    }
    EXPECT_FALSE(ReducedSpectra(S).usable());
    const Matrix<double> D = mixtures(S, 300, 0.3, 28);
    const Matrix<double> weights(16, 4, -1.0); // makes every row of positive data negative
    Matrix<double> C(300, 4);
    ConcentrationPass pass(D, S, weights);
    pass.run(C);
    EXPECT_EQ(pass.negativeRows(), pass.nnlsRows());
    EXPECT_GT(pass.nnlsRows(), 0);
    XTNT::NnlsRowFit nnls(S);
    for (long long p = 0; p < D.num_rows(); ++p) {
        std::vector<double> x(4);
        nnls.fit(D[p], x.data());
        const bool kept = std::all_of(C[p], C[p] + 4, [&](double c) { return c == C[p][0] && c > 0; });
        ASSERT_TRUE(kept || std::equal(x.begin(), x.end(), C[p])) << p;
    }
}

TEST(ConcentrationPassTest, NearlyDependentSpectraAgreeWithThePlainPathToTheirCondition)
{
    for (double apart : {1e-2, 1e-3, 1e-4, 1e-5, 1e-6, 1e-8, 1e-10, 1e-12}) {
        Matrix<double> S = randomMatrix(4, 16, 29, 0, 1);
        const Matrix<double> noise = randomMatrix(1, 16, 30);
        for (long long b = 0; b < 16; ++b) {
            S[3][b] = S[1][b] + apart * noise[0][b];
        }
        const Matrix<double> D = mixtures(S, 500, 0.05, 31);
        Matrix<double> C;
        const Counts counts = runPass(D, S, C);
        EXPECT_EQ(ReducedSpectra(S).usable() ? 0 : counts.negative, counts.nnls) << apart;
        // Spectra `apart` have a condition of some times its inverse, and a residual enters with the square.
        EXPECT_LT(rowError(C, plainResult(D, S)), std::min(1.0, 1e3 * epsilon / (apart * apart))) << apart;
        for (long long p = 0; p < D.num_rows(); ++p) {
            ASSERT_TRUE(std::all_of(C[p], C[p] + 4, [](double c) { return std::isfinite(c); }));
        }
    }
}

TEST(ConcentrationPassTest, FewerBandsThanComponentsGoToNnls)
{
    const Matrix<double> S = randomMatrix(6, 4, 33, 0, 1);
    EXPECT_FALSE(ReducedSpectra(S).usable());
    const Matrix<double> D = mixtures(S, 200, 0.5, 34);
    Matrix<double> C;
    EXPECT_EQ(0, XTNT::constrainedConcentrations(D, S, C));
    EXPECT_TRUE(sameBits(C, plainResult(D, S)));
    for (long long i = 0; i < C.storage.n_; ++i) {
        ASSERT_GE(C.storage[i], 0);
    }
}

TEST(ConcentrationPassTest, RowThatIsNotFiniteSpoilsNoOther)
{
    const Matrix<double> S = randomMatrix(5, 24, 35, 0, 1);
    const Matrix<double> clean = mixtures(S, 300, 0.2, 36);
    const double infinity = std::numeric_limits<double>::infinity();
    const double bad[] = {std::nan(""), infinity, -infinity, std::numeric_limits<double>::max()};
    Matrix<double> D = clean.deepCopy();
    for (long long i = 0; i < 4; ++i) {
        D[10 + 71 * i][i] = bad[i];
    }
    for (long long b = 0; b < 24; ++b) {
        D[299][b] = b % 2 == 0 ? infinity : -infinity;
    }
    Matrix<double> expected;
    Matrix<double> C;
    runPass(clean, S, expected);
    EXPECT_EQ(0, XTNT::constrainedConcentrations(D, S, C));
    const Matrix<double> plain = plainResult(D, S);
    for (long long p = 0; p < 300; ++p) {
        if (p == 299 || (p >= 10 && (p - 10) % 71 == 0 && p < 10 + 4 * 71)) {
            ASSERT_TRUE(sameBits(C.subMatrix(p, p, 0, 4), plain.subMatrix(p, p, 0, 4))) << p;
        } else {
            ASSERT_TRUE(std::equal(C[p], C[p] + 5, expected[p])) << p;
        }
    }
    EXPECT_TRUE(std::isnan(C[10][0]));
}

TEST(ConcentrationPassTest, PublicPathIsThePassBehindItsChecks)
{
    const Matrix<double> S = randomMatrix(5, 24, 37, 0, 1);
    const Matrix<double> D = mixtures(S, 1000, 0.2, 38);
    Matrix<double> expected;
    runPass(D, S, expected);
    Matrix<double> C;
    EXPECT_EQ(0, XTNT::constrainedConcentrations(D, S, C));
    EXPECT_TRUE(sameBits(expected, C));
}

TEST(ConcentrationPassTest, NoPixelsDoNothing)
{
    const Matrix<double> S = randomMatrix(3, 8, 39);
    Matrix<double> C;
    EXPECT_EQ(0, runPass(Matrix<double>(0, 8), S, C).negative);
}

TEST(ConcentrationPassTest, KeptRowsAreTheUnconstrainedFit)
{
    const Matrix<double> S = randomMatrix(5, 24, 47, 0, 1);
    const Matrix<double> D = mixtures(S, 1000, 0.2, 48);
    Matrix<double> C(1000, 5);
    ConcentrationPass pass(D, S, XTNT::rightSolutionOperator(S), ConcentrationPass::Negative::Keep);
    pass.run(C);
    EXPECT_TRUE(sameBits(XTNT::solveForRight(D, S), C));
    EXPECT_GT(pass.negativeRows(), 0);
    EXPECT_EQ(0, pass.nnlsRows());
}

TEST(ConcentrationPassTest, FormerContentsOfTheResultDoNotMatter)
{
    const Matrix<double> S = randomMatrix(5, 24, 49, 0, 1);
    const Matrix<double> D = mixtures(S, 700, 0.2, 50);
    Matrix<double> fresh;
    runPass(D, S, fresh);
    for (double former : {-1.0, 0.0, 1.0, std::nan("")}) {
        Matrix<double> C(700, 5, former);
        ConcentrationPass(D, S, XTNT::rightSolutionOperator(S)).run(C);
        EXPECT_TRUE(sameBits(fresh, C)) << former;
    }
}

TEST(ConcentrationPassTest, StepSeesEachRowOnceAndFinal)
{
    const Matrix<double> S = randomMatrix(5, 24, 51, 0, 1);
    for (long long rows : {1LL, 63LL, 64LL, 65LL, 257LL, 5001LL}) {
        const Matrix<double> D = mixtures(S, rows, 0.2, 52);
        Matrix<double> expected;
        runPass(D, S, expected);
        for (int threads : {1, 2, 4}) {
            XTNT::setThreadCount(threads);
            Matrix<double> C(rows, 5);
            Matrix<double> seen(rows, 5);
            std::vector<int> times(static_cast<std::size_t>(rows));
            std::vector<long long> nextOfChunk(static_cast<std::size_t>(rows / XTNT::passChunkRows(rows) + 1), 0);
            bool inOrder = true;
            std::mutex mutex;
            ConcentrationPass(D, S, XTNT::rightSolutionOperator(S)).run(C, [&](long long begin, long long end) {
                const std::lock_guard<std::mutex> lock(mutex);
                const long long chunk = begin / XTNT::passChunkRows(rows);
                long long& next = nextOfChunk[static_cast<std::size_t>(chunk)];
                inOrder = inOrder && end - begin <= XTNT::blockRows &&
                          begin == std::max(next, chunk * XTNT::passChunkRows(rows));
                next = end;
                for (long long row = begin; row < end; ++row) {
                    ++times[static_cast<std::size_t>(row)];
                    std::copy_n(C[row], 5, seen[row]);
                }
            });
            EXPECT_TRUE(inOrder);
            EXPECT_EQ(std::vector<int>(static_cast<std::size_t>(rows), 1), times);
            EXPECT_TRUE(sameBits(expected, seen)) << rows << " rows, " << threads << " threads";
            EXPECT_TRUE(sameBits(expected, C));
        }
    }
    XTNT::setThreadCount(0);
}

RC_GTEST_PROP(ConcentrationPassLaws, EveryRowMeetsTheOptimalityConditions, ())
{
    const auto components = *rc::gen::inRange(1LL, 9LL);
    const auto bands = components + *rc::gen::inRange(0LL, 12LL);
    const auto seed = *rc::gen::arbitrary<std::uint32_t>();
    const auto low = *rc::gen::element(-1.0, 0.0, 0.5);
    const Matrix<double> S = randomMatrix(components, bands, seed, low, 1);
    const Matrix<double> D =
        *rc::gen::arbitrary<bool>() ? mixtures(S, 64, 0.1, seed + 1ULL) : randomMatrix(64, bands, seed + 1ULL);
    RC_PRE(components == 1 || ReducedSpectra(S).usable());
    Matrix<double> C;
    runPass(D, S, C);
    for (long long p = 0; p < D.num_rows(); ++p) {
        RC_ASSERT(optimalityBreach(D[p], S, C[p]) <= roundings(S) * 64);
    }
}

// Pixels that are exact mixtures put the duals and the absent amounts at rounding level: the pivoting must still end.
RC_GTEST_PROP(ConcentrationPassLaws, ExactMixturesComeBack, ())
{
    const auto components = *rc::gen::inRange(1LL, 9LL);
    const auto seed = *rc::gen::arbitrary<std::uint32_t>();
    const Matrix<double> S = randomMatrix(components, components + 6, seed, 0, 1);
    Matrix<double> amounts = randomMatrix(50, components, seed + 1ULL);
    for (long long i = 0; i < amounts.storage.n_; ++i) {
        amounts.storage[i] = std::max(0.0, amounts.storage[i]);
    }
    const Matrix<double> D = amounts * S;
    Matrix<double> C;
    runPass(D, S, C);
    for (long long i = 0; i < C.storage.n_; ++i) {
        RC_ASSERT(C.storage[i] >= 0);
        RC_ASSERT(std::abs(C.storage[i] - amounts.storage[i]) < 1e-9);
    }
}
