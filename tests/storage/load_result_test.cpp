// SPDX-License-Identifier: GPL-3.0-or-later
// Loading a result of version 2.
#include "ResultFixture.h"
#include "support/ForeignLocale.h"

#include <QSignalSpy>

namespace {

const QString selectionOf(const QList<KeyPair>& pairs)
{
    QString strText = "<SelectedKeyPairs>";
    for (const KeyPair& pair : pairs) {
        strText += QString("<KeyPair Col=\"%1\" Row=\"%2\"/>").arg(pair.first, pair.second);
    }
    return strText + "</SelectedKeyPairs>";
}

class LoadResultTest : public ResultFixture
{
protected:
    // Lines above notes that are not those of a missing photograph or the like are part of each test.
    bool readElements(const QString& strElements) { return m_second->readResultV2(rootOf(rootText(strElements, "2"))); }
};

class CherenkovResultTest : public LoadResultTest
{
protected:
    CherenkovResultTest() { m_first->m_bCherenkov = m_second->m_bCherenkov = true; }
    QString decayText(const QString& strHalfLife) const
    {
        return "<Cherenkov_Decay_Correction IsotopeName=\"F-18\" HalfLife=\"" + strHalfLife +
               "\" IsDecayCorrectionApplied=\"true\"/>";
    }
};

} // namespace

TEST_F(LoadResultTest, BringsTheEngineBackToTheResult)
{
    m_first.useMask({1, 2, 5, 7, 8, 15});
    m_first.analyse();
    m_first->resultView().setNote("a note");
    m_first->m_scaleRatios[1] = {0.2, 0.7, 0.5};
    ASSERT_TRUE(m_second->loadResult(m_first->resultToXml()));
    EXPECT_EQ(m_log.reports(), "");
    EXPECT_EQ(m_second->resultView().getNote(), QString("a note"));
    EXPECT_EQ(m_second->m_selectedKeyPairs, m_first->m_selectedKeyPairs);
    EXPECT_EQ(m_second->m_maskIndices, m_first->m_maskIndices);
    EXPECT_EQ(m_second->m_bUseMask, 1);
    EXPECT_EQ(m_second->m_properties, m_first->m_properties);
    EXPECT_EQ(m_second->m_nWidth, resultSide);
    ASSERT_EQ(m_second->m_scaleRatios.size(), 2);
    EXPECT_EQ(m_second->m_scaleRatios.at(1).MinRatio, 0.2);
    EXPECT_EQ(m_second->m_scaleRatios.at(1).extra, 1.0);
    ASSERT_EQ(m_second->m_spectrumPlots.size(), 2);
    EXPECT_EQ(m_second->m_spectrumPlots.at(1)->settings.name, QString("Dye 2"));
    ASSERT_EQ(m_second->m_concentrations.num_rows(), 2);
    ASSERT_EQ(m_second->m_concentrations.num_cols(), 6);
    for (long long j = 0; j < 6; ++j) {
        EXPECT_NEAR(m_second->m_concentrations[1][j], m_first->m_concentrations[1][j], 1e-12);
    }
    EXPECT_EQ(m_second->ownResultView().tiles().size(), 3);
}

TEST_F(LoadResultTest, SavedLoadedAndSavedAgainIsTheSameText)
{
    m_first.useMask({0, 3, 9});
    m_first.analyse();
    m_first->resultView().setNote(QString::fromUtf8("caf\u00e9 \"x\" & <y>\nz"));
    const QString strFirst = m_first->resultToXml();
    ASSERT_TRUE(m_second->loadResult(strFirst));
    EXPECT_EQ(withoutMoment(m_second->resultToXml()).toStdString(), withoutMoment(strFirst).toStdString());
}

TEST_F(LoadResultTest, VersionsBelowOnePointOneAreRefused)
{
    for (const char* pVersion : {"1.0", "1", "0.5", "1.09", "", "two", "-3", "nan", "1,5"}) {
        EXPECT_FALSE(loadElements("", pVersion)) << pVersion;
    }
    EXPECT_EQ(m_log.count(notSupportedLine, CORVLOG_ERROR), 9);
    EXPECT_EQ(m_log.count(failedLine, CORVLOG_ERROR), 9);
    EXPECT_TRUE(m_log.reports().find((notSupportedLine + "\n" + failedLine + "\n").toStdString()) == 0);
}

