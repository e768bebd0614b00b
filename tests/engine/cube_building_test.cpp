// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/CORVSpumKyvo.h"
#include "engine/LogCapture.h"
#include "engine/TestSequence.h"
#include "engine/dataMask.h"

#include "host/CILImage.h"
#include "host/CORVDataset.h"
#include "host/CORVSequenceDataset.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

const char* const noImage = "SpumKyvo: unable to find the matching image in createImageList()!";
const char* const noCalibratedImage = "SpumKyvo: unable to getCalibratedLuminImage in buildImageCube()!";
const char* const tryRadiance = "SpumKyvo: Will try the radiance unit!";
const char* const tryCounts = "SpumKyvo: Will try the count unit!";
const char* const tryRadiantEfficiency = "SpumKyvo: Will try the radiance efficiency!";

// A fluorescent sequence of images at these binnings; image j is constant j + 1 (in counts).
void addImages(TestSequence& sequence, const std::vector<int>& binnings, int nFullSide, int nCalibratedUnit)
{
    sequence->isFluorescence = true;
    for (std::size_t j = 0; j < binnings.size(); ++j) {
        TestImage image;
        image.excitation = "640nm";
        image.emission = QString("%1nm").arg(700 + 20 * static_cast<int>(j));
        image.binning = binnings[j];
        image.side = nFullSide / binnings[j];
        image.calibratedUnit = nCalibratedUnit;
        image.value = [j](int) { return static_cast<float>(j + 1); };
        sequence.add(image);
    }
}

TEST(SetBinningAndSizeTest, TheCoarserOfTwoEquallyCommonBinningsWins)
{
    for (const std::vector<int>& binnings : {std::vector<int>{4, 4, 8, 8}, std::vector<int>{8, 8, 4, 4}}) {
        TestSequence sequence;
        addImages(sequence, binnings, 32, 2);
        CORVSpumKyvo engine(sequence.id());
        ASSERT_TRUE(engine.buildDatasetInfo());
        ASSERT_TRUE(engine.createImageList());
        ASSERT_TRUE(engine.setBinningAndSize(true));
        EXPECT_EQ(engine.m_nBinning, 8);
        EXPECT_EQ(engine.m_nWidth, 4);
        EXPECT_EQ(engine.m_nHeight, 4);
    }
}

TEST(SetBinningAndSizeTest, AGivenBinningStaysWhenNotAutomatic)
{
    TestSequence sequence;
    addImages(sequence, {4, 4}, 32, 2);
    CORVSpumKyvo engine(sequence.id());
    ASSERT_TRUE(engine.buildDatasetInfo());
    ASSERT_TRUE(engine.createImageList());
    engine.m_nBinning = 16;
    ASSERT_TRUE(engine.setBinningAndSize(false));
    EXPECT_EQ(engine.m_nBinning, 16);
    EXPECT_EQ(engine.m_nWidth, 2);
    // Without one it is chosen all the same.
    engine.m_nBinning = 0;
    ASSERT_TRUE(engine.setBinningAndSize(false));
    EXPECT_EQ(engine.m_nBinning, 4);
}

TEST(SetBinningAndSizeTest, NeedsTheSequence)
{
    CORVSpumKyvo engine("gone");
    EXPECT_FALSE(engine.setBinningAndSize(true));
}

TEST(SetBinningAndSizeTest, AMissingDatasetFailsSilently)
{
    TestSequence sequence;
    addImages(sequence, {4, 4}, 32, 2);
    CORVSpumKyvo engine(sequence.id());
    ASSERT_TRUE(engine.buildDatasetInfo());
    LogCapture log;
    engine.m_imageList = {"no such click"};
    EXPECT_FALSE(engine.setBinningAndSize(true));
    engine.m_imageList.clear();
    EXPECT_TRUE(engine.setBinningAndSize(true));
    EXPECT_FALSE(log.mentions("SpumKyvo"));
}

TEST(CreateImageListTest, APairWithoutImageIsLogged)
{
    TestSequence sequence;
    addImages(sequence, {1, 1}, 4, 2);
    CORVSpumKyvo engine(sequence.id());
    ASSERT_TRUE(engine.buildDatasetInfo());
    engine.m_selectedKeyPairs.append(KeyPair{"640", "999"});
    LogCapture log;
    EXPECT_FALSE(engine.createImageList());
    EXPECT_TRUE(log.has(noImage, 2));
    EXPECT_FALSE(engine.buildImageCube());
    EXPECT_FALSE(engine.m_bCubeValid);
}

