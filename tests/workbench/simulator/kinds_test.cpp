// SPDX-License-Identifier: GPL-3.0-or-later
// What each kind of simulated sequence holds beside its truth.
#include "XTNT/xtnt_parallel.h"
#include "host/CORVDatabase.h"
#include "host/CROIManager.h"
#include "platform/orvapi/ClickInfoKeys.h"
#include "workbench/simulator/FilterPlan.h"
#include "workbench/simulator/Kinetics.h"
#include "workbench/simulator/OptionCheck.h"
#include "workbench/simulator/ScanSpots.h"
#include "workbench/simulator/SourceList.h"
#include "workbench/simulator/TimeCourse.h"
#include "workbench/simulator/TissueOptics.h"
#include "workbench/simulator/simulated_sequence.h"

#include <cfloat>
#include <cmath>
#include <functional>
#include <limits>
#include <map>
#include <memory>

namespace {

constexpr SimulationKind kKinds[] = {SimulationKind::Epi, SimulationKind::Luminescent,
                                     SimulationKind::Transillumination, SimulationKind::Temporal,
                                     SimulationKind::Cherenkov};

SimulationOptions smallKind(SimulationKind eKind)
{
    SimulationOptions options = SimulationOptions::standard(eKind);
    options.size = 40;
    if (eKind == SimulationKind::Transillumination) {
        options.bands = 4;
        options.spots = 3;
    }
    if (eKind == SimulationKind::Temporal) {
        options.timesSeconds = {0, 30, 60, 120, 240, 480, 960};
    }
    return options;
}

// As small as it can be with everything in it.
SimulationOptions smallestKind(SimulationKind eKind)
{
    SimulationOptions options = smallKind(eKind);
    options.size = 24;
    options.bands = 2;
    options.spots = 2;
    options.foodRatio = 0.0;
    if (eKind == SimulationKind::Temporal) {
        options.timesSeconds = {0, 60, 240};
    }
    return options;
}

// A simulated sequence, opened.
struct Simulated
{
    explicit Simulated(const SimulationOptions& options)
    {
        mustSimulate(path(), options);
        QString error;
        QStringList warnings;
        EXPECT_EQ(sequence.open(path(), &error, &warnings), ESTATUS_SUCCESS) << qPrintable(error);
        EXPECT_TRUE(warnings.isEmpty()) << qPrintable(warnings.join(QLatin1Char('\n')));
    }
    QString path() const { return folder.path(QStringLiteral("seq")); }
    QString luminescent(int image, const char* pKey) { return section(image, ClickKeys::kLuminescentImage, pKey); }
    QString section(int image, const char* pSection, const char* pKey)
    {
        QString text;
        CPLSection* pFound = sequence.getDatasets().at(image)->clickInfo[QString::fromLatin1(pSection)];
        if (pFound != nullptr) {
            pFound->getValue(QString::fromLatin1(pKey), &text);
        }
        return text;
    }
    std::vector<double> image(int index, tag_edisplayunit eUnit)
    {
        CILImage image;
        EXPECT_EQ(sequence.getDatasets().at(index)->getCalibratedLuminImage(eUnit, &image, QString()), ESTATUS_SUCCESS);
        std::vector<double> pixels(image.pixelCount());
        for (std::size_t i = 0; i < pixels.size(); ++i) {
            pixels[i] = image.value(i);
        }
        return pixels;
    }
    ReadTruth truthOfSpot(tag_edisplayunit eUnit, int spot) const
    {
        return ReadTruth(path(), truthUnitFolder(eUnit),
                         [spot](const QString& strName) { return truthMapFile(strName, spot); });
    }

    SimulationFolder folder;
    CORVSequenceDataset sequence;
};

// Each pixel is the sum of true maps times true spectra; `factor` is what the pixels are multiplied by first.
void expectSum(const std::vector<double>& pixels, const ReadTruth& truth, std::size_t band, double factor = 1.0)
{
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        double sum = 0.0;
        for (std::size_t k = 0; k < truth.maps.size(); ++k) {
            sum += truth.maps[k][i] * truth.spectra[k][band];
        }
        // Stored image, converted image, reference and each map are rounded to floats.
        ASSERT_NEAR(factor * pixels[i], sum, 4.0 * static_cast<double>(FLT_EPSILON) * sum) << band << " " << i;
    }
}

