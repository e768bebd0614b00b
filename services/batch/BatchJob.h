// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/batch/UnmixDemand.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

// An option of one sequence, as the command that unmixes it takes it.
struct BatchOption
{
    QString name; // without dashes
    std::optional<QString> value;
    QString file; // of an option that names a file: where it lies, absolute. Its content counts, not its name

    // "--name" or "--name=value".
    QString argument() const
    {
        const QString head = QStringLiteral("--") + name;
        return value ? head + QLatin1Char('=') + *value : head;
    }
};

// One sequence of a batch.
struct BatchJob
{
    QString sequence; // absolute path
    QString name;     // of its folder of results
    QString group;
    QList<BatchOption> options;
    UnmixDemand demand;
    QString place; // "table.csv:3"; empty for one that was named on the command line

    QStringList arguments() const
    {
        QStringList list;
        for (const BatchOption& option : options) {
            list.append(option.argument());
        }
        return list;
    }
};
