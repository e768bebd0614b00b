// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/commands/LibraryCommand.h"

#include "host/orv_paths.h"
#include "platform/orvutils/printable.h"
#include "services/analysis/SpectrumSources.h"
#include "services/basis/Failure.h"
#include "services/basis/TextTable.h"
#include "services/session/LibrarySpectra.h"
#include "spectra/SpectrumPlotParams.h"
#include "spectra/SpumKyvoDatabase.h"
#include "workbench/commands/CliSession.h"
#include "workbench/commands/CommandParser.h"
#include "workbench/commands/Options.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>

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

[[noreturn]] void refuseExisting(const QString& strName)
{
    throw Failure(QStringLiteral("the library %1 exists already").arg(strName), QStringLiteral("--force replaces it"));
}

// The file of a library that is to be saved; the folder is made.
QString pathToSave(const QString& strName, bool bForce)
{
    if (strName.isEmpty() || strName.contains(QLatin1Char('/')) || strName.startsWith(QLatin1Char('.'))) {
        refuseUsage("library", QStringLiteral("\"%1\" cannot be the name of a library.").arg(strName));
    }
    const QString base = getORVPath(ORV_PATH_USER_DATA, true, nullptr);
    const QString folder = base + QStringLiteral("Spum/");
    if (base.isEmpty() || !QDir().mkpath(folder)) {
        throw Failure(QStringLiteral("Failed to create the SPUM database folder (%1)").arg(folder));
    }
    const QString path = folder + strName + QStringLiteral(".csv");
    if (QFileInfo::exists(path) && !bForce) {
        refuseExisting(strName);
    }
    return path;
}

} // namespace

void LibraryCommand::declare(CommandParser& parser) const
{
    parser.addPositionalArgument(QStringLiteral("list|show|save"), QStringLiteral("What to do."));
    parser.addPositionalArgument(QStringLiteral("NAME"),
                                 QStringLiteral("Library (show also takes a file, a plain table of spectra too)."),
                                 QStringLiteral("[NAME]"));
    addValueOption(parser, "from", QStringLiteral("save: take the spectra of this library file."), "FILE");
    addValueOption(parser, "sequence", QStringLiteral("save: the sequence for --probes and --region."), "SEQ");
    addValueOption(
        parser, "probes",
        QStringLiteral("save: spectra of these sources of the database (A,B,...) at the images of --sequence."),
        "NAMES");
    addValueOption(parser, "region",
                   QStringLiteral("save: mean over a rectangle of the images of --sequence; may be repeated."),
                   "NAME=X,Y,W,H");
    addValueOption(parser, "note", QStringLiteral("save: a note (a comma ends it)."), "TEXT");
    parser.addOption({QStringLiteral("force"), QStringLiteral("save: replace a library of that name.")});
}

QList<CommandManual::Example> LibraryCommand::examples() const
{
    return {{QStringLiteral("spum library save dyes --sequence mouse --probes \"AlexaFluor 700,Cy7\""),
             QStringLiteral("Spectra of the database at the images of a sequence.")},
            {QStringLiteral(
                 "spum library save measured --sequence mouse --region \"gut=20,30,10,8\" --region \"skin=30,10,8,8\""),
             QStringLiteral("Spectra measured in the images, in rectangles of pixels.")},
            {QStringLiteral("spum library show dyes"), QStringLiteral("The figures of a library.")}};
}

void LibraryCommand::run(const QCommandLineParser& parser, CliSession& session)
{
    const QStringList arguments = parser.positionalArguments();
    const QString action = arguments.value(0);
    if (action == QLatin1String("list") && arguments.size() == 1) {
        list(session);
    } else if (action == QLatin1String("show") && arguments.size() == 2) {
        show(arguments[1], session);
    } else if (action == QLatin1String("save") && arguments.size() == 2) {
        save(parser, arguments[1], session);
    } else {
        refuseUsage("library", QStringLiteral("library takes: list; show NAME; or save NAME."));
    }
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

void LibraryCommand::save(const QCommandLineParser& parser, const QString& strName, CliSession& session) const
{
    const int sources = (parser.isSet(QStringLiteral("from")) ? 1 : 0) +
                        (parser.isSet(QStringLiteral("probes")) ? 1 : 0) +
                        (parser.isSet(QStringLiteral("region")) ? 1 : 0);
    if (sources != 1) {
        refuseUsage("library", QStringLiteral("save takes one of --from, --probes and --region."));
    }
    SpectrumSources made;
    if (parser.isSet(QStringLiteral("from"))) {
        made.fromLibrary(parser.value(QStringLiteral("from")));
    } else if (parser.value(QStringLiteral("sequence")).isEmpty()) {
        refuseUsage("library", QStringLiteral("--sequence is missing: the images that the spectra are for."));
    } else if (parser.isSet(QStringLiteral("probes"))) {
        made.fromDatabase(parser.value(QStringLiteral("probes")), parser.value(QStringLiteral("sequence")));
    } else {
        made.fromRegions(parser.values(QStringLiteral("region")), parser.value(QStringLiteral("sequence")));
    }

    session.stopIfRequested();
    const bool force = parser.isSet(QStringLiteral("force"));
    const QString path = pathToSave(strName, force);
    const QString note = parser.isSet(QStringLiteral("note")) ? parser.value(QStringLiteral("note")) : made.note();
    if (note.contains(QLatin1Char(','))) {
        session.warn(QStringLiteral("the file's form ends a note at its first comma"));
    }
    QList<SpectrumPlotParams*> spectra = made.spectra();
    SpumKyvoDatabase database;
    // Another program may have saved one of that name meanwhile.
    bool existed = false;
    if (force ? !database.saveLibrary(path, spectra, note) : !database.saveNewLibrary(path, spectra, note, &existed)) {
        if (existed) {
            refuseExisting(strName);
        }
        throw Failure(QStringLiteral("%1 cannot be written").arg(path));
    }
    session.answer(QStringLiteral("saved %1 spectra of %2 points as %3 (%4)\n")
                       .arg(spectra.size())
                       .arg(spectra.first()->points.size())
                       .arg(orv::printableLine(strName), orv::printableLine(path)));
    session.answerJson(QJsonObject{{"name", strName}, {"path", path}, {"spectra", spectra.size()}});
}
