// SPDX-License-Identifier: GPL-3.0-or-later
// The correction for decay in the wizard of a sequence with Cherenkov light.
#include "windows_on_screen/WizardFixture.h"

#include "engine/LogCapture.h"
#include "support/ForeignLocale.h"

#include "host/CORVDataset.h"
#include "host/CORVSequenceDataset.h"
#include "host/CPLClickInfo.h"
#include "host/CPLSection.h"
#include "platform/orvapi/ClickInfoKeys.h"

#include <QSignalSpy>

namespace {

class WizardDecayTest : public WizardTest
{
protected:
    // A sequence whose images name the isotope.
    void openFor(const QString& strIsotope)
    {
        m_sequence.setSequenceID("decay");
        auto* pDataset = new CORVDataset;
        CPLSection section(ClickKeys::kLuminescentImage);
        section.setValue(ClickKeys::kIsotope, strIsotope);
        pDataset->clickInfo.addSection(&section);
        m_sequence.addDataset(pDataset);
        m_wizard.setSequenceID("decay");
        open(m_photo, 0);
    }
    void chooseUndefined() { m_wizard.m_pCherenkovIsotopeCombobox->setCurrentText("Undefined"); }
    void type(const QString& strText)
    {
        m_wizard.m_pCherenkovHalfLifeEditBox->setFocus();
        m_wizard.m_pCherenkovHalfLifeEditBox->selectAll();
        QTest::keyClick(m_wizard.m_pCherenkovHalfLifeEditBox, Qt::Key_Delete);
        QTest::keyClicks(m_wizard.m_pCherenkovHalfLifeEditBox, strText);
    }
    QString halfLife() const { return m_wizard.m_pCherenkovHalfLifeEditBox->text(); }
    bool isDecayChecked() const { return m_wizard.m_pApplyCherenkovDecayCorrectionCkb->isChecked(); }
    void clickDecay() { QTest::keyClick(m_wizard.m_pApplyCherenkovDecayCorrectionCkb, Qt::Key_Space); }

