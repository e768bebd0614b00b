// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/ImportDialog.h"

#include "ImportDialogFixture.h"
#include "ScriptedResponder.h"
#include "mnemonics.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>

#include <limits>

namespace {

using ImportDialogTest = ImportDialogFixture;

TEST_F(ImportDialogTest, AnImportThatNeedsNoCorrectionIsOneClickFromHere)
{
    writeNamed();
    open();
    EXPECT_EQ(child<QLabel>("m_pSummaryLabel").text(), "4 images: fluorescence, 2 excitations, 3 emissions");
    EXPECT_TRUE(importButton().isEnabled());
    EXPECT_TRUE(importButton().hasFocus());
    look::keep(*m_pDialog, "import_ready");
    import();
    EXPECT_EQ(m_pDialog->result(), QDialog::Accepted);
    EXPECT_EQ(m_pDialog->sequenceFolder(), m_folder.filePath("stack_sequence"));
    CORVSequenceDataset sequence;
    openSequence(sequence);
    EXPECT_EQ(sequence.getDatasets().size(), 4);
    EXPECT_EQ(sequence.getDatasets().at(0)->getEmissionFilter(), "700nm");
}

TEST_F(ImportDialogTest, NothingIsWrittenBeforeTheClick)
{
    writeNamed();
    open();
    m_pDialog->reject();
    EXPECT_FALSE(m_pDialog->isVisible());
    EXPECT_EQ(m_pDialog->sequenceFolder(), "");
    EXPECT_EQ(QDir(m_folder.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList{"stack"});
}

TEST_F(ImportDialogTest, WhatIsMissingIsMarkedAndCanBeTyped)
{
    writeImage("ex640_em700.tif", 100);
    writeImage("ex640_b.tif", 100);
    open();
    EXPECT_FALSE(importButton().isEnabled());
    EXPECT_TRUE(messages().contains("1 cell is to be filled in")) << qPrintable(messages());
    const int row = model().index(0, 3).data() == "?" ? 0 : 1;
    const QModelIndex cell = model().index(row, 3);
    EXPECT_EQ(cell.data(), "?");
    look::keep(*m_pDialog, "import_missing");
    auto& table = child<QTableView>("m_pTableView");
    table.setFocus();
    table.setCurrentIndex(cell);
    for (const char key : {'7', '2', '0'}) {
        QTest::keyClick(QApplication::focusWidget(), key);
    }
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    QApplication::processEvents(); // the view commits behind the key
    EXPECT_EQ(model().index(row, 3).data(), "720");
    EXPECT_TRUE(importButton().isEnabled()) << qPrintable(messages());
    EXPECT_TRUE(m_pDialog->isVisible()) << "Return commits the cell and nothing else";
    import();
    EXPECT_EQ(m_pDialog->result(), QDialog::Accepted);
}

TEST_F(ImportDialogTest, TheTickThatSettlesADoubtIsTakenBackByAChange)
{
    writeImage("t1.tif", 100);
    writeImage("t2.tif", 100);
    open();
    EXPECT_TRUE(messages().contains("could be frames")) << qPrintable(messages());
    auto& confirm = child<QCheckBox>("m_pConfirmBox");
    EXPECT_TRUE(confirm.isVisible());
    EXPECT_FALSE(importButton().isEnabled());
    confirm.click();
    EXPECT_TRUE(importButton().isEnabled()) << qPrintable(messages());
    model().setData(model().index(0, 2), "4", Qt::EditRole);
    EXPECT_EQ(m_pDialog->table().text(0, ImportTable::Time), "4");
    EXPECT_FALSE(confirm.isChecked());
    EXPECT_FALSE(importButton().isEnabled());
    confirm.click();
    EXPECT_TRUE(importButton().isEnabled()) << qPrintable(messages());
}

TEST_F(ImportDialogTest, ADoubtOfARowGoesWhenTheRowIsCorrected)
{
    writeImage("ex640-660.tif", 100);
    writeImage("ex675-700.tif", 100);
    open();
    auto& confirm = child<QCheckBox>("m_pConfirmBox");
    ASSERT_TRUE(m_pDialog->table().isInDoubt());
    EXPECT_TRUE(confirm.isVisible());
    EXPECT_TRUE(model().index(0, 1).data(Qt::ToolTipRole).toString().contains("could be a range"));
    for (int row = 0; row < 2; ++row) {
        model().setData(model().index(row, 2), row == 0 ? "640" : "675", Qt::EditRole);
    }
    EXPECT_FALSE(m_pDialog->table().isInDoubt());
    EXPECT_FALSE(confirm.isVisible());
    EXPECT_TRUE(importButton().isEnabled()) << qPrintable(messages());
}

TEST_F(ImportDialogTest, NumberedFramesBecomeTimesByTheSecondsBetweenThem)
{
    for (const char* name : {"img_1.tif", "img_2.tif", "img_3.tif"}) {
        writeImage(name, 100);
    }
    open();
    EXPECT_EQ(child<QComboBox>("m_pKindBox").currentIndex(), static_cast<int>(ImportTable::Kind::Channels));
    EXPECT_TRUE(messages().contains("makes times of numbered frames")) << qPrintable(messages());
    look::keep(*m_pDialog, "import_channels");
    typeInterval("30");
    EXPECT_EQ(child<QComboBox>("m_pKindBox").currentIndex(), static_cast<int>(ImportTable::Kind::Times));
    EXPECT_EQ(m_pDialog->table().text(2, ImportTable::Time), "90");
    look::keep(*m_pDialog, "import_times");
    import();
    CORVSequenceDataset sequence;
    openSequence(sequence);
    EXPECT_TRUE(sequence.isKyvoSequence());
}

TEST_F(ImportDialogTest, CellsThatWereEditedStayWhenTheSecondsBetweenFramesChange)
{
    for (const char* name : {"img_1.tif", "img_2.tif", "img_3.tif"}) {
        writeImage(name, 100);
    }
    open();
    typeInterval("30");
    const int time = 2;
    ASSERT_EQ(m_pDialog->table().text(1, ImportTable::Time), "60");
    model().setData(model().index(1, time), "65", Qt::EditRole);
    model().setData(model().index(0, time + 1), "0.5", Qt::EditRole);
    model().setData(model().index(2, 0), Qt::Unchecked, Qt::CheckStateRole);
    typeInterval("20");
    EXPECT_EQ(m_pDialog->table().text(0, ImportTable::Time), "20");
    EXPECT_EQ(m_pDialog->table().text(0, ImportTable::Exposure), "0.5");
    EXPECT_EQ(m_pDialog->table().text(1, ImportTable::Time), "65");
    EXPECT_FALSE(m_pDialog->table().isUsed(2));
}

TEST_F(ImportDialogTest, ASecondLookThatFailsLeavesTheTableWithItsSecondsBetweenFrames)
{
    const QString path = writeImage("img_1.tif", 100);
    open();
    typeInterval("30");
    ASSERT_EQ(m_pDialog->table().text(0, ImportTable::Time), "30");
    ASSERT_TRUE(QFile::remove(path));
    typeInterval("20");
    EXPECT_TRUE(messages().contains("no TIFF file")) << qPrintable(messages());
    EXPECT_EQ(m_pDialog->table().text(0, ImportTable::Time), "30");
    EXPECT_EQ(child<QLineEdit>("m_pIntervalEdit").text(), "30");
    typeInterval("x");
    EXPECT_TRUE(messages().contains("takes a number above 0")) << qPrintable(messages());
    EXPECT_EQ(m_pDialog->table().count(), 1);
}

TEST_F(ImportDialogTest, ATableThatTheUserLoadsReplacesWhatWasEditedAndTellsItsOwnTimes)
{
    writeNamed();
    open();
    model().setData(model().index(0, 3), "650", Qt::EditRole);
    ScriptedResponder files;
    files.m_file = writeFile("mine.csv", "file,time\nex640_em700.tif,1\nex640_em720.tif,5\n");
    ASSERT_TRUE(child<QLineEdit>("m_pIntervalEdit").isEnabled());
    child<QPushButton>("m_pTableButton").click();
    EXPECT_EQ(m_pDialog->table().kind(), ImportTable::Kind::Times);
    EXPECT_EQ(m_pDialog->table().count(), 2);
    EXPECT_EQ(m_pDialog->table().text(0, ImportTable::Emission), "");
    EXPECT_TRUE(messages().contains("those of mine.csv")) << qPrintable(messages());
    EXPECT_FALSE(child<QLineEdit>("m_pIntervalEdit").isEnabled());
    files.m_file = writeFile("bad.csv", "file,time\nex640_em700.tif,soon\n");
    child<QPushButton>("m_pTableButton").click();
    EXPECT_TRUE(messages().contains("soon")) << qPrintable(messages());
    EXPECT_EQ(m_pDialog->table().count(), 2);
    // The folder once more: its names tell again.
    files.m_file = m_folder.filePath("stack");
    child<QPushButton>("m_pFolderButton").click();
    wait();
    EXPECT_EQ(m_pDialog->table().count(), 4);
    EXPECT_EQ(m_pDialog->table().text(0, ImportTable::Emission), "700");
    EXPECT_TRUE(child<QLineEdit>("m_pIntervalEdit").isEnabled());
}

TEST_F(ImportDialogTest, ATableBesideImagesThatTellNothingIsTaken)
{
    writeImage("a.tif", 100);
    writeImage("b.tif", 100);
    writeFile("images.csv", "file,excitation,emission\na.tif,488,510\nb.tif,488,530\n");
    open();
    EXPECT_TRUE(messages().contains("those of images.csv")) << qPrintable(messages());
    EXPECT_TRUE(importButton().isEnabled());
    EXPECT_EQ(m_pDialog->table().text(1, ImportTable::Emission), "530");
}

TEST_F(ImportDialogTest, SeveralFilesOfAFolderUseTheseAlone)
{
    writeNamed();
    open({m_folder.filePath("stack/ex640_em700.tif"), m_folder.filePath("stack/ex640_em720.tif")});
    EXPECT_EQ(m_pDialog->table().usedCount(), 2);
    import();
    CORVSequenceDataset sequence;
    openSequence(sequence);
    EXPECT_EQ(sequence.getDatasets().size(), 2);
}

TEST_F(ImportDialogTest, AnOutputThatExistsIsReplacedOnlyWhenThatIsTicked)
{
    writeNamed();
    open();
    const QString output = m_folder.filePath("there");
    ASSERT_TRUE(QDir().mkdir(output));
    child<QLineEdit>("m_pOutputEdit").setText(output);
    EXPECT_FALSE(importButton().isEnabled());
    EXPECT_TRUE(messages().contains("exists already")) << qPrintable(messages());
    child<QCheckBox>("m_pReplaceBox").click();
    import();
    EXPECT_EQ(m_pDialog->result(), QDialog::Accepted);
    EXPECT_EQ(m_pDialog->sequenceFolder(), output);
}

TEST_F(ImportDialogTest, AnErrorIsToldInTheDialogWhichStays)
{
    writeNamed();
    writeImage("ex700_em740.tif", 100, 8);
    open();
    import();
    EXPECT_TRUE(m_pDialog->isVisible());
    EXPECT_TRUE(messages().contains("ex700_em740.tif")) << qPrintable(messages());
    EXPECT_FALSE(messages().contains("inferred table")) << qPrintable(messages());
    EXPECT_FALSE(messages().contains("--")) << qPrintable(messages());
    look::keep(*m_pDialog, "import_error");
    EXPECT_FALSE(QFileInfo::exists(m_folder.filePath("stack_sequence")));
    // The row in question, left out, is no obstacle any more.
    for (int row = 0; row < model().rowCount(); ++row) {
        if (m_pDialog->table().text(row, ImportTable::Image).startsWith("ex700")) {
            model().setData(model().index(row, 0), Qt::Unchecked, Qt::CheckStateRole);
        }
    }
    import();
    EXPECT_EQ(m_pDialog->result(), QDialog::Accepted);
}

TEST_F(ImportDialogTest, AFolderWithoutImagesIsToldAndAnotherCanBeChosen)
{
    open();
    EXPECT_TRUE(messages().contains("no TIFF file")) << qPrintable(messages());
    EXPECT_FALSE(importButton().isEnabled());
    EXPECT_TRUE(child<QPushButton>("m_pFolderButton").isEnabled());
    look::keep(*m_pDialog, "import_nothing");
}

TEST_F(ImportDialogTest, EscapeStopsAnImportAndLeavesNothing)
{
    for (int i = 0; i < 40; ++i) {
        writeImage(QStringLiteral("ex640_em%1.tif").arg(500 + i), 100, 512);
    }
    open();
    ASSERT_TRUE(importButton().isEnabled()) << qPrintable(messages());
    importButton().click();
    EXPECT_TRUE(child<QPushButton>("m_pAbortButton").isVisible());
    EXPECT_FALSE(child<QTableView>("m_pTableView").isEnabled());
    QTest::keyClick(m_pDialog.get(), Qt::Key_Escape);
    wait();
    EXPECT_TRUE(m_pDialog->isVisible());
    EXPECT_TRUE(messages().contains("aborted")) << qPrintable(messages());
    EXPECT_EQ(QDir(m_folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
              QStringList{"stack"});
    QTest::keyClick(m_pDialog.get(), Qt::Key_Escape);
    EXPECT_FALSE(m_pDialog->isVisible());
}

TEST_F(ImportDialogTest, TheEndOfTheDialogEndsAnImportAndLeavesNothingHalfWritten)
{
    for (int i = 0; i < 40; ++i) {
        writeImage(QStringLiteral("ex640_em%1.tif").arg(500 + i), 100, 512);
    }
    open();
    importButton().click();
    m_pDialog.reset();
    EXPECT_EQ(QDir(m_folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
              QStringList{"stack"});
}

TEST_F(ImportDialogTest, ABadNumberAmongTheOptionsIsToldAndGetsTheFocus)
{
    writeNamed();
    open();
    auto& exposure = child<QLineEdit>("m_pExposureEdit");
    exposure.setText("-1");
    importButton().click();
    EXPECT_TRUE(m_pDialog->isVisible());
    EXPECT_TRUE(messages().contains("numbers above 0"));
    EXPECT_TRUE(exposure.hasFocus());
}

TEST_F(ImportDialogTest, LooksInADarkPaletteAndEmpty)
{
    const QPalette before = QApplication::palette();
    QApplication::setPalette(screen::darkPalette());
    open(QStringList());
    look::keep(*m_pDialog, "import_empty_dark");
    EXPECT_FALSE(importButton().isEnabled());
    writeImage("ex640_em700.tif", 100);
    writeImage("ex640_b.tif", 100);
    open();
    look::keep(*m_pDialog, "import_missing_dark");
    m_pDialog.reset();
    QApplication::setPalette(before);
}

// 1600 x 1200 at two pixels for one, with room for a title.
TEST_F(ImportDialogTest, FitsASmallScreenWithAllThatItMayShow)
{
    writeImage("t1.tif", 100);
    writeImage("t2.tif", 100);
    open();
    child<QLineEdit>("m_pOutputEdit").setText(m_folder.path());
    ASSERT_TRUE(child<QCheckBox>("m_pConfirmBox").isVisible());
    ASSERT_TRUE(child<QCheckBox>("m_pReplaceBox").isVisible());
    QApplication::processEvents();
    EXPECT_LE(m_pDialog->minimumSizeHint().width(), 800);
    EXPECT_LE(m_pDialog->minimumSizeHint().height(), 568);
    m_pDialog->resize(800, 568);
    look::keep(*m_pDialog, "import_small");
    EXPECT_EQ(m_pDialog->size(), QSize(800, 568));
    EXPECT_GE(child<QTableView>("m_pTableView").height(), 100);
}

TEST_F(ImportDialogTest, EveryControlHasANameAndNoneIsTheDefault)
{
    writeNamed();
    open();
    mnemonics::expectUnique(*m_pDialog);
    for (QPushButton* pButton : m_pDialog->findChildren<QPushButton*>()) {
        EXPECT_FALSE(pButton->autoDefault()) << qPrintable(pButton->text());
    }
    for (const QLineEdit* pEdit : m_pDialog->findChildren<QLineEdit*>()) {
        bool named = !pEdit->accessibleName().isEmpty();
        for (const QLabel* pLabel : m_pDialog->findChildren<QLabel*>()) {
            named = named || pLabel->buddy() == pEdit;
        }
        EXPECT_TRUE(named) << qPrintable(pEdit->objectName());
    }
}

TEST_F(ImportDialogTest, SizesThatDifferAreBroughtToOneByTheBoxThatTheMessageNames)
{
    writeImage("ex640_em700.tif", 100);
    writeImage("ex640_em720.tif", 200, 32);
    open();
    import();
    EXPECT_TRUE(m_pDialog->isVisible());
    EXPECT_TRUE(messages().contains("ex640_em720.tif has 32 x 32 pixels where ex640_em700.tif has 16 x 16; \"Different "
                                    "sizes\" brings them to one"))
        << qPrintable(messages());
    auto& sizes = child<QComboBox>("m_pSizesBox");
    sizes.setCurrentIndex(sizes.findText("bin"));
    look::keep(*m_pDialog, "import_sizes");
    import();
    ASSERT_EQ(m_pDialog->result(), QDialog::Accepted) << qPrintable(messages());
    CORVSequenceDataset sequence;
    openSequence(sequence);
    EXPECT_EQ(pixel(sequence, 1, 0, 0), 200.0 + 201.0 + 232.0 + 233.0);
}

TEST_F(ImportDialogTest, ABackgroundIsSubtractedAndABrokenRuleIsTold)
{
    writeNamed();
    open();
    auto& background = child<QLineEdit>("m_pBackgroundEdit");
    background.setText("percentile:200");
    import();
    EXPECT_TRUE(messages().contains("The background: \"percentile:200\" is not a percentile from 0 to 100."))
        << qPrintable(messages());
    EXPECT_TRUE(background.hasFocus());
    background.setText("percentile:0");
    import();
    ASSERT_EQ(m_pDialog->result(), QDialog::Accepted) << qPrintable(messages());
    CORVSequenceDataset sequence;
    openSequence(sequence);
    EXPECT_EQ(pixel(sequence, 0, 0, 0), 0.0);
}

TEST_F(ImportDialogTest, PixelsThatAreNotFiniteAreLeftOutByTheBoxThatTheMessageNames)
{
    writeImage("ex640_em700.tif", 100);
    CILImage holes = ramp(100);
    ASSERT_EQ(holes.ChangeType(ORVTYPE_FLOAT), EIL_SUCCESS);
    holes.setValue(5, std::numeric_limits<double>::quiet_NaN());
    QString error;
    ASSERT_TRUE(writeTiff(m_folder.filePath("stack/ex640_em720.tif"), holes, TiffWriteOptions(), &error));
    open();
    import();
    EXPECT_TRUE(messages().contains("is not finite or too large; \"Leave out invalid pixels\" does so with them"))
        << qPrintable(messages());
    child<QCheckBox>("m_pInvalidBox").click();
    import();
    ASSERT_EQ(m_pDialog->result(), QDialog::Accepted) << qPrintable(messages());
    CORVSequenceDataset sequence;
    openSequence(sequence);
    EXPECT_EQ(pixel(sequence, 0, 5, 0), 0.0) << "of all images";
}

} // namespace
