// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/CORVSpumKyvo.h"
#include "engine/LogCapture.h"
#include "engine/TestSequence.h"

#include "host/CILImage.h"
#include "host/CORVDataset.h"
#include "host/CORVSequenceDataset.h"

#include <gtest/gtest.h>

namespace {

TestImage epiImage(const QString& strExcitation, const QString& strEmission)
{
    TestImage image;
    image.excitation = strExcitation;
    image.emission = strEmission;
    return image;
}

TestImage timeImage(const QString& strTime, const QString& strInterval)
{
    TestImage image;
    image.kyvoTime = strTime;
    image.kyvoInterval = strInterval;
    return image;
}

TEST(InspectionTest, EpiFluorescentSequence)
{
    TestSequence sequence;
    sequence->isFluorescence = true;
    sequence.add(epiImage("640nm", "720nm"));
    sequence.add(epiImage("640 nm", "700nm"));
    sequence.add(epiImage("620nm", "700nm"));
    CORVSpumKyvo engine(sequence.id());
    ASSERT_TRUE(engine.buildDatasetInfo());
    EXPECT_EQ(engine.m_eSeqKind, 1);
    EXPECT_EQ(engine.m_eUnit, 2);
    EXPECT_EQ(engine.m_eAxis, 0);
    EXPECT_EQ(engine.getEmissionKeys(), (QStringList{"700", "720"}));
    EXPECT_EQ(engine.getExcitationKeys(), (QStringList{"620", "640"}));
    const QList<KeyPair> pairs{{"640", "720"}, {"640", "700"}, {"620", "700"}};
    EXPECT_EQ(engine.getAllKeyPairs(), pairs);
    EXPECT_EQ(engine.getSelectedKeyPairs(), pairs);
    EXPECT_EQ(engine.m_primaryKeys, (QStringList{"720", "700"}));
    EXPECT_EQ(engine.m_secondaryKeys, (QStringList{"640", "620"}));
    ASSERT_EQ(engine.m_imageRecords.size(), 3);
    const ImageRecord record = engine.m_imageRecords.value(sequence.click(1));
    EXPECT_EQ(record.excitation, QString("640"));
    EXPECT_EQ(record.emission, QString("700"));
    EXPECT_EQ(record.type, 4);
    EXPECT_TRUE(record.name.isEmpty() && record.spot.isEmpty() && record.interval.isEmpty() && record.time.isEmpty());
    EXPECT_TRUE(engine.m_spots.isEmpty());
}

TEST(InspectionTest, KindsAndUnitsBySequence)
{
    for (const bool bFluorescence : {false, true}) {
        for (const bool bTransillumination : {false, true}) {
            TestSequence sequence;
            sequence->isFluorescence = bFluorescence;
            sequence->isTransillumination = bTransillumination;
            TestImage image = epiImage("640nm", "700nm");
            image.spotX = "0";
            image.spotY = "0";
            sequence.add(image);
            image.emission = "720nm";
            sequence.add(image);
            CORVSpumKyvo engine(sequence.id());
            ASSERT_TRUE(engine.buildDatasetInfo());
            const int eKind = !bFluorescence ? 0 : bTransillumination ? 2 : 1;
            EXPECT_EQ(engine.m_eSeqKind, eKind);
            EXPECT_EQ(engine.m_eUnit, bFluorescence ? 2 : 1);
            EXPECT_EQ(engine.getAnalysisName(), QString("Spectral Unmixing"));
            sequence->setKyvoSequence(true);
            ASSERT_TRUE(engine.buildDatasetInfo());
            EXPECT_EQ(engine.m_eSeqKind, 3);
            EXPECT_EQ(engine.m_eTemporalKind, eKind);
            EXPECT_EQ(engine.getAnalysisName(), QString("Temporal Unmixing"));
            EXPECT_EQ(engine.availableModes(), (QList<int>{2, 3}));
        }
    }
}

TEST(InspectionTest, ASceneOnlySequenceIsInspectedLikeAnyOther)
{
    TestSequence sequence;
    sequence->isFluorescence = true;
    sequence->set3DSceneOnlySequence(true);
    sequence.add(epiImage("640nm", "700nm"));
    sequence.add(epiImage("640nm", "720nm"));
    CORVSpumKyvo engine(sequence.id());
    EXPECT_TRUE(engine.buildDatasetInfo());
    EXPECT_EQ(engine.m_eSeqKind, 1);
}

TEST(InspectionTest, AMissingSequenceIsLoggedAndRefused)
{
    LogCapture log;
    CORVSpumKyvo engine("no such sequence");
    EXPECT_FALSE(engine.buildDatasetInfo());
    EXPECT_TRUE(log.has("SpumKyvo: Invalid sequence data in buildDatasetInfo()!", 3));
}

TEST(InspectionTest, ExcitationOnlyTakesTheExcitationAxis)
{
    TestSequence sequence;
    sequence->isFluorescence = true;
    for (const char* pExcitation : {"605nm", "640nm", "675nm"}) {
        sequence.add(epiImage(pExcitation, "720nm"));
    }
    CORVSpumKyvo engine(sequence.id());
    ASSERT_TRUE(engine.buildDatasetInfo());
    EXPECT_EQ(engine.m_eAxis, 1);
    EXPECT_EQ(engine.m_primaryKeys, (QStringList{"605", "640", "675"}));
    EXPECT_EQ(engine.m_secondaryKeys, (QStringList{"720"}));
}

TEST(InspectionTest, ASingleImageIsRefusedWithoutALogLine)
{
    TestSequence sequence;
    sequence.add(epiImage("", "700nm"));
    LogCapture log;
    CORVSpumKyvo engine(sequence.id());
    EXPECT_FALSE(engine.buildDatasetInfo());
    EXPECT_TRUE(engine.m_imageRecords.isEmpty());
    EXPECT_FALSE(log.mentions("to unmix!"));
    // The user who selects it is told.
    QList<KeyPair> selection = engine.m_allKeyPairs;
    int eAxis = 7;
    EXPECT_EQ(engine.validateSelection(selection, &eAxis, true), 0);
    EXPECT_EQ(eAxis, 7);
    EXPECT_TRUE(log.has("SpumKyvo: need at least 2 wavelengths to unmix!", 2));
}

TEST(InspectionTest, OpenEmissionWithExcitationIsASpectralImage)
{
    TestSequence sequence;
    sequence->isFluorescence = true;
    sequence.add(epiImage("605nm", "Open"));
    sequence.add(epiImage("640nm", "Open"));
    CORVSpumKyvo engine(sequence.id());
    ASSERT_TRUE(engine.buildDatasetInfo());
    EXPECT_EQ(engine.m_eAxis, 1);
    EXPECT_EQ(engine.getEmissionKeys(), (QStringList{"Open"}));
}

TEST(InspectionTest, AFurtherImageOfAPairAddsARecordButNoPair)
{
    TestSequence sequence;
    sequence->isFluorescence = true;
    sequence.add(epiImage("640nm", "700nm"));
    sequence.add(epiImage("640nm", "720nm"));
    sequence.add(epiImage("640nm", "720nm"));
    CORVSpumKyvo engine(sequence.id());
    ASSERT_TRUE(engine.buildDatasetInfo());
    EXPECT_EQ(engine.m_allKeyPairs.size(), 2);
    EXPECT_EQ(engine.m_imageRecords.size(), 3);
}

TEST(InspectionTest, TimesComeFromTheClickInfo)
{
    TestSequence sequence;
    sequence->setKyvoSequence(true);
    sequence.add(timeImage("100.9", "2"));
    sequence.add(timeImage("5.5", "1"));
    sequence.add(timeImage("20", "1"));
    CORVSpumKyvo engine(sequence.id());
    ASSERT_TRUE(engine.buildDatasetInfo());
    EXPECT_EQ(engine.m_eAxis, 2);
    // Numeric order; as text 100 would come first.
    EXPECT_EQ(engine.getEmissionKeys(), (QStringList{"5", "20", "100"}));
    EXPECT_EQ(engine.getExcitationKeys(), (QStringList{"Int1", "Int2"}));
    EXPECT_EQ(engine.getAllKeyPairs(), (QList<KeyPair>{{"Int2", "100"}, {"Int1", "5"}, {"Int1", "20"}}));
    EXPECT_EQ(engine.m_primaryKeys, (QStringList{"100", "5", "20"}));
    const ImageRecord record = engine.m_imageRecords.value(sequence.click(0));
    EXPECT_EQ(record.interval, QString("Int2"));
    EXPECT_EQ(record.time, QString("100"));
}

TEST(InspectionTest, WithoutTimesImagesAreNumberedAndOnlyTheFirstGivesTheSubject)
{
    TestSequence sequence;
    sequence->setKyvoSequence(true);
    for (int i = 0; i < 3; ++i) {
        TestImage image;
        image.probe = QString("Probe%1").arg(i);
        image.subjectType = QString("Mouse%1").arg(i);
        sequence.add(image);
    }
    CORVSpumKyvo engine(sequence.id());
    ASSERT_TRUE(engine.buildDatasetInfo());
    EXPECT_EQ(engine.getEmissionKeys(), (QStringList{"0", "1", "2"}));
    EXPECT_EQ(engine.getExcitationKeys(), (QStringList{"Int1"}));
    EXPECT_EQ(engine.m_probes, (QStringList{"Probe0"}));
    EXPECT_EQ(engine.m_strSubjectType, QString("Mouse0"));
    EXPECT_EQ(engine.m_pPhoto, sequence->getDatasets().first()->getCoreImage(IMAGETYPE_PHOTOGRAPH));
}

TEST(InspectionTest, OfTwoImagesWithOneTimeTheFirstStays)
{
    TestSequence sequence;
    sequence->setKyvoSequence(true);
    sequence.add(timeImage("0", "1"));
    sequence.add(timeImage("0.4", "2"));
    sequence.add(timeImage("10", "1"));
    CORVSpumKyvo engine(sequence.id());
    ASSERT_TRUE(engine.buildDatasetInfo());
    EXPECT_EQ(engine.m_imageRecords.size(), 2);
    EXPECT_TRUE(engine.m_imageRecords.contains(sequence.click(0)));
    EXPECT_FALSE(engine.m_imageRecords.contains(sequence.click(1)));
    EXPECT_EQ(engine.getExcitationKeys(), (QStringList{"Int1"}));
}

TEST(InspectionTest, AnImageWithoutTimeBesideTimedOnesIsNumbered)
{
    TestSequence sequence;
    sequence->setKyvoSequence(true);
    sequence.add(timeImage("30", "2"));
    TestImage noInterval = timeImage("60", "");
    sequence.add(noInterval);
    CORVSpumKyvo engine(sequence.id());
    ASSERT_TRUE(engine.buildDatasetInfo());
    EXPECT_EQ(engine.getAllKeyPairs(), (QList<KeyPair>{{"Int2", "30"}, {"Int1", "0"}}));
}

TEST(InspectionTest, ImagesWithoutFiltersOfASpectralSequenceAreRefused)
{
    TestSequence sequence;
    sequence.add(epiImage("Block", "Open"));
    sequence.add(epiImage("Block", "Open"));
    CORVSpumKyvo engine(sequence.id());
    EXPECT_FALSE(engine.buildDatasetInfo());
    EXPECT_TRUE(engine.m_imageRecords.isEmpty());
    EXPECT_EQ(engine.m_allKeyPairs, (QList<KeyPair>{{"Int1", "0"}, {"Int1", "1"}}));
}

TEST(InspectionTest, TheLastSpectralDatasetGivesTheSubject)
{
    TestSequence sequence;
    sequence->isFluorescence = true;
    TestImage image = epiImage("640nm", "700nm");
    image.probe = "AF750";
    image.subjectType = "Phantom";
    sequence.add(image);
    image.emission = "720nm";
    image.probe = "QD800, AF680";
    image.subjectType = "Mouse";
    sequence.add(image);
    CORVSpumKyvo engine(sequence.id());
    ASSERT_TRUE(engine.buildDatasetInfo());
    EXPECT_EQ(engine.m_probes, (QStringList{"QDot 800", "AlexaFluor 680"}));
    EXPECT_EQ(engine.m_strSubjectType, QString("Mouse"));
}

TEST(InspectionTest, AMissingProbeIsNotedAndLeavesTheProbes)
{
    TestSequence sequence;
    sequence.add(epiImage("", "700nm"));
    sequence.add(epiImage("", "720nm"));
    CORVSpumKyvo engine(sequence.id());
    engine.m_probes = QStringList{"kept"};
    LogCapture log;
    EXPECT_TRUE(engine.buildDatasetInfo());
    EXPECT_TRUE(log.has("Could not find probe name in dataset.", 1));
    EXPECT_EQ(engine.m_probes, (QStringList{"kept"}));
}

TEST(InspectionTest, ProbesWithoutSubjectTypeAreNotTaken)
{
    TestSequence sequence;
    TestImage image = epiImage("", "700nm");
    image.probe = "AF750";
    sequence.add(image);
    image.emission = "720nm";
    sequence.add(image);
    CORVSpumKyvo engine(sequence.id());
    EXPECT_TRUE(engine.buildDatasetInfo());
    EXPECT_TRUE(engine.m_probes.isEmpty());
    EXPECT_TRUE(engine.m_strSubjectType.isEmpty());
}

TEST(InspectionTest, APhotographIsLentByAnotherDataset)
{
    TestSequence sequence;
    TestImage image = epiImage("", "700nm");
    CORVDataset* pFirst = sequence.add(image);
    image.emission = "720nm";
    image.photograph = false;
    sequence.add(image);
    CORVSpumKyvo engine(sequence.id());
    ASSERT_TRUE(engine.buildDatasetInfo());
    EXPECT_EQ(engine.m_pPhoto, pFirst->getCoreImage(IMAGETYPE_PHOTOGRAPH));
}

TEST(InspectionTest, WithoutAPhotographTheSequenceIsRefused)
{
    TestSequence sequence;
    TestImage image = epiImage("", "700nm");
    image.photograph = false;
    sequence.add(image);
    image.emission = "720nm";
    sequence.add(image);
    LogCapture log;
    CORVSpumKyvo engine(sequence.id());
    EXPECT_FALSE(engine.buildDatasetInfo());
    EXPECT_TRUE(log.has("SpumKyvo: unable to find a valid photo and spumkyvo disabled!", 2));
    EXPECT_EQ(engine.m_pPhoto, nullptr);
}

void addScan(TestSequence& sequence, int nSpots, int nPairs, int nMissing)
{
    sequence->isFluorescence = true;
    sequence->isTransillumination = true;
    for (int s = 0; s < nSpots; ++s) {
        for (int i = 0; i < nPairs; ++i) {
            if (nMissing-- > 0) {
                continue;
            }
            TestImage image = epiImage("640nm", QString("%1nm").arg(700 + 20 * i));
            image.spotX = QString::number(s);
            image.spotY = "1.5";
            sequence.add(image);
        }
    }
}

TEST(InspectionTest, ACompleteScanIsAccepted)
{
    TestSequence sequence;
    addScan(sequence, 4, 3, 0);
    CORVSpumKyvo engine(sequence.id());
    ASSERT_TRUE(engine.buildDatasetInfo());
    EXPECT_EQ(engine.m_imageRecords.size(), 12);
    EXPECT_EQ(engine.m_spots, (QStringList{"0,1.5", "1,1.5", "2,1.5", "3,1.5"}));
    EXPECT_EQ(engine.m_imageRecords.value(sequence.click(4)).spot, QString("1,1.5"));
    EXPECT_EQ(engine.availableModes(), (QList<int>{2}));
}

TEST(InspectionTest, AScanWithAMissingImageIsRefused)
{
    TestSequence sequence;
    addScan(sequence, 4, 3, 1);
    CORVSpumKyvo engine(sequence.id());
    EXPECT_FALSE(engine.buildDatasetInfo());
    EXPECT_TRUE(engine.m_imageRecords.isEmpty());
}

TEST(InspectionTest, ASingleSpotOffersAllModes)
{
    TestSequence sequence;
    addScan(sequence, 1, 3, 0);
    CORVSpumKyvo engine(sequence.id());
    ASSERT_TRUE(engine.buildDatasetInfo());
    EXPECT_EQ(engine.availableModes(), (QList<int>{0, 1, 2, 3}));
}

TEST(InspectionTest, ASecondInspectionGivesTheSame)
{
    TestSequence sequence;
    addScan(sequence, 2, 3, 0);
    CORVSpumKyvo engine(sequence.id());
    ASSERT_TRUE(engine.buildDatasetInfo());
    const QStringList spots = engine.m_spots;
    ASSERT_TRUE(engine.buildDatasetInfo());
    EXPECT_EQ(engine.m_spots, spots);
    EXPECT_EQ(engine.m_allKeyPairs.size(), 3);
    EXPECT_EQ(engine.m_imageRecords.size(), 6);
}

class ApplySelectionTest : public ::testing::Test
{
protected:
    ApplySelectionTest() : m_engine("none")
    {
        m_engine.m_eSeqKind = SEQKIND_EPI_FLUORESCENT;
        m_engine.m_selectedKeyPairs = {{"1", "2"}};
        m_engine.m_primaryKeys = QStringList{"former"};
    }

