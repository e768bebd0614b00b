// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/CORVSpumKyvo.h"
#include "engine/LogCapture.h"
#include "engine/TestSequence.h"
#include "engine/runEngine.h"

#include "host/CAutoProgressUpdate.h"
#include "host/CORVDataset.h"
#include "host/CORVSequenceDataset.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

constexpr int nSide = 12;
constexpr int nImages = 6;

class PcaRunTest : public ::testing::Test
{
protected:
    PcaRunTest() : m_spectra(bellSpectra(2, nImages)), m_engine(m_sequence.id())
    {
        m_sequence->isFluorescence = true;
        addMixture(m_sequence, nSide, m_spectra);
        EXPECT_TRUE(m_engine.buildDatasetInfo());
        m_engine.resetAnalysis(RUNMODE_AUTOMATIC);
        m_engine.m_analysisInput.maskImage = squareImage(nSide, 1, [](int) { return 1.0F; });
        m_engine.m_pcaResult = XTNT::Vector<double>(1);
        m_engine.m_pcaResult[0] = 42.0;
        m_engine.m_bRunPCA = true;
    }

    void expectNoNewResult() const
    {
        ASSERT_EQ(m_engine.m_pcaResult.size(), 1);
        EXPECT_EQ(m_engine.m_pcaResult[0], 42.0);
    }

    LogCapture m_log;
    const std::vector<std::vector<double>> m_spectra;
    TestSequence m_sequence;
    CORVSpumKyvo m_engine;
};

TEST_F(PcaRunTest, EigenvaluesOfTheScaledData)
{
    ASSERT_EQ(runEngine(m_engine), RunOutcome::Succeeded);
    EXPECT_FALSE(m_engine.m_bRunPCA);
    ASSERT_EQ(m_engine.m_pcaResult.size(), nImages);
    // Scaled columns have a sum of squares of rows - 1 each.
    double total = 0.0;
    for (int j = 0; j < nImages; ++j) {
        total += m_engine.m_pcaResult[j];
        EXPECT_TRUE(j == 0 || m_engine.m_pcaResult[j] <= m_engine.m_pcaResult[j - 1]);
    }
    EXPECT_NEAR(total, (nSide * nSide - 1.0) * nImages, 1e-8);
    // Two maps explain all but the rounding of float images.
    EXPECT_GT(m_engine.m_pcaResult[0] + m_engine.m_pcaResult[1], total * (1.0 - 1e-9));
    EXPECT_GT(m_engine.m_pcaResult[1], total * 0.01);
    EXPECT_TRUE(m_log.has("SpumKyvo: Perform PCA on the selected data...", 16));
}

TEST_F(PcaRunTest, OnlyThePixelsOfTheMaskCount)
{
    m_engine.m_analysisInput.maskImage = squareImage(nSide, 1, [](int i) { return i < 50 ? 1.0F : 0.0F; });
    ASSERT_EQ(runEngine(m_engine), RunOutcome::Succeeded);
    EXPECT_EQ(m_engine.m_bUseMask, 1);
    EXPECT_EQ(m_engine.m_maskIndices.size(), 50U);
    EXPECT_EQ(m_engine.m_cube.m_data.num_rows(), 50);
    double total = 0.0;
    for (int j = 0; j < nImages; ++j) {
        total += m_engine.m_pcaResult[j];
    }
    EXPECT_NEAR(total, 49.0 * nImages, 1e-8);
}

// As the mask's bytes have them: a part of a pixel below one half is none. An unmixing counts it.
TEST_F(PcaRunTest, ThePixelsOfTheMaskAreThoseOfItsBytes)
{
    const float values[] = {1.0F, 0.49F, 0.51F, 0.0F, -1.0F, 1e-6F, 300.0F, 0.2F, 1.0F};
    m_engine.m_analysisInput.maskImage = squareImage(nSide, 1, [&values](int i) { return i < 9 ? values[i] : 0.0F; });
    ASSERT_EQ(runEngine(m_engine), RunOutcome::Succeeded);
    EXPECT_EQ(m_engine.m_maskIndices, (std::vector<int>{0, 2, 6, 8}));
    ASSERT_TRUE(m_engine.takeDataMask());
    EXPECT_EQ(m_engine.m_maskIndices, (std::vector<int>{0, 1, 2, 5, 6, 7, 8}));
}

// The sum of what falls into a pixel of the analysis decides, not each part.
TEST_F(PcaRunTest, TheMaskIsBinnedBeforeItsBytesAreLookedAt)
{
    m_engine.m_analysisInput.maskImage =
        squareImage(2 * nSide, 1, [](int i) { return i < 4 * nSide ? 0.2F : 0.0F; }); // its first two rows
    m_engine.m_bAutoBinning = false;
    m_engine.m_nBinning = 1;
    m_engine.m_analysisInput.maskImage.m_fBinning = 0.5F;
    ASSERT_EQ(runEngine(m_engine), RunOutcome::Succeeded);
    EXPECT_EQ(m_engine.m_maskIndices.size(), static_cast<std::size_t>(nSide));
}

TEST_F(PcaRunTest, TheCubeIsBuiltAnew)
{
    m_engine.m_bCubeValid = true; // an empty one
    ASSERT_EQ(runEngine(m_engine), RunOutcome::Succeeded);
    EXPECT_EQ(m_engine.m_cube.m_data.num_rows(), nSide * nSide);
}

