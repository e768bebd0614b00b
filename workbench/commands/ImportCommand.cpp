// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/commands/ImportCommand.h"

#include "XTNT/xtnt_parallel.h"
#include "files/AtomicFile.h"
#include "platform/orvutils/printable.h"
#include "services/basis/Failure.h"
#include "services/basis/TextTable.h"
#include "services/importer/Importer.h"
#include "services/transfer/ImportInference.h"
#include "workbench/commands/CallErrors.h"
#include "workbench/commands/CliProgress.h"
#include "workbench/commands/CliSession.h"
#include "workbench/commands/CommandParser.h"
#include "workbench/commands/Options.h"

#include <QFileInfo>
#include <QJsonArray>

#include <algorithm>
#include <cmath>
#include <functional>

namespace {

// What the command line asks for.
struct Request
{
    ImportOptions import;
    QString writeTable;             // empty: import
    std::optional<double> interval; // s
    PlaneChoice planes;             // `each`: images become numbered channels
};

double positiveNumber(const char* pOption, const QString& strText)
{
    bool ok = false;
    const double value = strText.trimmed().toDouble(&ok);
    if (!ok || !std::isfinite(value) || value <= 0.0) {
        refuseUsage("import",
                    QStringLiteral("--%1 takes a number above 0, not \"%2\".").arg(QLatin1String(pOption), strText));
    }
    return value;
}

// A plane's number or, where `pProjects` is given, what is made of all planes.
void takePlane(const QCommandLineParser& parser, const char* pName, int* pPlane, bool* pProjects, Request& request,
               CallErrors& errors)
{
    if (!parser.isSet(QLatin1String(pName))) {
        return;
    }
    const QString text = parser.value(QLatin1String(pName));
    PageProjection::Kind kind = PageProjection::Kind::None;
    if (pProjects != nullptr && PageProjection::kindOf(text, &kind)) {
        *pProjects = true;
        if (request.planes.projection != PageProjection::Kind::None && request.planes.projection != kind) {
            errors.refuse(QStringLiteral("--z and --t take the same projection, max or mean."));
        }
        request.planes.projection = kind;
        return;
    }
    bool ok = false;
    *pPlane = text.toInt(&ok);
    if (!ok || *pPlane < 1) {
        errors.refuse(
            QStringLiteral("--%1 takes a whole number from 1 on%2, not \"%3\".")
                .arg(QLatin1String(pName), pProjects != nullptr ? QStringLiteral(", max or mean") : QString(), text));
    }
}

// The options with numbers and rules.
void takeValues(const QCommandLineParser& parser, Request& request, CallErrors& errors)
{
    ImportOptions& options = request.import;
    const auto value = [&parser](const char* pName) { return parser.value(QLatin1String(pName)); };
    const auto take = [&](const char* pName, const std::function<void()>& set) {
        if (parser.isSet(QLatin1String(pName))) {
            errors.collect(set);
        }
    };
    errors.collect([&] { options.maxMemory = memoryOption(parser, "import").value_or(options.maxMemory); });
    take("background", [&] {
        QString reason;
        if (!options.background.parse(value("background"), &reason)) {
            refuseUsage("import", QStringLiteral("--background: %1.").arg(reason));
        }
    });
    take("sizes", [&] {
        if (!CommonSize::ruleOf(value("sizes"), &options.sizes)) {
            refuseUsage("import", QStringLiteral("--sizes takes crop, bin or pad, not \"%1\".").arg(value("sizes")));
        }
    });
    takePlane(parser, "z", &request.planes.z, &request.planes.projectsDepth, request, errors);
    takePlane(parser, "t", &request.planes.t, &request.planes.projectsTimes, request, errors);
    takePlane(parser, "c", &request.planes.c, nullptr, request, errors);
    take("interval", [&] { request.interval = positiveNumber("interval", value("interval")); });
    take("pixel-size", [&] { options.pixelSize = positiveNumber("pixel-size", value("pixel-size")); });
    take("exposure", [&] {
        for (const auto& text : value("exposure").split(QLatin1Char(','))) {
            options.exposures.append(positiveNumber("exposure", text));
        }
    });
}

Request requestOf(const QCommandLineParser& parser)
{
    const auto value = [&parser](const char* pName) { return parser.value(QLatin1String(pName)); };
    const auto given = [&parser](const char* pName) { return parser.isSet(QLatin1String(pName)); };
    Request request;
    ImportOptions& options = request.import;
    const QStringList arguments = parser.positionalArguments();
    options.table = value("images");
    request.writeTable = value("write-table");
    CallErrors errors(QStringLiteral("import"));
    const auto refuse = [&errors](bool bRefused, const char* pSentence) {
        errors.collect([=] {
            if (bRefused) {
                refuseUsage("import", QLatin1String(pSentence));
            }
        });
    };
    refuse(given("write-table") && request.writeTable.isEmpty(), "--write-table takes the file to write.");
    refuse(given("images") && options.table.isEmpty(), "--images takes the table that says which image is what.");
    refuse(given("images") && (given("write-table") || given("interval") || given("channels")),
           "--images does not go with --write-table, --interval or --channels, which infer such a table.");
    refuse(given("images") && (given("z") || given("t") || given("c")),
           "--images does not go with --z, --t or --c: the table names the pages.");
    refuse(given("interval") && given("channels"),
           "--interval makes times and --channels makes channels of the images.");
    request.planes.each = given("channels");
    refuse(arguments.size() != 2 && !(given("write-table") && arguments.size() == 1),
           "import takes the images and the folder to make.");
    options.source = arguments.value(0);
    options.output = arguments.value(1);
    options.photo = value("photo");
    options.dark = value("dark");
    options.flat = value("flat");
    options.name = value("name");
    options.force = given("force");
    options.follow = given("follow");
    options.skipInvalid = given("skip-invalid");
    takeValues(parser, request, errors);
    errors.throwAll();
    return request;
}

// Writes the table to the file that was asked for; never over one that the user may have filled in.
void writeTable(const Request& request, const InferredTable& table)
{
    if (QFileInfo::exists(request.writeTable) && !request.import.force) {
        throw Failure(QStringLiteral("%1 exists already").arg(request.writeTable),
                      QStringLiteral("--force replaces it"));
    }
    QString error;
    if (!orv::writeFileAtomically(request.writeTable, table.toCsv(), &error)) {
        throw Failure(error);
    }
}

// With doubts nothing is imported: the table goes out as a template.
[[noreturn]] void refuseDoubts(const Request& request, const InferredTable& table, CliSession& session)
{
    const bool written = !request.writeTable.isEmpty();
    if (written) {
        writeTable(request, table);
    } else {
        session.answer(QString::fromUtf8(table.toCsv()));
    }
    session.setCommand(QStringLiteral("import doubts"));
    session.answerJson(QJsonObject{{"doubts", QJsonArray::fromStringList(table.doubts())},
                                   {"template", QString::fromUtf8(table.toCsv())}});
    throw Failure(QStringLiteral("%1: it is in doubt which image is what: %2. Fill in the table %3 and give it by "
                                 "--images; --channels numbers them")
                      .arg(request.import.source, doubtText(table),
                           written ? request.writeTable : QStringLiteral("on standard output")));
}

// What planes have become of, in a half sentence; empty where each image is one.
QString projectionText(const ImportReport& report)
{
    const auto count =
        static_cast<int>(std::count_if(report.prepared.cbegin(), report.prepared.cend(),
                                       [](const PreparedImage& image) { return !image.projection.isEmpty(); }));
    if (count == 0) {
        return QString();
    }
    return count == report.images ? QStringLiteral(", each a projection of several planes")
                                  : QStringLiteral(", %1 of them projections of several planes").arg(count);
}

QString textAnswer(const ImportReport& report, const QString& strFolder)
{
    QString text = report.images == 1 ? QStringLiteral("1 image") : QStringLiteral("%1 images").arg(report.images);
    text += QStringLiteral(" of %1 x %2 pixels").arg(report.width).arg(report.height);
    if (report.side != report.width || report.side != report.height) {
        text += QStringLiteral(", padded to %1 x %1").arg(report.side);
    }
    text += report.temporal ? QStringLiteral(", at a series of times") : QString();
    text += report.fluorescence ? QStringLiteral(", fluorescence") : QString();
    text += report.transillumination ? QStringLiteral(", a scan of spots") : QString();
    text += report.numbered ? QStringLiteral(", numbered channels") : QString();
    text += report.unit.isEmpty() ? QString() : QStringLiteral(", in ") + report.unit.toLower();
    text += projectionText(report);
    text += report.scaled ? QStringLiteral(", divided by the scale factor of the header") : QString();
    text += report.dark ? QStringLiteral(", dark image subtracted (%1)").arg(report.darkMatching) : QString();
    text += report.flat ? QStringLiteral(", flat field divided") : QString();
    text += report.background.isEmpty() ? QString() : QStringLiteral(", background subtracted: ") + report.background;
    text += report.sizes.isEmpty() ? QString() : QStringLiteral(", of several sizes, ") + report.sizes;
    return text + QStringLiteral("\nphotograph: %1\nsequence in %2\n")
                      .arg(orv::printableLine(report.photographOrigin), orv::printableLine(strFolder));
}

// What was done with each image; of many the first and the last ones.
QString preparedText(const ImportReport& report)
{
    const bool subtracted = report.dark || !report.background.isEmpty();
    if (!subtracted && report.sizes.isEmpty()) {
        return QString();
    }
    constexpr int shown = 40;
    constexpr int last = 5;
    QStringList header{QStringLiteral("image")};
    header += report.dark ? QStringList{QStringLiteral("dark image")} : QStringList();
    header += report.background.isEmpty() ? QStringList() : QStringList{QStringLiteral("background")};
    header += subtracted ? QStringList{QStringLiteral("below 0")} : QStringList();
    header += report.sizes.isEmpty() ? QStringList() : QStringList{QStringLiteral("binned by")};
    TextTable table(header);
    const double pixels =
        static_cast<double>(report.width) * static_cast<double>(report.height) - static_cast<double>(report.invalid);
    long long negatives = 0;
    const int count = report.prepared.size();
    for (int i = 0; i < count; ++i) {
        const PreparedImage& image = report.prepared.at(i);
        negatives += image.negatives;
        if (count > shown && i >= shown - last && i < count - last) {
            if (i == shown - last) {
                table.addRow({QStringLiteral("... %1 more").arg(count - shown)});
            }
            continue;
        }
        QStringList row{report.names.at(i)};
        row += report.dark ? QStringList{image.dark} : QStringList();
        row += report.background.isEmpty() ? QStringList() : QStringList{TextTable::number(*image.background)};
        row += subtracted
                   ? QStringList{QStringLiteral("%1 (%2 %)")
                                     .arg(image.negatives)
                                     .arg(TextTable::number(100.0 * static_cast<double>(image.negatives) / pixels, 3))}
                   : QStringList();
        row += report.sizes.isEmpty() ? QStringList() : QStringList{QString::number(image.binned)};
        table.addRow(row);
    }
    const QString note = QStringLiteral("Pixels below 0 are kept; an analysis takes them for 0.\n");
    return table.toText() + (negatives > 0 ? note : QString());
}

QJsonArray preparedJson(const ImportReport& report)
{
    QJsonArray images;
    for (int i = 0; i < report.prepared.size(); ++i) {
        const PreparedImage& image = report.prepared.at(i);
        QJsonObject json = image.json();
        json.insert(QStringLiteral("image"), report.names.at(i));
        json.insert(QStringLiteral("binned"), image.binned);
        images.append(json);
    }
    return images;
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
                       {"transillumination", report.transillumination},
                       {"numbered", report.numbered},
                       {"unit", report.unit.isEmpty() ? QStringLiteral("Counts") : report.unit},
                       {"invalidPixels", static_cast<qint64>(report.invalid)},
                       {"scaled", report.scaled},
                       {"dark", report.dark},
                       {"flat", report.flat},
                       {"darkMatching", report.darkMatching},
                       {"background", report.background},
                       {"sizes", report.sizes},
                       {"prepared", preparedJson(report)},
                       {"photograph", report.photographOrigin},
                       {"clickNumbers", QJsonArray::fromStringList(report.clickNumbers)},
                       {"warnings", QJsonArray::fromStringList(report.warnings)}};
}

