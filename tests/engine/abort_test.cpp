// SPDX-License-Identifier: GPL-3.0-or-later
// Runs that are ended at any moment: nothing hangs, nothing is lost, and the next analysis is as good as a first one.
#include "engine/CORVSpumKyvo.h"
#include "engine/LogCapture.h"
#include "engine/TestSequence.h"
#include "engine/runEngine.h"
#include "support/CapturedOutput.h"

#include "host/CILImage.h"
#include "host/CORVDataset.h"
#include "host/CORVSequenceDataset.h"
#include "platform/orvutils/ProcessControl.h"

#include <QElapsedTimer>
#include <QTimer>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <limits>
#include <random>
#include <thread>

namespace {

constexpr int nSide = 64;
constexpr int nImages = 12;
constexpr int nComponents = 4;
constexpr unsigned seed = 20240506;

// A sequence whose noise gives many pixels a negative component, so that the slow part of the fit runs too.
void addNoisyMixture(TestSequence& sequence, const std::vector<std::vector<double>>& spectra)
{
    sequence->isFluorescence = true;
    addMixture(sequence, nSide, spectra);
    std::mt19937 random(seed);
    std::normal_distribution<float> noise(0.0F, 0.5F);
    const QList<CORVDataset*> datasets = sequence->getDatasets();
    for (CORVDataset* pDataset : datasets) {
        CILImage image = *pDataset->getCoreImage(IMAGETYPE_MAIN_DATA);
        for (std::size_t i = 0; i < image.pixelCount(); ++i) {
            image.floats()[i] += noise(random);
        }
        pDataset->setCoreImage(IMAGETYPE_MAIN_DATA, image);
    }
}

class AbortTest : public ::testing::Test
{
protected:
    AbortTest() : m_spectra(bellSpectra(nComponents, nImages)) { addNoisyMixture(m_sequence, m_spectra); }

    void prepare(CORVSpumKyvo& engine)
    {
        engine.resetAnalysis(RUNMODE_MANUAL);
        takeSpectra(engine, m_spectra);
    }

    // A whole analysis; gives its maps and the time that it took in microseconds.
    XTNT::Matrix<double> analyse(CORVSpumKyvo& engine, long long* pMicroseconds = nullptr)
    {
        prepare(engine);
        QElapsedTimer timer;
        timer.start();
        engine.start();
        engine.wait();
        if (pMicroseconds != nullptr) {
            *pMicroseconds = timer.nsecsElapsed() / 1000;
        }
        EXPECT_FALSE(engine.hasError());
        EXPECT_EQ(engine.m_concentrations.num_rows(), nComponents);
        return engine.m_concentrations.deepCopy();
    }

