// SPDX-License-Identifier: GPL-3.0-or-later
#include "McrCase.h"
#include "support/Numbers.h"

#include <gmock/gmock.h>

using testing::HasSubstr;
using testing::Not;
using testsupport::Configure;
using testsupport::expectAsReference;
using testsupport::McrOutcome;
using testsupport::mixture;
using testsupport::randomMatrix;

namespace {

constexpr int growthsToStop = 11;
const char* const diverged = "Divergence, stop!!!\n";
const char* const limit = "Maximum iteration number is reached!!!\n";

XTNT::Matrix<double> noisy()
{
    return mixture(12, 5, 2, 0.3, 0);
}

// The weighted update lowers a weighted residual; the plain one, which is watched, settles from below.
Configure growingResidual(int maxIterations)
{
    return [maxIterations](MCR& mcr) {
        mcr.forceAF = 0;
        mcr.autoSorting = 0;
        mcr.warmUp = 0;
        mcr.convergenceTolerance = 0;
        mcr.maxIterations = maxIterations;
        mcr.extraPCs = 3;
        mcr.setWeights(randomMatrix(12, 5, 0, 0.05, 4));
        mcr.setWeightingMode(1);
        mcr.setNonNegMode(0, 2);
        mcr.setNonNegMode(1, 2);
    };
}

// Whether each iteration was told to improve.
std::vector<bool> improvements(const std::string& trace)
{
    std::vector<bool> told;
    const std::string mark = "......Fitting is ";
    for (std::size_t at = trace.find(mark); at != std::string::npos; at = trace.find(mark, at + 1)) {
        told.push_back(trace.compare(at + mark.size(), 3, "not") != 0);
    }
    return told;
}

} // namespace

TEST(McrDivergenceTest, ElevenGrowthsInARowStopTheRun)
{
    const McrOutcome outcome = expectAsReference(noisy(), 2, growingResidual(100));
    EXPECT_EQ(outcome.result, 1);
    EXPECT_EQ(outcome.mcr->ending(), MCR::Ending::Diverged);
    EXPECT_EQ(outcome.mcr->notImprovingCount, growthsToStop);
    const std::vector<bool> told = improvements(outcome.trace);
    ASSERT_GT(told.size(), std::size_t(growthsToStop));
    EXPECT_EQ(std::count(told.end() - growthsToStop, told.end(), true), 0);
    EXPECT_TRUE(*(told.end() - growthsToStop - 1));
    EXPECT_EQ(outcome.trace.find(diverged), outcome.trace.size() - std::string(diverged).size());
}

TEST(McrDivergenceTest, DivergenceInTheLastIterationIsTheLimit)
{
    const int iterations = testsupport::runMcr(noisy(), 2, growingResidual(100)).mcr->iteration;
    const McrOutcome last = expectAsReference(noisy(), 2, growingResidual(iterations));
    EXPECT_EQ(last.result, 2);
    EXPECT_EQ(last.mcr->iteration, iterations);
    EXPECT_THAT(last.trace, HasSubstr(std::string(diverged) + limit));
    const McrOutcome before = expectAsReference(noisy(), 2, growingResidual(iterations - 1));
    EXPECT_EQ(before.result, 2);
    EXPECT_EQ(before.mcr->notImprovingCount, growthsToStop - 1);
    EXPECT_THAT(before.trace, Not(HasSubstr(diverged)));
}

TEST(McrDivergenceTest, CountGoesOnWithWhatTheObjectHolds)
{
    const McrOutcome whole = testsupport::runMcr(noisy(), 2, growingResidual(100));
    const std::vector<bool> told = improvements(whole.trace);
    const auto firstGrowth = std::find(told.begin(), told.end(), false) - told.begin();
    ASSERT_GT(firstGrowth, 0);
    // An iteration that improves sets it back, so that a count of before does not outlast the first.
    const McrOutcome outcome = expectAsReference(noisy(), 2, [](MCR& mcr) {
        growingResidual(100)(mcr);
        mcr.notImprovingCount = 50;
    });
    EXPECT_EQ(outcome.result, 1);
    EXPECT_EQ(outcome.mcr->iteration, whole.mcr->iteration);
}
