// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/importer/ImagesTable.h"

#include "services/importer/ImporterFixture.h"

#include <QLocale>

namespace {

ImagesTable parsed(const QByteArray& text)
{
    ImagesTable table;
    QString error;
    EXPECT_TRUE(table.parse(text, "images.csv", &error)) << qPrintable(error);
    return table;
}

QString refusal(const QByteArray& text)
{
    ImagesTable table;
    QString error;
    EXPECT_FALSE(table.parse(text, "images.csv", &error)) << text.constData();
    EXPECT_TRUE(table.rows().isEmpty());
    return error;
}

class ImagesTableFileTest : public ImporterFixture
{
};

} // namespace

TEST(ImagesTableTest, ReadsColumnsByNameInAnyOrderAndCase)
{
    const ImagesTable table = parsed("Emission,FILE,excitation,Page,band\n510,a.tif,488,2,3\n");
    ASSERT_EQ(table.rows().size(), 1);
    const ImageRow& row = table.rows()[0];
    EXPECT_EQ(row.line, 2);
    EXPECT_EQ(row.file, "a.tif");
    EXPECT_EQ(row.excitation, 488.0);
    EXPECT_EQ(row.emission, 510.0);
    EXPECT_EQ(row.page, 2);
    EXPECT_EQ(row.band, 3);
    EXPECT_FALSE(row.time.has_value());
    EXPECT_FALSE(row.interval.has_value());
    EXPECT_EQ(table.place(row), "images.csv:2");
    EXPECT_TRUE(table.warnings().isEmpty());
}

TEST(ImagesTableTest, ReadsProjectionsOfSeveralPages)
{
    const ImagesTable table = parsed("file,page,Projection,emission\na.tif,3 1..2 7,Max,510\na.tif,4,mean,530\n"
                                     "a.tif,4,,550\n");
    ASSERT_EQ(table.rows().size(), 3);
    EXPECT_EQ(table.rows()[0].projection.kind, PageProjection::Kind::Max);
    EXPECT_EQ(table.rows()[0].projection.pages, (QVector<int>{3, 1, 2, 7}));
    EXPECT_EQ(table.rows()[0].page, 3);
    EXPECT_EQ(table.rows()[1].projection.kind, PageProjection::Kind::Mean);
    EXPECT_EQ(table.rows()[1].projection.pages, QVector<int>{4});
    EXPECT_TRUE(table.rows()[2].projection.isNone());
    const QByteArray columns = "file,page,projection,emission\n";
    EXPECT_EQ(refusal(columns + "a,1 2,,510\n"),
              "images.csv:2: several pages (\"1 2\") take a projection, max or mean");
    EXPECT_EQ(refusal(columns + "a,1..2,,510\n"),
              "images.csv:2: several pages (\"1..2\") take a projection, max or mean");
    EXPECT_EQ(refusal(columns + "a,1 2,sum,510\n"), "images.csv:2: the projection \"sum\" is not max or mean");
    EXPECT_EQ(refusal(columns + "a,,max,510\n"), "images.csv:2: a projection takes pages, such as 1 4 7 or 1..30");
    EXPECT_EQ(refusal(columns + "a,1..3 2,max,510\n"), "images.csv:2: the page 2 stands twice");
    EXPECT_EQ(refusal(columns + "a,1..999999999,max,510\n"), "images.csv:2: more than 100000 pages make one image");
    QByteArray many = columns;
    for (int i = 0; i < 11; ++i) {
        many += "a,1..100000,max,510\n";
    }
    EXPECT_EQ(refusal(many), "images.csv:12: more than 1000000 pages are projected");
    for (const char* pages : {"0", "3..2", "-1", "1-3", "a", "1..", "99999999999"}) {
        EXPECT_TRUE(refusal(columns + "a," + pages + ",max,510\n").contains("is no page from 1 on")) << pages;
    }
}

TEST(ImagesTableTest, ReadsTimesAndIntervals)
{
    const ImagesTable table = parsed("file,interval,time\na,Int2,1.5 s\nb,2,-3\nc,,1e2\n");
    ASSERT_EQ(table.rows().size(), 3);
    EXPECT_EQ(table.rows()[0].interval, 2);
    EXPECT_EQ(table.rows()[0].time, 1.5);
    EXPECT_EQ(table.rows()[1].interval, 2);
    EXPECT_EQ(table.rows()[1].time, -3.0);
    EXPECT_FALSE(table.rows()[2].interval.has_value());
    EXPECT_EQ(table.rows()[2].time, 100.0);
}

TEST(ImagesTableTest, TakesUnitsQuotesLineEndsAndAByteOrderMark)
{
    const ImagesTable table = parsed("\xef\xbb\xbf\"file\",excitation,emission\r\n\"a, b.tif\",488nm,510.4 NM\r\n\r\n");
    ASSERT_EQ(table.rows().size(), 1);
    EXPECT_EQ(table.rows()[0].file, "a, b.tif");
    EXPECT_EQ(table.rows()[0].excitation, 488.0);
    EXPECT_EQ(table.rows()[0].emission, 510.4);
}

