// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/commands/LibraryEditing.h"

#include "engine/CORVSpumKyvo.h"
#include "engine/EngineEnums.h"
#include "files/AtomicFile.h"
#include "platform/orvutils/printable.h"
#include "services/analysis/AutomaticSetUp.h"
#include "services/analysis/SpectrumSources.h"
#include "services/basis/Failure.h"
#include "services/basis/UnitNames.h"
#include "services/session/OpenedSequence.h"
#include "services/session/PairSelection.h"
#include "services/session/SavedLibraries.h"
#include "services/session/SpectralBands.h"
#include "services/session/libraryTemplate.h"
#include "spectra/SpectrumPlotParams.h"
#include "windows/probeOffer.h"
#include "workbench/commands/CliSession.h"
#include "workbench/commands/CommandParser.h"
#include "workbench/commands/Options.h"

#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QMap>

namespace {

// What is asked for of one sequence, or of none.
struct LibraryPart
{
    QString sequence;
    QStringList files;
    QStringList probes;
    QStringList regions;

    bool isEmpty() const { return files.isEmpty() && probes.isEmpty() && regions.isEmpty(); }
    bool needsSequence() const { return !probes.isEmpty() || !regions.isEmpty(); }
};

// Options belong to the sequence ahead of them; those ahead of all belong to the only one, if there is one only.
QList<LibraryPart> partsOf(const QCommandLineParser& parser)
{
    QMap<QString, int> seen;
    QList<LibraryPart> parts = {LibraryPart()};
    for (const QString& option : parser.optionNames()) {
        const QString value = parser.values(option).value(seen[option]++);
        if (option == QLatin1String("sequence")) {
            parts.append(LibraryPart());
            parts.last().sequence = value;
        } else if (option == QLatin1String("from")) {
            parts.last().files.append(value);
        } else if (option == QLatin1String("probes")) {
            parts.last().probes.append(value);
        } else if (option == QLatin1String("region")) {
            parts.last().regions.append(value);
        }
    }
    const int sequences = parts.size() - 1;
    if (sequences == 1) {
        const LibraryPart ahead = parts.takeFirst();
        parts.first().files = ahead.files + parts.first().files;
        parts.first().probes = ahead.probes + parts.first().probes;
        parts.first().regions = ahead.regions + parts.first().regions;
    } else if (parts.first().needsSequence()) {
        refuseUsage("library",
                    sequences == 0
                        ? QStringLiteral("--sequence is missing: the images that the spectra are for.")
                        : QStringLiteral("of several sequences each stands ahead of its --region and --probes."));
    }
    for (const LibraryPart& part : qAsConst(parts)) {
        if (!part.sequence.isEmpty() && part.isEmpty()) {
            refuseUsage("library",
                        QStringLiteral("no --region, --probes or --from is for --sequence %1.").arg(part.sequence));
        }
    }
    return parts;
}

// Adds what the options ask for; whether there was anything.
bool takeParts(const QCommandLineParser& parser, SpectrumSources& made, CliSession& session)
{
    int unit = -1;
    if (parser.isSet(QStringLiteral("unit"))) {
        unit = UnitNames::fromText(parser.value(QStringLiteral("unit")));
        if (unit < 0) {
            refuseUsage("library", QStringLiteral("--unit takes %1, not \"%2\".")
                                       .arg(UnitNames::options().join(QStringLiteral(", ")),
                                            parser.value(QStringLiteral("unit"))));
        }
    }
    made.setImages(parser.value(QStringLiteral("select")), unit);
    bool any = false;
    for (const LibraryPart& part : partsOf(parser)) {
        for (const QString& file : part.files) {
            part.sequence.isEmpty() ? made.fromLibrary(file) : made.fromLibrary(file, part.sequence);
        }
        for (const QString& names : part.probes) {
            made.fromDatabase(names, part.sequence);
        }
        if (!part.regions.isEmpty()) {
            made.fromRegions(part.regions, part.sequence);
        }
        session.stopIfRequested();
        any = any || !part.isEmpty();
    }
    return any;
}

void store(const QCommandLineParser& parser, const QString& strName, const SpectrumSources& made, bool bReplace,
           CliSession& session)
{
    session.stopIfRequested();
    const QString note = parser.isSet(QStringLiteral("note")) ? parser.value(QStringLiteral("note")) : made.note();
    if (note.contains(QLatin1Char(','))) {
        session.warn(QStringLiteral("the file's form ends a note at its first comma"));
    }
    const QList<SpectrumPlotParams*> spectra = made.spectra();
    const QString path = SavedLibraries::save(strName, spectra, note, bReplace);
    session.answer(QStringLiteral("saved %1 spectra of %2 points as %3 (%4)\n")
                       .arg(spectra.size())
                       .arg(spectra.first()->points.size())
                       .arg(orv::printableLine(strName), orv::printableLine(path)));
    session.answerJson(QJsonObject{{"name", strName}, {"path", path}, {"spectra", spectra.size()}});
}

bool isForced(const QCommandLineParser& parser)
{
    return parser.isSet(QStringLiteral("force"));
}

// "OLD=NEW".
QPair<QString, QString> renamingOf(const QString& strText)
{
    const int equals = strText.indexOf(QLatin1Char('='));
    if (equals < 1) {
        refuseUsage("library", QStringLiteral("rename: --spectrum takes OLD=NEW, not \"%1\".").arg(strText));
    }
    return {strText.left(equals).trimmed(), strText.mid(equals + 1).trimmed()};
}

// Columns to fill in: those that are asked for, else the components that would be resolved.
QStringList templateNames(const QCommandLineParser& parser, const CORVSpumKyvo& engine)
{
    QStringList names;
    if (parser.isSet(QStringLiteral("spectrum"))) {
        return parser.values(QStringLiteral("spectrum"));
    }
    for (const QString& name : proposedComponents(engine)) {
        const bool known = !name.isEmpty() && name != QLatin1String(kUnknownProbe) && !names.contains(name);
        names.append(known ? name : QStringLiteral("component %1").arg(names.size() + 1));
    }
    return names;
}

} // namespace

