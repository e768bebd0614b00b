// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/simulator/OptionCheck.h"
#include "workbench/simulator/simulate.h"

#include "XTNT/xtnt_parallel.h"
#include "platform/orvapi/ClickInfoKeys.h"
#include "workbench/simulator/simulated_sequence.h"

#include <array>
#include <cfloat>
#include <cmath>
#include <stdexcept>

namespace {

constexpr tag_edisplayunit kUnits[] = {DISPLAYUNIT_COUNTS, DISPLAYUNIT_RADIANCE, DISPLAYUNIT_RADIANT_EFFICIENCY,
                                       DISPLAYUNIT_EFFICIENCY};

QString luminescentText(CORVDataset* pDataset, const char* pKey)
{
    QString text;
    pDataset->clickInfo[QString::fromLatin1(ClickKeys::kLuminescentImage)]->getValue(QString::fromLatin1(pKey), &text);
    return text;
}

double correlation(const std::vector<double>& a, const std::vector<double>& b)
{
    const auto n = static_cast<double>(a.size());
    double meanA = 0.0;
    double meanB = 0.0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        meanA += a[i] / n;
        meanB += b[i] / n;
    }
    double ab = 0.0;
    double aa = 0.0;
    double bb = 0.0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        ab += (a[i] - meanA) * (b[i] - meanB);
        aa += (a[i] - meanA) * (a[i] - meanA);
        bb += (b[i] - meanB) * (b[i] - meanB);
    }
    return ab / std::sqrt(aa * bb);
}

// The solution of a small system by Gauss' elimination with pivots.
std::vector<double> solveSmall(std::vector<std::vector<double>> a, std::vector<double> b)
{
    const std::size_t n = b.size();
    for (std::size_t i = 0; i < n; ++i) {
        std::size_t pivot = i;
        for (std::size_t row = i + 1; row < n; ++row) {
            if (std::fabs(a[row][i]) > std::fabs(a[pivot][i])) {
                pivot = row;
            }
        }
        std::swap(a[i], a[pivot]);
        std::swap(b[i], b[pivot]);
        for (std::size_t row = i + 1; row < n; ++row) {
            const double factor = a[row][i] / a[i][i];
            for (std::size_t column = i; column < n; ++column) {
                a[row][column] -= factor * a[i][column];
            }
            b[row] -= factor * b[i];
        }
    }
    for (std::size_t i = n; i-- > 0;) {
        for (std::size_t column = i + 1; column < n; ++column) {
            b[i] -= a[i][column] * b[column];
        }
        b[i] /= a[i][i];
    }
    return b;
}

// Maps by least squares with the spectra given, from images in one unit.
std::vector<std::vector<double>> fitMaps(const std::vector<std::vector<double>>& images, const ReadTruth& truth)
{
    const std::size_t count = truth.spectra.size();
    std::vector<std::vector<double>> gram(count, std::vector<double>(count, 0.0));
    for (std::size_t a = 0; a < count; ++a) {
        for (std::size_t b = 0; b < count; ++b) {
            for (std::size_t j = 0; j < images.size(); ++j) {
                gram[a][b] += truth.spectra[a][j] * truth.spectra[b][j];
            }
        }
    }
    std::vector<std::vector<double>> maps(count, std::vector<double>(images.front().size()));
    for (std::size_t i = 0; i < images.front().size(); ++i) {
        std::vector<double> right(count, 0.0);
        for (std::size_t a = 0; a < count; ++a) {
            for (std::size_t j = 0; j < images.size(); ++j) {
                right[a] += truth.spectra[a][j] * images[j][i];
            }
        }
        const std::vector<double> solution = solveSmall(gram, right);
        for (std::size_t a = 0; a < count; ++a) {
            maps[a][i] = solution[a];
        }
    }
    return maps;
}

std::vector<std::vector<double>> readImages(CORVSequenceDataset& sequence, tag_edisplayunit eUnit)
{
    std::vector<std::vector<double>> images;
    for (CORVDataset* pDataset : sequence.getDatasets()) {
        CILImage image;
        EXPECT_EQ(pDataset->getCalibratedLuminImage(eUnit, &image, QStringLiteral("test")), ESTATUS_SUCCESS);
        std::vector<double> pixels(image.pixelCount());
        for (std::size_t i = 0; i < pixels.size(); ++i) {
            pixels[i] = image.value(i);
        }
        images.push_back(pixels);
    }
    return images;
}

} // namespace

