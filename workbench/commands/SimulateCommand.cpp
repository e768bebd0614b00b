// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/commands/SimulateCommand.h"

#include "platform/orvutils/printable.h"
#include "services/basis/Failure.h"
#include "workbench/commands/CallErrors.h"
#include "workbench/commands/CliProgress.h"
#include "workbench/commands/CliSession.h"
#include "workbench/commands/CommandParser.h"
#include "workbench/commands/Options.h"
#include "workbench/simulator/FilterPlan.h"
#include "workbench/simulator/OptionCheck.h"
#include "workbench/simulator/SourceList.h"
#include "workbench/simulator/simulate.h"

#include "XTNT/xtnt_parallel.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>

namespace {

// Kinds as flags.
constexpr int flagOf(SimulationKind eKind)
{
    return 1 << static_cast<int>(eKind);
}
constexpr int kEpi = flagOf(SimulationKind::Epi);
constexpr int kLuminescent = flagOf(SimulationKind::Luminescent);
constexpr int kScan = flagOf(SimulationKind::Transillumination);
constexpr int kTemporal = flagOf(SimulationKind::Temporal);
constexpr int kCherenkov = flagOf(SimulationKind::Cherenkov);
constexpr int kAll = kEpi | kLuminescent | kScan | kTemporal | kCherenkov;

// An option, its help, the name of its value (empty: a switch), the default that the help tells, the kinds that have
// it, and the words that it takes, with blanks between (empty: any).
struct OptionText
{
    const char* name;
    const char* help;
    const char* value;
    const char* standard;
    int kinds = kAll;
    const char* words = "";
};

constexpr OptionText kOptions[] = {
    {"kind", "epi, luminescent, transillumination, temporal or cherenkov.", "KIND", "epi", kAll,
     "epi luminescent transillumination temporal cherenkov"},
    {"size", "Pixels along a side of the images.", "N", "256"},
    {"bands", "Number of filter pairs, an image each (transillumination: for each spot).", "N",
     "18, luminescent and cherenkov 12, transillumination 8", kAll & ~kTemporal},
    {"probes",
     "Dyes, or luciferases of a luminescent sequence, split by commas. Temporal: one goes to three organs, several to "
     "a place each.",
     "A,B",
     "AlexaFluor 750,AlexaFluor 790; luminescent: click-beetle luciferases, green and red; transillumination: "
     "AlexaFluor 680,AlexaFluor 750; temporal: AlexaFluor 750",
     kAll & ~kCherenkov},
    {"depths", "Depths of the sources in mm, one for all or one each; cherenkov: the isotope lies at each of them.",
     "MM,MM", "2 for the first to 6 for the last, or the organs' own"},
    {"excitations", "Excitation filters in nm, split by commas (temporal: one).", "NM,NM",
     "chosen after the dyes, 70 nm apart, up to 675", kEpi | kScan | kTemporal},
    {"ratio", "Peak of each source over the animal's own light beneath, in the source's brightest band.", "R",
     "3, temporal 5, cherenkov 30, luminescent 50"},
    {"food-ratio", "The same for food in the gut; 0 leaves it out.", "R", "1.5, transillumination 0", kEpi | kScan},
    {"spots", "Scan spots below the animal.", "N", "4", kScan},
    {"times", "Times of the images in seconds, split by commas.", "S,S",
     "every 20 s for 5 minutes, then every 5 minutes for an hour", kTemporal},
    {"no-time-keys", "Do not tell the times in the images.", "", "", kTemporal},
    {"isotope", "Isotope of the database.", "NAME", "F-18", kCherenkov},
    {"span", "Half lives from the first image to the last.", "H", "1", kCherenkov},
    {"full", "Write every image, flag and section that a dataset can have.", "", ""},
    {"noise", "default, or none: exact counts as floats, without noise, offset and rounding.", "KIND", "default", kAll,
     "default none"},
    {"seed", "Seed of noise, texture and posture.", "N", "1"},
    {"peak", "Electrons at the brightest pixel of the sequence.", "E", "20000"},
    {"gain", "Electrons a count.", "E", "1"},
    {"read-noise", "Read noise in electrons.", "E", "10"},
    {"offset", "Offset in counts.", "N", "300"},
    {"exposure", "Exposure in seconds, one for all or one each band.", "S,S",
     "1, luminescent 60, cherenkov 60 or half the time between images"},
    {"binning", "Binning of the camera.", "N", "4"},
    {"mixed-binning", "Take the first two images at twice the binning.", "", "", kAll & ~kScan},
    {"name", "Name of the sequence.", "NAME", "that of OUT"},
    {"subject", "Subject type of the sequence.", "TEXT", "Mouse"},
    {"force", "Replace a sequence that exists, unless it holds anything that was not written with it.", "", ""},
    {"discard-results", "With --force: replace it together with its saved results.", "", ""},
};

QString optionName(const char* pName)
{
    return QStringLiteral("--%1").arg(QLatin1String(pName));
}

QStringList fieldsOf(const QString& strText)
{
    QStringList fields;
    for (const QString& field : strText.split(QLatin1Char(','))) {
        fields.append(field.trimmed());
    }
    return fields;
}

double toNumber(const QString& strText, const char* pName)
{
    bool ok = false;
    const double value = strText.toDouble(&ok);
    if (!ok) {
        refuseUsage("simulate", QStringLiteral("%1 takes a number, not \"%2\".").arg(optionName(pName), strText));
    }
    return value;
}

int toWhole(const QString& strText, const char* pName)
{
    bool ok = false;
    const int value = strText.toInt(&ok);
    if (!ok) {
        refuseUsage("simulate", QStringLiteral("%1 takes a whole number, not \"%2\".").arg(optionName(pName), strText));
    }
    return value;
}

void take(const QCommandLineParser& parser, const char* pName, double* pValue)
{
    if (parser.isSet(QLatin1String(pName))) {
        *pValue = toNumber(parser.value(QLatin1String(pName)), pName);
    }
}

void take(const QCommandLineParser& parser, const char* pName, int* pValue)
{
    if (parser.isSet(QLatin1String(pName))) {
        *pValue = toWhole(parser.value(QLatin1String(pName)), pName);
    }
}

void take(const QCommandLineParser& parser, const char* pName, QString* pValue)
{
    if (parser.isSet(QLatin1String(pName))) {
        *pValue = parser.value(QLatin1String(pName));
    }
}

void take(const QCommandLineParser& parser, const char* pName, QList<double>* pValues)
{
    if (!parser.isSet(QLatin1String(pName))) {
        return;
    }
    pValues->clear();
    for (const QString& field : fieldsOf(parser.value(QLatin1String(pName)))) {
        pValues->append(toNumber(field, pName));
    }
}

void take(const QCommandLineParser& parser, const char* pName, QList<int>* pValues)
{
    if (!parser.isSet(QLatin1String(pName))) {
        return;
    }
    pValues->clear();
    for (const QString& field : fieldsOf(parser.value(QLatin1String(pName)))) {
        pValues->append(toWhole(field, pName));
    }
}

std::uint64_t takeSeed(const QCommandLineParser& parser, std::uint64_t standard)
{
    if (!parser.isSet(QStringLiteral("seed"))) {
        return standard;
    }
    bool ok = false;
    const QString text = parser.value(QStringLiteral("seed"));
    const std::uint64_t seed = text.toULongLong(&ok);
    if (!ok) {
        refuseUsage("simulate", QStringLiteral("--seed takes a whole number from 0 on, not \"%1\".").arg(text));
    }
    return seed;
}

bool takeNoise(const QCommandLineParser& parser)
{
    QString kind = QStringLiteral("default");
    take(parser, "noise", &kind);
    if (kind != QLatin1String("default") && kind != QLatin1String("none")) {
        refuseUsage("simulate", QStringLiteral("--noise is \"default\" or \"none\", not \"%1\".").arg(kind));
    }
    return kind == QLatin1String("default");
}

// The kind asked for, Epi for none that there is; options that it does not have are refused.
SimulationKind takeKind(const QCommandLineParser& parser, CallErrors& errors)
{
    QString name = kindName(SimulationKind::Epi);
    take(parser, "kind", &name);
    SimulationKind kind = SimulationKind::Epi;
    if (!kindOfName(name, &kind)) {
        errors.refuse(QStringLiteral("--kind is %1, not \"%2\".").arg(kindNames().join(QStringLiteral(", ")), name));
        return SimulationKind::Epi;
    }
    for (const OptionText& option : kOptions) {
        if (parser.isSet(QLatin1String(option.name)) && (option.kinds & flagOf(kind)) == 0) {
            errors.refuse(QStringLiteral("%1 does not go with the kind %2.").arg(optionName(option.name), name));
        }
    }
    return kind;
}

SimulationOptions takeOptions(const QCommandLineParser& parser)
{
    CallErrors errors(QStringLiteral("simulate"));
    if (parser.positionalArguments().size() != 1 || parser.positionalArguments().constFirst().isEmpty()) {
        errors.refuse(QStringLiteral("simulate takes one folder to write."));
    }
    SimulationOptions options = SimulationOptions::standard(takeKind(parser, errors));
    errors.collect([&] { take(parser, "size", &options.size); });
    errors.collect([&] { take(parser, "bands", &options.bands); });
    if (parser.isSet(QStringLiteral("probes"))) {
        options.probes = fieldsOf(parser.value(QStringLiteral("probes")));
    }
    errors.collect([&] { take(parser, "depths", &options.depthsMm); });
    errors.collect([&] { take(parser, "excitations", &options.excitationsNm); });
    errors.collect([&] { take(parser, "ratio", &options.ratio); });
    errors.collect([&] { take(parser, "food-ratio", &options.foodRatio); });
    errors.collect([&] { take(parser, "spots", &options.spots); });
    errors.collect([&] { take(parser, "times", &options.timesSeconds); });
    options.timeKeys = !parser.isSet(QStringLiteral("no-time-keys"));
    errors.collect([&] { take(parser, "isotope", &options.isotope); });
    errors.collect([&] { take(parser, "span", &options.spanHalfLives); });
    options.full = parser.isSet(QStringLiteral("full"));
    errors.collect([&] { options.noise = takeNoise(parser); });
    errors.collect([&] { options.seed = takeSeed(parser, options.seed); });
    errors.collect([&] { take(parser, "peak", &options.peakElectrons); });
    errors.collect([&] { take(parser, "gain", &options.gain); });
    errors.collect([&] { take(parser, "read-noise", &options.readNoise); });
    errors.collect([&] { take(parser, "offset", &options.offset); });
    errors.collect([&] { take(parser, "exposure", &options.exposuresSeconds); });
    errors.collect([&] { take(parser, "binning", &options.binning); });
    options.mixedBinning = parser.isSet(QStringLiteral("mixed-binning"));
    errors.collect([&] { take(parser, "name", &options.name); });
    errors.collect([&] { take(parser, "subject", &options.subject); });
    options.force = parser.isSet(QStringLiteral("force"));
    options.discardResults = parser.isSet(QStringLiteral("discard-results"));
    errors.collect([&options] {
        if (options.discardResults && !options.force) {
            refuseUsage("simulate", QStringLiteral("--discard-results goes with --force."));
        }
    });
    errors.throwAll();
    const QString problem = validate(options);
    if (!problem.isEmpty()) {
        refuseUsage("simulate", problem);
    }
    return options;
}

QJsonArray jsonNumbers(const QList<double>& values)
{
    QJsonArray array;
    for (const double value : values) {
        array.append(value);
    }
    return array;
}

// What was simulated, with everything that the options left open.
struct Outcome
{
    QString folder;
    QStringList sources;
    QList<double> depths;
    QList<FilterPair> pairs;
    int images = 0;
};

Outcome describe(const SimulationOptions& options, const QString& strTarget)
{
    Outcome outcome;
    outcome.folder = QDir::cleanPath(QFileInfo(strTarget).absoluteFilePath());
    QString error; // validate() has tried it already
    choosePairs(options, &outcome.pairs, &error);
    for (const SimulatedSource& source : sourcesOf(options)) {
        outcome.sources.append(source.name);
        outcome.depths.append(source.depthMm);
    }
    outcome.images = bandCount(options) * (options.kind == SimulationKind::Transillumination ? options.spots : 1);
    return outcome;
}

QString textAnswer(const SimulationOptions& options, const Outcome& outcome)
{
    QStringList sources;
    for (int i = 0; i < outcome.sources.size(); ++i) {
        const QString& name = outcome.sources.at(i);
        const bool told = name.endsWith(QLatin1String(" mm"));
        sources.append(told ? name : QStringLiteral("%1 at %2 mm").arg(name, QString::number(outcome.depths.at(i))));
    }
    return QStringLiteral("%1 images of %2 x %2 pixels, %3\n%4\nsequence in %5\ntruth in    %5/%6\n")
        .arg(outcome.images)
        .arg(options.size)
        .arg(options.noise ? QStringLiteral("with noise") : QStringLiteral("without noise"),
             sources.join(QStringLiteral(", ")), orv::printableLine(outcome.folder), QLatin1String(kTruthFolder));
}

// What only some kinds have.
void addKindAnswers(QJsonObject& json, const SimulationOptions& options)
{
    if (options.kind == SimulationKind::Transillumination) {
        json.insert(QStringLiteral("spots"), options.spots);
    }
    if (options.kind == SimulationKind::Temporal) {
        json.insert(QStringLiteral("timesSeconds"), jsonNumbers(timesOf(options)));
        json.insert(QStringLiteral("timeKeys"), options.timeKeys);
    }
    if (options.kind == SimulationKind::Cherenkov) {
        json.insert(QStringLiteral("isotope"), options.isotope);
        json.insert(QStringLiteral("spanHalfLives"), options.spanHalfLives);
    }
}

QJsonObject jsonAnswer(const SimulationOptions& options, const Outcome& outcome)
{
    QJsonArray pairs;
    for (const FilterPair& pair : outcome.pairs) {
        pairs.append(QJsonObject{{"excitation", pair.excitation}, {"emission", pair.emission}});
    }
    QJsonObject json{{"folder", outcome.folder},
                     {"truth", outcome.folder + QLatin1Char('/') + QLatin1String(kTruthFolder)},
                     {"kind", kindName(options.kind)},
                     {"size", options.size},
                     {"bands", bandCount(options)},
                     {"images", outcome.images},
                     {"pairs", pairs},
                     {"probes", QJsonArray::fromStringList(outcome.sources)},
                     {"depthsMm", jsonNumbers(outcome.depths)},
                     {"ratio", options.ratio},
                     {"foodRatio", options.foodRatio},
                     {"noise", options.noise ? QStringLiteral("default") : QStringLiteral("none")},
                     {"seed", QString::number(options.seed)}, // as text: a number would lose bits
                     {"peakElectrons", options.peakElectrons},
                     {"gain", options.gain},
                     {"readNoise", options.readNoise},
                     {"offset", options.offset},
                     {"exposuresSeconds", jsonNumbers(options.exposuresSeconds)},
                     {"binning", options.binning},
                     {"mixedBinning", options.mixedBinning},
                     {"full", options.full},
                     {"subject", options.subject}};
    addKindAnswers(json, options);
    return json;
}

void write(const QString& strTarget, const SimulationOptions& options, CliSession& session)
{
    const XTNT::CancellationCheck check([&session] { session.stopIfRequested(); });
    QString error;
    const auto progress = [&session](double fraction, const QString& message) {
        session.showProgress(message, fraction);
        return !session.isStopRequested();
    };
    if (simulate(strTarget, options, progress, &error)) {
        return;
    }
    if (error.isEmpty()) {
        session.stopIfRequested();
    }
    throw Failure(error);
}

} // namespace

