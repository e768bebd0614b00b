// SPDX-License-Identifier: GPL-3.0-or-later
// Loading a result of the first generation of files.
#include "ResultFixture.h"

#include "platform/orvutils/ProcessControl.h"
#include "storage/hexText.h"

#include <QColor>

namespace {

QString hexOf(const std::vector<double>& values)
{
    return hexText::fromDoubles(values.data(), values.size());
}

QString matrixText(const QString& strName, int nRows, int nColumns, const std::vector<double>& values)
{
    return QString("<%1 Total.Rows=\"%2\" Total.Cols=\"%3\"><Data Text.Data=\"%4\"/></%1>")
        .arg(strName)
        .arg(nRows)
        .arg(nColumns)
        .arg(hexOf(values));
}

QString wavelengthsText()
{
    QString strText = "<SelectedWavelengths>";
    for (int j = 0; j < resultImages; ++j) {
        strText += QString("<Pair%1 ex=\"480\" em=\"%2\"/>").arg(j).arg(500 + 20 * j);
    }
    return strText + "</SelectedWavelengths>";
}

QString plotsText(const QStringList& attributes)
{
    QString strText = "<SpectrumPlots>";
    for (const QString& strAttributes : attributes) {
        strText += "<Plot " + strAttributes + "/>";
    }
    return strText + "</SpectrumPlots>";
}

QString twoPlots()
{
    return plotsText({"SpectrumType=\"2\" SpectrumLabel=\"UMX1\"", "SpectrumType=\"2\" SpectrumLabel=\"UMX2\""});
}

class LoadOldResultTest : public ResultFixture
{
protected:
    bool readElements(const QString& strElements)
    {
        return m_second->readResultV1(rootOf(rootText(strElements, "1.5")));
    }
    // Concentrations 1, 2, ... of two components at every pixel.
    static QString concentrationsText()
    {
        std::vector<double> values;
        for (int i = 0; i < 2 * resultSide * resultSide; ++i) {
            values.push_back(i + 1);
        }
        return matrixText("ConcProfiles", 2, resultSide * resultSide, values);
    }
    static QString spectraText() { return matrixText("PureSpectra", 2, 4, {1, 2, 3, 4, 5, 6, 7, 8}); }
};

} // namespace

TEST_F(LoadOldResultTest, AWholeFileIsShownAsStored)
{
    ASSERT_TRUE(loadElements("<SeqDataset id=\"" + m_sequence.id() + "\"/>" + wavelengthsText() +
                                 "<MCRParams Components=\"2\"/>" + twoPlots() + concentrationsText() + spectraText() +
                                 "<Results><Method value=\"stored\"/></Results>",
                             "1.1"));
    EXPECT_EQ(m_log.reports(), "");
    // Not computed again.
    ASSERT_EQ(m_second->m_concentrations.num_rows(), 2);
    EXPECT_EQ(m_second->m_concentrations[1][0], 17.0);
    EXPECT_EQ(m_second->m_spectra[1][3], 8.0);
    EXPECT_EQ(m_second->m_scaleRatios.size(), 2);
    EXPECT_EQ(m_second->ownResultView().tiles().size(), 3);
    EXPECT_EQ(m_second->m_spectrumPlots.at(1)->values()[3], 8.0);
}

TEST_F(LoadOldResultTest, ThePropertiesAreThoseOfAnOldFileWhateverItSays)
{
    loadElements("<Results><Method value=\"Guided\"/><Orvia value=\"9\"/></Results>", "1.5");
    QMap<QString, QString> properties;
    for (const auto& property : qAsConst(m_second->m_properties)) {
        properties.insert(property.first, property.second);
    }
    EXPECT_EQ(properties.value("SPUM_Ver"), QString("1.0"));
    EXPECT_EQ(properties.value("Method"), QString("MCR"));
    EXPECT_EQ(properties.value("Orvia"), QString("Unknown"));
    EXPECT_TRUE(readElements("<Results><Method value=\"Guided\"/></Results>"));
    EXPECT_EQ(m_second->m_properties.first().second, QString("Guided"));
}

