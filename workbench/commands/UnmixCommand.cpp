// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/commands/UnmixCommand.h"

#include "services/analysis/UnmixJob.h"
#include "services/warnings/strictFailure.h"
#include "workbench/commands/AnalysisOptions.h"
#include "workbench/commands/CliSession.h"
#include "workbench/commands/CommandParser.h"
#include "workbench/commands/Options.h"
#include "workbench/commands/UnmixOptions.h"
#include "workbench/commands/givenUnmixOptions.h"

#include <QCoreApplication>

void UnmixCommand::declare(CommandParser& parser) const
{
    declareUnmixOptions(parser);
    declarePlaces(parser, QStringLiteral("SEQ/unmixed-METHOD"));
    addFlag(parser, "replace", QStringLiteral("Replace earlier results in that folder, but no saved result."));
    addFlag(parser, "dry-run",
            QStringLiteral("Only tell which images, pixels, unit and spectra it would be; nothing is written."));
    addFlag(parser, "strict",
            QStringLiteral("End with status 1 where a warning says that the answer is likely to be wrong, with 3 where "
                           "there are other warnings; the results are written all the same."));
}

QList<CommandManual::Example> UnmixCommand::examples() const
{
    return {
        {QStringLiteral("spum unmix mouse"),
         QStringLiteral(
             "Resolve the components that are proposed; maps, report and numbers go to mouse/unmixed-automatic.")},
        {QStringLiteral("spum unmix mouse --components \"TissueAF,Food,AlexaFluor 750,AlexaFluor 790\" --out by-name"),
         QStringLiteral("Resolve these four.")},
        {QStringLiteral("spum unmix mouse --ncomponents 4 --out by-number"),
         QStringLiteral("Resolve four of which nothing is known.")},
        {QStringLiteral("spum unmix mouse --library by-name/spectra.csv --out again"),
         QStringLiteral("Fit known spectra, here those that were resolved before.")}};
}

void UnmixCommand::check(const QCommandLineParser& parser) const
{
    unmixRequestOf(parser);
}

void UnmixCommand::run(const QCommandLineParser& parser, CliSession& session)
{
    UnmixRequest request = unmixRequestOf(parser);
    request.command = QStringList(QStringLiteral("spum")) + QCoreApplication::arguments().mid(1);
    request.arguments = lastingUnmixArguments(parser);
    UnmixJob job(request, session);
    if (parser.isSet(QStringLiteral("dry-run"))) {
        session.answer(job.plan());
        return;
    }
    session.answer(job.run());
    if (parser.isSet(QStringLiteral("strict")) && !job.warnings().isEmpty()) {
        throw strictFailure(job.warnings());
    }
}
