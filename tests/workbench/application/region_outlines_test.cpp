// SPDX-License-Identifier: GPL-3.0-or-later
// Outlines drawn by the mouse in the main window, on the images of a scan or at several binnings, and on maps that were
// opened as images: the pixels that they hold, and that the command line and the next start find the same.
#include "MainWindowFixture.h"
#include "RegionHand.h"
#include "look.h"

#include "host/CORVDataset.h"
#include "host/CORVSequenceDataset.h"
#include "host/CROIManager.h"
#include "platform/orvapi/ROIShape.h"
#include "workbench/application/DatasetImage.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPolygonF>

#include <cmath>

namespace {

// An image of a sequence, with the pixels along its side.
struct Drawn
{
    const char* name;
    QStringList options;
    int image;
    int side;
};

// Draws on the image in front. Where an image has 24 pixels along a side, no side of the polygon passes the centre of
// one of them, nor of the pixels of an image that is twice as fine.
class OutlinesFixture : public MainWindowFixture
{
protected:
    void takeFront()
    {
        settle();
        m_pImage =
            qobject_cast<DatasetWindow*>(CORVImageWindow::getImageWindow(m_pWindow->documents().currentDataset()));
        ASSERT_NE(m_pImage, nullptr);
    }
    RegionHand hand() { return RegionHand(*m_pImage); }
    const QList<tagROIInfo>& regions() { return m_pImage->dataset()->roiManager()->regions(); }
    double binning() { return m_pImage->dataset()->getBinningForImage(IMAGETYPE_MAIN_DATA); }
    // The pixels of the image for one of 24.
    double scale() { return m_pImage->image().size().width() / 24.0; }
    QPolygonF corners()
    {
        QPolygonF scaled;
        for (const QPointF& corner : {QPointF(4, 5), QPointF(15, 3), QPointF(19, 14), QPointF(9, 21)}) {
            scaled << corner * scale();
        }
        return scaled;
    }
    QPolygonF bean() { return QPolygonF(beanAround(QPointF(12, 12) * scale(), 5.0 * scale())); }
    void drawBoth()
    {
        hand().polygon(corners());
        hand().freeHand(bean());
        hand().layDown();
        ASSERT_EQ(regions().size(), 2);
    }
    // The number of pixels whose centres lie in an outline, and their mean.
    QPair<int, double> within(const QPolygonF& outline)
    {
        const QSize size = m_pImage->image().size();
        int pixels = 0;
        double sum = 0.0;
        for (int row = 0; row < size.height(); ++row) {
            for (int column = 0; column < size.width(); ++column) {
                if (outline.containsPoint({column + 0.5, row + 0.5}, Qt::WindingFill)) {
                    ++pixels;
                    sum += m_pImage->image().valueAt({column, row}).value_or(0.0);
                }
            }
        }
        return {pixels, sum / pixels};
    }
    void expectHolds(const tagROIInfo& region, const QPolygonF& outline)
    {
        const QPair<int, double> expected = within(outline);
        EXPECT_GT(expected.first, 50);
        EXPECT_EQ(region.statistics.pixels, expected.first);
        EXPECT_NEAR(region.statistics.mean, expected.second, 1e-9 * std::abs(expected.second));
    }
    void expectCorners(const tagROIInfo& region)
    {
        ASSERT_EQ(region.points.size(), 4);
        for (int i = 0; i < 4; ++i) {
            EXPECT_NEAR(region.points.at(i).x, corners().at(i).x() * binning(), 1e-9) << i;
            EXPECT_NEAR(region.points.at(i).y, corners().at(i).y() * binning(), 1e-9) << i;
        }
    }

    DatasetWindow* m_pImage = nullptr;
};

class ImageOutlinesTest : public OutlinesFixture, public ::testing::WithParamInterface<Drawn>
{
protected:
    void SetUp() override
    {
        OutlinesFixture::SetUp();
        m_strFolder = m_folder.filePath("sequence");
        simulated::into(m_strFolder, GetParam().options);
        openImage();
    }
    void openImage()
    {
        m_pWindow.reset();
        makeWindow();
        m_pWindow->resize(1200, 900);
        m_pWindow->open(m_strFolder);
        m_pWindow->documents().showDataset(
            m_pWindow->documents().sequences().first()->getDatasets().at(GetParam().image));
        takeFront();
        m_pImage->showImage(IMAGETYPE_MAIN_DATA, DISPLAYUNIT_COUNTS);
        m_pImage->view();
    }

