// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/analysis/AnalysisSetUp.h"
#include "services/session/OpenedSequence.h"
#include "services/support/CliFixture.h"
#include "services/support/SmallSequence.h"

#include "engine/CORVSpumKyvo.h"
#include "host/CORVSequenceDataset.h"

#include <cmath>
#include <limits>
#include <stdexcept>

namespace {

class UnusableImagesTest : public CliFixture
{
protected:
    UnusableImagesTest()
    {
        const auto ramp = [](int i) { return static_cast<float>(i); };
        m_sequence.addBands({ramp, ramp, ramp});
    }

    CORVSpumKyvo& engine() { return m_pOpened->engine(); }
    void check(const std::function<void(double)>& step = {})
    {
        if (!m_pOpened) {
            m_sequence.writeTo(path("seq"));
            m_pOpened = std::make_unique<OpenedSequence>(path("seq"));
        }
        engine().m_bCubeValid = false;
        engine().buildImageCube(step);
        refuseUnusableImages(engine());
    }
    QString refusal()
    {
        return failureOf([&] { check(); });
    }
    QStringList constant() { return engine().m_imageFindings.constantImages(); }

    SmallSequence m_sequence;
    std::unique_ptr<OpenedSequence> m_pOpened;
};

} // namespace

TEST_F(UnusableImagesTest, SoundImagesPassAndEachIsAStep)
{
    std::vector<double> fractions;
    check([&](double fraction) { fractions.push_back(fraction); });
    ASSERT_EQ(fractions.size(), 3u);
    EXPECT_DOUBLE_EQ(fractions[0], 0.0);
    EXPECT_DOUBLE_EQ(fractions[2], 2.0 / 3.0);
}

TEST_F(UnusableImagesTest, AllImagesWithPixelsThatAreNotFiniteAreNamed)
{
    m_sequence.images[0].value = [](int i) { return i < 2 ? std::numeric_limits<float>::quiet_NaN() : 1.0F; };
    m_sequence.images[2].value = [](int i) { return i == 5 ? -HUGE_VALF : 1.0F; };
    EXPECT_EQ(refusal(),
              "these images hold pixels that are NaN or infinite: SMALL-000 (2 pixels), SMALL-002 (1 pixels)");
}

TEST_F(UnusableImagesTest, AnImageThatIsNotSquareIsNamed)
{
    m_sequence.images[1].height = 3;
    EXPECT_EQ(refusal(), "the image SMALL-001 is not square (4 x 3)");
}

TEST_F(UnusableImagesTest, AnImageOfAnotherExtentIsNamed)
{
    m_sequence.images[2].width = 6;
    m_sequence.images[2].height = 6;
    EXPECT_EQ(refusal(),
              "the image SMALL-002 (6 pixels a side at binning 1) does not cover the area of the first image (4 "
              "a side at binning 1)");
}

TEST_F(UnusableImagesTest, AnotherBinningOfTheSameExtentPasses)
{
    m_sequence.images[1].width = 2;
    m_sequence.images[1].height = 2;
    m_sequence.images[1].binning = 2;
    EXPECT_NO_THROW(check());
}

TEST_F(UnusableImagesTest, AnImageThatCannotBeReadIsNamed)
{
    check();
    write("seq/" + m_sequence.click(1) + "/luminescent.TIF", "cut");
    EXPECT_EQ(refusal(), "the image SMALL-001 cannot be read; --verbose tells more");
}

TEST_F(UnusableImagesTest, AStepMayStopIt)
{
    EXPECT_THROW(check([](double) { throw std::runtime_error("stop"); }), std::runtime_error);
}

TEST_F(UnusableImagesTest, AResetForgetsWhatWasFound)
{
    m_sequence.images[0].value = [](int) { return std::numeric_limits<float>::quiet_NaN(); };
    EXPECT_FALSE(refusal().isEmpty());
    engine().resetAnalysis(engine().m_eMode);
    EXPECT_TRUE(engine().m_imageFindings.refusal().isEmpty());
}

TEST_F(UnusableImagesTest, ImagesWithoutAStructureAreNamed)
{
    m_sequence.images[1].value = [](int) { return 7.0F; };
    m_sequence.images[2].value = [](int) { return 0.0F; };
    check();
    EXPECT_EQ(constant(), (QStringList{"SMALL-001", "SMALL-002"}));
}

TEST_F(UnusableImagesTest, OnlyPixelsOfTheMaskTellAStructure)
{
    m_sequence.images[1].value = [](int i) { return i < 4 ? 7.0F : static_cast<float>(i); };
    check();
    EXPECT_TRUE(constant().isEmpty());
    engine().m_bUseMask = 1;
    engine().m_maskIndices = {0, 1, 3};
    check();
    EXPECT_EQ(constant(), QStringList{"SMALL-001"});
    engine().m_maskIndices = {0, 1, 4};
    check();
    EXPECT_TRUE(constant().isEmpty());
}