ImportReport import(const ImportOptions& options, CliSession& session)
{
    session.startProgress(QStringLiteral("Importing"));
    ImportReport report;
    QString error;
    const auto progress = [&session](int done, int steps, const QString& what) {
        session.showProgress(what, steps > 0 ? static_cast<double>(done) / steps : -1.0);
        return !CliSession::isInterrupted();
    };
    const bool imported = importStack(options, progress, &report, &error);
    session.endProgress();
    if (!imported) {
        throw Failure(error, report.aborted ? Failure::Kind::Aborted : Failure::Kind::Failed);
    }
    session.warnAll(report.warnings);
    return report;
}

} // namespace

void ImportCommand::declare(CommandParser& parser) const
{
    parser.addPositionalArgument(QStringLiteral("STACK"),
                                 QStringLiteral("Folder of TIFF files, a TIFF of several pages, an ENVI or CSV cube."));
    parser.addPositionalArgument(QStringLiteral("OUT"), QStringLiteral("Folder of the new sequence."));
    addValueOption(
        parser, "images",
        QStringLiteral("Table of the images, with a header: file, page or band; and excitation and emission (nm), or "
                       "interval and time (s); and more, see the manual of formats. Without it the table is inferred "
                       "from names, OME and ImageJ metadata "
                       "and the ENVI header, and kept in OUT as images.csv."),
        "CSV");
    addValueOption(parser, "write-table", QStringLiteral("Write the inferred table to a file, to be edited, and stop."),
                   "FILE");
    addValueOption(parser, "interval", QStringLiteral("Seconds between frames that are only numbered."), "S");
    parser.addOption({QStringLiteral("skip-invalid"),
                      QStringLiteral("Leave pixels out that are not finite in an image, in place of refusing it.")});
    parser.addOption({QStringLiteral("channels"),
                      QStringLiteral("Number the images as channels, whatever is told of wavelengths and times.")});
    addValueOption(parser, "dark",
                   QStringLiteral("Dark image to subtract: one for all images, or one each: a folder with the images' "
                                  "names, or a stack in their order."),
                   "FILE");
    addValueOption(parser, "flat", QStringLiteral("Flat field to divide every image by, brought to a mean of 1."),
                   "FILE");
    addValueOption(
        parser, "background",
        QStringLiteral("Background to subtract from each image: percentile:P of its pixels, or their mean in "
                       "a region, rect:X,Y,W,H, ellipse:X,Y,W,H or polygon:X,Y,X,Y,..."),
        "RULE");
    addChoiceOption(
        parser, "sizes",
        QStringLiteral("Bring images that differ in size to one: crop, to the smallest, from the upper left; "
                       "bin, to the smallest by whole numbers; pad, to the largest, the rest without a "
                       "value."),
        "RULE", {QStringLiteral("crop"), QStringLiteral("bin"), QStringLiteral("pad")});
    addChoiceOption(parser, "z",
                    QStringLiteral("Plane in depth to take, from 1, of files with several; or max or mean of all."),
                    "N|max|mean", PageProjection::kindNames());
    addChoiceOption(
        parser, "t",
        QStringLiteral("Time whose channels to take, from 1, of files with several channels at several times; or max "
                       "or mean of all."),
        "N|max|mean", PageProjection::kindNames());
    addValueOption(parser, "c", QStringLiteral("Channel whose times to take, from 1, of such files."), "N");
    addValueOption(parser, "exposure", QStringLiteral("Exposure in seconds: one, or one an image: S,S,..."), "S");
    addValueOption(parser, "pixel-size", QStringLiteral("Side of a pixel in the object, in micrometres."), "UM");
    addValueOption(parser, "photo", QStringLiteral("Photograph of the same extent; else the mean image serves."),
                   "FILE");
    addValueOption(parser, "max-memory",
                   QStringLiteral("Most memory that the images may take by their headers, in GiB; 2."), "GIB");
    addValueOption(parser, "name", QStringLiteral("Name of the sequence; that of OUT."), "NAME");
    parser.addOption(
        {QStringLiteral("follow"),
         QStringLiteral(
             "Read files that the table names outside the folder STACK, or an ENVI header outside its own.")});
    parser.addOption({QStringLiteral("force"),
                      QStringLiteral("Replace a sequence of that name, unless it holds anything that was not written "
                                     "with it; or the file of --write-table.")});
}

