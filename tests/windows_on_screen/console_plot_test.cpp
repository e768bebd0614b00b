// SPDX-License-Identifier: GPL-3.0-or-later
// The plot of the console, its buttons, its modes, and what it says of changes.
#include "ConsoleFixture.h"

#include "engine/LogCapture.h"

#include <QFile>
#include <QPushButton>
#include <QTabWidget>
#include <QTemporaryDir>

namespace {

class ConsolePlotTest : public ConsoleTest
{
protected:
    // Two spectra as an analysis gives them.
    void take(const std::vector<double>& first = {1.0, 2.0, 3.0, 4.0},
              const std::vector<double>& second = {4.0, 3.0, 2.0, 1.0})
    {
        const auto pFirst = spectrumOf("ICG", "blue", first);
        const auto pSecond = spectrumOf("TissueAF", "lime", second);
        m_pConsole->setSpectra({pFirst.get(), pSecond.get()});
    }
    // The plot as a table.
    QStringList table() const
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath("plot.csv");
        EXPECT_TRUE(m_pConsole->m_pSpectrumPlot->saveData(QFile::encodeName(path).constData(), 0, ','));
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return QString::fromUtf8(file.readAll()).split('\n', Qt::SkipEmptyParts);
    }
};

TEST_F(ConsolePlotTest, ShowsTickedRowsUnderTheirNames)
{
    openCube();
    take();
    EXPECT_EQ(table(),
              (QStringList{"Emission Wavelength [nm],ICG,TissueAF", "600,1,4", "620,2,3", "640,3,2", "660,4,1"}));
    tick(0);
    EXPECT_EQ(table()[0], "Emission Wavelength [nm],TissueAF");
    EXPECT_EQ(m_pConsole->m_spectra[0]->settings.selected, false);
}

TEST_F(ConsolePlotTest, TheAxisIsThatOfTheLastRow)
{
    const char* const labels[] = {"Emission Wavelength [nm]", "Excitation Wavelength [nm]", "Time Point [s]"};
    const char* const last[] = {"660", "560", "135000"};
    for (const int nType : {0, 1, 2}) {
        openCube(nType);
        const auto pSpectrum = spectrumOf("ICG", "blue", {1.0, 2.0, 3.0, 4.0}, nType);
        m_pConsole->setSpectra({pSpectrum.get()});
        EXPECT_EQ(table()[0], QString(labels[nType]) + ",ICG");
        EXPECT_EQ(table()[4], QString(last[nType]) + ",4");
    }
}

TEST_F(ConsolePlotTest, NormalizedScalesByTheLargestValueUnlessThatIsNotAboveZero)
{
    openCube();
    take({1.0, 2.0, 8.0, 4.0}, {-1.0, -2.0, 0.0, -4.0});
    click(m_pConsole->m_pNormalizedCkb);
    EXPECT_EQ(table().mid(1), (QStringList{"600,0.125,-1", "620,0.25,-2", "640,1,0", "660,0.5,-4"}));
    EXPECT_EQ(values(0), (std::vector<double>{1.0, 2.0, 8.0, 4.0}));
    pointer::move(*m_pConsole->m_pImageCubeView, at(3, 4));
    EXPECT_EQ(table()[1], "600,0.125,-1,0.25");
}

TEST_F(ConsolePlotTest, TheLegendFollowsItsBox)
{
    openCube();
    take();
    EXPECT_FALSE(m_pConsole->m_pSpectrumPlot->isLegendVisible());
    click(m_pConsole->m_pLegendCkb);
    EXPECT_TRUE(m_pConsole->m_pSpectrumPlot->isLegendVisible());
    tick(0);
    EXPECT_TRUE(m_pConsole->m_pSpectrumPlot->isLegendVisible());
}

TEST_F(ConsolePlotTest, TheBackgroundIsTakenOffTheOtherLines)
{
    openCube();
    m_pConsole->setBackgroundMode(true);
    const auto pLabel = spectrumOf("ICG", "blue", {3.0, 5.0, 4.0, 8.0});
    const auto pBackground = spectrumOf("TissueAF", "lime", {1.0, 2.0, 1.0, 1.0});
    pLabel->settings.selected = false;
    m_pConsole->setSpectra({pLabel.get(), pBackground.get()});
    EXPECT_EQ(table().mid(1), (QStringList{"600,0.5,1", "620,0,2", "640,1.5,1", "660,5.5,1"}));
    const QList<SpectrumPlotParams*> taken = m_pConsole->getSelectedSpectra();
    ASSERT_EQ(taken.size(), 2);
    EXPECT_EQ(taken[0]->points[3].value, 5.5);
    EXPECT_EQ(taken[1]->points[3].value, 1.0);
    qDeleteAll(taken);
    EXPECT_EQ(values(0), (std::vector<double>{3.0, 5.0, 4.0, 8.0}));
}

