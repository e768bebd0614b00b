// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/analysis/UnmixJob.h"

#include "engine/CORVSpumKyvo.h"
#include "engine/EngineEnums.h"
#include "engine/runTexts.h"
#include "host/CORVDatabase.h"
#include "host/CORVLog.h"
#include "host/CORVSequenceDataset.h"
#include "services/analysis/AutomaticSetUp.h"
#include "services/analysis/FoodLook.h"
#include "services/analysis/ShownRun.h"
#include "services/basis/Failure.h"
#include "services/basis/JobMonitor.h"
#include "services/basis/ModeNames.h"
#include "services/basis/TextTable.h"
#include "services/basis/UnitNames.h"
#include "services/results/ResultStore.h"
#include "services/results/keptWarnings.h"
#include "services/results/resultFindings.h"
#include "services/session/LibrarySpectra.h"
#include "services/warnings/runWarnings.h"
#include "spectra/SpectrumPlotParams.h"
#include "spectra/logLine.h"
#include "windows/componentCount.h"
#include "windows/maskPixels.h"

#include "XTNT/xtnt_parallel.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QJsonArray>
#include <QLocale>
#include <QtAlgorithms>

#include <algorithm>

namespace {

// Shares of the progress line: looking at the images, the run, the files.
constexpr double checkedFraction = 0.3;
constexpr double fittedFraction = 0.7;
constexpr double notKnown = -1.0;

bool severalExcitations(const QList<KeyPair>& pairs)
{
    return std::any_of(pairs.begin(), pairs.end(),
                       [&pairs](const KeyPair& pair) { return pair.first != pairs.first().first; });
}

QStringList namesWithFood(QStringList names)
{
    names.insert(names.indexOf(QStringLiteral("TissueAF")) + 1, QStringLiteral("Food"));
    return names;
}

} // namespace

UnmixJob::UnmixJob(const UnmixRequest& request, JobMonitor& monitor)
    : m_request(request), m_monitor(monitor), m_setUp(request.analysis, m_monitor)
{
}

bool UnmixJob::isAutomatic() const
{
    return m_request.mode == RUNMODE_AUTOMATIC;
}

RunAnswer UnmixJob::run()
{
    checkPlaces();
    StagedRun staged(place(), m_request.replace, QStringLiteral("summary.json"));
    prepare();
    QElapsedTimer timer;
    timer.start();
    m_setUp.readImages(checkedFraction);
    m_provenance.beginHashing(m_setUp.opened().sequence(), m_setUp.engine());
    if (isAutomatic()) {
        lookForFood();
        checkConstantImages();
    }
    takeIsotope();
    fit(timer);

    ResultFiles files(m_setUp.engine(), m_numbers, staged.path());
    files.setRun(staged.name());
    files.setProvenance(provenance());
    files.setReport(reportFrame(), m_request.pdf);
    files.setStyle(pictureStyleOf(m_setUp.engine(), m_request.pictures));
    write(files);
    staged.finish(m_monitor);
    QString saved;
    if (m_request.save) {
        saved = saveResult(staged.target());
    }
    return answer(files, staged, saved);
}

RunAnswer UnmixJob::plan()
{
    checkPlaces();
    // Made and taken away again: a folder that cannot be written is told here as well.
    const StagedRun trial(place(), m_request.replace, QStringLiteral("summary.json"));
    const QString unit = UnitNames::options()[prepare()];
    m_monitor.endProgress();

    const CORVSpumKyvo& engine = m_setUp.engine();
    const qint64 all = static_cast<qint64>(engine.m_nWidth) * engine.m_nHeight;
    const qint64 pixels = engine.m_maskIndices.empty() ? all : static_cast<qint64>(engine.m_maskIndices.size());
    QStringList names = engine.m_analysisInput.componentNames;
    for (const SpectrumPlotParams* pSpectrum : engine.m_spectrumPlots) {
        names.append(pSpectrum->settings.name);
    }
    const int images = engine.getSelectedKeyPairs().size();
    QString text;
    const auto line = [&text](const char* pWhat, const QString& strValue) {
        constexpr int column = 12;
        text += QString(QLatin1String(pWhat)).leftJustified(column) + TextTable::oneLine(strValue) + QLatin1Char('\n');
    };
    line("sequence", m_request.analysis.sequence);
    line("method", ModeNames::option(m_request.mode));
    line("images", QStringLiteral("%1 of %2").arg(images).arg(engine.getAllKeyPairs().size()));
    line("pixels", QStringLiteral("%1 of %2, at binning %3").arg(pixels).arg(all).arg(engine.m_nBinning));
    line("unit", unit);
    line(isAutomatic() ? "components" : "spectra", names.join(QStringLiteral(", ")));
    line("results in", trial.target());
    text += QStringLiteral("nothing was unmixed or written (--dry-run)\n");
    return {text, QJsonObject{{"dryRun", true},
                              {"sequence", m_request.analysis.sequence},
                              {"method", ModeNames::option(m_request.mode)},
                              {"images", images},
                              {"pixels", pixels},
                              {"allPixels", all},
                              {"binning", engine.m_nBinning},
                              {"unit", unit},
                              {"components", QJsonArray::fromStringList(names)},
                              {"folder", trial.target()}}};
}

