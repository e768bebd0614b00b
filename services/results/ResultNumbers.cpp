// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/ResultNumbers.h"

#include "engine/CORVSpumKyvo.h"
#include "services/results/FitStatistics.h"

ResultNumbers numbersOfResult(const CORVSpumKyvo& engine, const QString& strTruthFolder)
{
    const auto& data = engine.m_cube.m_data;
    ResultNumbers numbers;
    numbers.shares = FitStatistics::signalShares(data, engine.m_concentrations, engine.m_spectra);
    numbers.residual = FitStatistics::relativeResidual(data, engine.m_concentrations, engine.m_spectra);
    numbers.truth = compareWithTruth(engine, strTruthFolder);
    numbers.facts = engine.m_runFacts;
    return numbers;
}
