// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "workbench/commands/Command.h"

// `spum unmix SEQ`: fits known spectra to every pixel of a sequence and writes maps, pictures and numbers.
class UnmixCommand : public Command
{
public:
    QString name() const override { return QStringLiteral("unmix"); }
    QString summary() const override { return QStringLiteral("Separate a sequence into maps of its sources."); }
    void declare(CommandParser& parser) const override;
    QList<CommandManual::Example> examples() const override;
    // "--save" alone takes the next automatic name.
    QStringList optionsWithOptionalValue() const override { return {QStringLiteral("save")}; }
    void check(const QCommandLineParser& parser) const override;
    void run(const QCommandLineParser& parser, CliSession& session) override;
};
