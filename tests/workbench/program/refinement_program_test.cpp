// SPDX-License-Identifier: GPL-3.0-or-later
// `spum unmix --ncomponents` on imported images: the second resolution, from the purest pixels.
#include "workbench/program/ProgramFixture.h"

#include "platform/orvimage/TiffIo.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <cmath>
#include <csignal>
#include <functional>
#include <limits>
#include <random>
#include <vector>

namespace {

constexpr int side = 72;
constexpr int images = 6;

// Two round stains that overlap, in counted light; pixels without light are a third.
class RefinementProgramTest : public ProgramFixture
{
protected:
    static double amount(int nSource, int nPixel)
    {
        const double x = nPixel % side - (nSource == 0 ? 26.0 : 44.0);
        const double y = nPixel / side - 36.0;
        return std::max(0.0, 1.0 - (x * x + y * y) / (22.0 * 22.0));
    }

    void importStains(float fOffset, int nBroken = side * side + 1) const
    {
        const std::array<std::array<double, images>, 2> spectra = {
            {{0.7, 1.0, 0.6, 0.2, 0.05, 0.0}, {0.0, 0.1, 0.5, 1.0, 0.7, 0.3}}};
        std::mt19937_64 generator(7);
        QString error;
        ASSERT_TRUE(QDir().mkpath(path("in")));
        for (std::size_t b = 0; b < images; ++b) {
            const CILImage image = imageOf(side, side, [&](int i) {
                const double light = 400.0 * (amount(0, i) * spectra[0][b] + amount(1, i) * spectra[1][b]);
                const double counts = light > 0.0 ? std::poisson_distribution<int>(light)(generator) : 0;
                // Broken pixels, one in so many, are without the offset.
                return i % nBroken == nBroken - 1 ? 0.0F : fOffset + static_cast<float>(counts);
            });
            ASSERT_TRUE(
                writeTiff(path(QStringLiteral("in/em%1.tif").arg(500 + 20 * static_cast<int>(b))), image, {}, &error));
        }
        succeed({"import", path("in"), "seq", "--quiet", "--force"});
    }

    // Its darkest pixels have light of all sources.
    void importGreyScene(double dNoise) const
    {
        const std::array<std::array<double, 4>, 2> spectra = {{{1.0, 0.9, 0.7, 0.5}, {0.5, 0.7, 0.9, 1.0}}};
        std::mt19937_64 generator(5);
        std::normal_distribution<double> noise(0.0, dNoise);
        ASSERT_TRUE(QDir().mkpath(path("in")));
        QString error;
        for (std::size_t b = 0; b < spectra[0].size(); ++b) {
            const CILImage image = imageOf(side, side, [&](int i) {
                const double across = 0.2 + static_cast<double>(i % side) / side;
                const double down = 0.2 + static_cast<double>(i / side) / side;
                const double light = 200.0 * (across * spectra[0][b] + down * spectra[1][b]);
                return static_cast<float>(light + noise(generator));
            });
            ASSERT_TRUE(
                writeTiff(path(QStringLiteral("in/em%1.tif").arg(500 + 20 * static_cast<int>(b))), image, {}, &error));
        }
        succeed({"import", path("in"), "seq", "--quiet"});
    }

    // Parts of a whole, none above four fifths, in a pixel each.
    static std::vector<std::array<double, 3>> mixtures()
    {
        std::mt19937_64 generator(6);
        std::exponential_distribution<double> size(1.0);
        std::vector<std::array<double, 3>> shares;
        while (shares.size() < static_cast<std::size_t>(side) * side) {
            std::array<double, 3> parts = {size(generator), size(generator), size(generator)};
            const double whole = parts[0] + parts[1] + parts[2];
            std::for_each(parts.begin(), parts.end(), [whole](double& part) { part /= whole; });
            if (*std::max_element(parts.begin(), parts.end()) < 0.8) {
                shares.push_back(parts);
            }
        }
        return shares;
    }

    static bool hasValue(int nPixel) { return nPixel % 500 != 250; }

