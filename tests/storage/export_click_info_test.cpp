// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/exportClickInfo.h"

#include "storage/ExportFixture.h"

#include "host/CILPalette.h"
#include "host/CORVPreference.h"

namespace {

CPLSection sectionOf(const QString& strKey, const QString& strName, const QStringList& entries)
{
    CPLSection section(strKey, strName);
    for (const QString& strEntry : entries) {
        section.addKeyValue(strEntry.section('=', 0, 0), strEntry.section('=', 1));
    }
    return section;
}

class ExportClickInfoTest : public ExportFixture
{
protected:
    ExportClickInfoTest() : m_map(squareImage(2, 4, [](int i) { return 0.5F * static_cast<float>(i); }))
    {
        m_map.RefreshImageStats();
        m_facts.sequenceId = "SEQ12345";
        m_facts.label = "SEQ12UMX3";
        m_facts.unit = "Radiance";
        m_facts.version = "1.2.3";
        m_facts.buildDate = "Jan  2 2024";
        m_facts.display.colorTable = "Fire";
    }
    void add(const QString& strKey, const QStringList& entries, const QString& strName = QString())
    {
        const CPLSection section = sectionOf(strKey, strName, entries);
        m_source.addSection(&section);
    }
    CPLClickInfo result() const
    {
        CPLClickInfo info;
        exportClickInfo(m_source, m_map, m_facts, info);
        return info;
    }
    QStringList entries(const QString& strSection) const { return entriesOf(result(), strSection); }

    CPLClickInfo m_source;
    CILImage m_map;
    ExportClickFacts m_facts;
};

} // namespace

TEST_F(ExportClickInfoTest, TheSevenSectionsComeInTheirOrder)
{
    const QStringList expected{"ClickNumber",         "User Input",         "Analysis User Input", "luminescent image",
                               "User Label Name Set", "photographic image", "Graph Controls"};
    EXPECT_EQ(sectionKeys(result()), expected);
    add("Camera System Info", {"Photons per Count=3"});
    add("ROIs", {"ROI 1 Name=a"});
    add("Graph Controls", {});
    EXPECT_EQ(sectionKeys(result()), expected);
}

TEST_F(ExportClickInfoTest, ASectionTakesKeyAndNameOfTheSources)
{
    add("User Input", {"a=1"}, "What the user typed");
    const CPLClickInfo info = result();
    QString strName;
    info[QString("User Input")]->getSectionName(&strName);
    EXPECT_EQ(strName, "What the user typed");
    info[QString("Graph Controls")]->getSectionName(&strName);
    EXPECT_EQ(strName, "");
}

TEST_F(ExportClickInfoTest, TheClickNumberIsLeftOutAndTheVersionTold)
{
    add("ClickNumber",
        {"ClickNumber=C7", "KyVo Time(s)=12.5", "Folder On Disk=C:\\data", "KyVo Interval=2", "Orvia Version=0.9(x)"});
    EXPECT_EQ(entries("ClickNumber"), QStringList({"KyVo Time(s)=12.5", "KyVo Interval=2",
                                                   "Orvia Version=1.2.3(Jan  2 2024)", "Folder On Disk="}));
}

TEST_F(ExportClickInfoTest, WithKeptInfoTheClickNumberAndFolderStay)
{
    add("ClickNumber", {"ClickNumber=C7", "Folder On Disk=C:\\data"});
    m_facts.keepInfo = true;
    EXPECT_EQ(entries("ClickNumber"),
              QStringList({"ClickNumber=C7", "Folder On Disk=C:\\data", "Orvia Version=1.2.3(Jan  2 2024)"}));
}

TEST_F(ExportClickInfoTest, UserSectionsAreUnchanged)
{
    const QStringList twice{"User Name=A \"B\"; c=d", "Empty=", "User Name=again"};
    for (const char* pSection : {"User Input", "Analysis User Input", "User Label Name Set"}) {
        add(pSection, twice);
        EXPECT_EQ(entries(pSection), twice) << pSection;
    }
}

TEST_F(ExportClickInfoTest, ASectionThatTheSourceLacksIsEmptyOrHoldsWhatIsAdded)
{
    EXPECT_EQ(entries("User Input"), QStringList());
    EXPECT_EQ(entries("ClickNumber"), QStringList({"Orvia Version=1.2.3(Jan  2 2024)", "Folder On Disk="}));
    EXPECT_EQ(entries("photographic image"),
              QStringList({"Sequence ID=;", "ClickNumber Index=;", "Igor Wave Note=ClickNumber=0;"}));
}

