// SPDX-License-Identifier: GPL-3.0-or-later
// The words and rules of the palette without its widgets.
#include "plugin/isUnmixingTab.h"
#include "plugin/resultsTableText.h"
#include "plugin/selectionTable.h"

#include "spectra/SpectrumAxis.h"

#include <gtest/gtest.h>

#include <ostream>

namespace {

struct TabCase
{
    const char* title;
    bool whenChanged;  // a sequence changes
    bool whenReported; // the host reports a tab
};

std::ostream& operator<<(std::ostream& stream, const TabCase& tab)
{
    return stream << tab.title;
}

class UnmixingTabTest : public ::testing::TestWithParam<TabCase>
{
};

TEST_P(UnmixingTabTest, TitleCountsWithoutRegardToCase)
{
    EXPECT_EQ(isUnmixingTab(GetParam().title, false), GetParam().whenChanged);
    EXPECT_EQ(isUnmixingTab(GetParam().title, true), GetParam().whenReported);
}

INSTANTIATE_TEST_SUITE_P(Tabs, UnmixingTabTest,
                         ::testing::Values(TabCase{"Sequence View", true, true}, TabCase{"3D View", true, true},
                                           TabCase{"Auto Unmix", true, true}, TabCase{"Composite", true, true},
                                           TabCase{"Unmixing", true, true}, TabCase{"unmixing", true, true},
                                           TabCase{"UNMIXED IMAGES", false, true},
                                           TabCase{"Unmixed Images", false, true}, TabCase{"Unmixing ", false, false},
                                           TabCase{"Histogram", false, false}, TabCase{"", false, false}));

TEST(SelectionTableTest, TypesAreThoseOfTheAxis)
{
    EXPECT_EQ(selectionTable::typeTexts(SPECTRUMAXIS_TIME), (QStringList{"Time(hh:mm:ss)", "Time Point"}));
    EXPECT_EQ(selectionTable::typeTexts(SPECTRUMAXIS_EMISSION), QStringList("Emission"));
    EXPECT_EQ(selectionTable::typeTexts(SPECTRUMAXIS_EXCITATION), QStringList("Excitation"));
}

TEST(SelectionTableTest, RowsReadAsKeysTimesOrNumbers)
{
    using selectionTable::rowText;
    EXPECT_EQ(rowText(SPECTRUMAXIS_EMISSION, 0, "720", 3), "720");
    EXPECT_EQ(rowText(SPECTRUMAXIS_EXCITATION, 1, "Open", 3), "Open");
    EXPECT_EQ(rowText(SPECTRUMAXIS_TIME, selectionTable::RowTimes, "0", 0), "00:00:00");
    EXPECT_EQ(rowText(SPECTRUMAXIS_TIME, selectionTable::RowTimes, "3661", 3), "01:01:01");
    EXPECT_EQ(rowText(SPECTRUMAXIS_TIME, selectionTable::RowNumbers, "3661", 3), "4");
}

TEST(SelectionTableTest, TimesBeginAnewAfterADay)
{
    EXPECT_EQ(selectionTable::rowText(SPECTRUMAXIS_TIME, 0, "90000", 0), "01:00:00");
    EXPECT_EQ(selectionTable::rowText(SPECTRUMAXIS_TIME, 0, "3600", 0), "01:00:00");
}

TEST(SelectionTableTest, CellsAreNamedByBothKeys)
{
    EXPECT_EQ(selectionTable::cellName(SPECTRUMAXIS_EMISSION, "675", "720"), "excitation 675, emission 720");
    EXPECT_EQ(selectionTable::cellName(SPECTRUMAXIS_TIME, "Int1", "00:00:10"), "interval Int1, time 00:00:10");
}

const QStringList titles{"Item", "Value"};

TEST(ResultsTableTextTest, ClipboardHasTabsAndQuotesWhatHasAComma)
{
    EXPECT_EQ(resultsTableText::forClipboard(titles, {{"Method", "Automatic"}, {"Bands", "640, 720"}, {"a\"b", ""}}),
              "Item\tValue\nMethod\tAutomatic\nBands\t\"640, 720\"\na\"b\t\n");
}

TEST(ResultsTableTextTest, NothingSelectedGivesTheHeaderAndALineFeed)
{
    EXPECT_EQ(resultsTableText::forClipboard(titles, {}), "Item\tValue\n");
}

TEST(ResultsTableTextTest, FilesQuoteTheirTitlesAndSeparateByTheirKind)
{
    const QVector<QStringList> rows{{"Method", "Automatic"}, {"Bands", "640, 720"}};
    EXPECT_EQ(resultsTableText::forFile(titles, rows, " "),
              "\"Item\" \"Value\"\nMethod Automatic\nBands \"640, 720\"\n");
    EXPECT_EQ(resultsTableText::forFile(titles, rows, ","),
              "\"Item\",\"Value\"\nMethod,Automatic\nBands,\"640, 720\"\n");
}

TEST(ResultsTableTextTest, APathIsSearchedForTextFirst)
{
    EXPECT_EQ(resultsTableText::separatorOf("/a/b.txt"), " ");
    EXPECT_EQ(resultsTableText::separatorOf("/a/b.CSV"), ",");
    EXPECT_EQ(resultsTableText::separatorOf("/a.TXT/b.csv"), " ");
    EXPECT_EQ(resultsTableText::separatorOf("/a.csv/b"), ",");
    EXPECT_TRUE(resultsTableText::separatorOf("/a/b.png").isNull());
}

} // namespace
