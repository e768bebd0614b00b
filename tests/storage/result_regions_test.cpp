// SPDX-License-Identifier: GPL-3.0-or-later
#include "ResultFixture.h"

#include "storage/resultRegions.h"

#include "host/CORVDataset.h"
#include "host/CPLClickInfo.h"
#include "host/CPLSection.h"
#include "host/CROIManager.h"
#include "host/tagROIInfo.h"

#include <memory>

namespace {

// An open image of a result: the sequence that it names, its concentration map (null: it names none), its regions.
std::unique_ptr<CORVDataset> resultImage(const QString& strSequence, const QString& strMap, const QStringList& regions)
{
    auto pDataset = std::make_unique<CORVDataset>();
    CPLSection section("luminescent image");
    section.setValue("Spectral Unmix Seq Dataset", strSequence);
    if (!strMap.isNull()) {
        section.setValue("Unmixed Concentration", strMap);
    }
    pDataset->clickInfo.addSection(&section);
    for (const QString& strName : regions) {
        tagROIInfo region;
        region.name = strName;
        region.width = 2.0;
        region.height = 3.0;
        EXPECT_TRUE(pDataset->roiManager()->addRegion(region));
    }
    return pDataset;
}

class ResultRegionsTest : public ResultFixture
{
protected:
    void open(const QString& strSequence, const QString& strMap, const QStringList& regions)
    {
        m_images.push_back(resultImage(strSequence, strMap, regions));
    }
    ResultRegions collect() const { return collectResultRegions(m_sequence.id()); }
    QStringList maps() const
    {
        QStringList names;
        for (const RoiRecord& record : collect().records) {
            names += record.concentrationMap;
        }
        return names;
    }

    std::vector<std::unique_ptr<CORVDataset>> m_images;
};

} // namespace

TEST_F(ResultRegionsTest, WithoutAnOpenResultThereAreNone)
{
    open("another sequence", "1", {"a"});
    EXPECT_FALSE(collect().hasResultImage);
    EXPECT_TRUE(collect().records.isEmpty());
    EXPECT_TRUE(written("ROIData").isNull());
}

TEST_F(ResultRegionsTest, RegionsOfTheResultsImagesAreTakenInOrder)
{
    open(m_sequence.id().toUpper(), "1", {"a", "b"});
    open("another sequence", "2", {"c"});
    open(m_sequence.id(), "3", {"d"});
    const ResultRegions regions = collect();
    EXPECT_TRUE(regions.hasResultImage);
    ASSERT_EQ(maps(), QStringList({"1", "3"}));
    EXPECT_EQ(regions.records.first().keys.size(), regions.records.first().values.size());
    EXPECT_TRUE(regions.records.first().values.contains("a"));
    EXPECT_TRUE(regions.records.first().values.contains("b"));
    EXPECT_TRUE(regions.records.last().values.contains("d"));
}

TEST_F(ResultRegionsTest, TheFirstImageWithoutAMapEndsTheWalk)
{
    open(m_sequence.id(), "1", {"a"});
    open(m_sequence.id(), QString(), {"b"});
    open(m_sequence.id(), "3", {"c"});
    EXPECT_EQ(maps(), QStringList({"1"}));
    EXPECT_TRUE(collect().hasResultImage);
}

// As little as a name may say, it is one.
TEST_F(ResultRegionsTest, AnEmptyNameOfAMapDoesNotEndTheWalk)
{
    open(m_sequence.id(), "1", {"a"});
    open(m_sequence.id(), "", {"b"});
    open(m_sequence.id(), "3", {"c"});
    EXPECT_EQ(maps(), QStringList({"1", "", "3"}));
}

TEST_F(ResultRegionsTest, AnImageWithoutRegionsGivesNoRecord)
{
    open(m_sequence.id(), "1", {});
    open(m_sequence.id(), "2", {"a"});
    EXPECT_EQ(maps(), QStringList({"2"}));
}

TEST_F(ResultRegionsTest, OpenResultsWithoutRegionsWriteAnEmptyElement)
{
    open(m_sequence.id(), "1", {});
    ASSERT_FALSE(written("ROIData").isNull());
    EXPECT_FALSE(written("ROIData").hasChildNodes());
}

TEST_F(ResultRegionsTest, ADatasetWithoutTheSectionIsPassedOver)
{
    m_images.push_back(std::make_unique<CORVDataset>());
    EXPECT_FALSE(collect().hasResultImage);
}

TEST_F(ResultRegionsTest, WritingAddsToTheRegionsThatAreThereAndEmptiesThem)
{
    open(m_sequence.id(), "2", {"a"});
    m_first->m_roiResults = {{{"ROI1Name"}, {"loaded"}, "1"}};
    const QDomElement list = written("ROIData");
    EXPECT_EQ(list.firstChildElement().attribute("value"), QString("loaded"));
    EXPECT_EQ(list.firstChildElement().nextSiblingElement().attribute("ConcentrationMap"), QString("2"));
    EXPECT_TRUE(m_first->m_roiResults.isEmpty());
    // The loaded ones are gone, those of open images are collected again.
    EXPECT_EQ(written("ROIData").firstChildElement().attribute("ConcentrationMap"), QString("2"));
}

