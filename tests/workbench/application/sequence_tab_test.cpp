// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/SequenceTab.h"

#include "look.h"
#include "mnemonics.h"
#include "support/pointer.h"
#include "support/screen.h"
#include "support/simulated.h"

#include "host/CORVDataset.h"
#include "host/CORVSequenceDataset.h"
#include "platform/orvimage/TiffIo.h"
#include "services/importer/Importer.h"
#include "workbench/application/ThumbnailModel.h"
#include "workbench/application/ThumbnailView.h"
#include "workbench/application/Thumbnails.h"
#include "workbench/application/UnitBox.h"

#include <QCheckBox>
#include <QDirIterator>
#include <QLabel>
#include <QScrollBar>
#include <QSignalSpy>
#include <QSlider>
#include <QStandardItemModel>

namespace {

// A copy that a test may damage.
QString copyOf(const QString& folder, const QString& target)
{
    QDirIterator files(folder, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString from = files.next();
        const QString to = target + from.mid(folder.size());
        QDir().mkpath(QFileInfo(to).path());
        EXPECT_TRUE(QFile::copy(from, to));
    }
    return target;
}

const QStringList kSmall{"--size", "64", "--bands", "6", "--excitations", "605,675"};

class SequenceTabTest : public ::testing::Test
{
protected:
    // Shows the tab of a sequence and waits for its thumbnails.
    void open(const QString& folder)
    {
        QString error;
        ASSERT_EQ(m_sequence.open(folder, &error, &m_warnings), ESTATUS_SUCCESS) << qPrintable(error);
        show();
    }
    void show()
    {
        m_pTab = std::make_unique<SequenceTab>(&m_sequence);
        m_pTab->resize(700, 500);
        screen::show(*m_pTab);
        m_pTab->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(m_pTab.get()));
        ASSERT_TRUE(QTest::qWaitFor([&] { return thumbnails().isFinished(); }, 20000));
        view().setFocus();
    }
    Thumbnails& thumbnails() { return m_pTab->thumbnails(); }
    ThumbnailView& view() { return *m_pTab->view(); }
    ThumbnailModel& model() { return *qobject_cast<ThumbnailModel*>(view().model()); }
    QPoint middleOf(int tile) { return view().visualRect(model().indexOf(tile)).center() - QPoint(0, 10); }
    QString tipOf(int tile) { return model().indexOf(tile).data(Qt::ToolTipRole).toString(); }
    QString stateText()
    {
        QString text;
        for (const QLabel* pLabel : m_pTab->findChildren<QLabel*>()) {
            text += pLabel->text() + ' ';
        }
        return text;
    }

    QTemporaryDir m_folder;
    CORVSequenceDataset m_sequence;
    QStringList m_warnings;
    std::unique_ptr<SequenceTab> m_pTab;
};

TEST_F(SequenceTabTest, DoubleClickAndReturnOpenTheImageAndThePhotograph)
{
    open(simulated::sequence(kSmall));
    QList<QPair<CORVDataset*, int>> opened;
    QObject::connect(m_pTab.get(), &SequenceTab::imageActivated, [&opened](CORVDataset* pDataset, int nImage) {
        opened.append({pDataset, nImage});
    });
    QTest::mouseClick(view().viewport(), Qt::LeftButton, Qt::NoModifier, middleOf(2));
    QTest::mouseDClick(view().viewport(), Qt::LeftButton, Qt::NoModifier, middleOf(2));
    ASSERT_EQ(opened.size(), 1);
    EXPECT_EQ(opened[0].first, m_sequence.getDatasets().at(1));
    EXPECT_EQ(opened[0].second, IMAGETYPE_MAIN_DATA);
    view().setCurrentTile(0);
    QTest::keyClick(&view(), Qt::Key_Return);
    QTest::keyClick(&view(), Qt::Key_Enter);
    ASSERT_EQ(opened.size(), 3);
    EXPECT_EQ(opened[2].first, m_sequence.getDatasets().first());
    EXPECT_EQ(opened[2].second, IMAGETYPE_PHOTOGRAPH);
}