QStringList foldersOfTruth(const QString& strSequence)
{
    return QDir(strSequence + QStringLiteral("/truth")).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
}

} // namespace

TEST(SimulationKindTest, NamesAndKindsBelongTogether)
{
    for (const SimulationKind kind : kKinds) {
        SimulationKind found = SimulationKind::Epi;
        EXPECT_TRUE(kindOfName(kindName(kind), &found));
        EXPECT_EQ(found, kind);
    }
    SimulationKind kept = SimulationKind::Temporal;
    EXPECT_FALSE(kindOfName(QStringLiteral("Epi"), &kept));
    EXPECT_EQ(kept, SimulationKind::Temporal);
}

TEST(SimulationKindTest, DefaultsOfEachKindAreValid)
{
    for (const SimulationKind kind : kKinds) {
        const SimulationOptions options = SimulationOptions::standard(kind);
        EXPECT_EQ(options.kind, kind);
        EXPECT_EQ(validate(options), QString()) << qPrintable(kindName(kind));
    }
}

TEST(SimulationKindTest, SameOptionsGiveTheSameBytesWithAnyNumberOfThreads)
{
    for (const SimulationKind kind : kKinds) {
        SimulationOptions options = smallestKind(kind);
        options.full = true;
        SimulationFolder a;
        SimulationFolder b;
        XTNT::setThreadCount(1);
        mustSimulate(a.path(QStringLiteral("seq")), options);
        XTNT::setThreadCount(3);
        mustSimulate(b.path(QStringLiteral("seq")), options);
        XTNT::setThreadCount(0);
        EXPECT_EQ(allFiles(a.path(QStringLiteral("seq"))), allFiles(b.path(QStringLiteral("seq"))))
            << qPrintable(kindName(kind));
    }
}

TEST(LuminescentSimulationTest, DataAreTheSumOfTheTruthInCountsAndRadiance)
{
    SimulationOptions options = smallKind(SimulationKind::Luminescent);
    options.noise = false;
    Simulated simulated(options);
    for (const tag_edisplayunit unit : {DISPLAYUNIT_COUNTS, DISPLAYUNIT_RADIANCE}) {
        const ReadTruth truth(simulated.path(), unit);
        EXPECT_EQ(truth.names, (QStringList{QStringLiteral("TissueAF"), QStringLiteral("Click-Beetle Green Luciferase"),
                                            QStringLiteral("Click-Beetle Red Luciferase")}));
        EXPECT_EQ(truth.pairs.first(), QStringLiteral("Block,500"));
        for (std::size_t j = 0; j < truth.spectra.front().size(); ++j) {
            expectSum(simulated.image(static_cast<int>(j), unit), truth, j);
        }
    }
    EXPECT_EQ(foldersOfTruth(simulated.path()), (QStringList{QStringLiteral("counts"), QStringLiteral("radiance")}));
}

TEST(LuminescentSimulationTest, IsNotExcitedAndHasNoUnitThatAsksForIt)
{
    Simulated simulated(smallKind(SimulationKind::Luminescent));
    EXPECT_FALSE(simulated.sequence.isFluorescence);
    EXPECT_FALSE(simulated.sequence.isTransillumination);
    EXPECT_FALSE(simulated.sequence.isKyvoSequence());
    CORVDataset* pDataset = simulated.sequence.getDatasets().first();
    EXPECT_EQ(pDataset->getExcitationFilter(), QStringLiteral("Block"));
    EXPECT_EQ(pDataset->getEmissionFilter(), QStringLiteral("500nm"));
    EXPECT_EQ(pDataset->unitUnavailableReason(DISPLAYUNIT_RADIANCE), QString());
    EXPECT_NE(pDataset->unitUnavailableReason(DISPLAYUNIT_RADIANT_EFFICIENCY), QString());
    EXPECT_NE(pDataset->unitUnavailableReason(DISPLAYUNIT_EFFICIENCY), QString());
    EXPECT_EQ(simulated.luminescent(0, ClickKeys::kProbe),
              QStringLiteral("Click-Beetle Green Luciferase, Click-Beetle Red Luciferase"));
}

