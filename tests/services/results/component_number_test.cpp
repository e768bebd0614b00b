// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/ComponentNumber.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <random>
#include <string>
#include <vector>

namespace {

using XTNT::Matrix;

constexpr int side = 64;

struct Scene
{
    int components = 4;
    int images = 18;
    unsigned seed = 1;
    double peak = 20000.0; // electrons at the brightest element
    double readNoise = 10.0;
    bool noise = true;
    double unit = 1.0; // that of image j is unit^j
    // What images of a camera share beside their sources.
    double shift = 0.0;   // pixels, each image in a direction of its own
    double unlike = 0.0;  // relative difference of a source's spectrum from place to place
    double bending = 0.0; // missing part of the brightest element
};

struct Spot
{
    double x;
    double y;
    double radius;

    // Of an image that is shifted by (dx, dy).
    double lightAt(int i, double dx, double dy) const
    {
        const int row = i / side;
        return std::exp(-0.5 * (std::pow(i % side - x - dx, 2) + std::pow(row - y - dy, 2)) / (radius * radius));
    }
};

// Waves over the image and over the bands, between -1 and 1.
double waveAt(int i, int j, double phase)
{
    const int row = i / side;
    return std::sin(0.35 * (i % side) + phase) * std::cos(0.29 * row) * std::sin(0.9 * j + phase);
}

// Round spots of light with bell-shaped spectra side by side, the first everywhere; negative values are cut as in a
// cube.
Matrix<double> dataOf(const Scene& scene)
{
    std::mt19937 random(scene.seed);
    std::uniform_real_distribution<double> even(0.0, 1.0);
    std::normal_distribution<double> normal;
    std::vector<Spot> spots;
    std::vector<std::vector<double>> spectra;
    for (int k = 0; k < scene.components; ++k) {
        const double x = side * (0.2 + 0.6 * even(random));
        const double y = side * (0.2 + 0.6 * even(random));
        spots.push_back({x, y, k == 0 ? side : side * (0.08 + 0.1 * even(random))});
        const double centre = scene.images * (k + 0.5) / scene.components;
        const double width = std::max(1.0, 0.1 * scene.images) * (0.8 + 0.4 * even(random));
        std::vector<double> spectrum;
        spectrum.reserve(static_cast<std::size_t>(scene.images));
        for (int j = 0; j < scene.images; ++j) {
            spectrum.push_back(0.05 + std::exp(-0.5 * std::pow((j - centre) / width, 2)));
        }
        spectra.push_back(spectrum);
    }
    Matrix<double> data(side * side, scene.images);
    double largest = 0.0;
    for (int i = 0; i < side * side; ++i) {
        for (int j = 0; j < scene.images; ++j) {
            const double dx = scene.shift * std::cos(2.4 * j);
            const double dy = scene.shift * std::sin(2.4 * j);
            for (std::size_t k = 0; k < spots.size(); ++k) {
                data[i][j] += spots[k].lightAt(i, dx, dy) * spectra[k][static_cast<std::size_t>(j)] *
                              (1.0 + scene.unlike * waveAt(i, j, 2.0 * static_cast<double>(k)));
            }
            largest = std::max(largest, data[i][j]);
        }
    }
    for (int i = 0; i < side * side; ++i) {
        for (int j = 0; j < scene.images; ++j) {
            const double light = data[i][j] / largest;
            const double mean = light * (1.0 - scene.bending * light) * scene.peak;
            const double deviation = std::sqrt(mean + scene.readNoise * scene.readNoise);
            data[i][j] =
                std::max(0.0, mean + (scene.noise ? deviation * normal(random) : 0.0)) * std::pow(scene.unit, j);
        }
    }
    return data;
}

} // namespace

