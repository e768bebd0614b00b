// SPDX-License-Identifier: GPL-3.0-or-later
// `spum unmix --noise` and `--errors`: fits with weights, and maps of standard errors.
#include "workbench/program/ProgramFixture.h"

#include "platform/orvimage/TiffIo.h"

#include <algorithm>
#include <cmath>
#include <set>

namespace {

class NoiseProgramTest : public ProgramFixture
{
protected:
    QJsonObject unmix(const QString& strOut, const QStringList& options, const QStringList& codes = {}) const
    {
        return succeed(QStringList{"unmix", "seq", "--library", truth(), "--out", strOut, "--json"} + options, codes)
            .json();
    }
    void simulateScene(const QStringList& options) const
    {
        succeed(QStringList{"simulate", "seq", "--quiet"} + options);
    }
    CILImage tiff(const QString& strFile) const
    {
        CILImage image;
        QString error;
        EXPECT_TRUE(readTiff(path(strFile), 0, image, &error)) << qPrintable(error);
        return image;
    }
};

// Of two maps, over the length of the second.
double distance(const CILImage& a, const CILImage& b)
{
    double left = 0.0;
    double all = 0.0;
    for (std::size_t i = 0; i < std::min(a.pixelCount(), b.pixelCount()); ++i) {
        // A component that the others explain has no error.
        if (std::isfinite(a.value(i)) && std::isfinite(b.value(i))) {
            left += std::pow(a.value(i) - b.value(i), 2);
            all += std::pow(b.value(i), 2);
        }
    }
    return std::sqrt(left / all);
}

double errorOf(const QJsonObject& json, const QString& strName)
{
    for (const auto& component : json["components"].toArray()) {
        if (component.toObject()["name"] == strName) {
            return component.toObject()["truthRelativeError"].toDouble(-1.0);
        }
    }
    return -1.0;
}

const QStringList names = {"TissueAF", "Food", "AlexaFluor 750", "AlexaFluor 790"};

} // namespace

// Luciferases in the dark: pixels of a few and of many thousand electrons in one image and in one pixel.
TEST_F(NoiseProgramTest, CountedLightIsUnmixedNearerToTheTruth)
{
    succeed({"simulate", "seq", "--kind", "luminescent", "--size", "128", "--quiet"});
    const QStringList call = {"unmix", "seq", "--library", truth("radiance"), "--mask", "auto", "--json", "--out"};
    const QJsonObject plain = succeed(call + QStringList{"plain"}).json();
    const QJsonObject weighted = succeed(call + QStringList{"weighted", "--noise", "poisson"}).json();
    ASSERT_EQ(plain["components"].toArray().size(), 3);
    for (const auto& component : plain["components"].toArray()) {
        const QString name = component.toObject()["name"].toString();
        EXPECT_LT(errorOf(weighted, name), 0.9 * errorOf(plain, name)) << qPrintable(name);
    }
    const QJsonObject model = weighted["noiseModel"].toObject();
    EXPECT_EQ(model["model"], "poisson");
    EXPECT_EQ(model["electronsPerCount"], 1.0);
    EXPECT_EQ(model["readNoiseElectrons"], 10.0);
    EXPECT_EQ(model["estimated"], false);
    EXPECT_NEAR(model["residualOverNoise"].toDouble(), 1.0, 0.03);
    EXPECT_FALSE(plain.contains("noiseModel"));
    const QByteArray report = contentOf(path("weighted/report.html"));
    for (const char* pText :
         {"Poisson, 1 e a count, read noise 10 e", "Residual over noise", "Condition of the spectra"}) {
        EXPECT_TRUE(report.contains(pText)) << pText;
    }
    EXPECT_FALSE(contentOf(path("plain/report.html")).contains("Residual over noise"));
}

// Where light and noise differ little between the bands there is little to gain, and nothing is lost.
TEST_F(NoiseProgramTest, WeightsLoseNothingWhereThereIsLittleToGain)
{
    simulateScene({"--size", "128", "--bands", "18", "--peak", "2000"});
    const QJsonObject plain = unmix("plain", {"--mask", "auto"});
    const QJsonObject weighted = unmix("weighted", {"--mask", "auto", "--noise", "poisson"});
    for (const QString& name : names) {
        EXPECT_LE(errorOf(weighted, name), 1.02 * errorOf(plain, name)) << qPrintable(name);
    }
    EXPECT_LT(errorOf(weighted, "TissueAF"), 0.97 * errorOf(plain, "TissueAF"));
}