// Blood takes the green: the deeper a luciferase, the redder its light.
TEST(LuminescentSimulationTest, DepthTurnsALuciferaseRed)
{
    double centroids[2] = {0.0, 0.0};
    for (int i = 0; i < 2; ++i) {
        SimulationOptions options = smallKind(SimulationKind::Luminescent);
        options.probes = QStringList{QStringLiteral("Firefly Luciferase")};
        options.depthsMm = {i == 0 ? 1.0 : 6.0};
        Simulated simulated(options);
        const ReadTruth truth(simulated.path(), DISPLAYUNIT_COUNTS);
        double sum = 0.0;
        for (std::size_t j = 0; j < truth.spectra[1].size(); ++j) {
            sum += truth.spectra[1][j];
            centroids[i] += truth.spectra[1][j] * truth.pairs.at(static_cast<int>(j)).section(',', 1).toDouble();
        }
        centroids[i] /= sum;
    }
    EXPECT_GT(centroids[1], centroids[0] + 15.0);
}

TEST(LuminescentSimulationTest, EmissionsAreAsCoarseAsTheirNumberAllows)
{
    QList<FilterPair> pairs;
    QString error;
    ASSERT_TRUE(FilterPlan::chooseEmissions(12, 500, &pairs, &error));
    EXPECT_EQ(pairs.last().emission, 720);
    EXPECT_EQ(pairs.last().excitation, 0);
    ASSERT_TRUE(FilterPlan::chooseEmissions(60, 500, &pairs, &error));
    EXPECT_EQ(pairs.last().emission, 500 + 59 * 5);
    EXPECT_FALSE(FilterPlan::chooseEmissions(382, 500, &pairs, &error));
    EXPECT_TRUE(error.contains(QStringLiteral("no room"))) << qPrintable(error);
}

TEST(TransilluminationSimulationTest, EverySpotIsTheSumOfItsTruthInEveryUnit)
{
    SimulationOptions options = smallKind(SimulationKind::Transillumination);
    options.noise = false;
    options.foodRatio = 1.0;
    Simulated simulated(options);
    ASSERT_EQ(simulated.sequence.getDatasets().size(), 12);
    for (const tag_edisplayunit unit :
         {DISPLAYUNIT_COUNTS, DISPLAYUNIT_RADIANCE, DISPLAYUNIT_RADIANT_EFFICIENCY, DISPLAYUNIT_EFFICIENCY}) {
        for (int spot = 0; spot < 3; ++spot) {
            const ReadTruth truth = simulated.truthOfSpot(unit, spot);
            ASSERT_EQ(truth.names.size(), 4);
            ASSERT_EQ(truth.pairs.size(), 4);
            for (int j = 0; j < 4; ++j) {
                expectSum(simulated.image(4 * spot + j, unit), truth, static_cast<std::size_t>(j));
            }
        }
    }
}

TEST(TransilluminationSimulationTest, EverySpotHasEveryPairAndSpotsLieApart)
{
    Simulated simulated(smallKind(SimulationKind::Transillumination));
    EXPECT_TRUE(simulated.sequence.isFluorescence);
    EXPECT_TRUE(simulated.sequence.isTransillumination);
    QStringList spots;
    QStringList images;
    for (int i = 0; i < 12; ++i) {
        const QString spot =
            simulated.luminescent(i, ClickKeys::kFLXSpot) + ',' + simulated.luminescent(i, ClickKeys::kFLYSpot);
        if (!spots.contains(spot)) {
            spots.append(spot);
        }
        images.append(spot + ',' + simulated.luminescent(i, ClickKeys::kEmissionFilter));
    }
    EXPECT_EQ(spots.size(), 3);
    EXPECT_EQ(images.removeDuplicates(), 0);
    for (int count = 2; count <= ScanSpots::kMost; ++count) {
        const QList<ScanSpot> planned = ScanSpots::plan(count, MouseShape(1));
        for (int i = 1; i < count; ++i) {
            EXPECT_GT(std::hypot(planned.at(i).x - planned.at(i - 1).x, planned.at(i).y - planned.at(i - 1).y), 0.6);
        }
    }
}

