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

int unitOf(const QCommandLineParser& parser)
{
    if (!parser.isSet(QStringLiteral("unit"))) {
        return -1;
    }
    const QString text = parser.value(QStringLiteral("unit"));
    const int unit = UnitNames::fromText(text);
    if (unit < 0) {
        refuseUsage(
            "export",
            QStringLiteral("--unit takes %1, not \"%2\".").arg(UnitNames::options().join(QStringLiteral(", ")), text));
    }
    return unit;
}

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

// Of the formats one is a stream of bytes, and nothing else can stand where it goes.
void checkStream(bool bStreamed, const QString& strFormat, const CliSession& session)
{
    if (bStreamed && strFormat != QLatin1String("csv")) {
        refuseUsage("export", QStringLiteral("--out - is standard output, which takes --format csv alone; a file of "
                                             "that name is \"./-\"."));
    }
    if (bStreamed && session.isJson()) {
        refuseUsage("export", QStringLiteral("--json does not go with --out -: both are written to standard output."));
    }
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

void ExportCommand::run(const QCommandLineParser& parser, CliSession& session)
{
    const QStringList arguments = parser.positionalArguments();
    const QString format = parser.value(QStringLiteral("format")).toLower();
    const QString out = parser.value(QStringLiteral("out"));
    const bool streamed = out == QLatin1String("-");
    int unit = -1;
    CallErrors errors(QStringLiteral("export"));
    errors.collect([&] {
        if (arguments.size() != 1) {
            refuseUsage("export", QStringLiteral("export takes one sequence."));
        }
    });
    errors.collect([&] {
        if (format != QLatin1String("ome-tiff") && format != QLatin1String("envi") && format != QLatin1String("csv")) {
            refuseUsage("export", QStringLiteral("--format takes ome-tiff, envi or csv, not \"%1\".").arg(format));
        }
        checkStream(streamed, format, session);
    });
    errors.collect([&] {
        if (out.isEmpty()) {
            refuseUsage("export", QStringLiteral("--out is missing: the file to write."));
        }
    });
    errors.collect([&] {
        if (parser.isSet(QStringLiteral("select")) && parser.value(QStringLiteral("select")).trimmed().isEmpty()) {
            refuseUsage("export", QStringLiteral("--select names no image."));
        }
    });
    errors.collect([&] { unit = unitOf(parser); });
    errors.throwAll();
    const QStringList targets = streamed ? QStringList() : targetsOf(format, out);
    refuseTargets(targets, parser.isSet(QStringLiteral("force")));

    session.startProgress(QStringLiteral("Exporting"));
    ExportedCube cube(arguments[0], parser.value(QStringLiteral("select")), unit, session);
    if (streamed) {
        streamCsvCube(cube, writeToOutput);
        session.endProgress();
        return;
    }
    if (format == QLatin1String("ome-tiff")) {
        writeOmeTiffCube(cube, out);
    } else if (format == QLatin1String("envi")) {
        writeEnviCube(cube, out);
    } else {
        writeCsvCube(cube, out);
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
    session.answerJson(QJsonObject{{"format", format},
                                   {"files", QJsonArray::fromStringList(targets)},
                                   {"images", names},
                                   {"width", static_cast<qint64>(cube.width())},
                                   {"height", static_cast<qint64>(cube.height())},
                                   {"unit", UnitNames::text(cube.unit())}});
}
