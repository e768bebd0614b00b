// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "workbench/commands/Command.h"

// `spum sources`: what the database of sources knows.
class SourcesCommand : public Command
{
public:
    QString name() const override { return QStringLiteral("sources"); }
    QString summary() const override { return QStringLiteral("List the sources of light that the database has."); }
    void declare(CommandParser& parser) const override;
    QList<CommandManual::Example> examples() const override;
    void run(const QCommandLineParser& parser, CliSession& session) override;
};
