// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/DatasetWindow.h"

#include "look.h"
#include "mnemonics.h"
#include "support/pointer.h"
#include "support/screen.h"
#include "support/simulated.h"

#include "host/CORVDataset.h"
#include "host/CORVSequenceDataset.h"
#include "host/QDoubleSpinBoxEx.h"
#include "host/QSpanSlider.h"
#include "workbench/application/DatasetImage.h"
#include "workbench/application/DatasetView.h"
#include "workbench/application/UnitBox.h"

#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QElapsedTimer>
#include <QFile>
#include <QPushButton>
#include <QSignalSpy>
#include <QSlider>
#include <QStandardItemModel>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>

namespace {

constexpr int patience = 30000; // ms

void letTurn()
{
    // With a limit of time there may be several within a millisecond.
    QApplication::processEvents(QEventLoop::AllEvents);
}

class DatasetWindowTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        QString error;
        ASSERT_EQ(
            m_sequence.open(simulated::sequence({"--size", "64", "--bands", "6", "--excitations", "605,675"}), &error),
            ESTATUS_SUCCESS)
            << qPrintable(error);
        show(m_sequence.getDatasets().at(1));
    }
    void show(CORVDataset* pDataset)
    {
        m_pWindow = std::make_unique<DatasetWindow>(pDataset);
        m_pWindow->resize(760, 520);
        screen::show(*m_pWindow);
    }
    template <typename Widget>
    Widget& child(const char* name)
    {
        view(); // with all that is still to be done
        auto* pWidget = m_pWindow->findChild<Widget*>(name);
        EXPECT_NE(pWidget, nullptr) << name;
        return *pWidget;
    }
    DatasetView& view() { return *m_pWindow->view(); }
    DatasetImage& image() { return m_pWindow->image(); }
    void choose(QComboBox& box, int index)
    {
        box.setCurrentIndex(index);
        Q_EMIT box.activated(index);
    }

    CORVSequenceDataset m_sequence;
    std::unique_ptr<DatasetWindow> m_pWindow;
};

TEST_F(DatasetWindowTest, OpensInTheBestUnitWithTheSequencesColoursAndTheAutomaticRange)
{
    EXPECT_EQ(image().unit(), DISPLAYUNIT_RADIANT_EFFICIENCY);
    EXPECT_EQ(image().palette().colorTable(), m_sequence.getImageAdjust()->m_nColorTable);
    EXPECT_EQ(image().range(), DisplayRange::automatic(image().image()));
    EXPECT_EQ(view().picture().size(), QSize(64, 64));
    EXPECT_TRUE(m_pWindow->windowTitle().contains("605 → ")) << qPrintable(m_pWindow->windowTitle());
}

TEST_F(DatasetWindowTest, ReadsDrawsAndCountsInTurnsOfTheEventLoop)
{
    DatasetWindow window(m_sequence.getDatasets().at(1));
    window.showImage(IMAGETYPE_MAIN_DATA, DISPLAYUNIT_COUNTS);
    EXPECT_EQ(window.unit(), DISPLAYUNIT_COUNTS);
    const auto* pView = window.findChild<DatasetView*>();
    const auto* pSlider = window.findChild<QSpanSlider*>("m_pRangeSlider");
    QStringList states;
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < patience && (states.isEmpty() || !pSlider->isEnabled())) {
        const QString state = pSlider->isEnabled()                  ? "counted"
                              : !pView->picture().isNull()          ? "drawn"
                              : window.unit() == DISPLAYUNIT_COUNTS ? "begun"
                                                                    : "";
        if (!states.contains(state)) {
            states << state;
        }
        letTurn();
    }
    EXPECT_EQ(states, (QStringList{"begun", "drawn"})) << "each to be seen before the next";
    EXPECT_TRUE(pSlider->isEnabled());
    EXPECT_EQ(window.image().unit(), DISPLAYUNIT_COUNTS);
}

TEST_F(DatasetWindowTest, TellsThatItReadsUntilThereIsAPicture)
{
    DatasetWindow window(m_sequence.getDatasets().at(1));
    const auto* pView = window.findChild<DatasetView*>();
    EXPECT_EQ(pView->accessibleDescription(), "Reading ...");
    ASSERT_TRUE(QTest::qWaitFor([&] { return !pView->picture().isNull(); }, patience));
    EXPECT_EQ(pView->accessibleDescription(), "64 x 64 pixels");
}