TEST(CreateImageListTest, RunsSpotAfterSpot)
{
    TestSequence sequence;
    sequence->isFluorescence = true;
    sequence->isTransillumination = true;
    for (int k = 0; k < 6; ++k) {
        TestImage image;
        image.excitation = "640nm";
        image.emission = QString("%1nm").arg(700 + 20 * (k % 3));
        image.spotX = QString::number(k / 3);
        image.spotY = "0";
        image.value = [k](int i) { return static_cast<float>(10 * k + i); };
        image.calibratedUnit = 3;
        sequence.add(image);
    }
    CORVSpumKyvo engine(sequence.id());
    ASSERT_TRUE(engine.buildDatasetInfo());
    ASSERT_TRUE(engine.buildImageCube());
    ASSERT_EQ(engine.m_imageList.size(), 6);
    EXPECT_EQ(engine.m_imageList.at(4), sequence.click(4)); // spot 1, image 1
    EXPECT_EQ(engine.m_cube.m_nSpots, 2);
    EXPECT_EQ(engine.m_cube.m_nImages, 3);
    ASSERT_EQ(engine.m_cube.m_data.num_rows(), 32);
    EXPECT_EQ(engine.m_cube.m_data[16 + 5][1], 45.0);
    EXPECT_EQ(engine.m_eUnit, 3);
}

TEST(BuildImageCubeTest, ImagesInSelectionOrderInTheUnitOfTheSequence)
{
    TestSequence sequence;
    addImages(sequence, {1, 1, 1}, 4, 2);
    CORVSpumKyvo engine(sequence.id());
    ASSERT_TRUE(engine.buildDatasetInfo());
    engine.m_selectedKeyPairs = {{"640", "740"}, {"640", "700"}};
    LogCapture log;
    ASSERT_TRUE(engine.buildImageCube());
    EXPECT_TRUE(engine.m_bCubeValid);
    EXPECT_EQ(engine.m_eUnit, 2);
    EXPECT_EQ(engine.m_cube.m_data.num_rows(), 16);
    EXPECT_EQ(engine.m_cube.m_data[7][0], 3.0);
    EXPECT_EQ(engine.m_cube.m_data[7][1], 1.0);
    EXPECT_TRUE(engine.m_cube.m_rawData.empty());
    EXPECT_FALSE(log.mentions("SpumKyvo"));
}

TEST(BuildImageCubeTest, AValidCubeIsTakenAsItIs)
{
    CORVSpumKyvo engine("none");
    engine.m_cube.m_data = XTNT::Matrix<double>(3, 2, 5.0);
    engine.m_bCubeValid = true;
    EXPECT_TRUE(engine.buildImageCube());
    EXPECT_EQ(engine.m_cube.m_data[2][1], 5.0);
}

TEST(BuildImageCubeTest, ARefusedUnitEndsInTheNextOneWithOneLine)
{
    TestSequence sequence;
    addImages(sequence, {1, 1, 1}, 4, 2);
    // The last image lacks the figure, so that the walk has to start again.
    CPLSection* pSection = sequence->getDatasets().last()->clickInfo[QString("luminescent image")];
    pSection->removeKey("Excitation Irradiance");
    CORVSpumKyvo engine(sequence.id());
    ASSERT_TRUE(engine.buildDatasetInfo());
    LogCapture log;
    ASSERT_TRUE(engine.buildImageCube());
    EXPECT_EQ(engine.m_eUnit, 1);
    EXPECT_EQ(log.count(tryRadiance, 2), 1);
    EXPECT_EQ(log.count(tryCounts, 2), 0);
    // Every column is an image in the new unit, also those that were read before the walk started again.
    for (int i = 0; i < 3; ++i) {
        CILImage image;
        CORVDataset* pDataset = sequence->getDataset(engine.m_imageList.at(i));
        ASSERT_EQ(pDataset->getCalibratedLuminImage(DISPLAYUNIT_RADIANCE, &image, "test"), ESTATUS_SUCCESS);
        for (long long j = 0; j < engine.m_cube.m_data.num_rows(); ++j) {
            EXPECT_EQ(engine.m_cube.m_data[j][i], image.value(static_cast<std::size_t>(j)));
        }
        EXPECT_GT(engine.m_cube.m_data[0][i], 0.0);
    }
}