TEST(TransilluminationSimulationTest, ASourceIsBrightestFromTheNearestSpot)
{
    SimulationOptions options = smallKind(SimulationKind::Transillumination);
    options.noise = false;
    Simulated simulated(options);
    for (int k = 1; k <= 2; ++k) {
        double x = 0.0;
        double y = 0.0;
        double nearest = std::numeric_limits<double>::infinity();
        int expected = -1;
        double brightest = 0.0;
        int found = -1;
        for (int spot = 0; spot < 3; ++spot) {
            const std::vector<double> map =
                simulated.truthOfSpot(DISPLAYUNIT_COUNTS, spot).maps[static_cast<std::size_t>(k)];
            const std::size_t peak = indexOfMaximum(map);
            if (map[peak] > brightest) {
                brightest = map[peak];
                found = spot;
                x = (static_cast<double>(peak % 40) + 0.5) * 12.0 / 40.0 - 6.0;
                y = (static_cast<double>(peak / 40) + 0.5) * 12.0 / 40.0 - 6.0;
            }
        }
        for (int spot = 0; spot < 3; ++spot) {
            const double distance = std::hypot(simulated.luminescent(4 * spot, ClickKeys::kFLXSpot).toDouble() - x,
                                               simulated.luminescent(4 * spot, ClickKeys::kFLYSpot).toDouble() - y);
            if (distance < nearest) {
                nearest = distance;
                expected = spot;
            }
        }
        EXPECT_EQ(found, expected) << "component " << k;
    }
}

TEST(TransilluminationSimulationTest, EfficiencyComesFromTheTransmittedReference)
{
    Simulated simulated(smallKind(SimulationKind::Transillumination));
    CORVDataset* pDataset = simulated.sequence.getDatasets().at(5);
    EXPECT_TRUE(QFile::exists(pDataset->folderPath() + QStringLiteral("/transmission.tif")));
    EXPECT_EQ(simulated.luminescent(5, ClickKeys::kReferenceRadiance), QString());
    CILImage* pReference = pDataset->getCoreImage(IMAGETYPE_FLUORESCENT_REFERENCE);
    ASSERT_NE(pReference, nullptr);
    // The brightest pixel of the scan has 40,000 counts over the offset, the bed a tenth of that.
    EXPECT_NEAR(pReference->value(0), 300.0 + 4000.0, 400.0);
    EXPECT_GT(pReference->Max(), 10000.0);
    EXPECT_LT(pReference->Max(), 42000.0);
}

TEST(TransilluminationSimulationTest, FluenceFallsWithTheDistanceFromTheSpot)
{
    TissueOptics tissue;
    ASSERT_TRUE(tissue.load(QStringLiteral("Muscle")));
    const double mu = tissue.effectiveAttenuation(700.0);
    EXPECT_NEAR(ScanSpots::fluence(tissue, 3.0, 4.0), std::exp(-5.0 * mu) / 5.0, 1e-15);
    EXPECT_EQ(ScanSpots::fluence(tissue, -2.0, 0.0), ScanSpots::fluence(tissue, 1.0, 0.0));
}

TEST(TemporalSimulationTest, ACourseArrivesIsTakenUpAndCleared)
{
    const TimeCourse course{10.0, 5.0, 50.0};
    EXPECT_EQ(course.at(0.0), 0.0);
    EXPECT_EQ(course.at(10.0), 0.0);
    EXPECT_NEAR(course.at(20.0), std::exp(-0.2) - std::exp(-2.0), 1e-15);
    // Its largest value lies where both slopes agree: ln(50 / 5) / (1 / 5 - 1 / 50) behind the arrival.
    const double top = 10.0 + std::log(10.0) / (0.2 - 0.02);
    EXPECT_GT(course.at(top), course.at(top - 0.1));
    EXPECT_GT(course.at(top), course.at(top + 0.1));
}