QList<CommandManual::Example> ImportCommand::examples() const
{
    return {{QStringLiteral("spum import my-images --write-table images.csv"),
             QStringLiteral("Only look at the files and write down which is taken for what, to be edited.")},
            {QStringLiteral("spum import my-images --images images.csv cells"),
             QStringLiteral("Make the sequence \"cells\" of them by that table.")},
            {QStringLiteral("spum import my-images --images images.csv --background percentile:1 cells-less"),
             QStringLiteral("Subtract from each image what one per cent of its pixels lie below.")}};
}

void ImportCommand::check(const QCommandLineParser& parser) const
{
    requestOf(parser);
}

void ImportCommand::run(const QCommandLineParser& parser, CliSession& session)
{
    Request request = requestOf(parser);
    const XTNT::CancellationCheck check([&session] { session.stopIfRequested(); });
    QString shown;
    QJsonArray rows;
    if (request.import.table.isEmpty()) {
        const InferredTable table =
            inferImagesTable(request.import.source, request.interval, request.import.follow, request.planes, session);
        if (!table.doubts().isEmpty()) {
            refuseDoubts(request, table, session);
        }
        shown = inferredTableText(table);
        rows = inferredTableJson(table);
        if (!request.writeTable.isEmpty()) {
            writeTable(request, table);
            session.answer(shown + QStringLiteral("table in %1\n").arg(orv::printableLine(request.writeTable)));
            session.setCommand(QStringLiteral("import table"));
            session.answerJson(QJsonObject{{"table", rows}, {"file", request.writeTable}});
            return;
        }
        request.import.tableText = table.toCsv();
    }
    const ImportReport report = import(request.import, session);
    const QString folder = QFileInfo(request.import.output).absoluteFilePath();
    session.answer(shown + preparedText(report) + textAnswer(report, folder));
    QJsonObject json = jsonAnswer(report, folder);
    if (!rows.isEmpty()) {
        json.insert(QStringLiteral("table"), rows);
    }
    session.answerJson(json);
}
