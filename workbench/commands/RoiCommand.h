// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "workbench/commands/Command.h"

struct RoiCall;

// `spum roi SEQ add|list|measure|remove|rename`: regions of interest of a sequence and their numbers.
class RoiCommand : public Command
{
public:
    QString name() const override { return QStringLiteral("roi"); }
    QString summary() const override
    {
        return QStringLiteral("Keep regions of interest and measure them over images and maps.");
    }
    void declare(CommandParser& parser) const override;
    QList<CommandManual::Example> examples() const override;
    QStringList repeatableOptions() const override { return {QStringLiteral("result")}; }
    void check(const QCommandLineParser& parser) const override;
    void run(const QCommandLineParser& parser, CliSession& session) override;

private:
    struct Work;

    void add(const RoiCall& call, Work& work, CliSession& session) const;
    void list(const Work& work, CliSession& session) const;
    void measure(const RoiCall& call, Work& work, CliSession& session) const;
    void remove(const QString& strName, Work& work, CliSession& session) const;
    void rename(const RoiCall& call, Work& work, CliSession& session) const;
};