    QString m_strFolder;
};

TEST_P(ImageOutlinesTest, HoldThePixelsThatTheyAreDrawnAround)
{
    EXPECT_EQ(m_pImage->image().size(), QSize(GetParam().side, GetParam().side));
    drawBoth();
    expectCorners(regions().at(0));
    expectHolds(regions().at(0), corners());
    EXPECT_EQ(regions().at(1).shape, ROISHAPE_FREEHAND);
    expectHolds(regions().at(1), bean());
    look::keep(*m_pWindow, GetParam().name);
}

TEST_P(ImageOutlinesTest, AreTheSameForTheCommandLineAndTheNextStart)
{
    drawBoth();
    const QString image = m_pImage->dataset()->getClickNumber();
    const QList<tagROIInfo> drawn = regions();
    m_pImage->findChild<QToolButton*>("m_pSaveRegionsButton")->click();
    EXPECT_TRUE(m_script.m_asked.isEmpty());
    const QByteArray answer = runSpum({"roi", m_strFolder, "measure", "--unit", "counts", "--json"});
    const QJsonArray rows = QJsonDocument::fromJson(answer).object()["measurements"].toArray();
    ASSERT_EQ(rows.size(), 2) << "of this image alone";
    openImage();
    ASSERT_EQ(regions().size(), 2);
    for (int i = 0; i < 2; ++i) {
        const QJsonObject row = rows.at(i).toObject();
        EXPECT_EQ(row["image"].toString(), image);
        EXPECT_EQ(row["shape"].toString(), ROIShape::toText(drawn.at(i)));
        EXPECT_EQ(row["pixels"].toInt(), drawn.at(i).statistics.pixels);
        EXPECT_EQ(row["mean"].toDouble(), drawn.at(i).statistics.mean);
        EXPECT_EQ(ROIShape::toText(regions().at(i)), ROIShape::toText(drawn.at(i)));
        EXPECT_EQ(regions().at(i).statistics.mean, drawn.at(i).statistics.mean);
    }
}

TEST_P(ImageOutlinesTest, DrawnOnThePhotographLieInTheSamePlaceOfTheImage)
{
    m_pImage->showImage(IMAGETYPE_PHOTOGRAPH);
    hand().polygon(corners()); // those of the photograph
    hand().layDown();
    m_pImage->showImage(IMAGETYPE_MAIN_DATA, DISPLAYUNIT_COUNTS);
    m_pImage->view();
    ASSERT_EQ(regions().size(), 1);
    expectCorners(regions().at(0));
    expectHolds(regions().at(0), corners());
}

QStringList scan(const char* pSize, const char* pBinning)
{
    return {"--kind", "transillumination", "--spots", "2", "--bands", "3", "--size", pSize, "--binning", pBinning};
}

// Of the last sequence the first two images have twice the binning of the others.
INSTANTIATE_TEST_SUITE_P(
    Images, ImageOutlinesTest,
    ::testing::Values(Drawn{"outlines_scan", scan("48", "4"), 4, 48},
                      Drawn{"outlines_scan_coarse", scan("24", "8"), 1, 24},
                      Drawn{"outlines_mixed_coarse", {"--size", "48", "--bands", "5", "--mixed-binning"}, 1, 24},
                      Drawn{"outlines_mixed", {"--size", "48", "--bands", "5", "--mixed-binning"}, 2, 48}),
    [](const auto& test) { return test.param.name; });

// A map, opened as the tool opens it.
class MapOutlinesTest : public OutlinesFixture
{
protected:
    void SetUp() override
    {
        OutlinesFixture::SetUp();
        const QString sequence = m_folder.filePath("mouse");
        simulated::into(sequence, {"--size", "24", "--bands", "8", "--binning", "8"});
        runSpum({"unmix", sequence, "--library", sequence + "/truth/radiant-efficiency/spectra.csv", "--save", "kept",
                 "--out", m_folder.filePath("out"), "--quiet"});
        runSpum({"results", "export", sequence, "kept", "--out", m_folder.filePath("maps"), "--quiet"});
        makeWindowWithTool();
        m_pWindow->resize(1200, 900);
        m_pWindow->open(sequence);
        const QDir maps(m_folder.filePath("maps"));
        openMap(maps.filePath(maps.entryList(QDir::Dirs | QDir::NoDotAndDotDot).value(1)));
    }
    void openMap(const QString& strFolder)
    {
        ESTATUS status = ESTATUS_FAILURE;
        Q_EMIT m_pTool->signalLoadFile(strFolder + "/ClickInfo.txt", true, &status, nullptr);
        ASSERT_EQ(status, ESTATUS_SUCCESS) << qPrintable(strFolder);
        takeFront();
        m_pImage->dataset()->setModified(true);
        m_pImage->dataset()->updateActiveImage();
    }
};

TEST_F(MapOutlinesTest, HoldThePixelsThatTheyAreDrawnAround)
{
    ASSERT_EQ(m_pImage->image().size(), QSize(24, 24));
    EXPECT_EQ(binning(), 8.0);
    drawBoth();
    expectCorners(regions().at(0));
    expectHolds(regions().at(0), corners());
    expectHolds(regions().at(1), bean());
    look::keep(*m_pWindow, "map_outlines");
}

TEST_F(MapOutlinesTest, AreMovedChangedAndComeBackWithTheImageThatIsSaved)
{
    drawBoth();
    hand().drag({10, 6}, {12, 8}); // the polygon, beside the line by hand
    QPolygonF moved = corners().translated(2, 2);
    expectHolds(regions().at(0), moved);
    hand().drag(moved.at(2), moved.at(2) + QPointF(0, 4));
    moved[2] += QPointF(0, 4);
    expectHolds(regions().at(0), moved);
    const QList<tagROIInfo> drawn = regions();
    m_script.m_file = m_folder.filePath("kept map");
    trigger("saveImageAction");
    EXPECT_FALSE(m_pImage->isWindowModified());
    EXPECT_TRUE(m_pWindow->documents().closeCurrent());
    openMap(m_folder.filePath("kept map"));
    ASSERT_EQ(regions().size(), 2);
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(ROIShape::toText(regions().at(i)).toStdString(), ROIShape::toText(drawn.at(i)).toStdString());
        EXPECT_EQ(regions().at(i).statistics.pixels, drawn.at(i).statistics.pixels);
        EXPECT_EQ(regions().at(i).statistics.mean, drawn.at(i).statistics.mean);
    }
}

} // namespace
