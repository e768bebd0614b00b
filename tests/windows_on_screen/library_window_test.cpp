// SPDX-License-Identifier: GPL-3.0-or-later
// The window that picks spectra out of libraries: what it lists and shows, and what it hands back.
#include "windows_on_screen/LibraryFixture.h"

#include "host/CORVUtilityFns.h"

#include <QAction>
#include <QComboBox>
#include <QRadioButton>
#include <QSignalSpy>
#include <QToolButton>

#include <gmock/gmock.h>

namespace {

using ::testing::StartsWith;

const QList<KeyPair> kBands{{"500", "540"}, {"500", "560"}};

TEST_F(LibraryWindowTest, OpensWithTheListAndNothingElse)
{
    write("beta", library::twoDyes());
    write("Alpha", library::twoDyes());
    open();
    EXPECT_EQ(window().windowTitle(), "Load Spectrum Library");
    EXPECT_EQ(window().label_5->text(), "Spectrum Libraries:");
    EXPECT_EQ(window().m_pQualifiedCkb->text(), "show qualified only");
    EXPECT_EQ(list().maximumWidth(), 200);
    EXPECT_EQ(window().label_6->text(), "Information:");
    EXPECT_EQ(window().m_pNormalizedCkb->text(), "Normalized ");
    EXPECT_EQ(window().m_pLegendCkb->text(), "Legend");
    EXPECT_EQ(window().m_pGBSpectrumList->title(), "Spectrum List:");
    EXPECT_EQ(window().label_7->text(), "Note:");
    EXPECT_EQ(window().label->text(), "   Select");
    EXPECT_EQ(window().label_2->text(), "Name");
    EXPECT_EQ(window().label_3->text(), "Color");
    EXPECT_EQ(window().m_pAppendChk->text(), "Append");
    EXPECT_EQ(window().m_pNextBtn->text(), "Apply");
    EXPECT_EQ(window().m_pCloseBtn->text(), "Cancel");
    EXPECT_TRUE(window().isModal());
    EXPECT_EQ(shown(), (QStringList{"Alpha", "beta"}));
    EXPECT_TRUE(window().m_rows.isEmpty());
    EXPECT_FALSE(window().m_pNextBtn->isEnabled());
    EXPECT_TRUE(m_log.isEmpty());
}

TEST_F(LibraryWindowTest, FlagsAndModalityAreTheCallers)
{
    const SpUnmixSpectrumLibraryWnd window(nullptr, Qt::Dialog | Qt::WindowStaysOnTopHint, false);
    EXPECT_FALSE(window.isModal());
    EXPECT_TRUE(window.windowFlags() & Qt::WindowStaysOnTopHint);
}

TEST_F(LibraryWindowTest, AClickShowsALibrary)
{
    write("dyes", library::twoDyes());
    open();
    window().setReferencePairs(kBands, 1);
    click("dyes");
    ASSERT_EQ(window().m_rows.size(), 2);
    ASSERT_EQ(window().m_spectra.size(), 2);
    EXPECT_EQ(window().m_pHBoxSpectrumList->count(), 2);
    EXPECT_EQ(window().m_excitationTexts, (QStringList{"500", "500"}));
    EXPECT_EQ(window().m_emissionTexts, (QStringList{"540", "560"}));
    EXPECT_EQ(window().m_spectra[1]->axis, 1);
    EXPECT_EQ(row(1).m_pNameEdit->text(), "B");
    EXPECT_EQ(row(1).m_pColorCombo->currentText(), "blue");
    EXPECT_EQ(row(1).m_pIndexLabel->text(), "2");
    EXPECT_TRUE(row(1).m_pSelectBox->isChecked());
    EXPECT_TRUE(row(1).m_pToolButton->isHidden());
    EXPECT_EQ(window().m_pNotationLE->text(), "two dyes");
    EXPECT_EQ(window().textEdit->toPlainText(),
              "Index: 1\nName: A\nOrigin: lab\nWavelengthPairs: 500,540;500,560;\n \n"
              "Index: 2\nName: B\nOrigin: bench\nWavelengthPairs: 500,540;500,560;\n ");
    EXPECT_EQ(plotted(), "Excitation Wavelength [nm],A,B\n500,0.5,0.10000000000000001\n500,1,0.20000000000000001\n");
    EXPECT_TRUE(window().m_pNextBtn->isEnabled());
}

TEST_F(LibraryWindowTest, AnotherLibraryTakesThePlaceOfTheFirst)
{
    write("dyes", library::twoDyes());
    write("more", library::dyes(3, 2, 1));
    open();
    click("dyes");
    click("more");
    EXPECT_EQ(window().m_rows.size(), 3);
    EXPECT_EQ(window().m_pHBoxSpectrumList->count(), 3);
    EXPECT_EQ(window().m_pNotationLE->text(), "");
    EXPECT_TRUE(window().textEdit->toPlainText().startsWith("Index: 1\nName: Dye 1\n"));
    EXPECT_EQ(window().m_emissionTexts, (QStringList{"520", "540"}));
    EXPECT_EQ(window().m_pPlot->dataLines().size(), 1);
}

struct AxisCase
{
    int axis;
    const char* label;
    bool import;
};

class LibraryAxisTest : public LibraryWindowTest, public ::testing::WithParamInterface<AxisCase>
{
};

TEST_P(LibraryAxisTest, NamesThePlotsAxis)
{
    write("dyes", library::twoDyes());
    open();
    window().setReferencePairs({}, GetParam().axis);
    click("dyes");
    EXPECT_TRUE(plotted().startsWith(QByteArray(GetParam().label) + ','));
    EXPECT_EQ(!row(0).m_pImportAction.isNull(), GetParam().import);
}

INSTANTIATE_TEST_SUITE_P(Axes, LibraryAxisTest,
                         ::testing::Values(AxisCase{0, "Emission Wavelength [nm]", true},
                                           AxisCase{1, "Excitation Wavelength [nm]", true},
                                           AxisCase{2, "Time Point [s]", false}, AxisCase{3, "", true}));

// A library that cannot be loaded says so once each time it is asked for.
TEST_F(LibraryWindowTest, ArrowKeysAskForALibraryOnceAsAClickDoes)
{
    const QString said = "SpumKyvo: Unexpected format! Unable to load %1.csv.";
    for (const char* name : {"a", "b", "c"}) {
        write(name, "$,NumSpec,0\n");
    }
    open();
    list().setFocus();
    QTest::keyClick(&list(), Qt::Key_Down);
    EXPECT_EQ(m_log, QStringList{said.arg(list().currentItem()->text())});
    m_log.clear();
    click("b");
    EXPECT_EQ(m_log, QStringList{said.arg("b")});
    QTest::keyClick(&list(), Qt::Key_Down);
    EXPECT_EQ(m_log, (QStringList{said.arg("b"), said.arg("c")}));
    QTest::keyClick(&list(), Qt::Key_Up);
    QTest::keyClick(&list(), Qt::Key_Up);
    QTest::keyClick(&list(), Qt::Key_Up); // there is none above
    EXPECT_EQ(m_log.mid(2), (QStringList{said.arg("b"), said.arg("a")}));
    m_log.clear();
    click("c");
    click("c");
    click("a");
    EXPECT_EQ(m_log, (QStringList{said.arg("c"), said.arg("c"), said.arg("a")}));
}

TEST_F(LibraryWindowTest, TheFirstLibraryIsReachedFromTheKeyboard)
{
    write("a", library::twoDyes());
    write("b", library::dyes(3, 2, 1));
    open();
    list().clearFocus();
    list().setFocus(Qt::TabFocusReason);
    EXPECT_TRUE(window().m_rows.isEmpty());
    QTest::keyClick(&list(), Qt::Key_Down);
    EXPECT_EQ(window().m_rows.size(), 2);
    QTest::keyClick(&list(), Qt::Key_Down);
    EXPECT_EQ(window().m_rows.size(), 3);
}

TEST_F(LibraryWindowTest, AClickOnTheSameLibraryReadsItAgain)
{
    write("dyes", library::twoDyes());
    open();
    click("dyes");
    row(0).m_pNameEdit->setText("mine");
    click("dyes");
    EXPECT_EQ(row(0).m_pNameEdit->text(), "A");
}

TEST_F(LibraryWindowTest, PreloadShowsTheLibraryOfThatName)
{
    write("a", library::dyes(3, 2, 1));
    write("b", library::twoDyes());
    SpUnmixSpectrumLibraryWnd window;
    window.preload(true, "b");
    EXPECT_TRUE(window.m_bPreload);
    EXPECT_EQ(window.m_strPreload, "b");
    ASSERT_EQ(window.m_rows.size(), 2);
    EXPECT_EQ(window.m_pSpumLibraryList->currentItem()->text(), "b");
    EXPECT_TRUE(window.m_pNextBtn->isEnabled()); // "Append" counts, though nothing is shown yet
    EXPECT_TRUE(m_log.isEmpty());
}

TEST_F(LibraryWindowTest, PreloadOfAnotherNameLeavesTheWindow)
{
    write("b", library::twoDyes());
    open();
    click("b");
    window().preload(false, "B");
    EXPECT_EQ(m_log, QStringList{"SpumKyvo: Unexpected format! Unable to load .csv."});
    EXPECT_EQ(window().m_rows.size(), 2);
    EXPECT_EQ(list().currentItem(), nullptr);
}

// Files that were changed behind the window's back.
class LibraryGoneTest : public LibraryWindowTest
{
protected:
    void openOnDyes()
    {
        write("dyes", library::twoDyes());
        write("other", library::dyes(3, 2, 3));
        open();
        click("dyes");
        m_pRow = window().m_rows.first();
        m_strTold = window().textEdit->toPlainText();
        m_plotted = plotted();
    }
    void expectAsItWas() const
    {
        ASSERT_EQ(window().m_rows.size(), 2);
        EXPECT_EQ(window().m_rows.first(), m_pRow);
        EXPECT_EQ(window().m_spectra.size(), 2);
        EXPECT_EQ(window().textEdit->toPlainText(), m_strTold);
        EXPECT_EQ(window().m_pNotationLE->text(), "two dyes");
        EXPECT_EQ(window().m_emissionTexts, (QStringList{"540", "560"}));
        EXPECT_EQ(plotted(), m_plotted);
        EXPECT_TRUE(window().m_pNextBtn->isEnabled());
    }

