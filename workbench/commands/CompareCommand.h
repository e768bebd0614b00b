// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "workbench/commands/Command.h"

// `spum compare SEQ RESULT...`: results of one sequence beside each other, and beside the truth of a simulated one.
class CompareCommand : public Command
{
public:
    QString name() const override { return QStringLiteral("compare"); }
    QString summary() const override { return QStringLiteral("Show results beside each other and beside the truth."); }
    void declare(CommandParser& parser) const override;
    QList<CommandManual::Example> examples() const override;
    void check(const QCommandLineParser& parser) const override;
    void run(const QCommandLineParser& parser, CliSession& session) override;
};
