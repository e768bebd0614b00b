// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/commands/ExportCommand.h"

#include "platform/orvutils/printable.h"
#include "services/basis/Failure.h"
#include "services/basis/UnitNames.h"
#include "services/transfer/CubeFiles.h"
#include "services/transfer/ExportedCube.h"
#include "workbench/commands/CliProgress.h"
#include "workbench/commands/CliSession.h"
#include "workbench/commands/CommandParser.h"
#include "workbench/commands/Options.h"

#include <QFileInfo>
#include <QJsonArray>

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

} // namespace

void ExportCommand::declare(CommandParser& parser) const
{
    parser.addPositionalArgument(QStringLiteral("SEQ"), QStringLiteral("Folder of the sequence."));
    addValueOption(
        parser, "format",
        QStringLiteral("ome-tiff: a page an image, with OME metadata; envi: header and data file; csv: a row a pixel, "
                       "a column an image."),
        "FORMAT");
    addValueOption(parser, "out", QStringLiteral("File to write; for envi the header or the data file."), "PATH");
    addValueOption(parser, "select",
                   QStringLiteral("Images to take: EX/EM,EX/EM,... (INTERVAL/TIME in a temporal sequence), * for any."),
                   "PAIRS");
    addValueOption(parser, "unit",
                   QStringLiteral("counts, radiance, radiant-efficiency or efficiency; the best that the images have."),
                   "UNIT");
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
    if (arguments.size() != 1) {
        refuseUsage("export", QStringLiteral("export takes one sequence."));
    }
    const QString format = parser.value(QStringLiteral("format")).toLower();
    if (format != QLatin1String("ome-tiff") && format != QLatin1String("envi") && format != QLatin1String("csv")) {
        refuseUsage("export", QStringLiteral("--format takes ome-tiff, envi or csv, not \"%1\".").arg(format));
    }
    const QString out = parser.value(QStringLiteral("out"));
    if (out.isEmpty()) {
        refuseUsage("export", QStringLiteral("--out is missing: the file to write."));
    }
    if (parser.isSet(QStringLiteral("select")) && parser.value(QStringLiteral("select")).trimmed().isEmpty()) {
        refuseUsage("export", QStringLiteral("--select names no image."));
    }
    const int unit = unitOf(parser);
    const QStringList targets = targetsOf(format, out);
    refuseTargets(targets, parser.isSet(QStringLiteral("force")));

    session.startProgress(QStringLiteral("Exporting"));
    ExportedCube cube(arguments[0], parser.value(QStringLiteral("select")), unit, session);
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
