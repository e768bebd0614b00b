// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/commands/TraceWatch.h"

#include "algorithms/MCR.h"

#include <ostream>
#include <sstream>

#include <gtest/gtest.h>

TEST(TraceWatchTest, TellsTheLastIterationThatWasJudged)
{
    TraceWatch watch(nullptr);
    std::ostream trace(&watch);
    EXPECT_EQ(watch.text(), "");
    trace << "Iteration: " << 1 << '\n';
    EXPECT_EQ(watch.text(), "");
    trace << "Fitting error (lack of fit) in % (PCA) =" << 12.3456 << '\n';
    EXPECT_EQ(watch.text(), "iteration 1, lack of fit 12.3 %");
    trace << "Iteration: " << 12 << "\nsomething else\n";
    EXPECT_EQ(watch.text(), "iteration 1, lack of fit 12.3 %");
    trace << "Fitting error (lack of fit) in % (PCA) =" << 1e-7 << '\n';
    EXPECT_EQ(watch.text(), "iteration 12, lack of fit 1e-07 %");
    watch.clear();
    EXPECT_EQ(watch.text(), "");
}

TEST(TraceWatchTest, HandsEveryByteOn)
{
    std::ostringstream file;
    TraceWatch watch(file.rdbuf());
    std::ostream trace(&watch);
    trace << "Iteration: 3\n" << 'x' << std::string(1000, 'y') << '\n' << std::flush;
    trace.put('z');
    EXPECT_EQ(file.str(), "Iteration: 3\nx" + std::string(1000, 'y') + "\nz");
}

TEST(TraceWatchTest, LinesThatAreNoneOfTheRunAreNotRead)
{
    TraceWatch watch(nullptr);
    std::ostream trace(&watch);
    trace << " Iteration: 5\nFitting error (lack of fit) in % (PCA) =\nIteration: x\n"
          << "Fitting error (lack of fit) in % (PCA) =7\n";
    EXPECT_EQ(watch.text(), "");
}

// The labels are those of the curve resolution itself.
TEST(TraceWatchTest, ReadsWhatACurveResolutionWrites)
{
    MCR mcr;
    XTNT::Matrix<double> data(30, 4);
    for (long long i = 0; i < 30; ++i) {
        for (long long j = 0; j < 4; ++j) {
            data[i][j] = static_cast<double>((i % 7) * (j + 1) + (i % 3) * (4 - j) + 1);
        }
    }
    ASSERT_EQ(mcr.setData(data), 1);
    ASSERT_EQ(mcr.setComponents(2), 0);
    TraceWatch watch(nullptr);
    std::ostream trace(&watch);
    mcr.run(trace);
    EXPECT_TRUE(watch.text().startsWith("iteration ")) << qPrintable(watch.text());
}
