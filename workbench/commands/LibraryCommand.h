// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "workbench/commands/Command.h"

class SpectraTable;

// `spum library list|show|save|...`: the saved spectrum libraries. What changes them is in LibraryEditing.
class LibraryCommand : public Command
{
public:
    QString name() const override { return QStringLiteral("library"); }
    QString summary() const override { return QStringLiteral("List, show, make and change spectrum libraries."); }
    void declare(CommandParser& parser) const override;
    QList<CommandManual::Example> examples() const override;
    QStringList repeatableOptions() const override
    {
        return {QStringLiteral("region"), QStringLiteral("sequence"), QStringLiteral("probes"), QStringLiteral("from"),
                QStringLiteral("spectrum")};
    }
    void check(const QCommandLineParser& parser) const override;
    void run(const QCommandLineParser& parser, CliSession& session) override;

private:
    void list(CliSession& session) const;
    void show(const QString& strName, CliSession& session) const;
    void showTable(const SpectraTable& table, const QString& strName, CliSession& session) const;
};
