// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "workbench/commands/Command.h"

#include <limits>

// `spum batch SEQ... --out DIR`: unmixes many sequences, several at once, and goes on where it was stopped.
class BatchCommand : public Command
{
public:
    QString name() const override { return QStringLiteral("batch"); }
    QString summary() const override { return QStringLiteral("Unmix many sequences, and tell of all on one page."); }
    void declare(CommandParser& parser) const override;
    QList<CommandManual::Example> examples() const override;
    // "--save" alone takes the next automatic name; a name follows as "--save=NAME".
    QStringList optionsWithOptionalValue() const override { return {QStringLiteral("save")}; }
    int argumentCount() const override { return std::numeric_limits<int>::max(); }
    void run(const QCommandLineParser& parser, CliSession& session) override;
};