TEST(ImagesTableTest, TakesSemicolonsWhenTheFirstLineHasNoComma)
{
    const ImagesTable table = parsed("file;emission\n\"a;b\";510\n");
    EXPECT_EQ(table.rows()[0].file, "a;b");
    EXPECT_EQ(table.rows()[0].emission, 510.0);
}

TEST(ImagesTableTest, LeavesOutEmptyRowsAndColumns)
{
    const ImagesTable table = parsed("file,emission,,\n\na.tif,510,,\n,,,\n   \nb.tif,530\n");
    ASSERT_EQ(table.rows().size(), 2);
    EXPECT_EQ(table.rows()[1].line, 6);
    EXPECT_TRUE(table.warnings().isEmpty());
}

TEST(ImagesTableTest, TellsOfColumnsThatItPassesOver)
{
    EXPECT_EQ(parsed("file,emission,stain\na,510,x\n").warnings(), QStringList{"the column \"stain\" is passed over"});
}

TEST(ImagesTableTest, NumbersDoNotFollowTheLocale)
{
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    const ImagesTable table = parsed("file,emission\na,510.5\n");
    const QString error = refusal("file;emission\na;510,5\n");
    QLocale::setDefault(QLocale::c());
    EXPECT_EQ(table.rows()[0].emission, 510.5);
    EXPECT_EQ(error, "images.csv:2: the emission \"510,5\" is not a number");
}

TEST(ImagesTableTest, RefusesByFileAndLine)
{
    EXPECT_EQ(refusal(""), "images.csv: the table names no image");
    EXPECT_EQ(refusal("\n\n"), "images.csv: the table names no image");
    EXPECT_EQ(refusal("file,emission\n"), "images.csv: the table names no image");
    EXPECT_EQ(refusal("a.tif,488,510\n"),
              "images.csv:1: the first line names no column \"excitation\", \"emission\", \"time\" or \"channel\"");
    EXPECT_EQ(refusal("file,emission,Emission\n"), "images.csv:1: the column \"Emission\" occurs twice");
    EXPECT_EQ(refusal("file,emission\na,510\nb,51O\n"), "images.csv:3: the emission \"51O\" is not a number");
    EXPECT_EQ(refusal("file,excitation\na,nm\n"), "images.csv:2: the excitation \"nm\" is not a number");
    EXPECT_EQ(refusal("file,emission\na,nan\n"), "images.csv:2: the emission \"nan\" is not a number");
    EXPECT_EQ(refusal("file,time\na,inf\n"), "images.csv:2: the time \"inf\" is not a number");
    EXPECT_EQ(refusal("page,emission\n0,510\n"), "images.csv:2: the page \"0\" is not a whole number from 1 on");
    EXPECT_EQ(refusal("band,emission\n1.5,510\n"), "images.csv:2: the band \"1.5\" is not a whole number from 1 on");
    EXPECT_EQ(refusal("interval,time\nInt,5\n"), "images.csv:2: the interval \"Int\" is not a whole number from 1 on");
    EXPECT_EQ(refusal("file,emission\na,510,7\n"), "images.csv:2: 3 fields where the first line names 2 columns");
    EXPECT_EQ(refusal("file,emission\n\"a,510\n"), "images.csv:2: a quote is not closed");
    EXPECT_EQ(refusal("file,emission\n\xe4,510\n"), "images.csv:2: the text is not UTF-8");
    EXPECT_EQ(refusal(QByteArray("file,emission\na\0b,510\n", 21)), "images.csv:2: the text is not UTF-8");
    EXPECT_EQ(refusal("\xff\xfe"), "images.csv:1: the text is not UTF-8");
}

TEST_F(ImagesTableFileTest, LoadsAFile)
{
    ImagesTable table;
    QString error;
    ASSERT_TRUE(table.load(write("images.csv", "file,emission\na,510\n"), &error));
    EXPECT_EQ(table.place(table.rows()[0]), path("images.csv") + ":2");
}

TEST_F(ImagesTableFileTest, RefusesWhatIsNoFile)
{
    ImagesTable table;
    QString error;
    EXPECT_FALSE(table.load(path("none.csv"), &error));
    EXPECT_TRUE(error.startsWith(path("none.csv") + ": ")) << qPrintable(error);
    EXPECT_FALSE(table.load(path(""), &error));
    EXPECT_TRUE(error.startsWith(path("") + ": ")) << qPrintable(error);
    EXPECT_FALSE(table.load(write("big.csv", QByteArray(17 * 1024 * 1024, ' ')), &error));
    EXPECT_EQ(error, path("big.csv") + ": the file is too large for a table of images");
}
