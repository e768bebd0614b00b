// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "workbench/commands/Command.h"

class CORVSequenceDataset;
class RoiStore;

// `spum roi SEQ add|list|measure|remove`: regions of interest of a sequence and their numbers.
class RoiCommand : public Command
{
public:
    QString name() const override { return QStringLiteral("roi"); }
    QString summary() const override
    {
        return QStringLiteral("Keep regions of interest and measure them over images and maps.");
    }
    void declare(QCommandLineParser& parser) const override;
    void run(const QCommandLineParser& parser, CliSession& session) override;

private:
    void add(const QCommandLineParser& parser, CORVSequenceDataset& sequence, RoiStore& store,
             CliSession& session) const;
    void list(const RoiStore& store, CliSession& session) const;
    void measure(const QCommandLineParser& parser, CORVSequenceDataset& sequence, RoiStore& store,
                 CliSession& session) const;
    void remove(const QString& strName, RoiStore& store, CliSession& session) const;
};
