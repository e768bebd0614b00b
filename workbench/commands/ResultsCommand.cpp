// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/commands/ResultsCommand.h"

#include "host/CORVSequenceDataset.h"
#include "platform/orvutils/printable.h"
#include "services/basis/Failure.h"
#include "services/basis/TextTable.h"
#include "services/basis/jsonNumber.h"
#include "services/results/LoadedResult.h"
#include "services/results/ResultFiles.h"
#include "services/results/ResultReport.h"
#include "services/results/ResultStore.h"
#include "services/results/StagedRun.h"
#include "services/results/keptWarnings.h"
#include "services/session/OpenedSequence.h"
#include "services/transfer/ResultExport.h"
#include "storage/SavedDocument.h"
#include "workbench/commands/ActionOptions.h"
#include "workbench/commands/CallErrors.h"
#include "workbench/commands/CliProgress.h"
#include "workbench/commands/CliSession.h"
#include "workbench/commands/CommandParser.h"
#include "workbench/commands/Options.h"
#include "workbench/commands/PictureOptions.h"

#include "XTNT/xtnt_parallel.h"
#include "engine/CORVSpumKyvo.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QFileInfo>
#include <QJsonArray>
#include <QLocale>
#include <QMap>

#include <optional>

namespace {

// Arguments of each action behind the sequence.
const QMap<QString, int>& actions()
{
    static const QMap<QString, int> list = {{QStringLiteral("list"), 0},   {QStringLiteral("show"), 1},
                                            {QStringLiteral("load"), 1},   {QStringLiteral("rename"), 2},
                                            {QStringLiteral("delete"), 1}, {QStringLiteral("export"), 1}};
    return list;
}

const ActionOptions& optionsOfActions()
{
    static const QStringList load(QStringLiteral("load"));
    static const QStringList both = {QStringLiteral("load"), QStringLiteral("export")};
    static const ActionOptions owners = {{QStringLiteral("out"), both},
                                         {QStringLiteral("pdf"), load},
                                         {QStringLiteral("colors"), load},
                                         {QStringLiteral("scale"), load},
                                         {QStringLiteral("component"), QStringList(QStringLiteral("export"))},
                                         {QStringLiteral("force"), both},
                                         {QStringLiteral("yes"), QStringList(QStringLiteral("delete"))}};
    return owners;
}

// What a call asks for.
struct Request
{
    QString action;
    QStringList arguments; // behind the action: the sequence first
    PictureRequest pictures;
    std::optional<int> component;
};

Request requestOf(const QCommandLineParser& parser)
{
    Request request;
    request.arguments = parser.positionalArguments();
    request.action = request.arguments.isEmpty() ? QString() : request.arguments.takeFirst();
    CallErrors errors(QStringLiteral("results"));
    const bool known = actions().contains(request.action);
    if (!known && actions().contains(request.arguments.value(0))) {
        errors.refuse(QStringLiteral("the action comes first: \"spum results %1 %2\".")
                          .arg(request.arguments.value(0), request.action));
    } else if (!known || request.arguments.size() != actions().value(request.action) + 1) {
        errors.refuse(
            QStringLiteral("results takes: list SEQ; show SEQ NAME; load SEQ NAME; rename SEQ NAME NEW; delete SEQ "
                           "NAME; or export SEQ NAME --out DIR."));
    }
    if (known) {
        refuseForeignOptions(parser, optionsOfActions(), request.action, QStringLiteral("results ") + request.action,
                             errors);
    }
    if (request.action == QLatin1String("export") && parser.value(QStringLiteral("out")).isEmpty()) {
        errors.refuse(QStringLiteral("--out is missing: the folder of the new sequence."));
    }
    errors.collect([&] { request.pictures = pictureRequestOf(parser, "results"); });
    if (parser.isSet(QStringLiteral("component"))) {
        bool ok = false;
        request.component = parser.value(QStringLiteral("component")).toInt(&ok);
        if (!ok || *request.component < 1) {
            errors.refuse(QStringLiteral("--component takes the number of a component, from 1."));
        }
    }
    errors.throwAll();
    return request;
}

// The date of a saved result, which its file has as the computer that saved it writes dates, by ISO 8601; null where it
// cannot be read as that.
QJsonValue momentOf(const QString& strDate)
{
    constexpr int firstYear = 1970; // years of two digits are read as of the last century
    constexpr int century = 100;
    for (const QLocale& locale : {QLocale::system(), QLocale(QLocale::English, QLocale::UnitedStates), QLocale::c()}) {
        const QString format =
            locale.dateFormat(QLocale::ShortFormat) + QLatin1String(", ") + locale.timeFormat(QLocale::ShortFormat);
        QDateTime moment = locale.toDateTime(strDate, format);
        if (moment.isValid()) {
            moment = moment.date().year() < firstYear ? moment.addYears(century) : moment;
            return moment.toString(Qt::ISODate);
        }
    }
    return QJsonValue();
}

QJsonObject jsonOf(const QString& strName, const SavedDocument& document)
{
    QJsonObject json{{"name", strName},
                     {"file", document.path},
                     {"date", momentOf(document.date)},
                     {"note", document.note},
                     {"method", document.property(QStringLiteral("Method"))},
                     {"unit", document.property(QStringLiteral("DataUnit"))},
                     {"images", document.images},
                     {"components", QJsonArray::fromStringList(document.names())}};
    if (!document.error.isEmpty()) {
        json.insert(QStringLiteral("error"), document.error);
    }
    return json;
}

QJsonArray spectraJson(const SavedDocument& document)
{
    QJsonArray spectra;
    for (const SavedDocument::Spectrum& spectrum : document.spectra) {
        QJsonArray points;
        for (int i = 0; i < spectrum.pairs.size(); ++i) {
            points.append(
                QJsonArray{spectrum.pairs[i].first, spectrum.pairs[i].second, QJsonValue(spectrum.values[i])});
        }
        spectra.append(QJsonObject{{"name", spectrum.name}, {"color", spectrum.color}, {"points", points}});
    }
    return spectra;
}

QString spectraText(const SavedDocument& document)
{
    if (document.spectra.isEmpty()) {
        return QString();
    }
    QStringList header = {QStringLiteral("images")};
    header += document.names();
    TextTable table(header);
    const auto& pairs = document.spectra.first().pairs;
    for (int i = 0; i < pairs.size(); ++i) {
        QStringList row = {pairs[i].first.isEmpty() ? pairs[i].second
                                                    : pairs[i].first + QLatin1Char('/') + pairs[i].second};
        for (const SavedDocument::Spectrum& spectrum : document.spectra) {
            row.append(i < spectrum.values.size() ? TextTable::number(spectrum.values[i], 5) : QStringLiteral("-"));
        }
        table.addRow(row);
    }
    return table.toText();
}

} // namespace