TEST_F(LoadResultTest, VersionsChooseTheReader)
{
    const QString strElements = "<DataIndices Total.Pixels=\"1\"><i Text.Data=\"02000000\"/></DataIndices>"
                                "<DataMask ImageBinning=\"1\" UseMask=\"0\"/>";
    for (const char* pVersion : {"1.1", "1.99", "1.10"}) {
        m_second->m_bUseMask = 0;
        loadElements(strElements, pVersion);
        EXPECT_EQ(m_second->m_bUseMask, 1) << pVersion;
    }
    for (const char* pVersion : {"2", "2.0", "3.5", "1e9"}) {
        m_second->m_bUseMask = 1;
        loadElements(strElements, pVersion);
        EXPECT_EQ(m_second->m_bUseMask, 0) << pVersion;
    }
}

TEST_F(LoadResultTest, WhatIsNoDocumentIsAnUnsupportedVersion)
{
    for (const char* pText : {"", "not a document", "<", "\x01\x02"}) {
        m_second->m_maskIndices = {1, 2};
        EXPECT_FALSE(m_second->loadResult(pText));
        EXPECT_TRUE(m_second->m_maskIndices.empty());
    }
    EXPECT_EQ(m_log.count(notSupportedLine, CORVLOG_ERROR), 4);
    EXPECT_TRUE(m_log.mentions("SpumKyvo: the result file is damaged: "));
}

TEST_F(LoadResultTest, ATextThatBreaksOffIsReadAsFarAsItGoes)
{
    m_first.analyse();
    const QString strText = m_first->resultToXml();
    ASSERT_TRUE(m_second->loadResult(strText.left(strText.indexOf("<ImageControl"))));
    EXPECT_TRUE(m_log.mentions("SpumKyvo: the result file is damaged: "));
    EXPECT_EQ(m_second->m_scaleRatios.size(), 2);
}

TEST_F(LoadResultTest, AVeryDeepDocumentIsRefused)
{
    EXPECT_FALSE(loadElements(QString("<a>").repeated(300000)));
    EXPECT_TRUE(m_log.has(notSupportedLine, CORVLOG_ERROR));
}

TEST_F(LoadResultTest, TheNoteIsTakenOnlyWhenThereIsOne)
{
    m_second->resultView().setNote("of before");
    loadElements("<SeqDataset id=\"other\"/>");
    EXPECT_EQ(m_second->resultView().getNote(), QString("of before"));
    m_second->loadResult("<r Version=\"2\" Note=\"\"><SeqDataset id=\"other\"/></r>");
    EXPECT_EQ(m_second->resultView().getNote(), QString());
    m_second->loadResult("<r Version=\"1.5\" Note=\"old\"/>");
    EXPECT_EQ(m_second->resultView().getNote(), QString());
}

TEST_F(LoadResultTest, TheSequenceMustBeTheSame)
{
    EXPECT_FALSE(loadElements("<SeqDataset id=\"other\"/>"));
    EXPECT_EQ(m_log.reports(), (idMismatchLine + "\n" + failedLine + "\n").toStdString());
    EXPECT_TRUE(readElements("<SeqDataset id=\"TEST-Sequence\"/>"));
    EXPECT_FALSE(readElements("<SeqDataset/>"));
}

TEST_F(LoadResultTest, NamesOfElementsAreFoundInAnyCase)
{
    EXPECT_FALSE(readElements("<seqdataset id=\"other\"/>"));
    EXPECT_TRUE(readElements("<RESULTS><Key value=\"v\"/></RESULTS>"));
    EXPECT_EQ(m_second->m_properties, (QList<QPair<QString, QString>>{{"Key", "v"}}));
}

TEST_F(LoadResultTest, OtherElementsAreSkipped)
{
    EXPECT_TRUE(readElements("<LowPass/><SelectedXYPair/><Future a=\"1\"><b/></Future>text<!-- c --><Results/>"));
}

TEST_F(LoadResultTest, AFileWithoutPairsKeepsTheSelection)
{
    const QList<KeyPair> before = m_second->m_selectedKeyPairs;
    ASSERT_TRUE(loadElements(spectrumListText(2)));
    EXPECT_EQ(m_second->m_selectedKeyPairs, before);
}