// A camera that tells nothing of itself: gain and read noise are found in what the fit leaves.
TEST_F(NoiseProgramTest, ACamerasNoiseIsFoundWhereItIsNotTold)
{
    simulateScene({"--size", "128", "--bands", "18", "--gain", "4", "--read-noise", "60", "--peak", "20000"});
    for (const QString& file : filesBelow(path("seq"))) {
        if (file.endsWith("ClickInfo.txt")) {
            QByteArray text;
            for (const QByteArray& line : contentOf(path("seq/" + file)).split('\n')) {
                if (!line.contains("Electrons per Count") && !line.contains("Read Noise Electrons")) {
                    text += line + '\n';
                }
            }
            write("seq/" + file, text);
        }
    }
    const QJsonObject model = unmix("out", {"--noise", "poisson"})["noiseModel"].toObject();
    EXPECT_EQ(model["estimated"], true);
    EXPECT_NEAR(model["electronsPerCount"].toDouble() / 4.0, 1.0, 0.1);
    EXPECT_NEAR(model["readNoiseElectrons"].toDouble() / 60.0, 1.0, 0.1);
}

// The scatter of the maps of a noisy sequence around those of the same scene without noise.
TEST_F(NoiseProgramTest, StandardErrorsAreTheScatterOfTheMaps)
{
    simulateScene({"--noise", "none"});
    unmix("exact", {});
    simulateScene({"--force"});
    for (const QStringList& kind : {QStringList{"--noise", "poisson"}, {"--noise", "gaussian"}, QStringList{}}) {
        SCOPED_TRACE(qPrintable(kind.join(' ')));
        unmix("noisy", kind + QStringList{"--errors", "--force"});
        for (int k = 0; k < names.size(); ++k) {
            const QString name =
                QStringLiteral("%1_%2").arg(k + 1, 2, 10, QLatin1Char('0')).arg(QString(names[k]).replace(' ', '_'));
            const CILImage truthMap = tiff("exact/" + name + ".tif");
            const CILImage map = tiff("noisy/" + name + ".tif");
            const CILImage errors = tiff("noisy/" + name + "_error.tif");
            double squares = 0.0;
            double pixels = 0.0;
            for (std::size_t i = 0; i < map.pixelCount(); ++i) {
                // What is cut off at 0 does not scatter as the fit does.
                if (truthMap.value(i) > 3.0 * errors.value(i)) {
                    squares += std::pow((map.value(i) - truthMap.value(i)) / errors.value(i), 2);
                    ++pixels;
                }
            }
            ASSERT_GT(pixels, 300.0) << qPrintable(name);
            // Poisson's errors are those of each pixel; the others' those of pixels of middling light.
            const bool own = kind.contains("poisson");
            EXPECT_NEAR(std::sqrt(squares / pixels), 1.0, own ? 0.08 : 0.6) << qPrintable(name);
        }
    }
}

TEST_F(NoiseProgramTest, ErrorMapsAreAmongTheFilesAndNoMaps)
{
    simulate();
    const QJsonObject json = unmix("out", {"--errors"});
    EXPECT_EQ(json["errorMaps"].toArray().size(), names.size());
    std::set<QString> files;
    for (const auto& file : json["files"].toArray()) {
        files.insert(file.toString());
    }
    for (const auto& component : json["components"].toArray()) {
        const QString file = component.toObject()["errorMap"].toString();
        EXPECT_TRUE(files.count(file) == 1 && entriesOf(path("out")).contains(file)) << qPrintable(file);
        // The number that is told is that of the map.
        const CILImage errors = tiff("out/" + file);
        double squares = 0.0;
        for (std::size_t i = 0; i < errors.pixelCount(); ++i) {
            squares += errors.value(i) * errors.value(i);
        }
        const double mean = std::sqrt(squares / static_cast<double>(errors.pixelCount()));
        EXPECT_NEAR(component.toObject()["standardError"].toDouble() / mean, 1.0, 1e-5);
    }
    // Who takes the folder's maps takes these alone.
    succeed({"roi", "seq", "add", "--name", "A", "--shape", "rect:80,80,40,40", "--quiet"});
    succeed({"roi", "seq", "measure", "--result", "out", "--csv", "regions.csv", "--quiet"});
    const QByteArray measured = contentOf(path("regions.csv"));
    EXPECT_EQ(measured.count("out,"), names.size()) << measured.constData();
    EXPECT_FALSE(measured.contains("_error"));
}

