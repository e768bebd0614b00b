// SPDX-License-Identifier: GPL-3.0-or-later
#include "algorithms/ReducedSpectrumFit.h"

#include "algorithms/PlainSpectrumFit.h"

#include "XTNT/concentration_pass.h"
#include "XTNT/constrained_concentrations.h"
#include "XTNT/least_squares.h"
#include "XTNT/xtnt_parallel.h"

#include "support/Numbers.h"
#include "support/NumericLaws.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <vector>

using testsupport::areClose;
using testsupport::elements;
using testsupport::isLeastSquaresSolution;
using testsupport::isNonNegativeOptimum;
using testsupport::randomMatrix;
using testsupport::vectorOf;
using XTNT::Matrix;
using XTNT::Vector;

namespace {

constexpr double epsilon = std::numeric_limits<double>::epsilon();

Matrix<double> noisyProduct(const Matrix<double>& conc, const Matrix<double>& spec, double noise, unsigned seed)
{
    const Matrix<double> error = randomMatrix(conc.M, spec.N, seed, -noise, noise);
    return conc * spec + error;
}

Vector<long long> ascending(const std::vector<long long>& values)
{
    Vector<long long> result(static_cast<long long>(values.size()));
    std::copy(values.begin(), values.end(), result.data);
    return result;
}

Matrix<double> asColumn(const Vector<double>& v)
{
    Matrix<double> a(v.n_, 1);
    std::copy_n(v.data, v.n_, a.storage.data);
    return a;
}

void scaleColumn(Matrix<double>& a, long long column, double factor)
{
    for (long long i = 0; i < a.M; ++i) {
        a[i][column] *= factor;
    }
}

} // namespace

RC_GTEST_PROP(ReducedSpectrumFitLaws, AnswersAreThoseOfTheWholeProblem, (unsigned seed))
{
    const long long components = *rc::gen::inRange(2, 9);
    const long long rows = *rc::gen::inRange<long long>(2 * components, 400);
    const long long bands = *rc::gen::inRange(1, 51);
    const Matrix<double> conc = randomMatrix(rows, components, seed, -0.2, 1);
    const Matrix<double> data = randomMatrix(rows, bands, seed + 1);
    ReducedSpectrumFit fit(conc, data);
    PlainSpectrumFit plain(conc, data, false);

    const Matrix<double> spec = fit.solve();
    RC_ASSERT(isLeastSquaresSolution(conc, data, spec));
    RC_ASSERT(areClose(spec, plain.solve()));
    for (long long band = 0; band < bands; ++band) {
        const Vector<double> x = fit.nonNegative(band);
        RC_ASSERT(isNonNegativeOptimum(conc, data.column(band), x));
        // Where almost all is cut off at zero, what is left is as exact as the terms that cancel in it, not as itself.
        const Matrix<double> difference = asColumn(x) - asColumn(plain.nonNegative(band));
        RC_ASSERT(difference.norm(0) <= 1e-10 * asColumn(spec.column(band)).norm(0));
    }
    const Matrix<double> any = randomMatrix(components, bands, seed + 2);
    for (const Matrix<double>& S : {spec, any}) {
        const double expected = plain.residualNorm(data, S);
        RC_ASSERT(std::abs(fit.residualNorm(data, S) - expected) <= 100 * epsilon * expected);
    }
}

RC_GTEST_PROP(ReducedSpectrumFitLaws, FreeComponentsAreFittedAgainAsByTheWholeProblem, (unsigned seed))
{
    const long long components = *rc::gen::inRange(2, 9);
    const long long bands = *rc::gen::inRange(1, 20);
    const long long mask = *rc::gen::inRange(1LL, (1LL << components) - 1);
    std::vector<long long> free;
    std::vector<long long> fixed;
    for (long long k = 0; k < components; ++k) {
        ((mask >> k & 1) != 0 ? free : fixed).push_back(k);
    }
    std::vector<long long> some{0};
    for (long long band = 1; band < bands; ++band) {
        if ((seed >> (band % 32) & 1U) != 0) {
            some.push_back(band);
        }
    }
    const Matrix<double> conc = randomMatrix(300, components, seed, 0, 1);
    const Matrix<double> truth = randomMatrix(components, bands, seed + 1, 0, 1);
    const Matrix<double> data = noisyProduct(conc, truth, 0.3, seed + 2);
    const Matrix<double> spec = randomMatrix(components, bands, seed + 3, -0.2, 1);
    ReducedSpectrumFit fit(conc, data);
    PlainSpectrumFit plain(conc, data, false);
    const Matrix<double> solution = fit.refit(ascending(free), ascending(fixed), ascending(some), spec);
    RC_ASSERT(areClose(solution, plain.refit(ascending(free), ascending(fixed), ascending(some), spec), 1e-10));
}

