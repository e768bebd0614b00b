// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/commands/UnmixCommand.h"

#include "services/analysis/UnmixJob.h"
#include "services/results/ResultReport.h"
#include "workbench/commands/AnalysisOptions.h"
#include "workbench/commands/CliSession.h"
#include "workbench/commands/Options.h"
#include "workbench/commands/UnmixOptions.h"

#include <QCoreApplication>

void UnmixCommand::declare(QCommandLineParser& parser) const
{
    declareUnmixOptions(parser);
    declarePlaces(parser, QStringLiteral("SEQ/unmixed-METHOD"));
    addFlag(parser, "replace", QStringLiteral("Replace earlier results in that folder, and nothing else of --force."));
}

void UnmixCommand::run(const QCommandLineParser& parser, CliSession& session)
{
    UnmixRequest request = unmixRequestOf(parser);
    request.command = shellLine(QStringList(QStringLiteral("spum")) + QCoreApplication::arguments().mid(1));
    session.answer(UnmixJob(request, session).run());
}