TEST_F(SequenceTabTest, ArrowsGoOnInTheNextRowWhereTilesFollowOneAnother)
{
    open(simulated::sequence({"--kind", "luminescent", "--size", "64", "--bands", "5"}));
    ASSERT_FALSE(model().grid().isTable());
    view().setSide(200);
    ASSERT_EQ(model().flow(), 3);
    view().setCurrentTile(2);
    QTest::keyClick(&view(), Qt::Key_Right);
    EXPECT_EQ(view().currentTile(), 3);
    QTest::keyClick(&view(), Qt::Key_Left);
    QTest::keyClick(&view(), Qt::Key_Left);
    EXPECT_EQ(view().currentTile(), 1);
    QTest::keyClick(&view(), Qt::Key_Down);
    EXPECT_EQ(view().currentTile(), 4);
    QTest::keyClick(&view(), Qt::Key_End);
    EXPECT_EQ(view().currentTile(), 5);
    QTest::keyClick(&view(), Qt::Key_Right);
    EXPECT_EQ(view().currentTile(), 5);
    QTest::keyClick(&view(), Qt::Key_Home);
    QTest::keyClick(&view(), Qt::Key_Up);
    EXPECT_EQ(view().currentTile(), 0);
}

TEST_F(SequenceTabTest, ArrowsNeverStandOnAnEmptyCell)
{
    open(simulated::sequence({"--size", "64"}));
    ASSERT_TRUE(model().grid().isTable());
    view().setCurrentTile(0);
    for (const Qt::Key key : {Qt::Key_Down, Qt::Key_Right, Qt::Key_Down, Qt::Key_Right, Qt::Key_Right, Qt::Key_Right,
                              Qt::Key_Right, Qt::Key_Right, Qt::Key_Down, Qt::Key_Left, Qt::Key_Left, Qt::Key_Left,
                              Qt::Key_Left, Qt::Key_Left, Qt::Key_Left, Qt::Key_Up, Qt::Key_End, Qt::Key_Home}) {
        QTest::keyClick(&view(), key);
        EXPECT_GE(view().currentTile(), 0);
    }
}

TEST_F(SequenceTabTest, TabLeavesTheThumbnails)
{
    open(simulated::sequence(kSmall));
    ASSERT_TRUE(view().hasFocus());
    QTest::keyClick(&view(), Qt::Key_Tab);
    EXPECT_FALSE(view().hasFocus());
}

TEST_F(SequenceTabTest, AnImageWhoseFileIsMissingIsMarkedInItsPlaceWithTheReason)
{
    const QString folder = copyOf(simulated::sequence(kSmall), m_folder.filePath("s"));
    {
        CORVSequenceDataset whole;
        ASSERT_EQ(whole.open(folder), ESTATUS_SUCCESS);
        CORVDataset* pSecond = whole.getDatasets().at(1);
        ASSERT_TRUE(QFile::remove(pSecond->imageList().getImage(IMAGETYPE_LUMINESCENT)->path()));
    }
    open(folder);
    EXPECT_EQ(m_sequence.getDatasets().size(), 5);
    ASSERT_EQ(thumbnails().tiles().count(), 7);
    EXPECT_EQ(thumbnails().state(2), Thumbnails::State::Failed);
    EXPECT_TRUE(tipOf(2).contains("cannot be shown: ")) << qPrintable(tipOf(2));
    EXPECT_TRUE(tipOf(2).contains(".tif", Qt::CaseInsensitive)) << qPrintable(tipOf(2));
    EXPECT_TRUE(model().indexOf(2).data(Qt::AccessibleTextRole).toString().endsWith("cannot be shown"));
    EXPECT_EQ(thumbnails().state(3), Thumbnails::State::Ready);
    EXPECT_TRUE(stateText().contains("1 image cannot be shown"));
    // Its filters are those of its click info.
    EXPECT_TRUE(model().grid().caption(2).startsWith("605 → ")) << qPrintable(model().grid().caption(2));
    look::keep(*m_pTab, "sequence_missing");
    QList<QPair<CORVDataset*, int>> opened;
    QObject::connect(m_pTab.get(), &SequenceTab::imageActivated, [&opened](CORVDataset* pDataset, int nImage) {
        opened.append({pDataset, nImage});
    });
    view().setCurrentTile(2);
    QTest::keyClick(&view(), Qt::Key_Return);
    EXPECT_EQ(opened.size(), 0);
}

TEST_F(SequenceTabTest, AFileThatIsDeletedWhileOpenIsMarkedAtTheNextReading)
{
    open(copyOf(simulated::sequence(kSmall), m_folder.filePath("s")));
    const CORVDataset* pLast = m_sequence.getDatasets().last();
    ASSERT_TRUE(QFile::remove(pLast->imageList().getImage(IMAGETYPE_LUMINESCENT)->path()));
    m_pTab->refresh();
    ASSERT_TRUE(QTest::qWaitFor([&] { return thumbnails().isFinished(); }, 20000));
    EXPECT_EQ(thumbnails().state(6), Thumbnails::State::Failed);
    EXPECT_TRUE(tipOf(6).contains("cannot be shown: ")) << qPrintable(tipOf(6));
    EXPECT_EQ(thumbnails().state(5), Thumbnails::State::Ready);
}

