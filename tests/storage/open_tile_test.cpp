// SPDX-License-Identifier: GPL-3.0-or-later
// A tile of the unmixed images as a dataset.
#include "storage/ExportFixture.h"

#include "storage/openUnmixedTile.h"
#include "storage/resultRegions.h"

#include "support/ForkedChild.h"

#include "host/CORVUtilityFns.h"
#include "host/CROIManager.h"

#include <QFile>

namespace {

class OpenTileTest : public ExportFixture
{
protected:
    void TearDown() override
    {
        CORVUtilityFns::setSpumBatchStatus(false);
        ExportFixture::TearDown();
    }
    // As the palette does for a sequence of a batch.
    void startBatch()
    {
        CORVUtilityFns::setSpumBatchStatus(true);
        m_strBatch = m_batch.path() + QStringLiteral("/Unmixed \u00e4/");
        ASSERT_TRUE(QDir().mkpath(m_strBatch));
        engine().m_strBatchPath = m_strBatch;
    }
    static QString label(const OpenedTile& tile) { return entry(tile, "Unmixed Concentration"); }
    static QString entry(const OpenedTile& tile, const char* pKey)
    {
        QString strValue;
        tile.dataset->clickInfo[QString("luminescent image")]->getValue(pKey, &strValue);
        return strValue;
    }
    static double pixel(const OpenedTile& tile, std::size_t i)
    {
        const CILImage* pImage = tile.dataset->getCoreImage(IMAGETYPE_LUMINESCENT);
        return pImage != nullptr ? pImage->value(i) : -1.0;
    }
    void addRegion(CORVDataset& source)
    {
        tagROIInfo region;
        region.name = "left";
        region.width = 1.0;
        region.height = 2.0;
        ASSERT_TRUE(source.roiManager()->addRegion(region));
    }
    QString failedLine(const QString& strFolder) const { return QString("Failed to create %1 folder.").arg(strFolder); }

    QTemporaryDir m_batch;
    QString m_strBatch;
    LogCapture m_log;
};

} // namespace

TEST_F(OpenTileTest, TheLastTileOfEverySpotIsTheComposite)
{
    makeResult(2, 3, 3);
    for (const int nIndex : {2, 5, 8}) {
        const OpenedTile tile = openUnmixedTile(engine(), nIndex);
        EXPECT_EQ(tile.kind, OpenedTile::Kind::Composite) << nIndex;
        EXPECT_EQ(tile.dataset, nullptr);
        EXPECT_EQ(tile.savedFolder, "");
    }
    EXPECT_FALSE(QFileInfo::exists(target()));
    EXPECT_EQ(m_log.reports(), "");
}

TEST_F(OpenTileTest, EveryOtherTileIsTheMapOfItsComponentAndSpot)
{
    makeResult(2, 3, 3);
    for (int s = 0; s < 3; ++s) {
        for (int c = 0; c < 2; ++c) {
            const OpenedTile tile = openUnmixedTile(engine(), s * 3 + c);
            ASSERT_EQ(tile.kind, OpenedTile::Kind::Dataset) << m_log.reports();
            EXPECT_EQ(label(tile), QString("SEQ12UMX%1").arg(c + 1));
            EXPECT_EQ(entry(tile, "FL x-spot"), QString("%1.5").arg(s));
            EXPECT_EQ(tile.dataset->folderPath(),
                      QString("%1/Unmixed Result %2/").arg(target()).arg(1000 * (c + 1) + s + 1));
            EXPECT_EQ(pixel(tile, 1), (100.0 * c + 10.0 * s + 1) / (c + 1));
        }
    }
    EXPECT_EQ(m_log.reports(), "");
}

TEST_F(OpenTileTest, WhereThereIsNoTileNothingOpens)
{
    makeResult(2, 3);
    for (const int nIndex : {-3, -1, 3, 1000}) {
        const OpenedTile tile = openUnmixedTile(engine(), nIndex);
        EXPECT_EQ(tile.kind, OpenedTile::Kind::Nothing) << nIndex;
        EXPECT_EQ(tile.dataset, nullptr);
    }
    engine().m_concentrations = XTNT::Matrix<double>();
    EXPECT_EQ(openUnmixedTile(engine(), 0).kind, OpenedTile::Kind::Nothing);
}

