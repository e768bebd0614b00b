// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/cli/UnmixJob.h"

#include "engine/CORVSpumKyvo.h"
#include "engine/EngineEnums.h"
#include "host/CORVLog.h"
#include "host/CORVSequenceDataset.h"
#include "platform/orvutils/ProgressDisplay.h"
#include "platform/orvutils/StagedFolder.h"
#include "spectra/SpectrumPlotParams.h"
#include "workbench/cli/CliFailure.h"
#include "workbench/cli/CliProgress.h"
#include "workbench/cli/CliSession.h"
#include "workbench/cli/ImageCheck.h"
#include "workbench/cli/LibrarySpectra.h"
#include "workbench/cli/MaskFile.h"
#include "workbench/cli/ModeNames.h"
#include "workbench/cli/PairSelection.h"
#include "workbench/cli/ResultSummary.h"
#include "workbench/cli/UnitForecast.h"
#include "workbench/cli/UnitNames.h"

#include <QElapsedTimer>

namespace {

QStringList imagesOf(const CORVSpumKyvo& engine)
{
    QStringList images;
    for (const auto& click : engine.m_imageList)
        images.append(click);
    return images;
}

void log(const QString& strMessage, long nLevel)
{
    CORVLog::getLogObject()->log(strMessage, QString(), 0, QStringLiteral(__TIME__), nLevel, false);
}

// Shares of the progress line: looking at the images, the run, the files.
constexpr double checkedFraction = 0.3;
constexpr double fittedFraction = 0.7;

} // namespace

UnmixJob::UnmixJob(const UnmixRequest& request, CliSession& session)
    : m_request(request), m_session(session), m_opened(request.sequence)
{
}

// The limit is the process's; the next command starts without.
UnmixJob::~UnmixJob()
{
    CORVDataset::setUnitLimit(DISPLAYUNIT_EFFICIENCY);
}

void UnmixJob::run()
{
    m_session.warnAll(m_opened.warnings());
    if (!m_opened.canBeAnalysed())
        throw CliFailure(QStringLiteral("%1 cannot be analysed: %2").arg(m_request.sequence, m_opened.reasonAgainst()));
    m_session.progress().start(QStringLiteral("Looking at the images"));
    checkMode();
    StagedFolder folder;
    QString error;
    if (!folder.begin(outFolder(), m_request.force, QStringLiteral("summary.json"), &error))
        throw CliFailure(error);
    select();
    m_opened.engine().resetAnalysis(m_request.mode);
    chooseBinning();
    takeSpectra();
    checkUnit();
    checkImages();
    takeMask();
    fit();

    ResultFiles files(m_opened.engine(), m_numbers, folder.path());
    files.write([this](double fraction) {
        CliSession::stopIfInterrupted();
        m_session.progress().show(QStringLiteral("Writing the results"),
                                  fittedFraction + (1.0 - fittedFraction) * fraction);
    });
    CliSession::stopIfInterrupted();
    if (!folder.commit(&error))
        throw CliFailure(error);
    m_session.progress().finish();
    log(QStringLiteral("unmixed %1 by %2: %3 components, residual %4; results in %5")
            .arg(m_request.sequence, ModeNames::option(m_request.mode))
            .arg(m_opened.engine().m_spectrumPlots.size())
            .arg(m_numbers.residual)
            .arg(folder.target()),
        CORVLOG_NOTE);
    m_session.answer(files.summaryText() + QStringLiteral("results in %1\n").arg(folder.target()));
    QJsonObject json = files.summaryJson();
    json.insert(QStringLiteral("folder"), folder.target());
    m_session.answerJson(json);
}

QString UnmixJob::outFolder() const
{
    return m_request.out.isEmpty() ? m_opened.folder() + QStringLiteral("unmixed-") + ModeNames::option(m_request.mode)
                                   : m_request.out;
}

void UnmixJob::checkMode()
{
    const QList<int> modes = m_opened.engine().availableModes();
    if (modes.contains(m_request.mode))
        return;
    QStringList names;
    for (const int mode : modes)
        names.append(ModeNames::option(mode));
    throw CliFailure(QStringLiteral("this sequence cannot be unmixed by the method %1; it takes %2")
                         .arg(ModeNames::option(m_request.mode), names.join(QStringLiteral(", "))));
}

