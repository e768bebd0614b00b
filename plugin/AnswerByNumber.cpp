// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/AnswerByNumber.h"

#include "engine/CORVSpumKyvo.h"
#include "engine/EngineEnums.h"
#include "engine/ResultView.h"
#include "engine/knownSpectra.h"
#include "services/analysis/Refinement.h"
#include "services/basis/Failure.h"
#include "services/basis/JobMonitor.h"
#include "services/results/ResultNumbers.h"
#include "services/results/keptWarnings.h"
#include "services/session/photographOrigin.h"
#include "spectra/SpectrumPlotParams.h"

#include <QCoreApplication>

#include <algorithm>

namespace {

// Of the progress: the fit of all pixels takes the rest.
constexpr double partOfSpectra = 0.9;

bool isNothingKnown(const ComponentConstraint& constraint)
{
    const ComponentConstraint unknown;
    return !constraint.Locked && constraint.InitGuess == unknown.InitGuess &&
           constraint.Unimodality == unknown.Unimodality && constraint.HighPass == unknown.HighPass &&
           constraint.LowPass == unknown.LowPass;
}

// With maxima of 1 and the 16 digits that the file of a saved result has of a value.
XTNT::Matrix<double> asSaved(const XTNT::Matrix<double>& spectra)
{
    constexpr int digits = 16;
    XTNT::Matrix<double> saved = spectra.deepCopy();
    for (long long k = 0; k < saved.num_rows(); ++k) {
        const double largest = saved.row(k).Max();
        std::transform(saved[k], saved[k] + saved.num_cols(), saved[k],
                       [largest](double value) { return QString::number(value / largest, 'g', digits).toDouble(); });
    }
    return saved;
}

} // namespace

void AnswerByNumber::takeRun(CORVSequenceDataset& sequence)
{
    forget();
    const QList<ComponentConstraint>& constraints = m_engine.m_lastParams.Constraints;
    if (m_engine.m_eMode == RUNMODE_AUTOMATIC && !m_engine.hasError() && !m_engine.m_bCherenkov &&
        m_engine.m_cube.m_nSpots <= 1 && hasMapsOfItsImages(m_engine) && !hasPhotographOfCamera(sequence) &&
        std::all_of(constraints.begin(), constraints.end(), isNothingKnown)) {
        m_shown = m_engine.m_concentrations;
    }
}

bool AnswerByNumber::isOffered() const
{
    return !m_shown.empty() && m_engine.m_concentrations.storage.data == m_shown.storage.data &&
           m_engine.m_eMode == RUNMODE_AUTOMATIC;
}

void AnswerByNumber::forget()
{
    m_first.reset();
    m_shown = XTNT::Matrix<double>();
}

EngineAnswer AnswerByNumber::refined(const CORVSequenceDataset& sequence, JobMonitor& monitor) const
{
    const auto progress = [&monitor](double dShare) { monitor.showProgress(QString(), partOfSpectra * dShare); };
    const RefinedSpectra found = refinedSpectra(sequence, m_engine, CameraOffset::Kept, progress);
    if (!found.reason.isEmpty()) {
        throw Failure(QCoreApplication::translate("AnswerByNumber",
                                                  "The spectra cannot be refined: %1. The result stays as it is.")
                          .arg(found.reason));
    }
    EngineAnswer answer;
    answer.spectra = asSaved(found.spectra);
    const bool bFitted = fitConcentrations(m_engine.m_cube.m_data, answer.spectra, answer.maps);
    // It takes the wish to stop for a fit without a solution.
    monitor.stopIfRequested();
    if (!bFitted) {
        throw Failure(QCoreApplication::translate(
            "AnswerByNumber", "The refined spectra cannot be fitted to the images. The result stays as it is."));
    }
    answer.properties = withoutWarnings(m_engine.m_properties);
    answer.properties.append({QStringLiteral("Refinement"), found.facts.text()});
    return answer;
} // NOLINT(clang-analyzer-cplusplus.NewDeleteLeaks): the shares of a matrix are counted

void AnswerByNumber::showRefined(const EngineAnswer& answer)
{
    m_first = EngineAnswer{m_engine.m_spectra, m_engine.m_concentrations, m_engine.m_runFacts, m_engine.m_properties};
    show(answer);
}

void AnswerByNumber::showFirst()
{
    if (m_first) {
        const EngineAnswer first = *m_first;
        m_first.reset();
        show(first);
    }
}

void AnswerByNumber::show(const EngineAnswer& answer)
{
    m_engine.m_spectra = answer.spectra;
    m_engine.m_concentrations = answer.maps;
    m_engine.m_runFacts = answer.facts;
    m_engine.m_properties = answer.properties;
    m_shown = answer.maps;
    // What the user has made of the rows since.
    const QList<SpectrumPlotParams*> rows = m_engine.resultView().getSpectra();
    if (rows.size() == m_engine.m_spectrumPlots.size()) {
        for (int i = 0; i < rows.size(); ++i) {
            SpectrumSettings& settings = m_engine.m_spectrumPlots[i]->settings;
            settings.name = rows[i]->settings.name;
            settings.color = rows[i]->settings.color;
        }
    }
    m_engine.createSpectrumPlots();
    m_engine.updateConsoleSpectra();
    m_engine.updateUnmixedImages(true);
}