TEST_F(SequenceTabTest, UnitsThatCannotBeHadAreDisabledWithTheReason)
{
    open(simulated::sequence({"--kind", "luminescent", "--size", "64", "--bands", "3"}));
    auto* pBox = m_pTab->findChild<UnitBox*>("m_pSequenceUnitBox");
    auto* pItems = qobject_cast<QStandardItemModel*>(pBox->model());
    EXPECT_EQ(pBox->unit(), DISPLAYUNIT_RADIANCE);
    EXPECT_TRUE(pItems->item(DISPLAYUNIT_COUNTS)->isEnabled());
    EXPECT_FALSE(pItems->item(DISPLAYUNIT_RADIANT_EFFICIENCY)->isEnabled());
    EXPECT_TRUE(pItems->item(DISPLAYUNIT_RADIANT_EFFICIENCY)->toolTip().contains("Excitation Irradiance"));
    const double radiance = thumbnails().commonRange().maximum;
    pBox->setCurrentIndex(0);
    Q_EMIT pBox->activated(0);
    ASSERT_TRUE(QTest::qWaitFor([&] { return thumbnails().isFinished(); }, 20000));
    EXPECT_EQ(thumbnails().unit(), DISPLAYUNIT_COUNTS);
    EXPECT_LT(thumbnails().commonRange().maximum, radiance);
}

TEST_F(SequenceTabTest, OneScaleSpansAllImagesAndEachCanHaveItsOwn)
{
    open(simulated::sequence(kSmall));
    const DisplayRange common = thumbnails().commonRange();
    EXPECT_EQ(thumbnails().range(1), common);
    EXPECT_EQ(thumbnails().range(4), common);
    m_pTab->findChild<QComboBox*>("m_pSequenceScaleBox")->setCurrentIndex(1);
    EXPECT_TRUE(thumbnails().isIndividual());
    EXPECT_NE(thumbnails().range(1), thumbnails().range(4));
    double greatest = 0.0;
    for (int i = 1; i < 7; ++i) {
        greatest = std::max(greatest, thumbnails().range(i).maximum);
    }
    EXPECT_EQ(greatest, common.maximum);
    look::keep(*m_pTab, "sequence_individual");
}

TEST_F(SequenceTabTest, ColoursAreThoseOfTheSequencesRecord)
{
    open(simulated::sequence(kSmall));
    QSignalSpy told(&m_sequence, &CORVSequenceDataset::sequencePropertyChanged);
    const QImage before = thumbnails().picture(1);
    m_pTab->findChild<QComboBox*>("m_pSequenceColorBox")->setCurrentIndex(0);
    EXPECT_EQ(m_sequence.getImageAdjust()->m_nColorTable, 0);
    EXPECT_EQ(told.size(), 1);
    EXPECT_NE(thumbnails().picture(1), before);
    for (QCheckBox* pBox : m_pTab->findChildren<QCheckBox*>()) {
        pBox->toggle();
    }
    EXPECT_FALSE(m_sequence.getImageAdjust()->m_bReversed);
    EXPECT_TRUE(m_sequence.getImageAdjust()->m_bLogScale);
}

TEST_F(SequenceTabTest, TheSizeFollowsTheWheelWithCtrlAndTheSlider)
{
    open(simulated::sequence(kSmall));
    auto* pSlider = m_pTab->findChild<QSlider*>("m_pThumbnailSizeSlider");
    const int before = view().side();
    pointer::wheel(*view().viewport(), {50, 50}, 120, Qt::ControlModifier);
    EXPECT_GT(view().side(), before);
    EXPECT_EQ(pSlider->value(), view().side());
    pSlider->setValue(300);
    EXPECT_EQ(view().side(), 300);
    EXPECT_GE(view().visualRect(model().indexOf(1)).width(), 300);
    pointer::wheel(*view().viewport(), {50, 50}, 100000, Qt::ControlModifier);
    EXPECT_EQ(view().side(), ThumbnailView::kLargest);
    const int value = view().verticalScrollBar()->value();
    pointer::wheel(*view().viewport(), {50, 50}, -120);
    EXPECT_GE(view().verticalScrollBar()->value(), value);
    EXPECT_EQ(view().side(), ThumbnailView::kLargest);
}

