// SPDX-License-Identifier: GPL-3.0-or-later
#include "spectra/SpectrumPlotParams.h"

#include "spectra/NameEdit.h"
#include "spectra/SpumKyvoSpectrumCtrl.h"
#include "support/ForeignLocale.h"

#include <QAbstractButton>
#include <QDomDocument>
#include <QSharedPointer>
#include <QWidget>

#include <cmath>
#include <limits>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

SpectrumPlotParams makeSpectrum(const QVector<SpectrumPoint>& points)
{
    SpectrumPlotParams spectrum;
    spectrum.points = points;
    return spectrum;
}

XTNT::Vector<double> vectorOf(std::initializer_list<double> values)
{
    XTNT::Vector<double> result(static_cast<long long>(values.size()));
    long long i = 0;
    for (const double value : values) {
        result[i++] = value;
    }
    return result;
}

std::vector<double> listOf(const XTNT::Vector<double>& v)
{
    return std::vector<double>(v.data, v.data + v.size());
}

QSharedPointer<SpumKyvoSpectrumCtrl> makeRow()
{
    return QSharedPointer<SpumKyvoSpectrumCtrl>::create(nullptr, true, true);
}

// Through the text of a document, as a file would have it.
SpectrumPlotParams throughXml(const SpectrumPlotParams& spectrum)
{
    QDomDocument written;
    QDomElement list = written.createElement("SpectrumList");
    written.appendChild(list);
    spectrum.writeXml(list, written);
    QDomDocument read;
    QString message;
    EXPECT_TRUE(read.setContent(written.toString(), &message)) << qPrintable(message);
    SpectrumPlotParams result;
    QDomElement component = read.documentElement().firstChildElement();
    EXPECT_TRUE(result.readXml(component));
    return result;
}

QDomElement parse(QDomDocument& doc, const QString& text)
{
    QString message;
    EXPECT_TRUE(doc.setContent(text, &message)) << qPrintable(message);
    return doc.documentElement();
}

} // namespace

TEST(SpectrumPlotParamsTest, StartsWithTheDefaults)
{
    const SpectrumPlotParams spectrum;
    EXPECT_EQ(spectrum.axis, 0);
    EXPECT_TRUE(spectrum.settings.selected);
    EXPECT_EQ(spectrum.settings.index, 0);
    EXPECT_EQ(spectrum.settings.curveId, -1);
    EXPECT_EQ(spectrum.settings.curveFlag, 0);
    EXPECT_EQ(spectrum.settings.name, "");
    EXPECT_EQ(spectrum.settings.color, "Black");
    EXPECT_EQ(spectrum.settings.shape, 1);
    EXPECT_FALSE(spectrum.settings.enabled);
    EXPECT_TRUE(spectrum.points.isEmpty());
    EXPECT_TRUE(spectrum.origin.isEmpty());
    EXPECT_TRUE(spectrum.control.isNull());
}

TEST(SpectrumPlotParamsTest, AxisValuesAreTheSecondTextsButOnTheExcitationAxis)
{
    SpectrumPlotParams spectrum = makeSpectrum({{"500", "540.5", 1}, {"520", "x", 2}, {"Int1", "7", 3}});
    EXPECT_EQ(listOf(spectrum.axisValues()), (std::vector<double>{540.5, 0, 7}));
    spectrum.axis = 1;
    EXPECT_EQ(listOf(spectrum.axisValues()), (std::vector<double>{500, 520, 0}));
    spectrum.axis = 2;
    EXPECT_EQ(listOf(spectrum.axisValues()), (std::vector<double>{540.5, 0, 7}));
}

TEST(SpectrumPlotParamsTest, AxisValuesDoNotFollowTheLocale)
{
    const testsupport::ForeignLocale locale;
    EXPECT_EQ(listOf(makeSpectrum({{"", "540.5", 0}}).axisValues()), (std::vector<double>{540.5}));
}

TEST(SpectrumPlotParamsTest, AnEmptyRecordGivesEmptyVectors)
{
    const SpectrumPlotParams spectrum;
    EXPECT_EQ(spectrum.axisValues().size(), 0);
    EXPECT_EQ(spectrum.values().size(), 0);
    EXPECT_FALSE(spectrum.hasData());
}

TEST(SpectrumPlotParamsTest, SetValuesWritesInOrder)
{
    SpectrumPlotParams spectrum = makeSpectrum({{"a", "1", 0}, {"a", "2", 0}});
    EXPECT_TRUE(spectrum.setValues(vectorOf({0.25, -3})));
    EXPECT_EQ(listOf(spectrum.values()), (std::vector<double>{0.25, -3}));
    EXPECT_EQ(spectrum.points[1].second, "2");
}

