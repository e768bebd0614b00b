// SPDX-License-Identifier: GPL-3.0-or-later
// The rows of the console: adding, removing, ticks, tools, regions.
#include "ConsoleFixture.h"

#include "engine/LogCapture.h"
#include "host/CORVMessageBox.h"
#include "platform/orvwidgets/recordedResponder.h"
#include "spectra/DefaultColors.h"

#include <QPushButton>

namespace {

class ConsoleRowsTest : public ConsoleTest
{
};

TEST_F(ConsoleRowsTest, RowsAreNamedColouredAndNumberedInTheirOrder)
{
    openCube();
    m_pConsole->setProbeNames({" ICG "});
    for (int i = 0; i < 7; ++i) {
        click(m_pConsole->m_pAddSpectrum);
    }
    ASSERT_EQ(rows(), 9);
    const QStringList names{"TissueAF", "ICG", "UMX1", "UMX2", "UMX3", "UMX4", "UMX5", "UMX6", "UMX7"};
    for (int i = 0; i < rows(); ++i) {
        EXPECT_EQ(row(i).settings().name, names[i]);
        EXPECT_EQ(row(i).settings().color, defaultSpectrumColors()[i]);
        EXPECT_EQ(row(i).m_pIndexLabel->text(), QString::number(i + 1));
        EXPECT_FALSE(row(i).m_pSelectBox->isEnabled());
        EXPECT_FALSE(row(i).m_pNameEdit->isEnabled());
    }
    EXPECT_FALSE(m_pConsole->m_pAddSpectrum->isEnabled());
}

TEST_F(ConsoleRowsTest, RowsOverTimeHaveNoImport)
{
    openCube(2);
    click(m_pConsole->m_pAddSpectrum);
    EXPECT_TRUE(row(0).m_pImportAction.isNull());
    openCube(1);
    click(m_pConsole->m_pAddSpectrum);
    ASSERT_FALSE(row(0).m_pImportAction.isNull());
    EXPECT_TRUE(row(0).m_pImportAction->isEnabled());
}

TEST_F(ConsoleRowsTest, CherenkovProbesLoseTheirPrefix)
{
    openCube();
    m_pConsole->m_bCherenkovPresent = true;
    m_pConsole->setProbeNames({"RAD-F18"});
    EXPECT_EQ(row(1).settings().name, "F18");
    EXPECT_EQ(m_pConsole->m_probeNames, QStringList{"RAD-F18"});
}

TEST_F(ConsoleRowsTest, ANewRowCanBePaintedAtOnce)
{
    openCube();
    click(m_pConsole->m_pAddSpectrum);
    EXPECT_TRUE(row(0).m_pToolButton->isChecked());
    EXPECT_TRUE(m_pConsole->m_pImageCubeView->isPaintEnabled());
    click(m_pConsole->m_pAddSpectrum);
    EXPECT_FALSE(row(0).m_pToolButton->isChecked());
    EXPECT_TRUE(row(1).m_pToolButton->isChecked());
    EXPECT_EQ(m_pConsole->m_pActiveCtrl, &row(1));
}

TEST_F(ConsoleRowsTest, ARegionBecomesASpectrumWithItsOrigin)
{
    openCube();
    m_pConsole->setSequenceID("SEQ7");
    click(m_pConsole->m_pAddSpectrum);
    chooseTool(0, "Thin");
    paint(5, 9, 8, 9);
    QList<int> pixels;
    m_pConsole->m_pImageCubeView->getPaintPixelIndex(1, pixels);
    EXPECT_EQ(pixels, (QList<int>{9 * kCubeWidth + 5, 9 * kCubeWidth + 6, 9 * kCubeWidth + 7, 9 * kCubeWidth + 8}));
    EXPECT_EQ(values(0), (std::vector<double>{10.0, 20.0, 30.0, 40.0}));
    EXPECT_EQ(m_pConsole->m_spectra[0]->origin, "SEQ7");
    EXPECT_TRUE(row(0).m_pSelectBox->isEnabled());
    EXPECT_TRUE(row(0).m_pNameEdit->isEnabled());
    EXPECT_EQ(lines().size(), 1);
}

TEST_F(ConsoleRowsTest, AStrokeThatIsTakenBackChangesTheSpectrum)
{
    openCube();
    click(m_pConsole->m_pAddSpectrum);
    chooseTool(0, "Thin");
    paint(5, 9, 8, 9);
    paint(5, 19, 8, 19);
    EXPECT_EQ(values(0), (std::vector<double>{15.0, 30.0, 45.0, 60.0}));
    m_pConsole->m_pImageCubeView->takeStrokeBack();
    EXPECT_EQ(values(0), (std::vector<double>{10.0, 20.0, 30.0, 40.0}));
}

TEST_F(ConsoleRowsTest, OnlyTheSecondGestureServesAllRowsWithTheSamePixels)
{
    openCube();
    addPainted(true);
    click(m_pConsole->m_pAddSpectrum);
    chooseTool(1, "Thin");
    paint(30, 0, 33, 0);
    const std::vector<double> right{4.0, 3.0, 2.0, 1.0};
    EXPECT_EQ(values(1), right);
    EXPECT_NE(values(0), right);
    Q_EMIT m_pConsole->m_pImageCubeView->signalDrawComplete(3);
    EXPECT_NE(values(0), right);
    const RecordedResponder yes(CORVMessageBox::YesButton);
    m_pConsole->m_pImageCubeView->useRegionForAll();
    EXPECT_EQ(yes.asked().size(), 1);
    EXPECT_EQ(values(0), right);
    EXPECT_EQ(values(1), right);
}

TEST_F(ConsoleRowsTest, ASpectrumOfAnotherLengthCannotOverwriteARow)
{
    openCube();
    addPainted(true);
    const std::vector<double> before = values(0);
    // The rows are of four images; a cube of three has other spectra.
    ASSERT_TRUE(m_cube.init(kCubeWidth, kCubeHeight, 1, 3, {}));
    paint(30, 3, 33, 3);
    EXPECT_EQ(values(0), before);
}

TEST_F(ConsoleRowsTest, ChannelsAreNotUsedAgainWhileRowsRemain)
{
    openCube();
    addPainted(true);
    addPainted(false);
    EXPECT_EQ(m_pConsole->m_nNextChannel, 2);
    tick(0); // off
    click(m_pConsole->m_pRemoveSpectrum);
    ASSERT_EQ(rows(), 1);
    click(m_pConsole->m_pAddSpectrum);
    EXPECT_EQ(m_pConsole->m_nNextChannel, 3);
    EXPECT_EQ(row(1).settings().curveId, 3);
    QList<int> pixels;
    m_pConsole->m_pImageCubeView->getPaintPixelIndex(3, pixels);
    EXPECT_TRUE(pixels.isEmpty());
    EXPECT_FALSE(m_pConsole->m_pImageCubeView->containsChannel(2));
}

TEST_F(ConsoleRowsTest, WithTheLastRowChannelsBeginAnew)
{
    openCube();
    addPainted(true);
    click(m_pConsole->m_pRemoveSpectrum);
    EXPECT_EQ(rows(), 0);
    EXPECT_EQ(m_pConsole->m_nNextChannel, 0);
    EXPECT_EQ(m_pConsole->m_nRemovedCount, 0);
    EXPECT_FALSE(m_pConsole->m_pImageCubeView->isPaintEnabled());
    EXPECT_FALSE(m_pConsole->m_pImageCubeView->containsChannel(1));
    EXPECT_TRUE(lines().isEmpty());
    click(m_pConsole->m_pAddSpectrum);
    EXPECT_EQ(m_pConsole->m_nNextChannel, 1);
    EXPECT_EQ(row(0).m_pIndexLabel->text(), "1");
    QList<int> pixels;
    m_pConsole->m_pImageCubeView->getPaintPixelIndex(1, pixels);
    EXPECT_TRUE(pixels.isEmpty());
}

TEST_F(ConsoleRowsTest, RemovingKeepsRowsWithoutDataAndTurnsToTheFirst)
{
    openCube();
    addPainted(true);
    click(m_pConsole->m_pAddSpectrum); // without data, though ticked
    addPainted(false);
    ASSERT_TRUE(row(1).m_pSelectBox->isChecked());
    tick(0); // off
    click(m_pConsole->m_pRemoveSpectrum);
    ASSERT_EQ(rows(), 2);
    EXPECT_EQ(row(0).settings().name, "UMX1");
    EXPECT_EQ(row(1).settings().name, "UMX2");
    EXPECT_TRUE(row(0).m_pSelectBox->isChecked());
    EXPECT_TRUE(row(0).m_pToolButton->isChecked());
    EXPECT_EQ(m_pConsole->m_pActiveCtrl, &row(0));
    EXPECT_EQ(m_pConsole->m_nRemovedCount, 1);
    EXPECT_EQ(m_pConsole->m_nSpectrumCount, 2);
}

TEST_F(ConsoleRowsTest, RowsCountFromOneAfterARemoval)
{
    openCube();
    addPainted(true);
    addPainted(true);
    addPainted(false);
    tick(1);
    tick(2);
    click(m_pConsole->m_pRemoveSpectrum); // the first
    ASSERT_EQ(rows(), 2);
    for (int i = 0; i < rows(); ++i) {
        EXPECT_EQ(row(i).m_pIndexLabel->text(), QString::number(i + 1));
        EXPECT_EQ(m_pConsole->m_spectra[i]->settings.index, i + 1);
    }
}

TEST_F(ConsoleRowsTest, ARemovalRaisesTheLimitOfRows)
{
    openCube();
    addPainted(true);
    for (int i = 0; i < 8; ++i) {
        click(m_pConsole->m_pAddSpectrum);
    }
    EXPECT_FALSE(m_pConsole->m_pAddSpectrum->isEnabled());
    click(m_pConsole->m_pRemoveSpectrum);
    EXPECT_EQ(rows(), 8);
    click(m_pConsole->m_pAddSpectrum);
    EXPECT_TRUE(m_pConsole->m_pAddSpectrum->isEnabled());
    click(m_pConsole->m_pAddSpectrum);
    EXPECT_EQ(rows(), 10);
    EXPECT_FALSE(m_pConsole->m_pAddSpectrum->isEnabled());
}

TEST_F(ConsoleRowsTest, WhenChannelsRunOutAddingStopsWithAMessage)
{
    openCube();
    click(m_pConsole->m_pAddSpectrum);
    m_pConsole->m_nNextChannel = 255;
    const RecordedResponder ok(CORVMessageBox::Ok);
    click(m_pConsole->m_pAddSpectrum);
    EXPECT_EQ(rows(), 1);
    ASSERT_EQ(ok.asked().size(), 1);
    EXPECT_TRUE(ok.asked()[0].contains("255"));
}

TEST_F(ConsoleRowsTest, TheBackgroundIsOneAtATime)
{
    openCube();
    m_pConsole->setBackgroundMode(true);
    m_pConsole->setProbeNames({"ICG"});
    EXPECT_TRUE(row(0).m_pSelectBox->isChecked());
    EXPECT_FALSE(row(1).m_pSelectBox->isChecked());
    addPainted(true);
    addPainted(false);
    tick(2);
    EXPECT_FALSE(row(0).m_pSelectBox->isChecked());
    tick(3);
    EXPECT_FALSE(row(2).m_pSelectBox->isChecked());
    EXPECT_TRUE(row(3).m_pSelectBox->isChecked());
    tick(3);
    EXPECT_FALSE(row(3).m_pSelectBox->isChecked());
}

TEST_F(ConsoleRowsTest, AToolTakenFromTheMenuIsThePenOfItsRow)
{
    openCube();
    click(m_pConsole->m_pAddSpectrum);
    click(m_pConsole->m_pAddSpectrum);
    chooseTool(0, "Thick");
    EXPECT_EQ(row(0).m_pToolButton->text(), "Thick");
    EXPECT_TRUE(row(0).m_pToolButton->isChecked());
    EXPECT_FALSE(row(1).m_pToolButton->isChecked());
    pointer::press(*m_pConsole->m_pImageCubeView, at(10, 10));
    pointer::release(*m_pConsole->m_pImageCubeView, at(10, 10));
    QList<int> pixels;
    m_pConsole->m_pImageCubeView->getPaintPixelIndex(1, pixels);
    EXPECT_GT(pixels.size(), 25);
    EXPECT_EQ(row(0).settings().shape, 2);
}

TEST_F(ConsoleRowsTest, APenThatIsTakenInTheViewIsThatOfTheActiveRow)
{
    openCube();
    click(m_pConsole->m_pAddSpectrum);
    click(m_pConsole->m_pAddSpectrum);
    QTest::keyClick(m_pConsole->m_pImageCubeView, Qt::Key_BracketRight);
    EXPECT_EQ(row(1).m_pToolButton->text(), "Thick");
    EXPECT_EQ(row(1).settings().shape, 2);
    EXPECT_TRUE(row(1).m_pToolButton->isChecked());
    EXPECT_EQ(row(0).m_pToolButton->text(), "Medium");
    row(0).m_pToolButton->click();
    row(1).m_pToolButton->click();
    paint(10, 10, 10, 10);
    QList<int> pixels;
    m_pConsole->m_pImageCubeView->getPaintPixelIndex(2, pixels);
    EXPECT_EQ(pixels.size(), 37) << "seven pixels wide, also when the row is taken up again";
}

TEST_F(ConsoleRowsTest, AToolThatIsTurnedOffPaintsNoMore)
{
    openCube();
    click(m_pConsole->m_pAddSpectrum);
    row(0).m_pToolButton->click();
    EXPECT_FALSE(m_pConsole->m_pImageCubeView->isPaintEnabled());
    EXPECT_TRUE(m_pConsole->m_pActiveCtrl.isNull());
    paint(5, 9, 8, 9);
    EXPECT_EQ(values(0), (std::vector<double>{0.0, 0.0, 0.0, 0.0}));
}

TEST_F(ConsoleRowsTest, AColourIsThatOfLineAndRegion)
{
    openCube();
    addPainted(true);
    row(0).m_pColorCombo->setCurrentText("tomato");
    EXPECT_EQ(m_pConsole->m_spectra[0]->settings.color, "tomato");
    EXPECT_TRUE(m_pConsole->m_pImageCubeView->containsChannel(1));
}

TEST_F(ConsoleRowsTest, AnEmptyNameIsWarnedOfWhenItIsLeft)
{
    openCube();
    addPainted(true);
    activate();
    const LogCapture log;
    row(0).m_pNameEdit->setFocus();
    row(0).m_pNameEdit->clear();
    m_pConsole->m_pNotationLE->setFocus();
    EXPECT_EQ(log.count("Please enter a name for each unmixing component", 2), 1);
    row(0).m_pNameEdit->setFocus();
    row(0).m_pNameEdit->setText("ICG");
    m_pConsole->m_pNotationLE->setFocus();
    EXPECT_EQ(log.count("Please enter a name for each unmixing component", 2), 1);
}

TEST_F(ConsoleRowsTest, SpectraThatAreTakenOverAreRowsLikeOthers)
{
    openCube();
    const auto pFirst = spectrumOf("ICG", "blue", {1.0, 2.0, 3.0, 4.0});
    const auto pSecond = spectrumOf("Cy5", "gold", {4.0, 3.0, 2.0, 1.0});
    pSecond->settings.selected = false;
    const auto pEmpty = spectrumOf("nothing", "red", {0.0, 0.0, 0.0, 0.0});
    m_pConsole->setSpectra({pFirst.get(), pSecond.get(), pEmpty.get()});
    ASSERT_EQ(rows(), 3);
    EXPECT_EQ(row(0).settings().name, "ICG");
    EXPECT_EQ(row(0).settings().color, "blue");
    EXPECT_EQ(row(0).m_pIndexLabel->text(), "1");
    EXPECT_TRUE(row(0).m_pNameEdit->isEnabled());
    EXPECT_TRUE(row(0).m_pSelectBox->isChecked());
    EXPECT_FALSE(row(1).m_pSelectBox->isChecked());
    EXPECT_FALSE(row(2).m_pSelectBox->isEnabled());
    EXPECT_FALSE(row(0).m_pToolButton->isChecked());
    EXPECT_EQ(lines().size(), 1);
    // The list of the console itself, too.
    m_pConsole->setSpectra(m_pConsole->getSpectra());
    ASSERT_EQ(rows(), 3);
    EXPECT_EQ(values(1), (std::vector<double>{4.0, 3.0, 2.0, 1.0}));
    EXPECT_EQ(row(1).settings().name, "Cy5");
}

TEST_F(ConsoleRowsTest, RowsOfOneNameHaveALineEach)
{
    openCube();
    const auto pFirst = spectrumOf("Cursor", "blue", {1.0, 2.0, 3.0, 4.0});
    const auto pSecond = spectrumOf("Cursor", "gold", {4.0, 3.0, 2.0, 1.0});
    m_pConsole->setSpectra({pFirst.get(), pSecond.get()});
    EXPECT_EQ(lines().size(), 2);
    pointer::move(*m_pConsole->m_pImageCubeView, at(3, 3));
    EXPECT_EQ(lines().size(), 3);
}

TEST_F(ConsoleRowsTest, MoreSpectraThanChannelsHaveRowsWithoutATool)
{
    openCube();
    const auto pSpectrum = spectrumOf("ICG", "blue", {1.0, 2.0, 3.0, 4.0});
    QList<SpectrumPlotParams*> many;
    for (int i = 0; i < 257; ++i) {
        many.append(pSpectrum.get());
    }
    m_pConsole->setSpectra(many);
    ASSERT_EQ(rows(), 257);
    QApplication::processEvents();
    EXPECT_FALSE(row(254).m_pToolButton->isHidden());
    EXPECT_TRUE(row(255).m_pToolButton->isHidden());
    EXPECT_EQ(lines().size(), 257);
}

TEST_F(ConsoleRowsTest, WhatIsUnmixedIsAllThatHasDataNumberedFromZero)
{
    openCube();
    addPainted(true);
    click(m_pConsole->m_pAddSpectrum); // without data
    addPainted(false);
    tick(2);
    const QList<SpectrumPlotParams*> taken = m_pConsole->getSelectedSpectra();
    ASSERT_EQ(taken.size(), 2);
    EXPECT_EQ(taken[0]->settings.index, 0);
    EXPECT_EQ(taken[1]->settings.index, 1);
    EXPECT_TRUE(taken[1]->settings.selected);
    EXPECT_TRUE(taken[1]->control.isNull());
    qDeleteAll(taken);
}

TEST_F(ConsoleRowsTest, EveryControlOfARowHasAName)
{
    openCube();
    click(m_pConsole->m_pAddSpectrum);
    click(m_pConsole->m_pAddSpectrum);
    for (const QWidget* pControl : std::initializer_list<const QWidget*>{row(1).m_pSelectBox, row(1).m_pNameEdit,
                                                                         row(1).m_pColorCombo, row(1).m_pToolButton}) {
        EXPECT_TRUE(pControl->accessibleName().endsWith("spectrum 2")) << qPrintable(pControl->accessibleName());
    }
}

TEST_F(ConsoleRowsTest, ARowIsTickedColouredAndGivenAToolByKeysAlone)
{
    openCube();
    addPainted(true);
    addPainted(false);
    activate();
    row(1).m_pSelectBox->setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
    EXPECT_FALSE(m_pConsole->m_spectra[1]->readControl().selected);
    EXPECT_EQ(lines().size(), 1);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down);
    EXPECT_EQ(row(1).settings().color, "blue");
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
    EXPECT_FALSE(m_pConsole->m_pImageCubeView->isPaintEnabled());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down, Qt::AltModifier);
    ASSERT_EQ(QApplication::activePopupWidget(), row(1).m_pToolMenu);
    QTest::keyClick(row(1).m_pToolMenu, Qt::Key_Down);
    QTest::keyClick(row(1).m_pToolMenu, Qt::Key_Down);
    QTest::keyClick(row(1).m_pToolMenu, Qt::Key_Return);
    EXPECT_EQ(row(1).m_pToolButton->text(), "Thick");
    EXPECT_TRUE(m_pConsole->m_pImageCubeView->isPaintEnabled());
    EXPECT_EQ(m_pConsole->m_pActiveCtrl, &row(1));
}