TEST_F(ExportClickInfoTest, TheLuminescentSectionReplacesWhatIsDifferentAndKeepsTheRest)
{
    add("luminescent image",
        {"Excitation Filter=640nm", "Saturated=1", "Binning Factor=8", "Acquisition Date=2024-05-06", "CCD Corrected=0",
         "Background Corrected=0", "Flat Field Corrected=1", "FL Background Corrected=1", "Sequence ID=S1",
         "ClickNumber Index=4", "Exposure Time Sec=0.5"});
    m_facts.backgroundSubtracted = true;
    EXPECT_EQ(
        entries("luminescent image"),
        QStringList({"Excitation Filter=640nm", "Saturated=0", "Binning Factor=8", "Acquisition Date=2024-05-06",
                     "CCD Corrected=1", "Background Corrected=1", "Flat Field Corrected=0", "FL Background Corrected=0",
                     "Sequence ID=S1;", "ClickNumber Index=4;", "Exposure Time Sec=0.5",
                     "Unmixed Concentration=SEQ12UMX3", "Spectral Unmix Seq Dataset=SEQ12345", "Stored Unit=Radiance",
                     "Igor Wave Note=ClickNumber=0;"}));
}

TEST_F(ExportClickInfoTest, CorrectionFlagsFollowTheSource)
{
    const auto flags = [this] { return entries("luminescent image").filter("Corrected="); };
    EXPECT_EQ(flags(), QStringList({"CCD Corrected=1", "Background Corrected=0", "Flat Field Corrected=0",
                                    "FL Background Corrected=0"}));
    m_facts.flatFieldCorrected = true;
    m_facts.fluorescentBackgroundSubtracted = true;
    EXPECT_EQ(flags(), QStringList({"CCD Corrected=1", "Background Corrected=0", "Flat Field Corrected=1",
                                    "FL Background Corrected=1"}));
}

TEST_F(ExportClickInfoTest, TheScanSpotIsToldInItsKeysAndInTheNotes)
{
    add("luminescent image", {"FL x-spot=9", "Igor Wave Note=a=1;ClickNumber=7;FL x-spot=9;no pair;b = 2"});
    add("photographic image", {"isRotated=1"});
    m_facts.clickNumber = 2;
    m_facts.spotX = "1.5";
    m_facts.spotY = "-3";
    EXPECT_EQ(entries("luminescent image").filter(QRegExp("^FL .-spot")),
              QStringList({"FL x-spot=1.5", "FL y-spot=-3"}));
    EXPECT_EQ(entries("luminescent image").filter("Igor"),
              QStringList("Igor Wave Note=a=1;b= 2;ClickNumber=2;FL x-spot=1.5;FL y-spot=-3;"));
    EXPECT_EQ(entries("photographic image"), QStringList({"isRotated=1", "Sequence ID=;", "ClickNumber Index=;",
                                                          "Igor Wave Note=ClickNumber=2;FL x-spot=1.5;FL y-spot=-3;"}));
}

TEST_F(ExportClickInfoTest, WithoutASpotTheKeysOfTheSourceStay)
{
    add("luminescent image", {"FL x-spot=9"});
    EXPECT_EQ(entries("luminescent image").filter(QRegExp("^FL .-spot")), QStringList("FL x-spot=9"));
}

TEST_F(ExportClickInfoTest, ThePhotographsSectionTakesItsOwnLinks)
{
    add("luminescent image", {"Sequence ID=S1", "ClickNumber Index=4"});
    add("photographic image", {"Binning Factor=2", "Sequence ID=S2", "ClickNumber Index=1;2"});
    EXPECT_EQ(entries("photographic image"), QStringList({"Binning Factor=2", "Sequence ID=S2;",
                                                          "ClickNumber Index=1;2;", "Igor Wave Note=ClickNumber=0;"}));
}

TEST_F(ExportClickInfoTest, TheDisplayStateFollowsTheSourcesEntries)
{
    add("Graph Controls", {"Other=x", "Intensity Calibration=Radiance", "Color Table=Grays"});
    m_facts.display.opacity = 75;
    EXPECT_EQ(entries("Graph Controls"),
              QStringList({"Other=x", "Intensity Calibration=Counts", "Color Table=Fire", "Reversed=0",
                           "ColorTableIsLog=0", "Alpha Blend=75", "Color Table Min=0.000000",
                           "Color Table Max=1.500000", "Raw Color Table Min=0.000000", "Raw Color Table Max=1.500000",
                           "Brightness=0", "Gamma=1.000000"}));
}

