// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/exportName.h"

#include <gtest/gtest.h>

#include <ostream>

namespace {

struct SuffixCase
{
    const char* path;
    const char* filter;
    const char* expected;
};

std::ostream& operator<<(std::ostream& stream, const SuffixCase& suffixCase)
{
    return stream << suffixCase.path << " | " << suffixCase.filter;
}

class ExportNameTest : public ::testing::TestWithParam<SuffixCase>
{
};

const char* const textFilter = "SpUnmix Results File (*.txt)";
const char* const tableFilter = "CSv(*.csv)";

TEST_P(ExportNameTest, SuffixComesFromTheNameOrTheFilter)
{
    EXPECT_EQ(exportName::withSuffix(GetParam().path, GetParam().filter, {"txt", "csv"}), QString(GetParam().expected));
}

INSTANTIATE_TEST_SUITE_P(
    Names, ExportNameTest,
    ::testing::Values(SuffixCase{"/a/b", textFilter, "/a/b.txt"}, SuffixCase{"/a/b", tableFilter, "/a/b.csv"},
                      SuffixCase{"/a/b.", tableFilter, "/a/b.csv"}, SuffixCase{"/a/b..", textFilter, "/a/b..txt"},
                      SuffixCase{"/a/b.TXT", tableFilter, "/a/b.TXT"}, SuffixCase{"/a/b.Csv", textFilter, "/a/b.Csv"},
                      SuffixCase{"/a/b.png", textFilter, "/a/b.png.txt"}, SuffixCase{"/a/b.png", "All (*)", "/a/b.png"},
                      SuffixCase{"/a/b.", "All (*)", "/a/b"}, SuffixCase{"/a.txt/b", tableFilter, "/a.txt/b.csv"},
                      SuffixCase{"/a/b", "Both (*.csv *.txt)", "/a/b.txt"}));

TEST(ExportNameLengthTest, NamesOf185CharactersAreTheLongest)
{
    const QString strFolder = "/" + QString(300, 'd') + "/";
    EXPECT_FALSE(exportName::isTooLong(strFolder + QString(185, 'n')));
    EXPECT_TRUE(exportName::isTooLong(strFolder + QString(186, 'n')));
}

TEST(ExportNameLengthTest, TheNameIsToldInTwoHalves)
{
    EXPECT_EQ(exportName::tooLongText("/folder/abcdefg"),
              QString("The path you entered, \n'abc\ndefg',\nis too long. Enter a shorter path"));
}

TEST(ExportNameTextTest, TheQuestionNamesTheFileWithoutItsFolder)
{
    EXPECT_EQ(exportName::overwriteText("/folder/data.csv"),
              "File: data.csv exists in the specified path.\nOverwrite existing file?");
}

TEST(ExportNameTableTest, IsATableWithTheSuffixAnywhere)
{
    EXPECT_TRUE(exportName::isTable("/a/b.csv"));
    EXPECT_TRUE(exportName::isTable("/a/b.CSV"));
    EXPECT_TRUE(exportName::isTable("/a.csv/b.txt"));
    EXPECT_FALSE(exportName::isTable("/a/b.txt"));
}

TEST(ExportNameLibraryTest, ItsSuffixIsInSmallLetters)
{
    const struct
    {
        const char* typed;
        const char* expected;
        bool listed;
    } table[] = {{"/a/dyes", "/a/dyes.csv", true},     {"/a/dyes.", "/a/dyes.csv", true},
                 {"/a/Dyes.CSV", "/a/Dyes.csv", true}, {"/a/dyes.TXT", "/a/dyes.txt", false},
                 {"/A.B/dyes", "/A.B/dyes.csv", true}, {"/a/two.Dyes.csv", "/a/two.Dyes.csv", true}};
    for (const auto& row : table) {
        EXPECT_EQ(exportName::ofLibrary(row.typed), row.expected) << row.typed;
        EXPECT_EQ(exportName::isListedLibrary(row.expected), row.listed) << row.expected;
    }
}

} // namespace