TEST(SpectrumPlotParamsTest, SetValuesOfTheWrongLengthChangesNothing)
{
    const QSharedPointer<SpumKyvoSpectrumCtrl> row = makeRow();
    SpectrumPlotParams spectrum = makeSpectrum({{"a", "1", 0}, {"a", "2", 0}});
    spectrum.attachControl(row, false);
    EXPECT_FALSE(spectrum.setValues(vectorOf({5})));
    EXPECT_FALSE(spectrum.setValues(vectorOf({5, 6, 7})));
    EXPECT_FALSE(spectrum.setValues(XTNT::Vector<double>()));
    EXPECT_EQ(listOf(spectrum.values()), (std::vector<double>{0, 0}));
    EXPECT_FALSE(row->m_pSelectBox->isEnabled());
}

TEST(SpectrumPlotParamsTest, SetValuesEnablesTheRowEvenWithZeros)
{
    const QSharedPointer<SpumKyvoSpectrumCtrl> row = makeRow();
    SpectrumPlotParams spectrum = makeSpectrum({{"a", "1", 0}});
    spectrum.attachControl(row, false);
    ASSERT_FALSE(row->m_pSelectBox->isEnabled());
    EXPECT_TRUE(spectrum.setValues(vectorOf({0})));
    EXPECT_TRUE(row->m_pSelectBox->isEnabled());
    EXPECT_TRUE(row->m_pNameEdit->isEnabled());
}

TEST(SpectrumPlotParamsTest, SetValuesWithoutPointsLeavesTheRowDisabled)
{
    const QSharedPointer<SpumKyvoSpectrumCtrl> row = makeRow();
    SpectrumPlotParams spectrum;
    spectrum.attachControl(row, false);
    EXPECT_TRUE(spectrum.setValues(XTNT::Vector<double>()));
    EXPECT_FALSE(row->m_pSelectBox->isEnabled());
}

TEST(SpectrumPlotParamsTest, SetPairsReplacesThePointsByZeros)
{
    SpectrumPlotParams spectrum = makeSpectrum({{"a", "1", 4}});
    spectrum.setPairs({{"500", "540"}, {"500", "560"}});
    ASSERT_EQ(spectrum.points.size(), 2);
    EXPECT_EQ(spectrum.points[0].first, "500");
    EXPECT_EQ(spectrum.points[0].second, "540");
    EXPECT_EQ(spectrum.points[1].second, "560");
    EXPECT_EQ(listOf(spectrum.values()), (std::vector<double>{0, 0}));
    spectrum.setPairs({});
    EXPECT_TRUE(spectrum.points.isEmpty());
}

TEST(SpectrumPlotParamsTest, HasDataWhenTheNormIsAboveZero)
{
    EXPECT_FALSE(makeSpectrum({{"a", "1", 0}, {"a", "2", -0.0}}).hasData());
    EXPECT_TRUE(makeSpectrum({{"a", "1", 0}, {"a", "2", -1}}).hasData());
    EXPECT_TRUE(makeSpectrum({{"a", "1", 1e-300}}).hasData());
    EXPECT_TRUE(makeSpectrum({{"a", "1", std::numeric_limits<double>::infinity()}}).hasData());
    EXPECT_FALSE(makeSpectrum({{"a", "1", 2}, {"a", "2", notANumber}}).hasData());
}

TEST(SpectrumPlotParamsTest, ZerosHavePointsButNoDataAndADisabledRow)
{
    const QSharedPointer<SpumKyvoSpectrumCtrl> row = makeRow();
    SpectrumPlotParams spectrum = makeSpectrum({{"a", "1", 0}, {"a", "2", 0}});
    spectrum.attachControl(row, false);
    EXPECT_FALSE(spectrum.hasData());
    EXPECT_FALSE(row->m_pSelectBox->isEnabled());
    EXPECT_FALSE(row->m_pNameEdit->isEnabled());
}