TEST_F(ConsoleRowsTest, OddNamesStayAsTheyAre)
{
    openCube();
    const QStringList names{QString(200, 'n'), "<b>x</b>", "Cy5", "Cy5", ""};
    std::vector<std::unique_ptr<SpectrumPlotParams>> owned;
    QList<SpectrumPlotParams*> spectra;
    for (const QString& name : names) {
        owned.push_back(spectrumOf(name, "blue", {1.0, 2.0, 3.0, 4.0 + spectra.size()}));
        spectra << owned.back().get();
    }
    m_pConsole->setSpectra(spectra);
    m_pConsole->m_pLegendCkb->setChecked(true);
    QApplication::processEvents();
    EXPECT_EQ(lines().size(), 5);
    const QList<SpectrumPlotParams*> taken = m_pConsole->getSelectedSpectra();
    ASSERT_EQ(taken.size(), names.size());
    for (int i = 0; i < names.size(); ++i) {
        EXPECT_EQ(row(i).m_pNameEdit->text(), names[i]);
        EXPECT_EQ(taken[i]->settings.name, names[i]);
        EXPECT_EQ(taken[i]->points[3].value, 4.0 + i);
    }
    qDeleteAll(taken);
    EXPECT_LE(m_pConsole->m_pGBSpectrumList->width(), 300);
}

