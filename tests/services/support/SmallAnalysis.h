// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/session/OpenedSequence.h"
#include "services/support/CliFixture.h"
#include "services/support/SmallSequence.h"

#include "engine/CORVSpumKyvo.h"
#include "engine/EngineEnums.h"
#include "spectra/SpectrumPlotParams.h"

#include <memory>

// Three images of 4 x 4 pixels that are mixtures of two spectra, unmixed.
class SmallAnalysis : public CliFixture
{
protected:
    static constexpr int side = 4;
    static float mapA(int i) { return static_cast<float>(i); }
    static float mapB(int i) { return static_cast<float>(2 * (i % side) + 1); }

    SmallAnalysis()
    {
        m_sequence.addBands({[](int i) { return mapA(i); }, [](int i) { return 0.5F * mapA(i) + 0.25F * mapB(i); },
                             [](int i) { return mapB(i); }});
        m_sequence.images[0].binning = m_sequence.images[1].binning = m_sequence.images[2].binning = 1;
    }

    // Leaves the pixels whose mask(i) is above 0; all without one.
    void analyse(const std::function<float(int)>& mask = nullptr)
    {
        m_sequence.writeTo(path("seq"));
        m_pOpened = std::make_unique<OpenedSequence>(path("seq"));
        CORVSpumKyvo& analysis = engine();
        analysis.resetAnalysis(RUNMODE_MANUAL);
        if (mask) {
            ASSERT_TRUE(analysis.createImageList());
            ASSERT_TRUE(analysis.setBinningAndSize(true));
            analysis.m_analysisInput.maskImage = imageOf(side, side, mask);
            ASSERT_TRUE(analysis.takeDataMask());
        }
        addSpectrum("Dye A", {1.0, 0.5, 0.0});
        addSpectrum("Dye B", {0.0, 0.25, 1.0});
        analysis.solveConcentrations();
        analysis.updateResultProperties(true);
        ASSERT_FALSE(analysis.hasError()) << qPrintable(analysis.getErrorText());
    }

    // Makes a scan of two spots of it, of which the second sees the same, brighter by that much.
    void addSpot(double dBrighter)
    {
        engine().m_cube.m_nSpots = 2;
        engine().m_spots = QStringList{"0,0", "1,0"};
        XTNT::Matrix<double> concentrations(2, 2 * side * side);
        for (int k = 0; k < 2; ++k) {
            for (int i = 0; i < side * side; ++i) {
                concentrations[k][i] = static_cast<double>(k == 0 ? mapA(i) : mapB(i));
                concentrations[k][side * side + i] = concentrations[k][i] + dBrighter;
            }
        }
        engine().m_concentrations = concentrations;
    }

    CORVSpumKyvo& engine() { return m_pOpened->engine(); }

    SmallSequence m_sequence;
    std::unique_ptr<OpenedSequence> m_pOpened;

    void addSpectrum(const QString& strName, std::initializer_list<double> values)
    {
        XTNT::Vector<double> vector(static_cast<long long>(values.size()));
        long long j = 0;
        for (const double value : values) {
            vector[j++] = value;
        }
        auto* plot = new SpectrumPlotParams;
        plot->settings.name = strName;
        plot->settings.color = engine().m_spectrumPlots.isEmpty() ? QStringLiteral("red") : QStringLiteral("blue");
        plot->settings.index = engine().m_spectrumPlots.size();
        plot->setPairs(engine().getSelectedKeyPairs());
        EXPECT_TRUE(plot->setValues(vector));
        engine().m_spectrumPlots.append(plot);
    }
};