TEST_F(DatasetWindowTest, WhileAnotherImageIsReadTheOneBeforeIsSeenWithANotice)
{
    const QImage before = view().picture();
    const auto* pView = m_pWindow->findChild<DatasetView*>();
    m_pWindow->setPatience(0);
    m_pWindow->showImage(IMAGETYPE_MAIN_DATA, DISPLAYUNIT_COUNTS);
    letTurn();
    EXPECT_EQ(pView->accessibleDescription(), "Reading ...");
    EXPECT_EQ(pView->picture(), before);
    ASSERT_TRUE(QTest::qWaitFor([&] { return pView->accessibleDescription() == "64 x 64 pixels"; }, patience));
    EXPECT_EQ(image().unit(), DISPLAYUNIT_COUNTS);
    // One that comes soon is not worth a notice.
    m_pWindow->setPatience(patience);
    m_pWindow->showImage(IMAGETYPE_MAIN_DATA, DISPLAYUNIT_RADIANCE);
    letTurn();
    EXPECT_EQ(pView->accessibleDescription(), "64 x 64 pixels");
}

TEST_F(DatasetWindowTest, TheNoticeIsReadOnThePicture)
{
    view().showNotice("Reading ...");
    look::keep(*m_pWindow, "dataset_reading");
    const QImage noticed = view().grabFramebuffer();
    view().showPicture(view().picture(), image().size());
    EXPECT_NE(view().grabFramebuffer(), noticed);
}

TEST_F(DatasetWindowTest, WhatIsChosenWhileAnImageIsReadTakesItsPlace)
{
    DatasetWindow window(m_sequence.getDatasets().at(1));
    const auto* pView = window.findChild<DatasetView*>();
    const auto* pSlider = window.findChild<QSpanSlider*>("m_pRangeSlider");
    // At every turn of the way that the first image takes.
    for (int turns = 0; turns < 8; ++turns) {
        window.showImage(IMAGETYPE_MAIN_DATA, DISPLAYUNIT_RADIANCE);
        for (int turn = 0; turn < turns; ++turn) {
            letTurn();
        }
        window.showImage(IMAGETYPE_MAIN_DATA, DISPLAYUNIT_COUNTS);
        ASSERT_TRUE(QTest::qWaitFor([&] { return pSlider->isEnabled() && !pView->picture().isNull(); }, patience));
        EXPECT_EQ(window.unit(), DISPLAYUNIT_COUNTS);
        EXPECT_EQ(window.image().unit(), DISPLAYUNIT_COUNTS) << turns;
        window.showImage(IMAGETYPE_PHOTOGRAPH);
        EXPECT_EQ(window.image().type(), IMAGETYPE_PHOTOGRAPH) << turns;
        window.showImage(IMAGETYPE_MAIN_DATA, DISPLAYUNIT_COUNTS);
        EXPECT_EQ(window.image().unit(), DISPLAYUNIT_COUNTS) << turns;
    }
}

TEST_F(DatasetWindowTest, AWindowThatClosesWhileItReadsLeavesNothing)
{
    const int nChildren = QCoreApplication::instance()->children().size();
    for (int turns = 0; turns < 8; ++turns) {
        auto pWindow = std::make_unique<DatasetWindow>(m_sequence.getDatasets().at(1));
        for (int turn = 0; turn < turns; ++turn) {
            letTurn();
        }
        pWindow.reset();
        letTurn();
    }
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return QCoreApplication::instance()->children().size() <= nChildren; }, patience));
    EXPECT_EQ(view().picture().size(), QSize(64, 64)) << "that of the other window";
}

