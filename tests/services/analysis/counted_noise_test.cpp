// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/analysis/CountedNoise.h"

#include "services/analysis/NoiseFit.h"
#include "services/support/SmallAnalysis.h"

#include "host/CORVDataset.h"
#include "host/CORVSequenceDataset.h"

#include <cmath>
#include <random>

namespace {

using XTNT::Matrix;

constexpr double rounding = 1e-12;

class CountedNoiseTest : public SmallAnalysis
{
protected:
    const CORVSequenceDataset& sequence() { return m_pOpened->sequence(); }
    void tellCamera(double gain, double readNoise)
    {
        for (const QString& click : engine().m_imageList) {
            CPLSection* camera = sequence().getDataset(click)->clickInfo[QStringLiteral("Camera System Info")];
            ASSERT_NE(camera, nullptr);
            camera->setValue(QStringLiteral("Electrons per Count"), QString::number(gain));
            camera->setValue(QStringLiteral("Read Noise Electrons"), QString::number(readNoise));
        }
    }
};

// Amounts of two components: the first pixel's, and what they grow by from pixel to pixel.
struct Amounts
{
    double first;
    double firstStep;
    double second;
    double secondStep;
};
constexpr Amounts decades{50.0, 3.0, 40.0, 1.0};
// 21 to 45 counts in each image, three standard deviations of the darkest above 0 for a gain of 2 and a read noise of
// 10, which is most of the noise.
constexpr Amounts dim{20.0, 0.03, 70.0, 0.09};

// Counts of light and reading noise by a camera of that gain: what the amounts explain, and what was seen of it.
struct Scene
{
    Scene(double gain, double readNoise, int pixels, const Amounts& amounts = decades)
        : spectra(2, 12), fit(pixels, 2), data(pixels, 12)
    {
        std::mt19937_64 generator(5);
        std::normal_distribution<double> reading(0.0, readNoise);
        for (long long b = 0; b < 12; ++b) {
            spectra[0][b] = b < 6 ? 1.0 : 0.02;
            spectra[1][b] = b < 6 ? 0.1 : 0.3;
        }
        Matrix<double> truth(pixels, 2);
        for (long long p = 0; p < pixels; ++p) {
            truth[p][0] = amounts.first + amounts.firstStep * static_cast<double>(p % 500);
            truth[p][1] = amounts.second + amounts.secondStep * static_cast<double>(p % 330);
            for (long long b = 0; b < 12; ++b) {
                const double counts = truth[p][0] * spectra[0][b] + truth[p][1] * spectra[1][b];
                std::poisson_distribution<long long> light(counts * gain);
                data[p][b] = (static_cast<double>(light(generator)) + reading(generator)) / gain;
            }
        }
        // The least-squares fit of two spectra.
        double a = 0.0;
        double b = 0.0;
        double c = 0.0;
        for (long long j = 0; j < 12; ++j) {
            a += spectra[0][j] * spectra[0][j];
            b += spectra[0][j] * spectra[1][j];
            c += spectra[1][j] * spectra[1][j];
        }
        for (long long p = 0; p < pixels; ++p) {
            double x = 0.0;
            double y = 0.0;
            for (long long j = 0; j < 12; ++j) {
                x += spectra[0][j] * data[p][j];
                y += spectra[1][j] * data[p][j];
            }
            fit[p][0] = (c * x - b * y) / (a * c - b * b);
            fit[p][1] = (a * y - b * x) / (a * c - b * b);
        }
        noise.light = Matrix<double>(1, 12, 1.0);
        noise.reading = Matrix<double>(1, 12, 1.0);
    }

    Matrix<double> spectra;
    Matrix<double> fit;
    Matrix<double> data;
    CountedNoise noise;
};

} // namespace

TEST_F(CountedNoiseTest, CountsAtTheirOwnBinningAreThemselves)
{
    for (SmallImage& image : m_sequence.images) {
        image.calibratedUnit = DISPLAYUNIT_COUNTS;
    }
    analyse();
    ASSERT_EQ(engine().m_eUnit, DISPLAYUNIT_COUNTS);
    const CountedNoise noise = CountedNoise::of(engine(), sequence());
    EXPECT_TRUE(noise.calibrated);
    EXPECT_FALSE(noise.gain.has_value());
    EXPECT_FALSE(noise.readNoise.has_value());
    for (long long j = 0; j < 3; ++j) {
        EXPECT_EQ(noise.light[0][j], 1.0);
        EXPECT_EQ(noise.reading[0][j], 1.0);
    }
}