TEST_F(ConsoleRowsTest, RemovingTheRowThatIsPaintedLeavesAnotherToPaint)
{
    openCube();
    addPainted(true);
    addPainted(false);
    ASSERT_EQ(m_pConsole->m_pActiveCtrl, &row(1));
    tick(0); // off
    click(m_pConsole->m_pRemoveSpectrum);
    ASSERT_EQ(rows(), 1);
    EXPECT_EQ(m_pConsole->m_pActiveCtrl, &row(0));
    EXPECT_FALSE(m_pConsole->m_pImageCubeView->containsChannel(2));
    const std::vector<double> before = values(0);
    paint(30, 3, 33, 20);
    EXPECT_NE(values(0), before);
}

TEST_F(ConsoleRowsTest, TheKeyboardGoesThroughTheRowsInTheirOrder)
{
    openCube();
    addPainted(true);
    addPainted(false);
    activate();
    m_pConsole->m_pNotationLE->setFocus();
    QList<QWidget*> expected;
    for (int i = 0; i < rows(); ++i) {
        expected << row(i).m_pSelectBox << row(i).m_pNameEdit << row(i).m_pColorCombo << row(i).m_pToolButton;
    }
    expected << m_pConsole->m_pUnmixBtn << m_pConsole->m_pCloseBtn;
    for (QWidget* pExpected : qAsConst(expected)) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        ASSERT_EQ(QApplication::focusWidget(), pExpected) << qPrintable(pExpected->accessibleName());
    }
}

} // namespace
