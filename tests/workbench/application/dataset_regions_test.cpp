// SPDX-License-Identifier: GPL-3.0-or-later
// Regions of interest in the window of an image: drawn, measured, renamed, removed and saved.
#include "workbench/application/DatasetWindow.h"

#include "ScriptedResponder.h"
#include "look.h"
#include "support/pointer.h"
#include "support/screen.h"
#include "support/simulated.h"

#include "host/CORVDataset.h"
#include "host/CORVSequenceDataset.h"
#include "host/CROIManager.h"
#include "workbench/application/DatasetImage.h"
#include "workbench/application/DatasetView.h"

#include <QClipboard>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QToolButton>

namespace {

class DatasetRegionsTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_strFolder = m_folder.filePath("mouse");
        simulated::into(m_strFolder, {"--size", "32", "--bands", "4"});
        open();
    }
    void open()
    {
        m_pWindow.reset();
        m_pSequence = std::make_unique<CORVSequenceDataset>();
        QString error;
        ASSERT_EQ(m_pSequence->open(m_strFolder, &error), ESTATUS_SUCCESS) << qPrintable(error);
        m_pWindow = std::make_unique<DatasetWindow>(m_pSequence->getDatasets().at(1));
        m_pWindow->resize(820, 640);
        screen::show(*m_pWindow);
        m_pWindow->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(m_pWindow.get()));
        view();
    }
    DatasetView& view() { return *m_pWindow->view(); }
    CORVDataset& dataset() { return *m_pWindow->dataset(); }
    const QList<tagROIInfo>& regions() { return dataset().roiManager()->regions(); }
    QTableWidget& table() { return *m_pWindow->findChild<QTableWidget*>("m_pRegionTable"); }
    QToolButton& button(const char* name) { return *m_pWindow->findChild<QToolButton*>(name); }
    void drag(double fromX, double fromY, double toX, double toY)
    {
        pointer::drag(view(), view().toView(QPointF(fromX, fromY)), view().toView(QPointF(toX, toY)));
    }
    void drawTwo()
    {
        button("m_pDrawRectangleButton").click();
        drag(4, 4, 12, 10);
        button("m_pDrawEllipseButton").click();
        drag(16, 12, 26, 24);
        button("m_pDrawEllipseButton").click();
    }

    QTemporaryDir m_folder;
    QString m_strFolder;
    ScriptedResponder m_script;
    std::unique_ptr<CORVSequenceDataset> m_pSequence;
    std::unique_ptr<DatasetWindow> m_pWindow;
};

TEST_F(DatasetRegionsTest, RectanglesAndEllipsesAreDrawnAndMeasured)
{
    EXPECT_FALSE(table().isVisible()) << "no room is taken before there are some";
    drawTwo();
    ASSERT_EQ(regions().size(), 2);
    const double binning = dataset().getBinningForImage(IMAGETYPE_MAIN_DATA);
    const tagROIInfo& rectangle = regions().at(0);
    EXPECT_EQ(rectangle.name, "ROI 1");
    EXPECT_EQ(rectangle.shape, ROISHAPE_RECTANGLE);
    EXPECT_EQ(rectangle.x, 4 * binning);
    EXPECT_EQ(rectangle.y, 4 * binning);
    EXPECT_EQ(rectangle.width, 8 * binning);
    EXPECT_EQ(rectangle.height, 6 * binning);
    EXPECT_EQ(regions().at(1).shape, ROISHAPE_ELLIPSE);
    // The numbers are those of the pixels that are shown.
    double sum = 0.0;
    for (int row = 4; row < 10; ++row) {
        for (int column = 4; column < 12; ++column) {
            sum += m_pWindow->image().valueAt({column, row}).value_or(0.0);
        }
    }
    EXPECT_EQ(rectangle.statistics.pixels, 48);
    EXPECT_NEAR(rectangle.statistics.mean, sum / 48.0, 1e-6 * sum / 48.0);
    EXPECT_EQ(table().rowCount(), 2);
    EXPECT_EQ(table().item(0, 1)->text(), "48");
    EXPECT_EQ(table().currentRow(), 1) << "the last one drawn is chosen";
    EXPECT_TRUE(m_pWindow->isWindowModified());
    view().setFocus();
    look::keep(*m_pWindow, "dataset_regions");
}

TEST_F(DatasetRegionsTest, NumbersFollowTheUnit)
{
    drawTwo();
    const double before = regions().at(0).statistics.mean;
    m_pWindow->showImage(IMAGETYPE_MAIN_DATA, DISPLAYUNIT_COUNTS);
    view();
    EXPECT_EQ(regions().at(0).statistics.unit, "Counts");
    EXPECT_NE(regions().at(0).statistics.mean, before);
    m_pWindow->showImage(IMAGETYPE_PHOTOGRAPH);
    view();
    EXPECT_EQ(regions().at(0).statistics.unit, "Counts") << "a photograph has no numbers of its own";
}

