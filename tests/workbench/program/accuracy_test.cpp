// SPDX-License-Identifier: GPL-3.0-or-later
// How near the maps of a simulated sequence come to the truth. docs/accuracy.md has a wider table.
#include "services/session/LibrarySpectra.h"
#include "services/session/OpenedSequence.h"
#include "workbench/program/ConditionNumber.h"
#include "workbench/program/ProgramFixture.h"

#include "engine/CORVSpumKyvo.h"
#include "engine/EngineEnums.h"
#include "engine/runEngine.h"
#include "platform/orvimage/TiffIo.h"
#include "spectra/SpectrumPlotParams.h"
#include "support/Numbers.h"

#include <QFileInfo>
#include <QTemporaryDir>

#include <cmath>

namespace {

// Worst error of a map inside the body, over the map's largest true value.
double worstError(const std::function<double(std::size_t)>& map, const CILImage& truth, const CILImage& body)
{
    double worst = 0.0;
    double largest = 0.0;
    for (std::size_t i = 0; i < truth.pixelCount(); ++i) {
        largest = std::max(largest, truth.value(i));
        if (body.value(i) > 0.0) {
            worst = std::max(worst, std::abs(map(i) - truth.value(i)));
        }
    }
    return worst / largest;
}

class AccuracyTest : public ProgramFixture
{
protected:
    CILImage tiff(const QString& strFile) const
    {
        CILImage image;
        QString error;
        EXPECT_TRUE(readTiff(path(strFile), 0, image, &error)) << qPrintable(error);
        return image;
    }
    CILImage trueMap(const QString& strName) const { return tiff("seq/truth/radiant-efficiency/" + strName + ".tif"); }
    // The condition of the true spectra of "seq".
    double condition() const
    {
        LibrarySpectra library;
        library.load(truth());
        XTNT::Matrix<double> spectra(library.all().size(), library.all().first()->points.size());
        for (int k = 0; k < library.all().size(); ++k) {
            spectra.setRow(k, library.all()[k]->values());
        }
        return conditionNumber(spectra);
    }
    void simulateExactly() const { succeed({"simulate", "seq", "--size", "128", "--noise", "none", "--quiet"}); }
};

// What becomes of the default scene, whose sequences are made once.
class AutomaticAccuracyTest : public ProgramFixture
{
protected:
    QString noisyScene() const { return scene("noisy", {}); }
    QString exactScene() const { return scene("exact", {"--noise", "none"}); }

    // The answer of an unmixing of that scene over the animal's body.
    QJsonObject unmix(const QString& strScene, const QStringList& options, const QStringList& codes = {}) const
    {
        return succeed(QStringList{"unmix", strScene, "--mask", "auto", "--out", path("out"), "--force", "--json"} +
                           options,
                       codes)
            .json();
    }
    // What the true spectra leave, in percent: no spectra that are nearer to the truth explain more than noise.
    double noiseFloor(const QString& strScene) const
    {
        const QJsonObject json = unmix(strScene, {"--library", strScene + "/truth/radiant-efficiency/spectra.csv"});
        return 100.0 * json["residual"].toDouble();
    }

    const QString m_names = QStringLiteral("TissueAF,Food,AlexaFluor 750,AlexaFluor 790");

private:
    QString scene(const char* pName, const QStringList& options) const
    {
        static const QTemporaryDir store;
        const QString folder = store.filePath(pName);
        if (!QFileInfo::exists(folder)) {
            succeed(QStringList{"simulate", folder, "--quiet"} + options);
        }
        return folder;
    }
};

} // namespace

TEST(ConditionNumberTest, IsTheRatioOfTheSingularValues)
{
    using testsupport::matrixOf;
    EXPECT_NEAR(conditionNumber(matrixOf({{1, 0, 0}, {0, 1, 0}})), 1.0, 1e-15);
    EXPECT_NEAR(conditionNumber(matrixOf({{3, 0}, {0, 0.5}})), 6.0, 1e-12);
    // Singular values of {{1, 1}, {1, 1 + e}} are close to 2 and e / 2.
    EXPECT_NEAR(conditionNumber(matrixOf({{1, 1}, {1, 1 + 1e-6}})), 4e6, 10.0);
    EXPECT_GT(conditionNumber(matrixOf({{1, 2}, {2, 4}})), 1e15);
}

