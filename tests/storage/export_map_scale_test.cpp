// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/unmixedMapScale.h"

#include "engine/LogCapture.h"
#include "engine/TestSequence.h"

#include "host/CILImage.h"
#include "host/CORVDataset.h"
#include "host/CPLClickInfo.h"
#include "host/orv_calibration.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

// A source of 4 x 4 pixels whose counts are worth 8 / (0.5 * 1^2 * 1) = 16 p/s/cm^2/sr at binning 1.
class ExportMapScaleTest : public ::testing::Test
{
protected:
    CORVDataset& source(const std::function<float(int)>& value, int nBinning = 1)
    {
        TestImage image;
        image.value = value;
        image.binning = nBinning;
        image.calibratedUnit = DISPLAYUNIT_RADIANCE;
        CORVDataset* pDataset = m_sequence.add(image);
        pDataset->clickInfo[QString("Camera System Info")]->setValue("Photons per Count", "8");
        pDataset->clickInfo[QString("luminescent image")]->setValue("Exposure Time Sec", "0.5");
        return *pDataset;
    }
    static CILImage map(int nSide)
    {
        return squareImage(nSide, 1, [](int i) { return static_cast<float>(i) + 0.25F; });
    }
    static void expectUnchanged(const CILImage& image, double dTolerance = 0.0)
    {
        for (std::size_t i = 0; i < image.pixelCount(); ++i) {
            EXPECT_NEAR(image.value(i), static_cast<double>(i) + 0.25, dTolerance * (static_cast<double>(i) + 0.25))
                << i;
        }
    }
    // Two roundings to float: of the ratio and of the product.
    static constexpr double rounding = 2.0 / 16777216.0;

    TestSequence m_sequence;
};

} // namespace

TEST_F(ExportMapScaleTest, TheCalibrationOfAllPixelsCancels)
{
    CORVDataset& dataset = source([](int i) { return 3.0F + static_cast<float>(i); });
    double dCalibration = 0.0;
    ASSERT_TRUE(ORV_getImageIntensityCalibrationValue(IMAGETYPE_LUMINESCENT, &dataset, "photons", &dCalibration));
    ASSERT_EQ(dCalibration, 16.0);
    CILImage image = map(4);
    ASSERT_TRUE(scaleMapBySource(dataset, image));
    expectUnchanged(image, rounding);
    EXPECT_EQ(image.dataType(), ORVTYPE_FLOAT);
}

TEST_F(ExportMapScaleTest, ItsMinimumAndMaximumAreThoseOfThePixels)
{
    CORVDataset& dataset = source([](int i) { return 3.0F + static_cast<float>(i); });
    CILImage image = map(4);
    image.m_dMin = -5.0;
    image.m_dMax = 1000.0;
    ASSERT_TRUE(scaleMapBySource(dataset, image));
    EXPECT_NEAR(image.Min(), 0.25, 1e-6);
    EXPECT_NEAR(image.Max(), 15.25, 1e-5);
}

TEST_F(ExportMapScaleTest, ALargeCalibrationDoesNotExceedTheRangeOfFloats)
{
    // 1e38 p/s/cm^2/sr a count: sixteen of them are more than a float holds.
    CORVDataset& dataset = source([](int) { return 0.5F; });
    dataset.clickInfo[QString("Camera System Info")]->setValue("Photons per Count", "5e37");
    double dCalibration = 0.0;
    ASSERT_TRUE(ORV_getImageIntensityCalibrationValue(IMAGETYPE_LUMINESCENT, &dataset, "photons", &dCalibration));
    ASSERT_NEAR(dCalibration, 1e38, 1e32);
    CILImage image = map(4);
    ASSERT_TRUE(scaleMapBySource(dataset, image));
    expectUnchanged(image, 1e-6); // the ratio is so small that it has fewer digits
}

TEST_F(ExportMapScaleTest, WhereTheSourceIsDarkTheMapKeepsItsValue)
{
    CORVDataset& dataset = source([](int i) { return i % 3 == 0 ? 0.0F : 5.0F; });
    CILImage image = map(4);
    ASSERT_TRUE(scaleMapBySource(dataset, image));
    expectUnchanged(image, rounding);
}

TEST_F(ExportMapScaleTest, ASourceWiderThanTheMapIsBroughtToItsSize)
{
    CORVDataset& dataset = source([](int i) { return 1.0F + static_cast<float>(i); });
    CILImage image = map(2);
    ASSERT_TRUE(scaleMapBySource(dataset, image));
    EXPECT_EQ(image.m_lWidth, 2);
    expectUnchanged(image, 2.0 * rounding); // and one more of the mean
}

TEST_F(ExportMapScaleTest, ASourceNarrowerThanTheMapIsBroughtToItsSize)
{
    CORVDataset& dataset = source([](int i) { return 1.0F + static_cast<float>(i); }, 2);
    CILImage image = map(8);
    ASSERT_TRUE(scaleMapBySource(dataset, image));
    EXPECT_EQ(image.m_lWidth, 8);
    expectUnchanged(image, 2.0 * rounding);
}

TEST_F(ExportMapScaleTest, ASourceStoredInRadianceHasNoCountsToScaleBy)
{
    CORVDataset& dataset = source([](int) { return 7.0F; });
    dataset.clickInfo[QString("luminescent image")]->setValue("Stored Unit", "Radiance");
    CILImage image = map(4);
    ASSERT_TRUE(scaleMapBySource(dataset, image));
    expectUnchanged(image);
}

TEST_F(ExportMapScaleTest, ASourceThatCannotBeReadIsAFailureAndLeavesTheMap)
{
    const QTemporaryDir folder;
    CORVDataset& made = source([](int) { return 7.0F; });
    ASSERT_EQ(made.clickInfo.saveClickInfo(folder.filePath("ClickInfo.txt")), 0);
    const QString strFile = folder.filePath("luminescent.TIF");
    ASSERT_EQ(made.getCoreImage(IMAGETYPE_LUMINESCENT)->saveAsTIFF(QFile::encodeName(strFile).constData()),
              EIL_SUCCESS);
    CORVDataset dataset;
    ASSERT_EQ(dataset.open(folder.path()), ESTATUS_SUCCESS);
    ASSERT_TRUE(QFile::resize(strFile, 20));
    const LogCapture log;
    CILImage image = map(4);
    EXPECT_FALSE(scaleMapBySource(dataset, image));
    expectUnchanged(image);
}
