// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "spectra/SpectrumPlotParams.h"

#include <QList>
#include <QString>
#include <QStringList>

class QTextStream;

// Libraries of spectra: one CSV file each, "<name>.csv" in the host's user data folder under "Spum", of a few header
// lines that start with "$", a line with the spectra's names, and one line per data point. Fields are separated by ","
// without quoting, so a comma in a note, name, colour or origin shifts the columns. Text is UTF-8 and numbers are those
// of the C locale, whatever the process is set to; values carry six significant digits.
//
// Lists of spectra own nothing by themselves: the entries belong to whoever owns the list.
class SpumKyvoDatabase
{
public:
    // Files that say to hold more spectra than this are refused, before anything is allocated for them.
    static constexpr int maxSpectra = 10000;

    SpumKyvoDatabase();
    virtual ~SpumKyvoDatabase() = default;

    // Names of the libraries in the folder, sorted without regard to case. Empty when the folder is not there; without
    // a host path also a log line.
    QStringList listLibraries() const;
    // The file of the library of that name, whether it is there or not; empty when the host has no path for it.
    static QString fileOfLibrary(const QString& name);

    // Writes the library file `path` (whole, with its extension), replacing what was there only when all is written.
    // The first spectrum's points give the lines and the two band columns; the others are read at the same positions.
    // False, without touching the disk, when `spectra` is empty or a spectrum has fewer points than the first; false
    // with a log line when the file cannot be written.
    bool saveLibrary(const QString& path, QList<SpectrumPlotParams*>& spectra, const QString& note) const;

    // The same for a file that may not be there yet, even where another program writes it at the same moment: then
    // false, without a log line, and true in *pExisted.
    bool saveNewLibrary(const QString& path, QList<SpectrumPlotParams*>& spectra, const QString& note,
                        bool* pExisted) const;

    // Reads the library `name` (without folder and extension); an empty name gives false. As loadLibraryFile.
    bool loadLibrary(const QString& name, QList<SpectrumPlotParams*>& spectra, QString& note) const;

    // The two band columns of the library `name`, as loadLibrary would read them: the texts of its data lines. Both
    // lists are emptied first; an empty name, or a file that ends a load, leaves them as far as they came. A log line
    // when the file cannot be opened.
    void loadBands(const QString& name, QStringList& excitations, QStringList& emissions) const;

    // Reads the library file `path`. When its "NumSpec" line comes, the entries of `spectra` are deleted and replaced;
    // a file without one leaves the list alone. False with a log line when the file cannot be opened, false in silence
    // when "NumSpec" is out of range or a "$" line has the wrong number of fields: `spectra` and `note` are then left
    // as far as they came. Other lines that do not fit are skipped.
    bool loadLibraryFile(const QString& path, QList<SpectrumPlotParams*>& spectra, QString& note) const;

    // As loadLibraryFile, from a stream of any codec.
    static bool readLibrary(QTextStream& stream, QList<SpectrumPlotParams*>& spectra, QString& note);

private:
    QString m_strFileName; // kept for compatibility; nothing reads it
};