TEST(ComponentNumberTest, IsWithinOneOfTheTruthFromTwoToEightComponents)
{
    for (int components = 2; components <= 8; ++components) {
        int exact = 0;
        for (unsigned seed = 1; seed <= 20; ++seed) {
            Scene scene;
            scene.components = components;
            scene.seed = seed;
            const ComponentNumber number = ComponentNumber::of(dataOf(scene));
            EXPECT_NEAR(number.likely, components, 1) << components << " components, seed " << seed;
            EXPECT_LE(number.least, number.likely);
            EXPECT_GE(number.most, number.likely);
            exact += number.likely == components ? 1 : 0;
        }
        RecordProperty("exact_of_20_with_" + std::to_string(components), exact);
        EXPECT_GE(exact, 10) << components;
    }
}

TEST(ComponentNumberTest, TheUnitOfAnImageDoesNotMatter)
{
    Scene scene;
    const ComponentNumber counts = ComponentNumber::of(dataOf(scene));
    scene.unit = 3.0;
    const ComponentNumber units = ComponentNumber::of(dataOf(scene));
    EXPECT_EQ(counts.likely, units.likely);
    EXPECT_EQ(counts.least, units.least);
    ASSERT_EQ(units.noiseOfImages.size(), 18U);
    EXPECT_NEAR(units.noiseOfImages[3] / counts.noiseOfImages[3] / 27.0, 1.0, 1e-3);
}

TEST(ComponentNumberTest, ManyBandsDoNotMakeManyComponents)
{
    Scene scene;
    scene.images = 120;
    EXPECT_NEAR(ComponentNumber::of(dataOf(scene)).likely, 4, 1);
}

TEST(ComponentNumberTest, ExactDataHaveTheirRank)
{
    Scene scene;
    scene.noise = false;
    scene.components = 5;
    EXPECT_EQ(ComponentNumber::of(dataOf(scene)).likely, 5);
}

// What noise leaves of the data's norm, against what was put in.
TEST(ComponentNumberTest, TheNoiseIsThatOfTheData)
{
    Scene scene;
    const Matrix<double> noisy = dataOf(scene);
    scene.noise = false;
    const Matrix<double> exact = dataOf(scene);
    double rest = 0.0;
    double squares = 0.0;
    for (long long i = 0; i < noisy.num_rows(); ++i) {
        for (long long j = 0; j < noisy.num_cols(); ++j) {
            rest += std::pow(noisy[i][j] - exact[i][j], 2);
            squares += noisy[i][j] * noisy[i][j];
        }
    }
    EXPECT_NEAR(ComponentNumber::of(noisy).noise / std::sqrt(rest / squares), 1.0, 0.1);
}

TEST(ComponentNumberTest, TwoImagesAndDarkOnesTellNothing)
{
    Scene scene;
    scene.images = 2;
    scene.components = 2;
    EXPECT_EQ(ComponentNumber::of(dataOf(scene)).likely, 0);
    EXPECT_EQ(ComponentNumber::of(Matrix<double>()).likely, 0);
    EXPECT_EQ(ComponentNumber::of(Matrix<double>(1000, 8)).likely, 0);
    EXPECT_EQ(ComponentNumber::of(Matrix<double>(4, 8, 1.0)).likely, 0);
    Matrix<double> broken = dataOf(Scene());
    broken[0][0] = std::nan("");
    EXPECT_EQ(ComponentNumber::of(broken).likely, 0);
}

// Four components as other cameras and programs leave them.
TEST(ComponentNumberTest, ImagesAsPeopleHaveThemAreCountedWithinOne)
{
    struct Case
    {
        const char* name;
        int images;
        std::function<double(double)> value;
    };
    const std::vector<Case> cases = {
        {"counts of a camera with gain", 18, [](double v) { return 7.0 * v; }},
        {"floats from 0 to 1", 18, [](double v) { return v / 25000.0; }},
        {"8 bits", 18, [](double v) { return std::round(v / 25000.0 * 255.0); }},
        {"whole counts", 18, [](double v) { return std::round(v); }},
        {"nine images", 9, [](double v) { return v; }},
        {"twenty images", 20, [](double v) { return v; }},
        {"sixty images", 60, [](double v) { return v; }},
    };
    for (const Case& one : cases) {
        for (unsigned seed = 1; seed <= 3; ++seed) {
            Scene scene;
            scene.images = one.images;
            scene.seed = seed;
            Matrix<double> data = dataOf(scene);
            for (long long p = 0; p < data.num_rows(); ++p) {
                std::transform(data[p], data[p] + data.num_cols(), data[p], one.value);
            }
            EXPECT_NEAR(ComponentNumber::of(data).likely, 4, 1) << one.name << ", seed " << seed;
        }
    }
}