TEST(BuildImageCubeTest, RefusedRadianceEndsInCounts)
{
    TestSequence sequence;
    addImages(sequence, {1, 1}, 4, 0);
    CORVSpumKyvo engine(sequence.id());
    ASSERT_TRUE(engine.buildDatasetInfo());
    LogCapture log;
    ASSERT_TRUE(engine.buildImageCube());
    EXPECT_EQ(engine.m_eUnit, 0);
    EXPECT_EQ(log.count(tryRadiance, 2), 1);
    EXPECT_EQ(log.count(tryCounts, 2), 1);
}

TEST(BuildImageCubeTest, EfficiencyFallsBackOnRadiantEfficiency)
{
    TestSequence sequence;
    addImages(sequence, {1, 1}, 4, 2);
    sequence->isTransillumination = true;
    CORVSpumKyvo engine(sequence.id());
    ASSERT_TRUE(engine.buildDatasetInfo());
    LogCapture log;
    ASSERT_TRUE(engine.buildImageCube());
    EXPECT_EQ(engine.m_eUnit, 2);
    EXPECT_EQ(log.count(tryRadiantEfficiency, 2), 1);
    EXPECT_EQ(log.count(tryRadiance, 2), 0);
}

TEST(BuildImageCubeTest, WhenAllUnitsAreRefusedTheCubeIsCleared)
{
    TestSequence sequence;
    addImages(sequence, {1, 1}, 4, 2);
    sequence->getDatasets().last()->nativeUnit = 3; // refuses all but efficiency, the other has none
    CORVSpumKyvo engine(sequence.id());
    ASSERT_TRUE(engine.buildDatasetInfo());
    sequence->getDatasets().first()->nativeUnit = 2;
    LogCapture log;
    // The first image gives 2, the second asks for 3 by itself and has it: mixed data are as the images prefer them.
    ASSERT_TRUE(engine.buildImageCube());
    EXPECT_EQ(engine.m_eUnit, 3);
    // Another order: 3 is refused at the start for want of a reference, and below it the other image refuses
    // everything.
    engine.m_bCubeValid = false;
    sequence->isTransillumination = true;
    sequence->getDatasets().first()->nativeUnit = 1;
    EXPECT_FALSE(engine.buildImageCube());
    EXPECT_TRUE(log.has(noCalibratedImage, 2));
    EXPECT_EQ(log.count(tryRadiantEfficiency, 2), 1);
    EXPECT_EQ(log.count(tryRadiance, 2), 1);
    EXPECT_EQ(log.count(tryCounts, 2), 1);
    EXPECT_TRUE(engine.m_cube.m_data.empty());
    EXPECT_FALSE(engine.m_cube.m_bValid);
    EXPECT_FALSE(engine.m_bCubeValid);
}

TEST(BuildImageCubeTest, ALuminescentSequenceStartsInRadiance)
{
    TestSequence sequence;
    addImages(sequence, {1, 1}, 4, 2);
    sequence->isFluorescence = false;
    CORVSpumKyvo engine(sequence.id());
    ASSERT_TRUE(engine.buildDatasetInfo());
    ASSERT_TRUE(engine.buildImageCube());
    EXPECT_EQ(engine.m_eUnit, 1);
}

TEST(BuildImageCubeTest, CalibratedUnitsKeepTheirValuesAtAnotherBinning)
{
    TestSequence sequence;
    // The first image finer, the second coarser than the analysis.
    addImages(sequence, {2, 4, 8, 4}, 32, 2);
    CORVSpumKyvo engine(sequence.id());
    ASSERT_TRUE(engine.buildDatasetInfo());
    ASSERT_TRUE(engine.buildImageCube());
    EXPECT_EQ(engine.m_nBinning, 4);
    ASSERT_EQ(engine.m_cube.m_data.num_rows(), 64);
    for (long long i = 0; i < 64; ++i) {
        EXPECT_NEAR(engine.m_cube.m_data[i][0], 1.0 / 4, 1e-6);
        EXPECT_NEAR(engine.m_cube.m_data[i][1], 2.0 / 16, 1e-6);
        EXPECT_NEAR(engine.m_cube.m_data[i][2], 3.0 / 64, 1e-6);
    }
}