void SimulateCommand::declare(CommandParser& parser) const
{
    parser.addPositionalArgument(QStringLiteral("OUT"), QStringLiteral("Folder of the new sequence."));
    for (const OptionText& option : kOptions) {
        QString help = QString::fromLatin1(option.help);
        if (*option.standard != '\0') {
            help += QStringLiteral(" Default: %1.").arg(QLatin1String(option.standard));
        }
        addChoiceOption(parser, option.name, help, option.value,
                        QString::fromLatin1(option.words).split(QLatin1Char(' '), Qt::SkipEmptyParts));
    }
}

QList<CommandManual::Example> SimulateCommand::examples() const
{
    return {
        {QStringLiteral("spum simulate mouse"),
         QStringLiteral(
             "A mouse with food in its gut and two dyes, in the folder \"mouse\", with the truth beside the images.")},
        {QStringLiteral("spum simulate fasted --food-ratio 0 --size 128"),
         QStringLiteral("Another one that has not eaten, in smaller images.")},
        {QStringLiteral("spum simulate kinetics --kind temporal --size 64"),
         QStringLiteral("The course of a dye through the organs: a series of times.")}};
}

void SimulateCommand::check(const QCommandLineParser& parser) const
{
    takeOptions(parser);
}

void SimulateCommand::run(const QCommandLineParser& parser, CliSession& session)
{
    const SimulationOptions options = takeOptions(parser);
    const QString target = parser.positionalArguments().constFirst();
    session.startProgress(QStringLiteral("simulating"));
    write(target, options, session);
    session.endProgress();
    const Outcome outcome = describe(options, target);
    session.answer(textAnswer(options, outcome));
    session.answerJson(jsonAnswer(options, outcome));
}