void LibraryEditing::declareOptions(CommandParser& parser)
{
    addValueOption(parser, "from",
                   QStringLiteral("save, append: the spectra of this library, or of this CSV table of spectra over "
                                  "wavelength, at the images of --sequence; may be repeated."),
                   "FILE|NAME");
    addValueOption(parser, "sequence",
                   QStringLiteral("save, import, append: the sequence for the options behind it; may be repeated, each "
                                  "with its own."),
                   "SEQ");
    addValueOption(
        parser, "probes",
        QStringLiteral("save, append: spectra of these sources of the database (A,B,...; see \"spum sources\") at the "
                       "images of --sequence."),
        "NAMES");
    addValueOption(parser, "region",
                   QStringLiteral("save, append: mean over a rectangle of the images of --sequence, in pixels of the "
                                  "analysis, or over another shape (NAME=ellipse:X,Y,W,H, "
                                  "NAME=polygon:X1,Y1,X2,Y2,...) or a region of interest (NAME=roi:REGION); may be "
                                  "repeated."),
                   "NAME=X,Y,W,H");
    addValueOption(parser, "select",
                   QStringLiteral("save, import, append, template: images of the sequences, as in \"spum unmix\"."),
                   "IMAGES");
    addValueOption(parser, "unit",
                   QStringLiteral("save, append: unit in which regions are measured; the best that the images have."),
                   "UNIT");
    addValueOption(parser, "spectrum",
                   QStringLiteral("rename: OLD=NEW, a spectrum of the library; remove: a spectrum of it; template: a "
                                  "column to fill in; may be repeated."),
                   "NAME");
    addValueOption(parser, "out", QStringLiteral("template: the file; SEQ-spectra.csv in the present folder."), "FILE");
    addValueOption(parser, "note", QStringLiteral("save, import, append, merge: a note (a comma ends it)."), "TEXT");
    addFlag(parser, "force", QStringLiteral("Replace a library of that name; of template, the file."));
}

void LibraryEditing::save(const QCommandLineParser& parser, const QStringList& arguments, CliSession& session)
{
    SpectrumSources made;
    if (!takeParts(parser, made, session)) {
        refuseUsage("library", QStringLiteral("save takes one of --from, --probes and --region, or several of them."));
    }
    store(parser, arguments[0], made, isForced(parser), session);
}

void LibraryEditing::import(const QCommandLineParser& parser, const QStringList& arguments, CliSession& session)
{
    for (const char* option : {"from", "probes", "region", "unit"}) {
        if (parser.isSet(QLatin1String(option))) {
            refuseUsage("library",
                        QStringLiteral("import takes its spectra from FILE alone, not from --%1; append adds "
                                       "others.")
                            .arg(QLatin1String(option)));
        }
    }
    if (parser.values(QStringLiteral("sequence")).size() > 1) {
        refuseUsage("library", QStringLiteral("import takes one --sequence."));
    }
    SpectrumSources made;
    made.setImages(parser.value(QStringLiteral("select")), -1);
    if (parser.isSet(QStringLiteral("sequence"))) {
        made.fromLibrary(arguments[0], parser.value(QStringLiteral("sequence")));
    } else {
        made.fromLibrary(arguments[0]);
    }
    store(parser, arguments[1], made, isForced(parser), session);
}

void LibraryEditing::append(const QCommandLineParser& parser, const QStringList& arguments, CliSession& session)
{
    SpectrumSources made;
    SavedLibraries::fileOf(arguments[0]);
    made.fromLibrary(arguments[0]);
    if (!takeParts(parser, made, session)) {
        refuseUsage("library", QStringLiteral("append takes --from, --probes or --region, or several of them."));
    }
    store(parser, arguments[0], made, true, session);
}