TEST(SpectrumPlotParamsTest, AttachingShowsTheSettingsAndEnablesByDataOrForce)
{
    SpectrumPlotParams spectrum = makeSpectrum({{"a", "1", 2}});
    spectrum.settings.name = "Dye";
    spectrum.settings.color = "tomato";
    spectrum.settings.index = 3;
    const QSharedPointer<SpumKyvoSpectrumCtrl> row = makeRow();
    spectrum.attachControl(row, false);
    EXPECT_EQ(row->settings().name, "Dye");
    EXPECT_EQ(row->settings().color, "tomato");
    EXPECT_EQ(row->settings().index, 3);
    EXPECT_TRUE(row->m_pSelectBox->isEnabled());

    SpectrumPlotParams empty;
    const QSharedPointer<SpumKyvoSpectrumCtrl> forced = makeRow();
    empty.attachControl(forced, true);
    EXPECT_TRUE(forced->m_pSelectBox->isEnabled());
}

TEST(SpectrumPlotParamsTest, ReadControlTakesAllSettings)
{
    SpectrumPlotParams spectrum = makeSpectrum({{"a", "1", 2}});
    const QSharedPointer<SpumKyvoSpectrumCtrl> row = makeRow();
    spectrum.attachControl(row, false);
    SpectrumSettings shown;
    shown.selected = false;
    shown.index = 4;
    shown.curveId = 17;
    shown.curveFlag = 2;
    shown.name = "Other";
    shown.color = "cyan";
    shown.shape = 2;
    shown.enabled = true;
    row->setSettings(shown);
    const SpectrumSettings& read = spectrum.readControl();
    EXPECT_EQ(&read, &spectrum.settings);
    EXPECT_FALSE(read.selected);
    EXPECT_EQ(read.index, 4);
    EXPECT_EQ(read.curveId, 17);
    EXPECT_EQ(read.curveFlag, 2);
    EXPECT_EQ(read.name, "Other");
    EXPECT_EQ(read.color, "cyan");
    EXPECT_EQ(read.shape, 2);
    EXPECT_TRUE(read.enabled);
}

TEST(SpectrumPlotParamsTest, ApplySettingsEnablesTheRowByItsData)
{
    SpectrumPlotParams spectrum = makeSpectrum({{"a", "1", 2}});
    const QSharedPointer<SpumKyvoSpectrumCtrl> row = makeRow();
    spectrum.attachControl(row, false);
    SpectrumSettings settings;
    settings.name = "New";
    settings.enabled = false;
    spectrum.applySettings(settings);
    EXPECT_EQ(spectrum.settings.name, "New");
    EXPECT_EQ(row->m_pNameEdit->text(), "New");
    EXPECT_TRUE(row->m_pNameEdit->isEnabled());
    EXPECT_TRUE(row->m_pSelectBox->isEnabled());

    spectrum.points[0].value = 0;
    settings.enabled = true;
    spectrum.applySettings(settings);
    EXPECT_FALSE(row->m_pNameEdit->isEnabled());
    EXPECT_FALSE(row->m_pSelectBox->isEnabled());
}

TEST(SpectrumPlotParamsTest, ARecordOutlivesItsRow)
{
    SpectrumPlotParams spectrum = makeSpectrum({{"a", "1", 2}});
    spectrum.settings.name = "Kept";
    QSharedPointer<SpumKyvoSpectrumCtrl> row = makeRow();
    spectrum.attachControl(row, false);
    row->m_pNameEdit->setText("never read");
    row.reset();
    EXPECT_EQ(spectrum.readControl().name, "Kept");
    EXPECT_TRUE(spectrum.setValues(vectorOf({3})));
    SpectrumSettings settings;
    settings.name = "Stored";
    spectrum.applySettings(settings);
    EXPECT_EQ(spectrum.readControl().name, "Stored");
    EXPECT_TRUE(spectrum.hasData());
}

TEST(SpectrumPlotParamsTest, ARowOutlivesTheWidgetThatItWasBuiltIn)
{
    auto* pWindow = new QWidget;
    const auto row = QSharedPointer<SpumKyvoSpectrumCtrl>::create(pWindow, true, true);
    SpectrumPlotParams spectrum = makeSpectrum({{"a", "1", 2}});
    spectrum.attachControl(row, false);
    delete pWindow;
    spectrum.settings.name = "x";
    spectrum.applySettings(spectrum.settings);
    EXPECT_TRUE(spectrum.setValues(vectorOf({3})));
    spectrum.readControl();
    EXPECT_EQ(spectrum.values()[0], 3.0);
}

TEST(SpectrumPlotParamsTest, AttachingNothingDetaches)
{
    const QSharedPointer<SpumKyvoSpectrumCtrl> row = makeRow();
    SpectrumPlotParams spectrum;
    spectrum.attachControl(row, false);
    spectrum.attachControl(QWeakPointer<SpumKyvoSpectrumCtrl>(), true);
    row->m_pNameEdit->setText("not mine");
    EXPECT_EQ(spectrum.readControl().name, "");
}