// One noise-free sequence serves the tests that only look.
class ExactSimulationTest : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        s_pFolder = new SimulationFolder;
        SimulationOptions options;
        options.size = 64;
        options.noise = false;
        options.gain = 2.0;
        options.exposuresSeconds.clear();
        for (int i = 0; i < options.bands; ++i) {
            options.exposuresSeconds.append(0.5 + 0.25 * (i % 4));
        }
        mustSimulate(s_pFolder->path(QStringLiteral("exact")), options);
        s_pSequence = new CORVSequenceDataset;
        QString error;
        QStringList warnings;
        ASSERT_EQ(s_pSequence->open(path(), &error, &warnings), ESTATUS_SUCCESS) << qPrintable(error);
        EXPECT_TRUE(warnings.isEmpty()) << qPrintable(warnings.join(QLatin1Char('\n')));
    }
    static void TearDownTestSuite()
    {
        delete s_pSequence;
        delete s_pFolder;
    }
    static QString path() { return s_pFolder->path(QStringLiteral("exact")); }

    static SimulationFolder* s_pFolder;
    static CORVSequenceDataset* s_pSequence;
};

SimulationFolder* ExactSimulationTest::s_pFolder = nullptr;
CORVSequenceDataset* ExactSimulationTest::s_pSequence = nullptr;

TEST_F(ExactSimulationTest, DataAreTheSumOfTrueMapsTimesTrueSpectraInEveryUnit)
{
    for (const tag_edisplayunit unit : kUnits) {
        const ReadTruth truth(path(), unit);
        ASSERT_EQ(truth.names.size(), 4);
        const auto images = readImages(*s_pSequence, unit);
        ASSERT_EQ(images.size(), truth.spectra.front().size());
        for (std::size_t j = 0; j < images.size(); ++j) {
            for (std::size_t i = 0; i < images[j].size(); ++i) {
                double sum = 0.0;
                for (std::size_t k = 0; k < truth.maps.size(); ++k) {
                    sum += truth.maps[k][i] * truth.spectra[k][j];
                }
                // The stored image, the converted image and each map are rounded to floats once.
                ASSERT_NEAR(images[j][i], sum, 2.0 * static_cast<double>(FLT_EPSILON) * sum)
                    << "unit " << unit << " band " << j << " pixel " << i;
            }
        }
    }
}

TEST_F(ExactSimulationTest, TrueSpectraHaveMaximumOneAndTheSequencesPairs)
{
    for (const tag_edisplayunit unit : kUnits) {
        const ReadTruth truth(path(), unit);
        for (const auto& spectrum : truth.spectra) {
            EXPECT_EQ(*std::max_element(spectrum.begin(), spectrum.end()), 1.0);
            EXPECT_GE(*std::min_element(spectrum.begin(), spectrum.end()), 0.0);
        }
        ASSERT_EQ(truth.pairs.size(), s_pSequence->getDatasets().size());
        for (int j = 0; j < truth.pairs.size(); ++j) {
            CORVDataset* pDataset = s_pSequence->getDatasets().at(j);
            EXPECT_EQ(truth.pairs.at(j) + QStringLiteral("nm"),
                      pDataset->getExcitationFilter().remove(QStringLiteral("nm")) + QLatin1Char(',') +
                          pDataset->getEmissionFilter());
        }
    }
}

TEST_F(ExactSimulationTest, BrightestPixelHoldsTheElectronsAskedFor)
{
    double top = 0.0;
    for (const auto& image : readImages(*s_pSequence, DISPLAYUNIT_COUNTS)) {
        top = std::max(top, image[indexOfMaximum(image)]);
    }
    EXPECT_NEAR(top, 20000.0 / 2.0, 1e-6 * 10000.0); // two electrons a count
}

