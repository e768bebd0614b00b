// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "workbench/commands/Command.h"

// `spum redo RESULT`: makes a result again from what its summary tells of its origin, and says whether the bits are the
// same.
class RedoCommand : public Command
{
public:
    QString name() const override { return QStringLiteral("redo"); }
    QString summary() const override { return QStringLiteral("Make a result again and tell whether it is the same."); }
    void declare(CommandParser& parser) const override;
    QList<CommandManual::Example> examples() const override;
    void run(const QCommandLineParser& parser, CliSession& session) override;
};