    LogCapture m_log;
    const std::vector<std::vector<double>> m_spectra;
    TestSequence m_sequence;
};

TEST_F(AbortTest, AThousandAbortsLeaveTheEngineAsGoodAsNew)
{
    CORVSpumKyvo fresh(m_sequence.id());
    ASSERT_TRUE(fresh.buildDatasetInfo());
    const XTNT::Matrix<double> expected = analyse(fresh);
    long long nShortest = std::numeric_limits<long long>::max();
    for (int i = 0; i < 20; ++i) {
        long long nMicroseconds = 0;
        analyse(fresh, &nMicroseconds);
        nShortest = std::min(nShortest, nMicroseconds);
    }

    CORVSpumKyvo engine(m_sequence.id());
    ASSERT_TRUE(engine.buildDatasetInfo());
    std::mt19937 random(seed);
    std::uniform_int_distribution<long long> moment(0, nShortest);
    int nEnded = 0;
    for (int i = 0; i < 1000; ++i) {
        prepare(engine);
        engine.m_nError = 2;
        engine.start(QThread::InheritPriority);
        std::this_thread::sleep_for(std::chrono::microseconds(moment(random)));
        engine.abortRun();
        ASSERT_TRUE(engine.wait(60000)) << "abort " << i << ", seed " << seed;
        // Either the run came to its end, or the error code is that of before.
        ASSERT_EQ(engine.m_nError, engine.m_bResultReady ? 0 : 2) << "abort " << i << ", seed " << seed;
        nEnded += engine.m_bResultReady ? 1 : 0;
        if (i % 50 == 49) {
            ASSERT_EQ((analyse(engine) - expected).norm(0), 0.0) << "abort " << i << ", seed " << seed;
        }
    }
    EXPECT_LT(nEnded, 1000) << "not one abort struck a run";
    RecordProperty("runs_that_ended_before_their_abort", nEnded);
}

TEST_F(AbortTest, AbortsThroughTheRunLoopLeaveNoProcessBehind)
{
    CORVSpumKyvo fresh(m_sequence.id());
    ASSERT_TRUE(fresh.buildDatasetInfo());
    const XTNT::Matrix<double> expected = analyse(fresh);

    CORVSpumKyvo engine(m_sequence.id());
    ASSERT_TRUE(engine.buildDatasetInfo());
    std::mt19937 random(seed);
    std::uniform_int_distribution<int> delay(0, 3);
    for (int i = 0; i < 50; ++i) {
        prepare(engine);
        // Gone with the turn, so that none fires into a later run.
        QTimer timer;
        timer.setSingleShot(true);
        QObject::connect(&timer, &QTimer::timeout, [] { orv::requestAbort(); });
        timer.start(delay(random));
        runEngine(engine);
        ASSERT_FALSE(engine.isRunning());
        ASSERT_EQ(orv::processState().m_nRunning, 0);
        ASSERT_EQ(engine.m_pProgress, nullptr);
    }
    prepare(engine);
    ASSERT_EQ(runEngine(engine), RunOutcome::Succeeded);
    EXPECT_EQ((engine.m_concentrations - expected).norm(0), 0.0);
}

TEST_F(AbortTest, AnAbortInTheSolverKeepsTheErrorCodeAndTheNextAnalysisWorks)
{
    CORVSpumKyvo engine(m_sequence.id());
    ASSERT_TRUE(engine.buildDatasetInfo());
    const XTNT::Matrix<double> expected = analyse(engine);

    // A cube that the worker finds ready and on which the fit takes a while. On a busy machine it may be done before
    // this thread goes on: then once more.
    constexpr long long nRows = 400000;
    std::mt19937 random(seed);
    std::normal_distribution<double> noise(0.0, 1.0);
    bool bStruck = false;
    for (int i = 0; i < 20 && !bStruck; ++i) {
        prepare(engine);
        engine.m_cube.m_data.reshape(nRows, nImages);
        for (long long k = 0; k < engine.m_cube.m_data.storage.size(); ++k) {
            engine.m_cube.m_data.storage[k] = noise(random);
        }
        engine.m_bCubeValid = true;
        engine.m_nError = 7;
        engine.start(QThread::InheritPriority);
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        engine.abortRun();
        ASSERT_TRUE(engine.wait(60000));
        bStruck = !engine.m_bResultReady;
        EXPECT_EQ(engine.m_nError, bStruck ? 7 : 0);
    }
    EXPECT_TRUE(bStruck) << "not one abort struck the fit";

    EXPECT_EQ((analyse(engine) - expected).norm(0), 0.0);
}

TEST_F(AbortTest, AnAbortBeforeAnyRunDoesNothing)
{
    CORVSpumKyvo engine(m_sequence.id());
    ASSERT_TRUE(engine.buildDatasetInfo());
    engine.abortRun();
    EXPECT_TRUE(engine.wait(1000));
    EXPECT_EQ(analyse(engine).num_rows(), nComponents);
}

// Runs that resolve and decompose: the blows fall into the decomposition, the clustering and the half-steps.
class AbortOfAnalysisTest : public AbortTest
{
protected:
    AbortOfAnalysisTest() : m_engine(m_sequence.id())
    {
        EXPECT_TRUE(m_engine.buildDatasetInfo());
        m_engine.m_analysisInput.maskImage = squareImage(nSide, 1, [](int) { return 1.0F; });
    }

