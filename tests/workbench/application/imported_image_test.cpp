// SPDX-License-Identifier: GPL-3.0-or-later
// The windows of imported images: their own shape, without what made squares of them, and their regions.
#include "RegionsFixture.h"
#include "look.h"
#include "support/simulated.h"

#include "host/QSpanSlider.h"
#include "platform/orvapi/ROIShape.h"
#include "platform/orvimage/TiffIo.h"
#include "workbench/application/DatasetImage.h"

#include <QCheckBox>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalSpy>

#include <cmath>
#include <functional>

namespace {

class ImportedImageTest : public RegionsFixture
{
protected:
    // Two images of that size, the second of which holds pixel(column, row).
    void import(int width, int height, const std::function<double(int column, int row)>& pixel)
    {
        ASSERT_TRUE(QDir(m_folder.path()).mkdir("stack"));
        for (const char* pName : {"em700.tif", "em720.tif"}) {
            CILImage image;
            ASSERT_EQ(image.InitWithType(ORVTYPE_FLOAT, width, height), EIL_SUCCESS);
            for (int i = 0; i < width * height; ++i) {
                const double value = pixel(i % width, i / width);
                image.setValue(static_cast<std::size_t>(i), std::isnan(value) && pName[3] == '0' ? 1.0 : value);
            }
            QString error;
            ASSERT_TRUE(writeTiff(m_folder.filePath("stack/") + pName, image, TiffWriteOptions(), &error));
        }
        runSpum({"import", m_folder.filePath("stack"), m_strFolder, "--skip-invalid", "--quiet"});
        open();
    }
    // What the command line says of the regions of the second image.
    QJsonArray measured() const
    {
        QJsonArray rows;
        const QByteArray answer = runSpum({"roi", m_strFolder, "measure", "--unit", "counts", "--json"});
        for (const QJsonValue& row : QJsonDocument::fromJson(answer).object()["measurements"].toArray()) {
            if (row.toObject()["image"].toString().startsWith("IM0002")) {
                rows.append(row);
            }
        }
        return rows;
    }
    static double ramp(int column, int row) { return 100.0 + 10.0 * column + row; }
};

TEST_F(ImportedImageTest, AWideOneIsShownInItsOwnShapeAndNoZerosCount)
{
    import(30, 20, ramp);
    EXPECT_EQ(m_pWindow->view()->picture().size(), QSize(30, 20));
    EXPECT_EQ(m_pWindow->image().size(), QSize(30, 20));
    EXPECT_EQ(m_pWindow->image().whole().minimum, 100.0);
    EXPECT_EQ(m_pWindow->image().whole().maximum, 409.0);
    EXPECT_GE(m_pWindow->image().automatic().minimum, 100.0);
    EXPECT_NEAR(m_pWindow->view()->pictureRect().width() / m_pWindow->view()->pictureRect().height(), 1.5, 0.05);
    look::keep(*m_pWindow, "imported_wide");
    m_pWindow->showImage(IMAGETYPE_PHOTOGRAPH);
    EXPECT_EQ(m_pWindow->view()->picture().size(), QSize(30, 20)) << "so is what stands for a photograph";
}

TEST_F(ImportedImageTest, AHighOneToo)
{
    import(20, 30, ramp);
    EXPECT_EQ(m_pWindow->view()->picture().size(), QSize(20, 30));
    EXPECT_EQ(m_pWindow->image().whole().minimum, 100.0);
    m_pWindow->findChild<QCheckBox*>("m_pOverlayBox")->setChecked(true);
    EXPECT_EQ(m_pWindow->view()->picture().size(), QSize(20, 30)) << "over the photograph";
    m_pWindow->refreshImage();
    EXPECT_EQ(m_pWindow->image().size(), QSize(20, 30));
}

TEST_F(ImportedImageTest, AStripOfOnePixelIsShown)
{
    import(12, 1, ramp);
    EXPECT_EQ(m_pWindow->view()->picture().size(), QSize(12, 1));
    EXPECT_EQ(m_pWindow->image().whole().minimum, 100.0);
}

TEST_F(ImportedImageTest, TheReadOutIsThatOfTheFile)
{
    import(30, 20, ramp);
    QSignalSpy told(m_pWindow.get(), &DatasetWindow::readOut);
    pointer::move(*m_pWindow->view(), hand().place({29.5, 19.5}));
    ASSERT_FALSE(told.isEmpty());
    EXPECT_TRUE(told.last().first().toString().contains("409")) << qPrintable(told.last().first().toString());
    EXPECT_TRUE(told.last().first().toString().contains("29")) << qPrintable(told.last().first().toString());
    pointer::move(*m_pWindow->view(), hand().place({15, 22}));
    EXPECT_EQ(told.last().first().toString(), QString()) << "below the image there is nothing";
}

TEST_F(ImportedImageTest, RegionsAreDrawnToItsEdgesAndMeanTheSamePixelsElsewhere)
{
    import(30, 20, ramp);
    hand().rectangle({20, 12}, {40, 40});
    hand().polygon({{0, 10}, {10, 10}, {10, 25}, {0, 20}});
    hand().freeHand(beanAround({15, 6}, 4.0));
    hand().layDown();
    ASSERT_EQ(regions().size(), 3);
    EXPECT_EQ(ROIShape::toText(regions().at(0)).toStdString(), "rect:20,12,10,8");
    EXPECT_EQ(ROIShape::toText(regions().at(1)).toStdString(), "polygon:0,10,10,10,10,20,0,20");
    EXPECT_EQ(regions().at(1).statistics.pixels, 100);
    EXPECT_EQ(regions().at(0).statistics.minimum, ramp(20, 12));
    EXPECT_EQ(regions().at(0).statistics.maximum, ramp(29, 19));
    look::keep(*m_pWindow, "imported_regions");
    m_pWindow->findChild<QToolButton*>("m_pSaveRegionsButton")->click();
    const QJsonArray rows = measured();
    ASSERT_EQ(rows.size(), 3);
    for (int i = 0; i < 3; ++i) {
        const QJsonObject row = rows.at(i).toObject();
        EXPECT_EQ(row["shape"].toString(), ROIShape::toText(regions().at(i)));
        EXPECT_EQ(row["pixels"].toInt(), regions().at(i).statistics.pixels);
        EXPECT_EQ(row["mean"].toDouble(), regions().at(i).statistics.mean);
    }
}

// As one that was stored when the window still showed more.
TEST_F(ImportedImageTest, ARegionThatReachesBeyondTheImageKeepsItsShape)
{
    import(30, 20, ramp);
    runSpum({"roi", m_strFolder, "add", "--shape", "rect:10,10,10,20", "--name", "low", "--quiet"});
    open();
    ASSERT_EQ(regions().size(), 1);
    EXPECT_EQ(regions().at(0).name, "low");
    EXPECT_EQ(regions().at(0).statistics.pixels, 100);
    EXPECT_EQ(regions().at(0).statistics.minimum, ramp(10, 10));
    hand().drag({15, 15}, {18, 15});
    EXPECT_EQ(ROIShape::toText(regions().at(0)).toStdString(), "rect:10,10,10,20") << "no drag changes it";
    look::keep(*m_pWindow, "imported_beyond");
    table().selectRow(0);
    QTest::keyClick(&table(), Qt::Key_Delete);
    EXPECT_TRUE(regions().isEmpty()) << "but it can be removed";
}

TEST_F(ImportedImageTest, PixelsWithoutAValueStandInAColumnOfTheirOwnWhereThereAreSome)
{
    import(30, 20, [](int column, int row) { return row == 3 && column < 8 ? std::nan("") : 50.0;
});
hand().rectangle({10, 10}, {20, 20});
EXPECT_TRUE(table().isColumnHidden(2));
hand().rectangle({4, 2}, {14, 7});
ASSERT_EQ(regions().size(), 2);
EXPECT_EQ(regions().at(1).statistics.pixels, 46);
EXPECT_EQ(regions().at(1).statistics.invalidPixels, 4);
EXPECT_EQ(regions().at(1).statistics.mean, 50.0);
EXPECT_EQ(regions().at(1).statistics.deviation, 0.0);
EXPECT_FALSE(table().isColumnHidden(2));
EXPECT_EQ(table().horizontalHeaderItem(2)->text(), "Invalid");
EXPECT_EQ(table().item(1, 2)->text(), "4");
look::keep(*m_pWindow, "imported_invalid");
} // namespace

} // namespace
