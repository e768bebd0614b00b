// SPDX-License-Identifier: GPL-3.0-or-later
// The photo mask on the simulated animal, whose outline is known.
#include "windows/maskPixels.h"
#include "windows/photoMask.h"
#include "workbench/simulator/MousePhotograph.h"
#include "workbench/simulator/MouseShape.h"

#include <gtest/gtest.h>

#include <tuple>

namespace {

double place(int pixel, int side)
{
    return (pixel + 0.5) * MouseShape::kFieldOfView / side - 0.5 * MouseShape::kFieldOfView;
}

// Twice the pixels in both over the sum of the pixels in each: of the mask, and of the animal seen from above.
double diceWithTheBody(const CILImage& mask, const MouseShape& shape)
{
    const auto side = static_cast<int>(mask.m_lWidth);
    double both = 0.0;
    double body = 0.0;
    for (int row = 0; row < side; ++row) {
        for (int column = 0; column < side; ++column) {
            const bool inside = shape.at(place(column, side), place(row, side)).distance < 0.0;
            const bool masked = mask.bytes()[row * side + column] > 0;
            both += inside && masked ? 1.0 : 0.0;
            body += inside ? 1.0 : 0.0;
        }
    }
    return 2.0 * both / (body + static_cast<double>(countMaskPixels(mask)));
}

// Side of the photograph, seed of the animal. In a photograph of a smaller side the opening, of so many pixels at any
// size, takes away the tail and the feet.
class AutomaticMaskTest : public ::testing::TestWithParam<std::tuple<int, int>>
{
};

TEST_P(AutomaticMaskTest, CoversTheSimulatedBody)
{
    const auto [side, number] = GetParam();
    const auto seed = static_cast<std::uint64_t>(number);
    const MouseShape shape(seed);
    const CILImage photo = takeMousePhotograph(shape, side, seed);
    const float range = photoRange(photo);
    EXPECT_GT(range, 0.0F);
    const float v = automaticThreshold(photo, range);
    CILImage mask;
    ASSERT_TRUE(makePhotoMask(photo, v, range, mask));
    EXPECT_TRUE(isMaskValid(mask));
    const double dice = diceWithTheBody(mask, shape);
    RecordProperty("dice", std::to_string(dice));
    EXPECT_GT(dice, 0.95) << "threshold " << v << " of the range " << range;
}

INSTANTIATE_TEST_SUITE_P(SidesAndAnimals, AutomaticMaskTest,
                         ::testing::Combine(::testing::Values(512, 1024), ::testing::Values(1, 2, 3)));

} // namespace
