// SPDX-License-Identifier: GPL-3.0-or-later
// The regions of interest of a dataset.
#include "RoiSupport.h"
#include "SequenceFolders.h"

using namespace roisupport;
using namespace sequencefolders;

namespace {

QStringList namesOf(const CROIManager& manager)
{
    QStringList names;
    for (const auto& region : manager.regions()) {
        names.append(region.name);
    }
    return names;
}

QStringList keysOf(const CPLClickInfo& info)
{
    QStringList keys;
    if (info[QStringLiteral("ROIs")] != nullptr) {
        info[QStringLiteral("ROIs")]->getKeyList(&keys);
    }
    return keys;
}

class RoiManagerTest : public SequenceFolderTest
{
protected:
    void SetUp() override
    {
        writeThreeClicks();
        ASSERT_EQ(m_dataset.open(inTarget("C1"), &m_strError, &m_warnings), ESTATUS_SUCCESS);
        EXPECT_TRUE(m_warnings.isEmpty());
    }
    void add(const QString& strShape, const QString& strName)
    {
        EXPECT_TRUE(m_dataset.roiManager()->addRegion(regionFrom(strShape, strName), &m_strError))
            << qPrintable(m_strError);
    }
    // Writes the click info with the dataset's regions and opens it again.
    void saveAndReopen()
    {
        ASSERT_EQ(m_dataset.roiManager()->saveROIData(&m_dataset.clickInfo), ESTATUS_SUCCESS);
        ASSERT_EQ(m_dataset.clickInfo.saveClickInfo(inTarget("C1/ClickInfo.txt")), 0);
        m_warnings.clear();
        ASSERT_EQ(m_dataset.open(inTarget("C1"), &m_strError, &m_warnings), ESTATUS_SUCCESS);
    }

    CORVDataset m_dataset;
};

} // namespace

TEST_F(RoiManagerTest, ADatasetBeginsWithoutRegions)
{
    EXPECT_FALSE(m_dataset.hasROIData());
    ASSERT_NE(m_dataset.roiManager(), nullptr);
    EXPECT_EQ(m_dataset.roiManager(), m_dataset.roiManager());
    EXPECT_FALSE(m_dataset.hasROIData());
    EXPECT_TRUE(m_dataset.roiManager()->getCreatedROIInfoList()->isEmpty());
}

TEST_F(RoiManagerTest, RegionsOfUnfitShapeOrNameAreRefused)
{
    add("rect:0,0,4,4", "a");
    CROIManager& manager = *m_dataset.roiManager();
    EXPECT_TRUE(m_dataset.hasROIData());
    EXPECT_FALSE(manager.addRegion(regionFrom("rect:1,1,1,1", "a"), &m_strError));
    EXPECT_EQ(m_strError, "there is a region \"a\" already");
    EXPECT_FALSE(manager.addRegion(regionFrom("rect:1,1,1,1", ""), &m_strError));
    EXPECT_EQ(m_strError, "the name is empty");
    tagROIInfo shapeless;
    shapeless.name = "b";
    EXPECT_FALSE(manager.addRegion(shapeless, &m_strError));
    EXPECT_EQ(m_strError, "width and height must be above 0");
    EXPECT_FALSE(manager.addRegion(shapeless));
    EXPECT_EQ(namesOf(manager), QStringList{"a"});
    EXPECT_FALSE(manager.removeRegion("b"));
    EXPECT_TRUE(manager.removeRegion("a"));
    EXPECT_FALSE(m_dataset.hasROIData());
}

// 340 stored, 300 of them bias, at binning 4 and 0.01 cm: 40 counts, 1e6 p/s/cm^2/sr, 0.0016 cm^2 a pixel.
TEST_F(RoiManagerTest, MeasuresInTheShownUnit)
{
    add("rect:4,4,8,8", "square");
    add("rect:1000,0,8,8", "outside");
    CROIManager& manager = *m_dataset.roiManager();
    ASSERT_EQ(manager.measure(DISPLAYUNIT_COUNTS), ESTATUS_SUCCESS);
    const tagROIStatistics counts = manager.regions()[0].statistics;
    EXPECT_EQ(counts.unit, "Counts");
    EXPECT_EQ(counts.pixels, 4);
    EXPECT_EQ(counts.sum, 160.0);
    EXPECT_EQ(counts.deviation, 0.0);
    EXPECT_DOUBLE_EQ(counts.area, 4 * 0.0016);
    EXPECT_EQ(manager.regions()[1].statistics.pixels, 0);
    ASSERT_EQ(manager.measure(DISPLAYUNIT_RADIANCE), ESTATUS_SUCCESS);
    EXPECT_EQ(manager.regions()[0].statistics.unit, "Radiance");
    EXPECT_NEAR(manager.regions()[0].statistics.mean, 1e6, 0.1);
}