TEST_F(DatasetWindowTest, AFileThatGoesBeforeItIsReadIsNamedInThePlaceOfThePicture)
{
    const QTemporaryDir folder;
    simulated::into(folder.filePath("mine"), {"--size", "16", "--bands", "3"});
    CORVSequenceDataset sequence;
    ASSERT_EQ(sequence.open(folder.filePath("mine")), ESTATUS_SUCCESS);
    CORVDataset* pDataset = sequence.getDatasets().first();
    DatasetWindow window(pDataset);
    const QString file = pDataset->imageList().getImage(IMAGETYPE_LUMINESCENT)->path();
    ASSERT_TRUE(QFile::rename(file, file + ".away"));
    const auto* pView = window.findChild<DatasetView*>();
    ASSERT_TRUE(QTest::qWaitFor([&] { return pView->accessibleDescription() != "Reading ..."; }, patience));
    EXPECT_TRUE(pView->accessibleDescription().startsWith("The image cannot be shown: " + file))
        << qPrintable(pView->accessibleDescription());
    EXPECT_TRUE(pView->picture().isNull());
    // Back again it is shown by whatever reads it.
    ASSERT_TRUE(QFile::rename(file + ".away", file));
    window.refreshImage();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !pView->picture().isNull(); }, patience));
}

TEST_F(DatasetWindowTest, SliderAndNumbersSetTheRange)
{
    const QImage before = view().picture();
    auto& slider = child<QSpanSlider>("m_pRangeSlider");
    slider.setUpperValue(500);
    const double middle = (image().whole().minimum + image().whole().maximum) / 2.0;
    EXPECT_NEAR(image().range().maximum, middle, 1e-9 * middle);
    EXPECT_NE(view().picture(), before);
    EXPECT_NEAR(child<QDoubleSpinBoxEx>("m_pRangeMaximumBox").value(), middle, 1e-6 * middle);
    child<QDoubleSpinBoxEx>("m_pRangeMinimumBox").setValue(2.0 * middle);
    EXPECT_EQ(image().range().minimum, image().range().maximum) << "one end takes the other along";
    child<QPushButton>("m_pWholeRangeButton").click();
    EXPECT_EQ(image().range(), image().whole());
    child<QPushButton>("m_pAutoRangeButton").click();
    EXPECT_EQ(image().range(), DisplayRange::automatic(image().image()));
    EXPECT_EQ(view().picture(), before);
}

TEST_F(DatasetWindowTest, TheSmallestNumbersKeepTheirDigits)
{
    auto& box = child<QDoubleSpinBoxEx>("m_pRangeMaximumBox");
    box.setValue(1.25e-9);
    EXPECT_EQ(image().range().maximum, 1.25e-9);
    EXPECT_EQ(box.text(), "1.25e-09");
}

TEST_F(DatasetWindowTest, UnitsChangeTheValuesAndThoseThatCannotBeHadTellWhy)
{
    CORVDataset* pDataset = m_sequence.getDatasets().at(1);
    pDataset->clickInfo["luminescent image"]->setValue("Excitation Irradiance", "0");
    show(pDataset);
    auto& box = child<UnitBox>("m_pImageUnitBox");
    auto* pItems = qobject_cast<QStandardItemModel*>(box.model());
    EXPECT_EQ(image().unit(), DISPLAYUNIT_RADIANCE);
    EXPECT_FALSE(pItems->item(DISPLAYUNIT_RADIANT_EFFICIENCY)->isEnabled());
    EXPECT_TRUE(pItems->item(DISPLAYUNIT_RADIANT_EFFICIENCY)->toolTip().contains("cannot be had: "));
    choose(box, DISPLAYUNIT_COUNTS);
    EXPECT_EQ(image().unit(), DISPLAYUNIT_COUNTS);
    EXPECT_LT(image().whole().maximum, 1e6);
    EXPECT_EQ(image().quantity(), "counts");
}

TEST_F(DatasetWindowTest, LogarithmTableAndSenseChangeThePicture)
{
    QImage before = view().picture();
    for (const char* name : {"m_pImageLogBox", "m_pImageReversedBox"}) {
        child<QCheckBox>(name).toggle();
        EXPECT_NE(view().picture(), before) << name;
        before = view().picture();
    }
    child<QComboBox>("m_pImageColorBox").setCurrentIndex(2);
    EXPECT_NE(view().picture(), before);
}