TEST_F(NoiseProgramTest, WithoutTheOptionsNothingChanges)
{
    simulate();
    unmix("plain", {});
    unmix("errors", {"--errors"});
    for (const QString& name : entriesOf(path("plain"))) {
        if (name.endsWith(".tif")) {
            EXPECT_EQ(contentOf(path("plain/" + name)), contentOf(path("errors/" + name))) << qPrintable(name);
        }
    }
}

TEST_F(NoiseProgramTest, TheUnitDoesNotChangeTheWeights)
{
    simulateScene({"--size", "64", "--bands", "12"});
    const auto shareOf = [](const QJsonObject& json) {
        return json["components"].toArray()[2].toObject()["truthRelativeError"].toDouble();
    };
    const QJsonObject calibrated = unmix("calibrated", {"--noise", "poisson"});
    const QJsonObject counts = succeed({"unmix", "seq", "--library", truth("counts"), "--unit", "counts", "--out",
                                        "counts", "--noise", "poisson", "--json"})
                                   .json();
    EXPECT_NEAR(shareOf(calibrated) / shareOf(counts), 1.0, 1e-3);
}

TEST_F(NoiseProgramTest, WhatCannotBeAskedForIsRefused)
{
    simulate();
    const QStringList call = {"unmix", "seq", "--out", "out"};
    EXPECT_TRUE(refusal(call + QStringList{"--library", truth(), "--noise", "shot"}, 2)
                    .startsWith("--noise takes poisson or gaussian, not \"shot\"."));
    EXPECT_TRUE(refusal(call + QStringList{"--library", truth(), "--noise", "poisson", "--save", "A"}, 2)
                    .startsWith("--save does not go with --noise"));
    const QStringList pairs = [this] {
        QStringList list;
        for (const auto& image : spum({"info", "seq", "--json"}).json()["images"].toArray()) {
            list.append(image.toObject()["first"].toString() + '/' + image.toObject()["second"].toString());
        }
        return list;
    }();
    const QString four = QStringList(pairs.mid(0, 4)).join(',');
    // Ahead of the images: a trial tells it, too.
    EXPECT_TRUE(refusal(call + QStringList{"--library", truth(), "--errors", "--select", four, "--dry-run"})
                    .startsWith("4 spectra leave nothing of 4 images"));
    EXPECT_TRUE(refusal(call + QStringList{"--ncomponents", "4", "--errors", "--select", four})
                    .startsWith("4 spectra leave nothing of 4 images"));
    EXPECT_FALSE(entriesOf(path(".")).contains("out"));
}

