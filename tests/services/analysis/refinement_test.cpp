// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/analysis/Refinement.h"

#include "engine/CORVSpumKyvo.h"
#include "engine/EngineEnums.h"
#include "host/CORVSequenceDataset.h"
#include "services/basis/Failure.h"

#include "XTNT/xtnt_parallel.h"

#include "support/cosine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace {

constexpr long long side = 72;
constexpr long long images = 6;
const std::array<std::array<double, images>, 2> stains = {
    {{0.7, 1.0, 0.6, 0.2, 0.05, 0.0}, {0.0, 0.1, 0.5, 1.0, 0.7, 0.3}}};

double amount(int nSource, long long nPixel)
{
    const double x = static_cast<double>(nPixel % side) - (nSource == 0 ? 26.0 : 44.0);
    const double y = static_cast<double>(nPixel / side) - 36.0;
    return std::max(0.0, 1.0 - (x * x + y * y) / (22.0 * 22.0));
}

// An engine that has resolved two round stains that overlap, in counted light, badly: each spectrum has a third of the
// other one.
class RefinedSpectraTest : public ::testing::Test
{
protected:
    RefinedSpectraTest() : m_engine(QStringLiteral("stains"))
    {
        m_engine.m_eUnit = DISPLAYUNIT_COUNTS;
        m_engine.m_cube.m_nSpots = 1;
        m_engine.m_spectra = XTNT::Matrix<double>(2, images);
        for (long long b = 0; b < images; ++b) {
            const auto at = static_cast<std::size_t>(b);
            m_engine.m_spectra[0][b] = stains[0][at] + stains[1][at] / 3.0;
            m_engine.m_spectra[1][b] = stains[1][at] + stains[0][at] / 3.0;
        }
        expose(0.0);
    }

    void expose(double dOffset)
    {
        std::mt19937_64 generator(7);
        XTNT::Matrix<double> data(side * side, images);
        for (long long p = 0; p < data.num_rows(); ++p) {
            for (std::size_t b = 0; b < images; ++b) {
                const double light = 400.0 * (amount(0, p) * stains[0][b] + amount(1, p) * stains[1][b]);
                data[p][b] = dOffset + (light > 0.0 ? std::poisson_distribution<int>(light)(generator) : 0);
            }
        }
        m_engine.m_cube.m_data = data;
    }

    // The first stain alone, without noise.
    void exposeOneStain()
    {
        for (long long p = 0; p < side * side; ++p) {
            for (std::size_t b = 0; b < images; ++b) {
                m_engine.m_cube.m_data[p][b] = 400.0 * amount(0, p) * stains[0][b];
            }
        }
    }

    // Three materials that are bright in all of ten images, as parts of a whole; none has more of a pixel than four
    // fifths, but in one pixel of so many, which it has for its own.
    void exposeMaterials(long long nPure)
    {
        constexpr long long bands = 10;
        constexpr long long materials = 3;
        XTNT::Matrix<double> spectra(materials, bands);
        for (long long k = 0; k < materials; ++k) {
            for (long long b = 0; b < bands; ++b) {
                const double at = (static_cast<double>(b) - 1.5 - 3.0 * static_cast<double>(k)) / 2.0;
                spectra[k][b] = 0.3 + 0.6 * std::exp(-at * at);
            }
        }
        std::mt19937_64 generator(6);
        std::exponential_distribution<double> size(1.0);
        std::normal_distribution<double> noise(0.0, 2.0);
        XTNT::Matrix<double> parts(side * side, materials);
        for (long long p = 0; p < parts.num_rows();) {
            std::generate_n(parts[p], materials, [&] { return size(generator); });
            const double whole = parts[p][0] + parts[p][1] + parts[p][2];
            std::for_each(parts[p], parts[p] + materials, [whole](double& part) { part *= 1000.0 / whole; });
            if (p % nPure == nPure - 1) {
                std::fill_n(parts[p], materials, 0.0);
                parts[p][p / nPure % materials] = 1000.0;
                ++p;
            } else if (*std::max_element(parts[p], parts[p] + materials) <= 800.0) {
                ++p;
            }
        }
        m_engine.m_cube.m_data = parts * spectra;
        std::for_each(m_engine.m_cube.m_data[0], m_engine.m_cube.m_data[0] + side * side * bands,
                      [&](double& value) { value += noise(generator); });
        m_engine.m_spectra = spectra;
    }