TEST_F(ExactSimulationTest, ProbesPeakAtThreeTimesTheAutofluorescenceBeneath)
{
    const ReadTruth truth(path(), DISPLAYUNIT_COUNTS);
    for (std::size_t k = 1; k < truth.maps.size(); ++k) {
        const std::size_t pixel = indexOfMaximum(truth.maps[k]);
        const std::size_t band = indexOfMaximum(truth.spectra[k]);
        const double beneath = truth.maps[0][pixel] * truth.spectra[0][band];
        EXPECT_NEAR(truth.maps[k][pixel] / beneath, k == 1 ? 1.5 : 3.0, 1e-5) << qPrintable(truth.names.at(int(k)));
    }
}

TEST_F(ExactSimulationTest, SequenceTellsWhatItIs)
{
    EXPECT_TRUE(s_pSequence->isFluorescence);
    EXPECT_FALSE(s_pSequence->isTransillumination);
    EXPECT_FALSE(s_pSequence->isKyvoSequence());
    double last = -1.0;
    for (CORVDataset* pDataset : s_pSequence->getDatasets()) {
        EXPECT_EQ(luminescentText(pDataset, ClickKeys::kProbe), QStringLiteral("AF750, AF790"));
        EXPECT_EQ(luminescentText(pDataset, ClickKeys::kSubjectType), QStringLiteral("Mouse"));
        EXPECT_EQ(pDataset->getBinningForImage(IMAGETYPE_MAIN_DATA), 4.0F);
        double start = 0.0;
        ASSERT_TRUE(pDataset->getExposureStart(&start));
        EXPECT_GT(start, last);
        last = start;
        CILImage* pImage = pDataset->getCoreImage(IMAGETYPE_MAIN_DATA);
        ASSERT_NE(pImage, nullptr);
        EXPECT_EQ(pImage->dataType(), ORVTYPE_FLOAT);
    }
    CILImage* pPhotograph = s_pSequence->getDatasets().first()->getCoreImage(IMAGETYPE_PHOTOGRAPH);
    ASSERT_NE(pPhotograph, nullptr);
    EXPECT_EQ(pPhotograph->m_lWidth, 256);
    EXPECT_EQ(pPhotograph->m_fBinning, 1.0F); // the same field as the images
}

TEST(SimulateTest, SameSeedGivesTheSameBytesWithAnyNumberOfThreads)
{
    SimulationFolder a;
    SimulationFolder b;
    XTNT::setThreadCount(1);
    mustSimulate(a.path(QStringLiteral("seq")), smallOptions());
    XTNT::setThreadCount(3);
    mustSimulate(b.path(QStringLiteral("seq")), smallOptions());
    XTNT::setThreadCount(0);
    const auto first = allFiles(a.path(QStringLiteral("seq")));
    const auto second = allFiles(b.path(QStringLiteral("seq")));
    ASSERT_EQ(first.size(), second.size());
    ASSERT_GT(first.size(), 30);
    for (int i = 0; i < first.size(); ++i) {
        EXPECT_EQ(first.at(i).first, second.at(i).first);
        EXPECT_TRUE(first.at(i).second == second.at(i).second) << qPrintable(first.at(i).first);
    }
}

TEST(SimulateTest, OtherSeedGivesOtherImagesAndClickNumbers)
{
    SimulationFolder folder;
    SimulationOptions options = smallOptions();
    mustSimulate(folder.path(QStringLiteral("a")), options);
    options.seed = 2;
    mustSimulate(folder.path(QStringLiteral("b")), options);
    CORVSequenceDataset a;
    CORVSequenceDataset b;
    ASSERT_EQ(a.open(folder.path(QStringLiteral("a"))), ESTATUS_SUCCESS);
    ASSERT_EQ(b.open(folder.path(QStringLiteral("b"))), ESTATUS_SUCCESS);
    EXPECT_NE(a.getDatasets().first()->getClickNumber(), b.getDatasets().first()->getClickNumber());
    EXPECT_NE(readImages(a, DISPLAYUNIT_COUNTS), readImages(b, DISPLAYUNIT_COUNTS));
}