TEST(ReducedSpectrumFitTest, NumbersOfRowsAroundTheBlocks)
{
    for (long long rows : {4, 5, 63, 64, 65, 255, 256, 257, 1000}) {
        const Matrix<double> conc = randomMatrix(rows, 3, 1, 0, 1);
        const Matrix<double> data = randomMatrix(rows, 6, 2);
        const Matrix<double> spec = ReducedSpectrumFit(conc, data).solve();
        EXPECT_TRUE(isLeastSquaresSolution(conc, data, spec)) << rows;
        EXPECT_TRUE(areClose(spec, XTNT::solveForLeft(conc, data), 1e-10)) << rows;
    }
}

TEST(ReducedSpectrumFitTest, ManyRows)
{
    const Matrix<double> conc = randomMatrix(300000, 5, 3, 0, 1);
    const Matrix<double> data = randomMatrix(300000, 7, 4, -0.2, 1);
    EXPECT_TRUE(areClose(ReducedSpectrumFit(conc, data).solve(), XTNT::solveForLeft(conc, data)));
}

TEST(ReducedSpectrumFitTest, AsManyPixelsAsComponentsAreSolvedExactly)
{
    for (long long n : {2, 3, 5}) {
        const Matrix<double> conc = randomMatrix(n, n, 5);
        const Matrix<double> data = randomMatrix(n, 6, 6);
        EXPECT_EQ(elements(XTNT::solveForLeft(conc, data)), elements(ReducedSpectrumFit(conc, data).solve()));
    }
    Matrix<double> singular = randomMatrix(3, 3, 7);
    singular.setRow(2, singular.row(0));
    EXPECT_TRUE(ReducedSpectrumFit(singular, randomMatrix(3, 6, 8)).solve().empty()) << "as solve has it";
}

TEST(ReducedSpectrumFitTest, DependentColumnsGiveTheSolutionOfSmallestNorm)
{
    Matrix<double> repeated = randomMatrix(500, 4, 9, 0, 1);
    Matrix<double> zero = repeated.deepCopy();
    for (long long i = 0; i < 500; ++i) {
        repeated[i][3] = repeated[i][1];
        zero[i][2] = 0;
    }
    const Matrix<double> data = randomMatrix(500, 6, 10);
    for (const Matrix<double>& conc : {repeated, zero, Matrix<double>(500, 4)}) {
        ReducedSpectrumFit fit(conc, data);
        EXPECT_EQ(elements(XTNT::solveForLeft(conc, data)), elements(fit.solve()));
        for (long long band = 0; band < 6; ++band) {
            EXPECT_TRUE(isNonNegativeOptimum(conc, data.column(band), fit.nonNegative(band)));
        }
        const Matrix<double> spec = randomMatrix(4, 6, 11);
        const double expected = (data - conc * spec).norm(2);
        EXPECT_NEAR(expected, fit.residualNorm(data, spec), 100 * epsilon * expected);
    }
}

