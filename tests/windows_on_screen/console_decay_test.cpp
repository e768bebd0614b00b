// SPDX-License-Identifier: GPL-3.0-or-later
// The decay controls of the console.
#include "ConsoleFixture.h"

#include "engine/LogCapture.h"
#include "host/CORVDatabase.h"
#include "host/CORVDataset.h"
#include "host/CORVSequenceDataset.h"
#include "host/CPLClickInfo.h"
#include "host/CPLSection.h"
#include "platform/orvapi/ClickInfoKeys.h"
#include "support/ForeignLocale.h"

#include <QLineEdit>

namespace {

// Of exposures half an hour apart, of F-18.
void addExposures(CORVSequenceDataset& sequence, int nImages)
{
    for (int i = 0; i < nImages; ++i) {
        auto* pDataset = new CORVDataset;
        CPLSection click(ClickKeys::kClickNumber);
        click.setValue(ClickKeys::kClickNumber, QString("click-%1").arg(i));
        CPLSection image(ClickKeys::kLuminescentImage);
        image.setValue(ClickKeys::kIsotope, QString("F-18"));
        image.setValue(ClickKeys::kAcquisitionDate, QString("2024-05-06"));
        image.setValue(ClickKeys::kAcquisitionTime,
                       QString("%1:%2:00").arg(10 + i / 2).arg(30 * (i % 2), 2, 10, QLatin1Char('0')));
        image.setValue(ClickKeys::kExposureTime, 1);
        pDataset->clickInfo.addSection(&click);
        pDataset->clickInfo.addSection(&image);
        ASSERT_TRUE(sequence.addDataset(pDataset));
    }
}

class ConsoleDecayTest : public ConsoleTest
{
protected:
    ConsoleDecayTest()
    {
        m_sequence.setSequenceID("decay");
        addExposures(m_sequence, kCubeImages);
        for (int i = 0; i < kCubeImages; ++i) {
            m_pConsole->m_imageNames.append(QString("click-%1").arg(i));
        }
        fillCube(m_cube);
        m_cube.m_rawData = m_cube.m_data.deepCopy();
        m_pConsole->setSequenceID("decay");
    }

    QComboBox& isotope() const { return *m_pConsole->m_pCherenkovIsotopeCombobox; }
    QLineEdit& halfLife() const { return *m_pConsole->m_pCherenkovHalfLifeEditBox; }
    QCheckBox& correction() const { return *m_pConsole->m_pApplyCherenkovDecayCorrectionCkb; }
    double corrected(int nImage) const { return m_cube.m_data[0][nImage] / m_cube.m_rawData[0][nImage]; }

