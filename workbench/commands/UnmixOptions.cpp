// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/commands/UnmixOptions.h"

#include "engine/EngineEnums.h"
#include "services/analysis/UnmixJob.h"
#include "services/basis/ModeNames.h"
#include "workbench/commands/AnalysisOptions.h"
#include "workbench/commands/AutomaticOptions.h"
#include "workbench/commands/CallErrors.h"
#include "workbench/commands/CommandParser.h"
#include "workbench/commands/Options.h"
#include "workbench/commands/PictureOptions.h"

#include <QCommandLineParser>

#include <optional>

namespace {

// A library asks for a fit of its spectra; without one the spectra are resolved.
int modeOf(const QCommandLineParser& parser)
{
    const QString text = parser.value(QStringLiteral("method"));
    if (!parser.isSet(QStringLiteral("method"))) {
        return parser.isSet(QStringLiteral("library")) ? RUNMODE_LIBRARY : RUNMODE_AUTOMATIC;
    }
    const int mode = ModeNames::fromText(text);
    if (mode != RUNMODE_LIBRARY && mode != RUNMODE_MANUAL && mode != RUNMODE_AUTOMATIC) {
        refuseUsage("unmix", QStringLiteral("--method takes automatic, library or manual, not \"%1\".").arg(text));
    }
    return mode;
}

NoiseRequest noiseOf(const QCommandLineParser& parser)
{
    NoiseRequest request;
    request.errors = parser.isSet(QStringLiteral("errors"));
    if (!parser.isSet(QStringLiteral("noise"))) {
        return request;
    }
    const QString text = parser.value(QStringLiteral("noise"));
    if (text != QLatin1String("poisson") && text != QLatin1String("gaussian")) {
        refuseUsage("unmix", QStringLiteral("--noise takes poisson or gaussian, not \"%1\".").arg(text));
    }
    request.kind = text == QLatin1String("poisson") ? NoiseRequest::Kind::Poisson : NoiseRequest::Kind::Gaussian;
    return request;
}

// Options that the method would pass over are a misunderstanding.
void checkOptionsOfMethod(const QCommandLineParser& parser, int nMode, CallErrors& errors)
{
    const bool automatic = nMode == RUNMODE_AUTOMATIC;
    if (automatic && parser.isSet(QStringLiteral("library"))) {
        errors.refuse(QStringLiteral("--library does not go with --method automatic, which finds the spectra itself."));
    }
    if (!automatic && parser.value(QStringLiteral("library")).isEmpty()) {
        errors.refuse(QStringLiteral("--library is missing: the spectra to fit."));
    }
    if (parser.isSet(QStringLiteral("noise")) && parser.isSet(QStringLiteral("save"))) {
        errors.refuse(QStringLiteral("--save does not go with --noise: a saved result is fitted again, without "
                                     "weights, when it is loaded."));
    }
    const QStringList given = givenAutomaticOptions(parser);
    if (!automatic && !given.isEmpty()) {
        errors.refuse(QStringLiteral("%1 takes --method automatic.").arg(given.join(QStringLiteral(", "))));
    }
}

} // namespace

void declareUnmixOptions(CommandParser& parser)
{
    addChoiceOption(
        parser, "method",
        QStringLiteral("automatic: resolve spectra and maps from the images; library or manual: fit the spectra of "
                       "--library. Without it: library where --library is given, else automatic."),
        "METHOD",
        {ModeNames::option(RUNMODE_AUTOMATIC), ModeNames::option(RUNMODE_LIBRARY), ModeNames::option(RUNMODE_MANUAL)});
    addValueOption(
        parser, "library",
        QStringLiteral("Spectra to fit: a library file, the name of a saved library, or a plain CSV table of spectra "
                       "over wavelength, brought to the images' bands."),
        "FILE|NAME");
    addChoiceOption(
        parser, "noise",
        QStringLiteral("Fit the spectra, known or resolved, to the pixels a second time, each pixel and image "
                       "weighted by its noise: poisson (of counted light) or gaussian (of one size in each image). "
                       "Without it: all alike."),
        "KIND", {QStringLiteral("poisson"), QStringLiteral("gaussian")});
    addFlag(parser, "errors",
            QStringLiteral("Write a map of standard errors for each component, by that noise or, without --noise, by "
                           "noise of one size everywhere. The spectra count as certain, resolved ones too."));
    declareAutomaticOptions(parser);
    declareImageOptions(parser, QStringLiteral("Without it: auto for the automatic method where a camera took the "
                                               "photograph, else none."));
    parser.addOption(
        {QStringLiteral("pdf"),
         QStringLiteral("Write the report as report.pdf too, and the maps as maps.pdf, both in vectors.")});
    declarePictureOptions(parser);
    addValueOption(
        parser, "save",
        QStringLiteral("Save the result with the sequence, under that name or the next free one (SPUM_001, ...); see "
                       "\"spum results\"."),
        "NAME");
    addValueOption(parser, "note", QStringLiteral("A line about the result, for the report and the saved result."),
                   "TEXT");
    parser.addOption({QStringLiteral("force"),
                      QStringLiteral("Replace earlier results in that folder, and a saved result of that name.")});
}

UnmixRequest unmixRequestOf(const QCommandLineParser& parser)
{
    UnmixRequest request;
    CallErrors errors(QStringLiteral("unmix"));
    std::optional<int> mode;
    errors.collect([&] { mode = modeOf(parser); });
    request.mode = mode.value_or(RUNMODE_AUTOMATIC);
    const bool automatic = request.mode == RUNMODE_AUTOMATIC;
    errors.collect([&] {
        request.analysis = analysisRequestOf(parser, QStringLiteral("unmix"),
                                             automatic ? MaskRequest::Kind::Photograph : MaskRequest::Kind::None);
    });
    if (mode) {
        checkOptionsOfMethod(parser, *mode, errors);
    }
    errors.collect([&] { request.automatic = automaticRequestOf(parser); });
    errors.collect([&] { request.noise = noiseOf(parser); });
    errors.collect([&] { request.pictures = pictureRequestOf(parser, "unmix"); });
    errors.throwAll();
    request.library = parser.value(QStringLiteral("library"));
    request.pdf = parser.isSet(QStringLiteral("pdf"));
    request.save = parser.isSet(QStringLiteral("save"));
    request.saveName = parser.value(QStringLiteral("save"));
    request.note = parser.value(QStringLiteral("note"));
    request.replace = request.analysis.force || parser.isSet(QStringLiteral("replace"));
    return request;
}
