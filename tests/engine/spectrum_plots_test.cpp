// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/spectrumPlots.h"

#include "engine/CORVSpumKyvo.h"
#include "engine/LogCapture.h"

#include "host/CAutoProgressUpdate.h"
#include "spectra/DefaultColors.h"
#include "spectra/SpectrumPlotParams.h"

#include <gtest/gtest.h>

namespace {

// An engine with resolved spectra of n components over two images; element (i, k) is 10 i + k + start.
class PlotsTest : public ::testing::Test
{
protected:
    PlotsTest() : m_engine("no sequence")
    {
        m_engine.m_selectedKeyPairs = {{"640", "700"}, {"660", "720"}};
        m_engine.m_eAxis = 1;
    }

    void takeResult(int n, double start = 0.0)
    {
        m_engine.m_spectra = XTNT::Matrix<double>(n, 2);
        for (int i = 0; i < n; ++i) {
            for (int k = 0; k < 2; ++k) {
                m_engine.m_spectra[i][k] = 10.0 * i + k + start;
            }
        }
        m_engine.createSpectrumPlots();
    }
    const SpectrumPlotParams& plot(int i) const { return *m_engine.m_spectrumPlots.at(i); }

    CORVSpumKyvo m_engine;
};

TEST_F(PlotsTest, ANewPlotHasAxisLabelColourAndPoints)
{
    m_engine.m_suggestedLabels = QStringList{"Blue", "Red"};
    takeResult(2);
    ASSERT_EQ(m_engine.m_spectrumPlots.size(), 2);
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(plot(i).axis, 1);
        EXPECT_EQ(plot(i).settings.index, i);
        EXPECT_EQ(plot(i).settings.name, m_engine.m_suggestedLabels.at(i));
        ASSERT_EQ(plot(i).points.size(), 2);
        EXPECT_EQ(plot(i).points.at(1).first, QString("660"));
        EXPECT_EQ(plot(i).points.at(1).second, QString("720"));
        EXPECT_EQ(plot(i).points.at(0).value, 10.0 * i);
        EXPECT_EQ(plot(i).points.at(1).value, 10.0 * i + 1.0);
    }
    EXPECT_EQ(plot(0).settings.color, QString("lime"));
    EXPECT_EQ(plot(1).settings.color, QString("red"));
}

TEST_F(PlotsTest, LabelsOfAnotherNumberGiveNumbers)
{
    m_engine.m_suggestedLabels = QStringList{"Blue", "Red", "Far red"};
    takeResult(2);
    EXPECT_EQ(plot(0).settings.name, QString("UMX1"));
    EXPECT_EQ(plot(1).settings.name, QString("UMX2"));
    m_engine.m_suggestedLabels.clear();
    takeResult(3);
    EXPECT_EQ(plot(2).settings.name, QString("UMX3"));
}

TEST_F(PlotsTest, NamesAndColoursSurviveARerun)
{
    takeResult(2);
    const SpectrumPlotParams* pFirst = m_engine.m_spectrumPlots.first();
    m_engine.m_spectrumPlots.first()->settings.name = "mine";
    m_engine.m_spectrumPlots.first()->settings.color = "black";
    m_engine.m_suggestedLabels = QStringList{"Blue", "Red"};
    takeResult(2, 5.0);
    EXPECT_EQ(m_engine.m_spectrumPlots.first(), pFirst);
    EXPECT_EQ(plot(0).settings.name, QString("mine"));
    EXPECT_EQ(plot(0).settings.color, QString("black"));
    EXPECT_EQ(plot(1).settings.name, QString("UMX2"));
    EXPECT_EQ(plot(0).points.at(1).value, 6.0);
}

TEST_F(PlotsTest, AnotherNumberOfComponentsStartsAnew)
{
    takeResult(2);
    m_engine.m_spectrumPlots.first()->settings.name = "mine";
    takeResult(3);
    ASSERT_EQ(m_engine.m_spectrumPlots.size(), 3);
    EXPECT_EQ(plot(0).settings.name, QString("UMX1"));
    takeResult(0);
    EXPECT_TRUE(m_engine.m_spectrumPlots.isEmpty());
}

TEST_F(PlotsTest, ColoursBeginAnewAfterTwelve)
{
    takeResult(14);
    for (int i = 0; i < 14; ++i) {
        EXPECT_EQ(plot(i).settings.color, defaultSpectrumColors().at(i % 12));
    }
}

TEST_F(PlotsTest, OffTheThreadThereIsNoProgressLine)
{
    LogCapture log;
    CAutoProgressUpdate progress("");
    m_engine.m_pProgress = &progress;
    takeResult(2);
    m_engine.m_pProgress = nullptr;
    EXPECT_TRUE(log.lines().empty());
}

} // namespace
