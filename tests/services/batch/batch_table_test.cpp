// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/batch/BatchTable.h"

#include "services/basis/Failure.h"
#include "services/support/CliFixture.h"

namespace {

class BatchTableTest : public CliFixture
{
protected:
    static bool takesValue(const QString& strName) { return strName == "unit" || strName == "mask"; }
    BatchTable read(const QByteArray& text) const { return BatchTable(write("table.csv", text), takesValue); }
    QString refused(const QByteArray& text) const
    {
        const QString message = failureOf([&] { read(text); });
        EXPECT_TRUE(message.startsWith(path("table.csv"))) << qPrintable(message);
        return message.mid(path("table.csv").size());
    }
};

} // namespace

TEST_F(BatchTableTest, ARowNamesASequenceAndWhatDiffers)
{
    const BatchTable table = read("Path,group,name,options,unit\n"
                                  "mice/a,one,first,\"--mask none --note 'a b'\",counts\n"
                                  "\n"
                                  "/data/b\r\n");
    ASSERT_EQ(table.rows().size(), 2);
    const BatchRow& row = table.rows()[0];
    EXPECT_EQ(row.sequence, path("mice/a"));
    EXPECT_EQ(row.group, "one");
    EXPECT_EQ(row.name, "first");
    EXPECT_EQ(row.words, (QStringList{"--unit=counts", "--mask", "none", "--note", "a b"}));
    EXPECT_EQ(row.place, path("table.csv:2"));
    EXPECT_EQ(table.rows()[1].sequence, "/data/b");
    EXPECT_EQ(table.rows()[1].words, QStringList());
    EXPECT_EQ(table.rows()[1].place, path("table.csv:4"));
    EXPECT_EQ(table.warnings(), QStringList());
}

TEST_F(BatchTableTest, SemicolonsSplitWhereTheFirstLineHasNoComma)
{
    const BatchTable table = read("\xEF\xBB\xBFpath;options\na;--components Food,TissueAF\n");
    ASSERT_EQ(table.rows().size(), 1);
    EXPECT_EQ(table.rows()[0].words, (QStringList{"--components", "Food,TissueAF"}));
}

TEST_F(BatchTableTest, AColumnOfNoUseIsToldOnce)
{
    const BatchTable table = read("path,operator,mask\na,me,\nb,you,none\n");
    EXPECT_EQ(table.warnings(), (QStringList{path("table.csv") + ": the column \"operator\" is passed over"}));
    EXPECT_EQ(table.rows()[0].words, QStringList());
    EXPECT_EQ(table.rows()[1].words, (QStringList{"--mask=none"}));
}

TEST_F(BatchTableTest, WhatIsWrongIsToldWithItsLine)
{
    EXPECT_EQ(refused("name,group\na,b\n"), ":1: the first line names no column \"path\"");
    EXPECT_EQ(refused("\npath,unit,UNIT\n"), ":2: the column \"UNIT\" occurs twice");
    EXPECT_EQ(refused("path,group\na,b,c\n"), ":2: 3 fields where the first line has 2");
    EXPECT_EQ(refused("path,group\n,b\n"), ":2: the path is missing");
    EXPECT_EQ(refused("path,options\na,--note 'x\n"), ":2: a quote is not closed");
    EXPECT_EQ(refused("path,options\na,\"x\n"), ":2: a quote is not closed");
    EXPECT_EQ(refused("path\n"), ": the table names no sequence; it takes a line with the column \"path\" and behind "
                                 "it a line a sequence");
    EXPECT_EQ(refused(""), ": the table names no sequence; it takes a line with the column \"path\" and behind it a "
                           "line a sequence");
    EXPECT_EQ(refused("path\n\xFF\n"), ": this is no text in UTF-8");
}

TEST_F(BatchTableTest, WhatIsNoFileIsRefused)
{
    EXPECT_TRUE(failureOf([&] { BatchTable(path("none.csv"), takesValue); }).startsWith(path("none.csv")));
    EXPECT_EQ(failureOf([&] { BatchTable(path("."), takesValue); }), path(".") + ": not a file");
}