TEST(ComponentNumberTest, ABackgroundOfZerosAndImagesThatWereSmoothedAreCountedWithinOne)
{
    Scene scene;
    Matrix<double> zeros = dataOf(scene);
    Matrix<double> smooth(zeros.num_rows(), zeros.num_cols());
    for (long long p = 0; p < zeros.num_rows(); ++p) {
        const long long right = p + 1 < zeros.num_rows() ? p + 1 : p;
        const long long below = p + side < zeros.num_rows() ? p + side : p;
        for (long long j = 0; j < zeros.num_cols(); ++j) {
            smooth[p][j] = (zeros[p][j] + zeros[right][j] + zeros[below][j]) / 3.0;
        }
    }
    EXPECT_NEAR(ComponentNumber::of(smooth).likely, 4, 1);
    for (long long p = 0; p < zeros.num_rows(); ++p) {
        if (p % side < side / 4 || p / side > side * 3 / 4) {
            std::fill(zeros[p], zeros[p] + zeros.num_cols(), 0.0);
        }
    }
    EXPECT_NEAR(ComponentNumber::of(zeros).likely, 4, 1);
}

// Errors that the images of a camera share and that grow with its light stand far above the noise of bright images: the
// range tells of them, the likely number does not count them.
TEST(ComponentNumberTest, WhatACamerasImagesShareIsNotCountedAsSources)
{
    struct Case
    {
        const char* name;
        double shift;
        double unlike;
        double bending;
    };
    const std::vector<Case> cases = {
        {"images shifted by 0.3 pixels", 0.3, 0.0, 0.0},
        {"spectra that differ by 5 % from place to place", 0.0, 0.05, 0.0},
        {"both, and a detector that misses 3 % of the brightest", 0.3, 0.05, 0.03},
    };
    for (const int components : {3, 4, 6}) {
        for (const Case& one : cases) {
            for (unsigned seed = 1; seed <= 4; ++seed) {
                Scene scene;
                scene.components = components;
                scene.seed = seed;
                scene.shift = one.shift;
                scene.unlike = one.unlike;
                scene.bending = one.bending;
                const ComponentNumber number = ComponentNumber::of(dataOf(scene));
                EXPECT_NEAR(number.likely, components, 1) << one.name << ", seed " << seed;
                EXPECT_LE(number.least, number.likely) << one.name << ", seed " << seed;
                EXPECT_GT(number.most, components + 1) << one.name << ", seed " << seed;
            }
        }
    }
}

// A weak source in a few pixels is one all the same, where nothing falls off behind it but noise.
TEST(ComponentNumberTest, AWeakSourceOfAFaultlessCameraIsCounted)
{
    for (unsigned seed = 1; seed <= 3; ++seed) {
        Scene scene;
        scene.components = 3;
        scene.seed = seed;
        Matrix<double> data = dataOf(scene);
        for (int i = 0; i < side * side; ++i) {
            const double map = std::exp(-0.5 * (std::pow(i % side - 20, 2) + std::pow(i / side - 40, 2)) / 4.0);
            data[i][8] += 1500.0 * map;
            data[i][9] += 3000.0 * map;
        }
        const ComponentNumber number = ComponentNumber::of(data);
        EXPECT_EQ(number.likely, 4) << "seed " << seed;
        EXPECT_EQ(number.most, 4) << "seed " << seed;
    }
}