TEST(SpectrumPlotParamsTest, CopiesShareOnlyTheRow)
{
    const QSharedPointer<SpumKyvoSpectrumCtrl> row = makeRow();
    SpectrumPlotParams spectrum = makeSpectrum({{"a", "1", 2}});
    spectrum.settings.name = "first";
    spectrum.attachControl(row, false);
    SpectrumPlotParams copy = spectrum;
    copy.points[0].value = 9;
    copy.settings.name = "second";
    copy.origin = "elsewhere";
    EXPECT_EQ(spectrum.points[0].value, 2);
    EXPECT_EQ(spectrum.settings.name, "first");
    EXPECT_EQ(spectrum.origin, "");
    EXPECT_EQ(copy.control.toStrongRef(), row);
}

TEST(SpectrumPlotParamsTest, ValuesAtFollowsTheOrderOfThePairsAndIgnoresCase)
{
    const SpectrumPlotParams spectrum = makeSpectrum({{"500NM", "Open", 1}, {"500nm", "560nm", 2}});
    EXPECT_EQ(listOf(spectrum.valuesAt({{"500nm", "560NM"}, {"500nm", "OPEN"}})), (std::vector<double>{2, 1}));
    EXPECT_TRUE(spectrum.coversPairs({{"500nm", "560NM"}, {"500nm", "OPEN"}}));
}

TEST(SpectrumPlotParamsTest, ValuesAtIsEmptyWhenAPairIsMissing)
{
    const SpectrumPlotParams spectrum = makeSpectrum({{"500", "540", 1}, {"500", "560", 2}});
    EXPECT_EQ(spectrum.valuesAt({{"500", "540"}, {"500", "580"}}).size(), 0);
    EXPECT_FALSE(spectrum.coversPairs({{"500", "540"}, {"500", "580"}}));
    EXPECT_FALSE(spectrum.coversPairs({{"540", "500"}}));
    EXPECT_FALSE(spectrum.coversPairs({{"500", "540 "}}));
}

TEST(SpectrumPlotParamsTest, NoPairsAreCoveredByAnything)
{
    EXPECT_TRUE(SpectrumPlotParams().coversPairs({}));
    EXPECT_EQ(makeSpectrum({{"500", "540", 1}}).valuesAt({}).size(), 0);
}

TEST(SpectrumPlotParamsTest, TheLastOfDuplicatePointsCounts)
{
    const SpectrumPlotParams spectrum = makeSpectrum({{"ex", "540", 1}, {"EX", "540", 5}});
    EXPECT_EQ(listOf(spectrum.valuesAt({{"Ex", "540"}})), (std::vector<double>{5}));
}

TEST(SpectrumPlotParamsTest, ToolTipCountsFromOneAndListsThePairsInLowerCase)
{
    SpectrumPlotParams spectrum = makeSpectrum({{"Int1", "0", 1}, {"500NM", "Open", 2}});
    spectrum.settings.index = 2;
    spectrum.settings.name = "Dye %1";
    spectrum.origin = "Lab";
    const QStringList expected{"Index: 3", "Name: Dye %1", "Origin: Lab", "WavelengthPairs: int1,0;500nm,open;"};
    EXPECT_EQ(spectrum.toolTipLines(), expected);
    EXPECT_EQ(SpectrumPlotParams().toolTipLines().last(), "WavelengthPairs: ");
}

TEST(SpectrumXmlTest, WritesOneComponentWithItsPoints)
{
    SpectrumPlotParams spectrum = makeSpectrum({{"500", "540", 0.1}, {"500", "560", 2}});
    spectrum.settings.index = 7;
    spectrum.settings.name = "Dye";
    spectrum.settings.selected = false;
    spectrum.settings.shape = 2;
    spectrum.origin = "lab";
    QDomDocument doc;
    QDomElement list = doc.createElement("SpectrumList");
    spectrum.writeXml(list, doc);
    const QDomElement component = list.firstChildElement();
    EXPECT_EQ(component.tagName(), "Component7");
    EXPECT_EQ(component.attributes().count(), 7);
    EXPECT_EQ(component.attribute("Version"), "1");
    EXPECT_EQ(component.attribute("Selected"), "0");
    EXPECT_EQ(component.attribute("Name"), "Dye");
    EXPECT_EQ(component.attribute("Color"), "Black");
    EXPECT_EQ(component.attribute("Shape"), "2");
    EXPECT_EQ(component.attribute("Axis"), "Emission");
    EXPECT_EQ(component.attribute("Origin"), "lab");
    const QDomElement point = component.firstChildElement("Spectrum");
    EXPECT_EQ(point.attribute("Col"), "500");
    EXPECT_EQ(point.attribute("Row"), "540");
    EXPECT_EQ(point.attribute("Data"), "0.1");
    EXPECT_EQ(component.childNodes().count(), 2);
    EXPECT_EQ(component.lastChildElement().attribute("Data"), "2");
}

