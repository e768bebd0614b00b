// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/commands/BatchJobs.h"

#include "engine/EngineEnums.h"
#include "services/analysis/UnmixJob.h"
#include "services/basis/Failure.h"
#include "services/basis/JobMonitor.h"
#include "services/batch/BatchTable.h"
#include "services/batch/batchNames.h"
#include "services/batch/unmixMemory.h"
#include "workbench/commands/CallErrors.h"
#include "workbench/commands/CliSession.h"
#include "workbench/commands/CommandParser.h"
#include "workbench/commands/Options.h"
#include "workbench/commands/UnmixCommand.h"
#include "workbench/commands/UnmixOptions.h"
#include "workbench/commands/givenUnmixOptions.h"

#include <QDir>
#include <QFileInfo>
#include <QThread>

#include <algorithm>
#include <optional>

namespace {

constexpr int mostJobs = 1000;

// Options that exclude each other: that of a row takes the place of the other one, too.
const char* const exclusive[][2] = {{"components", "ncomponents"}, {"constraints", "no-constraints"}};

bool takesValue(const QString& strName)
{
    CommandParser parser;
    declareUnmixOptions(parser);
    return parser.parse({QStringLiteral("spum"), QStringLiteral("--%1=x").arg(strName)});
}

QString otherOf(const QString& strName)
{
    for (const auto& pair : exclusive) {
        for (const int i : {0, 1}) {
            if (strName == QLatin1String(pair[i])) {
                return QLatin1String(pair[1 - i]);
            }
        }
    }
    return strName;
}

QList<BatchOption> merged(const QList<BatchOption>& common, const QList<BatchOption>& own)
{
    QList<BatchOption> all;
    for (const BatchOption& option : common) {
        const bool replaced = std::any_of(own.begin(), own.end(), [&option](const BatchOption& other) {
            return other.name == option.name || other.name == otherOf(option.name);
        });
        if (!replaced) {
            all.append(option);
        }
    }
    return all + own;
}

[[noreturn]] void refuseAt(const QString& strPlace, const QString& strReason)
{
    throw Failure(QStringLiteral("%1: %2").arg(strPlace, strReason), Failure::Kind::BadRequest);
}

QList<BatchOption> optionsOfRow(const BatchRow& row)
{
    CommandParser parser;
    declareUnmixOptions(parser);
    if (!parser.parse(QStringList(QStringLiteral("spum")) + row.words)) {
        refuseAt(row.place, parser.errorText());
    }
    if (!parser.positionalArguments().isEmpty()) {
        refuseAt(row.place,
                 QStringLiteral("\"%1\" is no option of \"spum unmix\"").arg(parser.positionalArguments()[0]));
    }
    for (const QString& name : parser.optionNames()) {
        if (parser.values(name).size() > 1) {
            refuseAt(row.place, QStringLiteral("--%1 is given more than once and taken once").arg(name));
        }
    }
    return givenUnmixOptions(parser, QFileInfo(row.place.section(QLatin1Char(':'), 0, -2)).path());
}

// As the command would that is to run, and what its memory depends on.
void check(BatchJob& job)
{
    const UnmixCommand unmix;
    CommandParser parser;
    CliSession::declareOptions(parser);
    unmix.declare(parser);
    try {
        if (!parser.parse(QStringList(QStringLiteral("spum")) +
                          unmixArguments(job, QStringLiteral("results")).mid(1))) {
            throw Failure(parser.errorText(), Failure::Kind::BadRequest);
        }
        const UnmixRequest request = unmixRequestOf(parser);
        job.demand.automatic = request.mode == RUNMODE_AUTOMATIC;
        job.demand.binning = request.analysis.binning;
    } catch (const Failure& failure) {
        if (job.place.isEmpty()) {
            throw;
        }
        throw Failure(QStringLiteral("%1: %2").arg(job.place, failure.text()), failure.kind());
    }
}

int jobsOf(const QCommandLineParser& parser)
{
    const QString text = parser.value(QStringLiteral("jobs"));
    if (!parser.isSet(QStringLiteral("jobs"))) {
        return std::max(1, QThread::idealThreadCount());
    }
    bool good = false;
    const int jobs = text.toInt(&good);
    if (!good || jobs < 1 || jobs > mostJobs) {
        refuseUsage("batch",
                    QStringLiteral("--jobs takes a whole number from 1 to %1, not \"%2\".").arg(mostJobs).arg(text));
    }
    return jobs;
}

} // namespace

