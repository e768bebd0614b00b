// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/commands/ExportCommand.h"

#include "platform/orvutils/printable.h"
#include "services/basis/Failure.h"
#include "services/basis/UnitNames.h"
#include "services/transfer/CubeFiles.h"
#include "services/transfer/ExportedCube.h"
#include "workbench/commands/CallErrors.h"
#include "workbench/commands/CliProgress.h"
#include "workbench/commands/CliSession.h"
#include "workbench/commands/CommandParser.h"
#include "workbench/commands/Options.h"
#include "workbench/commands/Output.h"

#include <QFileInfo>
#include <QJsonArray>

#include <unistd.h>

namespace {

// What a call asks for.
struct Request
{
    QString sequence;
    QString format;
    QString out;
    bool streamed = false; // to standard output
    QString select;
    int unit = -1;
    bool force = false;
};

// The files that will be written; the first is the one to give to an import.
QStringList targetsOf(const QString& strFormat, const QString& strPath)
{
    return strFormat == QLatin1String("envi") ? enviPaths(strPath) : QStringList{strPath};
}

void refuseTargets(const QStringList& targets, bool bForce)
{
    for (const auto& target : targets) {
        if (QFileInfo(target).isDir()) {
            throw Failure(QStringLiteral("%1 is a folder").arg(target),
                          QStringLiteral("--out takes the file to write"));
        }
        if (!bForce && QFileInfo::exists(target)) {
            throw Failure(QStringLiteral("%1 exists already").arg(target), QStringLiteral("--force replaces it"));
        }
    }
}

Request requestOf(const QCommandLineParser& parser)
{
    Request request;
    const QStringList arguments = parser.positionalArguments();
    request.sequence = arguments.value(0);
    request.format = parser.value(QStringLiteral("format")).toLower();
    request.out = parser.value(QStringLiteral("out"));
    request.streamed = request.out == QLatin1String("-");
    request.select = parser.value(QStringLiteral("select"));
    request.force = parser.isSet(QStringLiteral("force"));
    const bool csv = request.format == QLatin1String("csv");
    const bool known = csv || request.format == QLatin1String("ome-tiff") || request.format == QLatin1String("envi");

    CallErrors errors(QStringLiteral("export"));
    const auto refuse = [&errors](bool bRefused, const QString& strSentence) {
        if (bRefused) {
            errors.refuse(strSentence);
        }
    };
    refuse(arguments.size() != 1, QStringLiteral("export takes one sequence."));
    refuse(!known, QStringLiteral("--format takes ome-tiff, envi or csv, not \"%1\".").arg(request.format));
    refuse(request.out.isEmpty(), QStringLiteral("--out is missing: the file to write."));
    // Of the formats one is a stream of bytes, and nothing else can stand where it goes.
    refuse(request.streamed && known && !csv,
           QStringLiteral("--out - is standard output, which takes --format csv alone; a file of that name is "
                          "\"./-\"."));
    refuse(request.streamed && parser.isSet(QStringLiteral("json")),
           QStringLiteral("--json does not go with --out -: both are written to standard output."));
    refuse(parser.isSet(QStringLiteral("select")) && request.select.trimmed().isEmpty(),
           QStringLiteral("--select names no image."));
    errors.collect([&] { request.unit = unitOption(parser, "export"); });
    errors.throwAll();
    return request;
}

void writeToOutput(const QByteArray& bytes)
{
    if (!writeAll(STDOUT_FILENO, bytes)) {
        throw Failure(QStringLiteral("standard output cannot be written"));
    }
}

} // namespace

void ExportCommand::declare(CommandParser& parser) const
{
    parser.addPositionalArgument(QStringLiteral("SEQ"), QStringLiteral("Folder of the sequence."));
    addChoiceOption(
        parser, "format",
        QStringLiteral("ome-tiff: a page an image, with OME metadata; envi: header and data file; csv: a row a pixel, "
                       "a column an image."),
        "FORMAT", {QStringLiteral("ome-tiff"), QStringLiteral("envi"), QStringLiteral("csv")});
    addValueOption(
        parser, "out",
        QStringLiteral("File to write; for envi the header or the data file, for csv also \"-\": standard output."),
        "PATH");
    addValueOption(parser, "select",
                   QStringLiteral("Images to take: EX/EM,EX/EM,... (INTERVAL/TIME in a temporal sequence), * for any."),
                   "PAIRS");
    addChoiceOption(
        parser, "unit",
        QStringLiteral("counts, radiance, radiant-efficiency or efficiency; the best that the images have."), "UNIT",
        UnitNames::options());
    parser.addOption({QStringLiteral("force"), QStringLiteral("Replace files that exist.")});
}

QList<CommandManual::Example> ExportCommand::examples() const
{
    return {{QStringLiteral("spum export mouse --format ome-tiff --out mouse.ome.tif"),
             QStringLiteral("All images in one file, calibrated.")},
            {QStringLiteral("spum export mouse --format csv --unit counts --select \"675/*\" --out mouse.csv"),
             QStringLiteral("Those of one excitation as a table, a row a pixel.")}};
}

void ExportCommand::check(const QCommandLineParser& parser) const
{
    requestOf(parser);
}

void ExportCommand::run(const QCommandLineParser& parser, CliSession& session)
{
    const Request request = requestOf(parser);
    const QStringList targets = request.streamed ? QStringList() : targetsOf(request.format, request.out);
    refuseTargets(targets, request.force);

    session.startProgress(QStringLiteral("Exporting"));
    ExportedCube cube(request.sequence, request.select, request.unit, session);
    if (request.streamed) {
        streamCsvCube(cube, writeToOutput);
        session.endProgress();
        return;
    }
    if (request.format == QLatin1String("ome-tiff")) {
        writeOmeTiffCube(cube, request.out);
    } else if (request.format == QLatin1String("envi")) {
        writeEnviCube(cube, request.out);
    } else {
        writeCsvCube(cube, request.out);
    }
    session.endProgress();

    QJsonArray names;
    for (const auto& image : cube.images()) {
        names.append(image.name);
    }
    QStringList shown;
    for (const QString& target : targets) {
        shown.append(orv::printableLine(target));
    }
    session.answer(
        QStringLiteral("%1 of %2 x %3 pixels in %4\n%5\n")
            .arg(cube.count() == 1 ? QStringLiteral("1 image") : QStringLiteral("%1 images").arg(cube.count()))
            .arg(cube.width())
            .arg(cube.height())
            .arg(UnitNames::options()[cube.unit()], shown.join(QLatin1Char('\n'))));
    session.answerJson(QJsonObject{{"format", request.format},
                                   {"files", QJsonArray::fromStringList(targets)},
                                   {"images", names},
                                   {"width", static_cast<qint64>(cube.width())},
                                   {"height", static_cast<qint64>(cube.height())},
                                   {"unit", UnitNames::text(cube.unit())}});
}