TEST(TemporalSimulationTest, TruthHoldsTheOrgansCoursesOverTime)
{
    SimulationOptions options = smallKind(SimulationKind::Temporal);
    options.noise = false;
    options.exposuresSeconds = {2.0};
    Simulated simulated(options);
    EXPECT_TRUE(simulated.sequence.isKyvoSequence());
    EXPECT_TRUE(simulated.sequence.isFluorescence);
    const ReadTruth truth(simulated.path(), DISPLAYUNIT_RADIANT_EFFICIENCY);
    EXPECT_EQ(truth.names, (QStringList{QStringLiteral("TissueAF"), QStringLiteral("Liver"), QStringLiteral("Kidneys"),
                                        QStringLiteral("Tumour")}));
    EXPECT_EQ(truth.pairs.at(3), QStringLiteral("Int1,120"));
    for (std::size_t j = 0; j < 7; ++j) {
        EXPECT_EQ(truth.spectra[0][j], 1.0);
        expectSum(simulated.image(static_cast<int>(j), DISPLAYUNIT_RADIANT_EFFICIENCY), truth, j);
    }
    for (std::size_t k = 0; k < 3; ++k) {
        const TimeCourse course = Kinetics::organs().at(static_cast<int>(k)).course;
        EXPECT_NEAR(truth.spectra[k + 1][2] / truth.spectra[k + 1][5], course.at(61.0) / course.at(481.0), 1e-12);
    }
}

TEST(TemporalSimulationTest, TimesStandInTheImagesUnlessTheyAreLeftOut)
{
    SimulationOptions options = smallKind(SimulationKind::Temporal);
    {
        Simulated simulated(options);
        EXPECT_EQ(simulated.section(2, ClickKeys::kClickNumber, ClickKeys::kKyVoTime), QStringLiteral("60"));
        EXPECT_EQ(simulated.section(2, ClickKeys::kClickNumber, ClickKeys::kKyVoInterval), QStringLiteral("1"));
        double first = 0.0;
        double third = 0.0;
        simulated.sequence.getDatasets().at(0)->getExposureStart(&first);
        simulated.sequence.getDatasets().at(2)->getExposureStart(&third);
        EXPECT_NEAR(third - first, 60.0, 1e-6);
    }
    options.timeKeys = false;
    Simulated simulated(options);
    EXPECT_EQ(simulated.section(2, ClickKeys::kClickNumber, ClickKeys::kKyVoTime), QString());
    EXPECT_TRUE(simulated.sequence.isKyvoSequence());
    EXPECT_EQ(ReadTruth(simulated.path(), DISPLAYUNIT_COUNTS).pairs.at(3), QStringLiteral("Int1,3"));
}

TEST(TemporalSimulationTest, ChosenTimesHaveTwoIntervals)
{
    const QList<double> times = Kinetics::standardTimes();
    EXPECT_EQ(times.size(), 27);
    EXPECT_EQ(times.last(), 3600.0);
    EXPECT_EQ(Kinetics::standardInterval(300.0), 1);
    EXPECT_EQ(Kinetics::standardInterval(600.0), 2);
    SimulationOptions options = smallKind(SimulationKind::Temporal);
    options.timesSeconds.clear();
    Simulated simulated(options);
    EXPECT_EQ(simulated.section(26, ClickKeys::kClickNumber, ClickKeys::kKyVoInterval), QStringLiteral("2"));
}

TEST(TemporalSimulationTest, SeveralTracersHaveAPlaceAndACourseEach)
{
    SimulationOptions options = smallKind(SimulationKind::Temporal);
    options.probes = QStringList{QStringLiteral("AlexaFluor 680"), QStringLiteral("AlexaFluor 700")};
    Simulated simulated(options);
    const ReadTruth truth(simulated.path(), DISPLAYUNIT_COUNTS);
    EXPECT_EQ(truth.names, (QStringList{QStringLiteral("TissueAF"), QStringLiteral("AlexaFluor 680"),
                                        QStringLiteral("AlexaFluor 700")}));
    EXPECT_NE(indexOfMaximum(truth.spectra[1]), indexOfMaximum(truth.spectra[2]));
    EXPECT_NE(indexOfMaximum(truth.maps[1]), indexOfMaximum(truth.maps[2]));
}