    // Materials that are bright in all of ten images; some pixels are without a value.
    void importMixtures() const
    {
        constexpr int bands = 10;
        const std::vector<std::array<double, 3>> shares = mixtures();
        std::mt19937_64 generator(5);
        std::normal_distribution<double> noise(0.0, 0.002);
        ASSERT_TRUE(QDir().mkpath(path("in")));
        QString error;
        for (int b = 0; b < bands; ++b) {
            const CILImage image = imageOf(side, side, [&](int i) {
                double light = noise(generator);
                for (int k = 0; k < 3; ++k) {
                    const double at = (b - 1.5 - 3.0 * k) / 2.0;
                    light += shares[static_cast<std::size_t>(i)][static_cast<std::size_t>(k)] *
                             (0.3 + 0.6 * std::exp(-at * at));
                }
                return hasValue(i) ? static_cast<float>(light) : std::numeric_limits<float>::quiet_NaN();
            });
            ASSERT_TRUE(writeTiff(path(QStringLiteral("in/em%1.tif").arg(500 + 20 * b)), image, {}, &error));
        }
        succeed({"import", path("in"), "seq", "--skip-invalid", "--quiet"});
    }

    // The cosine of source nSource, whose amount in a pixel is told (NaN where it does not count), with the
    // map of the component in its place.
    double cosine(const QString& strFolder, int nSource, const std::function<double(int)>& amountOf) const
    {
        CILImage map;
        QString error;
        const QString file = QStringLiteral("%1/0%2_UMX%2.tif").arg(strFolder, QString::number(nSource + 1));
        EXPECT_TRUE(readTiff(path(file), 0, map, &error)) << qPrintable(error);
        double ab = 0.0;
        double aa = 0.0;
        double bb = 0.0;
        for (int i = 0; i < side * side; ++i) {
            const double a = amountOf(i);
            const double b = map.value(static_cast<std::size_t>(i));
            if (!std::isnan(a)) {
                ab += a * b;
                aa += a * a;
                bb += b * b;
            }
        }
        return ab / std::sqrt(aa * bb);
    }

    // The largest relative error of the maps of the mixtures, each with its best factor.
    double errorOfMixtures(const QString& strFolder) const
    {
        const std::vector<std::array<double, 3>> shares = mixtures();
        double worst = 1.0;
        for (std::size_t k = 0; k < 3; ++k) {
            worst = std::min(worst, cosine(strFolder, static_cast<int>(k), [&shares, k](int i) {
                                 return hasValue(i) ? shares[static_cast<std::size_t>(i)][k] : std::nan("");
                             }));
        }
        return std::sqrt(1.0 - worst * worst);
    }

    // The lowest cosine of the stains, in their order, with the maps.
    double agreement(const QString& strFolder) const
    {
        double worst = 1.0;
        for (int k = 0; k < 2; ++k) {
            worst = std::min(worst, cosine(strFolder, k, [k](int i) { return amount(k, i); }));
        }
        return worst;
    }
};

} // namespace

TEST_F(RefinementProgramTest, ImportedImagesAreResolvedFromTheirPurestPixels)
{
    importStains(0.0F);
    const QJsonObject json = succeed({"unmix", "seq", "--ncomponents", "2", "--json", "--out", "out"}).json();
    const QJsonObject refinement = json["refinement"].toObject();
    EXPECT_EQ(refinement["start"], "purest pixels");
    EXPECT_GT(refinement["rounds"].toInt(), 0);
    EXPECT_TRUE(refinement["independent"].toBool());
    EXPECT_FALSE(refinement["enclosing"].toBool());
    EXPECT_FALSE(refinement.contains("offset"));
    EXPECT_EQ(json["noiseModel"].toObject()["model"], "poisson");
    EXPECT_NEAR(json["noiseModel"].toObject()["electronsPerCount"].toDouble(), 1.0, 0.1);
    EXPECT_NEAR(json["lackOfFit"].toDouble(), json["residual"].toDouble(), 1e-9);
    EXPECT_GT(agreement("out"), 0.98);
    const QByteArray report = contentOf(path("out/report.html"));
    EXPECT_TRUE(report.contains("resolved again from the purest pixels"));
    EXPECT_TRUE(report.contains("then to where the amounts depend on each other least"));
}

TEST_F(RefinementProgramTest, AScenesMixturesLeadToItsMaterials)
{
    importMixtures();
    const QStringList call = {"unmix", "seq", "--ncomponents", "3", "--json", "--out"};
    const QJsonObject json = succeed(call + QStringList{"out"}).json();
    const QJsonObject refinement = json["refinement"].toObject();
    EXPECT_TRUE(refinement["enclosing"].toBool());
    EXPECT_FALSE(refinement["independent"].toBool());
    EXPECT_GT(refinement["rounds"].toInt(), 0);
    EXPECT_LT(errorOfMixtures("out"), 0.03);
    EXPECT_TRUE(contentOf(path("out/report.html")).contains("then to where all pixels are mixtures"));
}