void ResultsCommand::declare(CommandParser& parser) const
{
    parser.addPositionalArgument(QStringLiteral("list|show|load|rename|delete|export"), QStringLiteral("What to do."));
    parser.addPositionalArgument(QStringLiteral("SEQ"), QStringLiteral("Folder of the sequence."));
    parser.addPositionalArgument(QStringLiteral("NAME"), QStringLiteral("The result; of no meaning for list."),
                                 QStringLiteral("[NAME"));
    parser.addPositionalArgument(QStringLiteral("NEW"), QStringLiteral("rename: its new name."),
                                 QStringLiteral("[NEW]]"));
    parser.addOption({QStringLiteral("out"),
                      QStringLiteral("load: folder for maps, pictures and numbers, as \"spum unmix\" writes them; "
                                     "SEQ/result-NAME without it. export: folder of the new sequence."),
                      QStringLiteral("DIR")});
    parser.addOption(
        {QStringLiteral("pdf"), QStringLiteral("load: write the report as report.pdf too, and the maps as maps.pdf.")});
    declarePictureOptions(parser);
    parser.addOption({QStringLiteral("component"),
                      QStringLiteral("export: the component of a scan of several spots, from 1."),
                      QStringLiteral("N")});
    parser.addOption({QStringLiteral("force"), QStringLiteral("load, export: replace what is in that folder.")});
    addFlag(parser, "yes", QStringLiteral("delete: do not ask."));
}

QList<CommandManual::Example> ResultsCommand::examples() const
{
    return {{QStringLiteral("spum results list mouse"),
             QStringLiteral("The results that were saved with the sequence, as by \"spum unmix --save\".")},
            {QStringLiteral("spum results load mouse four --out loaded"),
             QStringLiteral("Compute the maps of one again and write its files.")},
            {QStringLiteral("spum results export mouse four --out mouse-maps"),
             QStringLiteral("Make a sequence of its maps.")}};
}

