// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/ResultDifference.h"

#include "services/results/ResultFiles.h"
#include "services/results/UnmixFolder.h"
#include "services/support/SmallAnalysis.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>

namespace {

class ResultDifferenceTest : public SmallAnalysis
{
protected:
    void SetUp() override
    {
        SmallAnalysis::SetUp();
        analyse();
        m_numbers.shares = {0.25, 0.75};
        m_numbers.truth.resize(2);
        writeTo("first");
    }
    void writeTo(const QString& strRun)
    {
        ASSERT_TRUE(QDir().mkpath(path(strRun)));
        ResultFiles files(engine(), m_numbers, path(strRun) + '/');
        files.setRun(strRun);
        files.write([](double) {});
    }
    ResultDifference difference() const
    {
        return ResultDifference(UnmixFolder(path("first")), UnmixFolder(path("second")));
    }
    ResultNumbers m_numbers;
};

} // namespace

TEST_F(ResultDifferenceTest, TheSameRunIsTheSameButForItsName)
{
    writeTo("second");
    const ResultDifference same = difference();
    EXPECT_TRUE(same.isSame()) << qPrintable(same.text());
    EXPECT_EQ(same.text(), "");
    EXPECT_EQ(same.sameCount(), entriesOf(path("first")).size());
}

// The third pixel of the first map is off by half of the map's largest value, 15.
TEST_F(ResultDifferenceTest, AMapTellsHowFarItIsOff)
{
    engine().m_concentrations[0][2] += 7.5;
    writeTo("second");
    const ResultDifference other = difference();
    EXPECT_FALSE(other.isSame());
    EXPECT_TRUE(other.text().startsWith("01_Dye_A.tif (largest difference 0.5 of its maximum), "))
        << qPrintable(other.text());
    EXPECT_FALSE(other.text().contains("02_Dye_B.tif"));
}

TEST_F(ResultDifferenceTest, AFileThatIsLongerOrMissingIsTold)
{
    writeTo("second");
    QFile svg(path("second/spectra.svg"));
    ASSERT_TRUE(svg.open(QIODevice::Append));
    svg.write(" ");
    svg.close();
    ASSERT_TRUE(QFile::remove(path("first/overview.png")));
    EXPECT_EQ(difference().text(), "overview.png (missing in one of them), spectra.svg");
}

TEST_F(ResultDifferenceTest, OtherNumbersOfTheSummaryAreADifference)
{
    m_numbers.shares = {0.5, 0.5};
    writeTo("second");
    EXPECT_EQ(difference().text(), "summary.csv, summary.json");
}

TEST(ChangedInputsTest, WhatHasChangedOrIsGoneIsNamed)
{
    QTemporaryDir folder;
    QFile file(folder.filePath("a.tif"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("some");
    file.close();
    const auto told = [&](const QString& strName, const QString& strHash) {
        const QJsonObject input{{"file", strName}, {"sha1", strHash}};
        return changedInputs({{"sequence", QJsonObject{{"files", QJsonArray{input}}}}}, folder.path());
    };
    EXPECT_EQ(told("a.tif", "eb875812858d27b22cb2b75f992dffadc1b05c66"), QStringList());
    EXPECT_EQ(told("a.tif", "of before"), QStringList("the image a.tif has changed"));
    EXPECT_EQ(told("SequenceInfo.txt", "of before"), QStringList("the file SequenceInfo.txt is not there"));
    const QString library = folder.filePath("a.tif");
    EXPECT_EQ(changedInputs({{"library", QJsonObject{{"file", library}, {"sha1", "of before"}}}}, folder.path()),
              QStringList("the library " + library + " has changed"));
    EXPECT_EQ(changedInputs({}, folder.path()), QStringList());
}