void UnmixJob::select()
{
    auto& engine = m_opened.engine();
    QList<KeyPair> selection = engine.getAllKeyPairs();
    if (!m_request.select.isEmpty())
        selection = selectPairs(m_request.select, selection);
    QList<KeyPair> trial = selection;
    int axis = 0;
    if (engine.validateSelection(trial, &axis, false) == 0)
        throw CliFailure(QStringLiteral("the selection %1 cannot be unmixed: it takes two %2 at least")
                             .arg(pairsText(selection), engine.m_eSeqKind == SEQKIND_TEMPORAL
                                                            ? QStringLiteral("time points")
                                                            : QStringLiteral("wavelengths")));
    // As in the palette: a selection of which a part was taken away is analysed without it.
    const int asked = selection.size();
    if (!engine.applySelection(selection)) {
        engine.updateKeys();
        log(QStringLiteral("SpumKyvo: image selection got adjusted"), CORVLOG_WARNING);
        m_session.warn(QStringLiteral("image selection got adjusted: %1 of %2 images are used")
                           .arg(engine.getSelectedKeyPairs().size())
                           .arg(asked));
    }
}

void UnmixJob::chooseBinning()
{
    auto& engine = m_opened.engine();
    if (!engine.createImageList())
        throw CliFailure(QStringLiteral("an image of the selection is missing in the sequence"));
    if (m_request.binning > 0) {
        engine.m_bAutoBinning = false;
        engine.m_nBinning = m_request.binning;
    }
    if (!engine.setBinningAndSize(engine.m_bAutoBinning) || engine.m_nWidth < 1)
        throw CliFailure(m_request.binning > 0
                             ? QStringLiteral("at binning %1 nothing is left of the images").arg(m_request.binning)
                             : QStringLiteral("the binning and size of the images cannot be found"));
}

void UnmixJob::takeSpectra()
{
    LibrarySpectra library;
    library.load(m_request.library);
    auto& engine = m_opened.engine();
    engine.m_spectrumPlots = library.fitTo(engine.getSelectedKeyPairs(), engine.m_eAxis);
    if (engine.m_spectrumPlots.size() > engine.getSelectedKeyPairs().size())
        m_session.warn(QStringLiteral("%1 spectra for %2 images: the maps are not unique")
                           .arg(engine.m_spectrumPlots.size())
                           .arg(engine.getSelectedKeyPairs().size()));
}

void UnmixJob::checkUnit()
{
    if (m_request.unit >= 0)
        CORVDataset::setUnitLimit(static_cast<tag_edisplayunit>(m_request.unit));
    const UnitForecast forecast = forecastUnit(m_opened.sequence(), imagesOf(m_opened.engine()));
    const QString why = forecast.refusals.join(QStringLiteral("; "));
    if (forecast.unit < 0)
        throw CliFailure(QStringLiteral("the images can be had in no unit: %1").arg(why));
    if (m_request.unit >= 0 && forecast.unit != m_request.unit)
        throw CliFailure(QStringLiteral("the unit %1 cannot be reached; the analysis would end in %2%3")
                             .arg(UnitNames::options()[m_request.unit], UnitNames::options()[forecast.unit],
                                  why.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(why)));
    m_nUnit = forecast.unit;
}

void UnmixJob::checkImages()
{
    auto& engine = m_opened.engine();
    checkImagePixels(m_opened.sequence(), engine, static_cast<tag_edisplayunit>(m_nUnit), [this](double fraction) {
        CliSession::stopIfInterrupted();
        m_session.progress().show(QStringLiteral("Looking at the images"), checkedFraction * fraction);
    });
}

void UnmixJob::takeMask()
{
    if (m_request.mask.isEmpty())
        return;
    auto& engine = m_opened.engine();
    engine.m_analysisInput.maskImage = readMaskFile(m_request.mask, engine.m_nWidth, engine.m_nBinning);
    if (!engine.takeDataMask())
        throw CliFailure(QStringLiteral("%1 cannot serve as a mask").arg(m_request.mask));
}

// Runs the engine; meanwhile its progress thread alone draws the line.
RunOutcome UnmixJob::runShown()
{
    CliProgress& line = m_session.progress();
    orv::setProgressDisplay([&line](const QString& message, double, double) {
        if (!message.isNull())
            line.show(QStringLiteral("Fitting"), checkedFraction);
    });
    const RunOutcome outcome = runEngine(m_opened.engine());
    orv::setProgressDisplay({});
    return outcome;
}

void UnmixJob::fit()
{
    auto& engine = m_opened.engine();
    QElapsedTimer timer;
    timer.start();
    const RunOutcome outcome = runShown();
    m_numbers.seconds = static_cast<double>(timer.nsecsElapsed()) * 1e-9;
    if (outcome == RunOutcome::Aborted)
        throw CliFailure(QStringLiteral("unmixing aborted by user"), CliFailure::Aborted);
    if (engine.hasError())
        throw CliFailure(engine.getErrorText());
    CliSession::stopIfInterrupted();
    const auto& data = engine.m_cube.m_data;
    m_numbers.shares = ResultSummary::signalShares(data, engine.m_concentrations, engine.m_spectra);
    m_numbers.residual = ResultSummary::relativeResidual(data, engine.m_concentrations, engine.m_spectra);
    m_numbers.truth = compareWithTruth(engine, m_opened.truthFolder(engine.m_eUnit));
}
