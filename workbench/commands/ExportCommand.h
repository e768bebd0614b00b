// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "workbench/commands/Command.h"

// `spum export SEQ --format FORMAT --out PATH`: the calibrated images as a cube for other programs.
class ExportCommand : public Command
{
public:
    QString name() const override { return QStringLiteral("export"); }
    QString summary() const override { return QStringLiteral("Write the images as a cube for other programs."); }
    void declare(CommandParser& parser) const override;
    QList<CommandManual::Example> examples() const override;
    void check(const QCommandLineParser& parser) const override;
    void run(const QCommandLineParser& parser, CliSession& session) override;
};
