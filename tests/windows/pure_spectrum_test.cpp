// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/pureSpectrum.h"

#include "support/Numbers.h"

#include "XTNT/simplex_fit.h"
#include "XTNT/xtnt_matrix.h"
#include "spectra/DefaultColors.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace {

using Values = XTNT::Vector<double>;
using testsupport::elements;
using List = std::vector<double>;

Values valuesOf(const List& list)
{
    Values values(static_cast<long long>(list.size()));
    for (std::size_t i = 0; i < list.size(); ++i) {
        values[static_cast<long long>(i)] = list[i];
    }
    return values;
}

PureSpectrumTask taskOf(const List& mixed, const std::vector<List>& known)
{
    PureSpectrumTask task;
    task.mixed = valuesOf(mixed);
    for (const auto& spectrum : known) {
        task.known << valuesOf(spectrum);
    }
    return task;
}

TEST(PureSpectrumTest, NumbersAreThoseOfTheSimplexFit)
{
    PureSpectrumTask task = taskOf({3.0, 5.0, 2.0, 7.0}, {{1.0, 2.0, 0.5, 0.25}, {0.5, 0.25, 1.0, 2.0}});
    for (const double dTolerance : {0.0, 0.005, 0.1}) {
        task.tolerance = dTolerance;
        XTNT::Matrix<double> rows(2, 4);
        rows.setRow(0, task.known[0]);
        rows.setRow(1, task.known[1]);
        Values rest;
        Values amounts;
        ASSERT_EQ(XTNT::simplexFit(task.mixed, rows, rest, amounts, dTolerance), 0);
        PureSpectrum pure;
        ASSERT_TRUE(pure.compute(task));
        EXPECT_EQ(elements(pure.amounts()), elements(amounts));
        EXPECT_EQ(elements(pure.values()), elements(rest));
        EXPECT_EQ(pure.equation(), QString("A-%1*B1-%2*B2").arg(amounts[0], 0, 'g', 2).arg(amounts[1], 0, 'g', 2));
    }
}

TEST(PureSpectrumTest, EqualSpectraLeaveNothing)
{
    PureSpectrum pure;
    ASSERT_TRUE(pure.compute(taskOf({0.25, 1.0, 0.5}, {{0.25, 1.0, 0.5}})));
    EXPECT_EQ(elements(pure.amounts()), (List{1.0}));
    EXPECT_EQ(elements(pure.values()), (List{0.0, 0.0, 0.0}));
    EXPECT_EQ(pure.equation(), "A-1*B");
    EXPECT_FALSE(pure.isLeft());
}

TEST(PureSpectrumTest, WithoutScalingEachIsTakenOffOnceAndNothingFallsBelowZero)
{
    PureSpectrumTask task = taskOf({1.0, 0.5, 0.2}, {{0.25, 0.75, 0.2}, {0.25, 0.0, 0.0}});
    task.autoScale = false;
    task.tolerance = 0.1; // has no say
    PureSpectrum pure;
    ASSERT_TRUE(pure.compute(task));
    EXPECT_EQ(elements(pure.amounts()), (List{1.0, 1.0}));
    EXPECT_EQ(elements(pure.values()), (List{0.5, 0.0, 0.0}));
    EXPECT_EQ(pure.equation(), "A-1*B1-1*B2");
    EXPECT_TRUE(pure.isLeft());
}

TEST(PureSpectrumTest, OffsetIsTakenOffTheResultAndNotOffWhatDecides)
{
    PureSpectrumTask task = taskOf({3.0, 3.0}, {{1.0, 0.0}, {0.0, 1.0}});
    task.autoScale = false;
    task.fitOffset = true;
    PureSpectrum pure;
    ASSERT_TRUE(pure.compute(task));
    EXPECT_EQ(elements(pure.values()), (List{0.0, 0.0}));
    EXPECT_TRUE(pure.isLeft());
    task.fitOffset = false;
    ASSERT_TRUE(pure.compute(task));
    EXPECT_EQ(elements(pure.values()), (List{2.0, 2.0}));
}