void declareBatchOptions(CommandParser& parser)
{
    parser.addPositionalArgument(QStringLiteral("SEQ..."),
                                 QStringLiteral("Folders of sequences, or tables (.csv) with a row a sequence: path, "
                                                "and where they differ name, group, options."),
                                 QStringLiteral("SEQ...|TABLE.csv"));
    addValueOption(parser, "out", QStringLiteral("Folder for the results: a folder each, and batch.html over all."),
                   "DIR");
    addValueOption(
        parser, "jobs",
        QStringLiteral("So many sequences at once, which share the processors; as many as there are of these."), "N");
    addValueOption(parser, "max-memory",
                   QStringLiteral("Most memory that all at once may take by their headers, in GiB; what is free."),
                   "GIB");
    addFlag(parser, "again", QStringLiteral("Unmix those, too, that have not changed since their result."));
    addFlag(
        parser, "strict",
        QStringLiteral(
            "End with status 1 where a warning says that an answer is likely to be wrong, with 3 where there are other "
            "warnings."));
    addFlag(parser, "dry-run", QStringLiteral("Only tell what would be unmixed, and why."));
    addFlag(parser, "list", QStringLiteral("Only tell the names of the sequences."));
    addValueOption(parser, "only", QStringLiteral("Unmix that sequence alone, for jobs of a cluster."), "NAME");
    addFlag(parser, "gather", QStringLiteral("Only write batch.csv, batch.json and batch.html, of what is there."));
    declareUnmixOptions(parser);
}

BatchWishes batchWishesOf(const QCommandLineParser& parser)
{
    const auto isSet = [&parser](const char* pName) { return parser.isSet(QLatin1String(pName)); };
    BatchWishes wishes;
    wishes.out = parser.value(QStringLiteral("out"));
    CallErrors errors(QStringLiteral("batch"));
    errors.collect([&wishes] {
        if (wishes.out.isEmpty()) {
            refuseUsage("batch", QStringLiteral("--out is missing: the folder for the results."));
        }
    });
    QStringList modes;
    for (const char* name : {"dry-run", "list", "only", "gather"}) {
        if (isSet(name)) {
            modes.append(QStringLiteral("--") + QLatin1String(name));
        }
    }
    errors.collect([&modes] {
        if (modes.size() > 1) {
            refuseUsage("batch", QStringLiteral("%1 exclude each other.").arg(modes.join(QStringLiteral(" and "))));
        }
    });
    errors.collect([&] { wishes.jobs = jobsOf(parser); });
    errors.collect([&] {
        const std::optional<qint64> most = memoryOption(parser, "batch");
        wishes.memory = most ? *most : memoryToBeHad();
    });
    wishes.again = isSet("again");
    wishes.strict = isSet("strict");
    wishes.dryRun = isSet("dry-run");
    wishes.list = isSet("list");
    wishes.gather = isSet("gather");
    wishes.only = parser.value(QStringLiteral("only"));
    errors.collect([&] {
        if (isSet("only") && wishes.only.isEmpty()) {
            refuseUsage("batch", QStringLiteral("--only takes the name of a sequence."));
        }
    });
    errors.throwAll();
    return wishes;
}

QList<BatchJob> batchJobsOf(const QCommandLineParser& parser, JobMonitor& monitor)
{
    if (parser.positionalArguments().isEmpty()) {
        refuseUsage("batch", QStringLiteral("batch takes sequences, or a table of them."));
    }
    const QList<BatchOption> common = givenUnmixOptions(parser, QString());
    QList<BatchJob> jobs;
    for (const QString& argument : parser.positionalArguments()) {
        BatchJob job;
        if (!argument.endsWith(QLatin1String(".csv"), Qt::CaseInsensitive) || QFileInfo(argument).isDir()) {
            job.sequence = QDir::cleanPath(QFileInfo(argument).absoluteFilePath());
            job.options = common;
            jobs.append(job);
            continue;
        }
        const BatchTable table(argument, takesValue);
        monitor.warnAll(table.warnings());
        for (const BatchRow& row : table.rows()) {
            job.sequence = row.sequence;
            job.name = row.name;
            job.group = row.group;
            job.place = row.place;
            job.options = merged(common, optionsOfRow(row));
            jobs.append(job);
        }
    }
    for (BatchJob& job : jobs) {
        check(job);
    }
    nameJobs(jobs);
    return jobs;
}

QStringList unmixArguments(const BatchJob& job, const QString& strResults)
{
    return QStringList{QStringLiteral("unmix"), job.sequence} + job.arguments() +
           QStringList{QStringLiteral("--out=") + strResults, QStringLiteral("--replace")};
}