TEST(ReducedSpectrumFitTest, NearlyDependentColumnsAreFittedToTheirCondition)
{
    for (double apart : {1e-1, 1e-2, 1e-3, 1e-4, 1e-6, 1e-8, 1e-9}) {
        Matrix<double> conc = randomMatrix(3000, 4, 12, 0, 1);
        for (long long i = 0; i < conc.M; ++i) {
            conc[i][3] = conc[i][1] + apart * conc[i][3];
        }
        const Matrix<double> data = noisyProduct(conc, randomMatrix(4, 6, 13, 0, 1), 1e-3, 14);
        ReducedSpectrumFit fit(conc, data);
        const Matrix<double> expected = XTNT::solveForLeft(conc, data);
        const Matrix<double> spec = fit.solve();
        // A residual this small enters with the square of the condition, the data with the condition.
        EXPECT_TRUE(areClose(spec, expected, 100 * epsilon * (1 / apart + 1e-3 / (apart * apart)))) << apart;
        // What counts: the fit is as good, but for the rounding of the large spectra that a small difference needs.
        const double least = (data - conc * expected).norm(2);
        const double rounding = 1e-12 + 4 * epsilon * conc.norm(2) * spec.norm(2) / least;
        EXPECT_NEAR(1, (data - conc * spec).norm(2) / least, rounding) << apart;
        EXPECT_NEAR(1, fit.residualNorm(data, spec) / least, rounding) << apart;
        for (long long band = 0; band < 6; ++band) {
            EXPECT_TRUE(isNonNegativeOptimum(conc, data.column(band), fit.nonNegative(band))) << apart;
        }
    }
}

TEST(ReducedSpectrumFitTest, ExtremeMagnitudesOfComponents)
{
    const Matrix<double> base = randomMatrix(400, 3, 15, 0, 1);
    const Matrix<double> data = randomMatrix(400, 5, 16, -0.1, 1);
    ReducedSpectrumFit reference(base, data);
    const Matrix<double> expected = reference.solve();
    const Matrix<double> fixedSpec = randomMatrix(3, 5, 17, 0, 1);
    const Vector<long long> free = vectorOf<long long>({0, 2});
    const Vector<long long> fixed = vectorOf<long long>({1});
    const Vector<long long> bands = vectorOf<long long>({1, 4});
    const Matrix<double> expectedRefit = reference.refit(free, fixed, bands, fixedSpec);
    const double expectedNorm = reference.residualNorm(data, fixedSpec);
    for (double factor : {std::ldexp(1.0, -700), std::ldexp(1.0, -450), std::ldexp(1.0, 450), std::ldexp(1.0, 700)}) {
        Matrix<double> conc = base.deepCopy();
        scaleColumn(conc, 0, factor);
        scaleColumn(conc, 1, factor);
        ReducedSpectrumFit fit(conc, data);
        Matrix<double> spec = fit.solve();
        Matrix<double> known = fixedSpec.deepCopy();
        for (long long j = 0; j < 5; ++j) {
            for (long long k : {0, 1}) {
                spec[k][j] *= factor;
                known[k][j] /= factor;
            }
        }
        EXPECT_TRUE(areClose(spec, expected)) << factor;
        Matrix<double> refitted = fit.refit(free, fixed, bands, known);
        refitted[0][0] *= factor;
        refitted[0][1] *= factor;
        EXPECT_TRUE(areClose(refitted, expectedRefit)) << factor;
        EXPECT_NEAR(1, fit.residualNorm(data, known) / expectedNorm, 1e-12) << factor;
        for (long long band = 0; band < 5; ++band) {
            Vector<double> x = fit.nonNegative(band);
            x[0] *= factor;
            x[1] *= factor;
            EXPECT_TRUE(areClose(asColumn(x), asColumn(reference.nonNegative(band)))) << factor;
        }
    }
}

TEST(ReducedSpectrumFitTest, ElementsThatAreNotFiniteLeaveNoLeastSquares)
{
    const Matrix<double> clean = randomMatrix(300, 3, 18, 0, 1);
    const Matrix<double> data = randomMatrix(300, 5, 19);
    const Matrix<double> spec = randomMatrix(3, 5, 20);
    for (double bad : {std::nan(""), std::numeric_limits<double>::infinity()}) {
        Matrix<double> conc = clean.deepCopy();
        conc[100][1] = bad;
        ReducedSpectrumFit broken(conc, data);
        EXPECT_TRUE(broken.solve().empty());
        EXPECT_FALSE(std::isfinite(broken.residualNorm(data, spec)));
        broken.nonNegative(2);

        Matrix<double> pixels = data.deepCopy();
        pixels[7][4] = bad;
        ReducedSpectrumFit fit(clean, pixels);
        EXPECT_TRUE(fit.solve().empty());
        EXPECT_FALSE(std::isfinite(fit.residualNorm(pixels, spec)));
        fit.nonNegative(4);
        EXPECT_TRUE(isNonNegativeOptimum(clean, pixels.column(0), fit.nonNegative(0))) << "a band of its own";
    }
}