TEST(CherenkovSimulationTest, DataAreTheSumOfTheTruthAsTheyStandAndCorrected)
{
    SimulationOptions options = smallKind(SimulationKind::Cherenkov);
    options.noise = false;
    options.depthsMm = {2.0, 5.0};
    Simulated simulated(options);
    QVector<QString> clicks;
    for (CORVDataset* pDataset : simulated.sequence.getDatasets()) {
        clicks.append(pDataset->getClickNumber());
    }
    QVector<double> factors;
    ASSERT_TRUE(simulated.sequence.calculateDecayCorrectFactor_CherenkovData(
        clicks, CORVDatabase::getCherenkovRADHalflife(QStringLiteral("F-18")), factors));
    const auto file = [](const QString& strName) { return truthMapFile(strName); };
    for (const tag_edisplayunit unit : {DISPLAYUNIT_COUNTS, DISPLAYUNIT_RADIANCE}) {
        const ReadTruth truth(simulated.path(), unit);
        const ReadTruth corrected(simulated.path(), truthDecayFolder(unit), file);
        EXPECT_EQ(truth.names, (QStringList{QStringLiteral("TissueAF"), QStringLiteral("F-18 at 2 mm"),
                                            QStringLiteral("F-18 at 5 mm")}));
        for (int j = 0; j < 12; ++j) {
            expectSum(simulated.image(j, unit), truth, static_cast<std::size_t>(j));
            expectSum(simulated.image(j, unit), corrected, static_cast<std::size_t>(j), factors.at(j));
        }
    }
    EXPECT_EQ(foldersOfTruth(simulated.path()),
              (QStringList{QStringLiteral("counts"), QStringLiteral("counts-decay-corrected"),
                           QStringLiteral("radiance"), QStringLiteral("radiance-decay-corrected")}));
}

TEST(CherenkovSimulationTest, ImagesSpreadOverTheHalfLife)
{
    SimulationOptions options = smallKind(SimulationKind::Cherenkov);
    options.isotope = QStringLiteral("ga-68");
    options.spanHalfLives = 1.5;
    Simulated simulated(options);
    QString isotope;
    ASSERT_TRUE(simulated.sequence.isCherenkovIsotopeInData(isotope));
    EXPECT_EQ(isotope, QStringLiteral("Ga-68"));
    EXPECT_EQ(simulated.luminescent(0, ClickKeys::kProbe), QStringLiteral("RAD-Ga-68"));
    EXPECT_FALSE(simulated.sequence.isFluorescence);
    double first = 0.0;
    double last = 0.0;
    simulated.sequence.getDatasets().first()->getExposureStart(&first);
    simulated.sequence.getDatasets().last()->getExposureStart(&last);
    EXPECT_NEAR(last - first, 1.5 * CORVDatabase::getCherenkovRADHalflife(isotope), 0.01);
}

// Exposures end before the next image even for an isotope of two minutes.
TEST(CherenkovSimulationTest, ShortLivedIsotopeGetsShortExposures)
{
    SimulationOptions options = smallKind(SimulationKind::Cherenkov);
    options.isotope = QStringLiteral("O-15");
    EXPECT_EQ(validate(options), QString());
    EXPECT_LT(bandExposureSeconds(options, 0), bandStepSeconds(options));
    options.exposuresSeconds = {60.0};
    EXPECT_TRUE(validate(options).contains(QStringLiteral("longer"))) << qPrintable(validate(options));
}

namespace {

struct Refusal
{
    SimulationKind kind;
    const char* what;
    std::function<void(SimulationOptions&)> change;
    const char* word; // that the answer holds
};

void PrintTo(const Refusal& refusal, std::ostream* pStream)
{
    *pStream << refusal.what;
}

class RefusedKindOptions : public ::testing::TestWithParam<Refusal>
{
};

} // namespace

TEST_P(RefusedKindOptions, AreToldInOneSentence)
{
    SimulationOptions options = SimulationOptions::standard(GetParam().kind);
    GetParam().change(options);
    const QString answer = validate(options);
    EXPECT_TRUE(answer.contains(QString::fromLatin1(GetParam().word), Qt::CaseInsensitive)) << qPrintable(answer);
    EXPECT_FALSE(answer.contains(QLatin1Char('\n')));
}