ResultPlace UnmixJob::place() const
{
    return m_setUp.outPlace(QStringLiteral("unmixed-") + ModeNames::option(m_request.mode));
}

void UnmixJob::checkPlaces()
{
    m_monitor.startProgress(QStringLiteral("Looking at the images"));
    m_setUp.checkMode(m_request.mode);
    if (m_request.save) {
        ResultStore::checkPlace(m_setUp.opened().sequence());
        ResultStore::checkName(m_setUp.opened().sequence(), m_request.saveName, m_request.analysis.force);
    }
}

int UnmixJob::prepare()
{
    m_setUp.select();
    m_setUp.reset(m_request.mode);
    if (isAutomatic()) {
        takeComponents();
    } else {
        takeSpectra();
    }
    // A fit of known spectra takes each pixel by itself; to resolve spectra takes as many as the wizard asks for.
    m_setUp.takeMask(isAutomatic() ? static_cast<int>(kMinMaskPixels) : 1);
    const int unit = m_setUp.checkUnit();
    m_setUp.checkMemory(SystemMemory::ofThisMachine());
    return unit;
}

void UnmixJob::write(ResultFiles& files)
{
    const XTNT::CancellationCheck check([this] { m_monitor.stopIfRequested(); });
    files.write([this](double fraction) {
        m_monitor.stopIfRequested();
        m_monitor.showProgress(QStringLiteral("Writing the results"),
                               fittedFraction + (1.0 - fittedFraction) * fraction);
    });
}

// In the order in which a window takes over a result.
void UnmixJob::showPictures()
{
    auto& engine = m_setUp.engine();
    engine.refreshDecayPanel();
    engine.updateConsoleSpectra();
    // The files have pictures of their own; the composite alone is made of what the view keeps.
    engine.ownResultView().setShowsUnmixedImages(false);
    if (!engine.updateUnmixedImages(true)) {
        throw Failure(QStringLiteral("the pictures of the result cannot be made"), QStringLiteral("the log tells why"));
    }
    engine.storeDecayState();
}

QString UnmixJob::saveResult(const QString& strFolder)
{
    try {
        m_setUp.engine().resultView().setNote(m_request.note);
        return ResultStore(m_setUp.engine(), m_request.analysis.force).save(m_request.saveName);
    } catch (const Failure& failure) {
        throw Failure(QStringLiteral("%1; its files are in %2").arg(failure.text(), strFolder));
    }
}

ReportFrame UnmixJob::reportFrame()
{
    ReportFrame frame;
    frame.sequenceName = m_setUp.opened().sequence().getSequenceName();
    frame.note = m_request.note;
    frame.command = shellLine(m_request.command);
    frame.made = QLocale::c().toString(QDateTime::currentDateTime(), QStringLiteral("yyyy-MM-dd hh:mm"));
    return frame;
}

Provenance UnmixJob::provenance()
{
    const QString library = isAutomatic() ? QString() : LibrarySpectra::fileOf(m_request.library);
    Provenance provenance = m_provenance.gather(m_setUp.opened().sequence(), m_setUp.engine(), m_setUp.mask(), library);
    provenance.command = m_request.command;
    provenance.arguments = m_request.arguments;
    return provenance;
}

