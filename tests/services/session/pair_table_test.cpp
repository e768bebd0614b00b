// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/session/pairTable.h"

#include "services/basis/Failure.h"
#include "spectra/SpectrumPlotParams.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace {

class PairTableTest : public testing::Test
{
protected:
    ~PairTableTest() override { qDeleteAll(m_read); }

    SpectrumPlotParams& add(const QString& strName, const QVector<SpectrumPoint>& points)
    {
        m_made.push_back(std::make_unique<SpectrumPlotParams>());
        m_made.back()->settings.name = strName;
        m_made.back()->points = points;
        return *m_made.back();
    }
    QByteArray text(bool bTime = false) const
    {
        QList<SpectrumPlotParams*> list;
        for (const auto& spectrum : m_made) {
            list.append(spectrum.get());
        }
        return pairTableText(list, bTime);
    }
    void read(const QByteArray& bytes)
    {
        qDeleteAll(m_read);
        m_read.clear();
        m_read = readPairTable(bytes, "table.csv");
    }
    static QString refusalOf(const QByteArray& bytes)
    {
        try {
            qDeleteAll(readPairTable(bytes, "table.csv"));
        } catch (const Failure& failure) {
            return failure.text();
        }
        return QString();
    }

    std::vector<std::unique_ptr<SpectrumPlotParams>> m_made;
    QList<SpectrumPlotParams*> m_read;
};

} // namespace

TEST_F(PairTableTest, AColumnASpectrumAndALineAPair)
{
    add("A", {{"640", "680", 0.5}, {"640", "700", 1.0}});
    add("B", {{"640", "680", 0.25}, {"640", "700", 0.0}});
    EXPECT_EQ(text(), "excitation,emission,A,B\n640,680,0.5,0.25\n640,700,1,0\n");
    EXPECT_EQ(text(true).left(16), "interval,time,A,");
}

TEST_F(PairTableTest, ComesBackWithAllDigitsAndOddNames)
{
    add("a, \"b\"", {{"", "12.5", 1.0 / 3.0}});
    add("Gr\xC3\xBCn 5", {{"", "12.5", 1e-300}});
    ASSERT_TRUE(isPairTable(text(true)));
    read(text(true));
    ASSERT_EQ(m_read.size(), 2);
    EXPECT_EQ(m_read[0]->settings.name, "a, \"b\"");
    EXPECT_EQ(m_read[1]->settings.name, QString::fromUtf8("Gr\xC3\xBCn 5"));
    EXPECT_EQ(m_read[0]->points[0].first, "");
    EXPECT_EQ(m_read[0]->points[0].second, "12.5");
    EXPECT_EQ(m_read[0]->points[0].value, 1.0 / 3.0);
    EXPECT_EQ(m_read[1]->points[0].value, 1e-300);
    EXPECT_NE(m_read[0]->settings.color, m_read[1]->settings.color);
}

TEST_F(PairTableTest, ALibraryFileIsNone)
{
    EXPECT_FALSE(isPairTable("$,Note,by hand\n$,NumSpec,1\nExcitation,Emission,A\n"));
    EXPECT_FALSE(isPairTable(""));
    EXPECT_FALSE(isPairTable("excitation,emission\n"));
    EXPECT_FALSE(isPairTable("\"excitation,emission,A\n"));
    EXPECT_TRUE(isPairTable("Excitation,EMISSION,A"));
}

TEST_F(PairTableTest, LineEndsAndTheMarkOfOtherProgramsAreTaken)
{
    const QByteArray odd = "\xEF\xBB\xBF"
                           "excitation,emission,A\r\n640,700,2\r\n\r\n";
    ASSERT_TRUE(isPairTable(odd));
    read(odd);
    ASSERT_EQ(m_read.size(), 1);
    ASSERT_EQ(m_read[0]->points.size(), 1);
    EXPECT_EQ(m_read[0]->points[0].value, 2.0);
}

