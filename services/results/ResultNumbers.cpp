// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/ResultNumbers.h"

#include "engine/CORVSpumKyvo.h"
#include "services/results/FitStatistics.h"
#include "services/results/keptWarnings.h"

bool hasMapsOfItsImages(const CORVSpumKyvo& engine)
{
    const auto& data = engine.m_cube.m_data;
    const auto& maps = engine.m_concentrations;
    const auto& spectra = engine.m_spectra;
    const int components = engine.m_spectrumPlots.size();
    return components > 0 && maps.num_rows() >= components && maps.num_rows() == spectra.num_rows() &&
           data.num_rows() > 0 && maps.num_cols() == data.num_rows() && spectra.num_cols() == data.num_cols();
}

ResultNumbers numbersOfResult(const CORVSpumKyvo& engine, const QString& strTruthFolder)
{
    const auto& data = engine.m_cube.m_data;
    ResultNumbers numbers;
    numbers.shares = FitStatistics::signalShares(data, engine.m_concentrations, engine.m_spectra);
    numbers.residual = FitStatistics::relativeResidual(data, engine.m_concentrations, engine.m_spectra);
    numbers.truth = compareWithTruth(engine, strTruthFolder);
    numbers.facts = engine.m_runFacts;
    numbers.warnings = warningsAmong(engine.m_properties);
    return numbers;
}
