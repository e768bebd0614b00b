// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/commands/LibraryCommand.h"

#include "platform/orvutils/printable.h"
#include "services/basis/TextTable.h"
#include "services/session/LibrarySpectra.h"
#include "spectra/SpectrumPlotParams.h"
#include "spectra/SpumKyvoDatabase.h"
#include "workbench/commands/CliSession.h"
#include "workbench/commands/CommandParser.h"
#include "workbench/commands/LibraryCall.h"
#include "workbench/commands/LibraryEditing.h"

#include <QJsonArray>

#include <algorithm>
#include <array>
#include <cmath>

namespace {

QJsonArray jsonPoints(const SpectrumPlotParams& spectrum)
{
    QJsonArray points;
    for (const auto& point : spectrum.points) {
        points.append(QJsonObject{{"first", point.first}, {"second", point.second}, {"value", point.value}});
    }
    return points;
}

using Action = void (*)(const LibraryCall& call, CliSession& session);

struct NamedAction
{
    const char* name;
    Action run;
};

constexpr std::array actions = {
    NamedAction{"save", LibraryEditing::save},
    NamedAction{"import", LibraryEditing::import},
    NamedAction{"append", LibraryEditing::append},
    NamedAction{"merge", LibraryEditing::merge},
    NamedAction{"rename", LibraryEditing::rename},
    NamedAction{"remove", LibraryEditing::remove},
    NamedAction{"template", LibraryEditing::writeTemplate},
};

} // namespace

void LibraryCommand::declare(CommandParser& parser) const
{
    parser.addPositionalArgument(QStringLiteral("list|show|save|import|append|merge|rename|remove|template"),
                                 QStringLiteral("What to do."));
    parser.addPositionalArgument(
        QStringLiteral("NAME"),
        QStringLiteral(
            "A library. show takes a file too, a plain table of spectra or a library; import FILE NAME; merge "
            "NAME LIBRARY...; rename NAME NEW; remove NAME...; template SEQ."),
        QStringLiteral("[NAME...]"));
    LibraryEditing::declareOptions(parser);
}

QList<CommandManual::Example> LibraryCommand::examples() const
{
    return {{QStringLiteral("spum library save dyes --sequence mouse --probes \"AlexaFluor 700,Cy7\""),
             QStringLiteral("Spectra of the database at the images of a sequence.")},
            {QStringLiteral(
                 "spum library save measured --sequence mouse --region \"gut=20,30,10,8\" --region \"skin=30,10,8,8\""),
             QStringLiteral("Spectra measured in the images, in rectangles of pixels.")},
            {QStringLiteral("spum library merge both dyes measured"), QStringLiteral("All of them in one library.")},
            {QStringLiteral("spum library template mouse"), QStringLiteral("A table of spectra to fill in.")},
            {QStringLiteral("spum library show dyes"), QStringLiteral("The figures of a library.")}};
}

void LibraryCommand::check(const QCommandLineParser& parser) const
{
    LibraryCall::of(parser);
}

void LibraryCommand::run(const QCommandLineParser& parser, CliSession& session)
{
    const LibraryCall call = LibraryCall::of(parser);
    session.setCommand(QStringLiteral("library ") + call.action);
    if (call.action == QLatin1String("list")) {
        list(session);
        return;
    }
    if (call.action == QLatin1String("show")) {
        show(call.arguments[0], session);
        return;
    }
    const auto* const found = std::find_if(actions.begin(), actions.end(), [&call](const NamedAction& named) {
        return call.action == QLatin1String(named.name);
    });
    found->run(call, session);
}

void LibraryCommand::list(CliSession& session) const
{
    TextTable table(
        {QStringLiteral("library"), QStringLiteral("spectra"), QStringLiteral("points"), QStringLiteral("note")});
    QJsonArray libraries;
    SpumKyvoDatabase database;
    for (const auto& name : database.listLibraries()) {
        QList<SpectrumPlotParams*> spectra;
        QString note;
        const bool loaded = database.loadLibrary(name, spectra, note);
        const int points = spectra.isEmpty() ? 0 : spectra.first()->points.size();
        table.addRow({name, loaded ? QString::number(spectra.size()) : QStringLiteral("unreadable"),
                      QString::number(points), note});
        libraries.append(
            QJsonObject{{"name", name}, {"readable", loaded}, {"spectra", spectra.size()}, {"note", note}});
        qDeleteAll(spectra);
    }
    session.answer(table.rowCount() > 0 ? table.toText() : QStringLiteral("no library is saved\n"));
    session.answerJson(QJsonObject{{"libraries", libraries}});
}

void LibraryCommand::show(const QString& strName, CliSession& session) const
{
    LibrarySpectra library;
    library.loadWithTables(strName);
    if (library.isTable()) {
        showTable(library.table(), strName, session);
        return;
    }
    QStringList header = {QStringLiteral("first"), QStringLiteral("second")};
    QJsonArray spectra;
    for (const auto* spectrum : library.all()) {
        header.append(spectrum->settings.name);
        spectra.append(QJsonObject{{"name", spectrum->settings.name},
                                   {"color", spectrum->settings.color},
                                   {"origin", spectrum->origin},
                                   {"selected", spectrum->settings.selected},
                                   {"points", jsonPoints(*spectrum)}});
    }
    TextTable table(header);
    const auto& points = library.all().first()->points;
    for (int j = 0; j < points.size(); ++j) {
        QStringList row = {points[j].first, points[j].second};
        for (const auto* spectrum : library.all()) {
            row.append(TextTable::number(spectrum->points[j].value));
        }
        table.addRow(row);
    }
    const QString note =
        library.note().isEmpty() ? QString() : QStringLiteral("Note: %1\n\n").arg(orv::printableLine(library.note()));
    session.answer(note + table.toText());
    session.answerJson(QJsonObject{{"name", strName}, {"note", library.note()}, {"spectra", spectra}});
}

void LibraryCommand::showTable(const SpectraTable& table, const QString& strName, CliSession& session) const
{
    const auto wavelength = [](double nm) { return std::isfinite(nm) ? QString::number(nm, 'g', 10) : QString(); };
    QJsonArray spectra;
    for (int k = 0; k < table.names().size(); ++k) {
        QJsonArray points;
        for (int i = 0; i < table.rows().size(); ++i) {
            if (std::isfinite(table.values(k).at(i))) {
                points.append(QJsonObject{{"first", wavelength(table.rows().at(i).excitation)},
                                          {"second", wavelength(table.rows().at(i).wavelength)},
                                          {"value", table.values(k).at(i)}});
            }
        }
        spectra.append(QJsonObject{{"name", table.names().at(k)}, {"points", points}});
    }
    const QStringList places = table.hasPairs() ? QStringList{QStringLiteral("excitation"), QStringLiteral("emission")}
                                                : QStringList{QStringLiteral("wavelength")};
    TextTable text(places + table.names());
    for (int i = 0; i < table.rows().size(); ++i) {
        const SpectraTable::Row& at = table.rows().at(i);
        QStringList row = {wavelength(at.wavelength)};
        if (table.hasPairs()) {
            row.prepend(wavelength(at.excitation));
        }
        for (int k = 0; k < table.names().size(); ++k) {
            row.append(TextTable::number(table.values(k).at(i)));
        }
        text.addRow(row);
    }
    session.answer(QStringLiteral("A table of spectra over wavelength in nm.\n\n") + text.toText());
    session.answerJson(QJsonObject{{"name", strName}, {"table", true}, {"spectra", spectra}});
}
