// SPDX-License-Identifier: GPL-3.0-or-later
#include "SequenceFolders.h"
#include "support/ForeignLocale.h"

#include <QSignalSpy>

using namespace sequencefolders;

namespace {

class SequenceTest : public SequenceFolderTest
{
protected:
    void expectOpens(CORVSequenceDataset& sequence, const QString& strPath)
    {
        ASSERT_EQ(sequence.open(strPath, &m_strError, &m_warnings), ESTATUS_SUCCESS) << m_strError.toStdString();
    }
    bool isWarned(const QString& strA, const QString& strB = QString()) const
    {
        for (const QString& warning : m_warnings) {
            if (warning.contains(strA) && warning.contains(strB)) {
                return true;
            }
        }
        return false;
    }
    std::string warnings() const { return m_warnings.join("\n").toStdString(); }
};

TEST_F(SequenceTest, WrittenSequenceOpensWithAllThatItSays)
{
    SequenceDescription description;
    description.id = "ABC123";
    description.name = "first try";
    description.fluorescence = true;
    description.transillumination = true;
    description.sceneOnly3D = true;
    description.adjust = {2, false, true};
    writeThreeClicks(description);
    CORVSequenceDataset sequence;
    expectOpens(sequence, m_strTarget);
    EXPECT_TRUE(m_warnings.isEmpty()) << warnings();
    EXPECT_EQ(sequence.getSequenceID(), "ABC123");
    EXPECT_EQ(sequence.getSequenceName(), "first try");
    EXPECT_EQ(sequence.getSequenceInfoPath(), m_strTarget + "/");
    EXPECT_TRUE(sequence.isFluorescence);
    EXPECT_TRUE(sequence.isTransillumination);
    EXPECT_TRUE(sequence.is3DSceneOnlySequence());
    EXPECT_FALSE(sequence.isKyvoSequence());
    EXPECT_FALSE(sequence.isSLASequence());
    EXPECT_FALSE(sequence.isCTSequence(true));
    EXPECT_EQ(sequence.getImageAdjust()->m_nColorTable, 2);
    EXPECT_FALSE(sequence.getImageAdjust()->m_bReversed);
    EXPECT_TRUE(sequence.getImageAdjust()->m_bLogScale);
    EXPECT_EQ(clickNumbers(sequence), (QStringList{"C1", "C2", "C3"}));
    EXPECT_EQ(sequence.getDataset("C2")->getEmissionFilter(), "640nm");
    EXPECT_EQ(sequence.getDataset("C4"), nullptr);
    EXPECT_TRUE(sequence.getDataset("C2")->belongsToSequence());
    EXPECT_EQ(sequence.getDataset("C2")->sequence(), &sequence);
    EXPECT_FALSE(sequence.getDataset("C2")->isSequenceWindowMember);
}

TEST_F(SequenceTest, TemporalKindIsKept)
{
    SequenceDescription description;
    description.temporal = true;
    writeThreeClicks(description);
    CORVSequenceDataset sequence;
    expectOpens(sequence, m_strTarget);
    EXPECT_TRUE(sequence.isKyvoSequence());
    EXPECT_FALSE(sequence.isFluorescence);
}

TEST_F(SequenceTest, CTScanIsKept)
{
    SequenceDescription description;
    description.ctScan = true;
    writeThreeClicks(description);
    CORVSequenceDataset incomplete;
    expectOpens(incomplete, m_strTarget);
    EXPECT_TRUE(incomplete.isCTSequence(true));
    EXPECT_FALSE(incomplete.isCTSequence(false));
}

TEST_F(SequenceTest, CompleteCTScanIsKeptWhereThereIsOne)
{
    SequenceDescription description;
    description.ctScan = description.ctComplete = true;
    writeThreeClicks(description);
    CORVSequenceDataset sequence;
    expectOpens(sequence, m_strTarget);
    EXPECT_TRUE(sequence.isCTSequence(false));
}

TEST_F(SequenceTest, InfoFileAndFolderWithSeparatorOpenTheSameSequence)
{
    writeThreeClicks();
    CORVSequenceDataset byFile;
    expectOpens(byFile, inTarget("SequenceInfo.txt"));
    EXPECT_EQ(clickNumbers(byFile).size(), 3);
    CORVSequenceDataset bySlash;
    expectOpens(bySlash, m_strTarget + "/");
    EXPECT_EQ(bySlash.getSequenceInfoPath(), byFile.getSequenceInfoPath());
}

TEST_F(SequenceTest, UnknownSectionsAndKeysAreKept)
{
    SequenceDescription description;
    description.id = "X";
    setKey(description.extraSections, "Someone's section", "Some key", "some value");
    writeThreeClicks(description);
    CORVSequenceDataset sequence;
    expectOpens(sequence, m_strTarget);
    const QString copy = m_home.filePath("copy.txt");
    ASSERT_EQ(sequence.sequenceInfo().saveClickInfo(copy), 0);
    EXPECT_EQ(contentOf(copy), contentOf(inTarget("SequenceInfo.txt")));
    QString value;
    ASSERT_NE(sequence.sequenceInfo()["Someone's section"], nullptr);
    EXPECT_EQ(sequence.sequenceInfo()["Someone's section"]->getValue("Some key", &value), 0);
    EXPECT_EQ(value, "some value");
}

TEST_F(SequenceTest, WithoutInfoFileTheFoldersServeAndKindsComeFromTheClicks)
{
    writeThreeClicks();
    ASSERT_TRUE(QFile::remove(inTarget("SequenceInfo.txt")));
    ASSERT_TRUE(QDir(m_strTarget).rename("C1", "C10"));
    ASSERT_TRUE(QDir(m_strTarget).mkdir("results"));
    CORVSequenceDataset sequence;
    expectOpens(sequence, m_strTarget);
    EXPECT_TRUE(isWarned("SequenceInfo.txt", "missing")) << warnings();
    EXPECT_EQ(clickNumbers(sequence), (QStringList{"C2", "C3", "C1"})); // C10 stands behind C3
    EXPECT_TRUE(sequence.isFluorescence);
    EXPECT_FALSE(sequence.isTransillumination);
    EXPECT_FALSE(sequence.isKyvoSequence());
    EXPECT_EQ(sequence.getSequenceID(), QDir(m_strTarget).dirName());
}

TEST_F(SequenceTest, SpotsAndTimesInTheClicksTellTransilluminationAndTemporalKind)
{
    SequenceWriter writer;
    ASSERT_TRUE(writer.begin(m_strTarget, named("S"), false));
    const CILImage data = flatImage(2, 2, 1.0);
    for (const char* pClick : {"A", "B"}) {
        DatasetDescription dataset = fullClick(pClick);
        setKey(dataset.info, ClickKeys::kLuminescentImage, ClickKeys::kFLXSpot, "1.5");
        setKey(dataset.info, ClickKeys::kLuminescentImage, ClickKeys::kFLYSpot, "-2");
        setKey(dataset.info, ClickKeys::kClickNumber, ClickKeys::kKyVoTime, "12.5");
        setKey(dataset.info, ClickKeys::kClickNumber, ClickKeys::kKyVoInterval, "2");
        ASSERT_TRUE(writer.addDataset(dataset, {{IMAGETYPE_LUMINESCENT, &data}}));
    }
    ASSERT_TRUE(writer.finish());
    overwrite(inTarget("SequenceInfo.txt"), QByteArray("\x00\xff\x13garbage\x00", 11));
    CORVSequenceDataset sequence;
    expectOpens(sequence, m_strTarget);
    EXPECT_TRUE(isWarned("SequenceInfo.txt")) << warnings();
    EXPECT_TRUE(sequence.isKyvoSequence());
    EXPECT_TRUE(sequence.isTransillumination);
    EXPECT_EQ(sequence.getDatasets().first()->getFLXspot(), "1.5");
    EXPECT_EQ(sequence.getDatasets().first()->getFLYspot(), "-2");
}

TEST_F(SequenceTest, OpenFiltersAreNoFluorescence)
{
    SequenceWriter writer;
    ASSERT_TRUE(writer.begin(m_strTarget, named("S"), false));
    const CILImage data = flatImage(2, 2, 1.0);
    DatasetDescription dataset = fullClick("A");
    setKey(dataset.info, ClickKeys::kLuminescentImage, ClickKeys::kExcitationFilter, "Open");
    ASSERT_TRUE(writer.addDataset(dataset, {{IMAGETYPE_LUMINESCENT, &data}}));
    ASSERT_TRUE(writer.finish());
    ASSERT_TRUE(QFile::remove(inTarget("SequenceInfo.txt")));
    CORVSequenceDataset sequence;
    expectOpens(sequence, m_strTarget);
    EXPECT_FALSE(sequence.isFluorescence);
}

TEST_F(SequenceTest, EveryTruncationOfTheInfoFileStillOpensAllDatasets)
{
    writeThreeClicks();
    const QByteArray whole = contentOf(inTarget("SequenceInfo.txt"));
    for (int length = 0; length < whole.size(); ++length) {
        overwrite(inTarget("SequenceInfo.txt"), whole.left(length));
        CORVSequenceDataset sequence;
        m_warnings.clear();
        expectOpens(sequence, m_strTarget);
        QStringList numbers = clickNumbers(sequence);
        numbers.sort();
        EXPECT_EQ(numbers, (QStringList{"C1", "C2", "C3"})) << "cut at " << length << "\n" << warnings();
        if (length < whole.size() - 1) { // the last line end alone may go unnoticed
            EXPECT_TRUE(isWarned("SequenceInfo.txt")) << "cut at " << length;
        }
    }
}

TEST_F(SequenceTest, BrokenEntriesOfTheInfoFileAreToldAndDefaultsServe)
{
    writeThreeClicks();
    CPLClickInfo info;
    ASSERT_EQ(info.loadClickInfo(inTarget("SequenceInfo.txt")), 0);
    setKey(info, SequenceKeys::kSequence, SequenceKeys::kKind, "sideways");
    setKey(info, SequenceKeys::kSequence, SequenceKeys::kFluorescence, "perhaps");
    setKey(info, SequenceKeys::kImageAdjust, SequenceKeys::kColorTable, "-3");
    ASSERT_EQ(info.saveClickInfo(inTarget("SequenceInfo.txt")), 0);
    CORVSequenceDataset sequence;
    expectOpens(sequence, m_strTarget);
    EXPECT_TRUE(isWarned("SequenceInfo.txt", "sideways")) << warnings();
    EXPECT_TRUE(isWarned("SequenceInfo.txt", "perhaps"));
    EXPECT_TRUE(isWarned("SequenceInfo.txt", "-3"));
    EXPECT_TRUE(sequence.isFluorescence); // from the clicks
    EXPECT_EQ(sequence.getImageAdjust()->m_nColorTable, tag_simageadjust().m_nColorTable);
}

TEST_F(SequenceTest, EntriesThatLeaveTheFolderAreRefused)
{
    writeThreeClicks();
    const QString outside = m_home.filePath("outside");
    ASSERT_TRUE(QDir().mkdir(outside));
    ASSERT_TRUE(QFile::copy(inTarget("C1/ClickInfo.txt"), outside + "/ClickInfo.txt"));
    for (const QString& entry :
         {QString("../outside"), QString("C1/../../outside"), outside, QString(".."), QString(".")}) {
        CPLClickInfo info;
        ASSERT_EQ(info.loadClickInfo(inTarget("SequenceInfo.txt")), 0);
        info[SequenceKeys::kDatasets]->setValue(SequenceKeys::kDataset, entry); // the first of three
        const QString folder = m_home.filePath("variant");
        QDir(folder).removeRecursively();
        ASSERT_TRUE(QDir().mkpath(folder + "/C2"));
        for (const QString& file : entries(inTarget("C2"))) {
            ASSERT_TRUE(QFile::copy(inTarget("C2/" + file), folder + "/C2/" + file));
        }
        ASSERT_EQ(info.saveClickInfo(folder + "/SequenceInfo.txt"), 0);
        CORVSequenceDataset sequence;
        m_warnings.clear();
        expectOpens(sequence, folder);
        EXPECT_EQ(clickNumbers(sequence), QStringList{"C2"}) << entry.toStdString();
        EXPECT_TRUE(isWarned("SequenceInfo.txt", "\"" + entry + "\"")) << warnings();
    }
}

TEST_F(SequenceTest, SecondDatasetOfAClickNumberIsRefusedAndBothAreNamed)
{
    writeThreeClicks();
    ASSERT_TRUE(QFile::remove(inTarget("C3/ClickInfo.txt")));
    ASSERT_TRUE(QFile::copy(inTarget("C1/ClickInfo.txt"), inTarget("C3/ClickInfo.txt")));
    CORVSequenceDataset sequence;
    expectOpens(sequence, m_strTarget);
    EXPECT_EQ(clickNumbers(sequence), (QStringList{"C1", "C2"}));
    EXPECT_TRUE(isWarned(inTarget("C1/"), inTarget("C3/"))) << warnings();
}

struct Damage
{
    const char* name;
    const char* file;
    int keep; // bytes kept; -1: garbage instead; -2: removed
};

class DamagedDatasetTest : public SequenceTest, public ::testing::WithParamInterface<Damage>
{
};

TEST_P(DamagedDatasetTest, IsLeftOutWithFileAndReasonAndTheRestOpens)
{
    writeThreeClicks();
    const QString file = inTarget(GetParam().file);
    if (GetParam().keep == -2) {
        ASSERT_TRUE(QFile::remove(file));
    } else if (GetParam().keep == -1) {
        overwrite(file, QByteArray("\x01\x02\x00\xfe garbage \x00\xff\xff", 16).repeated(20));
    } else {
        overwrite(file, contentOf(file).left(GetParam().keep));
    }
    CORVSequenceDataset sequence;
    expectOpens(sequence, m_strTarget);
    EXPECT_EQ(clickNumbers(sequence), (QStringList{"C1", "C3"}));
    EXPECT_TRUE(isWarned(file)) << warnings();
    EXPECT_EQ(CORVDataset::getDataset("C2"), nullptr);
}

INSTANTIATE_TEST_SUITE_P(
    Sequence, DamagedDatasetTest,
    ::testing::Values(Damage{"ClickInfoEmpty", "C2/ClickInfo.txt", 0}, Damage{"ClickInfoCut", "C2/ClickInfo.txt", 9},
                      Damage{"ClickInfoGarbled", "C2/ClickInfo.txt", -1},
                      Damage{"ClickInfoGone", "C2/ClickInfo.txt", -2}, Damage{"ImageEmpty", "C2/luminescent.TIF", 0},
                      Damage{"ImageCut", "C2/luminescent.TIF", 40}, Damage{"ImageGarbled", "C2/luminescent.TIF", -1},
                      Damage{"ImageGone", "C2/luminescent.TIF", -2}),
    [](const auto& param) { return param.param.name; });

TEST_F(SequenceTest, MissingDatasetFolderIsToldAndTheRestOpens)
{
    writeThreeClicks();
    ASSERT_TRUE(QDir(inTarget("C1")).removeRecursively());
    CORVSequenceDataset sequence;
    expectOpens(sequence, m_strTarget);
    EXPECT_EQ(clickNumbers(sequence), (QStringList{"C2", "C3"}));
    EXPECT_TRUE(isWarned(inTarget("C1/ClickInfo.txt"))) << warnings();
}

TEST_F(SequenceTest, WhatIsLeftOutIsKeptWithItsPlaceAndTheReason)
{
    writeThreeClicks();
    ASSERT_TRUE(QDir(inTarget("C2")).removeRecursively());
    CORVSequenceDataset sequence;
    expectOpens(sequence, m_strTarget);
    ASSERT_EQ(sequence.leftOut().size(), 1);
    EXPECT_EQ(sequence.leftOut().first().folder, inTarget("C2/"));
    EXPECT_TRUE(sequence.leftOut().first().reason.contains("C2/ClickInfo.txt"));
    EXPECT_EQ(sequence.leftOut().first().before, 1);
    EXPECT_NE(sequence.open(inTarget("nowhere")), ESTATUS_SUCCESS);
    EXPECT_TRUE(sequence.leftOut().isEmpty());
}

// As a program leaves it that is killed while it replaces the dataset on a disk that cannot exchange names.
TEST_F(SequenceTest, ADatasetThatWasLeftAsideGoesBackAndIsTold)
{
    writeThreeClicks();
    ASSERT_TRUE(QDir().mkdir(inTarget(".C1-AbCdEf")));
    ASSERT_TRUE(QDir().rename(inTarget("C1"), inTarget(".C1-AbCdEf/old")));
    QFile lock(inTarget(".C1-AbCdEf/lock"));
    ASSERT_TRUE(lock.open(QIODevice::WriteOnly));
    lock.close();
    // Whatever else has such a name stays.
    ASSERT_TRUE(QDir().mkpath(inTarget(".mine-AbCdEf/notes")));
    CORVSequenceDataset sequence;
    expectOpens(sequence, m_strTarget);
    EXPECT_EQ(clickNumbers(sequence), (QStringList{"C1", "C2", "C3"}));
    EXPECT_EQ(m_warnings.size(), 1) << warnings();
    EXPECT_TRUE(isWarned(inTarget("C1") + " was left aside", "it is back in its place now")) << warnings();
    EXPECT_FALSE(QFileInfo::exists(inTarget(".C1-AbCdEf")));
    EXPECT_TRUE(QFileInfo::exists(inTarget(".mine-AbCdEf/notes")));
}

TEST_F(SequenceTest, NothingReadableFailsWithTheReasonAndLeavesTheSequenceEmpty)
{
    writeThreeClicks();
    for (const char* pClick : {"C1", "C2", "C3"}) {
        ASSERT_TRUE(QFile::remove(inTarget(QString(pClick) + "/ClickInfo.txt")));
    }
    CORVSequenceDataset sequence;
    EXPECT_NE(sequence.open(m_strTarget, &m_strError, &m_warnings), ESTATUS_SUCCESS);
    EXPECT_TRUE(m_strError.contains(m_strTarget)) << m_strError.toStdString();
    EXPECT_TRUE(m_strError.contains("ClickInfo.txt")) << m_strError.toStdString();
    EXPECT_TRUE(sequence.getSequenceID().isEmpty());
    EXPECT_TRUE(sequence.getDatasets().isEmpty());
}

TEST_F(SequenceTest, AbsentFolderForeignFileAndEmptyFolderFail)
{
    CORVSequenceDataset sequence;
    EXPECT_NE(sequence.open(m_home.filePath("nowhere"), &m_strError), ESTATUS_SUCCESS);
    EXPECT_TRUE(m_strError.contains("nowhere"));
    overwrite(m_home.filePath("a.txt"), "text");
    EXPECT_NE(sequence.open(m_home.filePath("a.txt"), &m_strError), ESTATUS_SUCCESS);
    EXPECT_TRUE(m_strError.contains("a.txt"));
    EXPECT_NE(sequence.open(m_home.path(), &m_strError), ESTATUS_SUCCESS);
    EXPECT_NE(sequence.open(m_home.path()), ESTATUS_SUCCESS); // nobody listens
}

TEST_F(SequenceTest, OpeningAnotherFolderDropsTheFirst)
{
    writeThreeClicks();
    CORVSequenceDataset sequence;
    expectOpens(sequence, m_strTarget);
    EXPECT_NE(sequence.open(m_home.filePath("nowhere")), ESTATUS_SUCCESS);
    EXPECT_EQ(CORVDataset::getDataset("C1"), nullptr);
    expectOpens(sequence, m_strTarget);
    EXPECT_EQ(sequence.getSequenceID(), "SEQ001");
}

TEST_F(SequenceTest, IsKnownByItsIdAsLongAsItLives)
{
    writeThreeClicks();
    EXPECT_EQ(CORVSequenceDataset::getSequenceDataset("SEQ001"), nullptr);
    EXPECT_EQ(CORVSequenceDataset::getSequenceDataset(QString()), nullptr);
    {
        CORVSequenceDataset sequence;
        expectOpens(sequence, m_strTarget);
        EXPECT_EQ(CORVSequenceDataset::getSequenceDataset("SEQ001"), &sequence);
        EXPECT_TRUE(CORVSequenceDataset::openSequences().contains(&sequence));
        EXPECT_EQ(CORVDataset::getDataset("C2"), sequence.getDataset("C2"));
        EXPECT_EQ(CORVDataset::loadedDatasets(), sequence.getDatasets());
    }
    EXPECT_EQ(CORVSequenceDataset::getSequenceDataset("SEQ001"), nullptr);
    EXPECT_TRUE(CORVSequenceDataset::openSequences().isEmpty());
    EXPECT_TRUE(CORVDataset::loadedDatasets().isEmpty());
}

TEST_F(SequenceTest, AnIdThatIsOpenGetsANumberBehind)
{
    writeThreeClicks();
    CORVSequenceDataset first;
    CORVSequenceDataset second;
    CORVSequenceDataset third;
    expectOpens(first, m_strTarget);
    expectOpens(second, m_strTarget);
    expectOpens(third, m_strTarget);
    EXPECT_EQ(first.getSequenceID(), "SEQ001");
    EXPECT_EQ(second.getSequenceID(), "SEQ001_2");
    EXPECT_EQ(third.getSequenceID(), "SEQ001_3");
    second.setSequenceID("SEQ001_2"); // its own
    EXPECT_EQ(second.getSequenceID(), "SEQ001_2");
    EXPECT_EQ(CORVSequenceDataset::getSequenceDataset("SEQ001_2"), &second);
    // Of equal click numbers the oldest is found.
    EXPECT_EQ(CORVDataset::getDataset("C1"), first.getDataset("C1"));
}

TEST_F(SequenceTest, PhotographOfTheFirstDatasetServesTheOthers)
{
    writeThreeClicks();
    CORVSequenceDataset sequence;
    expectOpens(sequence, m_strTarget);
    CORVDataset* pFirst = sequence.getDataset("C1");
    CORVDataset* pSecond = sequence.getDataset("C2");
    EXPECT_EQ(pSecond->getCoreImage(IMAGETYPE_PHOTOGRAPH), nullptr);
    CILImage* pPhoto = sequence.getEquivalentImageFromSequence(pSecond, IMAGETYPE_PHOTOGRAPH);
    ASSERT_NE(pPhoto, nullptr);
    EXPECT_EQ(pPhoto, pFirst->getCoreImage(IMAGETYPE_PHOTOGRAPH));
    EXPECT_EQ(pPhoto->m_lWidth, 12);
    // Not from the dataset that asks.
    EXPECT_EQ(sequence.getEquivalentImageFromSequence(pFirst, IMAGETYPE_PHOTOGRAPH), nullptr);
    EXPECT_EQ(sequence.getEquivalentImageFromSequence(pFirst, IMAGETYPE_XRAY), nullptr);
}

TEST_F(SequenceTest, DatasetsMadeInMemoryBelongToTheSequence)
{
    CORVSequenceDataset sequence;
    sequence.setSequenceID("memory");
    auto* pDataset = new CORVDataset;
    pDataset->clickInfo = fullClick("M1").info;
    pDataset->setCoreImage(IMAGETYPE_STRUCTURE, flatImage(2, 2, 1.0));
    EXPECT_FALSE(pDataset->belongsToSequence());
    EXPECT_TRUE(sequence.addDataset(pDataset));
    EXPECT_EQ(pDataset->sequence(), &sequence);
    CORVDataset twin;
    twin.clickInfo = fullClick("M1").info;
    EXPECT_FALSE(sequence.addDataset(&twin));
    EXPECT_FALSE(sequence.addDataset(nullptr));
    EXPECT_EQ(sequence.getDatasets(), QList<CORVDataset*>{pDataset});
    EXPECT_TRUE(sequence.isSLASequence());
    EXPECT_TRUE(sequence.getSequenceInfoPath().isEmpty());
}

TEST_F(SequenceTest, TomographyScanCountsWhenCompleteOrWhenIncompleteOnesAreAskedFor)
{
    CORVSequenceDataset sequence;
    EXPECT_FALSE(sequence.isCTSequence(true));
    sequence.setCTScan(true, false);
    EXPECT_TRUE(sequence.isCTSequence(true));
    EXPECT_FALSE(sequence.isCTSequence(false));
    sequence.setCTScan(true, true);
    EXPECT_TRUE(sequence.isCTSequence(false));
    writeThreeClicks();
    CPLClickInfo info;
    ASSERT_EQ(info.loadClickInfo(inTarget("SequenceInfo.txt")), 0);
    setKey(info, SequenceKeys::kSequence, SequenceKeys::kCTScan, "incomplete");
    ASSERT_EQ(info.saveClickInfo(inTarget("SequenceInfo.txt")), 0);
    expectOpens(sequence, m_strTarget);
    EXPECT_TRUE(sequence.isCTSequence(true));
    EXPECT_FALSE(sequence.isCTSequence(false));
}

TEST_F(SequenceTest, ChangesAreMarkedAndAnnounced)
{
    CORVSequenceDataset sequence;
    CORVSequenceDataset other;
    EXPECT_FALSE(sequence.isModified());
    sequence.setModified(true);
    EXPECT_TRUE(sequence.isModified());
    QSignalSpy changed(&sequence, &CORVSequenceDataset::sequencePropertyChanged);
    QSignalSpy update(&sequence, SIGNAL(updateSpumProperties(CORVSequenceDataset*)));
    QSignalSpy save(&sequence, SIGNAL(saveExistingAnalysisResult()));
    sequence.sequencePropertyChanged(&other);
    sequence.updateSpumProperties(&sequence);
    sequence.saveExistingAnalysisResult();
    ASSERT_EQ(changed.count(), 1);
    EXPECT_EQ(changed.first().first().value<CORVSequenceDataset*>(), &other);
    ASSERT_EQ(update.count(), 1);
    EXPECT_EQ(update.first().first().value<CORVSequenceDataset*>(), &sequence);
    EXPECT_EQ(save.count(), 1);
}

// The texts by which a tool connects.
TEST_F(SequenceTest, ItsSignalsAreKnownByText)
{
    const QMetaObject& meta = CORVSequenceDataset::staticMetaObject;
    for (const char* signature : {"sequencePropertyChanged(CORVSequenceDataset*)",
                                  "updateSpumProperties(CORVSequenceDataset*)", "saveExistingAnalysisResult()"}) {
        const int index = meta.indexOfSignal(signature);
        ASSERT_GE(index, 0) << signature;
        EXPECT_EQ(meta.method(index).methodType(), QMetaMethod::Signal);
    }
}

TEST_F(SequenceTest, ImagesOfTwoFiltersCanBeAnalysed)
{
    writeThreeClicks();
    CORVSequenceDataset sequence;
    EXPECT_FALSE(sequence.isSpectrallyAnalysable);
    expectOpens(sequence, m_strTarget);
    EXPECT_TRUE(sequence.isSpectrallyAnalysable);
    EXPECT_FALSE(sequence.isSecondKind);
    // Those of one filter can not, nor can a scene.
    CORVSequenceDataset made;
    for (int i = 0; i < 3; ++i) {
        auto pDataset = std::make_unique<CORVDataset>();
        ASSERT_EQ(pDataset->open(inTarget(QStringLiteral("C%1").arg(i % 2 + 1))), ESTATUS_SUCCESS);
        if (made.addDataset(pDataset.get())) {
            pDataset.release();
        }
        EXPECT_EQ(made.isSpectrallyAnalysable, i > 0) << i;
    }
    SequenceDescription scene;
    ASSERT_TRUE(QDir(m_strTarget).removeRecursively());
    scene.sceneOnly3D = true;
    scene.secondKind = true;
    writeThreeClicks(scene);
    expectOpens(sequence, m_strTarget);
    EXPECT_FALSE(sequence.isSpectrallyAnalysable);
    EXPECT_TRUE(sequence.isSecondKind);
}

TEST_F(SequenceTest, NumbersReadTheSameInAGermanLocale)
{
    const testsupport::ForeignLocale locale;
    writeThreeClicks();
    CORVSequenceDataset sequence;
    expectOpens(sequence, m_strTarget);
    CORVDataset* pDataset = sequence.getDataset("C1");
    EXPECT_FLOAT_EQ(pDataset->getBinningForImage(IMAGETYPE_MAIN_DATA), 4.0F);
    double factor = 0.0;
    EXPECT_TRUE(pDataset->intensityCalibration(IMAGETYPE_MAIN_DATA, "photons", &factor));
    EXPECT_NEAR(factor, 25000.0, 1e-6);
}

} // namespace