TEST_F(LoadResultTest, PairsBecomeTheSelection)
{
    m_second->m_primaryKeys.clear();
    const QList<KeyPair> pairs{{"480", "520"}, {"480", "500"}, {"480", "560"}};
    ASSERT_TRUE(readElements(selectionOf(pairs)));
    EXPECT_EQ(m_second->m_selectedKeyPairs, pairs);
    EXPECT_EQ(m_second->m_primaryKeys, QStringList({"520", "500", "560"}));
    EXPECT_EQ(m_second->m_secondaryKeys, QStringList("480"));
}

TEST_F(LoadResultTest, PairsOfWhichSomeGoAreStoredAndFail)
{
    const QStringList keysBefore = m_second->m_primaryKeys;
    EXPECT_FALSE(readElements(selectionOf({{"480", "500"}, {"480", "520"}, {"480", "Open"}})));
    EXPECT_EQ(m_second->m_selectedKeyPairs, (QList<KeyPair>{{"480", "500"}, {"480", "520"}}));
    EXPECT_EQ(m_second->m_primaryKeys, keysBefore);
    EXPECT_TRUE(m_log.has(selectionLine, CORVLOG_ERROR));
}

TEST_F(LoadResultTest, TooFewPairsFailAndLeaveTheSelection)
{
    const QList<KeyPair> before = m_second->m_selectedKeyPairs;
    EXPECT_FALSE(readElements(selectionOf({{"480", "500"}})));
    EXPECT_FALSE(readElements("<SelectedKeyPairs/>"));
    EXPECT_EQ(m_second->m_selectedKeyPairs, before);
    EXPECT_EQ(m_log.count(selectionLine, CORVLOG_ERROR), 2);
}

TEST_F(LoadResultTest, ASpectrumThatCannotBeReadEndsTheList)
{
    m_second.takeSpectra();
    EXPECT_FALSE(readElements(
        "<SpectrumList><Component0 Version=\"1\" Name=\"ok\"/><Component1 Version=\"2\"/></SpectrumList>"));
    EXPECT_TRUE(m_log.has("SpumKyvo: Cannot load the spectrum list!", CORVLOG_ERROR));
    ASSERT_EQ(m_second->m_spectrumPlots.size(), 1);
    EXPECT_EQ(m_second->m_spectrumPlots.first()->settings.name, QString("ok"));
    EXPECT_FALSE(readElements("<SpectrumList><Other Version=\"1\"/></SpectrumList>"));
}

TEST_F(LoadResultTest, ASecondSpectrumListReplacesTheFirst)
{
    EXPECT_TRUE(readElements(spectrumListText(3) + spectrumListText(2)));
    EXPECT_EQ(m_second->m_spectrumPlots.size(), 2);
}

TEST_F(LoadResultTest, WhatWasReadBeforeAFailureStays)
{
    m_second->m_scaleRatios = {{}, {}, {}};
    m_second->m_roiResults = {{{"k"}, {"v"}, "m"}};
    m_second.takeSpectra();
    EXPECT_FALSE(
        loadElements("<DataMask ImageBinning=\"3\" ImageWidth=\"7\" ImageHeight=\"8\" UseMask=\"1\" Pixels=\"1\">"
                     "<x Text.Data=\"05000000\"/></DataMask><SeqDataset id=\"other\"/><ImageControl ColorMap=\"9\"/>"));
    EXPECT_EQ(m_second->m_nBinning, 3);
    EXPECT_EQ(m_second->m_nWidth, 7);
    EXPECT_EQ(m_second->m_nHeight, 8);
    EXPECT_EQ(m_second->m_maskIndices, std::vector<int>({5}));
    EXPECT_NE(m_second->m_nColorMap, 9);
    EXPECT_TRUE(m_second->m_scaleRatios.isEmpty());
    EXPECT_TRUE(m_second->m_roiResults.isEmpty());
    EXPECT_TRUE(m_second->m_spectrumPlots.isEmpty());
}