TEST_F(DatasetRegionsTest, AChosenRegionIsMovedByMouseAndKeysAndRemovedByDel)
{
    drawTwo();
    const double binning = dataset().getBinningForImage(IMAGETYPE_MAIN_DATA);
    drag(8, 7, 10, 8);
    EXPECT_EQ(table().currentRow(), 0);
    EXPECT_EQ(regions().at(0).x, 6 * binning);
    view().setFocus();
    QTest::keyClick(&view(), Qt::Key_Right);
    QTest::keyClick(&view(), Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(regions().at(0).x, 7 * binning);
    EXPECT_EQ(regions().at(0).y, 15 * binning);
    QTest::keyClick(&view(), Qt::Key_Delete);
    ASSERT_EQ(regions().size(), 1);
    EXPECT_EQ(regions().at(0).name, "ROI 2");
    EXPECT_EQ(view().regions().chosen(), -1);
    // Without a choice the keys are those of the picture again, and a drag moves it.
    view().setZoom(30.0);
    const QRectF before = view().pictureRect();
    QTest::keyClick(&view(), Qt::Key_Right);
    EXPECT_NE(view().pictureRect(), before);
    table().selectRow(0);
    EXPECT_EQ(view().regions().chosen(), 0);
    QTest::keyClick(&view(), Qt::Key_Escape);
    EXPECT_EQ(view().regions().chosen(), -1);
    table().selectRow(0);
    QTest::keyClick(&table(), Qt::Key_Delete);
    EXPECT_TRUE(regions().isEmpty());
    EXPECT_FALSE(table().isVisible());
}

TEST_F(DatasetRegionsTest, ANameIsTypedInTheTableAndOneThatIsTakenIsRefused)
{
    drawTwo();
    table().item(0, 0)->setText("left lung");
    EXPECT_EQ(regions().at(0).name, "left lung");
    EXPECT_TRUE(m_script.m_asked.isEmpty());
    table().item(1, 0)->setText("left lung");
    EXPECT_EQ(regions().at(1).name, "ROI 2");
    EXPECT_EQ(table().item(1, 0)->text(), "ROI 2");
    ASSERT_EQ(m_script.m_asked.size(), 1);
    EXPECT_TRUE(m_script.m_asked.first().contains("left lung")) << qPrintable(m_script.m_asked.first());
}

TEST_F(DatasetRegionsTest, TheNumbersAreCopiedForASpreadsheet)
{
    drawTwo();
    QApplication::clipboard()->clear();
    button("m_pCopyNumbersButton").click();
    const QStringList lines = QApplication::clipboard()->text().split('\n');
    ASSERT_EQ(lines.size(), 4);
    EXPECT_TRUE(lines[0].startsWith("Region\tPixels\t"));
    EXPECT_TRUE(lines[1].startsWith("ROI 1\t48\t")) << qPrintable(lines[1]);
}

TEST_F(DatasetRegionsTest, WhatWasSavedIsThereWhenTheSequenceIsOpenedAgain)
{
    EXPECT_FALSE(button("m_pSaveRegionsButton").isEnabled());
    drawTwo();
    table().item(1, 0)->setText("tumour");
    const double mean = regions().at(1).statistics.mean;
    ASSERT_TRUE(button("m_pSaveRegionsButton").isEnabled());
    button("m_pSaveRegionsButton").click();
    EXPECT_TRUE(m_script.m_asked.isEmpty());
    EXPECT_FALSE(m_pWindow->isWindowModified());
    EXPECT_FALSE(button("m_pSaveRegionsButton").isEnabled());
    open();
    ASSERT_EQ(regions().size(), 2);
    EXPECT_EQ(regions().at(1).name, "tumour");
    EXPECT_EQ(regions().at(1).statistics.mean, mean);
    EXPECT_EQ(table().rowCount(), 2);
    EXPECT_TRUE(table().isVisible());
    EXPECT_FALSE(m_pSequence->getDatasets().at(0)->hasROIData());
}

TEST_F(DatasetRegionsTest, LooksInADarkPalette)
{
    const QPalette before = QApplication::palette();
    QApplication::setPalette(screen::darkPalette());
    open();
    m_pWindow->resize(690, 520);
    drawTwo();
    look::keep(*m_pWindow, "dataset_regions_dark");
    m_pWindow.reset();
    QApplication::setPalette(before);
}

} // namespace
