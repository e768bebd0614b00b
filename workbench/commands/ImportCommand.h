// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "workbench/commands/Command.h"

// `spum import STACK OUT`: makes a sequence of image files. Which image is what is told by --images, or inferred.
class ImportCommand : public Command
{
public:
    QString name() const override { return QStringLiteral("import"); }
    QString summary() const override { return QStringLiteral("Make a sequence of TIFF files or an ENVI cube."); }
    void declare(CommandParser& parser) const override;
    QList<CommandManual::Example> examples() const override;
    void check(const QCommandLineParser& parser) const override;
    void run(const QCommandLineParser& parser, CliSession& session) override;
};
