// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/saved_fixture.h"

namespace {

class BatchSaveTest : public SavedFixture
{
protected:
    BatchSaveTest() { m_results.m_strBatchStamp = "20200101010101"; }

    SaveOutcome saveBatch(const QString& strName)
    {
        m_engine.resultView().setNote("note of " + strName);
        m_list.setCurrentText(strName);
        return m_results.saveResultsBatch();
    }
};

TEST_F(BatchSaveTest, ANewObjectHasAStamp)
{
    const QString strBefore = QDateTime::currentDateTime().toString("yyyyMMddHHmmss");
    const SavedResults fresh(m_list, m_owner);
    const QString strAfter = QDateTime::currentDateTime().toString("yyyyMMddHHmmss");
    EXPECT_LE(strBefore, fresh.m_strBatchStamp);
    EXPECT_LE(fresh.m_strBatchStamp, strAfter);
}

TEST_F(BatchSaveTest, TheFolderAndTheFileBearTheStamp)
{
    EXPECT_EQ(saveBatch("kidney(new)"), SaveOutcome::Saved);
    EXPECT_EQ(entries("SPUM20200101010101"), QStringList("kidney > SpecUnmix/SPUM-XML20200101010101.xml"));
    EXPECT_EQ(files("SPUM20200101010101"), QStringList("SPUM-XML20200101010101.xml"));
    EXPECT_EQ(noteOf("kidney", "SPUM20200101010101"), QString("note of kidney(new)"));
    EXPECT_FALSE(QDir(path("XML")).exists());
    EXPECT_EQ(m_list.updates, QStringList("Mouse seven"));
}

TEST_F(BatchSaveTest, TheFirstOfABatchOfTwoOrMoreRenewsTheStamp)
{
    CORVUtilityFns::setSpumBatchProcessingCount(2);
    CORVUtilityFns::setSpumBatchNewFolderStatus(true);
    EXPECT_EQ(saveBatch("kidney"), SaveOutcome::Saved);
    EXPECT_EQ(m_results.m_strBatchStamp, QString("20240131235950"));
    EXPECT_FALSE(CORVUtilityFns::getSpumBatchNewFolderStatus());
    m_moment = m_moment.addSecs(60);
    saveBatch("liver");
    EXPECT_EQ(m_results.m_strBatchStamp, QString("20240131235950"));
    EXPECT_EQ(names("SPUM20240131235950"), QStringList({"kidney", "liver"}));
}

TEST_F(BatchSaveTest, ABatchOfOneKeepsTheStamp)
{
    CORVUtilityFns::setSpumBatchProcessingCount(1);
    CORVUtilityFns::setSpumBatchNewFolderStatus(true);
    saveBatch("kidney");
    EXPECT_EQ(m_results.m_strBatchStamp, QString("20200101010101"));
    EXPECT_TRUE(CORVUtilityFns::getSpumBatchNewFolderStatus());
}

TEST_F(BatchSaveTest, TheStampIsRenewedAheadOfEverythingElse)
{
    CORVUtilityFns::setSpumBatchProcessingCount(3);
    CORVUtilityFns::setSpumBatchNewFolderStatus(true);
    CORVProcess::startLongProcess(0, LONGPROCESS_ACQUISITION, false, QString());
    EXPECT_EQ(saveBatch("kidney"), SaveOutcome::NotSaved);
    CORVProcess::endLongProcess(LONGPROCESS_ACQUISITION);
    EXPECT_EQ(m_results.m_strBatchStamp, QString("20240131235950"));
    EXPECT_TRUE(m_log.mentions("Unable to proceed with saving Spectral Unmixing results"));
}

TEST_F(BatchSaveTest, ThreeSequencesGetFoldersOfOneStamp)
{
    CORVUtilityFns::setSpumBatchProcessingCount(3);
    CORVUtilityFns::setSpumBatchNewFolderStatus(true);
    for (int i = 0; i < 3; ++i) {
        CORVSequenceDataset sequence;
        openPlainSequence(sequence, m_folder.filePath(QString("sequence %1").arg(i)));
        sequence.setSequenceID(QString("batch %1").arg(i));
        CORVSpumKyvo engine(sequence.getSequenceID());
        m_results.setEngine(&engine);
        m_list.setCurrentText("kidney");
        EXPECT_EQ(m_results.saveResultsBatch(), SaveOutcome::Saved);
        EXPECT_TRUE(
            QFile::exists(sequence.getSequenceInfoPath() + "SPUM20240131235950/SpecUnmix/SPUM-XML20240131235950.xml"));
        m_moment = m_moment.addSecs(7);
    }
}

TEST_F(BatchSaveTest, AFileFromBeforeIsKeptEvenByOneWhoWaits)
{
    ASSERT_EQ(saveBatch("kidney"), SaveOutcome::Saved);
    m_results.m_bWaitForFreeFile = true;
    EXPECT_EQ(saveBatch("liver"), SaveOutcome::FileWasThere);
    EXPECT_EQ(names("SPUM20200101010101"), QStringList({"kidney", "liver"}));
    EXPECT_EQ(noteOf("liver", "SPUM20200101010101"), QString("note of kidney"));
    EXPECT_EQ(m_log.reports(), "");
}

TEST_F(BatchSaveTest, ACollidingNameIsAskedAboutUnlessItIsAutomatic)
{
    ASSERT_EQ(saveBatch("SPUM_001"), SaveOutcome::Saved);
    m_results.m_bBatchMode = true;
    EXPECT_EQ(saveBatch("SPUM_001"), SaveOutcome::Declined);
    EXPECT_EQ(m_boxes.shown, QStringList(overwriteQuestion("SPUM_001")));
    m_boxes.shown.clear();
    m_results.m_bUseAutoName = true;
    m_results.m_strAutoName = "SPUM_001(new)";
    EXPECT_EQ(saveBatch("SPUM_001"), SaveOutcome::FileWasThere);
    EXPECT_TRUE(m_boxes.shown.isEmpty());
    EXPECT_EQ(names("SPUM20200101010101"), QStringList({"SPUM_001", "SPUM_002"}));
}

TEST_F(BatchSaveTest, AFileInTheFoldersPlaceIsToldInTheSameWords)
{
    writeBytes("SPUM20200101010101", "no folder");
    EXPECT_EQ(saveBatch("kidney"), SaveOutcome::NotSaved);
    EXPECT_TRUE(m_log.has("Failed to create XML folder.", 3));
}

} // namespace
