// SPDX-License-Identifier: GPL-3.0-or-later
// The components of the wizard: which it starts with, how many may be resolved, and when it can be finished.
#include "windows_on_screen/WizardFixture.h"

#include "host/CORVSequenceDataset.h"
#include "host/CORVTreeMenuComboBox.h"
#include "windows/probeOffer.h"

#include <QAccessible>
#include <QScrollBar>
#include <QSignalSpy>
#include <QWheelEvent>

#include <vector>

namespace {

class WizardComponentsTest : public WizardTest
{
protected:
    void click(QWidget* pWidget) { QTest::mouseClick(pWidget, Qt::LeftButton); }
    void toggle(QCheckBox* pBox) { QTest::keyClick(pBox, Qt::Key_Space); }
    void add(int nTimes = 1)
    {
        for (int i = 0; i < nTimes; ++i) {
            click(m_wizard.m_pAddProbeTB);
        }
    }
    int rows() const { return m_wizard.m_pProbeTable->rowCount(); }
    QString offered(int nIndex) const { return m_wizard.m_probeNames.value(nIndex); }
};

TEST_F(WizardComponentsTest, ANewWizardHasOneRowOfAFluorescentSequence)
{
    EXPECT_EQ(m_wizard.m_nAnalysisType, 1);
    EXPECT_EQ(rows(), 1);
    EXPECT_EQ(m_wizard.getMaskImage(), nullptr);
    EXPECT_EQ(m_wizard.windowTitle(), "Spectral Unmixing Wizard");
    EXPECT_EQ(m_wizard.size(), QSize(889, 735));
    EXPECT_EQ(m_wizard.minimumSize(), QSize(93, 43));
    EXPECT_EQ(m_wizard.m_pToolbarFrame->objectName(), "UnmixWizardToolbar");
    EXPECT_EQ(m_wizard.m_pThresholdSlider->maximum(), 99);
    EXPECT_EQ(m_wizard.m_pThresholdSpinBox->maximum(), 99);
}

TEST_F(WizardComponentsTest, AFluorescentSequenceWithOneRowIsComplete)
{
    open(m_photo);
    EXPECT_EQ(rows(), 1);
    EXPECT_EQ(number(), 2);
    EXPECT_EQ(warning(), "");
    EXPECT_TRUE(finish().isEnabled());
    EXPECT_EQ(m_wizard.getComponentNames(), (QStringList{"TissueAF", "Unknown"}));
}

TEST_F(WizardComponentsTest, BackgroundSignalsCountAsComponents)
{
    open(m_photo);
    toggle(m_wizard.m_pFoodAFCB);
    EXPECT_EQ(number(), 3);
    EXPECT_EQ(m_wizard.getComponentNames(), (QStringList{"TissueAF", "Food", "Unknown"}));
    toggle(m_wizard.m_pTissueAFCB);
    toggle(m_wizard.m_pFoodAFCB);
    EXPECT_EQ(number(), 1);
    EXPECT_EQ(warning(), "Please select 2-6 components to unmix!");
    EXPECT_FALSE(finish().isEnabled());
    toggle(m_wizard.m_pTissueAFCB);
    EXPECT_EQ(warning(), "");
    EXPECT_TRUE(finish().isEnabled());
}

TEST_F(WizardComponentsTest, OneImageCanNeverBeFinished)
{
    open(m_photo, 1, 1);
    EXPECT_EQ(warning(), "Please select 2-1 components to unmix!");
    EXPECT_FALSE(finish().isEnabled());
    EXPECT_FALSE(m_wizard.m_pAddProbeTB->isEnabled());
    toggle(m_wizard.m_pTissueAFCB);
    EXPECT_EQ(number(), 1);
    EXPECT_FALSE(finish().isEnabled());
    EXPECT_EQ(warning(), "Please select 2-1 components to unmix!");
}

TEST_F(WizardComponentsTest, TwoImagesTakeTwoComponents)
{
    open(m_photo, 1, 2);
    EXPECT_TRUE(finish().isEnabled());
    EXPECT_FALSE(m_wizard.m_pAddProbeTB->isEnabled());
    toggle(m_wizard.m_pFoodAFCB);
    EXPECT_EQ(warning(), "Please select 2 components to unmix!");
    EXPECT_FALSE(finish().isEnabled());
}

TEST_F(WizardComponentsTest, SevenImagesTakeSixComponentsAndNoMore)
{
    open(m_photo, 1, 7);
    add(4);
    EXPECT_EQ(number(), 6);
    EXPECT_EQ(warning(), "");
    EXPECT_TRUE(finish().isEnabled());
    EXPECT_FALSE(m_wizard.m_pAddProbeTB->isEnabled());
    toggle(m_wizard.m_pFoodAFCB);
    EXPECT_EQ(number(), 7);
    EXPECT_EQ(warning(), "Please select 2-6 components to unmix!");
    EXPECT_FALSE(finish().isEnabled());
    toggle(m_wizard.m_pFoodAFCB);
    click(m_wizard.m_pRemoveProbeTB);
    EXPECT_EQ(number(), 5);
    EXPECT_TRUE(m_wizard.m_pAddProbeTB->isEnabled());
}

TEST_F(WizardComponentsTest, AllRowsCanBeRemoved)
{
    open(m_photo);
    click(m_wizard.m_pRemoveProbeTB);
    EXPECT_EQ(rows(), 0);
    EXPECT_EQ(m_wizard.m_pLastProbeCombo, nullptr);
    EXPECT_FALSE(m_wizard.m_pRemoveProbeTB->isEnabled());
    EXPECT_TRUE(m_wizard.m_pAddProbeTB->isEnabled());
    EXPECT_FALSE(finish().isEnabled());
    add();
    EXPECT_EQ(m_wizard.m_pLastProbeCombo, row(0));
    EXPECT_TRUE(finish().isEnabled());
}

TEST_F(WizardComponentsTest, TheRowWithTheFocusIsTheOneThatIsRemoved)
{
    open(m_photo);
    add(2);
    row(0)->setCurrentIndex(1);
    row(1)->setCurrentIndex(2);
    row(2)->setCurrentIndex(3);
    row(1)->setFocus();
    QTest::keyClick(row(1), Qt::Key_Delete);
    ASSERT_EQ(rows(), 2);
    EXPECT_EQ(row(0)->currentIndex(), 1);
    EXPECT_EQ(row(1)->currentIndex(), 3);
    EXPECT_EQ(m_wizard.m_pProbeTable->verticalHeaderItem(1)->text(), "2");
    QTest::keyClick(m_wizard.focusWidget(), Qt::Key_Insert);
    EXPECT_EQ(rows(), 3);
}

TEST_F(WizardComponentsTest, InsAddsNoMoreThanTheButton)
{
    open(m_photo, 1, 3);
    m_wizard.m_pProbeTable->setFocus();
    for (int i = 0; i < 5; ++i) {
        QTest::keyClick(m_wizard.m_pProbeTable, Qt::Key_Insert);
    }
    EXPECT_EQ(number(), 3);
}

TEST_F(WizardComponentsTest, TheTabKeyGoesThroughTheRows)
{
    open(m_photo);
    add(2);
    m_wizard.m_pProbeTable->setFocus();
    for (int nRow = 0; nRow < 3; ++nRow) {
        QTest::keyClick(m_wizard.focusWidget(), Qt::Key_Tab);
        EXPECT_EQ(m_wizard.focusWidget(), row(nRow));
        EXPECT_EQ(m_wizard.m_pProbeTable->currentRow(), nRow);
        EXPECT_EQ(row(nRow)->accessibleName(), QString("Component %1").arg(nRow + 1));
    }
    QTest::keyClick(m_wizard.focusWidget(), Qt::Key_Tab);
    EXPECT_EQ(m_wizard.focusWidget(), m_wizard.m_pAddProbeTB);
}

TEST_F(WizardComponentsTest, TheTabKeyGoesThroughThePageAsItIsSeen)
{
    open(m_photo);
    const std::vector<const QWidget*> expected{m_wizard.m_pPhotoRB,
                                               m_wizard.m_pThresholdSlider,
                                               m_wizard.m_pThresholdSpinBox,
                                               m_wizard.m_pSubjectCB,
                                               m_wizard.m_pTissueAFCB,
                                               m_wizard.m_pFoodAFCB,
                                               m_wizard.m_pProbeTable,
                                               row(0),
                                               m_wizard.m_pAddProbeTB,
                                               m_wizard.m_pRemoveProbeTB,
                                               m_wizard.m_pPCABtn,
                                               &finish(),
                                               m_wizard.button(QWizard::CancelButton),
                                               m_wizard.m_pImageView};
    m_wizard.m_pImageView->setFocus();
    for (const QWidget* pNext : expected) {
        QTest::keyClick(m_wizard.focusWidget(), Qt::Key_Tab);
        EXPECT_EQ(m_wizard.focusWidget(), pNext)
            << qPrintable(m_wizard.focusWidget()->objectName()) << " for " << qPrintable(pNext->objectName());
    }
}

TEST_F(WizardComponentsTest, TheWheelOverARowWithoutTheFocusChoosesNothing)
{
    open(m_photo);
    m_wizard.m_pSubjectCB->setFocus();
    row(0)->setCurrentIndex(3);
    QWheelEvent wheel(QPointF(5, 5), row(0)->mapToGlobal(QPoint(5, 5)), QPoint(), QPoint(0, -120), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(row(0), &wheel);
    EXPECT_EQ(row(0)->currentIndex(), 3);
}

TEST_F(WizardComponentsTest, ATemporalSequenceStartsWithTwoRows)
{
    open(m_photo, 3, 12);
    EXPECT_EQ(rows(), 2);
    EXPECT_EQ(number(), 2);
    EXPECT_TRUE(finish().isEnabled());
    EXPECT_FALSE(m_wizard.m_pBKGGB->isVisible());
    EXPECT_FALSE(m_wizard.m_pTissueAFCB->isChecked());
    EXPECT_FALSE(m_wizard.isUseConstraints());
    EXPECT_EQ(m_wizard.m_pProbeInfoGB->title(), "Kinectics Information");
    EXPECT_EQ(m_wizard.m_pDataPointInfo->text(), "12 time points selected");
    EXPECT_TRUE(m_wizard.m_pKYVOTip->isVisible());
    EXPECT_FALSE(m_wizard.m_pSPUMTip->isVisible());
    click(m_wizard.m_pRemoveProbeTB);
    EXPECT_EQ(rows(), 1);
    EXPECT_FALSE(finish().isEnabled());
}

TEST_F(WizardComponentsTest, ALuminescentSequenceHasNoFood)
{
    open(m_photo, 0, 5);
    EXPECT_FALSE(m_wizard.m_pFoodAFCB->isVisible());
    EXPECT_EQ(m_wizard.m_pTissueAFCB->text(), "Tissue Autobioluminescence");
    EXPECT_EQ(m_wizard.m_pDataPointInfo->text(), "5 wavelength pairs selected");
    EXPECT_TRUE(m_wizard.isUseConstraints());
    EXPECT_FALSE(m_wizard.m_pUseConstraintsCB->isVisible());
    EXPECT_FALSE(m_wizard.m_pMatchCB->isVisible());
    EXPECT_EQ(qobject_cast<CORVTreeMenuComboBox*>(row(0)), nullptr);
}

TEST_F(WizardComponentsTest, RowsOfAFluorescentSequenceShowFamiliesOfProbes)
{
    open(m_photo);
    EXPECT_TRUE(m_wizard.m_probeNames.contains("ICG"));
    EXPECT_NE(qobject_cast<CORVTreeMenuComboBox*>(row(0)), nullptr);
    EXPECT_EQ(row(0)->count(), m_wizard.m_probeNames.size());
    EXPECT_EQ(row(0)->itemText(0), "Unknown");
}

TEST_F(WizardComponentsTest, AnUnknownTypeChangesNothingButTheType)
{
    open(m_photo);
    const QStringList names = m_wizard.m_probeNames;
    m_wizard.setAnalysisType(7);
    EXPECT_EQ(m_wizard.m_nAnalysisType, 7);
    EXPECT_EQ(m_wizard.m_probeNames, names);
    EXPECT_EQ(m_wizard.m_pProbeInfoGB->title(), "Probe Information");
    toggle(m_wizard.m_pFoodAFCB);
    EXPECT_EQ(number(), 3);
}

TEST_F(WizardComponentsTest, ATemporalSequenceOffersTheLibraryWhenItIsFluorescent)
{
    CORVSequenceDataset sequence;
    sequence.setSequenceID("temporal");
    sequence.isFluorescence = true;
    m_wizard.setSequenceID("temporal");
    open(m_photo, 3, 4);
    EXPECT_EQ(m_wizard.m_probeNames, offeredProbes(1, true));
    sequence.isFluorescence = false;
    m_wizard.setAnalysisType(3);
    EXPECT_EQ(m_wizard.m_probeNames, offeredProbes(0, false));
}

TEST_F(WizardComponentsTest, ProposedProbesBecomeRows)
{
    open(m_photo, 1, 8, {" Cy5 ", "no such probe", "ICG"});
    ASSERT_EQ(rows(), 2);
    EXPECT_EQ(row(0)->currentText(), "Cy5");
    EXPECT_EQ(row(1)->currentText(), "ICG");
}

TEST_F(WizardComponentsTest, AProbeInAnotherCaseLeavesItsRowEmpty)
{
    open(m_photo, 1, 8, {"icg"});
    ASSERT_EQ(rows(), 1);
    EXPECT_EQ(row(0)->currentIndex(), -1);
    EXPECT_EQ(m_wizard.getComponentNames(), (QStringList{"TissueAF", ""}));
}

TEST_F(WizardComponentsTest, ARadioactiveFirstProbeSwitchesTheOfferOfEveryRow)
{
    open(m_photo, 0, 8, {"RAD-F-18", "Cy5"});
    ASSERT_EQ(rows(), 1);
    EXPECT_EQ(row(0)->currentText(), "F-18");
    add();
    EXPECT_EQ(row(1)->itemText(0), "Undefined");
    EXPECT_FALSE(m_wizard.m_probeNames.contains("Unknown"));
}

TEST_F(WizardComponentsTest, ANameOfThreeHundredCharactersStaysInItsCell)
{
    open(m_photo);
    const int nWidth = m_wizard.groupBoxProbe->width();
    row(0)->addItem(QString(300, 'W'));
    row(0)->setCurrentIndex(row(0)->count() - 1);
    QApplication::processEvents();
    EXPECT_EQ(m_wizard.m_pProbeTable->columnWidth(0), 170);
    EXPECT_EQ(m_wizard.groupBoxProbe->width(), nWidth);
    EXPECT_EQ(row(0)->toolTip().size(), 300);
}

TEST_F(WizardComponentsTest, OnASmallScreenTheColumnScrollsDownwardAlone)
{
    open(m_photo);
    const QSize usual = m_wizard.size();
    m_wizard.m_pCherenkovGroupBox->show();
    m_wizard.resize(470, 512); // beside the panel of the tool on 800 x 600 points
    QApplication::processEvents();
    EXPECT_EQ(m_wizard.m_pProbeArea->horizontalScrollBar()->maximum(), 0);
    EXPECT_GT(m_wizard.m_pProbeArea->verticalScrollBar()->maximum(), 0);
    for (const QWidget* pWidget : std::initializer_list<QWidget*>{
             m_wizard.m_pTissueAFCB, m_wizard.m_pFoodAFCB, m_wizard.m_pSubjectCB, m_wizard.m_pPhotoRB,
             m_wizard.m_pDrawMaskRB, m_wizard.m_pPCABtn, m_wizard.label_2}) {
        EXPECT_GE(pWidget->width(), pWidget->minimumSizeHint().width()) << qPrintable(pWidget->objectName());
    }
    EXPECT_LE(m_wizard.m_pProbeTable->columnWidth(0), m_wizard.m_pProbeTable->viewport()->width());
    m_wizard.resize(usual);
    QApplication::processEvents();
    EXPECT_EQ(m_wizard.m_pProbeTable->columnWidth(0), 170);
    EXPECT_EQ(m_wizard.m_pTissueAFCB->y(), m_wizard.m_pFoodAFCB->y()) << "side by side again";
}

TEST_F(WizardComponentsTest, TheSubjectIsSelectedUnlessItIsTheFirst)
{
    open(m_photo, 1, 8, {}, "Well Plate");
    EXPECT_EQ(m_wizard.getImagingSubject(), "Well Plate");
    m_wizard.setImagingSubject("Mouse");
    m_wizard.setImagingSubject("");
    m_wizard.setImagingSubject("other");
    EXPECT_EQ(m_wizard.getImagingSubject(), "Well Plate");
    m_wizard.setImagingSubject("Other");
    EXPECT_EQ(m_wizard.getImagingSubject(), "Other");
}

TEST_F(WizardComponentsTest, TheSamePhotographKeepsRowsAndAnotherStartsOver)
{
    open(m_photo, 1, 8, {"Cy5"});
    add(2);
    m_wizard.hide();
    m_wizard.setAnalysisType(1);
    m_wizard.setProbeNames({"ICG"});
    m_wizard.setPhotoImage(&m_photo);
    EXPECT_EQ(rows(), 3);
    EXPECT_EQ(row(0)->currentText(), "Cy5");

    CILImage other = bodyPhoto(64, 64);
    m_wizard.setPhotoImage(&other);
    ASSERT_EQ(rows(), 1);
    EXPECT_EQ(row(0)->currentText(), "ICG");
    EXPECT_TRUE(finish().isEnabled());
    m_wizard.setPhotoImage(nullptr);
    EXPECT_FALSE(finish().isEnabled());
}

TEST_F(WizardComponentsTest, ARepeatedOpeningChecksTheBackgroundAgain)
{
    open(m_photo);
    toggle(m_wizard.m_pTissueAFCB);
    EXPECT_FALSE(finish().isEnabled());
    m_wizard.setAnalysisType(1);
    m_wizard.setPhotoImage(&m_photo);
    EXPECT_TRUE(m_wizard.m_pTissueAFCB->isChecked());
    EXPECT_EQ(number(), 2);
    EXPECT_TRUE(finish().isEnabled());
}

TEST_F(WizardComponentsTest, FinishEndsWithOneAndAnIncompletePageNever)
{
    QSignalSpy finished(&m_wizard, &QDialog::finished);
    open(m_photo);
    toggle(m_wizard.m_pTissueAFCB);
    click(&finish());
    EXPECT_TRUE(m_wizard.isVisible());
    EXPECT_EQ(finished.size(), 0);
    toggle(m_wizard.m_pTissueAFCB);
    click(&finish());
    EXPECT_FALSE(m_wizard.isVisible());
    ASSERT_EQ(finished.size(), 1);
    EXPECT_EQ(finished[0][0].toInt(), 1);
}

TEST_F(WizardComponentsTest, EscapeAndCancelEndWithZero)
{
    QSignalSpy finished(&m_wizard, &QDialog::finished);
    open(m_photo);
    QTest::keyClick(&m_wizard, Qt::Key_Escape);
    EXPECT_FALSE(m_wizard.isVisible());
    m_wizard.show();
    click(m_wizard.button(QWizard::CancelButton));
    ASSERT_EQ(finished.size(), 2);
    EXPECT_EQ(finished[0][0].toInt(), 0);
    EXPECT_EQ(finished[1][0].toInt(), 0);
}

// The wizard starts over after a cancel, which takes the page for complete.
TEST_F(WizardComponentsTest, AnIncompletePageStaysSoAfterACancel)
{
    open(m_photo);
    toggle(m_wizard.m_pTissueAFCB);
    QTest::keyClick(&m_wizard, Qt::Key_Escape);
    screen::show(m_wizard);
    EXPECT_FALSE(finish().isEnabled());
    m_wizard.resize(700, 600);
    QApplication::processEvents();
    EXPECT_FALSE(finish().isEnabled());
    m_wizard.restart();
    m_wizard.setPhotoImage(&m_photo);
    EXPECT_FALSE(finish().isEnabled());
}

TEST_F(WizardComponentsTest, PcaIsAskedForWhileThereIsAMask)
{
    QSignalSpy asked(&m_wizard, &SpUnmixWizardWnd::runPCA);
    open(m_photo);
    click(m_wizard.m_pPCABtn);
    EXPECT_EQ(asked.size(), 1);
    EXPECT_TRUE(m_wizard.isVisible());
    m_wizard.setPhotoImage(nullptr);
    EXPECT_FALSE(m_wizard.m_pPCABtn->isEnabled());
}

TEST_F(WizardComponentsTest, EveryControlHasAName)
{
    open(m_photo);
    for (const QWidget* pWidget : m_wizard.findChildren<QWidget*>()) {
        if (pWidget->focusPolicy() == Qt::NoFocus || pWidget->focusProxy() != nullptr || !pWidget->isVisible()) {
            continue;
        }
        const QAccessibleInterface* pInterface = QAccessible::queryAccessibleInterface(const_cast<QWidget*>(pWidget));
        ASSERT_NE(pInterface, nullptr);
        EXPECT_NE(pInterface->text(QAccessible::Name), "")
            << pWidget->metaObject()->className() << " " << qPrintable(pWidget->objectName());
    }
}

TEST_F(WizardComponentsTest, TextsCanBeTranslatedAgain)
{
    open(m_photo, 3, 9);
    QEvent change(QEvent::LanguageChange);
    QApplication::sendEvent(&m_wizard, &change);
    EXPECT_EQ(m_wizard.m_pProbeInfoGB->title(), "Kinectics Information");
    EXPECT_EQ(m_wizard.m_pDataPointInfo->text(), "9 time points selected");
    EXPECT_EQ(number(), 2);
    EXPECT_TRUE(finish().isEnabled());
}

} // namespace