TEST_F(OpenTileTest, TheStateOfTheBatchIsTheHosts)
{
    makeResult(2, 3);
    startBatch();
    EXPECT_FALSE(engine().m_bBatchMode);
    openUnmixedTile(engine(), 2); // whatever the tile
    EXPECT_TRUE(engine().m_bBatchMode);
    CORVUtilityFns::setSpumBatchStatus(false);
    const OpenedTile tile = openUnmixedTile(engine(), 0);
    EXPECT_FALSE(engine().m_bBatchMode);
    EXPECT_EQ(tile.savedFolder, "");
    EXPECT_EQ(namesIn(m_strBatch), QStringList());
    CORVUtilityFns::setSpumBatchStatus(true);
    openUnmixedTile(engine(), -1); // and when nothing opens
    EXPECT_TRUE(engine().m_bBatchMode);
}

TEST_F(OpenTileTest, TheDatasetIsLoadedAndModifiedAndTheCallers)
{
    makeResult(2, 3);
    OpenedTile tile = openUnmixedTile(engine(), 1);
    ASSERT_EQ(tile.kind, OpenedTile::Kind::Dataset);
    CORVDataset* pDataset = tile.dataset.get();
    bool bModified = false;
    QString strClick;
    ASSERT_TRUE(CORVDataset::isLoadedClickInfo(target() + "/Unmixed Result 2/ClickInfo.txt", bModified, &strClick));
    EXPECT_TRUE(bModified);
    EXPECT_FALSE(strClick.isEmpty());
    EXPECT_EQ(CORVDataset::getDataset(strClick), pDataset);
    EXPECT_EQ(entry(tile, "Spectral Unmix Seq Dataset"), sequence().id());
    EXPECT_NE(openUnmixedTile(engine(), 0).dataset->getClickNumber(), strClick);
    tile.dataset.reset();
    EXPECT_FALSE(CORVDataset::loadedDatasets().contains(pDataset));
}

TEST_F(OpenTileTest, ItsStatisticsAreThoseOfTheMap)
{
    makeResult(2, 3);
    const OpenedTile tile = openUnmixedTile(engine(), 1);
    ASSERT_NE(tile.dataset, nullptr);
    EXPECT_EQ(tile.dataset->getCoreImage(IMAGETYPE_MAIN_DATA)->getMin(), 50.0);
    EXPECT_EQ(tile.dataset->getCoreImage(IMAGETYPE_MAIN_DATA)->getMax(), 51.5);
}

TEST_F(OpenTileTest, TheBinningIsThatOfTheAnalysis)
{
    makeResult(2, 3);
    engine().m_nBinning = 4;
    const OpenedTile tile = openUnmixedTile(engine(), 0);
    ASSERT_NE(tile.dataset, nullptr);
    EXPECT_EQ(tile.dataset->getBinningForImage(IMAGETYPE_LUMINESCENT), 4.0F);
}

TEST_F(OpenTileTest, AnOpenMapStaysWhatItIsWhenItsTileIsOpenedAgain)
{
    makeResult(2, 3);
    const OpenedTile first = openUnmixedTile(engine(), 0);
    engine().m_concentrations[0][0] = 77.0;
    const OpenedTile second = openUnmixedTile(engine(), 0);
    EXPECT_EQ(pixel(first, 0), 0.0);
    EXPECT_EQ(pixel(second, 0), 77.0);
    EXPECT_NE(first.dataset->getClickNumber(), second.dataset->getClickNumber());
    // To be saved too.
    ASSERT_EQ(first.dataset->saveDatasetAs(m_batch.path() + "/first"), ESTATUS_SUCCESS);
    EXPECT_EQ(pixelsAt(m_batch.path() + "/first/luminescent.TIF").front(), 0.0);
}

TEST_F(OpenTileTest, TheRegionsOfTheSourceAreTakenOverAndMeasured)
{
    makeResult(2, 3, 2);
    addRegion(dataset(3 + 1)); // component 1 at spot 1
    const OpenedTile with = openUnmixedTile(engine(), 3 + 1);
    ASSERT_NE(with.dataset, nullptr);
    ASSERT_TRUE(with.dataset->hasROIData());
    const tagROIInfo& region = with.dataset->roiManager()->regions().first();
    EXPECT_EQ(region.name, "left");
    EXPECT_EQ(region.statistics.sum, 55.0 + 56.0); // (110, 112) / 2
    EXPECT_FALSE(openUnmixedTile(engine(), 3).dataset->hasROIData());
    EXPECT_EQ(dataset(3 + 1).roiManager()->regions().size(), 1);
    EXPECT_EQ(m_log.reports(), "");
}