TEST_F(LoadResultTest, AMaskOfANewerVersionFails)
{
    EXPECT_FALSE(loadElements("<DataMask Version=\"1.5\" ImageBinning=\"4\"/>"));
    EXPECT_EQ(m_log.reports(),
              ("SpumKyvo: cannot load newer version of data mask.\n" + failedLine + "\n").toStdString());
    EXPECT_NE(m_second->m_nBinning, 4);
    EXPECT_TRUE(readElements("<DataMask ImageBinning=\"4\"/>"));
    EXPECT_EQ(m_second->m_nBinning, 4);
    EXPECT_TRUE(readElements("<DataMask Version=\"0.1\"/>"));
    EXPECT_TRUE(readElements("<DataMask Version=\"1\"/>"));
}

TEST_F(LoadResultTest, AMaskThatIsNotUsedLeavesNone)
{
    m_second.useMask({1, 2});
    ASSERT_TRUE(
        loadElements("<DataMask Version=\"1\" ImageBinning=\"1\" ImageWidth=\"4\" ImageHeight=\"4\" UseMask=\"0\"/>" +
                     spectrumListText(2)));
    EXPECT_EQ(m_second->m_bUseMask, 0);
    EXPECT_TRUE(m_second->m_maskIndices.empty());
    EXPECT_EQ(m_second->m_concentrations.num_cols(), 16);
}

TEST_F(LoadResultTest, TheCountOfPixelsIsTrusted)
{
    ASSERT_TRUE(readElements("<DataMask UseMask=\"5\" Pixels=\"3\"><x Text.Data=\"05000000zz010000\"/></DataMask>"));
    EXPECT_EQ(m_second->m_bUseMask, 1);
    EXPECT_EQ(m_second->m_maskIndices, std::vector<int>({5, 256, 0}));
    ASSERT_TRUE(readElements("<DataMask UseMask=\"1\"><x Text.Data=\"05000000\"/></DataMask>"));
    EXPECT_TRUE(m_second->m_maskIndices.empty());
}

TEST_F(LoadResultTest, AnAbsurdCountOfPixelsFails)
{
    EXPECT_FALSE(loadElements("<DataMask UseMask=\"1\" Pixels=\"1000000000000\"><x Text.Data=\"05\"/></DataMask>"));
    EXPECT_TRUE(
        m_log.has("SpumKyvo: a mask of 1000000000000 pixels is not what the result file can hold!", CORVLOG_ERROR));
    EXPECT_FALSE(loadElements("<DataMask UseMask=\"1\" Pixels=\"-7\"/>"));
    EXPECT_EQ(m_log.count(failedLine, CORVLOG_ERROR), 2);
}

TEST_F(LoadResultTest, AMaskOutsideTheImageShowsNothingAndIsNoFailure)
{
    QSignalSpy cancelled(&*m_second, &CORVSpumKyvo::cancelRun);
    for (const char* pIndex : {"10000000", "FFFFFFFF"}) {
        ASSERT_TRUE(
            loadElements(QString("<DataMask UseMask=\"1\" Pixels=\"1\"><x Text.Data=\"%1\"/></DataMask>").arg(pIndex) +
                         spectrumListText(2)));
    }
    EXPECT_EQ(cancelled.count(), 2);
    EXPECT_EQ(m_log.count("SpumKyvo: unable to create pseudo color image.", CORVLOG_ERROR), 2);
    EXPECT_FALSE(m_log.has(failedLine, CORVLOG_ERROR));
}

TEST_F(LoadResultTest, PairsThatTheSequenceLacksShowNothingAndAreNoFailure)
{
    QSignalSpy cancelled(&*m_second, &CORVSpumKyvo::cancelRun);
    EXPECT_TRUE(loadElements(selectionOf({{"480", "500"}, {"480", "999"}}) + spectrumListText(2)));
    EXPECT_EQ(cancelled.count(), 1);
    EXPECT_TRUE(m_second->ownResultView().tiles().isEmpty());
}

TEST_F(LoadResultTest, RatiosThatAreMissingAreAppended)
{
    ASSERT_TRUE(loadElements(spectrumListText(3)));
    ASSERT_EQ(m_second->m_scaleRatios.size(), 3);
    EXPECT_EQ(m_second->m_scaleRatios.last().MinRatio, 0.1);
    EXPECT_EQ(m_second->m_scaleRatios.last().MaxRatio, 0.9);
    EXPECT_EQ(m_second->m_scaleRatios.last().extra, 1.0);
}