TEST(SimulateTest, DefaultNoiseLeavesTheProbesToBeFound)
{
    SimulationFolder folder;
    SimulationOptions options;
    options.size = 128;
    const QString path = folder.path(QStringLiteral("noisy"));
    mustSimulate(path, options);
    CORVSequenceDataset sequence;
    ASSERT_EQ(sequence.open(path), ESTATUS_SUCCESS);
    for (const tag_edisplayunit unit : {DISPLAYUNIT_COUNTS, DISPLAYUNIT_RADIANT_EFFICIENCY}) {
        const ReadTruth truth(path, unit);
        const auto maps = fitMaps(readImages(sequence, unit), truth);
        for (std::size_t k = 0; k < maps.size(); ++k) {
            EXPECT_GT(correlation(maps[k], truth.maps[k]), 0.95)
                << qPrintable(truth.names.at(int(k))) << " unit " << unit;
        }
    }
}

TEST(SimulateTest, NoisyImagesAreSixteenBitWithTheOffset)
{
    SimulationFolder folder;
    mustSimulate(folder.path(QStringLiteral("noisy")), smallOptions());
    CORVSequenceDataset sequence;
    ASSERT_EQ(sequence.open(folder.path(QStringLiteral("noisy"))), ESTATUS_SUCCESS);
    CILImage* pImage = sequence.getDatasets().first()->getCoreImage(IMAGETYPE_MAIN_DATA);
    ASSERT_NE(pImage, nullptr);
    EXPECT_EQ(pImage->dataType(), ORVTYPE_USHORT);
    EXPECT_NEAR(pImage->value(0), 300.0, 60.0); // a dark corner: offset and six times the read noise
    CILImage counts;
    ASSERT_EQ(sequence.getDatasets().first()->getCalibratedLuminImage(DISPLAYUNIT_COUNTS, &counts, QString()),
              ESTATUS_SUCCESS);
    EXPECT_NEAR(counts.value(0), pImage->value(0) - 300.0, 1e-6);
}

TEST(SimulateTest, MixedBinningGathersFourPixelsIntoOneAndKeepsTheRadiance)
{
    SimulationFolder folder;
    SimulationOptions options;
    options.size = 64;
    options.mixedBinning = true;
    const QString path = folder.path(QStringLiteral("mixed"));
    mustSimulate(path, options);
    CORVSequenceDataset sequence;
    ASSERT_EQ(sequence.open(path), ESTATUS_SUCCESS);
    const ReadTruth truth(path, DISPLAYUNIT_RADIANCE);
    const auto images = readImages(sequence, DISPLAYUNIT_RADIANCE);
    for (std::size_t j = 0; j < images.size(); ++j) {
        const std::size_t pixels = j < 2 ? 32 * 32 : 64 * 64;
        ASSERT_EQ(images[j].size(), pixels);
        EXPECT_EQ(sequence.getDatasets().at(static_cast<int>(j))->getBinningForImage(IMAGETYPE_MAIN_DATA),
                  j < 2 ? 8.0F : 4.0F);
        double mean = 0.0;
        for (const double value : images[j]) {
            mean += value / static_cast<double>(pixels);
        }
        double expected = 0.0;
        for (std::size_t k = 0; k < truth.maps.size(); ++k) {
            for (const double value : truth.maps[k]) {
                expected += value * truth.spectra[k][j] / static_cast<double>(64 * 64);
            }
        }
        EXPECT_NEAR(mean, expected, 0.01 * expected); // noise of the mean is a few parts in a thousand
    }
}

class SimulateSizes : public ::testing::TestWithParam<int>
{
};

TEST_P(SimulateSizes, AreWritten)
{
    SimulationFolder folder;
    SimulationOptions options = smallOptions();
    options.size = GetParam();
    options.bands = 2;
    options.binning = 3;
    mustSimulate(folder.path(QStringLiteral("seq")), options);
    CORVSequenceDataset sequence;
    ASSERT_EQ(sequence.open(folder.path(QStringLiteral("seq"))), ESTATUS_SUCCESS);
    ASSERT_EQ(sequence.getDatasets().size(), 2);
    for (const auto& image : readImages(sequence, DISPLAYUNIT_COUNTS)) {
        EXPECT_EQ(image.size(), static_cast<std::size_t>(options.size * options.size));
    }
}

INSTANTIATE_TEST_SUITE_P(SmallestAndOdd, SimulateSizes, ::testing::Values(16, 17, 45, 101));