TEST_F(RoiManagerTest, AUnitThatCannotBeHadLeavesTheNumbersAlone)
{
    add("rect:4,4,8,8", "square");
    CROIManager& manager = *m_dataset.roiManager();
    ASSERT_EQ(manager.measure(DISPLAYUNIT_COUNTS), ESTATUS_SUCCESS);
    m_dataset.clickInfo[QStringLiteral("luminescent image")]->removeKey(QStringLiteral("Excitation Irradiance"));
    EXPECT_EQ(manager.measure(DISPLAYUNIT_RADIANT_EFFICIENCY), ESTATUS_UNIT_UNAVAILABLE);
    EXPECT_EQ(manager.regions()[0].statistics.unit, "Counts");
    CROIManager homeless;
    EXPECT_EQ(homeless.measure(DISPLAYUNIT_COUNTS), ESTATUS_IMAGE_MISSING);
}

TEST_F(RoiManagerTest, RegionsAndNumbersComeBackFromTheClickInfo)
{
    add("rect:4,4,8,8", QString::fromUtf8("Gro\xC3\x9F, \"schwarz\": 50 %"));
    add("ellipse:0.1,0.2,8.3,8.4", "[second]");
    add("freehand:0,0,16,16,16,0,0,16", "# third");
    m_dataset.roiManager()->measure(DISPLAYUNIT_RADIANCE);
    const QStringList before = describe(m_dataset.roiManager()->regions());
    saveAndReopen();
    EXPECT_TRUE(m_warnings.isEmpty());
    EXPECT_TRUE(m_dataset.hasROIData());
    EXPECT_EQ(describe(m_dataset.roiManager()->regions()), before);
}

TEST_F(RoiManagerTest, AFreshClickInfoReceivesTheSectionAlone)
{
    CPLClickInfo fresh;
    EXPECT_EQ(m_dataset.roiManager()->saveROIData(&fresh), ESTATUS_SUCCESS);
    EXPECT_EQ(fresh[QStringLiteral("ROIs")], nullptr);
    add("rect:4,4,8,8", "square");
    EXPECT_EQ(m_dataset.roiManager()->saveROIData(&fresh), ESTATUS_SUCCESS);
    EXPECT_EQ(keysOf(fresh), (QStringList{"ROI 1 Name", "ROI 1 Shape"}));
    int count = 0;
    fresh.getSectionCount(&count);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(m_dataset.roiManager()->saveROIData(nullptr), ESTATUS_INVALID_ARGUMENT);
}

TEST_F(RoiManagerTest, WhatIsNoReadableRegionStaysInTheClickInfo)
{
    using namespace ClickKeys;
    setKey(m_dataset.clickInfo, kROIs, "Comment", "of somebody");
    setKey(m_dataset.clickInfo, kROIs, "ROI 1 Shape", "hexagon:1,2,3");
    setKey(m_dataset.clickInfo, kROIs, "ROI 2 Shape", "rect:1,2,3,4");
    setKey(m_dataset.clickInfo, kROIs, "ROI 2 Name", "old");
    add("rect:4,4,8,8", "new");
    saveAndReopen();
    EXPECT_EQ(keysOf(m_dataset.clickInfo), (QStringList{"ROI 2 Name", "ROI 2 Shape", "Comment", "ROI 1 Shape"}));
    EXPECT_EQ(namesOf(*m_dataset.roiManager()), QStringList{"new"});
    ASSERT_EQ(m_warnings.size(), 1);
    EXPECT_EQ(m_warnings[0], inTarget("C1/ClickInfo.txt") +
                                 ": section \"ROIs\": \"ROI 1 Shape\" is \"hexagon:1,2,3\": a shape begins with "
                                 "\"rect:\", \"ellipse:\", \"polygon:\" or \"freehand:\"; the region is left out");
}

TEST_F(RoiManagerTest, WithoutRegionsTheSectionGoes)
{
    add("rect:4,4,8,8", "square");
    saveAndReopen();
    EXPECT_NE(m_dataset.clickInfo[QStringLiteral("ROIs")], nullptr);
    m_dataset.roiManager()->clearAllLists();
    saveAndReopen();
    EXPECT_EQ(m_dataset.clickInfo[QStringLiteral("ROIs")], nullptr);
    EXPECT_FALSE(m_dataset.hasROIData());
}