    CORVSequenceDataset m_sequence;
};

TEST_F(WizardDecayTest, OtherSequencesHaveNoControlsOfIt)
{
    openFor("nothing that shines");
    EXPECT_FALSE(m_wizard.m_bCherenkovPresent);
    EXPECT_FALSE(m_wizard.m_pCherenkovGroupBox->isVisible());
}

TEST_F(WizardDecayTest, TheIsotopeOfTheSequenceIsSelectedWithItsHalfLife)
{
    openFor("F-18");
    EXPECT_TRUE(m_wizard.m_pCherenkovGroupBox->isVisible());
    EXPECT_EQ(m_wizard.m_pCherenkovIsotopeCombobox->currentText(), "F-18");
    EXPECT_EQ(m_wizard.m_strIsotope, "F-18");
    EXPECT_EQ(halfLife(), "109.734");
    EXPECT_FALSE(m_wizard.m_pCherenkovHalfLifeEditBox->isEnabled());
    EXPECT_FALSE(isDecayChecked());
    clickDecay();
    EXPECT_TRUE(m_wizard.m_bApplyDecayCorrection);
    EXPECT_DOUBLE_EQ(m_wizard.m_dHalfLifeSeconds, 109.734 * 60.0);
}

TEST_F(WizardDecayTest, AnotherIsotopeUnchecksTheCorrection)
{
    openFor("F-18");
    clickDecay();
    ASSERT_TRUE(m_wizard.m_bApplyDecayCorrection);
    m_wizard.m_pCherenkovIsotopeCombobox->setFocus();
    QTest::keyClick(m_wizard.m_pCherenkovIsotopeCombobox, Qt::Key_Down);
    EXPECT_NE(m_wizard.m_strIsotope, "F-18");
    EXPECT_FALSE(isDecayChecked());
    EXPECT_FALSE(m_wizard.m_bApplyDecayCorrection);
}

TEST_F(WizardDecayTest, TypingAHalfLifeUnchecksTheCorrection)
{
    openFor("F-18");
    chooseUndefined();
    EXPECT_TRUE(m_wizard.m_pCherenkovHalfLifeEditBox->isEnabled());
    type("20");
    clickDecay();
    ASSERT_TRUE(isDecayChecked());
    EXPECT_EQ(m_wizard.m_dHalfLifeSeconds, 1200.0);
    QTest::keyClick(m_wizard.m_pCherenkovHalfLifeEditBox, Qt::Key_5);
    EXPECT_FALSE(isDecayChecked());
    EXPECT_FALSE(m_wizard.m_bApplyDecayCorrection);
}

TEST_F(WizardDecayTest, AnEmptyHalfLifeLeavesTheCorrectionOffAndIsTold)
{
    openFor("F-18");
    chooseUndefined();
    type("");
    LogCapture log;
    clickDecay();
    EXPECT_FALSE(isDecayChecked());
    EXPECT_FALSE(m_wizard.m_bApplyDecayCorrection);
    EXPECT_TRUE(log.has("Invalid half life time of Isotope Undefined Half Life (m) 0 SequenceID decay.", 3))
        << log.reports();
}

// Nothing but a plain number can be typed; what gets in otherwise is refused when it is to be applied.
TEST_F(WizardDecayTest, OddTextsAreNoHalfLife)
{
    openFor("F-18");
    chooseUndefined();
    const QList<QPair<QString, QString>> typed{{"abc", ""},        {"-1", "1"},           {"nan", ""},
                                               {"1e400", "1e400"}, {"1,234.5", "1234.5"}, {"12.345", "12.34"}};
    for (const auto& pair : typed) {
        type(pair.first);
        EXPECT_EQ(halfLife(), pair.second) << qPrintable(pair.first);
    }
    for (const char* odd : {"-1", "nan", "inf", "1e400", "letters", "0"}) {
        LogCapture log;
        m_wizard.m_pCherenkovHalfLifeEditBox->setText(odd);
        clickDecay();
        EXPECT_FALSE(isDecayChecked()) << odd;
        EXPECT_FALSE(m_wizard.m_bApplyDecayCorrection) << odd;
        EXPECT_TRUE(log.mentions("Invalid half life time of Isotope")) << odd;
    }
}

TEST_F(WizardDecayTest, NumbersHaveADecimalPointInEveryLanguage)
{
    const testsupport::ForeignLocale german;
    SpUnmixWizardWnd wizard; // validators take the language of their making
    auto* pEdit = wizard.m_pCherenkovHalfLifeEditBox;
    wizard.m_pCherenkovIsotopeCombobox->setCurrentText("Undefined");
    QTest::keyClicks(pEdit, "109.8");
    EXPECT_EQ(pEdit->text(), "109.8");
    wizard.m_pApplyCherenkovDecayCorrectionCkb->setChecked(true);
    EXPECT_DOUBLE_EQ(wizard.m_dHalfLifeSeconds, 109.8 * 60.0);
    pEdit->clear();
    QTest::keyClicks(pEdit, "109,8");
    EXPECT_EQ(pEdit->text(), "1098");
    wizard.m_pCherenkovIsotopeCombobox->setCurrentText("F-18");
    EXPECT_EQ(pEdit->text(), "109.734");
}

class WizardEnterTest : public WizardDecayTest, public ::testing::WithParamInterface<Qt::Key>
{
};

TEST_P(WizardEnterTest, EndsAnEntryAndNotTheWizard)
{
    QSignalSpy finished(&m_wizard, &QDialog::finished);
    openFor("F-18");
    chooseUndefined();
    type("30");
    ASSERT_TRUE(finish().isEnabled());
    for (QWidget* pWidget : {static_cast<QWidget*>(m_wizard.m_pCherenkovHalfLifeEditBox),
                             static_cast<QWidget*>(m_wizard.m_pThresholdSpinBox),
                             static_cast<QWidget*>(m_wizard.m_pProbeTable), static_cast<QWidget*>(row(0))}) {
        pWidget->setFocus();
        QTest::keyClick(pWidget, GetParam());
        EXPECT_TRUE(m_wizard.isVisible()) << qPrintable(pWidget->objectName());
    }
    EXPECT_EQ(finished.size(), 0);
    finish().setFocus();
    QTest::keyClick(&finish(), GetParam());
    EXPECT_EQ(finished.size(), 1);
}

INSTANTIATE_TEST_SUITE_P(Keys, WizardEnterTest, ::testing::Values(Qt::Key_Return, Qt::Key_Enter));

} // namespace
