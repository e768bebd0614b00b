// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/commands/AnalysisOptions.h"

#include "services/basis/Failure.h"
#include "services/basis/UnitNames.h"
#include "workbench/commands/CallErrors.h"
#include "workbench/commands/CommandParser.h"
#include "workbench/commands/MaskOptions.h"
#include "workbench/commands/Options.h"

#include <QCommandLineParser>

namespace {

int binningOf(const QString& strText)
{
    bool ok = false;
    const int binning = strText.toInt(&ok);
    if (!ok || binning < 1 || binning > 64) {
        throw Failure(QStringLiteral("--binning takes a whole number from 1 to 64, not \"%1\".").arg(strText),
                      Failure::Kind::BadRequest);
    }
    return binning;
}

} // namespace

void declarePlaces(CommandParser& parser, const QString& strOutDefault)
{
    parser.addPositionalArgument(QStringLiteral("SEQ"), QStringLiteral("Folder of the sequence."));
    addValueOption(parser, "out", QStringLiteral("Folder for the results; %1.").arg(strOutDefault), "DIR");
}

void declareImageOptions(CommandParser& parser, const QString& strMaskDefault)
{
    addValueOption(parser, "select",
                   QStringLiteral("Images to use: EX/EM,EX/EM,... (INTERVAL/TIME in a temporal sequence), * for any."),
                   "PAIRS");
    declareMaskOptions(parser, strMaskDefault);
    addChoiceOption(
        parser, "unit",
        QStringLiteral("counts, radiance, radiant-efficiency or efficiency; the best that the images have."), "UNIT",
        UnitNames::options());
    addValueOption(parser, "binning", QStringLiteral("Binning of the analysis; the images' most common one."), "N");
}

AnalysisRequest analysisRequestOf(const QCommandLineParser& parser, const QString& strCommand,
                                  MaskRequest::Kind eMaskDefault)
{
    const auto value = [&parser](const char* pName) { return parser.value(QLatin1String(pName)); };
    AnalysisRequest request;
    request.select = value("select");
    CallErrors errors(strCommand);
    errors.collect([&] {
        const QStringList arguments = parser.positionalArguments();
        if (arguments.size() != 1) {
            refuseUsage(qPrintable(strCommand), QStringLiteral("%1 takes one sequence.").arg(strCommand));
        }
        request.sequence = arguments[0];
    });
    errors.collect([&] {
        if (parser.isSet(QStringLiteral("select")) && request.select.trimmed().isEmpty()) {
            throw Failure(QStringLiteral("--select names no image."), Failure::Kind::BadRequest);
        }
    });
    errors.collect([&] { request.mask = maskOptionOf(parser, eMaskDefault); });
    if (!value("unit").isEmpty()) {
        errors.collect([&] { request.unit = unitOption(parser, qPrintable(strCommand)); });
    }
    errors.collect(
        [&] { request.binning = value("binning").isEmpty() ? request.binning : binningOf(value("binning")); });
    errors.throwAll();
    request.out = value("out");
    request.force = parser.isSet(QStringLiteral("force"));
    return request;
}
