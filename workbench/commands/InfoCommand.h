// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "workbench/commands/Command.h"

// `spum info SEQ`: what a sequence holds, and what can be analysed in it and why not.
class InfoCommand : public Command
{
public:
    QString name() const override { return QStringLiteral("info"); }
    QString summary() const override
    {
        return QStringLiteral("Tell what a sequence holds and what can be analysed in it.");
    }
    void declare(CommandParser& parser) const override;
    QList<CommandManual::Example> examples() const override;
    void run(const QCommandLineParser& parser, CliSession& session) override;
};
