// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/maskPixels.h"
#include "windows/wizardLook.h"

#include <gtest/gtest.h>

namespace {

TEST(WizardLookTest, LuminescentSequencesHaveNoFood)
{
    const auto look = wizardLook(0, 5);
    ASSERT_TRUE(look);
    EXPECT_FALSE(look->kinetics);
    EXPECT_EQ(look->pointInfo, "5 wavelength pairs selected");
    EXPECT_EQ(look->groupTitle, "Probe Information");
    EXPECT_EQ(look->tissueText, "Tissue Autobioluminescence");
    EXPECT_TRUE(look->background);
    EXPECT_EQ(look->foodShown, std::optional<bool>(false));
    EXPECT_EQ(look->foodChecked, std::optional<bool>(false));
    EXPECT_EQ(look->tissueChecked, std::nullopt);
}

TEST(WizardLookTest, FluorescentSequencesStartWithTheTissue)
{
    for (const int nType : {1, 2}) {
        const auto look = wizardLook(nType, 24);
        ASSERT_TRUE(look);
        EXPECT_FALSE(look->kinetics);
        EXPECT_EQ(look->pointInfo, "24 wavelength pairs selected");
        EXPECT_EQ(look->groupTitle, "Probe Information");
        EXPECT_EQ(look->tissueText, "Tissue Autofluorescence");
        EXPECT_EQ(look->foodShown, std::optional<bool>(true));
        EXPECT_EQ(look->foodChecked, std::nullopt);
        EXPECT_EQ(look->tissueChecked, std::optional<bool>(true));
    }
}

TEST(WizardLookTest, TemporalSequencesHaveNoBackground)
{
    const auto look = wizardLook(3, 12);
    ASSERT_TRUE(look);
    EXPECT_TRUE(look->kinetics);
    EXPECT_EQ(look->pointInfo, "12 time points selected");
    EXPECT_EQ(look->groupTitle, "Kinectics Information");
    EXPECT_EQ(look->tissueText, "Background");
    EXPECT_FALSE(look->background);
    EXPECT_EQ(look->foodChecked, std::optional<bool>(false));
    EXPECT_EQ(look->tissueChecked, std::optional<bool>(false));
}

TEST(WizardLookTest, OtherTypesHaveNone)
{
    EXPECT_FALSE(wizardLook(-1, 5));
    EXPECT_FALSE(wizardLook(4, 5));
}

TEST(MaskStatusTest, TellsTheNumberAndWhatIsMissing)
{
    EXPECT_EQ(maskStatusText(0, false), "mask: 0 pixels, at least 10 needed");
    EXPECT_EQ(maskStatusText(0, true), "mask: 0 pixels, at least 10 needed; drag over the picture to draw it");
    EXPECT_EQ(maskStatusText(1, true), "mask: 1 pixel, at least 10 needed");
    EXPECT_EQ(maskStatusText(9, true), "mask: 9 pixels, at least 10 needed");
    EXPECT_EQ(maskStatusText(10, true), "mask: 10 pixels");
    EXPECT_EQ(maskStatusText(123456, false), "mask: 123456 pixels");
}

} // namespace