    // Of the spectra with those of the engine, the lowest.
    double worstCosine(const XTNT::Matrix<double>& found) const
    {
        double worst = 1.0;
        for (long long k = 0; k < found.num_rows(); ++k) {
            worst = std::min(worst, testsupport::cosine(found[k], m_engine.m_spectra[k], found.num_cols()));
        }
        return worst;
    }

    RefinedSpectra refine(CameraOffset eOffset = CameraOffset::Kept, const std::function<void(double)>& step = {}) const
    {
        return refinedSpectra(m_sequence, m_engine, eOffset, step);
    }

    static double cosine(const double* spectrum, std::size_t nSource)
    {
        return testsupport::cosine(spectrum, stains[nSource].data(), images);
    }

    CORVSequenceDataset m_sequence;
    CORVSpumKyvo m_engine;
};

} // namespace

TEST_F(RefinedSpectraTest, AreThoseOfTheSourcesInTheOrderOfTheirCentres)
{
    ASSERT_LT(cosine(m_engine.m_spectra[0], 0), 0.97);
    const RefinedSpectra refined = refine();
    EXPECT_EQ(refined.reason, "");
    ASSERT_EQ(refined.spectra.num_rows(), 2);
    EXPECT_GT(cosine(refined.spectra[0], 0), 0.998);
    EXPECT_GT(cosine(refined.spectra[1], 1), 0.998);
    EXPECT_GT(refined.facts.rounds, 0);
    EXPECT_EQ(refined.noise.model, "poisson");
    EXPECT_EQ(refined.weights.slopes.num_cols(), images);
}

TEST_F(RefinedSpectraTest, TheEngineStaysAsItIs)
{
    expose(300.0);
    const XTNT::Matrix<double> data = m_engine.m_cube.m_data.deepCopy();
    const XTNT::Matrix<double> spectra = m_engine.m_spectra.deepCopy();
    refine(CameraOffset::TakenOff);
    EXPECT_TRUE(std::equal(data.storage.data, data.storage.data + data.storage.n_, m_engine.m_cube.m_data[0]));
    EXPECT_TRUE(std::equal(spectra.storage.data, spectra.storage.data + spectra.storage.n_, m_engine.m_spectra[0]));
    EXPECT_TRUE(m_engine.m_concentrations.empty());
}

TEST_F(RefinedSpectraTest, AnOffsetIsToldWhereItIsTakenOffAlone)
{
    expose(300.0);
    const RefinedSpectra without = refine(CameraOffset::TakenOff);
    ASSERT_TRUE(without.facts.offset);
    EXPECT_NEAR(*without.facts.offset, 300.0, 1.0);
    EXPECT_GT(cosine(without.spectra[0], 0), 0.998);
    EXPECT_FALSE(refine(CameraOffset::Kept).facts.offset);
}

TEST_F(RefinedSpectraTest, OfOneSourceIsThatOfTheImages)
{
    m_engine.m_spectra = XTNT::Matrix<double>(1, images, 1.0);
    exposeOneStain();
    const RefinedSpectra refined = refine();
    EXPECT_EQ(refined.reason, "");
    ASSERT_EQ(refined.spectra.num_rows(), 1);
    EXPECT_GT(cosine(refined.spectra[0], 0), 1.0 - 1e-9);
}

TEST_F(RefinedSpectraTest, ImagesOfOneSourceHaveNoSecondOne)
{
    exposeOneStain();
    EXPECT_NE(refine().reason, "");
}

TEST_F(RefinedSpectraTest, ImagesWithoutLightHaveNone)
{
    m_engine.m_cube.m_data = XTNT::Matrix<double>(side * side, images);
    EXPECT_EQ(refine().reason, "there are fewer pure pixels than components");
}

TEST_F(RefinedSpectraTest, OnePixelHasNoTwoSources)
{
    m_engine.m_cube.m_data = XTNT::Matrix<double>(1, images, 5.0);
    EXPECT_EQ(refine().reason, "there are fewer pure pixels than components");
}

TEST_F(RefinedSpectraTest, ScansAndEmptyEnginesHaveNone)
{
    m_engine.m_cube.m_nSpots = 2;
    EXPECT_NE(refine().reason, "");
    const CORVSpumKyvo empty(QStringLiteral("empty"));
    EXPECT_NE(refinedSpectra(m_sequence, empty, CameraOffset::Kept).reason, "");
}

TEST_F(RefinedSpectraTest, BrokenPixelsTakeNoPart)
{
    for (long long p = 0; p < side * side; p += 97) {
        m_engine.m_cube.m_data[p][p % images] = std::numeric_limits<double>::quiet_NaN();
    }
    const RefinedSpectra refined = refine();
    EXPECT_EQ(refined.reason, "");
    ASSERT_EQ(refined.spectra.num_rows(), 2);
    EXPECT_GT(cosine(refined.spectra[1], 1), 0.998);
}