TEST_F(ResultRegionsTest, AFileReadAndWrittenAgainKeepsTheChildrenAndLosesTheGroups)
{
    m_first.analyse();
    open(m_sequence.id(), "1", {"a", "b"});
    const QString strFirst = m_first->resultToXml();
    m_images.clear();
    ASSERT_TRUE(m_second->readResultV2(rootOf(strFirst)));
    const QDomElement list = m_document.documentElement().firstChildElement("ROIData");
    ASSERT_GT(list.childNodes().count(), 2);
    ASSERT_EQ(m_second->m_roiResults.size(), list.childNodes().count());
    for (const RoiRecord& record : qAsConst(m_second->m_roiResults)) {
        EXPECT_EQ(record.keys.size(), 1);
        EXPECT_EQ(record.values.size(), 1);
        EXPECT_EQ(record.concentrationMap, QString("1"));
        EXPECT_FALSE(record.keys.first().contains(' '));
    }
    const int nBegin = strFirst.indexOf(" <ROIData>");
    const QString strElement = strFirst.mid(nBegin, strFirst.indexOf("</ROIData>") - nBegin);
    EXPECT_TRUE(m_second->resultToXml().contains(strElement));
}

TEST_F(ResultRegionsTest, AKeyThatCannotBeHeldIsTold)
{
    m_first->m_roiResults = {{{"1 x", "y"}, {"a", "b"}, "1"}};
    EXPECT_EQ(written("ROIData").childNodes().count(), 1);
    EXPECT_TRUE(
        m_log.has("SpumKyvo: the region entry \"1 x\" has a name that a result file cannot hold.", CORVLOG_WARNING));
}

TEST_F(ResultRegionsTest, AKeyMayHaveColons)
{
    m_first.analyse();
    m_first->m_roiResults = {{{"ROI 1: area", ":a", "b:", "c:d:e", "x::y"}, {"1", "2", "3", "4", "5"}, "1"}};
    const QString strText = m_first->resultToXml();
    EXPECT_EQ(m_log.reports(), "");
    ASSERT_TRUE(m_second->readResultV2(rootOf(strText)));
    QStringList found;
    for (const RoiRecord& record : qAsConst(m_second->m_roiResults)) {
        found += record.keys.first() + "=" + record.values.first();
    }
    EXPECT_EQ(found.join(" ").toStdString(), "ROI1:area=1 :a=2 b:=3 c:d:e=4 x::y=5");
}

TEST_F(ResultRegionsTest, AClosingImageHandsItsRegionsToTheResultThatItNames)
{
    const auto pImage = resultImage("SEQ1", "SEQUMX2", {"a", "b"});
    const std::optional<ClosingRegions> closing = closingRegions(pImage.get());
    ASSERT_TRUE(closing.has_value());
    EXPECT_EQ(closing->sequenceId, QString("SEQ1"));
    EXPECT_EQ(closing->record.concentrationMap, QString("SEQUMX2"));
    EXPECT_EQ(closing->record.keys.size(), closing->record.values.size());
    EXPECT_TRUE(closing->record.values.contains("a"));
    EXPECT_TRUE(closing->record.values.contains("b"));
    EXPECT_EQ(pImage->clickInfo["ROIs"], nullptr); // written into a click info of its own
}

TEST_F(ResultRegionsTest, AClosingImageWithoutRegionsHasAnEmptyRecord)
{
    const auto pImage = resultImage("SEQ1", "1", {});
    const std::optional<ClosingRegions> closing = closingRegions(pImage.get());
    ASSERT_TRUE(closing.has_value());
    EXPECT_TRUE(closing->record.keys.isEmpty() && closing->record.values.isEmpty());
}

TEST_F(ResultRegionsTest, AClosingDatasetThatIsNoResultsImageHasNone)
{
    EXPECT_FALSE(closingRegions(nullptr).has_value());
    CORVDataset plain;
    EXPECT_FALSE(closingRegions(&plain).has_value());
    const CPLSection section("luminescent image");
    plain.clickInfo.addSection(&section);
    EXPECT_FALSE(closingRegions(&plain).has_value());
    EXPECT_FALSE(closingRegions(resultImage("SEQ1", QString(), {"a"}).get()).has_value());
}

namespace {

// The maps of the records, in order, each with its first value.
QStringList mapsAfter(const QStringList& before, const QString& strNew)
{
    QList<RoiRecord> records;
    for (const QString& strMap : before) {
        records.append({{"k"}, {"old"}, strMap});
    }
    replaceRegions(records, {{"k"}, {"new"}, strNew});
    QStringList maps;
    for (const RoiRecord& record : qAsConst(records)) {
        maps += record.concentrationMap + "=" + record.values.first();
    }
    return maps;
}

} // namespace

TEST_F(ResultRegionsTest, ARecordTakesThePlaceOfAllWithItsNumberAndStandsLast)
{
    EXPECT_EQ(mapsAfter({}, "1"), QStringList({"1=new"}));
    EXPECT_EQ(mapsAfter({"1", "2", "1"}, "1"), QStringList({"2=old", "1=new"}));
    EXPECT_EQ(mapsAfter({"2", "10"}, "1"), QStringList({"2=old", "10=old", "1=new"}));
    EXPECT_EQ(mapsAfter({"01", " 1 ", "+1", "-1"}, "1"), QStringList({"-1=old", "1=new"}));
}

TEST_F(ResultRegionsTest, NamesThatAreNoNumberAreAllOne)
{
    EXPECT_EQ(mapsAfter({"UMX1", "1"}, "1"), QStringList({"UMX1=old", "1=new"}));
    EXPECT_EQ(mapsAfter({"UMX1", "1", "UMX2", "", "0", "1.5", "99999999999"}, "UMX3"),
              QStringList({"1=old", "UMX3=new"}));
    EXPECT_EQ(mapsAfter({"UMX1", "2"}, "0"), QStringList({"2=old", "0=new"}));
}