// With calibration figures of 1 a count of a pixel of binning 2 is a radiance of a quarter. The image of binning 1
// is brought to binning 2: four pixels are averaged, so the variance is a quarter of that of one.
TEST_F(CountedNoiseTest, OtherUnitsFollowFromTheCalibration)
{
    m_sequence.images[0].binning = 1;
    for (const int j : {1, 2}) {
        m_sequence.images[j].binning = 2;
        m_sequence.images[j].width = m_sequence.images[j].height = side / 2;
    }
    analyse();
    ASSERT_EQ(engine().m_nBinning, 2);
    ASSERT_NE(engine().m_eUnit, DISPLAYUNIT_COUNTS);
    const CountedNoise noise = CountedNoise::of(engine(), sequence());
    EXPECT_TRUE(noise.calibrated);
    EXPECT_NEAR(noise.light[0][0], 1.0 / 4.0, rounding);
    EXPECT_NEAR(noise.reading[0][0], 1.0 / 4.0, rounding);
    EXPECT_NEAR(noise.light[0][1], 1.0 / 4.0, rounding);
    EXPECT_NEAR(noise.reading[0][1], 1.0 / 16.0, rounding);
}

TEST_F(CountedNoiseTest, TheCamerasFiguresAreTaken)
{
    analyse();
    tellCamera(2.5, 8.0);
    const CountedNoise noise = CountedNoise::of(engine(), sequence());
    ASSERT_TRUE(noise.gain && noise.readNoise);
    EXPECT_EQ(*noise.gain, 2.5);
    EXPECT_EQ(*noise.readNoise, 8.0);
    const XTNT::NoiseModel model = noise.model();
    EXPECT_NEAR(model.slopes[0][0], noise.light[0][0] / 2.5, rounding);
    EXPECT_NEAR(model.floors[0][0], noise.reading[0][0] * (8.0 / 2.5) * (8.0 / 2.5), rounding);
}

// Pixels that are efficiencies have no counts; they are weighted all the same.
TEST_F(CountedNoiseTest, PixelsStoredInAnotherUnitAreTakenByTheirNoise)
{
    for (SmallImage& image : m_sequence.images) {
        image.nativeEfficiency = true;
    }
    analyse();
    const CountedNoise noise = CountedNoise::of(engine(), sequence());
    EXPECT_FALSE(noise.calibrated);
    for (long long j = 0; j < 3; ++j) {
        EXPECT_GT(noise.light[0][j], 0.0);
        EXPECT_GT(noise.reading[0][j], 0.0);
    }
}

// 48,000 squares of what is left, over a range of light of some decades.
TEST(CountedNoiseEstimateTest, GainAndReadNoiseAreFoundInWhatTheFitLeaves)
{
    Scene scene(2.0, 12.0, 8000);
    scene.noise.estimate(scene.data, scene.spectra, scene.fit);
    EXPECT_NEAR(*scene.noise.gain / 2.0, 1.0, 0.05);
    EXPECT_NEAR(*scene.noise.readNoise / 12.0, 1.0, 0.05);
}

TEST(CountedNoiseEstimateTest, WhatIsToldStays)
{
    Scene scene(2.0, 12.0, 8000);
    scene.noise.gain = 2.0;
    scene.noise.estimate(scene.data, scene.spectra, scene.fit);
    EXPECT_EQ(*scene.noise.gain, 2.0);
    EXPECT_NEAR(*scene.noise.readNoise / 12.0, 1.0, 0.05);
    Scene other(2.0, 12.0, 8000);
    other.noise.readNoise = 12.0;
    other.noise.estimate(other.data, other.spectra, other.fit);
    EXPECT_NEAR(*other.noise.gain / 2.0, 1.0, 0.05);
    EXPECT_EQ(*other.noise.readNoise, 12.0);
}

TEST(CountedNoiseEstimateTest, TheGainIsFoundBesideAReadNoiseThatIsMostOfTheNoise)
{
    Scene scene(2.0, 10.0, 8000, dim);
    scene.noise.readNoise = 10.0;
    scene.noise.estimate(scene.data, scene.spectra, scene.fit);
    EXPECT_NEAR(*scene.noise.gain / 2.0, 1.0, 0.05);
    EXPECT_EQ(*scene.noise.readNoise, 10.0);
}

