// SPDX-License-Identifier: GPL-3.0-or-later
#include "McrCase.h"
#include "support/Numbers.h"

#include <algorithm>

#include <gmock/gmock.h>
#include <rapidcheck/gtest.h>

using testing::DoubleNear;
using testing::ElementsAre;
using testing::Pointwise;
using testsupport::elements;
using testsupport::matrixOf;
using testsupport::mixture;
using testsupport::oneRowOfBands;
using testsupport::runMcr;
using XTNT::Matrix;
using XTNT::Vector;

namespace {

using Values = std::vector<double>;

MATCHER_P(IsCloseTo, expected, "")
{
    return testing::ExplainMatchResult(Pointwise(DoubleNear(1e-13), expected), arg, result_listener);
}

// A row of another component that has one peak, so that no mode touches it.
double slope(long long j)
{
    return 9 - static_cast<double>(j);
}

// What a run of one iteration makes of these values as the first spectrum: bounds set them, then comes unimodality, and
// nothing after.
Values asSpectrum(const Values& values, int mode, double tolerance, const Matrix<int>& topology)
{
    const auto N = static_cast<long long>(values.size());
    const auto outcome = runMcr(mixture(9, N, 2, 0.05, 5), 2, [&](MCR& mcr) {
        testsupport::bareLoop()(mcr);
        mcr.maxIterations = 1;
        mcr.setUnimodTol(tolerance);
        if (!topology.empty()) {
            EXPECT_EQ(mcr.setTopology(topology), 0);
        }
        Matrix<double> bounds(2, N);
        for (long long j = 0; j < N; ++j) {
            bounds[0][j] = values[static_cast<std::size_t>(j)];
            bounds[1][j] = slope(j);
        }
        EXPECT_EQ(mcr.setBounds(1, Matrix<int>(2, N, 1), bounds), 0);
        mcr.setUnimodFlags(1, testsupport::vectorOf<int>({mode, 0}));
    });
    EXPECT_EQ(outcome.result, 2);
    for (long long j = 0; j < N; ++j) {
        EXPECT_EQ(outcome.mcr->spec[1][j], slope(j));
    }
    return elements(outcome.mcr->spec.row(0));
}

Values asSpectrum(const Values& values, int mode, double tolerance)
{
    return asSpectrum(values, mode, tolerance, oneRowOfBands(static_cast<long long>(values.size())));
}

// The same for the amounts of the second component.
Values asConcentration(const Values& values, int mode, double tolerance)
{
    const auto M = static_cast<long long>(values.size());
    const auto outcome = runMcr(mixture(M, 3, 2, 0.05, 5), 2, [&](MCR& mcr) {
        testsupport::bareLoop()(mcr);
        mcr.maxIterations = 1;
        mcr.setUnimodTol(tolerance);
        Matrix<double> bounds(M, 2);
        for (long long i = 0; i < M; ++i) {
            bounds[i][0] = slope(i);
            bounds[i][1] = values[static_cast<std::size_t>(i)];
        }
        EXPECT_EQ(mcr.setBounds(0, Matrix<int>(M, 2, 1), bounds), 0);
        EXPECT_EQ(mcr.setUnimodFlags(0, testsupport::vectorOf<int>({0, mode})), 0);
    });
    EXPECT_EQ(outcome.result, 2);
    for (long long i = 0; i < M; ++i) {
        EXPECT_EQ(outcome.mcr->conc[i][0], slope(i));
    }
    return elements(outcome.mcr->conc.column(1));
}

// Worked out by hand; `after` one for each of the modes 1 to 4.
struct WalkCase
{
    const char* name;
    double tolerance;
    Values before;
    Values after[4];
};

std::ostream& operator<<(std::ostream& out, const WalkCase& walk)
{
    return out << walk.name;
}

Values mirrored(Values values)
{
    std::reverse(values.begin(), values.end());
    return values;
}

struct McrUnimodalityTest : testing::TestWithParam<WalkCase>
{
};

} // namespace