TEST_F(PcaRunTest, NoResultOfAnUnmixingIsTouched)
{
    m_engine.resetAnalysis(RUNMODE_MANUAL);
    takeSpectra(m_engine, m_spectra);
    m_engine.m_bRunPCA = false;
    ASSERT_EQ(runEngine(m_engine), RunOutcome::Succeeded);
    const XTNT::Matrix<double> concentrations = m_engine.m_concentrations.deepCopy();
    m_engine.m_properties.first().second = "marked";
    for (const bool bReady : {true, false}) {
        m_engine.m_bResultReady = bReady;
        m_engine.m_bRunPCA = true;
        ASSERT_EQ(runEngine(m_engine), RunOutcome::Succeeded);
        EXPECT_FALSE(m_engine.m_bRunPCA);
        EXPECT_EQ(m_engine.m_bResultReady, bReady);
        EXPECT_EQ(m_engine.m_properties.first().second, QString("marked"));
        EXPECT_EQ((m_engine.m_concentrations - concentrations).norm(0), 0.0);
        EXPECT_EQ(m_engine.m_spectrumPlots.size(), 2);
        EXPECT_EQ(m_engine.m_eMode, 3);
    }
}

TEST_F(PcaRunTest, AMaskThatCannotBeTakenIsOnlyLogged)
{
    m_engine.m_nError = 4;
    m_engine.m_analysisInput.maskImage = CILImage();
    EXPECT_EQ(runEngine(m_engine), RunOutcome::Succeeded);
    m_engine.m_bRunPCA = true;
    m_engine.m_analysisInput.maskImage = squareImage(nSide + 1, 1, [](int) { return 1.0F; });
    EXPECT_EQ(runEngine(m_engine), RunOutcome::Succeeded);
    EXPECT_EQ(m_engine.m_nError, 0);
    EXPECT_FALSE(m_engine.m_bRunPCA);
    EXPECT_EQ(m_log.count("SpumKyvo: unable to get a valid photo mask!", 2), 2);
    EXPECT_EQ(m_log.reports(), "SpumKyvo: unable to get a valid photo mask!\n"
                               "SpumKyvo: unable to get a valid photo mask!\n");
    EXPECT_EQ(m_engine.m_bUseMask, 0);
    expectNoNewResult();
}

TEST_F(PcaRunTest, ASelectionWithoutImagesIsOnlyReported)
{
    m_engine.m_selectedKeyPairs.append(KeyPair{"640nm", "999nm"});
    EXPECT_EQ(runEngine(m_engine), RunOutcome::Succeeded);
    EXPECT_TRUE(m_log.has("SpumKyvo: Unable to createImageList.", 16));
    EXPECT_EQ(m_engine.m_nError, 0);
    expectNoNewResult();
}

TEST_F(PcaRunTest, ASizeThatCannotBeToldIsOnlyReported)
{
    // The images are known, but their sequence is not there.
    CORVSpumKyvo engine("another sequence");
    engine.m_imageRecords = m_engine.m_imageRecords;
    engine.m_selectedKeyPairs = m_engine.m_selectedKeyPairs;
    engine.m_eSeqKind = m_engine.m_eSeqKind;
    engine.m_spots = m_engine.m_spots;
    engine.m_bRunPCA = true;
    EXPECT_EQ(runEngine(engine), RunOutcome::Succeeded);
    EXPECT_TRUE(m_log.has("SpumKyvo: Unable to setBinningAndSize.", 16));
    EXPECT_EQ(engine.m_nError, 0);
}

TEST_F(PcaRunTest, AnImageThatCannotBeReadGivesCode5)
{
    // All are asked for their size, but one holds another.
    m_sequence->getDataset(m_sequence.click(3))->setCoreImage(IMAGETYPE_MAIN_DATA, squareImage(nSide + 5, 1, [](int) {
                                                                  return 1.0F;
                                                              }));
    EXPECT_EQ(runEngine(m_engine), RunOutcome::Failed);
    EXPECT_EQ(m_engine.m_nError, 5);
    EXPECT_TRUE(m_log.has("SpumKyvo: Invalid data mask or matrix!", 3));
    expectNoNewResult();
}

TEST_F(PcaRunTest, AConstantImageDividesByZeroAndEndsAllTheSame)
{
    m_sequence->getDataset(m_sequence.click(3))->setCoreImage(IMAGETYPE_MAIN_DATA, squareImage(nSide, 1, [](int) {
                                                                  return 1.0F;
                                                              }));
    EXPECT_EQ(runEngine(m_engine), RunOutcome::Succeeded);
    ASSERT_EQ(m_engine.m_pcaResult.size(), nImages);
    EXPECT_TRUE(std::isnan(m_engine.m_pcaResult[0]));
}

TEST_F(PcaRunTest, AMaskOfOnePixelEndsAllTheSame)
{
    m_engine.m_analysisInput.maskImage = squareImage(nSide, 1, [](int i) { return i == 9 ? 1.0F : 0.0F; });
    EXPECT_EQ(runEngine(m_engine), RunOutcome::Succeeded);
    EXPECT_EQ(m_engine.m_pcaResult.size(), nImages);
}

TEST_F(PcaRunTest, OffTheThreadOnlyTheWarningsAreTold)
{
    CAutoProgressUpdate progress("");
    m_engine.m_pProgress = &progress;
    m_engine.runPCA();
    m_engine.m_pProgress = nullptr;
    EXPECT_EQ(m_engine.m_pcaResult.size(), nImages);
    EXPECT_EQ(m_log.reports(), "");
}

} // namespace