TEST_F(DatasetWindowTest, ThePhotographLiesBeneathWithItsPixelsAndTheZoomStays)
{
    view().setZoom(12.0);
    const QRectF place = view().pictureRect();
    child<QCheckBox>("m_pOverlayBox").setChecked(true);
    EXPECT_TRUE(image().isOverlay());
    EXPECT_EQ(view().pictureRect(), place);
    const QImage covered = view().picture();
    child<QSlider>("m_pOpacitySlider").setValue(0);
    EXPECT_NE(view().picture(), covered);
    // Nothing of the image is left: all is grey.
    const QImage photograph = view().picture();
    for (int i = 0; i < photograph.height(); ++i) {
        const QRgb pixel = photograph.pixel(i, i);
        EXPECT_EQ(qRed(pixel), qBlue(pixel));
    }
    child<QSlider>("m_pOpacitySlider").setValue(60);
    view().fit();
    screen::show(*m_pWindow);
    look::keep(*m_pWindow, "dataset_overlay");
}

TEST_F(DatasetWindowTest, ThePhotographByItselfIsGreyAndHasNoUnit)
{
    m_pWindow->showImage(IMAGETYPE_PHOTOGRAPH);
    EXPECT_EQ(image().type(), IMAGETYPE_PHOTOGRAPH);
    EXPECT_EQ(child<QComboBox>("m_pImageBox").currentText(), "Photograph");
    EXPECT_FALSE(child<UnitBox>("m_pImageUnitBox").isEnabled());
    EXPECT_FALSE(child<QCheckBox>("m_pOverlayBox").isEnabled());
    EXPECT_FALSE(view().picture().isNull());
    m_pWindow->showImage(IMAGETYPE_MAIN_DATA);
    EXPECT_TRUE(child<UnitBox>("m_pImageUnitBox").isEnabled());
    m_pWindow->showImage(IMAGETYPE_XRAY);
    EXPECT_EQ(image().type(), IMAGETYPE_MAIN_DATA);
}

TEST_F(DatasetWindowTest, TheReadOutTellsThePixelUnderThePointer)
{
    QSignalSpy told(m_pWindow.get(), &DatasetWindow::readOut);
    const QPointF at = view().toView(QPointF(32.5, 20.5));
    pointer::move(view(), at);
    ASSERT_EQ(told.size(), 1);
    const QString text = told[0][0].toString();
    EXPECT_TRUE(text.startsWith("x 32, y 20 (")) << qPrintable(text);
    EXPECT_TRUE(text.endsWith(" (p/s/cm²/sr) / (µW/cm²)")) << qPrintable(text);
    // Over the photograph, whose pixels are smaller, the same.
    child<QCheckBox>("m_pOverlayBox").setChecked(true);
    pointer::move(view(), view().toView(QPointF(10.5, 10.5)));
    pointer::move(view(), at);
    EXPECT_EQ(told.last()[0].toString(), text);
    pointer::move(view(), QPointF(-5, -5));
    EXPECT_EQ(told.last()[0].toString(), "");
}

TEST_F(DatasetWindowTest, DraggingMovesAnEnlargedPicture)
{
    view().setZoom(20.0);
    const QRectF before = view().pictureRect();
    pointer::drag(view(), {200, 200}, {230, 180});
    EXPECT_EQ(view().pictureRect().topLeft(), before.topLeft() + QPointF(30, -20));
}

TEST_F(DatasetWindowTest, TheCopiedPictureHasItsColourBar)
{
    QApplication::clipboard()->clear();
    child<QToolButton>("m_pCopyPictureButton").click();
    const QImage copied = QApplication::clipboard()->image();
    EXPECT_EQ(copied.height() / 64, 8) << "64 pixels, by whole ones";
    EXPECT_GT(copied.width(), copied.height());
    copied.save(QStringLiteral(ORV_BINARY_DIR "/pictures/application/dataset_copied.png"));
}