RunAnswer UnmixJob::answer(const ResultFiles& files, const StagedRun& staged, const QString& strSaved)
{
    const QString line = QStringLiteral("unmixed %1 by %2: %3 components, residual %4; results in %5")
                             .arg(m_request.analysis.sequence, ModeNames::option(m_request.mode),
                                  QString::number(m_setUp.engine().m_spectrumPlots.size()),
                                  QString::number(m_numbers.residual), staged.target());
    logLine(line, CORVLOG_NOTE);
    RunAnswer answer = staged.answer(files.summaryText(), files.summaryJson());
    // Of the answer only: files of the same input are the same.
    answer.json.insert(QStringLiteral("seconds"), m_numbers.seconds);
    if (!m_strProposal.isEmpty()) {
        answer.text += m_strProposal + QLatin1Char('\n');
        answer.json.insert(QStringLiteral("proposal"), m_strProposal);
    }
    if (!strSaved.isEmpty()) {
        answer.text += QStringLiteral("saved with the sequence as %1\n").arg(strSaved);
        answer.json.insert(QStringLiteral("saved"), strSaved);
    }
    return answer;
}

void UnmixJob::takeSpectra()
{
    LibrarySpectra library;
    library.loadWithTables(m_request.library);
    auto& engine = m_setUp.engine();
    engine.m_spectrumPlots =
        library.fitTo(bandsOf(m_setUp.opened().sequence(), engine.getSelectedKeyPairs()), engine.m_eAxis);
    const int spectra = engine.m_spectrumPlots.size();
    const int images = engine.getSelectedKeyPairs().size();
    checkFreedom(spectra);
    if (spectra > images) {
        m_monitor.warn(QStringLiteral("%1 spectra for %2 images: the maps are not unique").arg(spectra).arg(images));
    }
}

void UnmixJob::takeComponents()
{
    CORVSpumKyvo& engine = m_setUp.engine();
    m_monitor.warnAll(setUpAutomatic(m_request.automatic, m_setUp.opened().sequence(), engine));
    checkFreedom(engine.m_analysisInput.componentNames.size());
}

void UnmixJob::lookForFood()
{
    CORVSpumKyvo& engine = m_setUp.engine();
    if (!m_request.automatic.components.isEmpty() || m_request.automatic.count > 0) {
        return;
    }
    QStringList names = engine.m_analysisInput.componentNames;
    m_strProposal = QStringLiteral("proposed %1: what the sequence tells of").arg(names.join(QStringLiteral(", ")));
    const bool counts =
        isComponentCountValid(names.size() + 1, engine.getSelectedKeyPairs().size()) && leavesFreedom(names.size() + 1);
    m_bFoodFits = engine.m_eSeqKind == SEQKIND_EPI_FLUORESCENT && !engine.m_bCherenkov && counts;
    if (!m_bFoodFits) {
        return;
    }
    const FoodLook look = FoodLook::of(engine, names);
    if (!look.looked) {
        return;
    }
    const auto percent = [](double part) { return QString::number(100.0 * part, 'g', 2); };
    if (!look.isFed()) {
        m_strProposal += QStringLiteral("; no food is seen: it explains no region of the mask that they do not");
        return;
    }
    names = namesWithFood(names);
    AutomaticRequest withFood = m_request.automatic;
    withFood.components = names;
    m_bFoodProposed = true;
    const QStringList told = sentencesOf(m_monitor.warnings());
    for (const QString& text : setUpAutomatic(withFood, m_setUp.opened().sequence(), engine)) {
        if (!told.contains(text)) {
            m_monitor.warn(text);
        }
    }
    m_strProposal = QStringLiteral("proposed %1: tissue, the probes that the sequence tells of, and food, which %2 of "
                                   "%3 regions of the mask show (without it %4 % of one is left, with it %5 %)")
                        .arg(names.join(QStringLiteral(", ")), QString::number(look.fed), QString::number(look.squares),
                             percent(look.without), percent(look.with));
}

// Images without a structure hold nothing that could be told apart.
void UnmixJob::checkConstantImages()
{
    const QStringList constant = m_setUp.constantImages();
    if (m_setUp.allImagesConstant()) {
        throw Failure(QStringLiteral("%1 (in every image all pixels that are analysed have one value)")
                          .arg(errorText(RUNERROR_TOO_MANY_COMPONENTS)));
    }
    if (!constant.isEmpty()) {
        m_monitor.warn(QStringLiteral("in these images all pixels that are analysed have one value: %1")
                           .arg(constant.join(QStringLiteral(", "))));
    }
}

