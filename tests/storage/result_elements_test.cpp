// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/resultElements.h"

#include "spectra/SpectrumPlotParams.h"
#include "support/ForeignLocale.h"

#include <QDomDocument>

#include <gtest/gtest.h>

using namespace resultElements;

namespace {

const QList<KeyPair> twoPairs{{"480", "500"}, {"480", "520"}};

SpectrumPlotParams spectrumOver(const QList<KeyPair>& pairs)
{
    SpectrumPlotParams spectrum;
    spectrum.setPairs(pairs);
    return spectrum;
}

class ElementTest : public ::testing::Test
{
protected:
    ElementTest() : m_root(m_document.appendChild(m_document.createElement("R")).toElement()) {}
    QDomElement child() const { return m_root.firstChildElement(); }
    QDomElement parse(const QString& strText)
    {
        EXPECT_TRUE(m_document.setContent(strText));
        return m_document.documentElement();
    }

    QDomDocument m_document;
    QDomElement m_root;
};

} // namespace

TEST(PairsOfResultTest, WithoutSpectraThereAreNone)
{
    EXPECT_TRUE(pairsOfResult(twoPairs, {}).isEmpty());
}

TEST(PairsOfResultTest, TheSelectionCountsWhenTheFirstSpectrumIsAsLong)
{
    SpectrumPlotParams first = spectrumOver({{"a", "b"}, {"c", "d"}});
    SpectrumPlotParams second = spectrumOver({{"e", "f"}});
    EXPECT_EQ(pairsOfResult(twoPairs, {&first, &second}), twoPairs);
}

TEST(PairsOfResultTest, OtherwiseTheFirstSpectrumHasTheAuthority)
{
    SpectrumPlotParams spectrum = spectrumOver({{"a", "b"}});
    EXPECT_EQ(pairsOfResult(twoPairs, {&spectrum}), QList<KeyPair>({{"a", "b"}}));
    EXPECT_EQ(pairsOfResult({}, {&spectrum}), QList<KeyPair>({{"a", "b"}}));
    SpectrumPlotParams empty;
    EXPECT_TRUE(pairsOfResult(twoPairs, {&empty}).isEmpty());
}

TEST_F(ElementTest, NumbersHaveSixteenDigitsAndAPointInAnyLocale)
{
    const testsupport::ForeignLocale locale;
    EXPECT_EQ(numberText(2.0), QString("2"));
    EXPECT_EQ(numberText(0.1), QString("0.1"));
    EXPECT_EQ(numberText(1.0 / 3.0), QString("0.3333333333333333"));
    EXPECT_EQ(numberText(1234567.5), QString("1234567.5"));
    appendDecay(m_root, {"F-18", 6588.0 / 60.0, true});
    EXPECT_EQ(child().attribute("HalfLife"), QString("109.8"));
    EXPECT_EQ(readDecay(child()).halfLifeMinutes, 109.8);
    const QDomElement display = parse("<d><r MinRatio=\"0.25\" MaxRatio=\"0,5\"/></d>");
    EXPECT_EQ(readDisplay(display).ratios.first().MinRatio, 0.25);
    EXPECT_EQ(readDisplay(display).ratios.first().MaxRatio, 0.0);
}

TEST_F(ElementTest, PairsStandAsColumnAndRow)
{
    appendPairs(m_root, twoPairs);
    EXPECT_EQ(child().tagName(), QString("SelectedKeyPairs"));
    EXPECT_EQ(child().childNodes().count(), 2);
    EXPECT_EQ(child().firstChildElement().tagName(), QString("KeyPair"));
    EXPECT_EQ(child().firstChildElement().attribute("Col"), QString("480"));
    EXPECT_EQ(child().firstChildElement().attribute("Row"), QString("500"));
    EXPECT_EQ(readPairs(child(), "Col", "Row"), twoPairs);
}

TEST_F(ElementTest, PairsAreReadWhateverTheChildrenAreCalled)
{
    const QDomElement list = parse("<x><a Row=\"2\" Col=\"1\"/><!-- c --><KeyPair Row=\"4\" Col=\"3\"/></x>");
    EXPECT_EQ(readPairs(list, "Col", "Row"), QList<KeyPair>({{"1", "2"}, {"3", "4"}}));
}