// Pixels without a value are among them.
TEST_F(RefinedSpectraTest, OfMixturesAloneAreThoseOfTheMaterials)
{
    exposeMaterials(2 * side * side);
    for (long long p = 0; p < side * side; p += 500) {
        m_engine.m_cube.m_data[p][p % images] = std::numeric_limits<double>::quiet_NaN();
    }
    const RefinedSpectra refined = refine();
    EXPECT_EQ(refined.reason, "");
    EXPECT_TRUE(refined.facts.enclosing);
    EXPECT_FALSE(refined.facts.independent);
    ASSERT_EQ(refined.spectra.num_rows(), 3);
    EXPECT_GT(worstCosine(refined.spectra), 0.9995);
}

TEST_F(RefinedSpectraTest, OfMaterialsInPurePixelsAreThoseOfThePixels)
{
    exposeMaterials(20);
    const RefinedSpectra refined = refine();
    EXPECT_EQ(refined.reason, "");
    EXPECT_FALSE(refined.facts.enclosing);
    EXPECT_FALSE(refined.facts.independent);
    ASSERT_EQ(refined.spectra.num_rows(), 3);
    EXPECT_GT(worstCosine(refined.spectra), 0.9995);
}

TEST_F(RefinedSpectraTest, TheShareThatIsDoneRisesToAll)
{
    std::vector<double> shares;
    refine(CameraOffset::Kept, [&shares](double dShare) { shares.push_back(dShare); });
    ASSERT_GT(shares.size(), 2U);
    EXPECT_TRUE(std::is_sorted(shares.begin(), shares.end()));
    EXPECT_GT(shares.front(), 0.0);
    EXPECT_EQ(shares.back(), 1.0);
}

TEST_F(RefinedSpectraTest, AnAbortGoesThrough)
{
    int nPoints = 0;
    const XTNT::CancellationCheck check([&nPoints] {
        if (++nPoints > 3) {
            throw Failure(QStringLiteral("aborted"), Failure::Kind::Aborted);
        }
    });
    EXPECT_THROW(refine(), Failure);
}

TEST(DarkLevelTest, IsThatOfPixelsWithoutLight)
{
    XTNT::Matrix<double> data(2000, 4, 100.0);
    for (long long p = 0; p < 1800; ++p) {
        for (long long b = 0; b < 4; ++b) {
            data[p][b] += 50.0;
        }
    }
    EXPECT_DOUBLE_EQ(darkLevel(data, 50), 100.0);
}

// The darkest pixels of noise are far below its mean.
TEST(DarkLevelTest, NoiseDoesNotLowerIt)
{
    std::mt19937_64 generator(11);
    std::normal_distribution<double> noise(0.0, 10.0);
    XTNT::Matrix<double> data(20000, 6, 100.0);
    for (long long i = 0; i < data.storage.n_; ++i) {
        data.storage[i] += noise(generator);
    }
    EXPECT_NEAR(darkLevel(data, 50), 100.0, 1.0);
}

TEST(DarkLevelTest, AWiderPartOfASceneIsBrighter)
{
    XTNT::Matrix<double> data(2000, 4);
    for (long long p = 0; p < 2000; ++p) {
        std::fill_n(data[p], 4, 100.0 + static_cast<double>(p));
    }
    EXPECT_DOUBLE_EQ(darkLevel(data, 50), 119.5);
    EXPECT_DOUBLE_EQ(darkLevel(data, 20), 149.5);
}

TEST(DarkLevelTest, BrokenPixelsTakeNoPart)
{
    XTNT::Matrix<double> data(2000, 4, 300.0);
    for (long long p = 0; p < 1800; ++p) {
        std::fill_n(data[p], 4, p < 20 ? 0.0 : 350.0);
    }
    data[1999][2] = std::numeric_limits<double>::quiet_NaN();
    EXPECT_DOUBLE_EQ(darkLevel(data, 50), 300.0);
}

TEST(DarkLevelTest, OfNothingIsNothing)
{
    EXPECT_EQ(darkLevel(XTNT::Matrix<double>(30, 3), 50), 0.0);
    EXPECT_EQ(darkLevel(XTNT::Matrix<double>(), 50), 0.0);
    EXPECT_EQ(darkLevel(XTNT::Matrix<double>(1, 3, 7.0), 50), 7.0);
}