TEST(BuildImageCubeTest, CountsAddUpAtAnotherBinning)
{
    TestSequence sequence;
    addImages(sequence, {2, 4, 8, 4}, 32, 0);
    CORVSpumKyvo engine(sequence.id());
    ASSERT_TRUE(engine.buildDatasetInfo());
    ASSERT_TRUE(engine.buildImageCube());
    EXPECT_EQ(engine.m_eUnit, 0);
    for (long long i = 0; i < 64; ++i) {
        EXPECT_NEAR(engine.m_cube.m_data[i][0], 1.0 * 4, 1e-6);
        EXPECT_NEAR(engine.m_cube.m_data[i][1], 2.0, 1e-6);
        EXPECT_NEAR(engine.m_cube.m_data[i][2], 3.0 / 4, 1e-6);
    }
}

TEST(BuildImageCubeTest, ABinningThatLeavesNoPixelIsRefused)
{
    TestSequence sequence;
    addImages(sequence, {1, 1}, 4, 0);
    CORVSpumKyvo engine(sequence.id());
    ASSERT_TRUE(engine.buildDatasetInfo());
    engine.m_bAutoBinning = false;
    engine.m_nBinning = 8;
    LogCapture log;
    EXPECT_FALSE(engine.buildImageCube());
    EXPECT_TRUE(log.has("SpumKyvo: unable to change the binning in buildImageCube()!", 2));
    EXPECT_TRUE(engine.m_cube.m_data.empty());
}

TEST(BuildImageCubeTest, ExhaustedMemoryIsToldAndLeavesNoCube)
{
    TestSequence sequence;
    addImages(sequence, {1, 1}, 4, 2);
    CORVDataset* pFirst = sequence->getDatasets().first();
    // At binning 1 these four pixels a side would be more than the cube can have.
    pFirst->setCoreImage(IMAGETYPE_MAIN_DATA, squareImage(4, 1 << 30, [](int) { return 1.0F; }));
    CORVSpumKyvo engine(sequence.id());
    ASSERT_TRUE(engine.buildDatasetInfo());
    engine.m_bAutoBinning = false;
    engine.m_nBinning = 1;
    LogCapture log;
    EXPECT_FALSE(engine.buildImageCube());
    EXPECT_TRUE(log.has("SpumKyvo: insufficient memory to generate the image cube!", 2));
    EXPECT_TRUE(engine.m_cube.m_data.empty());
    EXPECT_FALSE(engine.m_cube.m_bValid);
    EXPECT_FALSE(engine.m_bCubeValid);
}

TEST(BuildImageCubeTest, AnImageOfAnotherSizeIsToldAndRefused)
{
    TestSequence sequence;
    addImages(sequence, {1, 1}, 4, 2);
    sequence->getDatasets().last()->setCoreImage(IMAGETYPE_MAIN_DATA, squareImage(5, 1, [](int) { return 1.0F; }));
    CORVSpumKyvo engine(sequence.id());
    ASSERT_TRUE(engine.buildDatasetInfo());
    LogCapture log;
    EXPECT_FALSE(engine.buildImageCube());
    EXPECT_TRUE(log.mentions("does not have the size of the image cube"));
    EXPECT_TRUE(engine.m_cube.m_data.empty());
}

TEST(BuildImageCubeTest, NegativePixelsAreStoredAsZero)
{
    TestSequence sequence;
    addImages(sequence, {1, 1}, 4, 2);
    sequence->getDatasets().last()->setCoreImage(IMAGETYPE_MAIN_DATA,
                                                 squareImage(4, 1, [](int i) { return static_cast<float>(i - 8); }));
    CORVSpumKyvo engine(sequence.id());
    ASSERT_TRUE(engine.buildDatasetInfo());
    ASSERT_TRUE(engine.buildImageCube());
    EXPECT_EQ(engine.m_cube.m_data[3][1], 0.0);
    EXPECT_EQ(engine.m_cube.m_data[10][1], 2.0);
}