// Whether the map was closed meanwhile, or the result comes out of a file, whose readers give a record for each entry
// and keys without blanks.
TEST_F(OpenTileTest, RegionsThatWereDrawnOnAMapComeBackWithIt)
{
    makeResult(2, 3, 2);
    addRegion(dataset(3 + 1));
    const OpenedTile drawnOn = openUnmixedTile(engine(), 3 + 1);
    ASSERT_NE(drawnOn.dataset, nullptr);
    tagROIInfo drawn;
    drawn.name = "right";
    drawn.shape = ROISHAPE_ELLIPSE;
    drawn.x = 1.0;
    drawn.width = drawn.height = 1.0;
    ASSERT_TRUE(drawnOn.dataset->roiManager()->removeRegion("left"));
    ASSERT_TRUE(drawnOn.dataset->roiManager()->addRegion(drawn));
    const auto closing = closingRegions(drawnOn.dataset.get());
    ASSERT_TRUE(closing.has_value());
    for (int i = 0; i < closing->record.keys.size(); ++i) {
        RoiRecord read;
        read.keys << QString(closing->record.keys.at(i)).remove(' ');
        read.values << closing->record.values.at(i);
        read.concentrationMap = closing->record.concentrationMap;
        engine().m_roiResults << read;
    }
    const OpenedTile again = openUnmixedTile(engine(), 3 + 1);
    ASSERT_EQ(again.dataset->roiManager()->regions().size(), 1);
    const tagROIInfo& region = again.dataset->roiManager()->regions().first();
    EXPECT_EQ(region.name, "right");
    EXPECT_EQ(region.shape, ROISHAPE_ELLIPSE);
    EXPECT_TRUE(region.statistics.isMeasured());
    EXPECT_FALSE(openUnmixedTile(engine(), 0).dataset->hasROIData()) << "those of another map";
}

TEST_F(OpenTileTest, RegionsThatCannotBeMeasuredAreTakenOverAllTheSame)
{
    makeResult(2, 3, 0, DISPLAYUNIT_RADIANT_EFFICIENCY);
    addRegion(dataset(0));
    CORVDataset::setUnitLimit(DISPLAYUNIT_RADIANCE);
    const OpenedTile tile = openUnmixedTile(engine(), 0);
    CORVDataset::setUnitLimit(DISPLAYUNIT_EFFICIENCY);
    ASSERT_NE(tile.dataset, nullptr);
    EXPECT_TRUE(tile.dataset->hasROIData());
    EXPECT_TRUE(m_log.has(tile.dataset->folderPath() + ": the regions of interest cannot be measured over the map", 2));
}

// The host reads the images before it hands the dataset back.
TEST_F(OpenTileTest, AHostOpensTheDatasetAsItsOwn)
{
    makeResult(2, 3);
    engine().m_nBinning = 4;
    tagROIInfo region;
    region.name = "left";
    region.width = region.height = 1.0;
    ASSERT_TRUE(engine().unmixedSource(1, 0)->roiManager()->addRegion(region));
    CORVDataset host;
    QString strOpened;
    const OpenedTile tile = openUnmixedTile(engine(), 1, [&](const QString& strClickInfo) {
        strOpened = strClickInfo;
        EXPECT_EQ(host.openMade(QFileInfo(strClickInfo).path()), ESTATUS_SUCCESS);
        EXPECT_NE(host.getCoreImage(IMAGETYPE_MAIN_DATA), nullptr);
        return &host;
    });
    EXPECT_EQ(tile.kind, OpenedTile::Kind::Dataset);
    EXPECT_EQ(tile.dataset, nullptr);
    ASSERT_EQ(tile.hostDataset, &host);
    EXPECT_EQ(strOpened, target() + "/Unmixed Result 2/ClickInfo.txt");
    EXPECT_TRUE(host.isModified());
    EXPECT_TRUE(host.hasROIData());
    EXPECT_EQ(host.getBinningForImage(IMAGETYPE_LUMINESCENT), 4.0F);
    EXPECT_EQ(host.getCoreImage(IMAGETYPE_MAIN_DATA)->m_fBinning, 4.0F);
}