TEST_F(RoiManagerTest, AnotherDatasetsRegionsDoNotStayBehind)
{
    add("rect:4,4,8,8", "square");
    saveAndReopen();
    ASSERT_EQ(m_dataset.open(inTarget("C2"), &m_strError, &m_warnings), ESTATUS_SUCCESS);
    EXPECT_FALSE(m_dataset.hasROIData());
}

// As the entries of a result come back: without blanks, and region by region.
TEST_F(RoiManagerTest, LoadedEntriesBecomeRegionsInTwoSteps)
{
    CROIManager manager;
    EXPECT_TRUE(manager.loadROIData("ROI1Name", "liver"));
    EXPECT_TRUE(manager.loadROIData("ROI1Shape", "rect:1,2,3,4"));
    EXPECT_TRUE(manager.loadROIData("ROI1Pixels", "12"));
    EXPECT_FALSE(manager.loadROIData("Unit", "Counts"));
    const auto* infos = manager.getCreatedROIInfoList();
    ASSERT_EQ(infos->size(), 1);
    EXPECT_EQ(infos->first()->name, "liver");
    EXPECT_TRUE(manager.regions().isEmpty());
    EXPECT_EQ(manager.createROIFromFile(infos, false, true), ESTATUS_SUCCESS);
    EXPECT_EQ(manager.regions().first().statistics.pixels, 12);
    // Once more beside it, and without its numbers.
    EXPECT_EQ(manager.createROIFromFile(manager.getCreatedROIInfoList(), false, false), ESTATUS_SUCCESS);
    EXPECT_EQ(namesOf(manager), (QStringList{"liver", "liver 2"}));
    EXPECT_FALSE(manager.regions().last().statistics.isMeasured());
    EXPECT_EQ(manager.createROIFromFile(manager.getCreatedROIInfoList(), true, true), ESTATUS_SUCCESS);
    EXPECT_EQ(namesOf(manager), QStringList{"liver"});
    manager.clearROIInfoList();
    EXPECT_TRUE(manager.getCreatedROIInfoList()->isEmpty());
    EXPECT_EQ(namesOf(manager), QStringList{"liver"});
    manager.clearAllLists();
    EXPECT_TRUE(manager.regions().isEmpty());
}

TEST_F(RoiManagerTest, RegionsGoFromOneDatasetToAnother)
{
    add("rect:4,4,8,8", "square");
    CPLClickInfo carrier;
    m_dataset.roiManager()->saveROIData(&carrier);
    CORVDataset other;
    other.roiManager()->readROIData(carrier);
    EXPECT_TRUE(other.hasROIData());
    EXPECT_EQ(describe(other.roiManager()->regions()), describe(m_dataset.roiManager()->regions()));
    EXPECT_TRUE(other.roiManager()->messages().isEmpty());
}

TEST_F(RoiManagerTest, WhatIsNoRegionIsLeftOutAndTold)
{
    CROIManager manager;
    EXPECT_EQ(manager.createROIFromFile(nullptr, false, false), ESTATUS_INVALID_ARGUMENT);
    tagROIInfo good = regionFrom("rect:1,1,1,1", "good");
    tagROIInfo bad = good;
    bad.name = "bad";
    bad.width = -1.0;
    const QList<tagROIInfo*> infos{&bad, nullptr, &good};
    EXPECT_EQ(manager.createROIFromFile(&infos, false, false), ESTATUS_FAILURE);
    EXPECT_EQ(namesOf(manager), QStringList{"good"});
    EXPECT_EQ(manager.messages(),
              (QStringList{"the region \"bad\" is left out: width and height must be above 0", "a region is missing"}));
}

RC_GTEST_PROP(RoiManagerLawTest, AnyRegionsSurviveTheFile, ())
{
    CROIManager manager;
    const QList<tagROIInfo> regions = *anyRegions();
    for (const auto& region : regions) {
        RC_ASSERT(manager.addRegion(region));
    }
    CPLClickInfo info;
    RC_ASSERT(manager.saveROIData(&info) == ESTATUS_SUCCESS);
    CPLClickInfo again;
    QStringList warnings;
    CPLSection other(QStringLiteral("other"));
    info.addSection(&other);
    RC_ASSERT(again.parse(info.toText(), QStringLiteral("x"), &warnings) == 0);
    RC_ASSERT(warnings.isEmpty());
    CROIManager reader;
    reader.readROIData(again);
    RC_ASSERT(reader.messages().isEmpty());
    RC_ASSERT(describe(reader.regions()) == describe(regions));
    // Saving what was read changes nothing.
    RC_ASSERT(reader.saveROIData(&again) == ESTATUS_SUCCESS);
    RC_ASSERT(again.toText() == info.toText());
}