// The run is the run of before; its maps are those that its spectra give where they are known.
TEST_F(NoiseProgramTest, ResolvedSpectraAreFittedAgainByTheNoise)
{
    simulateScene({"--size", "128", "--bands", "18", "--peak", "5000"});
    const QStringList call = {"unmix", "seq", "--components", names.join(','), "--mask", "auto", "--json", "--out"};
    const QJsonObject plain = spum(call + QStringList{"plain"}).json();
    const QJsonObject weighted = spum(call + QStringList{"weighted", "--noise", "poisson", "--errors"}).json();
    ASSERT_EQ(weighted["components"].toArray().size(), names.size());
    EXPECT_EQ(contentOf(path("plain/spectra.csv")), contentOf(path("weighted/spectra.csv")));
    for (const char* pKey : {"lackOfFit", "lackOfFitDenoised", "iterations", "ending"}) {
        EXPECT_EQ(plain[pKey], weighted[pKey]) << pKey;
    }
    EXPECT_EQ(weighted["noiseModel"].toObject()["mapsFittedAgain"], true);
    EXPECT_TRUE(contentOf(path("weighted/report.html")).contains("maps fitted again with the resolved spectra"));
    const QByteArray told = spum({"unmix", "seq", "--ncomponents", "3", "--noise", "gaussian", "--out", "told"}).out;
    EXPECT_TRUE(told.contains("\nmaps fitted again with the resolved spectra, each image weighted by its noise\n"))
        << told.constData();

    const QStringList known = {"unmix", "seq", "--library", path("plain/spectra.csv"), "--mask", "auto", "--out"};
    spum(known + QStringList{"known", "--noise", "poisson", "--errors"});
    for (const auto& component : weighted["components"].toArray()) {
        for (const char* pKey : {"map", "errorMap"}) {
            const QString file = component.toObject()[pKey].toString();
            EXPECT_LT(distance(tiff("weighted/" + file), tiff("known/" + file)), 0.02) << qPrintable(file);
        }
        const QString map = component.toObject()["map"].toString();
        EXPECT_GT(distance(tiff("weighted/" + map), tiff("plain/" + map)), 1e-3) << qPrintable(map);
    }
}

// What is kept of the run knows nothing of the errors.
TEST_F(NoiseProgramTest, StandardErrorsOfAResolutionChangeNeitherItsMapsNorWhatIsSaved)
{
    simulate();
    const QStringList call = {"unmix", "seq", "--ncomponents", "3", "--json", "--save"};
    spum(call + QStringList{"plain", "--out", "plain"});
    const QJsonObject errors = spum(call + QStringList{"errors", "--errors", "--out", "errors"}).json();
    EXPECT_EQ(errors["errorMaps"].toArray().size(), 3);
    EXPECT_FALSE(errors["noiseModel"].toObject().contains("mapsFittedAgain"));
    for (const auto& component : errors["components"].toArray()) {
        const QString map = component.toObject()["map"].toString();
        EXPECT_EQ(contentOf(path("plain/" + map)), contentOf(path("errors/" + map))) << qPrintable(map);
        EXPECT_GT(component.toObject()["standardError"].toDouble(), 0.0);
    }
    QJsonObject saved[] = {spum({"results", "show", "seq", "plain", "--json"}).json(),
                           spum({"results", "show", "seq", "errors", "--json"}).json()};
    for (QJsonObject& json : saved) {
        for (const char* pKey : {"name", "file", "date"}) {
            json.remove(pKey);
        }
    }
    EXPECT_EQ(saved[0], saved[1]);
    EXPECT_FALSE(saved[0]["spectra"].toArray().isEmpty());
}

// Late images are dim, and corrected for decay their noise is the larger.
TEST_F(NoiseProgramTest, CorrectionForDecayRaisesTheNoiseToo)
{
    succeed({"simulate", "seq", "--kind", "cherenkov", "--size", "64", "--span", "3", "--quiet"});
    const QStringList call = {"unmix", "seq",    "--components", "TissueAF,F-18", "--mask",
                              "auto",  "--json", "--noise",      "poisson",       "--out"};
    const QJsonObject raw = spum(call + QStringList{"raw"}).json();
    const QJsonObject corrected = spum(call + QStringList{"corrected", "--decay", "auto"}).json();
    const auto overNoise = [](const QJsonObject& json) {
        return json["noiseModel"].toObject()["residualOverNoise"].toDouble();
    };
    EXPECT_NEAR(overNoise(corrected) / overNoise(raw), 1.0, 0.1);
}

// One pixel, and a mask that leaves only dark ones.
TEST_F(NoiseProgramTest, FewPixelsAreFittedToo)
{
    simulate();
    const QJsonObject json = unmix("out", {"--noise", "poisson", "--errors", "--mask", "rect:30,30,2,2"});
    EXPECT_EQ(json["pixels"], 4);
    for (const auto& component : json["components"].toArray()) {
        EXPECT_GT(component.toObject()["standardError"].toDouble(), 0.0);
    }
    unmix("gauss", {"--noise", "gaussian", "--errors", "--mask", "rect:30,30,2,2"});
}