    CORVSequenceDataset m_sequence;
};

TEST_F(ConsoleDecayTest, TheIsotopeOfTheDataIsSelected)
{
    openCube();
    EXPECT_TRUE(m_pConsole->m_pCherenkovGroupBox->isVisible());
    EXPECT_EQ(m_pConsole->m_isotopeNames, CORVDatabase::getRADSourceList());
    EXPECT_EQ(isotope().currentText(), "F-18");
    EXPECT_EQ(m_pConsole->m_strIsotope, "F-18");
    EXPECT_FALSE(halfLife().isEnabled());
    EXPECT_NEAR(halfLife().text().toDouble(), 109.7, 0.2);
    EXPECT_NEAR(m_pConsole->m_dHalfLifeSeconds, 60 * 109.7, 12.0);
    m_pConsole->setSequenceID("no such sequence");
    EXPECT_FALSE(m_pConsole->m_pCherenkovGroupBox->isVisible());
    EXPECT_FALSE(m_pConsole->m_bCherenkovPresent);
}

TEST_F(ConsoleDecayTest, TheCorrectionIsMadeFromTheRawDataAndTakenBack)
{
    openCube();
    m_cube.m_rawData = m_cube.m_data.deepCopy();
    isotope().setCurrentText("Undefined");
    EXPECT_TRUE(halfLife().isEnabled());
    halfLife().setText("30");
    click(&correction());
    for (int i = 0; i < kCubeImages; ++i) {
        EXPECT_NEAR(corrected(i), 1 << i, 0.01);
    }
    EXPECT_TRUE(m_pConsole->m_bDecayApplied);
    EXPECT_FALSE(m_pConsole->m_bDecayOff);
    EXPECT_EQ(m_pConsole->m_dHalfLifeSeconds, 1800.0);
    click(&correction());
    EXPECT_EQ(corrected(3), 1.0);
    EXPECT_FALSE(m_pConsole->m_bDecayApplied);
    EXPECT_TRUE(m_pConsole->m_bDecayOff);
}

TEST_F(ConsoleDecayTest, WhatTheAnalysisCorrectedIsNotCorrectedTwice)
{
    openCube();
    m_cube.m_rawData = m_cube.m_data.deepCopy();
    for (long long i = 0; i < m_cube.m_data.M; ++i) {
        m_cube.m_data[i][1] *= 2.0;
    }
    m_pConsole->setDecayState("Undefined", 1800.0, true);
    EXPECT_NEAR(corrected(1), 2.0, 0.01);
    EXPECT_NEAR(corrected(3), 8.0, 0.01);
    EXPECT_TRUE(correction().isChecked());
    EXPECT_EQ(halfLife().text(), "30");
    // A new cube takes the controls as they are.
    fillCube(m_cube);
    m_cube.m_rawData = m_cube.m_data.deepCopy();
    ASSERT_TRUE(m_pConsole->setImageCube(cubeKeys(), 0, m_cube));
    EXPECT_NEAR(corrected(2), 4.0, 0.01);
    EXPECT_FALSE(m_pConsole->m_bDecayOff);
}

TEST_F(ConsoleDecayTest, OnAndOffTwiceGivesTheRawDataToTheBit)
{
    openCube();
    ASSERT_TRUE(fillWithFractions(m_cube));
    m_cube.m_rawData = m_cube.m_data.deepCopy();
    const XTNT::Matrix<double> raw = m_cube.m_data.deepCopy();
    const auto isRaw = [this, &raw] {
        for (long long i = 0; i < raw.num_rows(); ++i) {
            for (long long j = 0; j < raw.num_cols(); ++j) {
                if (m_cube.m_data[i][j] != raw.rowTable.data[i][j]) {
                    return false;
                }
            }
        }
        return true;
    };
    for (const bool bByTheWizard : {false, true}) {
        if (bByTheWizard) {
            // What the analysis corrected before the console saw it.
            m_pConsole->setDecayState("F-18", 0.0, true);
            ASSERT_TRUE(m_pConsole->setImageCube(cubeKeys(), 0, m_cube));
            ASSERT_FALSE(isRaw());
            click(&correction());
            EXPECT_TRUE(isRaw());
        }
        for (int i = 0; i < 2; ++i) {
            click(&correction());
            EXPECT_FALSE(isRaw());
            click(&correction());
            EXPECT_TRUE(isRaw());
        }
    }
}

TEST_F(ConsoleDecayTest, NumbersHaveADecimalPointInEveryLanguage)
{
    const testsupport::ForeignLocale german;
    SpumKyvoConsoleWnd console; // validators take the language of their making
    auto* pEdit = console.m_pCherenkovHalfLifeEditBox;
    console.m_pCherenkovIsotopeCombobox->setCurrentText("Undefined");
    QTest::keyClicks(pEdit, "109.8");
    EXPECT_EQ(pEdit->text(), "109.8");
    EXPECT_DOUBLE_EQ(console.m_dHalfLifeSeconds, 109.8 * 60.0);
    pEdit->clear();
    QTest::keyClicks(pEdit, "109,8");
    EXPECT_EQ(pEdit->text(), "1098");
    console.m_pCherenkovIsotopeCombobox->setCurrentText("F-18");
    EXPECT_EQ(pEdit->text(), "109.734");
}

TEST_F(ConsoleDecayTest, RegionsFollowTheDataAndOtherSpectraStay)
{
    openCube();
    m_cube.m_rawData = m_cube.m_data.deepCopy();
    const auto pSpectrum = spectrumOf("ICG", "blue", {1.0, 2.0, 3.0, 4.0});
    m_pConsole->setSpectra({pSpectrum.get()});
    click(m_pConsole->m_pAddSpectrum);
    chooseTool(1, "Thin");
    paint(5, 9, 5, 9);
    m_pConsole->setDecayState("Undefined", 1800.0, true);
    EXPECT_NEAR(values(1)[3], 8 * 40.0, 0.1);
    EXPECT_EQ(values(0), (std::vector<double>{1.0, 2.0, 3.0, 4.0}));
    click(&correction());
    EXPECT_EQ(values(1)[3], 40.0);
}

TEST_F(ConsoleDecayTest, ImagesOfTheCubeFollowTheData)
{
    openCube();
    m_cube.m_rawData = m_cube.m_data.deepCopy();
    click(m_pConsole->m_pVideoCheckBox);
    const QImage before = m_pConsole->m_pImageCubeView->picture();
    m_pConsole->setDecayState("Undefined", 1800.0, true);
    EXPECT_NE(m_pConsole->m_pImageCubeView->picture(), before);
    EXPECT_EQ(m_pConsole->m_pImageCubeView->picture(), m_cube.image(0));
}

TEST_F(ConsoleDecayTest, AChangedHalfLifeTakesTheCorrectionBack)
{
    openCube();
    m_cube.m_rawData = m_cube.m_data.deepCopy();
    m_pConsole->setDecayState("Undefined", 1800.0, true);
    halfLife().setFocus();
    halfLife().selectAll();
    QTest::keyClicks(&halfLife(), "45");
    EXPECT_FALSE(correction().isChecked());
    EXPECT_EQ(corrected(3), 1.0);
    EXPECT_EQ(m_pConsole->m_dHalfLifeSeconds, 45 * 60.0);
}

TEST_F(ConsoleDecayTest, AHalfLifeThatIsNoneIsRefused)
{
    openCube();
    isotope().setCurrentText("Undefined");
    for (const char* pText : {"", "abc", "-1", "1e400", "nan", "0"}) {
        halfLife().setText(pText);
        const LogCapture log;
        correction().setChecked(true);
        EXPECT_FALSE(correction().isChecked()) << pText;
        EXPECT_TRUE(log.mentions("Invalid half life time of Isotope Undefined Half Life (m) ")) << pText;
        EXPECT_FALSE(m_pConsole->m_bDecayApplied) << pText;
    }
}

TEST_F(ConsoleDecayTest, FactorsThatCannotBeHadAreTold)
{
    openCube();
    m_cube.m_rawData = m_cube.m_data.deepCopy();
    isotope().setCurrentText("Undefined");
    halfLife().setText("30");
    m_pConsole->m_imageNames[2] = "gone";
    const LogCapture log;
    click(&correction());
    EXPECT_TRUE(log.has("Fail to obtain Decay Factor of Isotope Undefined : Half Life (m) 30 SequenceID decay Image "
                        "Count 4.",
                        3));
    EXPECT_EQ(corrected(3), 1.0);
    EXPECT_FALSE(m_pConsole->m_bDecayApplied);
}

TEST_F(ConsoleDecayTest, WithoutACubeNothingIsCorrected)
{
    openCube();
    isotope().setCurrentText("Undefined");
    halfLife().setText("30");
    m_cube.clear();
    click(&correction());
    m_pConsole->releaseImageCube();
    click(&correction());
    click(&correction());
    EXPECT_FALSE(m_pConsole->m_bDecayApplied);
}

} // namespace