TEST_F(OpenTileTest, NothingIsOpenWhenTheHostOpensNothing)
{
    makeResult(2, 3);
    const OpenedTile tile = openUnmixedTile(engine(), 1, [](const QString&) { return nullptr; });
    EXPECT_EQ(tile.kind, OpenedTile::Kind::Nothing);
    EXPECT_EQ(tile.hostDataset, nullptr);
    EXPECT_EQ(tile.dataset, nullptr);
}

TEST_F(OpenTileTest, AFailureEndsIt)
{
    makeResult(2, 3);
    startBatch();
    engine().m_imageList[0] = "retired";
    const OpenedTile tile = openUnmixedTile(engine(), 0);
    EXPECT_EQ(tile.kind, OpenedTile::Kind::Nothing);
    EXPECT_EQ(m_log.reports(), noDatasetLine.toStdString() + "\n");
    EXPECT_EQ(namesIn(m_strBatch), QStringList());
}

TEST_F(OpenTileTest, InABatchEveryMapIsSavedInAFolderOfItsName)
{
    makeResult(2, 3);
    addRegion(dataset(1));
    startBatch();
    for (int c = 0; c < 2; ++c) {
        const OpenedTile tile = openUnmixedTile(engine(), c);
        ASSERT_EQ(tile.kind, OpenedTile::Kind::Dataset) << m_log.reports();
        EXPECT_EQ(tile.savedFolder, m_strBatch + QString("Unmixed Result %1/").arg(c + 1));
        EXPECT_EQ(tile.dataset->folderPath(), tile.savedFolder);
        EXPECT_FALSE(tile.dataset->isModified());
    }
    EXPECT_EQ(namesIn(m_strBatch), QStringList({"Unmixed Result 1", "Unmixed Result 2"}));
    const QString strSaved = m_strBatch + "Unmixed Result 2";
    EXPECT_EQ(namesIn(strSaved),
              QStringList({"AnalyzedClickInfo.txt", "ClickInfo.txt", "luminescent.TIF", "photograph.TIF"}));
    EXPECT_EQ(pixelsAt(strSaved + "/luminescent.TIF"), (std::vector<double>{50.0, 50.5, 51.0, 51.5}));
    // It opens by itself, with links, regions and their numbers.
    CORVDataset again;
    QString strError;
    ASSERT_EQ(again.open(strSaved, &strError), ESTATUS_SUCCESS) << qPrintable(strError);
    EXPECT_TRUE(entriesOf(again.clickInfo, "luminescent image").contains("Unmixed Concentration=SEQ12UMX2"));
    ASSERT_TRUE(again.hasROIData());
    EXPECT_EQ(again.roiManager()->regions().first().statistics.sum, 50.0 + 51.0);
    EXPECT_EQ(m_log.reports(), "");
}

TEST_F(OpenTileTest, ASecondBatchIntoTheSameFolderReplacesTheMaps)
{
    makeResult(2, 3);
    startBatch();
    ASSERT_TRUE(QDir().mkpath(m_strBatch + "Unmixed Result 1")); // there already
    const OpenedTile first = openUnmixedTile(engine(), 0);
    EXPECT_NE(first.savedFolder, "");
    engine().m_concentrations[0][0] = 77.0;
    const OpenedTile second = openUnmixedTile(engine(), 0);
    EXPECT_EQ(second.savedFolder, first.savedFolder);
    EXPECT_EQ(pixelsAt(second.savedFolder + "luminescent.TIF").front(), 77.0);
    EXPECT_EQ(namesIn(m_strBatch), QStringList("Unmixed Result 1"));
}