TEST(CountedNoiseEstimateTest, WhatLeavesNothingToTellIsOneElectron)
{
    for (const bool exact : {true, false}) {
        Scene scene(1.0, 1.0, 20);
        if (exact) {
            scene.data = Matrix<double>(20, 12);
            scene.fit = Matrix<double>(20, 2);
        } else {
            scene.spectra = scene.spectra.subMatrix(0, 1, 5, 6);
            scene.data = scene.data.subMatrix(0, 19, 5, 6);
            scene.noise.light = scene.noise.reading = Matrix<double>(1, 2, 1.0);
        }
        scene.noise.estimate(scene.data, scene.spectra, scene.fit);
        EXPECT_EQ(*scene.noise.gain, 1.0);
        EXPECT_EQ(*scene.noise.readNoise, 1.0);
    }
}

TEST(CountedNoiseEstimateTest, NoiseOfOneSizeHasAFiniteModel)
{
    Scene scene(1.0, 1.0, 2000);
    std::mt19937_64 generator(5);
    std::normal_distribution<double> same(0.0, 30.0);
    const Matrix<double> exact = scene.fit * scene.spectra;
    for (long long i = 0; i < exact.storage.n_; ++i) {
        scene.data.storage[i] = exact.storage[i] + same(generator);
    }
    scene.noise.estimate(scene.data, scene.spectra, scene.fit);
    const XTNT::NoiseModel model = scene.noise.model();
    for (long long j = 0; j < 12; ++j) {
        EXPECT_TRUE(std::isfinite(model.slopes[0][j]) && model.slopes[0][j] >= 0.0);
        // 12 images, of which the fit takes two: the deviation of what is left.
        EXPECT_NEAR(std::sqrt(model.floors[0][j]) / 30.0, std::sqrt(1.2), 0.15);
    }
}

TEST(NoiseByImageTest, NoImageCountsBeyondAHundredToOne)
{
    std::mt19937_64 generator(3);
    std::normal_distribution<double> unit(0.0, 1.0);
    Matrix<double> data(4000, 8);
    for (long long p = 0; p < data.M; ++p) {
        for (long long j = 0; j < data.N; ++j) {
            const double light = 500.0 + static_cast<double>(p % 400) * static_cast<double>(1 + j);
            data[p][j] = light + (j == 3 ? 40.0 : 10.0) * unit(generator);
        }
    }
    const XTNT::NoiseModel model = noiseByImage(data, Matrix<double>(1, 8, 1.0));
    EXPECT_NEAR(std::sqrt(model.floors[0][3] / model.floors[0][5]), 4.0, 0.5);
    for (long long j = 0; j < 8; ++j) {
        EXPECT_GE(model.floors[0][j], 1e-4);
        EXPECT_EQ(model.slopes[0][j], 0.0);
    }
}

// Nothing to tell the noise by: in proportion to what a count is.
TEST(NoiseByImageTest, FewPixelsAreWeightedByTheirCalibration)
{
    Matrix<double> light(1, 2);
    light[0][0] = 1.0;
    light[0][1] = 0.5;
    const XTNT::NoiseModel model = noiseByImage(Matrix<double>(1, 2, 5.0), light);
    EXPECT_EQ(model.floors[0][0], 1.0);
    EXPECT_EQ(model.floors[0][1], 0.25);
}

// In a unit of its own, another gain of the same camera is the same fit.
TEST_F(CountedNoiseTest, TheFitReplacesTheMapsAndTellsItsErrors)
{
    analyse();
    const XTNT::Matrix<double> before = engine().m_concentrations.deepCopy();
    NoiseRequest request;
    request.errors = true;
    const NoiseFitResult uniform = fitWithNoise(request, sequence(), engine());
    EXPECT_EQ(uniform.facts.model, "uniform");
    EXPECT_EQ(uniform.errors.num_rows(), 2);
    EXPECT_EQ(uniform.errors.num_cols(), before.num_cols());
    EXPECT_EQ(engine().m_concentrations.storage.data[3], before.storage.data[3]);
    request.kind = NoiseRequest::Kind::Poisson;
    const NoiseFitResult poisson = fitWithNoise(request, sequence(), engine());
    EXPECT_EQ(poisson.facts.model, "poisson");
    EXPECT_TRUE(poisson.facts.estimated);
    // The images are mixtures of the spectra: no weight changes that.
    for (long long i = 0; i < before.storage.n_; ++i) {
        EXPECT_NEAR(engine().m_concentrations.storage.data[i], before.storage.data[i], 1e-9);
    }
}
