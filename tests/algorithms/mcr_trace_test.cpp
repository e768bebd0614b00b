// SPDX-License-Identifier: GPL-3.0-or-later
#include "McrCase.h"
#include "support/CapturedOutput.h"
#include "support/Numbers.h"

#include <gmock/gmock.h>

using testsupport::CapturedOutput;
using testsupport::expectAsReference;
using testsupport::McrOutcome;
using testsupport::mixture;
using testsupport::runMcr;
using testsupport::sameTrace;
using testsupport::vectorOf;

namespace {

XTNT::Matrix<double> noisy()
{
    return mixture(20, 6, 2, 0.3, 51);
}

XTNT::Matrix<double> noisyOfThree()
{
    return mixture(30, 8, 3, 0.3, 51);
}

void settings(MCR& mcr)
{
    mcr.forceAF = 0;
    mcr.maxIterations = 3;
    mcr.setNonNegMode(0, 2);
    mcr.setNonNegMode(1, 2);
}

} // namespace

TEST(McrTraceTest, DebugTraceGoesToStandardOutputAndChangesNoResult)
{
    const McrOutcome quiet = runMcr(noisyOfThree(), 3, settings, true);
    for (const bool plain : {true, false}) {
        const CapturedOutput output;
        const McrOutcome outcome = runMcr(
            noisyOfThree(), 3,
            [](MCR& mcr) {
                settings(mcr);
                mcr.debugTrace = 1;
            },
            plain);
        const std::string printed = "\n" + output.text();
        for (const char* label : {"DATA", "SPEC", "CONC", "CONC[i][*]", "SPEC[*][i]", "x"}) {
            EXPECT_NE(printed.find("\n" + std::string(label) + "\n"), std::string::npos) << label;
        }
        EXPECT_TRUE(sameTrace(outcome.trace, quiet.trace));
        EXPECT_TRUE(testsupport::agree(outcome.mcr->conc, quiet.mcr->conc, 1e-9));
    }
}

TEST(McrTraceTest, NothingElseGoesToStandardOutput)
{
    const CapturedOutput output;
    runMcr(noisy(), 2, settings, false);
    runMcr(noisy(), 2, settings, true);
    EXPECT_EQ(output.text(), "");
}

TEST(McrTraceTest, StreamsOwnFormatStays)
{
    auto mcr = testsupport::preparedMcr(noisy(), 2);
    settings(*mcr);
    std::ostringstream trace;
    EXPECT_EQ(mcr->run(trace), 2);
    EXPECT_EQ(trace.precision(), 6);
    EXPECT_EQ(trace.flags(), std::ostringstream().flags());
}

TEST(McrTraceTest, NegativeWarmUpLetsBoundsWorkAndUnimodalityNot)
{
    const McrOutcome outcome = expectAsReference(noisy(), 2, [](MCR& mcr) {
        settings(mcr);
        mcr.warmUp = -2;
        mcr.convergenceTolerance = 0;
        mcr.autoSorting = 0;
        mcr.normalization = 0;
        mcr.setTopology(testsupport::oneRowOfBands(6));
        mcr.setBounds(1, XTNT::Matrix<int>(2, 6, 1), testsupport::matrixOf({{5, 1, 4, 1, 3, 1}, {1, 2, 3, 4, 5, 6}}));
        mcr.setUnimodMode(0, 1);
        mcr.setUnimodFlags(0, vectorOf<int>({1, 1}));
    });
    EXPECT_THAT(testsupport::elements(outcome.mcr->spec.row(0)), testing::ElementsAre(5, 1, 4, 1, 3, 1));
    EXPECT_EQ(outcome.mcr->warmUp, -2);
}

TEST(McrTraceTest, SwitchesAreSetAndNeverCleared)
{
    auto mcr = testsupport::preparedMcr(noisy(), 2);
    settings(*mcr);
    mcr->setUnimodMode(0, 1);
    mcr->setUnimodFlags(0, vectorOf<int>({0, 2}));
    mcr->setTopology(testsupport::oneRowOfBands(6));
    mcr->setBandCutoff(0, 0, 0);
    mcr->setPureMask(0, vectorOf<int>({3}));
    std::ostringstream trace;
    mcr->run(trace);
    EXPECT_EQ(mcr->specUnimodActive, 1);
    EXPECT_EQ(mcr->concUnimodActive, 1);
    EXPECT_EQ(mcr->specBoundsActive, 1);
    EXPECT_EQ(mcr->concBoundsActive, 1);
    mcr->setUnimodMode(0, 0);
    mcr->setUnimodFlags(0, vectorOf<int>({0, 0}));
    mcr->setBounds(1, XTNT::Matrix<int>(2, 6), XTNT::Matrix<double>(2, 6));
    mcr->setBounds(0, XTNT::Matrix<int>(20, 2), XTNT::Matrix<double>(20, 2));
    mcr->run(trace);
    EXPECT_EQ(mcr->specUnimodActive + mcr->concUnimodActive + mcr->specBoundsActive + mcr->concBoundsActive, 4);
}

TEST(McrTraceTest, LockingNeedsNoUnimodalityModes)
{
    expectAsReference(noisy(), 2, [](MCR& mcr) {
        settings(mcr);
        mcr.specUnimodModes = XTNT::Vector<int>();
        mcr.warmUp = 0;
        mcr.setLocked(0, 1);
    });
}