TEST_F(ElementTest, AMaskThatIsNotUsedHasNoPixels)
{
    appendMask(m_root, {2, 30, 20, false}, {1, 2});
    EXPECT_EQ(child().attribute("Version"), QString("1"));
    EXPECT_EQ(child().attribute("ImageBinning"), QString("2"));
    EXPECT_EQ(child().attribute("ImageWidth"), QString("30"));
    EXPECT_EQ(child().attribute("ImageHeight"), QString("20"));
    EXPECT_EQ(child().attribute("UseMask"), QString("0"));
    EXPECT_FALSE(child().hasAttribute("Pixels"));
    EXPECT_FALSE(child().hasChildNodes());
    const MaskRecord mask = readMask(child());
    EXPECT_EQ(mask.binning, 2);
    EXPECT_EQ(mask.width, 30);
    EXPECT_EQ(mask.height, 20);
    EXPECT_FALSE(mask.useMask);
}

TEST_F(ElementTest, AMaskStandsWithItsPixels)
{
    appendMask(m_root, {1, 300, 300, true}, {0, 255, 65536});
    EXPECT_EQ(child().attribute("UseMask"), QString("1"));
    EXPECT_EQ(child().attribute("Pixels"), QString("3"));
    EXPECT_EQ(child().firstChildElement().tagName(), QString("Index"));
    EXPECT_EQ(child().firstChildElement().attribute("Text.Data"), QString("00000000FF00000000000100"));
    std::vector<int> indices;
    long long nCount = 0;
    ASSERT_TRUE(readPixels(child(), "Pixels", &indices, &nCount));
    EXPECT_EQ(indices, std::vector<int>({0, 255, 65536}));
    EXPECT_EQ(nCount, 3);
}

TEST_F(ElementTest, PixelsAreThoseOfTheFirstChildWhateverItsName)
{
    std::vector<int> indices{9};
    long long nCount = 0;
    ASSERT_TRUE(readPixels(parse("<m P=\"1\"><z Text.Data=\"07000000\"/><Index Text.Data=\"08000000\"/></m>"), "P",
                           &indices, &nCount));
    EXPECT_EQ(indices, std::vector<int>({7}));
    ASSERT_TRUE(readPixels(parse("<m P=\"2\"/>"), "P", &indices, &nCount));
    EXPECT_EQ(indices, std::vector<int>({0, 0}));
    ASSERT_TRUE(readPixels(parse("<m P=\"many\"/>"), "P", &indices, &nCount));
    EXPECT_TRUE(indices.empty());
}

TEST_F(ElementTest, AnAbsurdNumberOfPixelsIsRefused)
{
    std::vector<int> indices{9};
    long long nCount = 0;
    for (const char* pCount : {"-1", "1000000000000", "9223372036854775807", "4294967295"}) {
        EXPECT_FALSE(readPixels(parse(QString("<m P=\"%1\"><i Text.Data=\"07000000\"/></m>").arg(pCount)), "P",
                                &indices, &nCount));
        EXPECT_EQ(QString::number(nCount), QString(pCount));
        EXPECT_EQ(indices, std::vector<int>({9}));
    }
}

TEST_F(ElementTest, PropertiesAreElementsOfTheirNames)
{
    appendProperties(m_root, {{"DataMask", "No"}, {"DataUnit", "a \"b\" & c"}});
    EXPECT_EQ(child().tagName(), QString("Results"));
    EXPECT_EQ(child().firstChildElement("DataMask").attribute("value"), QString("No"));
    const QList<QPair<QString, QString>> expected{{"DataMask", "No"}, {"DataUnit", "a \"b\" & c"}};
    EXPECT_EQ(readProperties(child()), expected);
}

TEST_F(ElementTest, RegionsLoseTheBlanksOfTheirKeysAndTheirGroups)
{
    const QStringList leftOut = appendRegions(
        m_root, {{{"ROI 1 Name", "ROI 1 Shape"}, {"tumour", "rect:1,2,3,4"}, "1"}, {{"ROI 1 Name"}, {"x"}, "2"}});
    EXPECT_TRUE(leftOut.isEmpty());
    EXPECT_EQ(child().tagName(), QString("ROIData"));
    EXPECT_EQ(child().childNodes().count(), 3);
    EXPECT_EQ(child().firstChildElement().tagName(), QString("ROI1Name"));
    EXPECT_EQ(child().firstChildElement().attribute("ConcentrationMap"), QString("1"));
    EXPECT_EQ(child().firstChildElement().attribute("value"), QString("tumour"));
    const QList<RoiRecord> records = readRegions(child());
    ASSERT_EQ(records.size(), 3);
    EXPECT_EQ(records.at(1).keys, QStringList("ROI1Shape"));
    EXPECT_EQ(records.at(1).values, QStringList("rect:1,2,3,4"));
    EXPECT_EQ(records.at(1).concentrationMap, QString("1"));
    EXPECT_EQ(records.at(2).concentrationMap, QString("2"));
}