INSTANTIATE_TEST_SUITE_P(
    All, RefusedKindOptions,
    ::testing::Values(
        Refusal{SimulationKind::Luminescent, "a dye", [](SimulationOptions& o) { o.probes = QStringList{"AF750"}; },
                "no luciferase"},
        Refusal{SimulationKind::Luminescent, "unknown", [](SimulationOptions& o) { o.probes = QStringList{"Firefy"}; },
                "Firefly Luciferase"},
        Refusal{SimulationKind::Transillumination, "no spot", [](SimulationOptions& o) { o.spots = 0; }, "spots"},
        Refusal{SimulationKind::Transillumination, "17 spots", [](SimulationOptions& o) { o.spots = 17; }, "spots"},
        Refusal{SimulationKind::Transillumination, "mixed", [](SimulationOptions& o) { o.mixedBinning = true; },
                "binning"},
        Refusal{SimulationKind::Temporal, "one time", [](SimulationOptions& o) { o.timesSeconds = {0}; }, "times"},
        Refusal{SimulationKind::Temporal, "falling times",
                [](SimulationOptions& o) {
                    o.timesSeconds = {0, 9, 5};
                },
                "ascend"},
        Refusal{SimulationKind::Temporal, "the same second",
                [](SimulationOptions& o) {
                    o.timesSeconds = {0, 5.1, 5.9};
                    o.exposuresSeconds = {0.1};
                },
                "whole second"},
        Refusal{SimulationKind::Temporal, "time NaN",
                [](SimulationOptions& o) {
                    o.timesSeconds = {std::numeric_limits<double>::quiet_NaN(), 9};
                },
                "time"},
        Refusal{SimulationKind::Temporal, "long exposure", [](SimulationOptions& o) { o.exposuresSeconds = {30}; },
                "exposure"},
        Refusal{SimulationKind::Temporal, "two exposures",
                [](SimulationOptions& o) {
                    o.exposuresSeconds = {1, 1};
                },
                "times"},
        Refusal{SimulationKind::Temporal, "two excitations",
                [](SimulationOptions& o) {
                    o.excitationsNm = {600, 700};
                },
                "one excitation"},
        Refusal{SimulationKind::Temporal, "two depths",
                [](SimulationOptions& o) {
                    o.depthsMm = {2, 3};
                },
                "depths"},
        Refusal{SimulationKind::Cherenkov, "no isotope", [](SimulationOptions& o) { o.isotope = "F-19"; }, "Ga-68"},
        Refusal{SimulationKind::Cherenkov, "no light", [](SimulationOptions& o) { o.isotope = "Tc-99m"; }, "Tc-99m"},
        Refusal{SimulationKind::Cherenkov, "undefined", [](SimulationOptions& o) { o.isotope = "Undefined"; },
                "isotope"},
        Refusal{SimulationKind::Cherenkov, "no span", [](SimulationOptions& o) { o.spanHalfLives = 0.0; }, "span"},
        Refusal{SimulationKind::Cherenkov, "a depth twice",
                [](SimulationOptions& o) {
                    o.depthsMm = {2, 2};
                },
                "twice"}));

// In the temporal kind each probe must shine through the one filter.
TEST(TemporalSimulationTest, TracerThatShowsNothingIsNamed)
{
    SimulationOptions options = smallKind(SimulationKind::Temporal);
    options.timesSeconds = {0, 4};
    SimulationFolder folder;
    QString error;
    EXPECT_FALSE(simulate(folder.path(QStringLiteral("seq")), options, {}, &error));
    EXPECT_TRUE(error.contains(QStringLiteral("\"Liver\" gives no light"))) << qPrintable(error);
    EXPECT_TRUE(folder.entries().isEmpty());
}

// A sequence of each kind with everything and one without serve all tests.
class FullSimulationTest : public ::testing::TestWithParam<SimulationKind>
{
protected:
    static Simulated& sequence(bool bFull)
    {
        static std::map<std::pair<SimulationKind, bool>, std::unique_ptr<Simulated>> s_sequences;
        auto& pSequence = s_sequences[{GetParam(), bFull}];
        if (pSequence == nullptr) {
            SimulationOptions options = smallestKind(GetParam());
            options.full = bFull;
            pSequence = std::make_unique<Simulated>(options);
        }
        return *pSequence;
    }
};

