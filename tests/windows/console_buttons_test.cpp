// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/consoleButtons.h"

#include <gtest/gtest.h>

#include <ostream>

namespace {

const ConsoleRow kEmptyRow{false, true, false};
const ConsoleRow kTicked{true, true, true};
const ConsoleRow kNotTicked{true, false, true};

ConsoleState stateOf(const QVector<ConsoleRow>& rows)
{
    ConsoleState state;
    state.rows = rows;
    return state;
}

struct UnmixCase
{
    const char* name;
    QVector<ConsoleRow> rows;
    bool background;
    bool modified;
    bool unmix;
    bool compute;
};

std::ostream& operator<<(std::ostream& stream, const UnmixCase& c)
{
    return stream << c.name;
}

class ConsoleButtonsTest : public ::testing::TestWithParam<UnmixCase>
{
};

TEST_P(ConsoleButtonsTest, UnmixAndComputeAskForTwoUsableSpectra)
{
    ConsoleState state = stateOf(GetParam().rows);
    state.backgroundMode = GetParam().background;
    state.modified = GetParam().modified;
    const ConsoleButtons buttons = consoleButtons(state);
    EXPECT_EQ(buttons.unmix, GetParam().unmix);
    EXPECT_EQ(buttons.compute, GetParam().compute);
}

INSTANTIATE_TEST_SUITE_P(
    Table, ConsoleButtonsTest,
    ::testing::Values(UnmixCase{"nothing", {}, false, true, false, false},
                      UnmixCase{"two as unmixed", {kTicked, kTicked}, false, false, false, true},
                      UnmixCase{"two after a change", {kTicked, kTicked}, false, true, true, true},
                      UnmixCase{"two in the drawing step at once", {kTicked, kTicked}, true, false, true, true},
                      UnmixCase{"one ticked", {kTicked, kNotTicked}, false, true, false, false},
                      UnmixCase{"one ticked, the other drawn", {kTicked, kNotTicked}, true, false, true, true},
                      UnmixCase{"one has no data", {kTicked, kEmptyRow}, false, true, false, false},
                      UnmixCase{"one has no data yet", {kTicked, kEmptyRow}, true, true, false, false}));

TEST(ConsoleAddTest, IsOffAtExactlyNineRowsAndTheRemovedOnes)
{
    for (int nRemoved : {0, 1, 3}) {
        for (int nRows = 0; nRows < 15; ++nRows) {
            ConsoleState state = stateOf(QVector<ConsoleRow>(nRows, kTicked));
            state.removedCount = nRemoved;
            EXPECT_EQ(consoleButtons(state).add, nRows != 9 + nRemoved) << nRows << " rows, removed " << nRemoved;
        }
    }
}

TEST(ConsoleSaveTest, AsksForARow)
{
    EXPECT_FALSE(consoleButtons(stateOf({})).save);
    EXPECT_TRUE(consoleButtons(stateOf({kEmptyRow})).save);
}

TEST(ConsoleRemoveTest, AsksForATickThatTheUserCanTakeAway)
{
    EXPECT_FALSE(consoleButtons(stateOf({})).remove);
    EXPECT_FALSE(consoleButtons(stateOf({kEmptyRow, kNotTicked})).remove);
    EXPECT_TRUE(consoleButtons(stateOf({kEmptyRow, kTicked})).remove);
}

TEST(UsableSpectraTest, NeedTheirTickOutsideTheDrawingStepAlone)
{
    const QVector<ConsoleRow> rows{kTicked, kNotTicked, kEmptyRow};
    EXPECT_EQ(usableSpectra(rows, false), 1);
    EXPECT_EQ(usableSpectra(rows, true), 2);
}

} // namespace