TEST_F(AccuracyTest, TrueSpectraGivenDirectlyReturnTheTrueMaps)
{
    simulateExactly();
    OpenedSequence opened(path("seq"));
    CORVSpumKyvo& engine = opened.engine();
    engine.resetAnalysis(RUNMODE_MANUAL);
    LibrarySpectra library;
    library.load(truth());
    engine.m_spectrumPlots = library.fitTo(engine.getSelectedKeyPairs(), engine.m_eAxis);
    ASSERT_EQ(runEngine(engine), RunOutcome::Succeeded);
    ASSERT_EQ(engine.m_eUnit, DISPLAYUNIT_RADIANT_EFFICIENCY);

    const double limit = 1e-6 * condition();
    const CILImage body = trueMap("TissueAF");
    ASSERT_EQ(engine.m_spectrumPlots.size(), 4);
    for (int k = 0; k < 4; ++k) {
        const QString name = engine.m_spectrumPlots[k]->settings.name;
        const double* map = engine.m_concentrations[k];
        const double error = worstError([map](std::size_t i) { return map[i]; }, trueMap(name), body);
        EXPECT_LT(error, limit) << qPrintable(name);
    }
}

TEST_F(AccuracyTest, TrueSpectraThroughALibraryFileReturnTheTrueMaps)
{
    simulateExactly();
    succeed({"library", "save", "true", "--from", truth()});
    const QJsonObject json = succeed({"unmix", "seq", "--library", "true", "--out", "out", "--json"}).json();
    const double limit = 1e-5 * condition();
    const CILImage body = trueMap("TissueAF");
    const QJsonArray components = json["components"].toArray();
    ASSERT_EQ(components.size(), 4);
    for (int k = 0; k < 4; ++k) {
        const QString name = components[k].toObject()["name"].toString();
        const CILImage map = tiff(QStringLiteral("out/0%1_%2.tif").arg(k + 1).arg(QString(name).replace(' ', '_')));
        const double error = worstError([&map](std::size_t i) { return map.value(i); }, trueMap(name), body);
        EXPECT_LT(error, limit) << qPrintable(name);
    }
}

TEST_F(AccuracyTest, WithNoiseEachProbeFollowsTheTruth)
{
    for (const char* seed : {"1", "2"}) {
        succeed({"simulate", "seq", "--size", "128", "--seed", seed, "--quiet", "--force"});
        const QStringList beside{"--out", path("out"), "--force"};
        const QJsonObject json = succeed(QStringList{"unmix", "seq", "--library", truth(), "--json"} + beside).json();
        int probes = 0;
        for (const auto& value : json["components"].toArray()) {
            const QJsonObject component = value.toObject();
            if (!component["name"].toString().startsWith("AlexaFluor")) {
                continue;
            }
            ++probes;
            EXPECT_GT(component["truthCorrelation"].toDouble(), 0.95)
                << qPrintable(component["name"].toString()) << " seed " << seed;
        }
        EXPECT_EQ(probes, 2);
    }
}

TEST_F(AutomaticAccuracyTest, NamesFindEverySpectrumAndEveryMap)
{
    const QJsonObject json = unmix(noisyScene(), {"--method", "automatic", "--components", m_names});
    EXPECT_EQ(json["ending"], "converged");
    QStringList names;
    for (const auto& value : json["components"].toArray()) {
        const QJsonObject component = value.toObject();
        names.append(component["name"].toString());
        EXPECT_EQ(component["truthName"], component["name"]);
        EXPECT_GT(component["truthCosine"].toDouble(), 0.95) << qPrintable(names.last());
        EXPECT_GT(component["truthCorrelation"].toDouble(), 0.9) << qPrintable(names.last());
    }
    EXPECT_EQ(names, m_names.split(','));
}

TEST_F(AutomaticAccuracyTest, FromTheNumberAloneNoMoreIsLeftThanTheTrueSpectraLeave)
{
    const double floor = noiseFloor(noisyScene());
    EXPECT_GT(floor, 0.5);
    EXPECT_NEAR(unmix(noisyScene(), {"--ncomponents", "4"})["lackOfFit"].toDouble(), 0.01 * floor, 0.0005 * floor);
}

TEST_F(AutomaticAccuracyTest, WithoutNoiseAndConstraintsNearlyAllIsExplained)
{
    EXPECT_LT(noiseFloor(exactScene()), 1e-4);
    EXPECT_LT(unmix(exactScene(), {"--ncomponents", "4"})["lackOfFit"].toDouble(), 0.005);
    EXPECT_LT(
        unmix(exactScene(), {"--components", m_names, "--no-constraints"}, {"names-replaced"})["lackOfFit"].toDouble(),
        0.005);
}
