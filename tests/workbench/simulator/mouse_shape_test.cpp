// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/simulator/MousePhotograph.h"
#include "workbench/simulator/MouseShape.h"
#include "workbench/simulator/ScenePlan.h"
#include "workbench/simulator/SimulationOptions.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

double place(int pixel, int side)
{
    return (pixel + 0.5) * MouseShape::kFieldOfView / side - 0.5 * MouseShape::kFieldOfView;
}

} // namespace

class MouseShapeTest : public ::testing::TestWithParam<int>
{
};

TEST_P(MouseShapeTest, PhotographAboveAThresholdIsTheAnimal)
{
    constexpr int kSide = 300;
    constexpr double kThreshold = 0.27 * 255.0;
    const auto seed = static_cast<std::uint64_t>(GetParam());
    const MouseShape shape(seed);
    const CILImage photograph = takeMousePhotograph(shape, kSide, seed);
    ASSERT_EQ(photograph.dataType(), ORVTYPE_BYTE);
    double both = 0.0;
    double inPhotograph = 0.0;
    double inShape = 0.0;
    for (int row = 0; row < kSide; ++row) {
        for (int column = 0; column < kSide; ++column) {
            const bool bright = photograph.bytes()[row * kSide + column] > kThreshold;
            const bool inside = shape.at(place(column, kSide), place(row, kSide)).distance < 0.0;
            both += bright && inside ? 1.0 : 0.0;
            inPhotograph += bright ? 1.0 : 0.0;
            inShape += inside ? 1.0 : 0.0;
        }
    }
    EXPECT_GT(2.0 * both / (inPhotograph + inShape), 0.96);
    EXPECT_GT(inShape / (kSide * kSide), 0.10); // the animal fills a fair part of the field
    EXPECT_LT(inShape / (kSide * kSide), 0.40);
}

TEST_P(MouseShapeTest, AnimalLiesInsideTheField)
{
    const MouseShape shape(static_cast<std::uint64_t>(GetParam()));
    constexpr double kRim = 0.5 * MouseShape::kFieldOfView - 0.3;
    for (double t = -6.0; t <= 6.0; t += 0.05) {
        for (const double rim : {-kRim, kRim}) {
            EXPECT_GT(shape.at(t, rim).distance, 0.0);
            EXPECT_GT(shape.at(rim, t).distance, 0.0);
        }
    }
    EXPECT_LT(shape.at(shape.spineShift(0.0), 0.0).distance, -1.0);
    EXPECT_EQ(shape.at(5.9, -5.9).height, 0.0);
}

INSTANTIATE_TEST_SUITE_P(Seeds, MouseShapeTest, ::testing::Values(1, 2, 3, 99));

TEST(MouseShapeEdgeTest, CoverageFallsSoftlyFromOneToZero)
{
    EXPECT_EQ(MouseShape::coverage(-1.0, 0.1), 1.0);
    EXPECT_EQ(MouseShape::coverage(1.0, 0.1), 0.0);
    EXPECT_NEAR(MouseShape::coverage(0.0, 0.1), 0.5, 1e-12);
    EXPECT_GT(MouseShape::coverage(-0.02, 0.1), MouseShape::coverage(0.02, 0.1));
}

TEST(ScenePlanTest, SmallImagesAreMeansOfLargeOnes)
{
    SimulationOptions options;
    ScenePlan scene;
    QString error;
    ASSERT_TRUE(scene.build(options, &error)) << qPrintable(error);
    const auto fine = scene.renderMaps(128);
    const auto coarse = scene.renderMaps(32);
    ASSERT_EQ(fine.size(), 4U);
    for (std::size_t k = 0; k < fine.size(); ++k) {
        double top = 0.0;
        std::vector<double> means(32 * 32, 0.0);
        for (std::size_t i = 0; i < means.size(); ++i) {
            for (std::size_t j = 0; j < 16; ++j) {
                means[i] += fine[k][(i / 32 * 4 + j / 4) * 128 + i % 32 * 4 + j % 4] / 16.0;
            }
            top = std::max(top, means[i]);
        }
        for (std::size_t i = 0; i < means.size(); ++i) {
            ASSERT_NEAR(coarse[k][i], means[i] / top, 1e-9) << "component " << k << " pixel " << i;
        }
    }
}

TEST(ScenePlanTest, ComponentsHaveTheirNamesAndDepths)
{
    SimulationOptions options;
    ScenePlan scene;
    QString error;
    ASSERT_TRUE(scene.build(options, &error)) << qPrintable(error);
    ASSERT_EQ(scene.components().size(), 4);
    EXPECT_EQ(scene.components().at(0).name, QStringLiteral("TissueAF"));
    EXPECT_EQ(scene.components().at(1).name, QStringLiteral("Food"));
    EXPECT_EQ(scene.components().at(2).name, QStringLiteral("AlexaFluor 750"));
    EXPECT_EQ(scene.components().at(3).depthMm, 6.0);
    options.foodRatio = 0.0;
    ASSERT_TRUE(scene.build(options, &error)) << qPrintable(error);
    EXPECT_EQ(scene.components().size(), 3);
}
