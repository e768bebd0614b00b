// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/basis/TextTable.h"

#include <QLocale>

#include <gtest/gtest.h>

#include <limits>

TEST(TextTableTest, TextGoesLeftAndNumbersGoRight)
{
    TextTable table({"name", "value"});
    table.addRow({"a", "12.5"});
    table.addRow({"long name", "-3"});
    EXPECT_EQ(table.toText(), "name       value\n"
                              "a           12.5\n"
                              "long name     -3\n");
}

TEST(TextTableTest, TheSignForNoNumberStandsAmongNumbers)
{
    TextTable table({"n"});
    table.addRow({"100"});
    table.addRow({"-"});
    EXPECT_EQ(table.toText(), "n\n100\n  -\n");
}

TEST(TextTableTest, AShortRowIsFilledAndLinesEndWithoutBlanks)
{
    TextTable table({"a", "b", "c"});
    table.addRow({"word"});
    EXPECT_EQ(table.rowCount(), 1);
    EXPECT_EQ(table.toText(), "a     b  c\nword\n");
    EXPECT_EQ(table.toCsv(), "a,b,c\nword,,\n");
}

TEST(TextTableTest, WidthsCountLettersNotBytes)
{
    TextTable table({"x", "y"});
    table.addRow({QString::fromUtf8("\xC3\xA4\xC3\xB6\xC3\xBC"), "t"});
    table.addRow({"abc", "t"});
    EXPECT_EQ(table.toText(), QString::fromUtf8("x    y\n\xC3\xA4\xC3\xB6\xC3\xBC  t\nabc  t\n"));
}

TEST(TextTableTest, ATableWithoutRowsIsItsHeader)
{
    const TextTable table({"a", "b"});
    EXPECT_EQ(table.rowCount(), 0);
    EXPECT_EQ(table.toText(), "a  b\n");
    EXPECT_EQ(table.toCsv(), "a,b\n");
}

TEST(TextTableTest, CsvQuotesWhatWouldBreakAField)
{
    TextTable table({"a,b", "plain"});
    table.addRow({"say \"so\"", "two\nlines"});
    table.addRow({"back\rhome", " blanks stay "});
    EXPECT_EQ(table.toCsv(), "\"a,b\",plain\n"
                             "\"say \"\"so\"\"\",\"two\nlines\"\n"
                             "\"back\rhome\", blanks stay \n");
}

TEST(TextTableTest, NumbersHaveSixSignificantDigitsUnlessToldOtherwise)
{
    EXPECT_EQ(TextTable::number(1.23456789), "1.23457");
    EXPECT_EQ(TextTable::number(1.23456789, 3), "1.23");
    EXPECT_EQ(TextTable::number(0.0), "0");
    EXPECT_EQ(TextTable::number(12345678.0), "1.23457e+07");
    EXPECT_EQ(TextTable::number(std::numeric_limits<double>::quiet_NaN()), "-");
}

TEST(TextTableTest, NumbersKeepTheirPointInAnyLocale)
{
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German));
    EXPECT_EQ(TextTable::number(0.5), "0.5");
    EXPECT_EQ(TextTable::number(1234567.0, 9), "1234567");
    TextTable table({"n"});
    table.addRow({"10.25"});
    table.addRow({"7"});
    EXPECT_EQ(table.toText(), "n\n10.25\n    7\n");
    QLocale::setDefault(before);
}

TEST(TextTableTest, ControlCharactersAreBlanksInTextAndStayInCsv)
{
    TextTable table({"a", "b"});
    table.addRow({"x\ny", "\x1b[31mz"});
    EXPECT_EQ(table.toText(), "a    b\nx y   [31mz\n");
    EXPECT_EQ(table.toCsv(), "a,b\n\"x\ny\",\x1b[31mz\n");
    EXPECT_EQ(TextTable::oneLine(QString(QChar(0x2028)) + QChar(0x85) + "q"), "  q");
}
