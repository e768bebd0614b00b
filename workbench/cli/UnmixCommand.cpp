// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/cli/UnmixCommand.h"

#include "engine/EngineEnums.h"
#include "workbench/cli/CliFailure.h"
#include "workbench/cli/CliSession.h"
#include "workbench/cli/ModeNames.h"
#include "workbench/cli/UnitNames.h"
#include "workbench/cli/UnmixJob.h"

namespace {

[[noreturn]] void usage(const QString& strText)
{
    throw CliFailure(strText + QStringLiteral(" See \"spum unmix --help\"."), CliFailure::Usage);
}

int modeOf(const QCommandLineParser& parser)
{
    const QString text = parser.value(QStringLiteral("method"));
    const int mode = ModeNames::fromText(text);
    if (mode != RUNMODE_LIBRARY && mode != RUNMODE_MANUAL)
        usage(QStringLiteral("--method takes library or manual, not \"%1\".").arg(text));
    return mode;
}

int unitOf(const QCommandLineParser& parser)
{
    const QString text = parser.value(QStringLiteral("unit"));
    if (text.isEmpty())
        return -1;
    const int unit = UnitNames::fromText(text);
    if (unit < 0)
        usage(
            QStringLiteral("--unit takes %1, not \"%2\".").arg(UnitNames::options().join(QStringLiteral(", ")), text));
    return unit;
}

int binningOf(const QCommandLineParser& parser)
{
    const QString text = parser.value(QStringLiteral("binning"));
    if (text.isEmpty())
        return 0;
    bool ok = false;
    const int binning = text.toInt(&ok);
    if (!ok || binning < 1 || binning > 64)
        usage(QStringLiteral("--binning takes a whole number from 1 to 64, not \"%1\".").arg(text));
    return binning;
}

} // namespace

void UnmixCommand::declare(QCommandLineParser& parser) const
{
    parser.addPositionalArgument(QStringLiteral("SEQ"), QStringLiteral("Folder of the sequence."));
    const auto option = [&parser](const char* pName, const QString& strText, const char* pValue,
                                  const QString& strDefault = QString()) {
        parser.addOption({QLatin1String(pName), strText, QLatin1String(pValue), strDefault});
    };
    option("method", QStringLiteral("library or manual: fit the spectra of --library."), "METHOD",
           QStringLiteral("library"));
    option("library", QStringLiteral("Spectra: a library file, or the name of a saved library."), "FILE|NAME");
    option("select",
           QStringLiteral("Images to use: EX/EM,EX/EM,... (INTERVAL/TIME in a temporal sequence), * for any."),
           "PAIRS");
    option("mask", QStringLiteral("TIFF image; pixels above 0 are analysed. none: all pixels."), "FILE",
           QStringLiteral("none"));
    option("unit", QStringLiteral("counts, radiance, radiant-efficiency or efficiency; the best that the images have."),
           "UNIT");
    option("binning", QStringLiteral("Binning of the analysis; the images' most common one."), "N");
    option("out", QStringLiteral("Folder for the results; SEQ/unmixed-METHOD."), "DIR");
    parser.addOption({QStringLiteral("force"), QStringLiteral("Replace earlier results in that folder.")});
}

void UnmixCommand::run(const QCommandLineParser& parser, CliSession& session)
{
    const QStringList arguments = parser.positionalArguments();
    if (arguments.size() != 1)
        usage(QStringLiteral("unmix takes one sequence."));
    UnmixRequest request;
    request.sequence = arguments[0];
    request.mode = modeOf(parser);
    request.library = parser.value(QStringLiteral("library"));
    if (request.library.isEmpty())
        usage(QStringLiteral("--library is missing: the spectra to fit."));
    request.select = parser.value(QStringLiteral("select"));
    if (parser.isSet(QStringLiteral("select")) && request.select.trimmed().isEmpty())
        usage(QStringLiteral("--select names no image."));
    request.mask = parser.value(QStringLiteral("mask"));
    if (request.mask == QLatin1String("none"))
        request.mask.clear();
    request.unit = unitOf(parser);
    request.binning = binningOf(parser);
    request.out = parser.value(QStringLiteral("out"));
    request.force = parser.isSet(QStringLiteral("force"));
    UnmixJob(request, session).run();
}