TEST_F(OpenTileTest, AFileInTheFoldersPlaceIsToldAndTheMapIsOpenAllTheSame)
{
    makeResult(2, 3);
    startBatch();
    QFile file(m_strBatch + "Unmixed Result 1");
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    const OpenedTile tile = openUnmixedTile(engine(), 0);
    EXPECT_EQ(m_log.count(failedLine(m_strBatch + "Unmixed Result 1"), 3), 1);
    ASSERT_EQ(tile.kind, OpenedTile::Kind::Dataset);
    EXPECT_EQ(tile.savedFolder, "");
    EXPECT_EQ(tile.dataset->folderPath(), target() + "/Unmixed Result 1/");
    EXPECT_TRUE(tile.dataset->isModified());
    EXPECT_TRUE(QFileInfo(file.fileName()).isFile());
}

TEST_F(OpenTileTest, WithoutABatchPathNoFolderIsMadeWhereTheProgramWasStarted)
{
    makeResult(2, 3);
    startBatch();
    engine().m_strBatchPath.clear();
    const OpenedTile tile = openUnmixedTile(engine(), 0);
    EXPECT_EQ(m_log.count(failedLine("Unmixed Result 1"), 3), 1);
    EXPECT_EQ(tile.kind, OpenedTile::Kind::Dataset);
    EXPECT_EQ(tile.savedFolder, "");
    EXPECT_FALSE(QFileInfo::exists("Unmixed Result 1"));
}

TEST_F(OpenTileTest, AFolderWithOtherThingsIsKeptAndTold)
{
    makeResult(2, 3);
    startBatch();
    ASSERT_TRUE(QDir().mkpath(m_strBatch + "Unmixed Result 1"));
    QFile file(m_strBatch + "Unmixed Result 1/letter");
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    const OpenedTile tile = openUnmixedTile(engine(), 0);
    EXPECT_EQ(tile.kind, OpenedTile::Kind::Dataset);
    EXPECT_EQ(tile.savedFolder, "");
    EXPECT_TRUE(tile.dataset->isModified());
    EXPECT_TRUE(m_log.mentions(m_strBatch + "Unmixed Result 1"));
    EXPECT_EQ(namesIn(m_strBatch + "Unmixed Result 1"), QStringList("letter"));
}

TEST_F(OpenTileTest, ABatchFolderThatMayNotBeWrittenToIsTold)
{
    makeResult(2, 3);
    startBatch();
    const QByteArray folder = QFile::encodeName(m_strBatch);
    // The plain user needs a way to both places.
    for (const QString& strPlace : {m_batch.path(), QFileInfo(temporary()).path(), temporary()}) {
        ASSERT_EQ(::chmod(QFile::encodeName(strPlace).constData(), 0777), 0);
    }
    ASSERT_EQ(::chmod(folder.constData(), 0555), 0);
    const int nAnswer = inForkedChild([this] {
        if (!becomePlainUser()) {
            return 99;
        }
        const OpenedTile tile = openUnmixedTile(engine(), 0);
        return (tile.kind == OpenedTile::Kind::Dataset ? 0 : 1) + (tile.savedFolder.isEmpty() ? 0 : 2) +
               (m_log.count(failedLine(m_strBatch + "Unmixed Result 1"), 3) == 1 ? 0 : 4);
    });
    ASSERT_EQ(::chmod(folder.constData(), 0755), 0);
    EXPECT_EQ(nAnswer, 0);
    EXPECT_EQ(namesIn(m_strBatch), QStringList());
}

TEST_F(OpenTileTest, AFullDiskLeavesNoHalfOfASavedMap)
{
    makeResult(2, 3);
    startBatch();
    QString strPath;
    ASSERT_TRUE(engine().openUnmixedDataset(0, nullptr, &strPath));
    // The saved click info has the click number besides, so that it is the first file that has no room.
    const auto largest = static_cast<rlim_t>(QFileInfo(strPath).size());
    const int nAnswer = inForkedChild([this, largest] {
        if (!limitFileSize(largest)) {
            return 99;
        }
        const OpenedTile tile = openUnmixedTile(engine(), 0);
        return (tile.kind == OpenedTile::Kind::Dataset ? 0 : 1) + (tile.savedFolder.isEmpty() ? 0 : 2) +
               (m_log.mentions(m_strBatch + "Unmixed Result 1/ClickInfo.txt") ? 0 : 4);
    });
    EXPECT_EQ(nAnswer, 0);
    EXPECT_EQ(namesIn(m_strBatch), QStringList("Unmixed Result 1"));
    EXPECT_EQ(namesIn(m_strBatch + "Unmixed Result 1"), QStringList());
}