    void prepareAnalysis(bool bPCA)
    {
        m_engine.resetAnalysis(RUNMODE_AUTOMATIC);
        m_engine.m_params = MCRParams();
        m_engine.m_params.MaxIterations = 8;
        for (int i = 0; i < nComponents; ++i) {
            m_engine.m_params.Constraints.append(ComponentConstraint());
        }
        m_engine.m_bRunPCA = bPCA;
        m_engine.m_pcaResult.reshape(0);
        m_engine.m_nError = 2;
    }
    bool hasResult(bool bPCA) const { return bPCA ? !m_engine.m_pcaResult.empty() : m_engine.m_bResultReady; }
    // What a whole run gives, as one matrix, and its time in microseconds.
    XTNT::Matrix<double> wholeRun(bool bPCA, long long* pMicroseconds = nullptr)
    {
        prepareAnalysis(bPCA);
        QElapsedTimer timer;
        timer.start();
        m_engine.start();
        m_engine.wait();
        if (pMicroseconds != nullptr) {
            *pMicroseconds = timer.nsecsElapsed() / 1000;
        }
        EXPECT_EQ(m_engine.m_nError, 0);
        EXPECT_TRUE(hasResult(bPCA));
        if (!bPCA) {
            return m_engine.m_concentrations.deepCopy();
        }
        XTNT::Matrix<double> eigenvalues(1, m_engine.m_pcaResult.size());
        eigenvalues.setRow(0, m_engine.m_pcaResult);
        return eigenvalues;
    }
    void abortAHundredTimes(bool bPCA)
    {
        const testsupport::CapturedOutput trace;
        const XTNT::Matrix<double> expected = wholeRun(bPCA);
        long long nWhole = std::numeric_limits<long long>::max();
        for (int i = 0; i < 3; ++i) {
            long long nMicroseconds = 0;
            wholeRun(bPCA, &nMicroseconds);
            nWhole = std::min(nWhole, nMicroseconds);
        }
        std::mt19937 random(seed);
        std::uniform_int_distribution<long long> moment(0, nWhole);
        int nEnded = 0;
        for (int i = 0; i < 100; ++i) {
            prepareAnalysis(bPCA);
            m_engine.start(QThread::InheritPriority);
            std::this_thread::sleep_for(std::chrono::microseconds(moment(random)));
            m_engine.abortRun();
            ASSERT_TRUE(m_engine.wait(60000)) << "abort " << i << ", seed " << seed;
            ASSERT_EQ(m_engine.m_nError, hasResult(bPCA) ? 0 : 2) << "abort " << i << ", seed " << seed;
            nEnded += hasResult(bPCA) ? 1 : 0;
            // A result that was not taken to its end is not taken at all.
            ASSERT_TRUE(hasResult(bPCA) || m_engine.m_concentrations.empty());
            if (i % 10 == 9) {
                ASSERT_EQ((wholeRun(bPCA) - expected).norm(0), 0.0) << "abort " << i << ", seed " << seed;
            }
        }
        EXPECT_LT(nEnded, 100) << "not one abort struck a run";
        RecordProperty("runs_that_ended_before_their_abort", nEnded);
    }

    CORVSpumKyvo m_engine;
};

TEST_F(AbortOfAnalysisTest, AHundredAbortsOfAutomaticRunsLeaveTheEngineAsGoodAsNew)
{
    abortAHundredTimes(false);
}

TEST_F(AbortOfAnalysisTest, AHundredAbortsOfPCARunsLeaveTheEngineAsGoodAsNew)
{
    abortAHundredTimes(true);
}

// Struck before the worker does anything, mostly: what comes next is an unmixing all the same.
TEST_F(AbortOfAnalysisTest, APCAAbortedAtItsStartIsForgotten)
{
    m_engine.resetAnalysis(RUNMODE_MANUAL);
    takeSpectra(m_engine, m_spectra);
    RunSteps abortAtOnce;
    abortAtOnce.started = [] { orv::requestAbort(); };
    for (int i = 0; i < 100; ++i) {
        m_engine.m_bRunPCA = true;
        runEngine(m_engine, abortAtOnce);
        m_engine.m_bCubeValid = false;
        m_engine.m_concentrations.reshape(0, 0);
        ASSERT_EQ(runEngine(m_engine), RunOutcome::Succeeded);
        ASSERT_EQ(m_engine.m_concentrations.num_rows(), nComponents) << "round " << i;
    }
}

} // namespace
