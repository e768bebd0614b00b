// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "workbench/program/ProgramFixture.h"

#include "services/importer/CsvLine.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonObject>

#include <csignal>

// Three small sequences below "seqs", and what `spum batch` says and leaves of them.
class BatchProgramFixture : public ProgramFixture
{
protected:
    void SetUp() override
    {
        ProgramFixture::SetUp();
        std::signal(SIGINT, SIG_DFL);
        ASSERT_TRUE(QDir().mkpath(path("seqs")) && QDir().mkpath(path("large")));
        for (const char* name : {"a", "b", "c"}) {
            smallSequence().writeTo(path(QStringLiteral("seqs/") + name));
        }
    }
    // Of "seqs", into "out".
    QStringList batch(const QStringList& options = {}) const
    {
        return QStringList{"batch", "seqs/a",    "seqs/b",  "seqs/c", "--out",
                           "out",   "--library", library(), "--jobs", "2"} +
               options;
    }
    // The lines of the sequences, without their numbers and sorted by name.
    static QStringList endsIn(const ProgramResult& result)
    {
        QStringList lines;
        for (const QString& line : QString::fromUtf8(result.out).split('\n')) {
            if (line.section(' ', 0, 0).contains('/') && line.contains(": ")) {
                lines.append(line.section(' ', 1));
            }
        }
        lines.sort();
        return lines;
    }
    // Which of the sequences a batch has unmixed, and not let be.
    static QString unmixedIn(const ProgramResult& result)
    {
        QStringList names;
        for (const QString& line : endsIn(result)) {
            if (!line.contains("unchanged")) {
                names.append(line.section(':', 0, 0));
            }
        }
        return names.join(' ');
    }
    QString column(const QString& strName, int nRow) const
    {
        const QStringList lines = QString::fromUtf8(contentOf(path("out/batch.csv"))).split('\n');
        QStringList header;
        QStringList row;
        QString error;
        EXPECT_TRUE(splitCsvLine(lines.value(0), ',', &header, &error));
        EXPECT_TRUE(splitCsvLine(lines.value(nRow), ',', &row, &error));
        return row.value(header.indexOf(strName));
    }
    QJsonObject planOf(const QStringList& options) const
    {
        return succeed(batch(options + QStringList{"--dry-run", "--json"})).json();
    }
    QStringList reasonsOf(const QStringList& options = {}) const
    {
        QStringList reasons;
        for (const auto& sequence : planOf(options)["sequences"].toArray()) {
            reasons.append(sequence.toObject()["why"].toString());
        }
        return reasons;
    }
};