TEST_F(ConsolePlotTest, ABackgroundThatCannotBeTakenOffIsToldAndTheLineStays)
{
    openCube();
    m_pConsole->setBackgroundMode(true);
    const auto pShort = spectrumOf("ICG", "blue", {3.0, 5.0, 4.0});
    const auto pBackground = spectrumOf("TissueAF", "lime", {1.0, 2.0, 1.0, 1.0});
    pShort->settings.selected = false;
    const LogCapture log;
    m_pConsole->setSpectra({pShort.get(), pBackground.get()});
    EXPECT_TRUE(log.has("SpumKyvo: unable to remove the background spectrum!", 2));
    EXPECT_EQ(lines().size(), 2);
}

TEST_F(ConsolePlotTest, UnmixAsksForAChangeAndTwoSpectra)
{
    openCube();
    take();
    m_pConsole->setSpectraModified(false);
    EXPECT_FALSE(m_pConsole->m_pUnmixBtn->isEnabled());
    row(0).m_pColorCombo->setCurrentText("gold");
    EXPECT_TRUE(m_pConsole->m_bSpectraModified);
    EXPECT_TRUE(m_pConsole->m_pUnmixBtn->isEnabled());
    tick(0);
    EXPECT_FALSE(m_pConsole->m_pUnmixBtn->isEnabled());
}

TEST_F(ConsolePlotTest, NextAsksForTwoSpectraAlone)
{
    openCube();
    m_pConsole->setBackgroundMode(true);
    take();
    m_pConsole->setSpectraModified(false);
    EXPECT_TRUE(m_pConsole->m_pUnmixBtn->isEnabled());
}

TEST_F(ConsolePlotTest, TheFirstChangeAsksToSaveAndNoOther)
{
    openCube();
    take();
    m_pConsole->setSpectraModified(false);
    QSignalSpy asked(m_pConsole, &SpumKyvoConsoleWnd::askToSaveExistingResult);
    m_pConsole->updateSpectrumPlot();
    EXPECT_EQ(asked.count(), 0);
    row(0).m_pNameEdit->setText("Cy5");
    Q_EMIT row(0).m_pNameEdit->editingFinished();
    EXPECT_EQ(asked.count(), 1);
    tick(0);
    click(m_pConsole->m_pAddSpectrum);
    m_pConsole->setSpectraModified(true);
    EXPECT_EQ(asked.count(), 1);
    m_pConsole->setSpectraModified(false);
    m_pConsole->setSpectraModified(true);
    EXPECT_EQ(asked.count(), 2);
    EXPECT_TRUE(m_pConsole->m_bSpectraModified);
}

TEST_F(ConsolePlotTest, WhatIsChangedWhileItAsksDoesNotAskAgain)
{
    openCube();
    take();
    m_pConsole->setSpectraModified(false);
    int nAsked = 0;
    QObject::connect(m_pConsole, &SpumKyvoConsoleWnd::askToSaveExistingResult, m_pConsole, [this, &nAsked] {
        ++nAsked;
        EXPECT_FALSE(m_pConsole->m_bSpectraModified);
        row(1).m_pColorCombo->setCurrentText("pink");
        m_pConsole->setSpectraModified(false);
    });
    row(0).m_pColorCombo->setCurrentText("gold");
    EXPECT_EQ(nAsked, 1);
    EXPECT_TRUE(m_pConsole->m_bSpectraModified);
}

TEST_F(ConsolePlotTest, AStrokeAsksOnceItIsDone)
{
    openCube();
    m_pConsole->setSpectraModified(false);
    bool bWritten = false;
    QObject::connect(m_pConsole, &SpumKyvoConsoleWnd::askToSaveExistingResult, m_pConsole, [this, &bWritten] {
        bWritten = rows() == 1 && m_pConsole->m_spectra[0]->hasData() && QWidget::mouseGrabber() == nullptr;
    });
    click(m_pConsole->m_pAddSpectrum);
    m_pConsole->setSpectraModified(false);
    paint(5, 9, 8, 9);
    EXPECT_TRUE(bWritten);
}

TEST_F(ConsolePlotTest, WhoIsAskedMayCloseTheWindow)
{
    openCube();
    take();
    m_pConsole->setSpectraModified(false);
    QPointer<SpumKyvoConsoleWnd> pConsole = m_pConsole;
    QObject::connect(m_pConsole, &SpumKyvoConsoleWnd::askToSaveExistingResult, &m_window, [this] {
        delete m_pConsole;
        m_pConsole = nullptr;
    });
    m_pConsole->setSpectraModified(true);
    EXPECT_TRUE(pConsole.isNull());
}