TEST_F(LoadOldResultTest, SequenceAndSelectionFailAsInNewFiles)
{
    EXPECT_FALSE(loadElements("<seqdataset id=\"other\"/>", "1.5"));
    EXPECT_EQ(m_log.reports(), (idMismatchLine + "\n" + failedLine + "\n").toStdString());
    EXPECT_TRUE(readElements("<SeqDataset id=\"TEST-sequence\"/>"));
    EXPECT_FALSE(readElements("<SelectedWavelengths><p ex=\"480\" em=\"500\"/></SelectedWavelengths>"));
    EXPECT_FALSE(
        readElements("<SelectedWavelengths><p ex=\"480\" em=\"500\"/><p ex=\"480\" em=\"520\"/><p ex=\"1\" em=\"x\"/>"
                     "</SelectedWavelengths>"));
    EXPECT_EQ(m_log.count(selectionLine, CORVLOG_ERROR), 2);
    EXPECT_TRUE(readElements(wavelengthsText()));
    EXPECT_EQ(m_second->m_selectedKeyPairs.at(1), (KeyPair{"480", "520"}));
    // The elements of the other generation mean nothing.
    EXPECT_TRUE(
        readElements("<SelectedKeyPairs/><SpectrumList><x/></SpectrumList><DataMask Version=\"3\"/><SelectedXYPair/>"));
}

TEST_F(LoadOldResultTest, SettingsOfTheCurveResolutionAreTaken)
{
    ASSERT_TRUE(
        readElements("<MCRParams Units=\"3\" TransMode=\"2\" AutoSorting=\"0\" ForceAF=\"1\" Components=\"4\" "
                     "DownSplRate=\"5\" MaxIterations=\"6\" PCAMode=\"7\" WeightingMode=\"8\" Normalization=\"9\" "
                     "NonNegMode=\"10\" UnimodTol=\"1.25\" DenoisePCA=\"11\"/>"));
    const MCRParams& params = m_second->m_params;
    EXPECT_EQ(m_second->m_nResultUnits, 3);
    EXPECT_TRUE(params.TransMode);
    EXPECT_FALSE(params.AutoSorting);
    EXPECT_TRUE(params.ForceAF);
    EXPECT_EQ(params.Components, 4);
    EXPECT_EQ(params.DownSplRate, 5);
    EXPECT_EQ(params.MaxIterations, 6);
    EXPECT_EQ(params.PCAMode, 7);
    EXPECT_EQ(params.WeightingMode, 8);
    EXPECT_EQ(params.Normalization, 9);
    EXPECT_EQ(params.NonNegMode, 10);
    EXPECT_EQ(params.UnimodTol, 1.25);
    EXPECT_EQ(params.DenoisePCA, 11);
    // The settings with which the last results were made are others.
    EXPECT_EQ(m_second->m_lastParams.Components, 2);
}

TEST_F(LoadOldResultTest, ConstraintsReplaceThoseOfBefore)
{
    m_second->m_params.Constraints = {ComponentConstraint(), ComponentConstraint()};
    ASSERT_TRUE(
        readElements("<Constraints><c SpectrumType=\"1\" InitGuess=\"g\" Unimodality=\"Vertical\" HighPass=\"520\" "
                     "LowPass=\"560\" SolutionMask=\"s\" PureMask=\"p\" Locked=\"1\"/></Constraints>"));
    ASSERT_EQ(m_second->m_params.Constraints.size(), 1);
    const ComponentConstraint constraint = m_second->m_params.Constraints.first();
    EXPECT_EQ(constraint.SpectrumType, 1);
    EXPECT_EQ(constraint.InitGuess, QString("g"));
    EXPECT_EQ(constraint.Unimodality, QString("Vertical"));
    EXPECT_EQ(constraint.HighPass, QString("520"));
    EXPECT_EQ(constraint.LowPass, QString("560"));
    EXPECT_EQ(constraint.SolutionMask, QString("s"));
    EXPECT_EQ(constraint.PureMask, QString("p"));
    EXPECT_TRUE(constraint.Locked);
}