    QSharedPointer<SpumKyvoSpectrumCtrl> m_pRow;
    QString m_strTold;
    QByteArray m_plotted;
};

TEST_F(LibraryGoneTest, AVanishedFileIsLoggedAndTheWindowStays)
{
    openOnDyes();
    remove("other");
    click("other");
    EXPECT_TRUE(m_log.contains("SpumKyvo: Unable to open the spectrum library file."));
    EXPECT_EQ(m_log.last(), "SpumKyvo: Unexpected format! Unable to load other.csv.");
    expectAsItWas();
}

TEST_F(LibraryGoneTest, ABrokenFileIsLoggedAndTheWindowStays)
{
    openOnDyes();
    write("other", "$,Note,broken\n$,NumSpec,1\n$,Color,red,blue\n");
    click("other");
    EXPECT_EQ(m_log, QStringList{"SpumKyvo: Unexpected format! Unable to load other.csv."});
    expectAsItWas();
}

TEST_F(LibraryWindowTest, QualifiedWithoutBandsShowsEveryReadableLibrary)
{
    write("dyes", library::twoDyes());
    write("broken", "$,NumSpec,0\n");
    write("others", library::dyes(1, 3, 1));
    open();
    window().m_pQualifiedCkb->setChecked(true);
    EXPECT_EQ(shown(), (QStringList{"dyes", "others"}));
    window().m_pQualifiedCkb->setChecked(false);
    EXPECT_EQ(shown(), (QStringList{"broken", "dyes", "others"}));
}

TEST_F(LibraryWindowTest, QualifiedHidesWhatLacksABandAndKeepsTheLastNote)
{
    write("a dyes", library::twoDyes());
    write("b none", library::dyes(2, 2, 2)); // 520 and 540
    write("c last", "$,Note,the last one\n$,NumSpec,1\nExcitation,Emission,C\n500,1,1\n");
    open();
    window().setReferencePairs(kBands, 0);
    EXPECT_EQ(shown().size(), 3);
    click("a dyes");
    window().m_pQualifiedCkb->setChecked(true);
    EXPECT_EQ(shown(), QStringList{"a dyes"});
    EXPECT_EQ(window().m_pNotationLE->text(), "the last one");
    window().setReferencePairs({{"500", "520"}}, 0);
    EXPECT_EQ(shown(), QStringList{"b none"});
}

TEST_F(LibraryWindowTest, AFileThatGoesWhileFilteredIsHiddenAndComesBack)
{
    write("dyes", library::twoDyes());
    open();
    remove("dyes");
    window().m_pQualifiedCkb->setChecked(true);
    EXPECT_EQ(shown(), QStringList());
    window().m_pQualifiedCkb->setChecked(false);
    EXPECT_EQ(shown(), QStringList{"dyes"});
}

TEST_F(LibraryWindowTest, AppendAsksForTwoSpectra)
{
    write("dyes", library::twoDyes());
    open();
    click("dyes");
    row(0).m_pSelectBox->click();
    EXPECT_FALSE(window().m_pNextBtn->isEnabled());
    EXPECT_FALSE(window().m_pHintLabel->text().isEmpty());
    window().m_pAppendChk->hide();
    row(0).m_pSelectBox->click();
    row(0).m_pSelectBox->click();
    EXPECT_TRUE(window().m_pNextBtn->isEnabled());
    EXPECT_EQ(window().m_pHintLabel->text(), "");
    row(1).m_pSelectBox->click();
    EXPECT_FALSE(window().m_pNextBtn->isEnabled());
}

TEST_F(LibraryWindowTest, ASpectrumThatLacksABandCannotBeTaken)
{
    write("others", library::dyes(2, 2, 2));
    open();
    window().setReferencePairs(kBands, 0);
    click("others");
    EXPECT_FALSE(window().m_pNextBtn->isEnabled());
    EXPECT_EQ(window().m_pHintLabel->text(), "\"Dye 1\" has no value for 500, 560.");
}

TEST_F(LibraryWindowTest, LoadModeOffersToAppend)
{
    open();
    EXPECT_FALSE(window().isAppendChecked());
    window().setLoadMode(false);
    EXPECT_EQ(window().m_pNextBtn->text(), "Load");
    EXPECT_TRUE(window().m_pAppendChk->isHidden());
    window().setLoadMode(true);
    EXPECT_EQ(window().m_pNextBtn->text(), "Load");
    EXPECT_FALSE(window().m_pAppendChk->isHidden());
    window().m_pAppendChk->click();
    EXPECT_TRUE(window().isAppendChecked());
}

TEST_F(LibraryWindowTest, AnImportTakesOne)
{
    write("dyes", library::dyes(3, 2, 3));
    open();
    window().setMultiSelect(false);
    EXPECT_EQ(window().windowTitle(), "Import Single Spectrum");
    EXPECT_EQ(window().m_pNextBtn->text(), "Import");
    EXPECT_TRUE(window().m_pAppendChk->isHidden());
    click("dyes");
    EXPECT_NE(qobject_cast<QRadioButton*>(row(0).m_pSelectBox), nullptr);
    EXPECT_TRUE(window().m_pNextBtn->isEnabled());
    EXPECT_EQ(handedBack(), QStringList{"Dye 3"});
    QTest::mouseClick(row(0).m_pSelectBox, Qt::LeftButton, Qt::NoModifier,
                      QPoint(8, row(0).m_pSelectBox->height() / 2));
    EXPECT_EQ(handedBack(), QStringList{"Dye 1"});
    EXPECT_EQ(window().m_pPlot->dataLines(), QStringList{"0"});
}

TEST_F(LibraryWindowTest, AnImportNeedsEveryBand)
{
    write("others", library::dyes(1, 2, 1));
    open();
    window().setMultiSelect(false);
    window().setReferencePairs(kBands, 0);
    click("others");
    EXPECT_FALSE(window().m_pNextBtn->isEnabled());
}

TEST_F(LibraryWindowTest, SpectraOfZerosAreNotHandedBack)
{
    write("dyes", "$,NumSpec,3\n$,Select,1,1,0\nExcitation,Emission,A,Zero,C\n500,540,1,0,1\n500,560,2,0,1\n");
    open();
    click("dyes");
    EXPECT_TRUE(row(1).m_pSelectBox->isChecked());
    EXPECT_FALSE(row(1).m_pSelectBox->isEnabled());
    EXPECT_EQ(handedBack(), QStringList{"A"});
}

TEST_F(LibraryWindowTest, CopiesAreTheCallersAndCarryTheEdits)
{
    write("dyes", library::twoDyes());
    const QByteArray before = read("dyes");
    open();
    click("dyes");
    row(1).m_pNameEdit->setText("renamed");
    row(1).m_pColorCombo->setCurrentText("gold");
    row(0).m_pSelectBox->click();
    const QList<SpectrumPlotParams*> spectra = window().selectedSpectra();
    m_pWindow.reset();
    ASSERT_EQ(spectra.size(), 1);
    EXPECT_EQ(spectra[0]->settings.name, "renamed");
    EXPECT_EQ(spectra[0]->settings.color, "gold");
    EXPECT_EQ(spectra[0]->settings.index, 0);
    EXPECT_EQ(spectra[0]->origin, "bench");
    EXPECT_TRUE(spectra[0]->control.isNull());
    EXPECT_EQ(spectra[0]->points[1].value, 0.2);
    qDeleteAll(spectra);
    EXPECT_EQ(read("dyes"), before);
}

TEST_F(LibraryWindowTest, EditsChangeThePlot)
{
    write("dyes", library::twoDyes());
    open();
    click("dyes");
    row(0).m_pNameEdit->setFocus();
    row(0).m_pNameEdit->selectAll();
    QTest::keyClicks(row(0).m_pNameEdit, "Mine");
    QTest::keyClick(row(0).m_pNameEdit, Qt::Key_Return);
    EXPECT_THAT(plotted().toStdString(), StartsWith("Emission Wavelength [nm],Mine,B\n"));
    EXPECT_TRUE(window().isVisible());
    row(1).m_pSelectBox->click();
    EXPECT_THAT(plotted().toStdString(), StartsWith("Emission Wavelength [nm],Mine\n"));
}

TEST_F(LibraryWindowTest, NormalizedChangesThePlotAlone)
{
    write("dyes", "$,NumSpec,3\nExcitation,Emission,A,Zero,Below\n500,540,1,0,-1\n500,560,4,0,-2\n");
    open();
    click("dyes");
    window().m_pNormalizedCkb->click();
    // What becomes no number is left out.
    EXPECT_EQ(plotted(), "Emission Wavelength [nm],A,Below\n540,0.25,1\n560,1,2\n");
    const QList<SpectrumPlotParams*> spectra = window().selectedSpectra();
    ASSERT_EQ(spectra.size(), 2);
    EXPECT_EQ(spectra[0]->points[1].value, 4.0);
    EXPECT_EQ(spectra[1]->points[1].value, -2.0);
    qDeleteAll(spectra);
}

TEST_F(LibraryWindowTest, LegendFollowsItsBox)
{
    open();
    EXPECT_EQ(window().m_pPlot->isLegendVisible(), window().m_pLegendCkb->isChecked());
    for (int i = 0; i < 2; ++i) {
        window().m_pLegendCkb->click();
        EXPECT_EQ(window().m_pPlot->isLegendVisible(), window().m_pLegendCkb->isChecked());
    }
}

TEST_F(LibraryWindowTest, SpectraNamedAlikeHaveALineEach)
{
    write("dyes", "$,NumSpec,2\nExcitation,Emission,A,A\n500,540,1,2\n");
    open();
    click("dyes");
    EXPECT_EQ(window().m_pPlot->dataLines().size(), 2);
    EXPECT_EQ(handedBack(), (QStringList{"A", "A"}));
}

TEST_F(LibraryWindowTest, NamesAreShownAsTheyStand)
{
    const QByteArray name = "<b>x</b>" + QByteArray(200, 'n');
    write("<i>lib", "$,NumSpec,1\nExcitation,Emission," + name + "\n500,540,1\n");
    open();
    click("<i>lib");
    EXPECT_EQ(row(0).m_pNameEdit->text(), QString(name));
    EXPECT_TRUE(window().textEdit->toPlainText().contains(name));
    EXPECT_FALSE(Qt::mightBeRichText(list().item(0)->text()) && list().item(0)->toolTip() == list().item(0)->text());
    EXPECT_LE(window().width(), 1600);
}

// How the window can be left, and whether a batch that is being started goes on.
class LibraryEndTest : public LibraryWindowTest
{
protected:
    void SetUp() override
    {
        CORVUtilityFns::setSpumBatchStatus(true);
        write("dyes", library::twoDyes());
        open();
        click("dyes");
        m_pFinished = std::make_unique<QSignalSpy>(m_pWindow.get(), &QDialog::finished);
    }
    void TearDown() override
    {
        CORVUtilityFns::setSpumBatchStatus(false);
        m_pFinished.reset();
    }
    void expectEnd(int nResult, bool bBatch)
    {
        ASSERT_EQ(m_pFinished->size(), 1);
        EXPECT_EQ(m_pFinished->first().first().toInt(), nResult);
        EXPECT_EQ(window().result(), nResult);
        EXPECT_FALSE(window().isVisible());
        EXPECT_EQ(CORVUtilityFns::getSpumBatchStatus(), bBatch);
    }

    std::unique_ptr<QSignalSpy> m_pFinished;
};

TEST_F(LibraryEndTest, ApplyLetsTheBatchGoOn)
{
    window().m_pNextBtn->setText("Next");
    QTest::mouseClick(window().m_pNextBtn, Qt::LeftButton);
    expectEnd(1, true);
}

TEST_F(LibraryEndTest, CancelEndsTheBatch)
{
    QTest::mouseClick(window().m_pCloseBtn, Qt::LeftButton);
    expectEnd(0, false);
}

TEST_F(LibraryEndTest, EscapeEndsTheBatch)
{
    QTest::keyClick(&list(), Qt::Key_Escape);
    expectEnd(0, false);
}

TEST_F(LibraryEndTest, ClosingTheWindowEndsTheBatch)
{
    window().close();
    expectEnd(0, false);
}

} // namespace
