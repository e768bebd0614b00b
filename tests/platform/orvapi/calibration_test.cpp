// SPDX-License-Identifier: GPL-3.0-or-later
// The expected numbers are worked out by hand beside each case.
#include "SequenceFolders.h"

#include "host/orv_calibration.h"

#include <QFile>
#include <QMap>

#include <memory>
#include <thread>

using namespace sequencefolders;

namespace {

class CalibrationTest : public SequenceFolderTest
{
protected:
    // A click with the image in a file, and perhaps a transmitted reference.
    void makeDataset(const DatasetDescription& click, const CILImage& data, const CILImage* pReference = nullptr)
    {
        SequenceWriter writer;
        SequenceDescription description;
        description.id = "CAL";
        description.transillumination = pReference != nullptr;
        ASSERT_TRUE(writer.begin(m_strTarget, description, true, &m_strError)) << m_strError.toStdString();
        SequenceWriter::Images images{{IMAGETYPE_LUMINESCENT, &data}};
        if (pReference != nullptr) {
            images.append({IMAGETYPE_FLUORESCENT_REFERENCE, pReference});
        }
        ASSERT_TRUE(writer.addDataset(click, images, &m_strError)) << m_strError.toStdString();
        ASSERT_TRUE(writer.finish(&m_strError)) << m_strError.toStdString();
        ASSERT_EQ(m_dataset.open(inTarget(click.clickNumber), &m_strError), ESTATUS_SUCCESS)
            << m_strError.toStdString();
    }
    double pixel(tag_edisplayunit eUnit, std::size_t i = 0)
    {
        CILImage out;
        EXPECT_TRUE(m_dataset.unitUnavailableReason(eUnit).isEmpty())
            << m_dataset.unitUnavailableReason(eUnit).toStdString();
        EXPECT_EQ(m_dataset.getCalibratedLuminImage(eUnit, &out, "test"), ESTATUS_SUCCESS);
        EXPECT_EQ(out.dataType(), ORVTYPE_FLOAT);
        return out.isEmpty() ? -1e30 : out.value(i);
    }
    void expectUnavailable(tag_edisplayunit eUnit, const QString& strReason)
    {
        CILImage out = flatImage(1, 1, 5.0);
        EXPECT_EQ(m_dataset.getCalibratedLuminImage(eUnit, &out, "test"), ESTATUS_UNIT_UNAVAILABLE) << eUnit;
        EXPECT_EQ(out.m_lWidth, 1);
        EXPECT_EQ(out.value(0), 5.0);
        EXPECT_TRUE(m_dataset.unitUnavailableReason(eUnit).contains(strReason))
            << m_dataset.unitUnavailableReason(eUnit).toStdString();
    }
    void TearDown() override { CORVDataset::setUnitLimit(DISPLAYUNIT_EFFICIENCY); }

    // The reference of fullClick at binning 8: 2 s, bias 100, at the luminescent image's f-number. One count is
    // 2 / (2 * (0.01 * 8)^2 * 0.05 / 4) = 2 / (2 * 0.0064 * 0.0125) = 12 500.
    static DatasetDescription clickWithReference()
    {
        DatasetDescription click = fullClick("C1");
        setKey(click.info, ClickKeys::kFluorescentReferenceImage, ClickKeys::kExposureTime, "2");
        setKey(click.info, ClickKeys::kFluorescentReferenceImage, ClickKeys::kBinning, "8");
        setKey(click.info, ClickKeys::kFluorescentReferenceImage, ClickKeys::kReadBiasLevel, "100");
        return click;
    }