TEST_P(McrUnimodalityTest, SpectraAreWalkedBothWaysInEveryMode)
{
    const WalkCase& walk = GetParam();
    for (int mode = 1; mode <= 4; ++mode) {
        EXPECT_THAT(asSpectrum(walk.before, mode, walk.tolerance), IsCloseTo(walk.after[mode - 1])) << mode;
        EXPECT_THAT(asSpectrum(mirrored(walk.before), mode, walk.tolerance), IsCloseTo(mirrored(walk.after[mode - 1])))
            << "mirrored, " << mode;
    }
    EXPECT_THAT(asSpectrum(walk.before, 0, walk.tolerance), IsCloseTo(walk.before));
}

TEST_P(McrUnimodalityTest, ConcentrationsAreWalkedBothWaysInEveryMode)
{
    const WalkCase& walk = GetParam();
    for (int mode = 1; mode <= 4; ++mode) {
        EXPECT_THAT(asConcentration(walk.before, mode, walk.tolerance), IsCloseTo(walk.after[mode - 1])) << mode;
        EXPECT_THAT(asConcentration(mirrored(walk.before), mode, walk.tolerance),
                    IsCloseTo(mirrored(walk.after[mode - 1])))
            << "mirrored, " << mode;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Walks, McrUnimodalityTest,
    testing::Values(
        WalkCase{
            "peak at the end, a rise within and one beyond the tolerance",
            1.05,
            {1, 3, 2, 2.05, 4},
            {{0, 0, 2, 2.05, 4}, {1, 2, 2, 2.05, 4}, {1, 2.3875, 2.3875, 2.275, 4}, {1, 2.525, 3.2625, 3.2625, 4}}},
        WalkCase{"rise of exactly the tolerance",
                 1.5,
                 {1, 3, 2, 4},
                 {{1, 3, 2, 4}, {1, 3, 2, 4}, {1, 3, 2, 4}, {1, 3, 2, 4}}},
        WalkCase{"accepted rise is what the next is measured against",
                 1.5,
                 {4, 3, 2, 5},
                 {{4, 3, 2, 5}, {4, 3, 2, 5}, {4, 3, 2, 5}, {4, 3, 2, 5}}},
        WalkCase{"one peak already",
                 1,
                 {1, 2, 5, 5, 3},
                 {{1, 2, 5, 5, 3}, {1, 2, 5, 5, 3}, {1, 2, 5, 5, 3}, {1, 2, 5, 5, 3}}},
        WalkCase{"rise at the far end", 1, {2, 1, 4, 6}, {{0, 1, 4, 6}, {1, 1, 4, 6}, {1.5, 1.5, 4, 6}, {3, 3, 4, 6}}},
        WalkCase{"below zero a rise becomes zero, whatever the mean",
                 1.5,
                 {-1, -2, -3, -0.5},
                 {{-1, 0, -3, -0.5}, {-3, -3, -3, -0.5}, {-1, 0, -3, -0.5}, {-1, 0, -3, -0.5}}}),
    [](const testing::TestParamInfo<WalkCase>& walk) { return "Case" + std::to_string(walk.index); });

TEST(McrUnimodalityTest, FirstOfEqualMaximaIsThePeak)
{
    EXPECT_THAT(asSpectrum({5, 1, 5}, 1, 1), ElementsAre(5, 1, 0));
    EXPECT_THAT(asConcentration({5, 1, 5}, 1, 1), ElementsAre(5, 1, 0));
}

TEST(McrUnimodalityTest, NegativeModeIsNone)
{
    EXPECT_THAT(asSpectrum({5, 1, 4}, -1, 1), ElementsAre(5, 1, 4));
}

TEST(McrUnimodalityTest, EveryRowOfTheTopologyMayHaveItsOwnPeak)
{
    const Values twoPeaks = {1, 4, 2, 3, 5, 4};
    EXPECT_THAT(asSpectrum(twoPeaks, 1, 1), ElementsAre(0, 0, 2, 3, 5, 4));
    EXPECT_THAT(asSpectrum(twoPeaks, 1, 1, matrixOf<int>({{1, 0, 1, 1}, {1, 1, 0, 1}})), ElementsAre(1, 4, 2, 3, 5, 4));
    // Segments of two and four bands, and of two each with an empty row between.
    EXPECT_THAT(asSpectrum(twoPeaks, 1, 1, matrixOf<int>({{1, 0, 1, 0}, {1, 1, 1, 1}})), ElementsAre(1, 4, 2, 3, 5, 4));
    EXPECT_THAT(asSpectrum({4, 1, 2, 5, 1, 3}, 1, 1, matrixOf<int>({{1, 0, 1}, {0, 1, 1}, {0, 0, 0}, {1, 1, 0}})),
                ElementsAre(4, 1, 2, 5, 1, 3));
    EXPECT_THAT(asSpectrum({4, 1, 2, 5, 1, 3}, 2, 1, matrixOf<int>({{1, 1, 1}, {1, 1, 1}})),
                ElementsAre(4, 1, 1, 5, 1, 1));
}

TEST(McrUnimodalityTest, WithoutATopologyThereIsNoSegment)
{
    EXPECT_THAT(asSpectrum({4, 1, 2, 5, 1, 3}, 1, 1, Matrix<int>()), ElementsAre(4, 1, 2, 5, 1, 3));
}

TEST(McrUnimodalityTest, SleepsWhileTheWarmUpRuns)
{
    for (const int warmUp : {1, 2}) {
        const auto outcome = runMcr(mixture(9, 6, 2, 0.3, 5), 2, [&](MCR& mcr) {
            mcr.setTopology(oneRowOfBands(6));
            mcr.setBounds(1, Matrix<int>(2, 6, 1), matrixOf({{5, 1, 4, 1, 3, 1}, {1, 2, 3, 4, 5, 6}}));
            mcr.setUnimodMode(0, 1);
            mcr.normalization = 0;
            mcr.warmUp = warmUp;
            mcr.convergenceTolerance = 0;
            mcr.maxIterations = 1;
        });
        if (warmUp == 1) {
            EXPECT_THAT(elements(outcome.mcr->spec.row(0)), ElementsAre(5, 1, 0, 0, 0, 0));
        } else {
            EXPECT_NE(outcome.mcr->spec[1][5], 6);
        }
    }
}

TEST(McrUnimodalityTest, AveragingBehindANegativeElementEndsAtZero)
{
    EXPECT_THAT(asSpectrum({5, -2, 0, 0.25}, 3, 1.05), ElementsAre(5, -2, 0, 0));
    EXPECT_THAT(asSpectrum({5, -2, 0.5, 0.25, 1, -1, 3, 2, 4}, 3, 1.05), ElementsAre(5, -2, 0, 0, 0, -1, 0, 0, 0));
    EXPECT_THAT(asConcentration({5, -2, 0.5, 0.25, 1, -1, 3, 2, 4}, 3, 1.05), ElementsAre(5, -2, 0, 0, 0, -1, 0, 0, 0));
    // The other walk begins afresh.
    EXPECT_THAT(asSpectrum({0.25, 0, 3, 5, -2, 0, 0.25}, 3, 1.05), ElementsAre(0.125, 0.125, 3, 5, -2, 0, 0));
}

TEST(McrUnimodalityTest, LongAveragingEnds)
{
    Values values;
    for (int i = 0; i < 24; ++i) {
        values.push_back(i == 0 ? 50 : i % 7);
    }
    const Values walked = asSpectrum(values, 3, 1);
    EXPECT_EQ(walked[0], 50);
    EXPECT_GE(*std::min_element(walked.begin(), walked.end()), 0);
}

// Averaging is tried on positive columns only: behind an element below zero the plain walk would take hours to halve a
// rise away.
RC_GTEST_PROP(McrUnimodalityTest, AnyColumnIsWalkedAsByTheReference, ())
{
    const auto length = *rc::gen::inRange<std::size_t>(3, 9);
    const int mode = *rc::gen::inRange(1, 5);
    const int lowest = mode == 3 ? 0 : -8;
    const auto whole = *rc::gen::container<std::vector<int>>(length, rc::gen::inRange(lowest, 40));
    const double tolerance = *rc::gen::element(1.0625, 1.125, 1.5, 2.0);
    Values values;
    for (const int value : whole) {
        values.push_back(value / 4.0);
    }
    Values expected = values;
    reference::makeUnimodal(expected, mode, tolerance);
    const Values walked = asSpectrum(values, mode, tolerance);
    for (std::size_t i = 0; i < length; ++i) {
        RC_ASSERT(std::abs(walked[i] - expected[i]) < 1e-12);
    }
}
