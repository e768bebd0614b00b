// SPDX-License-Identifier: GPL-3.0-or-later
// The overview of the cube in the engine.
#include "engine/CORVSpumKyvo.h"
#include "engine/LogCapture.h"
#include "engine/TestSequence.h"

#include "host/CORVDatabase.h"
#include "host/CORVSequenceDataset.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

const char* const noCurve = "SpumKyvo: cannot find the color response curve!";
const char* const sizeMismatch = "SpumKyvo: size mismatch in createPseudoColorImage()!";
const char* const failed = "SpumKyvo: failed to create pseudo color image!";

// The reference tables come from an empty folder while it lives.
class WithoutTables
{
public:
    WithoutTables() : m_earlier(qgetenv(variable)), m_bSet(qEnvironmentVariableIsSet(variable))
    {
        qputenv(variable, QFile::encodeName(m_folder.path()));
        CORVDatabase::reload();
    }
    ~WithoutTables()
    {
        m_bSet ? qputenv(variable, m_earlier) : qunsetenv(variable);
        CORVDatabase::reload();
    }
    WithoutTables(const WithoutTables&) = delete;
    WithoutTables& operator=(const WithoutTables&) = delete;

private:
    static constexpr const char* variable = "ORVIA_DATA_DIR";
    QTemporaryDir m_folder;
    QByteArray m_earlier;
    bool m_bSet;
};

// Three images of 2 x 2 pixels at 700, 720 and 740 nm; image j has light at pixel j alone.
class PseudoColorTest : public ::testing::Test
{
protected:
    PseudoColorTest() : m_engine(m_sequence.id())
    {
        m_sequence->isFluorescence = true;
        for (int j = 0; j < 3; ++j) {
            TestImage image;
            image.excitation = "640nm";
            image.emission = QString("%1nm").arg(700 + 20 * j);
            image.side = 2;
            image.value = [j](int i) { return i == j ? 8.0F : 0.0F; };
            m_sequence.add(image);
        }
        EXPECT_TRUE(m_engine.buildDatasetInfo());
        EXPECT_TRUE(CORVDatabase::readColorResponse("NIR", &m_curve));
    }

    TestSequence m_sequence;
    CORVSpumKyvo m_engine;
    sColorSensorRGBspecFileParameters m_curve;
};

TEST_F(PseudoColorTest, WeightsSpreadOverTheWholeCurve)
{
    XTNT::Matrix<double> weights;
    ASSERT_TRUE(m_engine.computeRGBWeights(weights));
    ASSERT_EQ(weights.num_rows(), 3);
    const int places[] = {0, (m_curve.n - 1) / 2, m_curve.n - 1};
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(weights[i][0], m_curve.red.at(places[i])) << i;
        EXPECT_EQ(weights[i][1], m_curve.green.at(places[i])) << i;
        EXPECT_EQ(weights[i][2], m_curve.blue.at(places[i])) << i;
    }
}

TEST_F(PseudoColorTest, TheRangeIsThatOfAllKeysNotOfTheSelection)
{
    m_engine.m_selectedKeyPairs = {{"640", "700"}, {"640", "720"}};
    XTNT::Matrix<double> weights;
    ASSERT_TRUE(m_engine.computeRGBWeights(weights));
    ASSERT_EQ(weights.num_rows(), 2);
    EXPECT_EQ(weights[1][1], m_curve.green.at((m_curve.n - 1) / 2));
}

TEST_F(PseudoColorTest, AlongExcitationTheRangeIsThatOfTheExcitationKeys)
{
    m_engine.m_eAxis = SPECTRUMAXIS_EXCITATION;
    m_engine.m_excitationKeys = QStringList{"Block", "500", "600"};
    m_engine.m_selectedKeyPairs = {{"500", "720"}, {"600", "720"}};
    XTNT::Matrix<double> weights;
    ASSERT_TRUE(m_engine.computeRGBWeights(weights));
    EXPECT_EQ(weights[0][2], m_curve.blue.first());
    EXPECT_EQ(weights[1][0], m_curve.red.last());
}

TEST_F(PseudoColorTest, AlongTimeTheRangeIsThatOfTheEmissionKeys)
{
    m_engine.m_eAxis = SPECTRUMAXIS_TIME;
    m_engine.m_excitationKeys = QStringList{"5", "7"};
    m_engine.m_emissionKeys = QStringList{"0", "1200"};
    m_engine.m_selectedKeyPairs = {{"5", "0"}, {"5", "600"}, {"5", "1200"}};
    XTNT::Matrix<double> weights;
    ASSERT_TRUE(m_engine.computeRGBWeights(weights));
    EXPECT_EQ(weights[0][2], m_curve.blue.first());
    EXPECT_EQ(weights[1][1], m_curve.green.at((m_curve.n - 1) / 2));
    EXPECT_EQ(weights[2][0], m_curve.red.last());
}

TEST_F(PseudoColorTest, TheOverviewHasTheColoursOfTheImages)
{
    m_engine.m_bUseMask = 1;
    m_engine.m_maskIndices = {0, 2, 3};
    LogCapture log;
    ASSERT_TRUE(m_engine.createPseudoColorImage());
    EXPECT_TRUE(m_engine.m_bCubeValid);
    const QImage& overview = m_engine.m_cube.m_rgbImage;
    ASSERT_EQ(overview.size(), QSize(2, 2));
    // The curve runs from blue to red.
    EXPECT_EQ(overview.pixel(0, 0), qRgb(0, 0, 255));
    EXPECT_EQ(overview.pixel(0, 1), qRgb(255, 0, 0));
    EXPECT_EQ(overview.pixel(1, 0) & 0x00ffffffU, 0U); // outside the mask
    EXPECT_EQ(overview.pixel(1, 1) & 0x00ffffffU, 0U);
    EXPECT_EQ(log.reports(), "");
}

TEST_F(PseudoColorTest, WithoutACurveTheSizesDoNotMatch)
{
    const WithoutTables withoutTables;
    LogCapture log;
    XTNT::Matrix<double> weights;
    EXPECT_FALSE(m_engine.computeRGBWeights(weights));
    EXPECT_TRUE(weights.empty());
    EXPECT_EQ(log.count(noCurve, 2), 1);
    EXPECT_FALSE(m_engine.createPseudoColorImage());
    EXPECT_EQ(log.count(noCurve, 2), 2);
    EXPECT_EQ(log.count(sizeMismatch, 2), 1);
}

TEST_F(PseudoColorTest, WithoutACubeThereIsNoOverview)
{
    m_engine.m_selectedKeyPairs.append(KeyPair{"640", "999"});
    LogCapture log;
    EXPECT_FALSE(m_engine.createPseudoColorImage());
    EXPECT_TRUE(m_engine.m_cube.m_rgbImage.isNull());
    EXPECT_FALSE(log.mentions("color"));
}

TEST_F(PseudoColorTest, AMaskBeyondTheImageIsTold)
{
    m_engine.m_bUseMask = 1;
    m_engine.m_maskIndices = {0, 4};
    LogCapture log;
    EXPECT_FALSE(m_engine.createPseudoColorImage());
    EXPECT_TRUE(log.has(sizeMismatch, 2));
}

TEST_F(PseudoColorTest, AnExceptionIsTold)
{
    ASSERT_TRUE(m_engine.buildImageCube());
    m_engine.m_cube.m_data.reshape(0, 0);
    LogCapture log;
    EXPECT_FALSE(m_engine.createPseudoColorImage());
    EXPECT_TRUE(log.has(failed, 2));
    EXPECT_FALSE(log.has(sizeMismatch, 2));
}

} // namespace
