// SPDX-License-Identifier: GPL-3.0-or-later
// What a result's document says.
#include "ResultFixture.h"

#include <QLocale>

namespace {

class ResultDocumentTest : public ResultFixture
{
protected:
    QStringList childNames()
    {
        QStringList names;
        const QDomElement root = rootOf(m_first->resultToXml());
        for (QDomElement e = root.firstChildElement(); !e.isNull(); e = e.nextSiblingElement()) {
            names += e.tagName();
        }
        return names;
    }
};

} // namespace

TEST_F(ResultDocumentTest, StandsLineByLine)
{
    CORVSpumKyvo& engine = *m_first;
    engine.m_selectedKeyPairs = {{"480", "500"}, {"480", "520"}};
    auto* pSpectrum = plotOf(engine.m_selectedKeyPairs, {0.25, 1.0});
    pSpectrum->settings.index = 3;
    pSpectrum->settings.name = "a \"b\" & c";
    pSpectrum->settings.color = "red";
    pSpectrum->origin = "drawn";
    engine.m_spectrumPlots = {pSpectrum};
    engine.m_nBinning = 2;
    engine.m_nWidth = 300;
    engine.m_nHeight = 299;
    m_first.useMask({0, 255, 65536});
    engine.m_properties = {{"DataMask", "Yes"}, {"SPUM_Ver", "2.0"}};
    engine.m_roiResults = {{{"ROI 1 Name", "ROI 1 Unit"}, {"left", "Counts"}, "1"}};
    engine.m_nColorMap = 5;
    engine.m_bReverse = false;
    engine.m_bLogScale = true;
    engine.m_scaleRatios = {{0.125, 0.75, 0.5}};
    engine.m_bCherenkov = true;
    engine.m_strIsotope = "F-18";
    engine.m_dHalfLifeSec = 6588.0;
    engine.m_bDecayApplied = true;
    engine.resultView().setNote("first\nsecond");
    EXPECT_EQ(withoutMoment(engine.resultToXml()).toStdString(),
              R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE ORV.SpectralUnmixingResults.Data>
<SpectralUnmixingResults Date.Time="" Version="2" Note="first&#xa;second">
 <SeqDataset id="test-sequence"/>
 <SelectedKeyPairs>
  <KeyPair Col="480" Row="500"/>
  <KeyPair Col="480" Row="520"/>
 </SelectedKeyPairs>
 <SpectrumList>
  <Component3 Version="1" Selected="1" Name="a &quot;b&quot; &amp; c" Color="red" Shape="1" Axis="Emission" Origin="drawn">
   <Spectrum Col="480" Row="500" Data="0.25"/>
   <Spectrum Col="480" Row="520" Data="1"/>
  </Component3>
 </SpectrumList>
 <DataMask Version="1" ImageBinning="2" ImageWidth="300" ImageHeight="299" UseMask="1" Pixels="3">
  <Index Text.Data="00000000FF00000000000100"/>
 </DataMask>
 <Results>
  <DataMask value="Yes"/>
  <SPUM_Ver value="2.0"/>
 </Results>
 <ROIData>
  <ROI1Name ConcentrationMap="1" value="left"/>
  <ROI1Unit ConcentrationMap="1" value="Counts"/>
 </ROIData>
 <ImageControl ColorMap="5" Reverse="0" Logscale="1">
  <MinMaxRatio MinRatio="0.125" MaxRatio="0.75"/>
 </ImageControl>
 <Cherenkov_Decay_Correction IsotopeName="F-18" HalfLife="109.8" IsDecayCorrectionApplied="true"/>
</SpectralUnmixingResults>
)");
}

TEST_F(ResultDocumentTest, ChildrenThatMayBeAbsentAreAbsent)
{
    EXPECT_EQ(childNames(),
              QStringList({"SeqDataset", "SelectedKeyPairs", "SpectrumList", "DataMask", "Results", "ImageControl"}));
}

TEST_F(ResultDocumentTest, WithoutSpectraNoPairIsWritten)
{
    ASSERT_FALSE(m_first->m_selectedKeyPairs.isEmpty());
    EXPECT_FALSE(written("SelectedKeyPairs").hasChildNodes());
    EXPECT_FALSE(written("SpectrumList").hasChildNodes());
}

TEST_F(ResultDocumentTest, ASelectionChangedAfterTheRunDoesNotCount)
{
    m_first.analyse();
    m_first->m_selectedKeyPairs.removeLast();
    EXPECT_EQ(written("SelectedKeyPairs").childNodes().count(), resultImages);
    EXPECT_EQ(written("SelectedKeyPairs").lastChildElement().attribute("Row"), QString("560"));
}

TEST_F(ResultDocumentTest, TheMomentIsThatOfThisComputersLocale)
{
    const QString strBefore = QLocale::system().toString(QDate::currentDate(), QLocale::ShortFormat);
    const QString strMoment = rootOf(m_first->resultToXml()).attribute("Date.Time");
    const QString strAfter = QLocale::system().toString(QDate::currentDate(), QLocale::ShortFormat);
    EXPECT_TRUE(strMoment.startsWith(strBefore + ", ") || strMoment.startsWith(strAfter + ", "))
        << strMoment.toStdString();
    EXPECT_GT(strMoment.size(), strBefore.size() + 2);
}

TEST_F(ResultDocumentTest, TheNoteIsTheViews)
{
    EXPECT_EQ(rootOf(m_first->resultToXml()).attribute("Note", "none"), QString());
    m_first->resultView().setNote(QString::fromUtf8("\u00e4 <1>"));
    EXPECT_EQ(rootOf(m_first->resultToXml()).attribute("Note"), QString::fromUtf8("\u00e4 <1>"));
}

TEST_F(ResultDocumentTest, PropertiesAreThoseOfTheRun)
{
    m_first.analyse();
    const QDomElement results = written("Results");
    EXPECT_EQ(results.firstChildElement("Method").attribute("value"), QString("Manual"));
    EXPECT_EQ(results.firstChildElement("SPUM_Ver").attribute("value"), QString("2.0"));
    EXPECT_EQ(results.childNodes().count(), m_first->m_properties.size());
}

TEST_F(ResultDocumentTest, TheDecayBlockIsWrittenOnlyForAnIsotope)
{
    m_first->m_strIsotope = "F-18";
    EXPECT_TRUE(written("Cherenkov_Decay_Correction").isNull());
    m_first->m_bCherenkov = true;
    EXPECT_EQ(written("Cherenkov_Decay_Correction").attribute("IsDecayCorrectionApplied"), QString("false"));
    EXPECT_EQ(written("Cherenkov_Decay_Correction").attribute("HalfLife"), QString("0"));
}