TEST_F(ExportClickInfoTest, FlagsOfTheDisplayAreOneAndTheSourcesBrightnessAndGammaStay)
{
    add("Graph Controls", {"Brightness=12", "Gamma=0.5"});
    m_facts.display.reversed = true;
    m_facts.display.logScale = true;
    const QStringList list = entries("Graph Controls");
    EXPECT_TRUE(list.contains("Reversed=1"));
    EXPECT_TRUE(list.contains("ColorTableIsLog=1"));
    EXPECT_TRUE(list.contains("Brightness=12"));
    EXPECT_TRUE(list.contains("Gamma=0.500000"));
    EXPECT_EQ(list.filter("Brightness").size(), 1);
}

TEST_F(ExportClickInfoTest, WithoutMergingNoEntryOfTheSourceIsTakenButBinningDateAndLinks)
{
    add("ClickNumber", {"KyVo Interval=2"});
    add("User Input", {"a=1"});
    add("luminescent image",
        {"Excitation Filter=640nm", "Binning Factor=8", "Acquisition Date=2024-05-06", "Sequence ID=S1"});
    m_facts.merge = false;
    EXPECT_EQ(entries("ClickNumber"), QStringList({"Orvia Version=1.2.3(Jan  2 2024)", "Folder On Disk="}));
    EXPECT_EQ(entries("User Input"), QStringList());
    const QStringList list = entries("luminescent image");
    EXPECT_TRUE(list.filter("Excitation Filter").isEmpty());
    EXPECT_TRUE(list.contains("Binning Factor=8"));
    EXPECT_TRUE(list.contains("Acquisition Date=2024-05-06"));
    EXPECT_TRUE(list.contains("Sequence ID=S1;"));
}

TEST_F(ExportClickInfoTest, TheEngineFillsInWhatItKnows)
{
    makeResult(2, 3, 2, DISPLAYUNIT_RADIANT_EFFICIENCY);
    engine().m_nColorMap = CILPalette::colorTableIndex("Lumen");
    engine().m_bReverse = true;
    engine().m_bLogScale = true;
    engine().m_nOverlayOpacity = 42;
    CORVDataset& source = dataset(4); // of the second spot
    source.clickInfo[QString("luminescent image")]->setValue("Flat Field Corrected", "1");
    CPLClickInfo info;
    engine().buildClickInfo(&info, &source, &m_map, 1, 2, "label", true, false);
    const QStringList luminescent = entriesOf(info, "luminescent image");
    EXPECT_TRUE(luminescent.contains("Unmixed Concentration=label"));
    EXPECT_TRUE(luminescent.contains("Spectral Unmix Seq Dataset=" + sequence().id()));
    EXPECT_TRUE(luminescent.contains("Stored Unit=Radiant Efficiency"));
    EXPECT_TRUE(luminescent.contains("Background Corrected=1"));
    EXPECT_TRUE(luminescent.contains("Flat Field Corrected=1"));
    EXPECT_TRUE(luminescent.contains("FL x-spot=1.5"));
    EXPECT_TRUE(luminescent.contains("FL y-spot=-1"));
    EXPECT_TRUE(luminescent.contains("Igor Wave Note=ClickNumber=2;FL x-spot=1.5;FL y-spot=-1;"));
    const QStringList display = entriesOf(info, "Graph Controls");
    EXPECT_TRUE(display.contains("Color Table=Lumen"));
    EXPECT_TRUE(display.contains("Reversed=1"));
    EXPECT_TRUE(display.contains("ColorTableIsLog=1"));
    EXPECT_TRUE(display.contains("Alpha Blend=42"));
    EXPECT_TRUE(luminescent.contains("FL Background Corrected=0"));
    const QString strVersion = entriesOf(info, "ClickNumber").filter("Orvia Version=").value(0);
    EXPECT_TRUE(strVersion.startsWith("Orvia Version=" + CORVPreference::getAppVersion() + "("))
        << qPrintable(strVersion);
    EXPECT_TRUE(strVersion.endsWith(")"));
}

TEST_F(ExportClickInfoTest, EachCorrectionFlagIsThatOfTheSource)
{
    makeResult(2, 3);
    CPLSection& source = *dataset(0).clickInfo[QString("luminescent image")];
    const QStringList keys{"Background Corrected", "Flat Field Corrected", "FL Background Corrected"};
    for (const QString& strSet : keys) {
        for (const QString& strKey : keys) {
            source.setValue(strKey, strKey == strSet ? "1" : "0");
        }
        CPLClickInfo info;
        engine().buildClickInfo(&info, &dataset(0), &m_map, 0, 0, "label", true, false);
        const QStringList list = entriesOf(info, "luminescent image");
        for (const QString& strKey : keys) {
            EXPECT_TRUE(list.contains(strKey + (strKey == strSet ? "=1" : "=0"))) << qPrintable(strSet + ", " + strKey);
        }
    }
}