TEST_F(RefinementProgramTest, AnOffsetIsTakenOffAndTold)
{
    importStains(300.0F);
    const QStringList call = {"unmix", "seq", "--ncomponents", "2", "--json", "--out"};
    const QJsonObject json = succeed(call + QStringList{"out"}, {"offset"}).json();
    EXPECT_NEAR(json["refinement"].toObject()["offset"].toDouble(), 300.0, 1.0);
    EXPECT_GT(agreement("out"), 0.98);
}

TEST_F(RefinementProgramTest, BrokenPixelsDoNotChangeTheOffset)
{
    importStains(300.0F, 140);
    const QJsonObject json =
        succeed({"unmix", "seq", "--ncomponents", "2", "--json", "--out", "out"}, {"offset"}).json();
    EXPECT_NEAR(json["refinement"].toObject()["offset"].toDouble(), 300.0, 1.0);
    CILImage map;
    QString error;
    ASSERT_TRUE(readTiff(path("out/01_UMX1.tif"), 0, map, &error)) << qPrintable(error);
    for (std::size_t i = 139; i < static_cast<std::size_t>(side) * side; i += 140) {
        EXPECT_EQ(map.value(i), 0.0F) << i;
    }
}

TEST_F(RefinementProgramTest, AGreySceneKeepsItsOwnDarkness)
{
    importGreyScene(1.0);
    const QStringList call = {"unmix", "seq", "--ncomponents", "2", "--json", "--out"};
    const ProgramResult result = spum(call + QStringList{"out"});
    EXPECT_FALSE(result.errText().contains("taken off all images")) << qPrintable(result.errText());
    const QJsonObject json = result.json();
    EXPECT_TRUE(json["refinement"].toObject().contains("rounds"));
    EXPECT_FALSE(json["refinement"].toObject().contains("offset"));
    const double first = spum(call + QStringList{"first", "--no-refinement"}).json()["residual"].toDouble();
    EXPECT_LT(json["residual"].toDouble(), 1.5 * first);
}

// Noise explains both answers alike.
TEST_F(RefinementProgramTest, ANoisyGreySceneKeepsItsOwnDarkness)
{
    importGreyScene(15.0);
    const QJsonObject json = spum({"unmix", "seq", "--ncomponents", "2", "--json", "--out", "out"}).json();
    const QJsonObject refinement = json["refinement"].toObject();
    EXPECT_TRUE(refinement.contains("rounds"));
    EXPECT_FALSE(refinement.contains("offset"));
}

// Loaded again it is fitted to the images as they are.
TEST_F(RefinementProgramTest, WhatIsSavedIsTheFirstAnswerAndCanBeRedone)
{
    importStains(300.0F);
    const QStringList call = {"unmix", "seq", "--ncomponents", "2", "--json", "--out"};
    const QJsonObject kept =
        succeed(call + QStringList{"kept", "--save", "kept"}, {"unexplained", "too-few-components", "offset"}).json();
    EXPECT_FALSE(kept.contains("refinement"));
    EXPECT_FALSE(kept.contains("noiseModel"));
    EXPECT_TRUE(contentOf(path("kept/summary.json")).contains("an offset of the camera is taken for light"));
    const ProgramResult redone = spum({"redo", "kept", "--json"});
    EXPECT_EQ(redone.status, 0) << qPrintable(redone.err);
    EXPECT_EQ(redone.json()["same"], true);
}

TEST_F(RefinementProgramTest, TheFirstAnswerCanBeHad)
{
    importStains(0.0F);
    const QJsonObject json =
        succeed({"unmix", "seq", "--ncomponents", "2", "--no-refinement", "--json", "--out", "out"}).json();
    EXPECT_FALSE(json.contains("refinement"));
    EXPECT_FALSE(json.contains("noiseModel"));
}

// An animal's light of tissue lies beneath all else.
TEST_F(RefinementProgramTest, ASequenceWithAPhotographOfACameraKeepsItsAnswer)
{
    simulate();
    const QStringList call = {"unmix", "seq", "--ncomponents", "4", "--json", "--out", "out"};
    EXPECT_FALSE(succeed(call).json().contains("refinement"));
}

