// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "workbench/commands/Command.h"

#include <QStringList>

class OpenedSequence;

// `spum results ACTION SEQ ...`: the results saved with a sequence: list and show them, bring one back, rename, delete,
// export.
class ResultsCommand : public Command
{
public:
    QString name() const override { return QStringLiteral("results"); }
    QString summary() const override
    {
        return QStringLiteral("List, show, load and export the results saved with a sequence.");
    }
    void declare(CommandParser& parser) const override;
    QList<CommandManual::Example> examples() const override;
    void check(const QCommandLineParser& parser) const override;
    void run(const QCommandLineParser& parser, CliSession& session) override;

private:
    // `arguments` are those behind the action, the sequence first.
    void list(OpenedSequence& opened, CliSession& session) const;
    void show(OpenedSequence& opened, const QString& strName, CliSession& session) const;
    void load(OpenedSequence& opened, const QString& strName, const QCommandLineParser& parser,
              CliSession& session) const;
    void rename(OpenedSequence& opened, const QStringList& arguments, CliSession& session) const;
    void remove(OpenedSequence& opened, const QString& strName, const QCommandLineParser& parser,
                CliSession& session) const;
    void exportMaps(OpenedSequence& opened, const QString& strName, const QCommandLineParser& parser,
                    CliSession& session) const;
};
