// SPDX-License-Identifier: GPL-3.0-or-later
// All maps of a result, or of one component at all scan spots.
#include "storage/ExportFixture.h"

#include "storage/exportRegions.h"

#include "host/CROIManager.h"
#include "platform/orvutils/MessageResponder.h"

#include <QFile>
#include <QSignalSpy>

namespace {

// Chooses that item and keeps the question.
class Chooser : public orv::MessageResponder
{
public:
    Chooser(std::vector<orv::ItemRequest>* pAsked, std::optional<QString> answer)
        : m_pAsked(pAsked), m_answer(std::move(answer))
    {
    }
    int ask(const orv::MessageRequest& request) override
    {
        ADD_FAILURE() << "a box: " << qPrintable(request.m_strText);
        return request.defaultAnswer();
    }
    std::optional<QString> chooseItem(const orv::ItemRequest& request) override
    {
        m_pAsked->push_back(request);
        return m_answer;
    }

private:
    std::vector<orv::ItemRequest>* m_pAsked;
    std::optional<QString> m_answer;
};

// The left column of two by two pixels, with numbers that are not those of a map.
tagROIInfo leftColumn()
{
    tagROIInfo region;
    region.name = "left";
    region.width = 1.0;
    region.height = 2.0;
    region.statistics.unit = "Counts";
    region.statistics.pixels = 99;
    return region;
}

class ExportSequenceTest : public ExportFixture
{
protected:
    void TearDown() override
    {
        orv::setMessageResponder(nullptr);
        ExportFixture::TearDown();
    }
    void answerWith(std::optional<QString> answer)
    {
        orv::setMessageResponder(std::make_unique<Chooser>(&m_asked, std::move(answer)));
    }
    // The paths of the signal, relative to the target folder; "(no signal)" without one.
    QStringList exportAll()
    {
        QSignalSpy spy(&engine(), &CORVSpumKyvo::createSpumKyvoSequence);
        engine().onClickExportAsSequence();
        if (spy.isEmpty()) {
            return {"(no signal)"};
        }
        EXPECT_EQ(spy.size(), 1);
        EXPECT_FALSE(spy.first().at(1).toBool());
        QStringList paths = spy.first().at(0).toStringList();
        for (QString& strPath : paths) {
            EXPECT_TRUE(QFileInfo(strPath).isFile()) << qPrintable(strPath);
            strPath = QDir(target()).relativeFilePath(strPath);
        }
        return paths;
    }

    std::vector<orv::ItemRequest> m_asked;
    LogCapture m_log;
};

} // namespace

TEST_F(ExportSequenceTest, WithoutSpotsEveryComponentIsExportedInOrderAndNothingIsAsked)
{
    makeResult(3, 4);
    answerWith("No.1");
    EXPECT_EQ(exportAll(), QStringList({"Unmixed Result 1/ClickInfo.txt", "Unmixed Result 2/ClickInfo.txt",
                                        "Unmixed Result 3/ClickInfo.txt"}));
    EXPECT_TRUE(m_asked.empty());
    EXPECT_EQ(m_log.reports(), "");
}

TEST_F(ExportSequenceTest, ASingleSpotIsLikeNone)
{
    makeResult(2, 3, 1);
    answerWith(std::nullopt);
    EXPECT_EQ(exportAll().size(), 2);
    EXPECT_TRUE(m_asked.empty());
}

TEST_F(ExportSequenceTest, WithSeveralSpotsTheUserPicksAComponent)
{
    makeResult(3, 4, 2);
    answerWith("No.2");
    EXPECT_EQ(exportAll(), QStringList({"Unmixed Result 2001/ClickInfo.txt", "Unmixed Result 2002/ClickInfo.txt"}));
    EXPECT_EQ(namesIn(target()), QStringList({"Unmixed Result 2001", "Unmixed Result 2002"}));
    ASSERT_EQ(m_asked.size(), 1U);
    EXPECT_EQ(m_asked[0].m_strTitle, "Select component to export)");
    EXPECT_EQ(m_asked[0].m_strLabel, "Which one to export as a FRAX sequence?");
    EXPECT_EQ(m_asked[0].m_items, QStringList({"No.1", "No.2", "No.3"}));
    EXPECT_EQ(m_asked[0].m_pParent, nullptr);
    EXPECT_EQ(m_asked[0].m_nCurrent, 0);
    EXPECT_FALSE(m_asked[0].m_bEditable);
}

TEST_F(ExportSequenceTest, TheNumberBehindNoMayHaveMoreDigits)
{
    makeResult(11, 11, 2);
    answerWith("No.11");
    EXPECT_EQ(exportAll(), QStringList({"Unmixed Result 11001/ClickInfo.txt", "Unmixed Result 11002/ClickInfo.txt"}));
}

TEST_F(ExportSequenceTest, BackingOutOfTheQuestionLeavesNoFolder)
{
    makeResult(3, 4, 2);
    answerWith(std::nullopt);
    EXPECT_EQ(exportAll(), QStringList("(no signal)"));
    EXPECT_EQ(m_asked.size(), 1U);
    EXPECT_EQ(namesIn(temporary()), QStringList());
    EXPECT_EQ(m_log.reports(), "");
}

