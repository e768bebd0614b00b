// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/session/SavedLibraries.h"

#include "files/diskCalls.h"
#include "services/basis/Failure.h"
#include "services/session/LibrarySpectra.h"
#include "spectra/SpectrumPlotParams.h"
#include "spectra/SpumKyvoDatabase.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstdio>

namespace {

const QString ending = QStringLiteral(".csv");

[[noreturn]] void refuseExisting(const QString& strName)
{
    throw Failure(QStringLiteral("the library %1 exists already").arg(strName), QStringLiteral("--force replaces it"));
}

QString pathToSave(const QString& strName, bool bReplace)
{
    SavedLibraries::checkName(strName);
    const QString path = SpumKyvoDatabase::fileOfLibrary(strName);
    if (QFileInfo::exists(path) && !bReplace) {
        refuseExisting(strName);
    }
    return path;
}

SpectrumPlotParams& spectrumNamed(const QList<SpectrumPlotParams*>& spectra, const QString& strName,
                                  const QString& strLibrary)
{
    QStringList names;
    for (auto* spectrum : spectra) {
        if (spectrum->settings.name == strName) {
            return *spectrum;
        }
        names.append(spectrum->settings.name);
    }
    throw Failure(QStringLiteral("the library %1 has no spectrum \"%2\"; it has %3")
                      .arg(strLibrary, strName, names.join(QStringLiteral(", "))));
}

void load(const QString& strName, LibrarySpectra& library)
{
    library.load(SavedLibraries::fileOf(strName));
}

} // namespace

// Names are listed without ".csv", wherever it stands in them.
void SavedLibraries::checkName(const QString& strName)
{
    if (strName.isEmpty() || strName.contains(QLatin1Char('/')) || strName.startsWith(QLatin1Char('.')) ||
        strName.contains(ending)) {
        throw Failure(
            QStringLiteral("\"%1\" cannot be the name of a library%2")
                .arg(strName, strName.contains(ending) ? QStringLiteral(": it is given without \".csv\"") : QString()),
            Failure::Kind::BadRequest);
    }
}

QString SavedLibraries::fileOf(const QString& strName)
{
    const QStringList saved = SpumKyvoDatabase().listLibraries();
    if (!saved.contains(strName)) {
        throw Failure(QStringLiteral("no library %1 is saved; %2")
                          .arg(strName, saved.isEmpty()
                                            ? QStringLiteral("there is none")
                                            : QStringLiteral("saved are ") + saved.join(QStringLiteral(", "))));
    }
    return SpumKyvoDatabase::fileOfLibrary(strName);
}

QString SavedLibraries::save(const LibrariesLock& /*lock*/, const QString& strName, QList<SpectrumPlotParams*> spectra,
                             const QString& strNote, bool bReplace)
{
    const QString path = pathToSave(strName, bReplace);
    SpumKyvoDatabase database;
    // A window may have saved one of that name meanwhile, which knows no lock.
    bool existed = false;
    if (bReplace ? !database.saveLibrary(path, spectra, strNote)
                 : !database.saveNewLibrary(path, spectra, strNote, &existed)) {
        if (existed) {
            refuseExisting(strName);
        }
        throw Failure(QStringLiteral("%1 cannot be written").arg(path));
    }
    return path;
}

void SavedLibraries::rename(const LibrariesLock& /*lock*/, const QString& strName, const QString& strNewName,
                            bool bReplace)
{
    const QString from = fileOf(strName);
    const QString to = pathToSave(strNewName, bReplace);
    const QByteArray source = QFile::encodeName(from);
    const QByteArray target = QFile::encodeName(to);
    // In one step, so that there is one of the two names at every moment.
    if (!(bReplace ? std::rename(source.constData(), target.constData()) == 0 : orv::renameToFree(source, target))) {
        if (errno == EEXIST) {
            refuseExisting(strNewName);
        }
        throw Failure(QStringLiteral("%1 cannot be renamed: %2").arg(from, qt_error_string(errno)));
    }
}

void SavedLibraries::renameSpectra(const LibrariesLock& lock, const QString& strName,
                                   const QList<QPair<QString, QString>>& names)
{
    LibrarySpectra library;
    load(strName, library);
    QList<SpectrumPlotParams*> renamed; // found by the names of before, which may be among the new ones
    for (const auto& [old, wanted] : names) {
        if (wanted.isEmpty() || wanted.contains(QLatin1Char(','))) {
            throw Failure(QStringLiteral("\"%1\" cannot be the name of a spectrum in a library").arg(wanted),
                          Failure::Kind::BadRequest);
        }
        SpectrumPlotParams& spectrum = spectrumNamed(library.all(), old, strName);
        if (renamed.contains(&spectrum)) {
            throw Failure(QStringLiteral("\"%1\" is given two names").arg(old), Failure::Kind::BadRequest);
        }
        renamed.append(&spectrum);
    }
    for (int i = 0; i < names.size(); ++i) {
        renamed[i]->settings.name = names[i].second;
    }
    QStringList taken;
    for (const auto* spectrum : library.all()) {
        if (taken.contains(spectrum->settings.name)) {
            throw Failure(QStringLiteral("two spectra would have the name \"%1\"").arg(spectrum->settings.name));
        }
        taken.append(spectrum->settings.name);
    }
    save(lock, strName, library.all(), library.note(), true);
}

void SavedLibraries::remove(const LibrariesLock& /*lock*/, const QStringList& names)
{
    QStringList files;
    for (const QString& name : names) {
        files.append(fileOf(name));
    }
    files.removeDuplicates();
    for (const QString& path : qAsConst(files)) {
        QFile file(path);
        if (!file.remove()) {
            throw Failure(QStringLiteral("%1 cannot be removed: %2").arg(path, file.errorString()));
        }
    }
}

int SavedLibraries::removeSpectra(const LibrariesLock& lock, const QString& strName, const QStringList& names)
{
    LibrarySpectra library;
    load(strName, library);
    QList<SpectrumPlotParams*> left = library.all();
    for (const QString& name : names) {
        left.removeOne(&spectrumNamed(left, name, strName));
        if (left.isEmpty()) {
            throw Failure(QStringLiteral("nothing would be left of the library %1").arg(strName),
                          QStringLiteral("\"spum library remove\" without --spectrum removes it"));
        }
    }
    save(lock, strName, left, library.note(), true);
    return left.size();
}