TEST(ReducedSpectrumFitTest, ReorderedColumnsBelongToReorderedSpectra)
{
    for (double factor : {1.0, std::ldexp(1.0, -600)}) {
        Matrix<double> conc = randomMatrix(500, 4, 21, 0, 1);
        scaleColumn(conc, 2, factor);
        const Matrix<double> data = randomMatrix(500, 6, 22, -0.1, 1);
        ReducedSpectrumFit fit(conc, data);
        const Matrix<double> before = fit.solve();
        const Vector<long long> order = vectorOf<long long>({2, 0, 3, 1});
        const Matrix<double> reordered = conc.columns(order);
        std::copy_n(reordered.storage.data, conc.storage.n_, conc.storage.data);
        fit.reorder(order);
        const Matrix<double> after = fit.solve();
        for (long long k = 0; k < 4; ++k) {
            EXPECT_TRUE(areClose(after.subMatrix(k, k, 0, 5), before.subMatrix(order[k], order[k], 0, 5))) << k;
        }
        const double expected = (data - conc * after).norm(2);
        EXPECT_NEAR(1, fit.residualNorm(data, after) / expected, 1e-13);
        EXPECT_TRUE(isNonNegativeOptimum(conc, data.column(3), fit.nonNegative(3), 1e-10) || factor != 1);
    }
}

TEST(ReducedSpectrumFitTest, ResidualOfANearlyPerfectFitIsThatOfTheRows)
{
    const Matrix<double> conc = randomMatrix(2000, 3, 23, 0, 1);
    const Matrix<double> spec = randomMatrix(3, 8, 24, 0, 1);
    for (double noise : {1e-2, 1e-5, 1e-8, 1e-9, 1e-10, 1e-12, 1e-14, 0.0}) {
        const Matrix<double> data = noisyProduct(conc, spec, noise, 25);
        ReducedSpectrumFit fit(conc, data);
        const double expected = (data - conc * spec).norm(2);
        // Squares of roundings below the share at which the rows are looked at.
        EXPECT_NEAR(expected, fit.residualNorm(data, spec), 1e-7 * expected + 4 * epsilon * data.norm(2)) << noise;
    }
}

TEST(ReducedSpectrumFitTest, ResidualAgainstAnotherTarget)
{
    const Matrix<double> conc = randomMatrix(700, 3, 26);
    const Matrix<double> data = randomMatrix(700, 5, 27);
    const Matrix<double> target = randomMatrix(700, 5, 28);
    const Matrix<double> spec = randomMatrix(3, 5, 29);
    ReducedSpectrumFit fit(conc, data);
    EXPECT_NEAR(1, fit.residualNorm(target, spec) / (target - conc * spec).norm(2), 1e-14);
    const Matrix<double> share = data;
    EXPECT_NEAR(1, fit.residualNorm(share, spec) / (data - conc * spec).norm(2), 1e-14);
}

TEST(ReducedSpectrumFitTest, ResidualOfDataBeyondSquares)
{
    const Matrix<double> conc = randomMatrix(300, 2, 30);
    const Matrix<double> base = randomMatrix(300, 4, 31);
    const Matrix<double> spec(2, 4);
    for (double factor : {1e-250, 1e250}) {
        Matrix<double> data = base.deepCopy();
        for (long long i = 0; i < data.storage.n_; ++i) {
            data.storage[i] *= factor;
        }
        EXPECT_NEAR(1, ReducedSpectrumFit(conc, data).residualNorm(data, spec) / data.norm(2), 1e-13) << factor;
    }
    const Matrix<double> zeros(300, 4);
    EXPECT_EQ(0, ReducedSpectrumFit(conc, zeros).residualNorm(zeros, spec));
}