TEST_F(RefinementProgramTest, PaddingDoesNotHideTheOffset)
{
    ASSERT_TRUE(QDir().mkpath(path("in")));
    QString error;
    for (int b = 0; b < images; ++b) {
        const CILImage image = imageOf(60, 40, [b](int i) {
            const int column = i % 60;
            const int light = column < 20 ? 0 : (column < 40 ? 20 * (b + 1) : 20 * (images - b)) * (1 + i / 60 % 7);
            return 200.0F + static_cast<float>(light);
        });
        ASSERT_TRUE(writeTiff(path(QStringLiteral("in/em%1.tif").arg(500 + 20 * b)), image, {}, &error));
    }
    succeed({"import", path("in"), "seq", "--quiet"});
    const QJsonObject json =
        succeed({"unmix", "seq", "--ncomponents", "2", "--json", "--out", "out"}, {"offset"}).json();
    EXPECT_NEAR(json["refinement"].toObject()["offset"].toDouble(), 200.0, 1e-6);
    EXPECT_LT(json["residual"].toDouble(), 1e-3);
}

TEST_F(RefinementProgramTest, ErrorsAreThoseOfTheWeights)
{
    importStains(0.0F);
    const QStringList call = {"unmix", "seq", "--ncomponents", "2", "--errors", "--json", "--out"};
    const QJsonObject json = succeed(call + QStringList{"out"}).json();
    EXPECT_TRUE(json.contains("refinement"));
    EXPECT_EQ(json["noiseModel"].toObject()["model"], "poisson");
    EXPECT_EQ(json["errorMaps"].toArray().size(), 2);
    const QJsonObject gaussian = succeed(call + QStringList{"gaussian", "--noise", "gaussian"}).json();
    EXPECT_EQ(gaussian["noiseModel"].toObject()["model"], "gaussian");
}

// Two pixels alone make three sources of images that are multiples of one.
TEST_F(RefinementProgramTest, SpectraThatCannotBeToldApartLeaveTheFirstAnswer)
{
    constexpr int small = 24;
    ASSERT_TRUE(QDir().mkpath(path("in")));
    QString error;
    for (int b = 0; b < 3; ++b) {
        const CILImage image = imageOf(small, small, [b](int i) {
            const int more = b == 1 && i == 100 ? 5 : (b == 2 && i == 300 ? 4 : 0);
            return static_cast<float>((b + 1) * (10 + i % small + i / small) + more);
        });
        ASSERT_TRUE(writeTiff(path(QStringLiteral("in/em%1.tif").arg(500 + 20 * b)), image, {}, &error));
    }
    succeed({"import", path("in"), "seq", "--quiet"});
    const ProgramResult result = spum({"unmix", "seq", "--ncomponents", "3", "--json", "--out", "out"});
    EXPECT_EQ(result.status, 0) << qPrintable(result.err);
    EXPECT_FALSE(result.json().contains("refinement"));
}

TEST_F(RefinementProgramTest, AsManyComponentsAsImagesHaveAnAnswer)
{
    importStains(0.0F);
    const ProgramResult result = spum({"unmix", "seq", "--ncomponents", "6", "--json", "--out", "out"});
    EXPECT_EQ(result.status, 0) << qPrintable(result.err);
    const QJsonObject json = result.json();
    EXPECT_EQ(json["components"].toArray().size(), images);
    EXPECT_LT(json["residual"].toDouble(), 0.05);
}

TEST_F(RefinementProgramTest, AnInterruptedRefinementLeavesNothing)
{
    std::signal(SIGINT, SIG_DFL);
    ASSERT_TRUE(QDir().mkpath(path("in")));
    QString error;
    constexpr int wide = 400;
    for (int b = 0; b < 2 * images; ++b) {
        const CILImage image = imageOf(wide, wide, [b](int i) {
            const int light = (b + 1) * (i % wide) + (2 * images - b) * (i / wide);
            return static_cast<float>(light + (i * (2 * b + 7)) % 13);
        });
        ASSERT_TRUE(writeTiff(path(QStringLiteral("in/em%1.tif").arg(500 + 20 * b)), image, {}, &error));
    }
    succeed({"import", path("in"), "seq", "--quiet"});
    const QStringList before = entriesOf(path("seq"));
    int interrupted = 0;
    for (const int delay : {100, 300, 500, 700, 900}) {
        const ProgramResult result =
            program().runAndInterrupt({"unmix", "seq", "--ncomponents", "3"}, path("seq"), delay, SIGINT);
        if (result.status == 0) {
            EXPECT_TRUE(QFileInfo::exists(path("seq/unmixed-automatic/summary.json")));
            QDir(path("seq/unmixed-automatic")).removeRecursively();
        } else {
            EXPECT_EQ(result.status, 130) << qPrintable(result.err);
            ++interrupted;
        }
        EXPECT_EQ(entriesOf(path("seq")), before);
    }
    EXPECT_GT(interrupted, 0);
}