TEST_F(LoadResultTest, RatiosOfAnotherNumberAreAppendedToAndNotFitted)
{
    ASSERT_TRUE(
        loadElements(spectrumListText(2) + "<ImageControl><m MinRatio=\"0\" MaxRatio=\"0.5\"/></ImageControl>"));
    ASSERT_EQ(m_second->m_scaleRatios.size(), 3);
    EXPECT_EQ(m_second->m_scaleRatios.first().MaxRatio, 0.5);
    EXPECT_EQ(m_second->m_scaleRatios.last().MaxRatio, 0.9);
}

TEST_F(LoadResultTest, TheBinningOfTheFileHolds)
{
    ASSERT_TRUE(
        loadElements("<DataMask ImageBinning=\"2\" ImageWidth=\"2\" ImageHeight=\"2\" UseMask=\"1\" Pixels=\"2\">"
                     "<i Text.Data=\"0000000003000000\"/></DataMask>" +
                     spectrumListText(2)));
    EXPECT_FALSE(m_second->m_bAutoBinning);
    EXPECT_EQ(m_second->m_nBinning, 2);
    EXPECT_EQ(m_second->m_nWidth, 2);
    EXPECT_EQ(m_second->m_concentrations.num_cols(), 2);
}

TEST_F(LoadResultTest, TheCubeIsMadeAnew)
{
    m_second.analyse();
    m_second->m_cube.m_data[0][0] = -1.0;
    ASSERT_TRUE(loadElements(spectrumListText(2)));
    EXPECT_GE(m_second->m_cube.m_data[0][0], 0.0);
}

TEST_F(LoadResultTest, PixelsOutOfOrderKeepTheirPlaces)
{
    ASSERT_TRUE(loadElements(
        "<DataMask ImageBinning=\"1\" UseMask=\"1\" Pixels=\"2\"><i Text.Data=\"0F00000002000000\"/></DataMask>" +
        spectrumListText(2)));
    EXPECT_EQ(m_second->m_maskIndices, std::vector<int>({2, 15}));
    EXPECT_NEAR(m_second->m_concentrations[0][0], mapValue(0, 2), 1e-6);
    EXPECT_NEAR(m_second->m_concentrations[0][1], mapValue(0, 15), 1e-6);
}

TEST_F(LoadResultTest, SpectraThatCannotBeFittedFailAtTheImages)
{
    m_second.analyse();
    EXPECT_FALSE(loadElements("<SpectrumList><Component0 Version=\"1\"><Spectrum Col=\"480\" Row=\"500\" Data=\"1\"/>"
                              "</Component0></SpectrumList>"));
    EXPECT_EQ(m_second->m_nError, RUNERROR_INITIAL_GUESS);
    EXPECT_EQ(m_second->m_concentrations.num_rows(), 0);
    EXPECT_TRUE(m_log.has("SpumKyvo: unable to update the unmixed images", CORVLOG_ERROR));
    EXPECT_FALSE(m_log.has(failedLine, CORVLOG_ERROR));
    EXPECT_FALSE(loadElements(""));
    EXPECT_TRUE(m_second->m_scaleRatios.isEmpty());
}

TEST_F(LoadResultTest, ASequenceThatIsGoneShowsNothing)
{
    CORVSpumKyvo engine("no such sequence");
    EXPECT_TRUE(engine.loadResult(rootText(spectrumListText(2), "2")));
    EXPECT_TRUE(m_log.has("SpumKyvo: unable to create pseudo color image.", CORVLOG_ERROR));
}

TEST_F(LoadResultTest, DecayIsPassedOverWithoutAnIsotope)
{
    m_second->m_bHasLoadedDecay = true;
    EXPECT_TRUE(readElements("<Cherenkov_Decay_Correction IsotopeName=\"F-18\" HalfLife=\"2\"/>"));
    EXPECT_FALSE(m_second->m_bHasLoadedDecay);
    EXPECT_EQ(m_second->m_strLoadedIsotope, QString());
}

TEST_F(LoadResultTest, AttributesAreReadInAnyOrder)
{
    m_first.useMask({4, 6, 9});
    m_first.analyse();
    const QString strFirst = m_first->resultToXml();
    // As Qt writes the same document, in an order of its own.
    rootOf(strFirst);
    ASSERT_TRUE(m_second->loadResult(m_document.toString(1)));
    EXPECT_EQ(withoutMoment(m_second->resultToXml()), withoutMoment(strFirst));
}

