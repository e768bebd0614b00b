// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/CORVSpumKyvo.h"
#include "engine/LogCapture.h"
#include "engine/TestSequence.h"
#include "engine/runEngine.h"
#include "support/CapturedOutput.h"

#include "host/CORVSequenceDataset.h"
#include "host/corrcoef.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

namespace automatic {

inline constexpr int nSide = 16;
inline constexpr int nImages = 8;
inline constexpr int nComponents = 3;

// Discs of one component each over a background of the first, with pixels of each alone.
inline double discValue(int nComponent, int nPixel)
{
    const double x = nPixel % nSide;
    const double y = nPixel / nSide; // NOLINT(bugprone-integer-division): a row
    const double centre[nComponents][2] = {{4.0, 4.0}, {11.0, 5.0}, {7.0, 11.0}};
    const double distance = std::hypot(x - centre[nComponent][0], y - centre[nComponent][1]);
    return 100.0 * std::max(0.0, 1.0 - distance / 6.0);
}

// An automatic analysis of a simulated sequence, ready to run.
class AutomaticRun : public ::testing::Test
{
protected:
    AutomaticRun() : m_spectra(bellSpectra(nComponents, nImages)), m_engine(m_sequence.id())
    {
        m_sequence->isFluorescence = true;
        for (int j = 0; j < nImages; ++j) {
            TestImage image;
            image.excitation = "640nm";
            image.emission = QString("%1nm").arg(660 + 20 * j);
            image.side = nSide;
            image.value = [this, j](int i) { return static_cast<float>(mixture(i, j)); };
            m_sequence.add(image);
        }
        EXPECT_TRUE(m_engine.buildDatasetInfo());
        prepare();
    }

    double mixture(int nPixel, int nImage) const
    {
        double total = 1.0;
        for (int k = 0; k < nComponents; ++k) {
            total += m_spectra[static_cast<std::size_t>(k)][static_cast<std::size_t>(nImage)] * discValue(k, nPixel);
        }
        return total;
    }
    void prepare(int n = nComponents)
    {
        m_engine.resetAnalysis(RUNMODE_AUTOMATIC);
        m_engine.m_params = MCRParams();
        for (int i = 0; i < n; ++i) {
            m_engine.m_params.Constraints.append(ComponentConstraint());
        }
    }
    void selectImages(int n)
    {
        QList<KeyPair> selection = m_engine.m_allKeyPairs.mid(0, n);
        ASSERT_TRUE(m_engine.applySelection(selection));
    }
    // Runs to the end and gives the error code.
    int runToEnd()
    {
        const testsupport::CapturedOutput trace;
        runEngine(m_engine);
        m_strTrace = trace.text();
        return m_engine.m_nError;
    }
    // The best correlation of any resolved map with that of a true component.
    double likeness(int nComponent)
    {
        XTNT::Vector<double> truth(nSide * nSide);
        for (int i = 0; i < nSide * nSide; ++i) {
            truth[i] = discValue(nComponent, i);
        }
        double best = -1.0;
        for (long long k = 0; k < m_engine.m_concentrations.num_rows(); ++k) {
            XTNT::Vector<double> map = m_engine.m_concentrations.row(k);
            best = std::max(best, XTNT::corrcoef(truth, map));
        }
        return best;
    }
    ComponentConstraint& constraint(int i) { return m_engine.m_params.Constraints[i]; }

    LogCapture m_log;
    const std::vector<std::vector<double>> m_spectra;
    TestSequence m_sequence;
    CORVSpumKyvo m_engine;
    std::string m_strTrace;
};

} // namespace automatic