TEST_F(SequenceTabTest, TheReadOutTellsImagePixelPlaceAndValueAndGoesWithThePointer)
{
    open(simulated::sequence(kSmall));
    QSignalSpy told(m_pTab.get(), &SequenceTab::readOut);
    pointer::move(*view().viewport(), middleOf(1));
    ASSERT_FALSE(told.isEmpty());
    const QString text = told.last()[0].toString();
    EXPECT_TRUE(text.contains("excitation 605 nm, emission ")) << qPrintable(text);
    EXPECT_TRUE(text.contains(" mm, ")) << qPrintable(text);
    EXPECT_TRUE(text.contains("(p/s/cm²/sr) / (µW/cm²)")) << qPrintable(text);
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(view().viewport(), &leave);
    EXPECT_EQ(told.last()[0].toString(), "");
}

TEST_F(SequenceTabTest, OneImageWithoutAPhotographIsOneTile)
{
    CILImage image;
    image.InitWithType(ORVTYPE_FLOAT, 8, 6);
    for (std::size_t i = 0; i < image.pixelCount(); ++i) {
        image.setValue(i, static_cast<double>(i));
    }
    auto* pDataset = new CORVDataset;
    CPLSection click("ClickNumber");
    click.setValue("ClickNumber", QString("A<b>1"));
    pDataset->clickInfo.addSection(&click);
    pDataset->setCoreImage(IMAGETYPE_MAIN_DATA, image);
    ASSERT_TRUE(m_sequence.addDataset(pDataset));
    show();
    ASSERT_EQ(thumbnails().tiles().count(), 1);
    EXPECT_EQ(thumbnails().state(0), Thumbnails::State::Ready);
    EXPECT_EQ(thumbnails().unit(), DISPLAYUNIT_COUNTS);
    EXPECT_EQ(thumbnails().imageSize(0), QSize(8, 6));
    EXPECT_EQ(model().grid().caption(0), "A<b>1");
    look::keep(*m_pTab, "sequence_one");
}

TEST_F(SequenceTabTest, ImportedImagesAreShownInTheirOwnShape)
{
    QString error;
    for (const char* name : {"em700.tif", "em720.tif"}) {
        CILImage image;
        ASSERT_EQ(image.InitWithType(ORVTYPE_USHORT, 12, 6), EIL_SUCCESS);
        for (std::size_t i = 0; i < image.pixelCount(); ++i) {
            image.setValue(i, 100.0 + static_cast<double>(i));
        }
        ASSERT_TRUE(writeTiff(m_folder.filePath(name), image, TiffWriteOptions(), &error)) << qPrintable(error);
    }
    ImportOptions options;
    options.source = m_folder.path();
    options.tableText = "file,emission\nem700.tif,700\nem720.tif,720\n";
    options.output = m_folder.filePath("wide");
    ASSERT_TRUE(importStack(options, ImportProgress(), nullptr, &error)) << qPrintable(error);
    open(options.output);
    for (int tile = 0; tile < thumbnails().tiles().count(); ++tile) {
        EXPECT_EQ(thumbnails().imageSize(tile), QSize(12, 6)) << tile;
        EXPECT_EQ(thumbnails().picture(tile).size(), QSize(12, 6)) << tile;
    }
    EXPECT_EQ(thumbnails().commonRange().minimum, 100.0) << "the zeros that make a square are no values";
    double value = 0.0;
    int averaged = 0;
    const int last = thumbnails().tiles().tile(0).photograph ? 1 : 0;
    ASSERT_TRUE(thumbnails().valueAt(last, 0.99, 0.99, &value, &averaged));
    EXPECT_EQ(value, 171.0);
    look::keep(*m_pTab, "sequence_wide");
}

TEST_F(SequenceTabTest, TheWheelMovesTheColumnsOfATableThatIsWideOnly)
{
    open(simulated::sequence(kSmall));
    view().setSide(120);
    QApplication::processEvents();
    ASSERT_EQ(view().verticalScrollBar()->maximum(), 0);
    ASSERT_GT(view().horizontalScrollBar()->maximum(), 0);
    pointer::wheel(*view().viewport(), {50, 50}, -120);
    EXPECT_GT(view().horizontalScrollBar()->value(), 0);
}

TEST_F(SequenceTabTest, EveryControlHasANameForAssistiveTools)
{
    open(simulated::sequence(kSmall));
    mnemonics::expectUnique(*m_pTab, mnemonics::kMenus);
    for (const QWidget* pWidget : m_pTab->findChildren<QWidget*>()) {
        const bool control = qobject_cast<const QComboBox*>(pWidget) || qobject_cast<const QAbstractSlider*>(pWidget);
        if (control && pWidget->focusPolicy() != Qt::NoFocus) {
            EXPECT_FALSE(pWidget->accessibleName().isEmpty()) << qPrintable(pWidget->objectName());
        }
    }
    EXPECT_FALSE(view().accessibleName().isEmpty());
}

} // namespace