// A result tells of the isotope also where its decay is not corrected for.
void UnmixJob::takeIsotope()
{
    AnalysisInput& input = m_setUp.engine().m_analysisInput;
    QString isotope;
    if (!input.isotope.isEmpty() || !m_setUp.opened().sequence().isCherenkovIsotopeInData(isotope)) {
        return;
    }
    input.isotope = isotope;
    input.halfLifeSeconds = CORVDatabase::getCherenkovRADHalflife(isotope);
}

// Of the run that failed: a result takes over what it finds.
void UnmixJob::takeInstead(const AutomaticRequest& request)
{
    CORVSpumKyvo& engine = m_setUp.engine();
    engine.m_suggestedLabels.clear();
    qDeleteAll(engine.m_spectrumPlots);
    engine.m_spectrumPlots.clear();
    setUpAutomatic(request, m_setUp.opened().sequence(), engine);
}

// Names that nobody gave are no reason to end without a result. Food is asked for even where none is seen: its
// component takes what keeps the others from a start that holds, and they stay what their names say.
RunOutcome UnmixJob::resolve()
{
    CORVSpumKyvo& engine = m_setUp.engine();
    const QString message = QStringLiteral("Resolving the components");
    RunOutcome outcome = runShown(engine, m_monitor, message, notKnown);
    const auto fails = [&] { return outcome != RunOutcome::Aborted && engine.m_nError == RUNERROR_NO_SOLUTION; };
    const QStringList names = engine.m_analysisInput.componentNames;
    if (m_strProposal.isEmpty() || !fails()) {
        return outcome;
    }
    const QString what = QStringLiteral("of the proposed components %1 no start was found that holds (%2), and ")
                             .arg(names.join(QStringLiteral(", ")), engine.getErrorText());
    if (!m_bFoodProposed && m_bFoodFits) {
        AutomaticRequest withFood = m_request.automatic;
        withFood.components = namesWithFood(names);
        takeInstead(withFood);
        outcome = runShown(engine, m_monitor, message, notKnown);
        if (!fails()) {
            m_monitor.add({RunWarning::Severity::Warning, QStringLiteral("food-added"),
                           what + QStringLiteral("they were resolved with Food, which the images do not show"),
                           QStringLiteral("take the map of Food for what the others leave, not for food")});
            return outcome;
        }
    }
    m_monitor.add({RunWarning::Severity::Warning, QStringLiteral("not-by-names"),
                   what + QStringLiteral("%1 were resolved without names").arg(names.size()),
                   QStringLiteral("compare their spectra, or give those that are known by --library")});
    AutomaticRequest byNumber = m_request.automatic;
    byNumber.count = names.size();
    takeInstead(byNumber);
    return runShown(engine, m_monitor, message, notKnown);
}

void UnmixJob::fit(const QElapsedTimer& timer)
{
    auto& engine = m_setUp.engine();
    const RunOutcome outcome =
        isAutomatic() ? resolve() : runShown(engine, m_monitor, QStringLiteral("Fitting"), checkedFraction);
    if (outcome == RunOutcome::Aborted) {
        throw Failure(QStringLiteral("unmixing aborted by user"), Failure::Kind::Aborted);
    }
    if (engine.hasError()) {
        throw Failure(engine.getErrorText(), adviceAgainstFailure());
    }
    const XTNT::CancellationCheck check([this] { m_monitor.stopIfRequested(); });
    XTNT::cancellationPoint();
    const std::optional<RefinementResult> refined = refine();
    const bool weighs = m_request.noise.kind != NoiseRequest::Kind::None || m_request.noise.errors;
    if (refined && weighs && m_request.noise.kind == NoiseRequest::Kind::None) {
        // The errors are those of the weights that the maps have.
        m_request.noise.kind = NoiseRequest::Kind::Poisson;
    }
    const NoiseFitResult weighed = weighs ? weigh() : NoiseFitResult();
    const double seconds = static_cast<double>(timer.nsecsElapsed()) * 1e-9;
    showPictures();
    const bool corrected = isAutomatic() && m_request.automatic.correctDecay;
    m_numbers = numbersOfResult(engine, m_setUp.opened().truthFolder(engine.m_eUnit, corrected));
    if (refined) {
        constexpr double percent = 100.0;
        m_numbers.noise = refined->noise;
        m_numbers.refinement = refined->facts;
        m_numbers.facts.lackOfFitRaw = percent * m_numbers.residual;
    }
    if (weighs) {
        m_numbers.noise = weighed.facts;
        m_numbers.errors = weighed.errors;
    }
    m_numbers.seconds = seconds;
    m_numbers.automatic = isAutomatic();
    takeWarnings();
}

