// SPDX-License-Identifier: GPL-3.0-or-later
// Regions of interest in the window of an image: drawn, measured, renamed, removed and saved.
#include "workbench/application/DatasetWindow.h"

#include "RegionsFixture.h"
#include "look.h"
#include "support/pointer.h"
#include "support/simulated.h"

#include "platform/orvapi/ROIShape.h"
#include "workbench/application/DatasetImage.h"
#include "workbench/application/DatasetView.h"
#include "workbench/application/RegionPanel.h"

#include <QClipboard>
#include <QFile>
#include <QToolButton>

namespace {

class DatasetRegionsTest : public RegionsFixture
{
protected:
    void SetUp() override
    {
        simulated::into(m_strFolder, {"--size", "32", "--bands", "4"});
        open();
    }
    QToolButton& button(const char* name) { return *m_pWindow->findChild<QToolButton*>(name); }
    void drag(double fromX, double fromY, double toX, double toY) { hand().drag({fromX, fromY}, {toX, toY}); }
    void click(double x, double y) { hand().click({x, y}); }
    void doubleClick(double x, double y) { hand().doubleClick({x, y}); }
    void drawTwo()
    {
        hand().rectangle({4, 4}, {12, 10});
        hand().ellipse({16, 12}, {26, 24});
        hand().layDown();
    }
    // Two of each kind that is no box: an L and a bean.
    void drawOutlines()
    {
        hand().polygon({{4, 4}, {12, 4}, {12, 8}, {8, 8}, {8, 14}, {4, 14}});
        hand().freeHand(beanAround({19, 18}, 5.0));
        hand().layDown();
    }
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

// What is shown is not read again for each of them.
TEST_F(DatasetRegionsTest, NumbersAreThoseOfTheImageOnScreen)
{
    const QString file = dataset().imageList().getImage(IMAGETYPE_LUMINESCENT)->path();
    ASSERT_TRUE(QFile::rename(file, file + ".away"));
    drawTwo();
    ASSERT_EQ(regions().size(), 2);
    EXPECT_EQ(regions().first().statistics.pixels, 48);
    // The photograph on screen has none: then it is the file that is measured, in the unit of before.
    m_pWindow->showImage(IMAGETYPE_PHOTOGRAPH);
    ASSERT_EQ(m_pWindow->image().type(), IMAGETYPE_PHOTOGRAPH);
    ASSERT_TRUE(QFile::rename(file + ".away", file));
    const double mean = regions().first().statistics.mean;
    m_pWindow->findChild<RegionPanel*>()->remove(1);
    ASSERT_EQ(regions().size(), 1);
    EXPECT_EQ(regions().first().statistics.mean, mean);
}

TEST_F(DatasetRegionsTest, PolygonsAndLinesByHandAreDrawnAndMeasured)
{
    drawOutlines();
    ASSERT_EQ(regions().size(), 2);
    const double b = dataset().getBinningForImage(IMAGETYPE_MAIN_DATA);
    const tagROIInfo& polygon = regions().at(0);
    EXPECT_EQ(polygon.name, "ROI 1");
    EXPECT_EQ(polygon.shape, ROISHAPE_POLYGON);
    ASSERT_EQ(polygon.points.size(), 6) << "the double click sets the last corner once";
    EXPECT_EQ(polygon.points.at(3).x, 8 * b);
    EXPECT_EQ(polygon.points.at(3).y, 8 * b);
    double sum = 0.0;
    for (int row = 4; row < 14; ++row) {
        for (int column = 4; column < (row < 8 ? 12 : 8); ++column) {
            sum += m_pWindow->image().valueAt({column, row}).value_or(0.0);
        }
    }
    EXPECT_EQ(polygon.statistics.pixels, 56);
    EXPECT_NEAR(polygon.statistics.mean, sum / 56.0, 1e-6 * sum / 56.0);
    EXPECT_EQ(regions().at(1).shape, ROISHAPE_FREEHAND);
    // A bean of that radius has an area of pi (25 + 1.125) pixels.
    EXPECT_NEAR(static_cast<double>(regions().at(1).statistics.pixels), 82.0, 8.0);
    EXPECT_EQ(table().item(0, 1)->text(), "56");
    EXPECT_TRUE(m_pWindow->isWindowModified());
    look::keep(*m_pWindow, "dataset_outlines");
    table().selectRow(0);
    look::keep(*m_pWindow, "dataset_polygon_chosen");
}

TEST_F(DatasetRegionsTest, APolygonIsClosedByReturnOrItsFirstCornerTakenBackByBackspaceAndGivenUpByEscape)
{
    button("m_pDrawPolygonButton").click();
    view().setFocus();
    click(4, 4);
    click(12, 4);
    QStringList told;
    QObject::connect(m_pWindow.get(), &DatasetWindow::readOut, [&told](const QString& text) { told.append(text); });
    QTest::keyClick(&view(), Qt::Key_Return);
    EXPECT_TRUE(regions().isEmpty());
    ASSERT_FALSE(told.isEmpty());
    EXPECT_EQ(told.last(), "No region: an outline takes three points at least");
    click(30, 30);
    QTest::keyClick(&view(), Qt::Key_Backspace);
    click(12, 12);
    click(4, 12);
    look::keep(*m_pWindow, "dataset_polygon_drawn");
    QTest::keyClick(&view(), Qt::Key_Return);
    ASSERT_EQ(regions().size(), 1);
    EXPECT_EQ(regions().at(0).statistics.pixels, 64);
    click(16, 4);
    click(24, 4);
    click(24, 12);
    click(16, 4);
    ASSERT_EQ(regions().size(), 2);
    EXPECT_EQ(regions().at(1).points.size(), 3);
    click(4, 20);
    click(12, 20);
    click(12, 28);
    QTest::keyClick(&view(), Qt::Key_Escape);
    QTest::keyClick(&view(), Qt::Key_Return);
    EXPECT_EQ(regions().size(), 2);
    EXPECT_TRUE(m_script.m_asked.isEmpty());
}

TEST_F(DatasetRegionsTest, APolygonGoesOnWhenTheViewIsZoomedInBetween)
{
    button("m_pDrawPolygonButton").click();
    view().setFocus();
    click(4, 4);
    click(12, 4);
    pointer::wheel(view(), hand().place({10, 10}), 240);
    QTest::keyClick(&view(), Qt::Key_Right);
    click(12, 12);
    doubleClick(4, 12);
    ASSERT_EQ(regions().size(), 1);
    EXPECT_EQ(regions().at(0).statistics.pixels, 64);
}

TEST_F(DatasetRegionsTest, OutlinesAreMovedChangedAndRemoved)
{
    drawOutlines();
    const double b = dataset().getBinningForImage(IMAGETYPE_MAIN_DATA);
    const tagROIInfo::Point first = regions().at(1).points.at(0);
    drag(20, 18, 22, 19);
    EXPECT_NEAR(regions().at(1).points.at(0).x, first.x + 2 * b, 1e-9);
    EXPECT_NEAR(regions().at(1).points.at(0).y, first.y + b, 1e-9);
    drag(6, 6, 7, 6);
    EXPECT_EQ(table().currentRow(), 0);
    EXPECT_EQ(regions().at(0).points.at(0).x, 5 * b);
    drag(5, 4, 2, 2); // its first corner
    EXPECT_EQ(regions().at(0).points.at(0).x, 2 * b);
    EXPECT_EQ(regions().at(0).points.at(0).y, 2 * b);
    EXPECT_EQ(regions().at(0).points.at(1).x, 13 * b);
    view().setFocus();
    QTest::keyClick(&view(), Qt::Key_Down);
    EXPECT_EQ(regions().at(0).points.at(0).y, 3 * b);
    table().item(0, 0)->setText("liver");
    EXPECT_EQ(regions().at(0).name, "liver");
    QTest::keyClick(&view(), Qt::Key_Delete);
    ASSERT_EQ(regions().size(), 1);
    EXPECT_EQ(regions().at(0).shape, ROISHAPE_FREEHAND);
}

TEST_F(DatasetRegionsTest, OutlinesThatWereSavedAreThereWhenTheSequenceIsOpenedAgain)
{
    drawOutlines();
    const QList<tagROIInfo> before = regions();
    button("m_pSaveRegionsButton").click();
    open();
    ASSERT_EQ(regions().size(), 2);
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(ROIShape::toText(regions().at(i)).toStdString(), ROIShape::toText(before.at(i)).toStdString());
        EXPECT_EQ(regions().at(i).statistics.pixels, before.at(i).statistics.pixels);
        EXPECT_EQ(regions().at(i).statistics.mean, before.at(i).statistics.mean);
    }
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
    EXPECT_EQ(table().currentRow(), 0);
    EXPECT_EQ(view().regions().chosen(), 0) << "what is renamed is chosen in the image, too";
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
    drawOutlines();
    click(2, 20);
    look::keep(*m_pWindow, "dataset_regions_dark");
    m_pWindow.reset();
    QApplication::setPalette(before);
}

} // namespace