TEST_P(FullSimulationTest, HoldsEveryImageOfItsKind)
{
    Simulated& simulated = sequence(true);
    CORVDataset* pFirst = simulated.sequence.getDatasets().first();
    for (const tag_eimagetype type :
         {IMAGETYPE_PHOTOGRAPH, IMAGETYPE_LUMINESCENT, IMAGETYPE_REFERENCE, IMAGETYPE_STRUCTURE, IMAGETYPE_XRAY,
          IMAGETYPE_XRAY_PHOTOGRAPH, IMAGETYPE_MAIN_DATA}) {
        EXPECT_NE(pFirst->getCoreImage(type), nullptr) << "type " << type;
    }
    EXPECT_EQ(pFirst->getCoreImage(IMAGETYPE_FLUORESCENT_REFERENCE) != nullptr, isFluorescent(GetParam()));
    EXPECT_TRUE(simulated.sequence.isSLASequence());
    EXPECT_TRUE(simulated.sequence.isCTSequence(false));
    // Data of its own, with the pixels of the luminescent image.
    EXPECT_TRUE(QFile::exists(pFirst->folderPath() + QStringLiteral("/data.TIF")));
    EXPECT_EQ(pFirst->getCoreImage(IMAGETYPE_MAIN_DATA)->Max(), pFirst->getCoreImage(IMAGETYPE_LUMINESCENT)->Max());
    EXPECT_EQ(pFirst->unitUnavailableReason(DISPLAYUNIT_RADIANCE), QString());
}

TEST_P(FullSimulationTest, HoldsFlagsSectionsAndRegions)
{
    Simulated& simulated = sequence(true);
    CORVDataset* pFirst = simulated.sequence.getDatasets().first();
    EXPECT_TRUE(pFirst->isLuminFlatFieldCorrected());
    EXPECT_FALSE(pFirst->isLuminBackgroundSubtracted());
    EXPECT_EQ(simulated.section(0, "User Input", "Comment"),
              QStringLiteral("first line\nsecond line: 100 % simulated"));
    for (const char* pSection :
         {"User Input", "Analysis User Input", "User Label Name Set", "Graph Controls", "photographic image",
          "reference image", "structure image", "x-ray image", "x-ray photographic image", "main data image"}) {
        EXPECT_NE(pFirst->clickInfo[QString::fromLatin1(pSection)], nullptr) << pSection;
    }
    CROIManager regions;
    regions.readROIData(pFirst->clickInfo);
    EXPECT_TRUE(regions.messages().isEmpty());
    ASSERT_EQ(regions.regions().size(), 4);
    for (int shape = ROISHAPE_RECTANGLE; shape <= ROISHAPE_FREEHAND; ++shape) {
        EXPECT_EQ(regions.regions().at(shape).shape, shape);
    }
}

TEST_P(FullSimulationTest, LeavesTheDataAsTheyAre)
{
    Simulated& plain = sequence(false);
    Simulated& full = sequence(true);
    for (int i = 0; i < plain.sequence.getDatasets().size(); ++i) {
        EXPECT_EQ(plain.image(i, DISPLAYUNIT_RADIANCE), full.image(i, DISPLAYUNIT_RADIANCE)) << i;
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, FullSimulationTest, ::testing::ValuesIn(kKinds));

// The diffuser's image says what the one number does.
TEST(FullReferenceTest, ReferenceImageAgreesWithTheReferenceRadiance)
{
    SimulationOptions options = smallestKind(SimulationKind::Epi);
    options.noise = false;
    Simulated plain(options);
    options.full = true;
    Simulated full(options);
    const std::vector<double> expected = plain.image(1, DISPLAYUNIT_EFFICIENCY);
    const std::vector<double> found = full.image(1, DISPLAYUNIT_EFFICIENCY);
    for (std::size_t i = 0; i < expected.size(); ++i) {
        ASSERT_NEAR(found[i], expected[i], 1e-6 * expected[i]);
    }
}
