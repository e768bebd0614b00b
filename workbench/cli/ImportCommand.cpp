// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/cli/ImportCommand.h"

#include "workbench/cli/CliFailure.h"
#include "workbench/cli/CliProgress.h"
#include "workbench/cli/CliSession.h"
#include "workbench/importer/Importer.h"

#include <QFileInfo>
#include <QJsonArray>

namespace {

[[noreturn]] void usage(const QString& strText)
{
    throw CliFailure(strText + QStringLiteral(" See \"spum import --help\"."), CliFailure::Usage);
}

QString textAnswer(const ImportReport& report, const QString& strFolder)
{
    QString text =
        QStringLiteral("%1 images of %2 x %3 pixels").arg(report.images).arg(report.width).arg(report.height);
    if (report.side != report.width || report.side != report.height)
        text += QStringLiteral(", padded to %1 x %1").arg(report.side);
    text += report.temporal ? QStringLiteral(", at a series of times") : QString();
    text += report.fluorescence ? QStringLiteral(", fluorescence") : QString();
    return text + QStringLiteral("\nphotograph: %1\nsequence in %2\n").arg(report.photographOrigin, strFolder);
}

QJsonObject jsonAnswer(const ImportReport& report, const QString& strFolder)
{
    return QJsonObject{{"id", report.sequenceId},
                       {"folder", strFolder},
                       {"images", report.images},
                       {"width", static_cast<qint64>(report.width)},
                       {"height", static_cast<qint64>(report.height)},
                       {"side", static_cast<qint64>(report.side)},
                       {"temporal", report.temporal},
                       {"fluorescence", report.fluorescence},
                       {"photograph", report.photographOrigin},
                       {"clickNumbers", QJsonArray::fromStringList(report.clickNumbers)},
                       {"warnings", QJsonArray::fromStringList(report.warnings)}};
}

} // namespace

void ImportCommand::declare(QCommandLineParser& parser) const
{
    parser.addPositionalArgument(QStringLiteral("STACK"),
                                 QStringLiteral("Folder of TIFF files, a TIFF of several pages, or an ENVI cube."));
    parser.addPositionalArgument(QStringLiteral("OUT"), QStringLiteral("Folder of the new sequence."));
    parser.addOption({QStringLiteral("images"),
                      QStringLiteral("Table of the images, with a header: file, page or band; and excitation and "
                                     "emission (nm), or interval and time (s)."),
                      QStringLiteral("CSV")});
    parser.addOption({QStringLiteral("photo"),
                      QStringLiteral("Photograph of the same extent; else the mean image serves."),
                      QStringLiteral("FILE")});
    parser.addOption(
        {QStringLiteral("name"), QStringLiteral("Name of the sequence; that of OUT."), QStringLiteral("NAME")});
    parser.addOption({QStringLiteral("force"), QStringLiteral("Replace a sequence of that name.")});
}

void ImportCommand::run(const QCommandLineParser& parser, CliSession& session)
{
    const QStringList arguments = parser.positionalArguments();
    if (arguments.size() != 2)
        usage(QStringLiteral("import takes the images and the folder to make."));
    ImportOptions options;
    options.source = arguments[0];
    options.output = arguments[1];
    options.table = parser.value(QStringLiteral("images"));
    options.photo = parser.value(QStringLiteral("photo"));
    options.name = parser.value(QStringLiteral("name"));
    options.force = parser.isSet(QStringLiteral("force"));
    if (options.table.isEmpty())
        usage(QStringLiteral("--images is missing: the table that says which image is what."));

    session.progress().start(QStringLiteral("Importing"));
    ImportReport report;
    QString error;
    const auto progress = [&session](int done, int steps, const QString& what) {
        session.progress().show(what, steps > 0 ? static_cast<double>(done) / steps : -1.0);
        return !CliSession::isInterrupted();
    };
    const bool imported = importStack(options, progress, &report, &error);
    session.progress().finish();
    if (!imported)
        throw CliFailure(error, report.aborted ? CliFailure::Aborted : CliFailure::Failed);
    session.warnAll(report.warnings);
    const QString folder = QFileInfo(options.output).absoluteFilePath();
    session.answer(textAnswer(report, folder));
    session.answerJson(jsonAnswer(report, folder));
}
