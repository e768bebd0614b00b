// SPDX-License-Identifier: GPL-3.0-or-later
// The answer of a run by number of imported images: refined, brought back, saved and loaded.
#include "WorkArea.h"

#include "host/CILImage.h"
#include "platform/orvutils/ProcessControl.h"
#include "services/results/keptWarnings.h"
#include "spectra/SpectrumPlotParams.h"

#include "support/cosine.h"

#include <QFile>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <array>

using namespace workarea;

namespace {

constexpr int images = 6;
const std::array<std::array<double, images>, 2> stains = {
    {{0.7, 1.0, 0.8, 0.5, 0.3, 0.1}, {0.2, 0.4, 0.7, 1.0, 0.9, 0.6}}};

double amount(int nSource, int nPixel)
{
    const double x = nPixel % side - (nSource == 0 ? 5.0 : 10.0);
    const double y = nPixel / side - 7.5; // NOLINT(bugprone-integer-division): a row
    return std::max(0.0, 1.0 - (x * x + y * y) / 36.0);
}

// Two round stains that overlap.
float stainedLight(int nImage, int nPixel)
{
    const auto b = static_cast<std::size_t>(nImage);
    return static_cast<float>(400.0 * (amount(0, nPixel) * stains[0][b] + amount(1, nPixel) * stains[1][b]));
}

Plan stainedPlan()
{
    Plan plan;
    plan.probe = QString(); // nobody says what is in them
    plan.imported = true;
    plan.light = stainedLight;
    return plan;
}

class AnswerByNumberTest : public WorkAreaTest
{
protected:
    bool isOffered() const { return !m_palette->m_pRefineButton->isHidden(); }
    std::string offer() const { return m_palette->m_pRefineButton->text().toStdString(); }
    void refine() { m_palette->m_pRefineButton->click(); }
    QString property(const QString& strKey)
    {
        for (const auto& each : qAsConst(engine().m_properties)) {
            if (each.first == strKey) {
                return each.second;
            }
        }
        return QString();
    }
    std::vector<double> spectra()
    {
        const XTNT::Vector<double>& all = engine().m_spectra.storage;
        return {all.data, all.data + all.n_};
    }
    // The values of the rows of the list on screen.
    std::vector<double> shownSpectra()
    {
        std::vector<double> values;
        for (const SpectrumPlotParams* pRow : console().getSpectra()) {
            const XTNT::Vector<double> row = pRow->values();
            values.insert(values.end(), row.data, row.data + row.n_);
        }
        return values;
    }
    // The lowest cosine of the stains' spectra, in their order, with those of the answer.
    double likeness()
    {
        double worst = 1.0;
        for (std::size_t k = 0; k < stains.size(); ++k) {
            worst = std::min(
                worst, testsupport::cosine(engine().m_spectra[static_cast<long long>(k)], stains[k].data(), images));
        }
        return worst;
    }
    // Does that as the palette locks itself for the refinement.
    void meanwhile(const std::function<void()>& work)
    {
        QObject::connect(m_palette.get(), &CORVSpumKyvoPalette::restoreWindows, m_palette.get(), [work](bool bBack) {
            if (!bBack) {
                work();
            }
        });
    }
};

TEST_F(AnswerByNumberTest, IsRefinedNearerToTheTruth)
{
    open(stainedPlan());
    EXPECT_FALSE(isOffered());
    unmixAutomatically();
    ASSERT_EQ(engine().m_concentrations.num_rows(), 2);
    EXPECT_TRUE(isOffered());
    EXPECT_EQ(offer(), "Refine Spectra");
    const double first = likeness();
    const std::vector<double> before = concentrations();
    refine();
    EXPECT_EQ(m_answers.asked.size(), 0);
    EXPECT_EQ(complaints(), "");
    EXPECT_NE(concentrations(), before);
    EXPECT_GT(likeness(), 0.999);
    EXPECT_LT(1.0 - likeness(), 0.1 * (1.0 - first));
    EXPECT_TRUE(property("Refinement").startsWith("resolved again from the purest pixels in "));
    EXPECT_EQ(property("Method"), "Automatic");
    EXPECT_EQ(shownSpectra(), spectra());
    EXPECT_EQ(resultItems().size(), engine().m_properties.size());
    EXPECT_TRUE(resultItems().contains("Refinement"));
    EXPECT_EQ(engine().m_runFacts.iterations, 0) << "those of the first answer";
    EXPECT_EQ(offer(), "Back to First Answer");
    EXPECT_TRUE(m_palette->m_pSaveButton->isEnabled());
    EXPECT_TRUE(m_palette->isEnabled());
    EXPECT_EQ(processes(), 0);
}

TEST_F(AnswerByNumberTest, TheFirstOneComesBackToTheBit)
{
    open(stainedPlan());
    unmixAutomatically();
    const std::vector<double> maps = concentrations();
    const std::vector<double> firstSpectra = spectra();
    const auto properties = engine().m_properties;
    const int nIterations = engine().m_runFacts.iterations;
    refine();
    ASSERT_NE(concentrations(), maps);
    refine();
    EXPECT_EQ(concentrations(), maps);
    EXPECT_EQ(spectra(), firstSpectra);
    EXPECT_EQ(shownSpectra(), firstSpectra);
    EXPECT_TRUE(engine().m_properties == properties);
    EXPECT_EQ(engine().m_runFacts.iterations, nIterations);
    EXPECT_EQ(offer(), "Refine Spectra");
    refine();
    EXPECT_GT(likeness(), 0.999);
    EXPECT_EQ(m_answers.asked.size(), 0);
}

TEST_F(AnswerByNumberTest, IsOfferedOfACourseInTime)
{
    Plan plan = stainedPlan();
    plan.temporal = true;
    plan.times = QStringList{"0", "10", "20", "30", "40", "50"};
    open(plan);
    unmixAutomatically();
    ASSERT_FALSE(engine().hasError());
    EXPECT_TRUE(isOffered());
}

struct Refused
{
    const char* name;
    std::function<void(Plan&)> change;
};

std::ostream& operator<<(std::ostream& out, const Refused& refused)
{
    return out << refused.name;
}

class RefusedTest : public AnswerByNumberTest, public ::testing::WithParamInterface<Refused>
{
};

TEST_P(RefusedTest, IsNotOffered)
{
    Plan plan = stainedPlan();
    GetParam().change(plan);
    open(plan);
    unmixAutomatically();
    ASSERT_FALSE(engine().hasError());
    ASSERT_GT(engine().m_concentrations.num_rows(), 0);
    EXPECT_FALSE(isOffered());
}

INSTANTIATE_TEST_SUITE_P(Sequences, RefusedTest,
                         ::testing::Values(Refused{"animal", [](Plan& plan) { plan.imported = false; }},
                                           Refused{"named",
                                                   [](Plan& plan) {
                                                       plan.probe = "ICG";
                                                       plan.light = nullptr;
                                                   }},
                                           Refused{"scan", [](Plan& plan) { plan.scan = true; }},
                                           Refused{"decaying",
                                                   [](Plan& plan) {
                                                       plan.isotope = "F-18";
                                                       plan.fluorescence = false;
                                                   }}),
                         [](const auto& each) { return std::string(each.param.name); });

TEST_F(AnswerByNumberTest, KnownSpectraAreNotRefined)
{
    open(stainedPlan());
    unmixAutomatically();
    ASSERT_TRUE(isOffered());
    // As "Unmix" in the console does.
    engine().onClickDrawingFinished(1);
    ASSERT_EQ(engine().m_eMode, RUNMODE_MANUAL);
    EXPECT_FALSE(engine().hasError());
    EXPECT_FALSE(isOffered());
}

TEST_F(AnswerByNumberTest, NothingButTheAbortIsWithinReachMeanwhile)
{
    open(stainedPlan());
    unmixAutomatically();
    const std::vector<double> first = concentrations();
    QSignalSpy windows(m_palette.get(), &CORVSpumKyvoPalette::restoreWindows);
    bool bEnabled = true;
    bool bAbortable = false;
    meanwhile([&] {
        bEnabled = m_palette->isEnabled();
        bAbortable = orv::processState().m_bCanAbort;
        m_palette->onRunUnmixing();
        m_palette->onClickUnmixSpectra();
        m_palette->m_pReportButton->click();
        refine();
        EXPECT_EQ(concentrations(), first);
    });
    refine();
    EXPECT_FALSE(bEnabled);
    EXPECT_TRUE(bAbortable);
    ASSERT_GE(windows.size(), 2);
    EXPECT_FALSE(windows.first().at(0).toBool());
    EXPECT_TRUE(windows.last().at(0).toBool());
    EXPECT_EQ(m_answers.asked.size(), 0);
    EXPECT_EQ(offer(), "Back to First Answer");
}

TEST_F(AnswerByNumberTest, AnAbortKeepsTheFirstOne)
{
    open(stainedPlan());
    unmixAutomatically();
    const std::vector<double> maps = concentrations();
    const auto properties = engine().m_properties;
    meanwhile([] { orv::requestAbort(); });
    refine();
    EXPECT_TRUE(m_log.mentions("The refinement was aborted, and the result is as it was."));
    EXPECT_EQ(m_answers.asked.size(), 0);
    EXPECT_EQ(concentrations(), maps);
    EXPECT_TRUE(engine().m_properties == properties);
    EXPECT_EQ(resultItems().size(), properties.size());
    EXPECT_EQ(offer(), "Refine Spectra");
    EXPECT_TRUE(isOffered());
    EXPECT_TRUE(m_palette->isEnabled());
    EXPECT_EQ(processes(), 0);
}

TEST_F(AnswerByNumberTest, WhatCannotBeRefinedStaysAndSaysWhy)
{
    open(stainedPlan());
    unmixAutomatically();
    const std::vector<double> maps = concentrations();
    // Images of a single source.
    XTNT::Matrix<double>& data = engine().m_cube.m_data;
    for (long long p = 0; p < data.num_rows(); ++p) {
        for (long long b = 0; b < data.num_cols(); ++b) {
            data[p][b] = static_cast<double>((p + 1) * (b + 1));
        }
    }
    refine();
    ASSERT_EQ(m_answers.asked.size(), 1);
    EXPECT_TRUE(m_answers.texts().first().startsWith("The spectra cannot be refined: "))
        << m_answers.texts().first().toStdString();
    EXPECT_TRUE(m_answers.texts().first().endsWith(". The result stays as it is."));
    EXPECT_EQ(concentrations(), maps);
    EXPECT_EQ(offer(), "Refine Spectra");
    EXPECT_EQ(processes(), 0);
}

TEST_F(AnswerByNumberTest, NamesAndColoursOfTheRowsStay)
{
    open(stainedPlan());
    unmixAutomatically();
    SpectrumPlotParams* pRow = console().getSpectra().first();
    SpectrumSettings settings = pRow->settings;
    settings.name = "tubulin";
    settings.color = "magenta";
    pRow->applySettings(settings);
    refine();
    EXPECT_EQ(console().getSpectra().first()->settings.name, "tubulin");
    EXPECT_EQ(console().getSpectra().first()->settings.color, "magenta");
    EXPECT_EQ(engine().m_spectrumPlots.first()->settings.name, "tubulin");
}

TEST_F(AnswerByNumberTest, ASequenceThatClosesMeanwhileTakesTheEngineAlong)
{
    auto& opened = open(stainedPlan());
    unmixAutomatically();
    const QPointer<CORVSpumKyvo> pEngine(&engine());
    meanwhile([&] { QTimer::singleShot(0, m_palette.get(), [&] { close(opened); }); });
    refine();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(pEngine.isNull());
    EXPECT_EQ(m_palette->engine(), nullptr);
    EXPECT_FALSE(isOffered());
    EXPECT_EQ(processes(), 0);
}

TEST_F(AnswerByNumberTest, ASequenceThatIsAnnouncedMeanwhileBecomesCurrentAfterwards)
{
    auto& first = open(stainedPlan());
    unmixAutomatically();
    m_answers.answer = CORVMessageBox::NoButtonAnswer;
    bool bOpened = false;
    meanwhile([&] {
        if (!std::exchange(bOpened, true)) {
            open(otherPlan());
        }
    });
    refine();
    EXPECT_EQ(engine().m_strSeqId, "seq-B");
    EXPECT_FALSE(isOffered());
    m_palette->onSequenceChanged(&first.sequence());
    EXPECT_GT(likeness(), 0.999);
    EXPECT_TRUE(isOffered());
    EXPECT_EQ(offer(), "Back to First Answer");
}

TEST_F(AnswerByNumberTest, ANewRunIsOfferedAnewAndItsOldAnswersAreGone)
{
    open(stainedPlan());
    unmixAutomatically();
    const std::vector<double> maps = concentrations();
    refine();
    m_answers.answer = CORVMessageBox::NoButtonAnswer;
    start("Automatic");
    EXPECT_FALSE(isOffered());
    run();
    EXPECT_EQ(concentrations(), maps);
    EXPECT_EQ(property("Refinement"), "");
    EXPECT_EQ(offer(), "Refine Spectra");
}

// What the camera adds to every pixel stays in the images, as a saved result knows nothing of it.
TEST_F(AnswerByNumberTest, AnOffsetStaysInTheImages)
{
    Plan plan = stainedPlan();
    plan.light = [](int nImage, int nPixel) { return 300.0F + stainedLight(nImage, nPixel); };
    plan.counts = true;
    open(plan);
    start("Automatic");
    CILImage& mask = *wizard().m_pMaskImage;
    std::fill_n(mask.bytes(), mask.pixelCount(), static_cast<unsigned char>(1));
    run();
    ASSERT_EQ(engine().m_cube.m_data.num_rows(), side * side);
    EXPECT_TRUE(codesOf(warningsAmong(engine().m_properties)).contains("offset"));
    const double before = engine().m_cube.m_data[0][0];
    const double first = likeness();
    refine();
    EXPECT_EQ(offer(), "Back to First Answer");
    EXPECT_EQ(engine().m_cube.m_data[0][0], before);
    EXPECT_FALSE(property("Refinement").contains("offset"));
    EXPECT_TRUE(codesOf(warningsAmong(engine().m_properties)).contains("offset"));
    EXPECT_GT(likeness(), first);
}

class SavedAnswerTest : public AnswerByNumberTest
{
protected:
    void SetUp() override
    {
        Plan plan = stainedPlan();
        plan.folder = m_folder.filePath("cells");
        open(plan);
        unmixAutomatically();
    }
    void save(const QString& strName)
    {
        m_palette->m_pSavedResultsCB->setEditText(strName);
        m_palette->m_pSaveButton->click();
    }
    void load(const QString& strName)
    {
        m_palette->m_pSavedResultsCB->setEditText(strName);
        m_palette->m_pLoadButton->click();
    }

