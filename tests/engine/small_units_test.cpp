// SPDX-License-Identifier: GPL-3.0-or-later
// Texts, names, units, the choice of binning and of images, properties.
#include "engine/EngineEnums.h"
#include "engine/imageChoice.h"
#include "engine/probeNames.h"
#include "engine/resultProperties.h"
#include "engine/runTexts.h"
#include "engine/unitLadder.h"

#include "host/orv_types.h"

#include <gtest/gtest.h>

#include <initializer_list>

namespace {

TEST(RunTextsTest, ErrorTextsByCode)
{
    EXPECT_EQ(errorText(1), QString("Wavelength table has a data mismatch!"));
    EXPECT_EQ(errorText(2), QString("Too many components to resolve!"));
    EXPECT_EQ(errorText(3), QString("Incorrect initial guess settings!"));
    EXPECT_EQ(errorText(4), QString("Incorrect constraint settings!"));
    EXPECT_EQ(errorText(5), QString("Invalid data mask or matrix!"));
    EXPECT_EQ(errorText(6), QString("No solution! Please adjust the setup!"));
    EXPECT_EQ(errorText(7), QString("No enough memory! Please reduce the binning or the size of the mask!"));
    for (int nCode : {-1, 0, 8, 1000}) {
        EXPECT_TRUE(errorText(nCode).isEmpty()) << nCode;
    }
}

TEST(RunTextsTest, ModesByKindOfSequence)
{
    const QList<int> all{0, 1, 2, 3};
    EXPECT_EQ(runModesForKind(SEQKIND_LUMINESCENT, 0), all);
    EXPECT_EQ(runModesForKind(SEQKIND_EPI_FLUORESCENT, 0), all);
    EXPECT_EQ(runModesForKind(SEQKIND_TRANSILLUMINATION, 0), all);
    EXPECT_EQ(runModesForKind(SEQKIND_TRANSILLUMINATION, 1), all);
    EXPECT_EQ(runModesForKind(SEQKIND_TRANSILLUMINATION, 2), (QList<int>{2}));
    EXPECT_EQ(runModesForKind(SEQKIND_TEMPORAL, 0), (QList<int>{2, 3}));
    EXPECT_EQ(runModesForKind(SEQKIND_3D_SCENE, 0), QList<int>());
}

TEST(RunTextsTest, ModeFromTheWordInAText)
{
    EXPECT_EQ(runModeFromText("Library"), 0);
    EXPECT_EQ(runModeFromText("Guided unmixing"), 1);
    EXPECT_EQ(runModeFromText("Automatic"), 2);
    EXPECT_EQ(runModeFromText("Manual"), 3);
    EXPECT_EQ(runModeFromText("Automatic or Library"), 0);
    EXPECT_EQ(runModeFromText(QString()), 3);
}

TEST(RunTextsTest, TextsOutsideTheListsAreEmpty)
{
    EXPECT_EQ(unitText(3), QString("Efficiency"));
    EXPECT_TRUE(unitText(4).isEmpty());
    EXPECT_TRUE(axisText(-1).isEmpty());
    EXPECT_TRUE(runModeText(4).isEmpty());
}

TEST(ProbeNamesTest, ShortNamesBecomeThoseOfTheDatabase)
{
    EXPECT_EQ(normalisedProbeNames("AF750, QD800"), (QStringList{"AlexaFluor 750", "QDot 800"}));
}

TEST(ProbeNamesTest, ANameThatSaysQDotGainsASecondOne)
{
    EXPECT_EQ(normalisedProbeNames("QDot 800"), (QStringList{"QDot ot 800"}));
}

TEST(ProbeNamesTest, AlexaFluorInFullStaysAsItIs)
{
    EXPECT_EQ(normalisedProbeNames(" AlexaFluor 680 "), (QStringList{"AlexaFluor 680"}));
}

TEST(ProbeNamesTest, RenamedProbesStandTwice)
{
    EXPECT_EQ(normalisedProbeNames("Ferrimark 750"), (QStringList{"Ferrin-Mark 750", "Ferrin-Mark 750"}));
    EXPECT_EQ(normalisedProbeNames("COX 2"), (QStringList{"Glowmark Pronto COX - 2", "Glowmark Pronto COX - 2"}));
    EXPECT_EQ(normalisedProbeNames("Glowmark Pronto COX - 2"),
              (QStringList{"Glowmark Pronto COX - 2", "Glowmark Pronto COX - 2"}));
}

TEST(ProbeNamesTest, EmptyPartsAreSkippedAndOthersTrimmed)
{
    EXPECT_EQ(normalisedProbeNames(",, ICG ,,Cy5"), (QStringList{"ICG", "Cy5"}));
    EXPECT_EQ(normalisedProbeNames(""), QStringList());
}

TEST(UnitLadderTest, UnitFollowsTheDataAndTheKindOfSequence)
{
    EXPECT_EQ(unitForImage(3, false, false), 3);
    EXPECT_EQ(unitForImage(3, true, false), 3);
    EXPECT_EQ(unitForImage(1, false, false), 1);
    EXPECT_EQ(unitForImage(2, false, true), 1);
    EXPECT_EQ(unitForImage(1, true, false), 2);
    EXPECT_EQ(unitForImage(2, true, true), 2);
    EXPECT_EQ(unitForImage(1, true, true), 3);
    EXPECT_EQ(unitForImage(0, true, true), 3);
}

TEST(UnitLadderTest, EachStepSaysWhatItTries)
{
    const UnitStep fromEfficiency = nextUnit(3);
    EXPECT_TRUE(fromEfficiency.possible);
    EXPECT_EQ(fromEfficiency.unit, 2);
    EXPECT_EQ(fromEfficiency.strMessage, QString("SpumKyvo: Will try the radiance efficiency!"));
    const UnitStep fromRadiantEfficiency = nextUnit(2);
    EXPECT_EQ(fromRadiantEfficiency.unit, 1);
    EXPECT_EQ(fromRadiantEfficiency.strMessage, QString("SpumKyvo: Will try the radiance unit!"));
    const UnitStep fromRadiance = nextUnit(1);
    EXPECT_EQ(fromRadiance.unit, 0);
    EXPECT_EQ(fromRadiance.strMessage, QString("SpumKyvo: Will try the count unit!"));
    EXPECT_FALSE(nextUnit(0).possible);
}

int chosen(std::initializer_list<int> binnings, int nStart = 0)
{
    BinningChoice choice(nStart);
    for (int nBinning : binnings) {
        choice.count(nBinning);
    }
    return choice.binning();
}

TEST(BinningChoiceTest, TheMostCommonWinsAndTheCoarserAtALevelDraw)
{
    EXPECT_EQ(chosen({4, 4, 8, 8}), 8);
    EXPECT_EQ(chosen({8, 8, 4, 4}), 8);
    EXPECT_EQ(chosen({4, 4, 8}), 4);
    EXPECT_EQ(chosen({8, 4, 4}), 4);
    EXPECT_EQ(chosen({2}), 2);
}

TEST(BinningChoiceTest, TheFormerBinningDoesNotOutliveTheFirstImage)
{
    EXPECT_EQ(chosen({4}, 16), 4);
    EXPECT_EQ(chosen({}, 16), 16);
}

TEST(SideAtBinningTest, RoundsDown)
{
    EXPECT_EQ(sideAtBinning(512, 4, 8), 256);
    EXPECT_EQ(sideAtBinning(5, 2, 3), 3);
    EXPECT_EQ(sideAtBinning(3, 1, 4), 0);
    EXPECT_EQ(sideAtBinning(100, 8, 2), 400);
}

ImageRecord record(const QString& strFirst, const QString& strSecond, const QString& strSpot = QString())
{
    ImageRecord r;
    r.excitation = strFirst;
    r.emission = strSecond;
    r.interval = strFirst;
    r.time = strSecond;
    r.spot = strSpot;
    return r;
}

TEST(ImagesOfSelectionTest, RunsSpotAfterSpot)
{
    QMap<QString, ImageRecord> records;
    for (int s = 0; s < 2; ++s) {
        for (int i = 0; i < 3; ++i) {
            records.insert(QString("c%1%2").arg(s).arg(i),
                           record("640", QString::number(700 + i), s == 0 ? "0,0" : "1,0"));
        }
    }
    QVector<QString> list;
    ASSERT_TRUE(imagesOfSelection(records, {{"640", "700"}, {"640", "701"}, {"640", "702"}}, {"0,0", "1,0"},
                                  SEQKIND_TRANSILLUMINATION, list));
    EXPECT_EQ(list, (QVector<QString>{"c00", "c01", "c02", "c10", "c11", "c12"}));
    EXPECT_EQ(list.at(4), QString("c11")); // spot 1, image 1
}

TEST(ImagesOfSelectionTest, FollowsTheOrderOfTheSelection)
{
    const QMap<QString, ImageRecord> records{{"a", record("640", "700")}, {"b", record("640", "720")}};
    QVector<QString> list;
    ASSERT_TRUE(imagesOfSelection(records, {{"640", "720"}, {"640", "700"}}, {}, SEQKIND_EPI_FLUORESCENT, list));
    EXPECT_EQ(list, (QVector<QString>{"b", "a"}));
}

TEST(ImagesOfSelectionTest, TimesAreKnownByIntervalAndTime)
{
    ImageRecord r;
    r.excitation = "640";
    r.emission = "700";
    r.interval = "Int1";
    r.time = "30";
    QVector<QString> list;
    EXPECT_TRUE(imagesOfSelection({{"a", r}}, {{"Int1", "30"}}, {}, SEQKIND_TEMPORAL, list));
    EXPECT_EQ(list, (QVector<QString>{"a"}));
    EXPECT_FALSE(imagesOfSelection({{"a", r}}, {{"640", "700"}}, {}, SEQKIND_TEMPORAL, list));
}

TEST(ImagesOfSelectionTest, OfTwoImagesKnownAlikeTheLaterCounts)
{
    QVector<QString> list;
    ASSERT_TRUE(imagesOfSelection({{"a", record("640", "700")}, {"b", record("640", "700")}}, {{"640", "700"}}, {},
                                  SEQKIND_LUMINESCENT, list));
    EXPECT_EQ(list, (QVector<QString>{"b"}));
}

TEST(ImagesOfSelectionTest, APairWithoutImageFails)
{
    QVector<QString> list;
    EXPECT_FALSE(imagesOfSelection({{"a", record("640", "700")}}, {{"640", "700"}, {"640", "720"}}, {},
                                   SEQKIND_LUMINESCENT, list));
}

TEST(ImagesOfSelectionTest, NothingSelectedGivesAnEmptyList)
{
    QVector<QString> list{"old"};
    EXPECT_TRUE(imagesOfSelection({{"a", record("640", "700")}}, {}, {}, SEQKIND_LUMINESCENT, list));
    EXPECT_TRUE(list.isEmpty());
}

ResultFacts someFacts()
{
    ResultFacts facts;
    facts.useMask = true;
    facts.selectedImages = 12;
    facts.axis = SPECTRUMAXIS_EXCITATION;
    facts.mode = RUNMODE_MANUAL;
    facts.binning = 4;
    facts.width = 240;
    facts.height = 240;
    facts.unit = DISPLAYUNIT_RADIANT_EFFICIENCY;
    facts.appVersion = "9.8.7";
    return facts;
}

TEST(ResultPropertiesTest, CurrentResult)
{
    using Properties = QList<QPair<QString, QString>>;
    EXPECT_EQ(resultProperties(someFacts()), (Properties{{"DataMask", "Yes"},
                                                         {"SelectedImages", "12"},
                                                         {"SpectrumType", "Excitation"},
                                                         {"Method", "Manual"},
                                                         {"AnalysisBinning", "4"},
                                                         {"ImageWidth", "240"},
                                                         {"ImageHeight", "240"},
                                                         {"DataUnit", "Radiant Efficiency"},
                                                         {"SPUM_Ver", "2.0"},
                                                         {"Orvia", "9.8.7"}}));
}

TEST(ResultPropertiesTest, ResultOfTheFirstGeneration)
{
    ResultFacts facts = someFacts();
    facts.current = false;
    facts.useMask = false;
    const QList<QPair<QString, QString>> properties = resultProperties(facts);
    EXPECT_EQ(properties.at(0).second, QString("No"));
    EXPECT_EQ(properties.at(3).second, QString("MCR"));
    EXPECT_EQ(properties.at(8).second, QString("1.0"));
    EXPECT_EQ(properties.at(9).second, QString("Unknown"));
}

TEST(ResultPropertiesTest, OnlyEfficiencyOfTransilluminationGoesByAnotherName)
{
    ResultFacts facts = someFacts();
    facts.unit = DISPLAYUNIT_EFFICIENCY;
    EXPECT_EQ(resultProperties(facts).at(7).second, QString("Efficiency"));
    facts.transillumination = true;
    EXPECT_EQ(resultProperties(facts).at(7).second, QString("NTF Efficiency"));
    facts.unit = DISPLAYUNIT_RADIANT_EFFICIENCY;
    EXPECT_EQ(resultProperties(facts).at(7).second, QString("Radiant Efficiency"));
}

} // namespace