TEST(SimulateTest, StoppingAtAnyMomentLeavesNothing)
{
    SimulationFolder folder;
    int calls = 0;
    for (int stopAt = 1;; ++stopAt) {
        calls = 0;
        QString error = QStringLiteral("old");
        const bool done = simulate(
            folder.path(QStringLiteral("seq")), smallOptions(),
            [&](double fraction, const QString& message) {
                EXPECT_GE(fraction, 0.0);
                EXPECT_LE(fraction, 1.0);
                EXPECT_FALSE(message.isEmpty());
                return ++calls < stopAt;
            },
            &error);
        EXPECT_TRUE(error.isEmpty()) << qPrintable(error);
        if (done) {
            break;
        }
        EXPECT_TRUE(folder.entries().isEmpty()) << qPrintable(folder.entries().join(QLatin1Char(' ')));
    }
    EXPECT_GE(calls, 12);
    EXPECT_EQ(folder.entries(), QStringList(QStringLiteral("seq")));
}

TEST(SimulateTest, ExistingSequenceIsKeptUnlessForced)
{
    SimulationFolder folder;
    const QString path = folder.path(QStringLiteral("seq"));
    SimulationOptions options = smallOptions();
    mustSimulate(path, options);
    const auto before = allFiles(path);
    options.seed = 5;
    QString error;
    EXPECT_FALSE(simulate(path, options, {}, &error));
    EXPECT_TRUE(error.contains(path)) << qPrintable(error);
    EXPECT_EQ(allFiles(path), before);
    options.force = true;
    mustSimulate(path, options);
    EXPECT_NE(allFiles(path), before);
    EXPECT_EQ(folder.entries(), QStringList(QStringLiteral("seq")));
}

TEST(SimulateTest, BadOptionsAndBadTargetsAreRefusedInWords)
{
    SimulationFolder folder;
    SimulationOptions options = smallOptions();
    options.bands = 1;
    QString error;
    EXPECT_FALSE(simulate(folder.path(QStringLiteral("seq")), options, {}, &error));
    EXPECT_EQ(error, validate(options));
    EXPECT_FALSE(simulate(folder.path(QStringLiteral("no/such/seq")), smallOptions(), {}, &error));
    EXPECT_FALSE(error.isEmpty());
    EXPECT_FALSE(simulate(folder.path(QStringLiteral("no/such/seq")), smallOptions(), {}, nullptr));
    EXPECT_TRUE(folder.entries().isEmpty());
}

TEST(SimulateTest, ProbeThatTheFiltersMissIsNamed)
{
    SimulationFolder folder;
    SimulationOptions options = smallOptions();
    options.probes = QStringList{QStringLiteral("EGFP")};
    options.excitationsNm = {800};
    options.bands = 3;
    QString error;
    EXPECT_FALSE(simulate(folder.path(QStringLiteral("seq")), options, {}, &error));
    EXPECT_TRUE(error.contains(QStringLiteral("EGFP"))) << qPrintable(error);
    EXPECT_TRUE(folder.entries().isEmpty());
}

TEST(SimulateTest, FoodThatTheFiltersMissIsLeftOut)
{
    SimulationFolder folder;
    SimulationOptions options = smallOptions();
    options.probes = QStringList{QStringLiteral("ICG")};
    options.excitationsNm = {780};
    options.bands = 4;
    mustSimulate(folder.path(QStringLiteral("seq")), options);
    const ReadTruth truth(folder.path(QStringLiteral("seq")), DISPLAYUNIT_COUNTS);
    EXPECT_EQ(truth.names, (QStringList{QStringLiteral("TissueAF"), QStringLiteral("ICG")}));
}

TEST(SimulateTest, WorkThatIsToEndGoesNotOnToTheLastMapOfTheTruth)
{
    SimulationFolder folder;
    QString doing;
    const auto progress = [&doing](double, const QString& strMessage) {
        doing = strMessage;
        return true;
    };
    const XTNT::CancellationCheck check([&doing] {
        if (doing == QStringLiteral("writing the truth")) {
            throw std::runtime_error("ended");
        }
    });
    EXPECT_THROW(simulate(folder.path(QStringLiteral("seq")), smallOptions(), progress, nullptr), std::runtime_error);
    EXPECT_TRUE(folder.entries().isEmpty());
}