    CORVDataset m_dataset;
};

TEST_F(CalibrationTest, CountsArePixelsMinusTheBias)
{
    CILImage data = flatImage(3, 2, 340.0, 4.0F, ORVTYPE_USHORT);
    data.setValue(1, 290.0);
    makeDataset(fullClick("C1"), data);
    EXPECT_FLOAT_EQ(static_cast<float>(pixel(DISPLAYUNIT_COUNTS)), 40.0F);
    EXPECT_FLOAT_EQ(static_cast<float>(pixel(DISPLAYUNIT_COUNTS, 1)), -10.0F); // below the bias: kept as it is
    CILImage out;
    ASSERT_EQ(m_dataset.getCalibratedLuminImage(DISPLAYUNIT_COUNTS, &out, "test"), ESTATUS_SUCCESS);
    EXPECT_FLOAT_EQ(out.m_fBinning, 4.0F);
    EXPECT_EQ(out.m_lWidth, 3);
    EXPECT_EQ(out.m_lHeight, 2);
    EXPECT_DOUBLE_EQ(out.Max(), 40.0);
}

TEST_F(CalibrationTest, BiasIsNotTakenOffTwice)
{
    DatasetDescription click = fullClick("C1");
    setKey(click.info, ClickKeys::kLuminescentImage, ClickKeys::kBackgroundCorrected, "1");
    makeDataset(click, flatImage(2, 2, 340.0, 4.0F));
    EXPECT_FLOAT_EQ(static_cast<float>(pixel(DISPLAYUNIT_COUNTS)), 340.0F);
}

TEST_F(CalibrationTest, UnknownBiasIsZero)
{
    DatasetDescription click = fullClick("C1");
    click.info[ClickKeys::kLuminescentImage]->removeKey(ClickKeys::kReadBiasLevel);
    makeDataset(click, flatImage(2, 2, 340.0, 4.0F));
    EXPECT_FLOAT_EQ(static_cast<float>(pixel(DISPLAYUNIT_COUNTS)), 340.0F);
}

TEST_F(CalibrationTest, TheFourUnitsByHand)
{
    makeDataset(fullClick("C1"), flatImage(2, 2, 340.0, 4.0F, ORVTYPE_USHORT));
    // 40 counts * 2 / (4 s * (0.04 cm)^2 * 0.05 sr / 4) = 80 / (4 * 0.0016 * 0.0125) = 80 / 8e-5 = 1e6
    EXPECT_NEAR(pixel(DISPLAYUNIT_RADIANCE), 1e6, 0.1);
    EXPECT_NEAR(pixel(DISPLAYUNIT_RADIANT_EFFICIENCY), 5e4, 0.01); // over 20 uW/cm^2
    EXPECT_NEAR(pixel(DISPLAYUNIT_EFFICIENCY), 0.25, 1e-7);        // over 4e6
}

TEST_F(CalibrationTest, RadianceDoesNotDependOnTheBinning)
{
    makeDataset(fullClick("C1"), flatImage(4, 4, 340.0, 4.0F, ORVTYPE_USHORT));
    const double fine = pixel(DISPLAYUNIT_RADIANCE);
    DatasetDescription coarse = fullClick("C1");
    setKey(coarse.info, ClickKeys::kLuminescentImage, ClickKeys::kBinning, "8");
    // Four pixels of 40 counts fall into one; the bias is one a stored pixel.
    makeDataset(coarse, flatImage(2, 2, 460.0, 8.0F, ORVTYPE_USHORT));
    EXPECT_FLOAT_EQ(static_cast<float>(pixel(DISPLAYUNIT_COUNTS)), 160.0F);
    EXPECT_NEAR(pixel(DISPLAYUNIT_RADIANCE), fine, 1e-6 * fine);
    EXPECT_NEAR(fine, 1e6, 0.1);
}

TEST_F(CalibrationTest, RadianceFollowsExposureAndAperture)
{
    DatasetDescription click = fullClick("C1");
    setKey(click.info, ClickKeys::kLuminescentImage, ClickKeys::kExposureTime, "8");
    setKey(click.info, ClickKeys::kLuminescentImage, ClickKeys::kFNumber, "4");
    makeDataset(click, flatImage(2, 2, 340.0, 4.0F));
    EXPECT_NEAR(pixel(DISPLAYUNIT_RADIANCE), 2e6, 0.2); // half the rate, a quarter of the solid angle
}

TEST_F(CalibrationTest, TransmittedReferenceImageDividesPixelByPixel)
{
    CILImage reference = flatImage(2, 2, 260.0, 8.0F, ORVTYPE_USHORT);
    reference.setValue(1, 420.0);
    reference.setValue(2, 100.0); // no light there
    reference.setValue(3, 40.0);  // below the bias
    makeDataset(clickWithReference(), flatImage(2, 2, 340.0, 4.0F, ORVTYPE_USHORT), &reference);
    // 160 counts * 12 500 = 2e6; 320 counts: 4e6. The data are 1e6.
    EXPECT_NEAR(pixel(DISPLAYUNIT_EFFICIENCY, 0), 0.5, 1e-6);
    EXPECT_NEAR(pixel(DISPLAYUNIT_EFFICIENCY, 1), 0.25, 1e-6);
    EXPECT_EQ(pixel(DISPLAYUNIT_EFFICIENCY, 2), 0.0);
    EXPECT_EQ(pixel(DISPLAYUNIT_EFFICIENCY, 3), 0.0);
}

TEST_F(CalibrationTest, ReferenceOfAnotherSizeIsBroughtToTheImages)
{
    for (const long side : {2L, 16L}) {
        const CILImage reference = flatImage(side, side, 260.0, 8.0F, ORVTYPE_USHORT);
        makeDataset(clickWithReference(), flatImage(6, 6, 340.0, 4.0F, ORVTYPE_USHORT), &reference);
        CILImage out;
        ASSERT_EQ(m_dataset.getCalibratedLuminImage(DISPLAYUNIT_EFFICIENCY, &out, "test"), ESTATUS_SUCCESS);
        ASSERT_EQ(out.m_lWidth, 6);
        ASSERT_EQ(out.m_lHeight, 6);
        EXPECT_FLOAT_EQ(out.m_fBinning, 4.0F);
        for (std::size_t i = 0; i < out.pixelCount(); ++i) {
            EXPECT_NEAR(out.value(i), 0.5, 1e-5) << "side " << side << ", pixel " << i;
        }
    }
}

// What a window reads on a thread of its own, while the dataset changes, is written elsewhere, or closes.
TEST_F(CalibrationTest, AReaderGivesTheImageOfTheTimeWhenItWasAskedFor)
{
    const CILImage reference = flatImage(4, 4, 140.0, 8.0F, ORVTYPE_USHORT);
    makeDataset(clickWithReference(), flatImage(2, 2, 340.0, 4.0F, ORVTYPE_USHORT), &reference);
    for (const auto unit : {DISPLAYUNIT_COUNTS, DISPLAYUNIT_RADIANCE, DISPLAYUNIT_EFFICIENCY}) {
        auto pDataset = std::make_unique<CORVDataset>();
        ASSERT_EQ(pDataset->open(inTarget("C1"), &m_strError), ESTATUS_SUCCESS) << m_strError.toStdString();
        const CORVDataset::ImageReader fromFile = pDataset->luminImageReader(unit, "test");
        pDataset->setCoreImage(IMAGETYPE_LUMINESCENT, flatImage(2, 2, 440.0, 4.0F, ORVTYPE_USHORT));
        const CORVDataset::ImageReader fromMemory = pDataset->luminImageReader(unit, "test");
        CILImage inMemory;
        ASSERT_EQ(pDataset->getCalibratedLuminImage(unit, &inMemory, "test"), ESTATUS_SUCCESS);
        pDataset.reset();
        CILImage out;
        std::thread([&] { EXPECT_EQ(fromFile(&out), ESTATUS_SUCCESS); }).join();
        ASSERT_FALSE(out.isEmpty());
        EXPECT_EQ(out.value(3), pixel(unit, 3));
        EXPECT_FLOAT_EQ(out.m_fBinning, 4.0F);
        ASSERT_EQ(fromMemory(&out), ESTATUS_SUCCESS);
        EXPECT_EQ(out.value(3), inMemory.value(3));
        EXPECT_NE(out.value(3), pixel(unit, 3));
    }
}

TEST_F(CalibrationTest, AReaderTellsWhatCannotBeHad)
{
    CILImage out = flatImage(1, 1, 5.0);
    EXPECT_EQ(m_dataset.luminImageReader(DISPLAYUNIT_COUNTS, "test")(&out), ESTATUS_IMAGE_MISSING);
    makeDataset(fullClick("C1"), flatImage(2, 2, 340.0, 4.0F, ORVTYPE_USHORT));
    const auto read = m_dataset.luminImageReader(DISPLAYUNIT_COUNTS, "test");
    CORVDataset::setUnitLimit(DISPLAYUNIT_COUNTS);
    EXPECT_EQ(m_dataset.luminImageReader(DISPLAYUNIT_RADIANCE, "test")(&out), ESTATUS_UNIT_UNAVAILABLE);
    // The file goes between the question and the reading.
    const QString file = m_dataset.imageList().getImage(IMAGETYPE_LUMINESCENT)->path();
    ASSERT_TRUE(QFile::remove(file));
    EXPECT_EQ(read(&out), ESTATUS_FILE_UNREADABLE);
    EXPECT_EQ(out.value(0), 5.0) << "untouched";
}

TEST_F(CalibrationTest, ReferenceImageWithoutItsOwnFiguresLeavesTheNumber)
{
    DatasetDescription click = clickWithReference();
    click.info[ClickKeys::kFluorescentReferenceImage]->removeKey(ClickKeys::kExposureTime);
    const CILImage reference = flatImage(2, 2, 260.0, 8.0F);
    makeDataset(click, flatImage(2, 2, 340.0, 4.0F), &reference);
    EXPECT_NEAR(pixel(DISPLAYUNIT_EFFICIENCY), 0.25, 1e-6);
    click.info[ClickKeys::kLuminescentImage]->removeKey(ClickKeys::kReferenceRadiance);
    makeDataset(click, flatImage(2, 2, 340.0, 4.0F), &reference);
    expectUnavailable(DISPLAYUNIT_EFFICIENCY, ClickKeys::kExposureTime);
}

TEST_F(CalibrationTest, EveryMissingFigureMakesRadianceUnavailableAndIsNamed)
{
    using namespace ClickKeys;
    const std::pair<const char*, const char*> figures[] = {
        {kLuminescentImage, kExposureTime},    {kLuminescentImage, kBinning},   {kLuminescentImage, kFNumber},
        {kCameraSystemInfo, kPhotonsPerCount}, {kCameraSystemInfo, kPixelSize}, {kCameraSystemInfo, kLensSolidAngle}};
    for (const auto& [section, key] : figures) {
        makeDataset(fullClick("C1"), flatImage(2, 2, 340.0, 4.0F));
        EXPECT_TRUE(m_dataset.unitUnavailableReason(DISPLAYUNIT_RADIANCE).isEmpty());
        for (const char* pText : {"0", "-1", "much", "nan", ""}) {
            setKey(m_dataset.clickInfo, section, key, pText);
            for (const tag_edisplayunit unit :
                 {DISPLAYUNIT_RADIANCE, DISPLAYUNIT_RADIANT_EFFICIENCY, DISPLAYUNIT_EFFICIENCY}) {
                expectUnavailable(unit, key);
            }
        }
        m_dataset.clickInfo[section]->removeKey(key);
        expectUnavailable(DISPLAYUNIT_RADIANCE, key);
        EXPECT_FLOAT_EQ(static_cast<float>(pixel(DISPLAYUNIT_COUNTS)), 40.0F); // counts ask for nothing
    }
}

TEST_F(CalibrationTest, MissingIrradianceAndReferenceTakeOnlyTheirUnit)
{
    makeDataset(fullClick("C1"), flatImage(2, 2, 340.0, 4.0F));
    m_dataset.clickInfo[ClickKeys::kLuminescentImage]->removeKey(ClickKeys::kExcitationIrradiance);
    expectUnavailable(DISPLAYUNIT_RADIANT_EFFICIENCY, ClickKeys::kExcitationIrradiance);
    EXPECT_NEAR(pixel(DISPLAYUNIT_EFFICIENCY), 0.25, 1e-6);
    setKey(m_dataset.clickInfo, ClickKeys::kLuminescentImage, ClickKeys::kReferenceRadiance, "0");
    expectUnavailable(DISPLAYUNIT_EFFICIENCY, ClickKeys::kReferenceRadiance);
    EXPECT_NEAR(pixel(DISPLAYUNIT_RADIANCE), 1e6, 0.1);
}

TEST_F(CalibrationTest, UnitsAboveTheLimitAreUnavailable)
{
    makeDataset(fullClick("C1"), flatImage(2, 2, 340.0, 4.0F));
    EXPECT_EQ(CORVDataset::unitLimit(), DISPLAYUNIT_EFFICIENCY);
    CORVDataset::setUnitLimit(DISPLAYUNIT_RADIANCE);
    expectUnavailable(DISPLAYUNIT_EFFICIENCY, "limit");
    expectUnavailable(DISPLAYUNIT_RADIANT_EFFICIENCY, "limit");
    EXPECT_NEAR(pixel(DISPLAYUNIT_RADIANCE), 1e6, 0.1);
    CORVDataset::setUnitLimit(DISPLAYUNIT_COUNTS);
    expectUnavailable(DISPLAYUNIT_RADIANCE, "limit");
    EXPECT_FLOAT_EQ(static_cast<float>(pixel(DISPLAYUNIT_COUNTS)), 40.0F);
}

TEST_F(CalibrationTest, DataStoredAsEfficiencyComeAsTheyAreAndInNoOtherUnit)
{
    DatasetDescription click = fullClick("C1");
    setKey(click.info, ClickKeys::kLuminescentImage, ClickKeys::kNativeUnit, "3");
    makeDataset(click, flatImage(2, 2, 0.125, 4.0F));
    ASSERT_EQ(m_dataset.nativeUnit, DISPLAYUNIT_EFFICIENCY);
    EXPECT_EQ(pixel(DISPLAYUNIT_EFFICIENCY), 0.125);
    for (const tag_edisplayunit unit : {DISPLAYUNIT_COUNTS, DISPLAYUNIT_RADIANCE, DISPLAYUNIT_RADIANT_EFFICIENCY}) {
        expectUnavailable(unit, "efficiency");
    }
    double factor = 9.0;
    EXPECT_FALSE(ORV_getImageIntensityCalibrationValue(IMAGETYPE_MAIN_DATA, &m_dataset, "counts", &factor));
    EXPECT_EQ(factor, 9.0);
}

// As an import leaves what an export wrote. The figures that could calibrate counts do not count.
TEST_F(CalibrationTest, DataStoredInAUnitComeAsTheyAreAndInNoOther)
{
    const QMap<tag_edisplayunit, const char*> texts{{DISPLAYUNIT_RADIANCE, "Radiance"},
                                                    {DISPLAYUNIT_RADIANT_EFFICIENCY, "radiant efficiency"},
                                                    {DISPLAYUNIT_EFFICIENCY, "3"}};
    for (auto stored = texts.cbegin(); stored != texts.cend(); ++stored) {
        DatasetDescription click = fullClick("C1");
        setKey(click.info, ClickKeys::kLuminescentImage, ClickKeys::kStoredUnit, stored.value());
        makeDataset(click, flatImage(2, 2, 0.125, 4.0F));
        EXPECT_EQ(m_dataset.nativeUnit, stored.key());
        EXPECT_EQ(pixel(stored.key()), 0.125) << stored.value();
        for (const tag_edisplayunit unit :
             {DISPLAYUNIT_COUNTS, DISPLAYUNIT_RADIANCE, DISPLAYUNIT_RADIANT_EFFICIENCY, DISPLAYUNIT_EFFICIENCY}) {
            if (unit != stored.key()) {
                expectUnavailable(unit, "the data are stored as");
            }
        }
        double factor = 9.0;
        EXPECT_FALSE(ORV_getImageIntensityCalibrationValue(IMAGETYPE_MAIN_DATA, &m_dataset, "photons", &factor));
    }
}

TEST_F(CalibrationTest, ImagesHeldInMemoryBringTheirBinning)
{
    CORVDataset dataset;
    dataset.clickInfo = fullClick("C1").info;
    EXPECT_FALSE(dataset.unitUnavailableReason(DISPLAYUNIT_COUNTS).isEmpty()); // no image yet
    dataset.setCoreImage(IMAGETYPE_MAIN_DATA, flatImage(2, 2, 460.0, 8.0F));
    EXPECT_TRUE(dataset.hasLuminescentImage);
    CILImage out;
    ASSERT_EQ(dataset.getCalibratedLuminImage(DISPLAYUNIT_RADIANCE, &out, "test"), ESTATUS_SUCCESS);
    EXPECT_NEAR(out.value(0), 1e6, 0.1);                                   // 160 counts * 6250
    EXPECT_EQ(dataset.getCoreImage(IMAGETYPE_MAIN_DATA)->value(0), 460.0); // the core image stays as it was
}

TEST_F(CalibrationTest, CalibrationValueIsTheFactorOfACount)
{
    makeDataset(fullClick("C1"), flatImage(2, 2, 340.0, 4.0F));
    double factor = 0.0;
    ASSERT_TRUE(ORV_getImageIntensityCalibrationValue(IMAGETYPE_LUMINESCENT, &m_dataset, "photons", &factor));
    EXPECT_NEAR(factor, 25000.0, 1e-6);
    ASSERT_TRUE(ORV_getImageIntensityCalibrationValue(IMAGETYPE_MAIN_DATA, &m_dataset, "counts", &factor));
    EXPECT_EQ(factor, 1.0);
    factor = 9.0;
    EXPECT_FALSE(ORV_getImageIntensityCalibrationValue(IMAGETYPE_MAIN_DATA, &m_dataset, "lumen", &factor));
    EXPECT_FALSE(ORV_getImageIntensityCalibrationValue(IMAGETYPE_MAIN_DATA, &m_dataset, nullptr, &factor));
    EXPECT_FALSE(ORV_getImageIntensityCalibrationValue(IMAGETYPE_XRAY, &m_dataset, "photons", &factor));
    EXPECT_FALSE(ORV_getImageIntensityCalibrationValue(IMAGETYPE_MAIN_DATA, nullptr, "photons", &factor));
    EXPECT_FALSE(ORV_getImageIntensityCalibrationValue(IMAGETYPE_MAIN_DATA, &m_dataset, "photons", nullptr));
    m_dataset.clickInfo.removeSection(ClickKeys::kCameraSystemInfo);
    EXPECT_FALSE(ORV_getImageIntensityCalibrationValue(IMAGETYPE_MAIN_DATA, &m_dataset, "photons", &factor));
    EXPECT_EQ(factor, 9.0);
}

TEST_F(CalibrationTest, BrokenReferenceImageIsAFailureOnceItsPixelsAreNeeded)
{
    const CILImage reference = flatImage(2, 2, 260.0, 8.0F, ORVTYPE_USHORT);
    makeDataset(clickWithReference(), flatImage(2, 2, 340.0, 4.0F), &reference);
    ASSERT_TRUE(QFile::remove(inTarget("C1/transmission.tif")));
    CILImage out = flatImage(1, 1, 5.0);
    EXPECT_EQ(m_dataset.getCalibratedLuminImage(DISPLAYUNIT_EFFICIENCY, &out, "test"), ESTATUS_FILE_UNREADABLE);
    EXPECT_EQ(out.m_lWidth, 1);
}

} // namespace