TEST_F(LoadOldResultTest, WhatAConstraintLacksIsEmpty)
{
    ASSERT_TRUE(readElements("<Constraints><c/></Constraints>"));
    const ComponentConstraint constraint = m_second->m_params.Constraints.first();
    EXPECT_EQ(constraint.SpectrumType, 0);
    EXPECT_EQ(constraint.InitGuess, QString());
    EXPECT_EQ(constraint.Unimodality, QString());
    EXPECT_EQ(constraint.HighPass, QString());
    EXPECT_EQ(constraint.LowPass, QString());
    EXPECT_EQ(constraint.SolutionMask, QString());
    EXPECT_EQ(constraint.PureMask, QString());
    EXPECT_FALSE(constraint.Locked);
}

TEST_F(LoadOldResultTest, OnlyResolvedSpectraAreTaken)
{
    m_second->m_eAxis = SPECTRUMAXIS_EXCITATION;
    const QString strRed = QString::number(QColor("red").rgb());
    ASSERT_TRUE(readElements(plotsText({"SpectrumType=\"1\" SpectrumLabel=\"a\"",
                                        "SpectrumType=\"2\" SpectrumLabel=\"b\" LineColor=\"" + strRed + "\"",
                                        "SpectrumType=\"2\" SpectrumLabel=\"c\" LineColor=\"12345\"",
                                        "SpectrumLabel=\"d\"", "SpectrumType=\"2\" SpectrumLabel=\"e\""})));
    ASSERT_EQ(m_second->m_spectrumPlots.size(), 3);
    const QStringList names{"b", "c", "e"};
    // A colour that is not known is that of the child's own place.
    const QStringList colors{"red", "blue", "gold"};
    for (int i = 0; i < 3; ++i) {
        const SpectrumPlotParams* pSpectrum = m_second->m_spectrumPlots.at(i);
        EXPECT_EQ(pSpectrum->settings.index, i);
        EXPECT_EQ(pSpectrum->settings.name, names.at(i));
        EXPECT_EQ(pSpectrum->settings.color, colors.at(i));
        EXPECT_TRUE(pSpectrum->settings.selected);
        EXPECT_EQ(pSpectrum->axis, SPECTRUMAXIS_EXCITATION);
    }
}

TEST_F(LoadOldResultTest, EveryColourOfTheTableIsKnown)
{
    const QStringList names{"lime", "red",    "blue",  "magenta", "gold",   "cyan",
                            "pink", "tomato", "green", "brown",   "silver", "black"};
    QStringList plots;
    for (int i = names.size() - 1; i >= 0; --i) {
        plots += QString("SpectrumType=\"2\" LineColor=\"%1\"").arg(QColor(names.at(i)).rgb());
    }
    // The thirteenth child begins anew.
    plots += "SpectrumType=\"2\" LineColor=\"1\"";
    ASSERT_TRUE(readElements(plotsText(plots)));
    for (int i = 0; i < names.size(); ++i) {
        EXPECT_EQ(m_second->m_spectrumPlots.at(i)->settings.color, names.at(names.size() - 1 - i));
    }
    EXPECT_EQ(m_second->m_spectrumPlots.last()->settings.color, QString("lime"));
}

TEST_F(LoadOldResultTest, TheMaskCountsByItsPresence)
{
    m_second->m_nBinning = 6;
    ASSERT_TRUE(readElements("<DataIndices Total.Pixels=\"2\"><x Text.Data=\"0100000003000000\"/></DataIndices>"));
    EXPECT_EQ(m_second->m_bUseMask, 1);
    EXPECT_EQ(m_second->m_nBinning, 6);
    EXPECT_EQ(m_second->m_maskIndices, std::vector<int>({1, 3}));
    ASSERT_TRUE(readElements("<DataIndices BinningFactor=\"4\"/>"));
    EXPECT_EQ(m_second->m_nBinning, 4);
    EXPECT_TRUE(m_second->m_maskIndices.empty());
    EXPECT_FALSE(readElements("<DataIndices Total.Pixels=\"1000000000000\"/>"));
    EXPECT_TRUE(
        m_log.has("SpumKyvo: a mask of 1000000000000 pixels is not what the result file can hold!", CORVLOG_ERROR));
}

