// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/batch/BatchJob.h"

#include <QList>
#include <QString>

class JobMonitor;
class CommandParser;
class QCommandLineParser;

// The options of a batch itself, which `spum unmix` does not have.
struct BatchWishes
{
    int jobs = 1;
    qint64 memory = 0; // bytes
    bool again = false;
    bool strict = false;
    bool dryRun = false;
    bool list = false;
    bool gather = false;
    QString only; // name of a sequence
    QString out;
};

// Declares the sequences, the options of a batch and those of an unmixing.
void declareBatchOptions(CommandParser& parser);
// Throws Failure (bad request).
BatchWishes batchWishesOf(const QCommandLineParser& parser);

// The sequences that the arguments name, in folders or in tables (arguments that end in ".csv"), each with the options
// of the command line and, in their place, those of its row; all checked as `spum unmix` does before it looks at a
// sequence. A file that an option names counts from the working folder, that of a table also from the table's. Throws
// Failure, with the row's place.
QList<BatchJob> batchJobsOf(const QCommandLineParser& parser, JobMonitor& monitor);

// The command of `spum` that unmixes a sequence into that folder, behind the program's name.
QStringList unmixArguments(const BatchJob& job, const QString& strResults);