TEST(BuildImageCubeTest, AnEmptySelectionGivesAnEmptyMatrix)
{
    TestSequence sequence;
    addImages(sequence, {1, 1}, 4, 2);
    CORVSpumKyvo engine(sequence.id());
    ASSERT_TRUE(engine.buildDatasetInfo());
    engine.m_selectedKeyPairs.clear();
    EXPECT_TRUE(engine.buildImageCube());
    EXPECT_TRUE(engine.m_cube.m_data.empty());
    engine.m_bCubeValid = false;
    engine.solveConcentrations();
    EXPECT_EQ(engine.m_nError, 5);
}

TEST(BuildImageCubeTest, AMaskOutsideTheImageLeavesAnEmptyCubeAndError5)
{
    TestSequence sequence;
    addImages(sequence, {1, 1}, 4, 2);
    CORVSpumKyvo engine(sequence.id());
    ASSERT_TRUE(engine.buildDatasetInfo());
    engine.m_maskIndices = {3, 16};
    takeSpectra(engine, {{1.0, 0.5}});
    EXPECT_TRUE(engine.buildImageCube());
    EXPECT_TRUE(engine.m_cube.m_data.empty());
    engine.solveConcentrations();
    EXPECT_EQ(engine.m_nError, 5);
}

TEST(DataMaskTest, PixelsAboveZeroCountAtTheAnalysisBinning)
{
    CORVSpumKyvo engine("none");
    engine.m_nBinning = 2;
    engine.m_nWidth = 2;
    engine.m_nHeight = 2;
    engine.m_bCubeValid = true;
    engine.m_maskIndices = {9};
    // 4 x 4 pixels at binning 1; the only one set lies in the lower right quarter.
    engine.m_analysisInput.maskImage = squareImage(4, 1, [](int i) { return i == 15 ? 1.0F : 0.0F; });
    LogCapture log;
    ASSERT_TRUE(engine.takeDataMask());
    EXPECT_EQ(engine.m_maskIndices, (std::vector<int>{3}));
    EXPECT_EQ(engine.m_bUseMask, 1);
    EXPECT_FALSE(engine.m_bCubeValid);
    EXPECT_FALSE(log.mentions("mask"));
}

TEST(DataMaskTest, MasksOfBytesServeToo)
{
    CILImage mask = squareImage(4, 1, [](int i) { return i < 4 ? 1.0F : 0.0F; });
    ASSERT_EQ(mask.ChangeType(ORVTYPE_BYTE), EIL_SUCCESS);
    std::vector<int> indices;
    ASSERT_TRUE(maskIndicesAtBinning(mask, 1, 4, 4, MaskPixels::FloatsAboveZero, indices));
    EXPECT_EQ(indices, (std::vector<int>{0, 1, 2, 3}));
}

TEST(DataMaskTest, AnAllZeroMaskCountsAsAbsentInTheCube)
{
    TestSequence sequence;
    addImages(sequence, {1, 1}, 4, 2);
    CORVSpumKyvo engine(sequence.id());
    ASSERT_TRUE(engine.buildDatasetInfo());
    ASSERT_TRUE(engine.createImageList());
    ASSERT_TRUE(engine.setBinningAndSize(true));
    engine.m_analysisInput.maskImage = squareImage(4, 1, [](int) { return 0.0F; });
    ASSERT_TRUE(engine.takeDataMask());
    EXPECT_TRUE(engine.m_maskIndices.empty());
    EXPECT_EQ(engine.m_bUseMask, 1);
    ASSERT_TRUE(engine.buildImageCube());
    EXPECT_EQ(engine.m_cube.m_data.num_rows(), 16);
}