TEST(PureSpectrumTest, WithoutKnownSpectraTheMixedOneIsLeft)
{
    PureSpectrum pure;
    for (const bool bScale : {true, false}) {
        PureSpectrumTask task = taskOf({1.0, -0.5, 2.0}, {});
        task.autoScale = bScale;
        ASSERT_TRUE(pure.compute(task));
        EXPECT_EQ(pure.equation(), "A");
        EXPECT_EQ(elements(pure.values()), (List{1.0, 0.0, 2.0}));
    }
}

class PureSpectrumFailureTest : public ::testing::TestWithParam<bool>
{
};

// An element that is not finite stops the solver, another length any computation.
TEST_P(PureSpectrumFailureTest, KeepsAmountsRestAndEquation)
{
    const double infinity = std::numeric_limits<double>::infinity();
    PureSpectrum pure;
    ASSERT_TRUE(pure.compute(taskOf({4.0, 3.0}, {{2.0, 1.0}})));
    const List amounts = elements(pure.amounts());
    const List values = elements(pure.values());
    PureSpectrumTask failing = GetParam() ? taskOf({4.0, 3.0}, {{infinity, 1.0}, {1.0, 1.0}})
                                          : taskOf({4.0, 3.0, 2.0}, {{2.0, 1.0}, {1.0, 1.0, 1.0}});
    EXPECT_FALSE(pure.compute(failing));
    EXPECT_EQ(elements(pure.amounts()), amounts);
    EXPECT_EQ(elements(pure.values()), values);
    EXPECT_EQ(pure.equation(), "A-2*B");
    failing.fitOffset = true;
    EXPECT_FALSE(pure.compute(failing));
    EXPECT_EQ(pure.values()[0], 0.0);
    failing.fitOffset = false;
    EXPECT_FALSE(pure.compute(failing));
    EXPECT_EQ(elements(pure.values()), values);
}

INSTANTIATE_TEST_SUITE_P(SolverAndLength, PureSpectrumFailureTest, ::testing::Bool());

TEST(PureSpectrumTest, AnotherLengthIsRefusedWithoutScalingToo)
{
    PureSpectrum pure;
    PureSpectrumTask task = taskOf({4.0, 3.0}, {{2.0}});
    task.autoScale = false;
    EXPECT_FALSE(pure.compute(task));
    EXPECT_FALSE(pure.isLeft());
    EXPECT_EQ(pure.equation(), "");
}

TEST(PureSpectrumTest, ResetForgetsAll)
{
    PureSpectrum pure;
    ASSERT_TRUE(pure.compute(taskOf({4.0, 3.0}, {{2.0, 1.0}})));
    pure.reset();
    EXPECT_EQ(pure.equation(), "");
    EXPECT_TRUE(pure.values().empty());
    EXPECT_TRUE(pure.amounts().empty());
    EXPECT_FALSE(pure.isLeft());
}

struct EquationCase
{
    List amounts;
    const char* text;
};

class EquationTest : public ::testing::TestWithParam<EquationCase>
{
};

TEST_P(EquationTest, NamesTheAmounts)
{
    EXPECT_EQ(pureSpectrumEquation(valuesOf(GetParam().amounts)), QString(GetParam().text));
}

INSTANTIATE_TEST_SUITE_P(Equations, EquationTest,
                         ::testing::Values(EquationCase{{}, "A"}, EquationCase{{0.5}, "A-0.5*B"},
                                           EquationCase{{0.5, 0.25}, "A-0.5*B1-0.25*B2"}, EquationCase{{0.0}, "A-0*B"},
                                           EquationCase{{0.123456}, "A-0.12*B"}, EquationCase{{123.0}, "A-1.2e+02*B"},
                                           EquationCase{{1, 0.00001, 2}, "A-1*B1-1e-05*B2-2*B3"}));

TEST(PureSpectrumTest, ToleranceGoesToATenth)
{
    EXPECT_EQ(errorTolerance(0, 20), 0.0);
    EXPECT_EQ(errorTolerance(1, 20), 0.005);
    EXPECT_EQ(errorTolerance(20, 20), 0.1);
}

TEST(PureSpectrumTest, EntriesNameTheirRow)
{
    EXPECT_EQ(rowText(0, "TissueAF"), "1:TissueAF");
    EXPECT_EQ(rowText(11, "2:3"), "12:2:3");
    EXPECT_EQ(rowOfText("1:TissueAF"), 0);
    EXPECT_EQ(rowOfText("12:2:3"), 11);
    EXPECT_EQ(rowOfText("12:"), 11);
    EXPECT_EQ(rowOfText(":A"), -1);
    EXPECT_EQ(rowOfText("A"), -1);
    EXPECT_EQ(rowOfText(""), -1);
}