    LogCapture m_log;
    CORVSpumKyvo m_engine;
};

TEST_F(ApplySelectionTest, AUsableSelectionIsTakenWithItsKeys)
{
    QList<KeyPair> selection{{"640nm", "700nm"}, {"640nm", "720nm"}};
    EXPECT_TRUE(m_engine.applySelection(selection));
    EXPECT_EQ(m_engine.m_selectedKeyPairs, selection);
    EXPECT_EQ(m_engine.m_primaryKeys, (QStringList{"700", "720"}));
    EXPECT_EQ(m_engine.m_eAxis, 0);
    EXPECT_FALSE(m_log.mentions("SpumKyvo"));
}

TEST_F(ApplySelectionTest, AnAdjustedSelectionIsStoredWithoutItsKeys)
{
    QList<KeyPair> selection{{"640", "700"}, {"640", "Open"}, {"640", "720"}};
    EXPECT_FALSE(m_engine.applySelection(selection));
    EXPECT_EQ(m_engine.m_selectedKeyPairs, (QList<KeyPair>{{"640", "700"}, {"640", "720"}}));
    EXPECT_EQ(m_engine.m_primaryKeys, (QStringList{"former"}));
    EXPECT_TRUE(m_log.has("SpumKyvo: removed invalid selections!", 2));
}

TEST_F(ApplySelectionTest, AnUnusableSelectionBecomesTheFormerOne)
{
    QList<KeyPair> selection{{"640", "700"}};
    EXPECT_FALSE(m_engine.applySelection(selection));
    EXPECT_EQ(selection, (QList<KeyPair>{{"1", "2"}}));
    EXPECT_EQ(m_engine.m_selectedKeyPairs, selection);
    EXPECT_TRUE(m_log.has("SpumKyvo: need at least 2 wavelengths to unmix!", 2));
}

TEST_F(ApplySelectionTest, TimePointsAreCountedInATemporalSequence)
{
    m_engine.m_eSeqKind = SEQKIND_TEMPORAL;
    QList<KeyPair> selection{{"Int1", "5"}, {"Int2", "5"}};
    EXPECT_FALSE(m_engine.applySelection(selection));
    EXPECT_TRUE(m_log.has("SpumKyvo: need at least 2 time points to unmix!", 2));
}

} // namespace
