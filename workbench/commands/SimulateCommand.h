// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "workbench/commands/Command.h"

// `spum simulate OUT`: writes a simulated sequence whose true spectra and maps lie beside it.
class SimulateCommand : public Command
{
public:
    QString name() const override { return QStringLiteral("simulate"); }
    QString summary() const override { return QStringLiteral("Write a simulated mouse sequence with its truth."); }
    void declare(CommandParser& parser) const override;
    QList<CommandManual::Example> examples() const override;
    void check(const QCommandLineParser& parser) const override;
    void run(const QCommandLineParser& parser, CliSession& session) override;
};