TEST_F(ExportSequenceTest, WithoutAResultNothingHappens)
{
    makeResult(3, 4);
    engine().m_concentrations = XTNT::Matrix<double>();
    EXPECT_EQ(exportAll(), QStringList("(no signal)"));
    EXPECT_EQ(namesIn(temporary()), QStringList());
    makeResult(3, 4, 2);
    engine().m_concentrations = XTNT::Matrix<double>();
    answerWith("No.1");
    EXPECT_EQ(exportAll(), QStringList("(no signal)"));
    EXPECT_TRUE(m_asked.empty());
}

TEST_F(ExportSequenceTest, AFailureEndsTheExportAndLeavesTheFoldersBefore)
{
    makeResult(3, 4);
    engine().m_imageList[1] = "retired";
    EXPECT_EQ(exportAll(), QStringList("(no signal)"));
    EXPECT_EQ(m_log.reports(), noDatasetLine.toStdString() + "\n");
    EXPECT_TRUE(QFileInfo::exists(target() + "/Unmixed Result 1/ClickInfo.txt"));
    EXPECT_FALSE(QFileInfo::exists(target() + "/Unmixed Result 3"));
}

TEST_F(ExportSequenceTest, AFailureAtASpotEndsTheExport)
{
    makeResult(2, 3, 3);
    engine().m_imageList[3] = "retired"; // component 0 of spot 1
    answerWith("No.1");
    EXPECT_EQ(exportAll(), QStringList("(no signal)"));
    EXPECT_EQ(m_log.count(noDatasetLine, 3), 1);
    EXPECT_FALSE(QFileInfo::exists(target() + "/Unmixed Result 1003"));
}

TEST_F(ExportSequenceTest, ASecondExportReplacesTheFoldersOfTheFirst)
{
    makeResult(2, 3);
    ASSERT_EQ(exportAll().size(), 2);
    for (int c = 1; c < 3; ++c) {
        QFile left(target() + QString("/Unmixed Result %1/left over").arg(c));
        ASSERT_TRUE(left.open(QIODevice::WriteOnly));
    }
    engine().m_concentrations[1][0] = 8.0;
    ASSERT_EQ(exportAll().size(), 2);
    for (int c = 1; c < 3; ++c) {
        EXPECT_FALSE(QFileInfo::exists(target() + QString("/Unmixed Result %1/left over").arg(c)));
    }
    EXPECT_EQ(pixelsAt(target() + "/Unmixed Result 2/luminescent.TIF").front(), 4.0);
}

TEST_F(ExportSequenceTest, RegionsOfTheSourceAreTakenOverAndMeasuredOverTheMap)
{
    makeResult(2, 3);
    const tagROIInfo region = leftColumn();
    ASSERT_TRUE(dataset(0).roiManager()->addRegion(region));
    CORVDataset map;
    map.setCoreImage(IMAGETYPE_MAIN_DATA, squareImage(2, 1, [](int i) { return static_cast<float>(i + 1); }));
    tagROIInfo old = region;
    old.name = "of the map";
    ASSERT_TRUE(map.roiManager()->addRegion(old));
    ASSERT_EQ(takeOverRegions(dataset(0), map, DISPLAYUNIT_COUNTS), ESTATUS_SUCCESS);
    ASSERT_EQ(map.roiManager()->regions().size(), 1);
    const tagROIInfo& taken = map.roiManager()->regions().first();
    EXPECT_EQ(taken.name, "left");
    EXPECT_EQ(taken.statistics.pixels, 2);
    EXPECT_EQ(taken.statistics.sum, 1.0 + 3.0); // the left column
    CPLClickInfo info;
    ASSERT_EQ(map.roiManager()->saveROIData(&info), ESTATUS_SUCCESS);
    EXPECT_TRUE(entriesOf(info, "ROIs").contains("ROI 1 Sum=4"));
}

TEST_F(ExportSequenceTest, RegionsThatCannotBeMeasuredDoNotKeepTheNumbersOfTheSource)
{
    makeResult(2, 3);
    const tagROIInfo region = leftColumn();
    ASSERT_TRUE(dataset(0).roiManager()->addRegion(region));
    CORVDataset map; // has no image
    EXPECT_NE(takeOverRegions(dataset(0), map, DISPLAYUNIT_COUNTS), ESTATUS_SUCCESS);
    ASSERT_EQ(map.roiManager()->regions().size(), 1);
    EXPECT_EQ(map.roiManager()->regions().first().statistics.pixels, tagROIStatistics().pixels);
}

TEST_F(ExportSequenceTest, WithoutRegionsThereIsNothingToMeasure)
{
    makeResult(2, 3);
    CORVDataset map; // has no image
    EXPECT_EQ(takeOverRegions(dataset(0), map, DISPLAYUNIT_COUNTS), ESTATUS_SUCCESS);
    EXPECT_FALSE(map.hasROIData());
}