TEST_F(ElementTest, ARegionsKeyThatIsNoNameIsLeftOut)
{
    const QStringList leftOut =
        appendRegions(m_root, {{{"1st", "a<b", " ", "", "good", "no value", QString::fromUtf8("\u00c4rea-2.x_y")},
                                {"1", "2", "3", "4", "5"},
                                "m"}});
    EXPECT_EQ(leftOut, QStringList({"1st", "a<b", " ", ""}));
    QDomDocument again;
    EXPECT_TRUE(again.setContent(m_document.toString(1)));
    EXPECT_EQ(again.documentElement().firstChildElement().childNodes().count(), 3);
    EXPECT_EQ(child().firstChildElement("novalue").attribute("value", "none"), QString());
}

TEST_F(ElementTest, NoRegionsAreAnElementWithoutChildren)
{
    appendRegions(m_root, {});
    EXPECT_EQ(child().tagName(), QString("ROIData"));
    EXPECT_FALSE(child().hasChildNodes());
}

TEST_F(ElementTest, TheDisplayKeepsTwoRatiosOfThree)
{
    appendDisplay(m_root, {7, true, false, {{0.1, 0.9, 0.5}, {1.0 / 3.0, 2.0, 1.0}}});
    EXPECT_EQ(child().tagName(), QString("ImageControl"));
    EXPECT_EQ(child().attribute("ColorMap"), QString("7"));
    EXPECT_EQ(child().attribute("Reverse"), QString("1"));
    EXPECT_EQ(child().attribute("Logscale"), QString("0"));
    EXPECT_EQ(child().firstChildElement().tagName(), QString("MinMaxRatio"));
    EXPECT_EQ(child().firstChildElement().attribute("MinRatio"), QString("0.1"));
    EXPECT_EQ(child().lastChildElement().attribute("MinRatio"), QString("0.3333333333333333"));
    EXPECT_EQ(child().firstChildElement().attributes().count(), 2);
    const DisplayRecord display = readDisplay(child());
    EXPECT_EQ(display.colorMap, 7);
    EXPECT_TRUE(display.reverse);
    EXPECT_FALSE(display.logScale);
    ASSERT_EQ(display.ratios.size(), 2);
    EXPECT_EQ(display.ratios.first().MinRatio, 0.1);
    EXPECT_EQ(display.ratios.first().MaxRatio, 0.9);
    EXPECT_EQ(display.ratios.first().extra, 1.0);
}

TEST_F(ElementTest, RatiosAreReadWhateverTheChildrenAreCalled)
{
    const DisplayRecord display =
        readDisplay(parse("<i Logscale=\"1\"><z MinRatio=\"0.2\" MaxRatio=\"0.3\"/><y/></i>"));
    EXPECT_TRUE(display.logScale);
    EXPECT_FALSE(display.reverse);
    ASSERT_EQ(display.ratios.size(), 2);
    EXPECT_EQ(display.ratios.first().MaxRatio, 0.3);
    EXPECT_EQ(display.ratios.last().MinRatio, 0.1);
    EXPECT_EQ(display.ratios.last().MaxRatio, 0.9);
}

TEST_F(ElementTest, TheHalfLifeIsAFloatInMinutes)
{
    appendDecay(m_root, {"Ga-68 \"x\"", 1.0 / 3.0, false});
    EXPECT_EQ(child().tagName(), QString("Cherenkov_Decay_Correction"));
    EXPECT_EQ(child().attribute("IsotopeName"), QString("Ga-68 \"x\""));
    EXPECT_TRUE(child().attribute("HalfLife").startsWith("0.333333"));
    EXPECT_LE(child().attribute("HalfLife").size(), 11);
    EXPECT_EQ(child().attribute("IsDecayCorrectionApplied"), QString("false"));
    EXPECT_FALSE(readDecay(child()).applied);
    EXPECT_TRUE(readDecay(parse("<d IsDecayCorrectionApplied=\"true\"/>")).applied);
    EXPECT_FALSE(readDecay(parse("<d IsDecayCorrectionApplied=\"1\"/>")).applied);
}