TEST(DataMaskTest, AMissingOrUnfitMaskIsLoggedAndChangesNothing)
{
    CORVSpumKyvo engine("none");
    engine.m_nBinning = 2;
    engine.m_nWidth = 2;
    engine.m_nHeight = 2;
    engine.m_bCubeValid = true;
    const CILImage unfit[] = {CILImage(), squareImage(9, 1, [](int) { return 1.0F; }),
                              squareImage(1, 1, [](int) { return 1.0F; })};
    for (const CILImage& mask : unfit) {
        LogCapture log;
        engine.m_analysisInput.maskImage = mask;
        EXPECT_FALSE(engine.takeDataMask());
        EXPECT_TRUE(log.has("SpumKyvo: unable to get a valid photo mask!", 2));
        EXPECT_EQ(engine.m_bUseMask, 0);
        EXPECT_TRUE(engine.m_bCubeValid);
    }
}

class CherenkovTest : public ::testing::Test
{
protected:
    CherenkovTest()
    {
        for (int j = 0; j < 2; ++j) {
            TestImage image;
            image.emission = QString("%1nm").arg(500 + 100 * j);
            image.isotope = "F-18";
            image.acquisitionTime = j == 0 ? "10:00:00" : "10:30:00";
            image.value = [j](int) { return static_cast<float>(8 * (j + 1)); };
            m_sequence.add(image);
        }
    }

    TestSequence m_sequence;
};

TEST_F(CherenkovTest, TheConstructorAsksForTheIsotope)
{
    EXPECT_TRUE(CORVSpumKyvo(m_sequence.id()).m_bCherenkov);
}

TEST_F(CherenkovTest, RawDataAreKeptAndCorrectedInAutomaticModeOnly)
{
    for (const int nMode : {RUNMODE_MANUAL, RUNMODE_AUTOMATIC}) {
        CORVSpumKyvo engine(m_sequence.id());
        engine.m_bCherenkov = true;
        ASSERT_TRUE(engine.buildDatasetInfo());
        engine.m_eMode = nMode;
        engine.m_analysisInput.decayCorrection = true;
        engine.m_analysisInput.halfLifeSeconds = 1800.0;
        ASSERT_TRUE(engine.buildImageCube());
        EXPECT_EQ(engine.m_cube.m_rawData[0][1], 16.0);
        // Half an hour is a half life: the second image doubles. The decay during a second of exposure adds 0.02 %.
        EXPECT_NEAR(engine.m_cube.m_data[0][1], nMode == RUNMODE_AUTOMATIC ? 32.0 : 16.0, 0.01);
        EXPECT_NEAR(engine.m_cube.m_data[0][0], 8.0, 0.01);
        // The raw data are a copy of their own.
        engine.m_cube.m_data[0][0] = -1.0;
        EXPECT_EQ(engine.m_cube.m_rawData[0][0], 8.0);
    }
}

TEST_F(CherenkovTest, ACorrectionThatIsSwitchedOffChangesNothing)
{
    CORVSpumKyvo engine(m_sequence.id());
    engine.m_bCherenkov = true;
    ASSERT_TRUE(engine.buildDatasetInfo());
    engine.m_eMode = RUNMODE_AUTOMATIC;
    engine.m_analysisInput.halfLifeSeconds = 1800.0;
    ASSERT_TRUE(engine.buildImageCube());
    EXPECT_EQ(engine.m_cube.m_data[0][1], 16.0);
}

TEST_F(CherenkovTest, FactorsThatCannotBeHadAreLoggedAndTheDataStay)
{
    CORVSpumKyvo engine(m_sequence.id());
    engine.m_bCherenkov = true;
    ASSERT_TRUE(engine.buildDatasetInfo());
    engine.m_eMode = RUNMODE_AUTOMATIC;
    engine.m_analysisInput.decayCorrection = true;
    engine.m_analysisInput.halfLifeSeconds = -2.5;
    LogCapture log;
    ASSERT_TRUE(engine.buildImageCube());
    EXPECT_TRUE(
        log.has("Fail to obtain Decay Factor: Half Life (second) -2.5 SequenceID test-sequence Image Count 2.", 3));
    EXPECT_EQ(engine.m_cube.m_data[0][1], 16.0);
}

TEST_F(CherenkovTest, WithoutASequenceNothingHappens)
{
    CORVSpumKyvo engine(m_sequence.id());
    LogCapture log;
    CImageCube cube;
    ASSERT_TRUE(cube.init(1, 1, 1, 1, {}));
    engine.applyDecayCorrection(cube, 100.0, "gone", {});
    EXPECT_FALSE(log.mentions("Decay"));
}

} // namespace