TEST_F(LoadOldResultTest, MatricesAreReadToTheLastBit)
{
    ASSERT_TRUE(readElements(matrixText("ConcProfiles", 2, 3, {0.1, -2.5, 1e300, 4, 5, 6}) +
                             matrixText("PureSpectra", 1, 2, {1.0 / 3.0, 7})));
    ASSERT_EQ(m_second->m_concentrations.num_rows(), 2);
    ASSERT_EQ(m_second->m_concentrations.num_cols(), 3);
    EXPECT_EQ(m_second->m_concentrations[0][0], 0.1);
    EXPECT_EQ(m_second->m_concentrations[0][2], 1e300);
    EXPECT_EQ(m_second->m_concentrations[1][2], 6.0);
    EXPECT_EQ(m_second->m_spectra[0][0], 1.0 / 3.0);
}

TEST_F(LoadOldResultTest, AMatrixOfATextTooShortEndsInZeros)
{
    ASSERT_TRUE(readElements(matrixText("ConcProfiles", 2, 2, {1.0})));
    EXPECT_EQ(m_second->m_concentrations[0][0], 1.0);
    EXPECT_EQ(m_second->m_concentrations[1][1], 0.0);
    ASSERT_TRUE(readElements("<PureSpectra/>"));
    EXPECT_TRUE(m_second->m_spectra.empty());
}

TEST_F(LoadOldResultTest, AMatrixOfAbsurdSizeFails)
{
    const QStringList sizes{"Total.Rows=\"-1\" Total.Cols=\"2\"",
                            "Total.Rows=\"2\" Total.Cols=\"-1\"",
                            "Total.Rows=\"1000000\" Total.Cols=\"1000000\"",
                            "Total.Rows=\"1000000000000\"",
                            "Total.Rows=\"9223372036854775807\" Total.Cols=\"9223372036854775807\"",
                            "Total.Rows=\"-2\" Total.Cols=\"-2\""};
    for (const QString& strSize : sizes) {
        EXPECT_FALSE(readElements("<ConcProfiles " + strSize + "/>")) << strSize.toStdString();
    }
    EXPECT_TRUE(
        m_log.has("SpumKyvo: a matrix of 1000000 x 1000000 is not what the result file can hold!", CORVLOG_ERROR));
    EXPECT_EQ(m_second->m_concentrations.num_rows(), 0);
}

TEST_F(LoadOldResultTest, RatiosThatAreMissingAreThoseOfTheComponents)
{
    ASSERT_TRUE(readElements("<MCRParams Components=\"3\"/>"));
    EXPECT_EQ(m_second->m_scaleRatios.size(), 3);
    ASSERT_TRUE(readElements("<MCRParams Components=\"3\"/><ImageControl ColorMap=\"2\" Reverse=\"0\" Logscale=\"1\">"
                             "<m MinRatio=\"0.5\" MaxRatio=\"0.6\"/></ImageControl>"));
    ASSERT_EQ(m_second->m_scaleRatios.size(), 1);
    EXPECT_EQ(m_second->m_scaleRatios.first().MinRatio, 0.5);
    EXPECT_EQ(m_second->m_nColorMap, 2);
    EXPECT_FALSE(m_second->m_bReverse);
    EXPECT_TRUE(m_second->m_bLogScale);
    ASSERT_TRUE(readElements("<MCRParams Components=\"-5\"/>"));
    EXPECT_TRUE(m_second->m_scaleRatios.isEmpty());
    ASSERT_TRUE(readElements("<MCRParams Components=\"2147483647\"/>"));
    EXPECT_GE(m_second->m_scaleRatios.size(), 1000);
}