TEST(SpectrumXmlTest, NamesTheAxis)
{
    for (const auto& [axis, text] : {std::pair<int, const char*>{0, "Emission"},
                                     {1, "Excitation"},
                                     {2, "Time"},
                                     {3, "Emission"},
                                     {-1, "Emission"}}) {
        SpectrumPlotParams spectrum;
        spectrum.axis = axis;
        QDomDocument doc;
        QDomElement list = doc.createElement("SpectrumList");
        spectrum.writeXml(list, doc);
        EXPECT_EQ(list.firstChildElement().attribute("Axis"), text) << axis;
    }
}

TEST(SpectrumXmlTest, ReadsTheAxisWithoutRegardToCase)
{
    for (const auto& [text, axis] : {std::pair<const char*, int>{"excitation", 1},
                                     {"EXCITATION", 1},
                                     {"time", 2},
                                     {"Emission", 0},
                                     {"else", 0},
                                     {"", 0}}) {
        QDomDocument doc;
        SpectrumPlotParams spectrum;
        EXPECT_TRUE(
            spectrum.readXml(parse(doc, QString("<Component0 Version=\"1\" Axis=\"%1\"/>").arg(QLatin1String(text)))));
        EXPECT_EQ(spectrum.axis, axis) << text;
    }
}

TEST(SpectrumXmlTest, ShapeSurvivesAndTheCurveDoesNot)
{
    SpectrumPlotParams spectrum;
    spectrum.settings.shape = 2;
    spectrum.settings.curveId = 12;
    spectrum.settings.curveFlag = 3;
    const SpectrumPlotParams read = throughXml(spectrum);
    EXPECT_EQ(read.settings.shape, 2);
    EXPECT_EQ(read.settings.curveId, -1);
    EXPECT_EQ(read.settings.curveFlag, 0);
}

TEST(SpectrumXmlTest, RefusesAForeignTag)
{
    QDomDocument doc;
    SpectrumPlotParams spectrum;
    spectrum.settings.name = "kept";
    EXPECT_FALSE(spectrum.readXml(parse(doc, "<Spectrum0 Version=\"1\" Name=\"x\"/>")));
    EXPECT_EQ(spectrum.settings.name, "kept");
    EXPECT_FALSE(spectrum.readXml(QDomElement()));
}

TEST(SpectrumXmlTest, RefusesAnotherVersion)
{
    for (const char* version : {"", "2", "1.1", "one"}) {
        QDomDocument doc;
        SpectrumPlotParams spectrum;
        EXPECT_FALSE(spectrum.readXml(
            parse(doc, QString("<Component0 Version=\"%1\" Name=\"x\"/>").arg(QLatin1String(version)))));
        EXPECT_EQ(spectrum.settings.name, "");
    }
    QDomDocument doc;
    SpectrumPlotParams spectrum;
    EXPECT_FALSE(spectrum.readXml(parse(doc, "<Component0/>")));
    EXPECT_TRUE(spectrum.readXml(parse(doc, "<Component0 Version=\"1.0\"/>")));
}

TEST(SpectrumXmlTest, RefusesATagWithoutANumber)
{
    for (const char* tag : {"Component", "Component1x", "Component1.5"}) {
        QDomDocument doc;
        SpectrumPlotParams spectrum;
        EXPECT_FALSE(spectrum.readXml(parse(doc, QString("<%1 Version=\"1\"/>").arg(QLatin1String(tag)))));
    }
}

TEST(SpectrumXmlTest, TakesTheNumberBehindTheWordInAnyCase)
{
    QDomDocument doc;
    SpectrumPlotParams spectrum;
    EXPECT_TRUE(spectrum.readXml(parse(doc, "<my_component12 Version=\"1\"/>")));
    EXPECT_EQ(spectrum.settings.index, 12);
}