TEST_F(LoadResultTest, NumbersAreReadAndWrittenInAnyLocale)
{
    m_first.analyse();
    m_first->m_scaleRatios[0] = {0.25, 0.5, 1.0};
    const QString strFirst = withoutMoment(m_first->resultToXml());
    const testsupport::ForeignLocale locale;
    EXPECT_EQ(withoutMoment(m_first->resultToXml()), strFirst);
    EXPECT_TRUE(m_second->loadResult(strFirst));
    EXPECT_EQ(m_second->m_scaleRatios.first().MinRatio, 0.25);
    EXPECT_EQ(withoutMoment(m_second->resultToXml()), strFirst);
}

// Its maps have every pixel; a mask of before without its pixels would put them nowhere.
TEST_F(LoadResultTest, AFileWithoutAMaskHasNoneAfterAMaskedAnalysis)
{
    m_second.useMask({1, 2, 5});
    m_second.analyse();
    ASSERT_TRUE(loadElements(spectrumListText(2)));
    EXPECT_EQ(m_second->m_bUseMask, 0);
    EXPECT_TRUE(m_second->m_maskIndices.empty());
    ASSERT_EQ(m_second->m_concentrations.num_cols(), resultSide * resultSide);
    const auto& layers = m_second->m_unmixedImages;
    ASSERT_GT(layers.size(), 1);
    EXPECT_GT(layers.at(1)->getMax(), layers.at(1)->getMin());
}

TEST_F(CherenkovResultTest, AHalfLifeInMinutesIsShownInSeconds)
{
    ASSERT_TRUE(loadElements(decayText("109.8") + spectrumListText(2)));
    const DecayState state = m_second->resultView().getDecayState();
    EXPECT_EQ(state.isotope, QString("F-18"));
    EXPECT_DOUBLE_EQ(state.halfLifeSeconds, 6588.0);
    EXPECT_TRUE(state.applied);
    EXPECT_EQ(m_second->m_strLoadedIsotope, QString("F-18"));
    EXPECT_EQ(m_second->m_dLoadedHalfLife, 109.8);
    EXPECT_TRUE(m_second->m_bLoadedDecayApplied);
    EXPECT_TRUE(m_second->m_bHasLoadedDecay);
}

TEST_F(CherenkovResultTest, AFileWithoutDecayShowsNoIsotope)
{
    m_second->m_bHasLoadedDecay = true;
    ASSERT_TRUE(loadElements(spectrumListText(2)));
    const DecayState state = m_second->resultView().getDecayState();
    EXPECT_EQ(state.isotope, QString("Undefined"));
    EXPECT_EQ(state.halfLifeSeconds, 599999994.0);
    EXPECT_FALSE(state.applied);
}

// A load sets the controls of the view. What the engine has for the present changes when its user takes them.
TEST_F(CherenkovResultTest, TheDecayComesBackWithTheResultAndIsTakenByTheUser)
{
    m_first.analyse();
    m_first->m_strIsotope = "Cu-64";
    m_first->m_dHalfLifeSec = 45721.44;
    m_first->m_bDecayApplied = true;
    m_second->m_strIsotope = "F-18";
    m_second->m_dHalfLifeSec = 6586.242;
    const QString strFirst = m_first->resultToXml();
    ASSERT_TRUE(m_second->loadResult(strFirst));
    EXPECT_EQ(m_second->m_strIsotope, QString("F-18"));
    EXPECT_EQ(m_second->m_dHalfLifeSec, 6586.242);
    EXPECT_FALSE(m_second->m_bDecayApplied);
    m_second->storeDecayState();
    EXPECT_EQ(withoutMoment(m_second->resultToXml()), withoutMoment(strFirst));
}

TEST_F(CherenkovResultTest, AFileWithoutDecayLeavesThePresentSettings)
{
    m_second->m_strIsotope = "F-18";
    m_second->m_dHalfLifeSec = 6586.242;
    m_second->m_bDecayApplied = true;
    ASSERT_TRUE(loadElements(spectrumListText(2)));
    EXPECT_EQ(m_second->m_strIsotope, QString("F-18"));
    EXPECT_EQ(m_second->m_dHalfLifeSec, 6586.242);
    EXPECT_TRUE(m_second->m_bDecayApplied);
}