namespace {

// Alternating least squares with both factors non-negative and spectra of maximum 1, by the plain and by the reduced
// steps. Returns the lack of fit.
double resolve(const Matrix<double>& data, Matrix<double> spec, int iterations, bool plainSteps)
{
    double sigma = 0;
    for (int iteration = 0; iteration < iterations; ++iteration) {
        Matrix<double> conc(data.M, spec.M);
        std::unique_ptr<SpectrumFit> fit;
        if (plainSteps) {
            XTNT::constrainedConcentrationsPlain(data, spec, conc);
            fit = std::make_unique<PlainSpectrumFit>(conc, data, false);
        } else {
            auto reduction = std::make_unique<XTNT::LeftReduction>(data, spec.M);
            XTNT::ConcentrationPass(data, spec, XTNT::rightSolutionOperator(spec))
                .run(conc, [&](long long begin, long long end) { reduction->add(conc, begin, end); });
            reduction->finish();
            fit = std::make_unique<ReducedSpectrumFit>(conc, data, std::move(reduction));
        }
        spec = fit->solve();
        for (long long j = 0; j < spec.N; ++j) {
            const Vector<double> column = spec.column(j);
            if (column.Min() < 0) {
                const Vector<double> x = fit->nonNegative(j);
                for (long long k = 0; k < spec.M; ++k) {
                    spec[k][j] = x[k];
                }
            }
        }
        sigma = fit->residualNorm(data, spec);
        for (long long k = 0; k < spec.M; ++k) {
            const double largest = spec.row(k).Max();
            for (long long j = 0; j < spec.N; ++j) {
                spec[k][j] /= largest;
            }
        }
    }
    return sigma / data.norm(2);
}

} // namespace

TEST(ReducedSpectrumFitTest, TwentyIterationsEndWithTheLackOfFitOfThePlainSteps)
{
    const Matrix<double> conc = randomMatrix(3000, 4, 32, -0.3, 1);
    Matrix<double> positive = conc.deepCopy();
    for (long long i = 0; i < positive.storage.n_; ++i) {
        positive.storage[i] = std::max(positive.storage[i], 0.0);
    }
    Matrix<double> spec = randomMatrix(4, 12, 33, 0, 1);
    const Matrix<double> start = randomMatrix(4, 12, 34, 0, 1);
    const double plain = resolve(noisyProduct(positive, spec, 0.02, 35), start, 20, true);
    const double fast = resolve(noisyProduct(positive, spec, 0.02, 35), start, 20, false);
    EXPECT_GT(plain, 1e-3);
    EXPECT_NEAR(1, fast / plain, 1e-8);
}

TEST(ReducedSpectrumFitTest, TwentyIterationsOnACubeOfConditionAMillion)
{
    // Two spectra that differ by a millionth: so do the singular values of their mixtures. With less noise than this
    // the result of the plain steps itself changes by more when the data change in their last bits.
    const Matrix<double> conc = randomMatrix(3000, 3, 36, 0, 1);
    Matrix<double> spec = randomMatrix(3, 12, 37, 0, 1);
    for (long long j = 0; j < 12; ++j) {
        spec[2][j] = spec[1][j] + 1e-6 * spec[2][j];
    }
    for (double noise : {1e-3, 1e-5, 1e-6}) {
        const Matrix<double> data = noisyProduct(conc, spec, noise, 38);
        const double plain = resolve(data, spec, 20, true);
        EXPECT_NEAR(1, resolve(data, spec, 20, false) / plain, 1e-8) << noise;
    }
}

TEST(ReducedSpectrumFitTest, NumberOfThreadsDoesNotChangeABit)
{
    const Matrix<double> conc = randomMatrix(10007, 5, 39, 0, 1);
    const Matrix<double> data = randomMatrix(10007, 9, 40, -0.1, 1);
    XTNT::setThreadCount(1);
    ReducedSpectrumFit one(conc, data);
    const Matrix<double> spec = one.solve();
    for (int threads : {2, 4}) {
        XTNT::setThreadCount(threads);
        ReducedSpectrumFit many(conc, data);
        EXPECT_EQ(elements(spec), elements(many.solve())) << threads;
        EXPECT_EQ(one.residualNorm(data, spec), many.residualNorm(data, spec)) << threads;
        EXPECT_EQ(elements(one.nonNegative(4)), elements(many.nonNegative(4))) << threads;
    }
    XTNT::setThreadCount(0);
}