TEST_F(DatasetWindowTest, AChangeOfTheDatasetIsShownWithItsMark)
{
    CORVDataset* pDataset = m_pWindow->dataset();
    EXPECT_FALSE(m_pWindow->isWindowModified());
    EXPECT_TRUE(m_pWindow->windowTitle().endsWith("[*]"));
    CILImage changed;
    changed.InitWithType(ORVTYPE_FLOAT, 32, 32);
    changed.setConstData(5.0);
    changed.setValue(7, 9.0);
    pDataset->setCoreImage(IMAGETYPE_LUMINESCENT, changed);
    pDataset->setModified(true);
    pDataset->updateActiveImage();
    EXPECT_TRUE(m_pWindow->isWindowModified());
    EXPECT_EQ(image().size(), QSize(32, 32));
    pDataset->setModified(false);
}

TEST_F(DatasetWindowTest, ARangeThatWasChosenStaysWhenTheImageIsReadAgain)
{
    const DisplayRange automatic = image().automatic();
    m_pWindow->refreshImage();
    EXPECT_EQ(image().range(), automatic);
    child<QSpanSlider>("m_pRangeSlider").setUpperValue(500);
    const DisplayRange chosen = image().range();
    ASSERT_NE(chosen, automatic);
    m_pWindow->refreshImage();
    m_pWindow->refreshImage();
    EXPECT_EQ(image().range(), chosen);
    EXPECT_EQ(child<QSpanSlider>("m_pRangeSlider").upperValue(), 500);
    // Another unit has its own, also when it is read again on the way.
    m_pWindow->showImage(IMAGETYPE_MAIN_DATA, DISPLAYUNIT_COUNTS);
    m_pWindow->refreshImage();
    EXPECT_EQ(image().range(), image().automatic());
}

TEST_F(DatasetWindowTest, AnImageThatCannotBeReadTellsWhyInItsPlace)
{
    CORVDataset empty;
    show(&empty);
    EXPECT_TRUE(view().picture().isNull());
    EXPECT_TRUE(view().accessibleDescription().contains("there is no luminescent image"));
    EXPECT_FALSE(child<QToolButton>("m_pDrawRectangleButton").isEnabled());
    look::keep(*m_pWindow, "dataset_none");
    m_pWindow.reset();
}

TEST_F(DatasetWindowTest, AConstantImageAndOneWithoutNumbersAreShown)
{
    CORVDataset dataset;
    CILImage flat;
    flat.InitWithType(ORVTYPE_FLOAT, 4, 4);
    dataset.setCoreImage(IMAGETYPE_MAIN_DATA, flat);
    show(&dataset);
    EXPECT_FALSE(view().picture().isNull());
    child<QSpanSlider>("m_pRangeSlider").setLowerValue(10);
    flat.setConstData(std::nan(""));
    dataset.setCoreImage(IMAGETYPE_MAIN_DATA, flat);
    dataset.updateActiveImage();
    EXPECT_FALSE(view().picture().isNull());
    m_pWindow.reset();
}

TEST_F(DatasetWindowTest, ShowsTheUnitThatIsAskedForWhenItCanBeHad)
{
    m_pWindow->showImage(IMAGETYPE_MAIN_DATA, DISPLAYUNIT_COUNTS);
    EXPECT_EQ(m_pWindow->unit(), DISPLAYUNIT_COUNTS);
    EXPECT_EQ(child<UnitBox>("m_pImageUnitBox").unit(), DISPLAYUNIT_COUNTS);
    m_pWindow->dataset()->clickInfo["luminescent image"]->setValue("Excitation Irradiance", "0");
    m_pWindow->showImage(IMAGETYPE_MAIN_DATA, DISPLAYUNIT_RADIANT_EFFICIENCY);
    EXPECT_EQ(m_pWindow->unit(), DISPLAYUNIT_COUNTS);
}

TEST_F(DatasetWindowTest, EveryControlHasANameForAssistiveTools)
{
    mnemonics::expectUnique(*m_pWindow, mnemonics::kMenus);
    for (const QWidget* pWidget : m_pWindow->findChildren<QWidget*>()) {
        const bool button = qobject_cast<const QAbstractButton*>(pWidget) != nullptr &&
                            qobject_cast<const QAbstractButton*>(pWidget)->text().isEmpty();
        if (button && pWidget->focusPolicy() != Qt::NoFocus) {
            EXPECT_FALSE(pWidget->accessibleName().isEmpty()) << qPrintable(pWidget->toolTip());
        }
    }
}

} // namespace