    QTemporaryDir m_folder;
};

TEST_F(SavedAnswerTest, ALoadShowsTheSameToTheBit)
{
    refine();
    const std::vector<double> maps = concentrations();
    const std::vector<double> refinedSpectra = spectra();
    const auto properties = engine().m_properties;
    save("refined");
    m_answers.answer = CORVMessageBox::NoButtonAnswer;
    start("Automatic");
    run();
    ASSERT_NE(concentrations(), maps);
    load("refined");
    EXPECT_EQ(concentrations(), maps);
    EXPECT_EQ(spectra(), refinedSpectra);
    EXPECT_EQ(shownSpectra(), refinedSpectra);
    EXPECT_TRUE(engine().m_properties == properties) << resultItems().join(' ').toStdString();
    EXPECT_TRUE(resultItems().contains("Refinement"));
    EXPECT_FALSE(isOffered()) << "nothing is known of how it came about";
    EXPECT_EQ(complaints(), "");
}

TEST_F(SavedAnswerTest, BothAnswersCanBeSaved)
{
    save("first");
    refine();
    EXPECT_EQ(m_palette->m_pSavedResultsCB->currentText().right(5), "(new)");
    waitForNextSecond();
    save("second");
    load("first");
    EXPECT_EQ(property("Refinement"), "");
    load("second");
    EXPECT_NE(property("Refinement"), "");
    EXPECT_EQ(m_answers.asked.size(), 0);
}

TEST_F(SavedAnswerTest, TheReportTellsOfTheRefinementAndNotOfTheRunBefore)
{
    refine();
    m_answers.files = QStringList{m_folder.filePath("report")};
    m_palette->m_pReportButton->click();
    QFile report(m_folder.filePath("report/report.html"));
    ASSERT_TRUE(report.open(QIODevice::ReadOnly));
    EXPECT_TRUE(report.readAll().contains("resolved again from the purest pixels"));
}

} // namespace