TEST(SpectrumXmlTest, SelectedIsTrueForAnyNumberButZero)
{
    for (const auto& [text, expected] :
         {std::pair<const char*, bool>{"1", true}, {"-2", true}, {"0", false}, {"true", false}, {"", false}}) {
        QDomDocument doc;
        SpectrumPlotParams spectrum;
        EXPECT_TRUE(spectrum.readXml(
            parse(doc, QString("<Component0 Version=\"1\" Selected=\"%1\"/>").arg(QLatin1String(text)))));
        EXPECT_EQ(spectrum.settings.selected, expected) << text;
    }
}

TEST(SpectrumXmlTest, ReplacesThePointsByTheSpectrumChildrenInTheirOrder)
{
    QDomDocument doc;
    SpectrumPlotParams spectrum = makeSpectrum({{"old", "old", 1}});
    EXPECT_TRUE(
        spectrum.readXml(parse(doc, "<Component0 Version=\"1\"><Spectrum Col=\"b\" Row=\"2\" Data=\"2.5\"/><Other/>"
                                    "text<spectrum Col=\"a\" Row=\"1\" Data=\"bad\"/></Component0>")));
    ASSERT_EQ(spectrum.points.size(), 2);
    EXPECT_EQ(spectrum.points[0].first, "b");
    EXPECT_EQ(spectrum.points[0].second, "2");
    EXPECT_EQ(spectrum.points[0].value, 2.5);
    EXPECT_EQ(spectrum.points[1].first, "a");
    EXPECT_EQ(spectrum.points[1].value, 0);
}

TEST(SpectrumXmlTest, NumbersDoNotFollowTheLocale)
{
    const testsupport::ForeignLocale locale;
    const SpectrumPlotParams read = throughXml(makeSpectrum({{"500", "540.5", 0.125}, {"500", "541", -1234567.5}}));
    EXPECT_EQ(listOf(read.values()), (std::vector<double>{0.125, -1234567.5}));
}

namespace {

// Text of characters that XML can hold, the awkward ones among them.
rc::Gen<QString> xmlText()
{
    const auto character = rc::gen::element<ushort>('a', 'Z', '0', '"', '\'', '&', '<', '>', ' ', ',', ';', '%', '\t',
                                                    0x00e4, 0x03bc, 0x4e2d, 0x00a0);
    return rc::gen::map(rc::gen::container<std::vector<ushort>>(character), [](const std::vector<ushort>& units) {
        return QString::fromUtf16(units.data(), static_cast<int>(units.size()));
    });
}

} // namespace

RC_GTEST_PROP(SpectrumXmlLaw, EveryRecordComesBack, ())
{
    SpectrumPlotParams spectrum;
    spectrum.axis = *rc::gen::inRange(0, 3);
    spectrum.settings.index = *rc::gen::inRange(0, 100);
    spectrum.settings.selected = *rc::gen::arbitrary<bool>();
    spectrum.settings.name = *xmlText();
    spectrum.settings.color = *xmlText();
    spectrum.settings.shape = *rc::gen::inRange(0, 3);
    spectrum.origin = *xmlText();
    const int count = *rc::gen::inRange(0, 8);
    for (int i = 0; i < count; ++i) {
        spectrum.points.append({*xmlText(), *xmlText(), *rc::gen::arbitrary<double>()});
    }
    const SpectrumPlotParams read = throughXml(spectrum);
    RC_ASSERT(read.axis == spectrum.axis);
    RC_ASSERT(read.settings.index == spectrum.settings.index);
    RC_ASSERT(read.settings.selected == spectrum.settings.selected);
    RC_ASSERT(read.settings.name == spectrum.settings.name);
    RC_ASSERT(read.settings.color == spectrum.settings.color);
    RC_ASSERT(read.settings.shape == spectrum.settings.shape);
    RC_ASSERT(read.origin == spectrum.origin);
    RC_ASSERT(read.points.size() == spectrum.points.size());
    // Sixteen digits are kept; reading them back rounds once more, to a double.
    constexpr double digitsKept = 5e-16 + std::numeric_limits<double>::epsilon() / 2;
    for (int i = 0; i < read.points.size(); ++i) {
        RC_ASSERT(read.points[i].first == spectrum.points[i].first);
        RC_ASSERT(read.points[i].second == spectrum.points[i].second);
        RC_ASSERT(std::abs(read.points[i].value - spectrum.points[i].value) <=
                  digitsKept * std::abs(spectrum.points[i].value));
    }
}