TEST_F(ConsolePlotTest, ModesDifferInTextsAndTools)
{
    openCube();
    m_pConsole->setBackgroundMode(true);
    EXPECT_EQ(m_pConsole->m_pSelectLabel->text(), "Background");
    EXPECT_EQ(m_pConsole->m_pUnmixBtn->text(), "Next");
    EXPECT_EQ(m_pConsole->m_pCloseBtn->text(), "Cancel");
    EXPECT_EQ(m_pConsole->m_pImageTabWidget->count(), 1);
    EXPECT_TRUE(m_pConsole->m_pExportAsSequence->isHidden());
    EXPECT_TRUE(m_pConsole->m_pSaveDatabaseTB->isHidden());
    for (int i = 0; i < 2; ++i) {
        m_pConsole->setBackgroundMode(false);
        EXPECT_EQ(m_pConsole->m_pSelectLabel->text().trimmed(), "Select");
        EXPECT_EQ(m_pConsole->m_pUnmixBtn->text(), "Unmix");
        EXPECT_EQ(m_pConsole->m_pCloseBtn->text(), "Close");
        ASSERT_EQ(m_pConsole->m_pImageTabWidget->count(), 2);
        EXPECT_EQ(m_pConsole->m_pImageTabWidget->tabText(0), "ImageCube");
        EXPECT_EQ(m_pConsole->m_pImageTabWidget->tabText(1), "Unmixed");
        EXPECT_FALSE(m_pConsole->m_pExportAsSequence->isHidden());
        EXPECT_FALSE(m_pConsole->m_pSaveDatabaseTB->isHidden());
    }
}

TEST_F(ConsolePlotTest, AModeClearsTheRowsWithoutAsking)
{
    openCube();
    take();
    m_pConsole->setSpectraModified(false);
    QSignalSpy asked(m_pConsole, &SpumKyvoConsoleWnd::askToSaveExistingResult);
    m_pConsole->setBackgroundMode(true);
    EXPECT_EQ(rows(), 0);
    EXPECT_EQ(asked.count(), 0);
}

TEST_F(ConsolePlotTest, AnotherLanguageKeepsTheMode)
{
    openCube();
    m_pConsole->setBackgroundMode(true);
    QEvent change(QEvent::LanguageChange);
    QApplication::sendEvent(m_pConsole, &change);
    EXPECT_EQ(m_pConsole->m_pUnmixBtn->text(), "Next");
    m_pConsole->setBackgroundMode(false);
    QApplication::sendEvent(m_pConsole, &change);
    EXPECT_EQ(m_pConsole->m_pImageTabWidget->tabText(1), "Unmixed");
}

TEST_F(ConsolePlotTest, UnmixAndCloseAreToldAndTheWindowStays)
{
    openCube();
    addPainted(true);
    addPainted(false);
    QSignalSpy finished(m_pConsole, &QDialog::finished);
    QSignalSpy asked(m_pConsole, &SpumKyvoConsoleWnd::askToSaveExistingResult);
    click(m_pConsole->m_pUnmixBtn);
    ASSERT_EQ(finished.count(), 1);
    EXPECT_EQ(finished[0][0].toInt(), 1);
    EXPECT_FALSE(m_pConsole->m_pImageCubeView->isPaintEnabled());
    EXPECT_TRUE(m_pConsole->m_pActiveCtrl.isNull());
    click(m_pConsole->m_pCloseBtn);
    ASSERT_EQ(finished.count(), 2);
    EXPECT_EQ(finished[1][0].toInt(), 0);
    EXPECT_EQ(asked.count(), 0);
    m_pConsole->m_bResultsExist = true;
    QTest::keyClick(m_pConsole, Qt::Key_Escape);
    ASSERT_EQ(finished.count(), 3);
    EXPECT_EQ(finished[2][0].toInt(), 0);
    EXPECT_EQ(asked.count(), 1);
    EXPECT_TRUE(m_pConsole->isVisible());
}

TEST_F(ConsolePlotTest, EnterInAnEditEndsNothing)
{
    openCube();
    addPainted(true);
    addPainted(false);
    QSignalSpy finished(m_pConsole, &QDialog::finished);
    QTest::keyClick(row(0).m_pNameEdit, Qt::Key_Return);
    QTest::keyClick(m_pConsole->m_pNotationLE, Qt::Key_Enter);
    EXPECT_EQ(finished.count(), 0);
}

TEST_F(ConsolePlotTest, WhatComesLaterSaysSo)
{
    openCube();
    take();
    EXPECT_FALSE(m_pConsole->m_pPrintButton->isEnabled());
    EXPECT_TRUE(m_pConsole->m_pPrintButton->toolTip().contains("not available"));
}

TEST_F(ConsolePlotTest, ASmallWindowGivesItsHeightToTheList)
{
    openCube();
    take();
    m_pConsole->resize(m_pConsole->width(), 299);
    EXPECT_TRUE(m_pConsole->m_pGBSpectrumPlot->isHidden());
    EXPECT_TRUE(m_pConsole->m_pNormalizedCkb->isHidden());
    EXPECT_FALSE(m_pConsole->m_pGBSpectrumList->isHidden());
    m_pConsole->resize(m_pConsole->width(), 300);
    EXPECT_FALSE(m_pConsole->m_pGBSpectrumPlot->isHidden());
    EXPECT_FALSE(m_pConsole->m_pSpectrumPlot->isHidden());
}

TEST_F(ConsolePlotTest, TheWindowCanBeThatSmall)
{
    openCube();
    take();
    EXPECT_LT(m_window.minimumSizeHint().height(), 300);
    EXPECT_LT(m_window.minimumSizeHint().width(), 600);
}

} // namespace