void ResultsCommand::check(const QCommandLineParser& parser) const
{
    requestOf(parser);
}

void ResultsCommand::run(const QCommandLineParser& parser, CliSession& session)
{
    const Request request = requestOf(parser);
    const QStringList& arguments = request.arguments;
    session.setCommand(QStringLiteral("results ") + request.action);
    OpenedSequence opened(arguments[0]);
    session.warnAll(opened.warnings());
    if (request.action == QLatin1String("list")) {
        return list(opened, session);
    }
    const QString name = ResultStore::findName(opened.sequence(), arguments[1]);
    if (request.action == QLatin1String("show")) {
        show(opened, name, session);
    } else if (request.action == QLatin1String("load")) {
        load(opened, name, parser, session);
    } else if (request.action == QLatin1String("rename")) {
        rename(opened, {name, arguments[2]}, session);
    } else if (request.action == QLatin1String("delete")) {
        remove(opened, name, parser, session);
    } else {
        exportMaps(opened, name, parser, session);
    }
}

namespace {

// What is wrong with one result is told in its row.
SavedDocument listedDocument(const CORVSequenceDataset& sequence, const QString& strName)
{
    try {
        return readSavedDocument(ResultStore::pathOf(sequence, strName));
    } catch (const Failure& failure) {
        SavedDocument document;
        document.error = failure.text();
        return document;
    }
}

} // namespace

void ResultsCommand::list(OpenedSequence& opened, CliSession& session) const
{
    TextTable table({QStringLiteral("result"), QStringLiteral("saved"), QStringLiteral("method"),
                     QStringLiteral("unit"), QStringLiteral("images"), QStringLiteral("components"),
                     QStringLiteral("note")});
    QJsonArray results;
    const QStringList names = ResultStore::names(opened.sequence());
    for (const QString& name : names) {
        const SavedDocument document = listedDocument(opened.sequence(), name);
        results.append(jsonOf(name, document));
        table.addRow({name, document.date, document.property(QStringLiteral("Method")),
                      document.property(QStringLiteral("DataUnit")), QString::number(document.images),
                      document.error.isEmpty() ? document.names().join(QStringLiteral(", ")) : document.error,
                      document.note});
    }
    session.answer(
        names.isEmpty()
            ? QStringLiteral("no results are saved with this sequence; \"spum unmix SEQ --save\" keeps one\n")
            : table.toText());
    session.answerJson(QJsonObject{{"results", results}});
}

void ResultsCommand::show(OpenedSequence& opened, const QString& strName, CliSession& session) const
{
    const SavedDocument document = readSavedDocument(ResultStore::pathOf(opened.sequence(), strName));
    if (!document.error.isEmpty()) {
        throw Failure(QStringLiteral("%1: %2").arg(document.path.isEmpty() ? strName : document.path, document.error));
    }
    QString text = TextTable::oneLine(QStringLiteral("%1, saved %2").arg(strName, document.date)) + QLatin1Char('\n');
    text += orv::printableLine(document.path) + QLatin1Char('\n');
    if (!document.note.isEmpty()) {
        text += QStringLiteral("note: ") + TextTable::oneLine(document.note) + QLatin1Char('\n');
    }
    TextTable properties({QStringLiteral("property"), QStringLiteral("value")});
    QJsonObject propertiesJson;
    for (const auto& property : withoutWarnings(document.properties)) {
        properties.addRow({property.first, property.second});
        propertiesJson.insert(property.first, jsonWhole(property.second));
    }
    const QList<RunWarning> warnings = warningsAmong(document.properties);
    for (const QString& sentence : sentencesOf(warnings)) {
        text += QStringLiteral("warning: ") + TextTable::oneLine(sentence) + QLatin1Char('\n');
    }
    text += QLatin1Char('\n') + properties.toText() + QLatin1Char('\n') + spectraText(document);
    if (!document.isotope.isEmpty()) {
        text += QStringLiteral("\ndecay of %1 (half life %2 min): %3\n")
                    .arg(document.isotope, document.halfLifeMinutes,
                         document.decayCorrected ? QStringLiteral("corrected") : QStringLiteral("not corrected"));
    }
    if (document.regions > 0) {
        text += QStringLiteral("\n%1 entries of regions of interest\n").arg(document.regions);
    }
    session.answer(text);
    QJsonObject json = jsonOf(strName, document);
    json.insert(QStringLiteral("properties"), propertiesJson);
    json.insert(QStringLiteral("warnings"), jsonOf(warnings));
    json.insert(QStringLiteral("spectra"), spectraJson(document));
    if (!document.isotope.isEmpty()) {
        json.insert(QStringLiteral("decayCorrected"), document.decayCorrected);
    }
    session.answerJson(json);
}

