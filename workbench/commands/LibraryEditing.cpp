// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/commands/LibraryEditing.h"

#include "engine/CORVSpumKyvo.h"
#include "engine/EngineEnums.h"
#include "files/AtomicFile.h"
#include "platform/orvutils/printable.h"
#include "services/analysis/AutomaticSetUp.h"
#include "services/analysis/SpectrumSources.h"
#include "services/basis/ChannelLabels.h"
#include "services/basis/Failure.h"
#include "services/basis/UnitNames.h"
#include "services/basis/fileHash.h"
#include "services/session/LibrariesLock.h"
#include "services/session/OpenedSequence.h"
#include "services/session/PairSelection.h"
#include "services/session/SavedLibraries.h"
#include "services/session/SpectralBands.h"
#include "services/session/libraryTemplate.h"
#include "spectra/SpectrumPlotParams.h"
#include "windows/probeOffer.h"
#include "workbench/commands/CliSession.h"
#include "workbench/commands/CommandParser.h"
#include "workbench/commands/LibraryCall.h"
#include "workbench/commands/Options.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>

#include <functional>

namespace {

void takeParts(const LibraryCall& call, SpectrumSources& made, CliSession& session)
{
    made.setImages(call.select, call.unit);
    for (const LibraryCall::Part& part : call.parts) {
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
    }
}

// As long as nobody wants it to stop.
std::function<bool()> goesOn(const CliSession& session)
{
    return [&session] { return !session.isStopRequested(); };
}

void store(const LibrariesLock& lock, const LibraryCall& call, const QString& strName, const SpectrumSources& made,
           bool bReplace, CliSession& session)
{
    session.stopIfRequested();
    const QString note = call.hasNote ? call.note : made.note();
    if (note.contains(QLatin1Char(','))) {
        session.warn(QStringLiteral("the file's form ends a note at its first comma"));
    }
    const QList<SpectrumPlotParams*> spectra = made.spectra();
    const QString path = SavedLibraries::save(lock, strName, spectra, note, bReplace);
    session.answer(QStringLiteral("saved %1 spectra of %2 points as %3 (%4)\n")
                       .arg(spectra.size())
                       .arg(spectra.first()->points.size())
                       .arg(orv::printableLine(strName), orv::printableLine(path)));
    session.answerJson(QJsonObject{{"name", strName}, {"path", path}, {"spectra", spectra.size()}});
}

// Columns to fill in: those that are asked for, else the components that would be resolved.
QStringList templateNames(const LibraryCall& call, const CORVSpumKyvo& engine)
{
    if (!call.spectra.isEmpty()) {
        return call.spectra;
    }
    QStringList names;
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
    addChoiceOption(parser, "unit",
                    QStringLiteral("save, append: unit in which regions are measured; the best that the images have."),
                    "UNIT", UnitNames::options());
    addValueOption(parser, "spectrum",
                   QStringLiteral("rename: OLD=NEW, a spectrum of the library; remove: a spectrum of it; template: a "
                                  "column to fill in; may be repeated."),
                   "NAME");
    addValueOption(parser, "out", QStringLiteral("template: the file; SEQ-spectra.csv in the present folder."), "FILE");
    addValueOption(parser, "note", QStringLiteral("save, import, append, merge: a note (a comma ends it)."), "TEXT");
    addFlag(parser, "force",
            QStringLiteral("save, import, merge, rename: replace a library of that name; template: the file."));
}

void LibraryEditing::save(const LibraryCall& call, CliSession& session)
{
    SpectrumSources made;
    takeParts(call, made, session);
    store(LibrariesLock(goesOn(session)), call, call.arguments[0], made, call.force, session);
}

void LibraryEditing::import(const LibraryCall& call, CliSession& session)
{
    SpectrumSources made;
    made.setImages(call.select, -1);
    if (call.sequence.isEmpty()) {
        made.fromLibrary(call.arguments[0]);
    } else {
        made.fromLibrary(call.arguments[0], call.sequence);
    }
    store(LibrariesLock(goesOn(session)), call, call.arguments[1], made, call.force, session);
}

// Images may take long to read, and the lock is held for a moment only: where another program has changed the library
// meanwhile, it is done again with what that has made of it.
void LibraryEditing::append(const LibraryCall& call, CliSession& session)
{
    const QString& name = call.arguments[0];
    for (;;) {
        const QString file = SavedLibraries::fileOf(name);
        const QString before = fileHash(file);
        SpectrumSources made;
        made.fromLibrary(file);
        takeParts(call, made, session);
        const LibrariesLock lock(goesOn(session));
        if (fileHash(SavedLibraries::fileOf(name)) == before) {
            store(lock, call, name, made, true, session);
            return;
        }
    }
}

void LibraryEditing::merge(const LibraryCall& call, CliSession& session)
{
    const LibrariesLock lock(goesOn(session));
    SpectrumSources made;
    for (const QString& name : call.arguments.mid(1)) {
        made.fromLibrary(name);
    }
    store(lock, call, call.arguments[0], made, call.force, session);
}

void LibraryEditing::rename(const LibraryCall& call, CliSession& session)
{
    SavedLibraries::fileOf(call.arguments[0]);
    const LibrariesLock lock(goesOn(session));
    if (call.newSpectra.isEmpty()) {
        SavedLibraries::rename(lock, call.arguments[0], call.arguments[1], call.force);
        session.answer(QStringLiteral("renamed %1 to %2\n")
                           .arg(orv::printableLine(call.arguments[0]), orv::printableLine(call.arguments[1])));
        session.answerJson(QJsonObject{{"name", call.arguments[1]}, {"was", call.arguments[0]}});
        return;
    }
    SavedLibraries::renameSpectra(lock, call.arguments[0], call.newSpectra);
    session.answer(QStringLiteral("renamed %1 spectra of %2\n")
                       .arg(call.newSpectra.size())
                       .arg(orv::printableLine(call.arguments[0])));
    session.answerJson(QJsonObject{{"name", call.arguments[0]}, {"renamed", call.newSpectra.size()}});
}

void LibraryEditing::remove(const LibraryCall& call, CliSession& session)
{
    SavedLibraries::fileOf(call.arguments[0]);
    const LibrariesLock lock(goesOn(session));
    const QStringList& spectra = call.spectra;
    if (spectra.isEmpty()) {
        SavedLibraries::remove(lock, call.arguments);
        session.answer(
            QStringLiteral("removed %1\n").arg(orv::printableLine(call.arguments.join(QStringLiteral(", ")))));
        session.answerJson(QJsonObject{{"removed", QJsonArray::fromStringList(call.arguments)}});
        return;
    }
    const int left = SavedLibraries::removeSpectra(lock, call.arguments[0], spectra);
    session.answer(QStringLiteral("removed %1 of %2; %3 spectra are left\n")
                       .arg(orv::printableLine(spectra.join(QStringLiteral(", "))),
                            orv::printableLine(call.arguments[0]), QString::number(left)));
    session.answerJson(QJsonObject{{"name", call.arguments[0]}, {"spectra", left}});
}

void LibraryEditing::writeTemplate(const LibraryCall& call, CliSession& session)
{
    OpenedSequence opened(call.arguments[0]);
    const CORVSpumKyvo& engine = opened.engine();
    if (!opened.canBeAnalysed()) {
        throw Failure(QStringLiteral("%1 cannot be analysed: %2").arg(call.arguments[0], opened.reasonAgainst()));
    }
    if (engine.m_eSeqKind == SEQKIND_TEMPORAL) {
        throw Failure(
            QStringLiteral("a table of spectra is over wavelength; %1 is a temporal sequence").arg(call.arguments[0]));
    }
    QList<KeyPair> pairs = engine.getSelectedKeyPairs();
    if (!call.select.isEmpty()) {
        pairs = selectPairs(call.select, pairs);
    }
    const QStringList names = templateNames(call, engine);
    const QList<SpectralBand> bands = bandsOf(opened.sequence(), pairs);
    const QByteArray text = libraryTemplate(bands, names, ChannelLabels(engine).labels(pairs));
    const QString file =
        !call.out.isEmpty() ? call.out : QDir(opened.folder()).dirName() + QStringLiteral("-spectra.csv");
    QString error;
    bool existed = false;
    if (call.force ? !orv::writeFileAtomically(file, text, &error)
                   : !orv::writeNewFileAtomically(file, text, &existed, &error)) {
        throw existed ? Failure(QStringLiteral("%1 exists already").arg(file), QStringLiteral("--force replaces it"))
                      : Failure(error);
    }
    session.answer(QStringLiteral("wrote %1: %2 images to fill in for %3\n")
                       .arg(orv::printableLine(file), QString::number(pairs.size()),
                            orv::printableLine(names.join(QStringLiteral(", ")))));
    session.answerJson(
        QJsonObject{{"path", file}, {"images", pairs.size()}, {"spectra", QJsonArray::fromStringList(names)}});
}