void LibraryEditing::merge(const QCommandLineParser& parser, const QStringList& arguments, CliSession& session)
{
    SpectrumSources made;
    for (const QString& name : arguments.mid(1)) {
        made.fromLibrary(name);
    }
    store(parser, arguments[0], made, isForced(parser), session);
}

void LibraryEditing::rename(const QCommandLineParser& parser, const QStringList& arguments, CliSession& session)
{
    const QStringList texts = parser.values(QStringLiteral("spectrum"));
    if (texts.isEmpty() != (arguments.size() == 2)) {
        refuseUsage("library",
                    QStringLiteral("rename takes a library and its new name, or a library and --spectrum OLD=NEW."));
    }
    if (texts.isEmpty()) {
        SavedLibraries::rename(arguments[0], arguments[1], isForced(parser));
        session.answer(QStringLiteral("renamed %1 to %2\n")
                           .arg(orv::printableLine(arguments[0]), orv::printableLine(arguments[1])));
        session.answerJson(QJsonObject{{"name", arguments[1]}, {"was", arguments[0]}});
        return;
    }
    QList<QPair<QString, QString>> names;
    for (const QString& text : texts) {
        names.append(renamingOf(text));
    }
    SavedLibraries::renameSpectra(arguments[0], names);
    session.answer(
        QStringLiteral("renamed %1 spectra of %2\n").arg(names.size()).arg(orv::printableLine(arguments[0])));
    session.answerJson(QJsonObject{{"name", arguments[0]}, {"renamed", names.size()}});
}

void LibraryEditing::remove(const QCommandLineParser& parser, const QStringList& arguments, CliSession& session)
{
    const QStringList spectra = parser.values(QStringLiteral("spectrum"));
    if (spectra.isEmpty()) {
        SavedLibraries::remove(arguments);
        session.answer(QStringLiteral("removed %1\n").arg(orv::printableLine(arguments.join(QStringLiteral(", ")))));
        session.answerJson(QJsonObject{{"removed", QJsonArray::fromStringList(arguments)}});
        return;
    }
    if (arguments.size() != 1) {
        refuseUsage("library", QStringLiteral("remove takes --spectrum of one library."));
    }
    const int left = SavedLibraries::removeSpectra(arguments[0], spectra);
    session.answer(QStringLiteral("removed %1 of %2; %3 spectra are left\n")
                       .arg(orv::printableLine(spectra.join(QStringLiteral(", "))), orv::printableLine(arguments[0]))
                       .arg(left));
    session.answerJson(QJsonObject{{"name", arguments[0]}, {"spectra", left}});
}

void LibraryEditing::writeTemplate(const QCommandLineParser& parser, const QStringList& arguments, CliSession& session)
{
    OpenedSequence opened(arguments[0]);
    const CORVSpumKyvo& engine = opened.engine();
    if (!opened.canBeAnalysed()) {
        throw Failure(QStringLiteral("%1 cannot be analysed: %2").arg(arguments[0], opened.reasonAgainst()));
    }
    if (engine.m_eSeqKind == SEQKIND_TEMPORAL) {
        throw Failure(
            QStringLiteral("a table of spectra is over wavelength; %1 is a temporal sequence").arg(arguments[0]));
    }
    QList<KeyPair> pairs = engine.getSelectedKeyPairs();
    if (parser.isSet(QStringLiteral("select"))) {
        pairs = selectPairs(parser.value(QStringLiteral("select")), pairs);
    }
    const QStringList names = templateNames(parser, engine);
    const QList<SpectralBand> bands = bandsOf(opened.sequence(), pairs);
    for (const SpectralBand& band : bands) {
        if (!band.excitation.isKnown() && !band.emission.isKnown()) {
            throw Failure(
                QStringLiteral("%1: the wavelength of the image %2 is not known, so that no table can name it")
                    .arg(arguments[0], pairText(band.pair)),
                QStringLiteral("\"spum library save\" measures spectra in the images"));
        }
    }
    const QByteArray text = libraryTemplate(bands, names);
    const QString file = parser.isSet(QStringLiteral("out"))
                             ? parser.value(QStringLiteral("out"))
                             : QDir(opened.folder()).dirName() + QStringLiteral("-spectra.csv");
    QString error;
    bool existed = false;
    if (isForced(parser) ? !orv::writeFileAtomically(file, text, &error)
                         : !orv::writeNewFileAtomically(file, text, &existed, &error)) {
        throw existed ? Failure(QStringLiteral("%1 exists already").arg(file), QStringLiteral("--force replaces it"))
                      : Failure(error);
    }
    session.answer(QStringLiteral("wrote %1: %2 images to fill in for %3\n")
                       .arg(orv::printableLine(file))
                       .arg(pairs.size())
                       .arg(orv::printableLine(names.join(QStringLiteral(", ")))));
    session.answerJson(
        QJsonObject{{"path", file}, {"images", pairs.size()}, {"spectra", QJsonArray::fromStringList(names)}});
}