void ResultsCommand::load(OpenedSequence& opened, const QString& strName, const QCommandLineParser& parser,
                          CliSession& session) const
{
    const ResultPlace place = resultPlace(parser.value(QStringLiteral("out")), opened.folder(),
                                          QStringLiteral("result-") + resultFileName(strName));
    StagedRun staged(place, parser.isSet(QStringLiteral("force")), QStringLiteral("summary.json"));
    session.startProgress(QStringLiteral("Loading the result"));
    const LoadedResult loaded(opened, strName, session);
    const QStringList command = QStringList(QStringLiteral("spum")) + QCoreApplication::arguments().mid(1);
    ReportFrame frame;
    frame.sequenceName = opened.sequence().getSequenceName() + QStringLiteral(", saved result ") + strName;
    frame.note = loaded.note();
    frame.command = shellLine(command);
    ResultFiles files(opened.engine(), loaded.numbers(), staged.path());
    files.setRun(staged.name());
    Provenance provenance = loaded.provenance();
    provenance.command = command;
    files.setProvenance(provenance);
    files.setReport(frame, parser.isSet(QStringLiteral("pdf")));
    files.setStyle(pictureStyleOf(opened.engine(), requestOf(parser).pictures));
    const XTNT::CancellationCheck check([&session] { session.stopIfRequested(); });
    files.write([&session](double fraction) {
        session.stopIfRequested();
        session.showProgress(QStringLiteral("Writing the results"), fraction);
    });
    staged.finish(session);
    session.warnAll(sentencesOf(loaded.numbers().warnings));
    RunAnswer answer = staged.answer(files.summaryText(), files.summaryJson());
    answer.json.insert(QStringLiteral("saved"), strName);
    session.answer(answer);
}

void ResultsCommand::rename(OpenedSequence& opened, const QStringList& arguments, CliSession& session) const
{
    ResultStore(opened.engine(), false).rename(arguments[0], arguments[1]);
    session.answer(QStringLiteral("result \"%1\" is now \"%2\"\n").arg(arguments[0], arguments[1]));
    session.answerJson(QJsonObject{{"name", arguments[1]}, {"before", arguments[0]}});
}

void ResultsCommand::remove(OpenedSequence& opened, const QString& strName, const QCommandLineParser& parser,
                            CliSession& session) const
{
    ResultStore(opened.engine(), parser.isSet(QStringLiteral("yes"))).remove(strName);
    session.answer(QStringLiteral("result \"%1\" deleted\n").arg(strName));
    session.answerJson(QJsonObject{{"deleted", strName}});
}

void ResultsCommand::exportMaps(OpenedSequence& opened, const QString& strName, const QCommandLineParser& parser,
                                CliSession& session) const
{
    session.startProgress(QStringLiteral("Loading the result"));
    const LoadedResult loaded(opened, strName, session);
    session.stopIfRequested();
    session.showProgress(QStringLiteral("Exporting the maps"), 0.5);
    const ExportedMaps maps =
        exportResult(opened.engine(), requestOf(parser).component, parser.value(QStringLiteral("out")),
                     parser.isSet(QStringLiteral("force")), &session);
    session.endProgress();
    session.answer(
        QStringLiteral("%1 exported as sequence %2 in %3\n")
            .arg(maps.names.size() == 1 ? QStringLiteral("1 map") : QStringLiteral("%1 maps").arg(maps.names.size()),
                 orv::printableLine(maps.id), orv::printableLine(maps.folder)));
    session.answerJson(
        QJsonObject{{"folder", maps.folder}, {"id", maps.id}, {"maps", QJsonArray::fromStringList(maps.names)}});
}