TEST(PureSpectrumTest, NewIsAPlaceBelowNineRows)
{
    EXPECT_EQ(savePlaces(2), (QStringList{"1", "2", "New"}));
    EXPECT_EQ(savePlaces(8).last(), "New");
    EXPECT_EQ(savePlaces(9), (QStringList{"1", "2", "3", "4", "5", "6", "7", "8", "9"}));
    EXPECT_EQ(savePlaces(12).size(), 12);
}

class SaveSuggestionTest : public ::testing::Test
{
protected:
    ~SaveSuggestionTest() override { qDeleteAll(m_spectra); }

    void add(const char* pName, const char* pColor)
    {
        m_spectra.append(new SpectrumPlotParams);
        m_spectra.last()->settings.name = pName;
        m_spectra.last()->settings.color = pColor;
    }

    QList<SpectrumPlotParams*> m_spectra;
};

TEST_F(SaveSuggestionTest, IsTheRowsOwnBelowTheLastPlace)
{
    add("A", "gold");
    add("B", "Tomato");
    EXPECT_EQ(saveSuggestion(m_spectra, 0, 3).name, "A");
    EXPECT_EQ(saveSuggestion(m_spectra, 0, 3).colorPosition, 4);
    EXPECT_EQ(saveSuggestion(m_spectra, 1, 3).name, "B");
    EXPECT_EQ(saveSuggestion(m_spectra, 1, 3).colorPosition, 7);
}

TEST_F(SaveSuggestionTest, AtTheLastPlaceIsThatOfANewRow)
{
    add("A", "gold");
    add("B", "lime");
    EXPECT_EQ(saveSuggestion(m_spectra, 2, 3).name, "UMX3");
    EXPECT_EQ(saveSuggestion(m_spectra, 2, 3).colorPosition, 2);
}

TEST_F(SaveSuggestionTest, OfNineRowsTheLastCountsAsNew)
{
    for (int i = 0; i < 9; ++i) {
        add("own", "black");
    }
    EXPECT_EQ(saveSuggestion(m_spectra, 8, 9).name, "UMX9");
    EXPECT_EQ(saveSuggestion(m_spectra, 8, 9).colorPosition, 8);
    EXPECT_EQ(saveSuggestion(m_spectra, 7, 9).name, "own");
}

TEST_F(SaveSuggestionTest, AnUnknownColorCountsAsTheFirst)
{
    add("A", "chartreuse");
    add("B", "red");
    EXPECT_EQ(saveSuggestion(m_spectra, 0, 3).colorPosition, 0);
}

TEST_F(SaveSuggestionTest, ColorsOfManyRowsBeginAnew)
{
    for (int i = 0; i < 14; ++i) {
        add("own", "black");
    }
    EXPECT_EQ(saveSuggestion(m_spectra, 13, 14).colorPosition, 1);
}

TEST_F(SaveSuggestionTest, UnusedColorIsTheFirstFromTheStart)
{
    EXPECT_EQ(unusedColorPosition(m_spectra, 0), 0);
    add("A", "lime");
    add("B", "Blue");
    EXPECT_EQ(unusedColorPosition(m_spectra, 0), 1);
    EXPECT_EQ(unusedColorPosition(m_spectra, 2), 3);
    EXPECT_EQ(unusedColorPosition(m_spectra, -1), 1);
    EXPECT_EQ(unusedColorPosition(m_spectra, 12), -1);
    for (const QString& color : defaultSpectrumColors()) {
        add("all", color.toUtf8().constData());
    }
    EXPECT_EQ(unusedColorPosition(m_spectra, 0), -1);
}

TEST(PureSpectrumTest, AppliesByTheTextOfTheButton)
{
    EXPECT_TRUE(isApplyText("Apply"));
    EXPECT_TRUE(isApplyText("&Apply"));
    EXPECT_TRUE(isApplyText("App&ly now"));
    EXPECT_FALSE(isApplyText("apply"));
    EXPECT_FALSE(isApplyText("Close"));
    EXPECT_FALSE(isApplyText(""));
}

} // namespace
