// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "workbench/commands/Command.h"

// `spum pca SEQ`: how many components the images hold.
class PcaCommand : public Command
{
public:
    QString name() const override { return QStringLiteral("pca"); }
    QString summary() const override
    {
        return QStringLiteral("Tell how much of the variance how many components explain.");
    }
    void declare(CommandParser& parser) const override;
    QList<CommandManual::Example> examples() const override;
    void check(const QCommandLineParser& parser) const override;
    void run(const QCommandLineParser& parser, CliSession& session) override;
};