bool UnmixJob::leavesFreedom(int nComponents)
{
    return !m_request.noise.errors || nComponents < m_setUp.engine().getSelectedKeyPairs().size();
}

void UnmixJob::checkFreedom(int nComponents)
{
    const int images = m_setUp.engine().getSelectedKeyPairs().size();
    if (!leavesFreedom(nComponents)) {
        throw Failure(QStringLiteral("%1 spectra leave nothing of %2 images that standard errors could be told by")
                          .arg(nComponents)
                          .arg(images),
                      QStringLiteral("leave --errors out, or take more images"));
    }
}

NoiseFitResult UnmixJob::weigh()
{
    CORVSpumKyvo& engine = m_setUp.engine();
    m_monitor.showProgress(QStringLiteral("Weighing by the noise"), notKnown);
    NoiseFitResult weighed = fitWithNoise(m_request.noise, m_setUp.opened().sequence(), engine);
    weighed.facts.resolved = isAutomatic();
    return weighed;
}

std::optional<RefinementResult> UnmixJob::refine()
{
    const AutomaticRequest& automatic = m_request.automatic;
    // A saved result is fitted to the images as they are, without weights, when it is loaded.
    if (!isAutomatic() || automatic.count < 1 || !automatic.refine || m_request.save ||
        m_setUp.opened().hasPhotographOfCamera()) {
        return std::nullopt;
    }
    m_monitor.showProgress(QStringLiteral("Resolving from the purest pixels"), notKnown);
    return refineResolution(m_setUp.opened().sequence(), m_setUp.engine());
}

// A resolution of named components falls apart where they are not all there: an animal without food has its tissue
// alone beside the dyes, and tissue and dyes alone may be too alike at the start.
QString UnmixJob::adviceAgainstFailure()
{
    const CORVSpumKyvo& engine = m_setUp.engine();
    if (!isAutomatic() || engine.m_nError != RUNERROR_NO_SOLUTION) {
        return QString();
    }
    const QStringList& names = engine.m_analysisInput.componentNames;
    if (m_request.automatic.count > 0) {
        return QStringLiteral("fewer components (--ncomponents) or names (--components) may have one");
    }
    QString first;
    if (!names.contains(QStringLiteral("Food"))) {
        first = QStringLiteral("Food among --components may have a solution, and ");
    } else if (severalExcitations(engine.getSelectedKeyPairs())) {
        // Where no probe takes the light tissue and food are nearly alike.
        first = QStringLiteral("the images of the probes' own excitations (--select) may have a solution, and ");
    }
    return QStringLiteral("of %1 no start was found that holds; %2--ncomponents %3 asks for as many without names")
        .arg(names.join(QStringLiteral(", ")), first, QString::number(names.size()));
}

void UnmixJob::takeWarnings()
{
    RunFindings findings = findingsOfResult(m_setUp.engine(), m_setUp.opened().sequence(), isAutomatic(), m_numbers);
    findings.maskOfPhotograph = m_setUp.hasMaskOfPhotograph();
    if (m_numbers.refinement && m_numbers.refinement->offset) {
        findings.offsetTakenOff = *m_numbers.refinement->offset;
    }
    if (isAutomatic()) {
        findings.askedNames = m_request.automatic.components;
    }
    // What is kept with the result names no files: it may be saved without them.
    keepWarnings(m_monitor.warnings() + runWarnings(findings), m_setUp.engine());
    findings.restInFiles = true;
    m_monitor.addAll(runWarnings(findings));
    m_numbers.warnings = m_monitor.warnings();
}