TEST_F(LoadOldResultTest, SpectraTakeTheirValuesFromTheMatrix)
{
    // The elements may come in any order: the values are set at the end.
    ASSERT_TRUE(readElements(spectraText() + twoPlots() + wavelengthsText()));
    ASSERT_EQ(m_second->m_spectrumPlots.size(), 2);
    const SpectrumPlotParams* pSecond = m_second->m_spectrumPlots.at(1);
    ASSERT_EQ(pSecond->points.size(), 4);
    EXPECT_EQ(pSecond->points.at(2).first, QString("480"));
    EXPECT_EQ(pSecond->points.at(2).second, QString("540"));
    EXPECT_EQ(pSecond->points.at(2).value, 7.0);
}

TEST_F(LoadOldResultTest, RowsOfAnotherLengthLeaveZeros)
{
    ASSERT_TRUE(readElements(wavelengthsText() + twoPlots() + matrixText("PureSpectra", 1, 3, {1, 2, 3})));
    for (const SpectrumPlotParams* pSpectrum : qAsConst(m_second->m_spectrumPlots)) {
        ASSERT_EQ(pSpectrum->points.size(), 4);
        EXPECT_FALSE(pSpectrum->hasData());
    }
}

TEST_F(LoadOldResultTest, DecayIsNeitherReadNorForgotten)
{
    m_second->m_bCherenkov = true;
    m_second->m_bHasLoadedDecay = true;
    m_second->m_strLoadedIsotope = "Cu-64";
    EXPECT_TRUE(readElements("<Cherenkov_Decay_Correction IsotopeName=\"F-18\"/>"));
    EXPECT_TRUE(m_second->m_bHasLoadedDecay);
    EXPECT_EQ(m_second->m_strLoadedIsotope, QString("Cu-64"));
}

TEST_F(LoadOldResultTest, RegionsAreReadAsInNewFiles)
{
    ASSERT_TRUE(readElements("<ROIData><ROI1Name ConcentrationMap=\"2\" value=\"v\"/></ROIData>"));
    ASSERT_EQ(m_second->m_roiResults.size(), 1);
    EXPECT_EQ(m_second->m_roiResults.first().keys, QStringList("ROI1Name"));
    EXPECT_EQ(m_second->m_roiResults.first().concentrationMap, QString("2"));
}

TEST_F(LoadOldResultTest, TwoElementsTellTheirProgress)
{
    std::vector<orv::ProcessState> states;
    const int nObserver = orv::addProcessObserver([&](const orv::ProcessState& state) { states.push_back(state); });
    EXPECT_TRUE(readElements("<Results/><MCRParams/><Other/>" + spectraText()));
    orv::removeProcessObserver(nObserver);
    ASSERT_EQ(states.size(), 2U);
    EXPECT_EQ(states[0].m_strMessage, QString("Loading Spectral Unmixing Results: Loading MCR params..."));
    EXPECT_EQ(states[0].m_nStep, 2);
    EXPECT_EQ(states[0].m_nSteps, 5);
    EXPECT_EQ(states[1].m_strMessage, QString("Loading Spectral Unmixing Results: Loading Spectral Profile..."));
    EXPECT_EQ(states[1].m_nStep, 6);
    EXPECT_EQ(states[1].m_nSteps, 6);
}

TEST_F(LoadOldResultTest, MatricesThatDoNotFitTheSequenceAreNotShown)
{
    EXPECT_FALSE(loadElements(wavelengthsText() + "<MCRParams Components=\"2\"/>" + twoPlots() +
                                  matrixText("ConcProfiles", 2, 3, {1, 2, 3, 4, 5, 6}),
                              "1.5"));
    EXPECT_TRUE(m_log.has("SpumKyvo: unable to update the unmixed images", CORVLOG_ERROR));
}

TEST_F(LoadOldResultTest, ALoadedOldResultIsSavedAsANewOne)
{
    ASSERT_TRUE(loadElements(wavelengthsText() + "<MCRParams Components=\"2\"/>" + twoPlots() + concentrationsText() +
                                 spectraText(),
                             "1.1"));
    const QString strNew = m_second->resultToXml();
    EXPECT_TRUE(strNew.contains(" Version=\"2\" "));
    EXPECT_TRUE(strNew.contains("<SPUM_Ver value=\"1.0\"/>"));
    EXPECT_FALSE(strNew.contains("ConcProfiles"));
}