TEST_F(PairTableTest, WhatIsWrongIsToldWithItsLine)
{
    EXPECT_EQ(refusalOf("excitation,emission,A\n640,700\n"), "table.csv:2: 2 fields where the first line has 3");
    EXPECT_EQ(refusalOf("excitation,emission,A\n640,700,1\n640,720,x\n"), "table.csv:3: \"x\" is no number");
    EXPECT_EQ(refusalOf("excitation,emission,A\n640,700,\n"), "table.csv:2: the value of \"A\" is missing");
    EXPECT_TRUE(refusalOf("excitation,emission,A\n640,\"700,1\n").startsWith("table.csv:2: "));
}

TEST_F(PairTableTest, NumberedChannelsStandWithTheirNames)
{
    QList<SpectrumPlotParams*> list{&add("A", {{"Block", "001", 0.5}, {"Block", "002", 1.0}})};
    const QByteArray bytes = pairTableText(list, false, {"DAPI, blue", "488"});
    EXPECT_EQ(bytes, "excitation,emission,channel,A\nBlock,001,\"DAPI, blue\",0.5\nBlock,002,488,1\n");
    EXPECT_TRUE(isPairTable(bytes));
    EXPECT_TRUE(isChannelTable(bytes));
    EXPECT_FALSE(isChannelTable(text()));
    read(bytes);
    ASSERT_EQ(m_read.size(), 1);
    EXPECT_EQ(m_read[0]->settings.name, "A");
    ASSERT_EQ(m_read[0]->points.size(), 2);
    EXPECT_EQ(m_read[0]->points[1].first, "Block");
    EXPECT_EQ(m_read[0]->points[1].second, "002");
    EXPECT_EQ(m_read[0]->points[1].value, 1.0);
}

// As programs for tables store what was filled in.
TEST_F(PairTableTest, NumberedChannelsComeBackFromSpreadsheets)
{
    for (const QByteArray& bytes :
         {QByteArray(
              "Excitation;Emission;Channel;A;B\r\nBlock;1;Gr\xFCn;0,5;1e-3\r\nBlock;12;\"a;b\";1;2,25\r\n;;;;\r\n"),
          QByteArray("excitation;emission;channel;A;B\nBlock;001;x;0.5;0.001\nBlock;012;;1;2.25\n"),
          QByteArray("\xEF\xBB\xBF"
                     "excitation\temission\tchannel\tA\tB\nBlock\t001\tx\t0,5\t0,001\nBlock\t12\ty\t1\t2,25\n"),
          QByteArray("excitation,emission,channel,A,B\nBlock,1,x,0.5,0.001\nBlock,12,y,1,2.25\n")}) {
        ASSERT_TRUE(isPairTable(bytes)) << bytes.constData();
        ASSERT_TRUE(isChannelTable(bytes));
        read(bytes);
        ASSERT_EQ(m_read.size(), 2);
        ASSERT_EQ(m_read[1]->points.size(), 2);
        EXPECT_EQ(m_read[0]->points[0].second, "001");
        EXPECT_EQ(m_read[0]->points[0].value, 0.5);
        EXPECT_EQ(m_read[1]->points[0].value, 0.001);
        EXPECT_EQ(m_read[1]->points[1].second, "012");
        EXPECT_EQ(m_read[1]->points[1].value, 2.25);
    }
    EXPECT_FALSE(isPairTable("excitation;emission;A\n")) << "a plain table over wavelength";
}

TEST_F(PairTableTest, ASpectrumThatIsCalledChannelIsOne)
{
    add("Channel", {{"640", "680", 0.5}});
    add("B", {{"640", "680", 0.25}});
    EXPECT_EQ(text(), "excitation,emission,channel,Channel,B\n640,680,,0.5,0.25\n");
    read(text());
    ASSERT_EQ(m_read.size(), 2);
    EXPECT_EQ(m_read[0]->settings.name, "Channel");
    EXPECT_EQ(m_read[1]->points[0].value, 0.25);
    EXPECT_EQ(refusalOf("excitation,emission,channel,A\n640,680,DAPI\n"),
              "table.csv:2: 3 fields where the first line has 4");
}
