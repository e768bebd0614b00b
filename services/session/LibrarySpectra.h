// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "spectra/KeyPair.h"

#include <QList>
#include <QString>
#include <QStringList>

class SpectrumPlotParams;

// Spectra of a library, owned.
class LibrarySpectra
{
public:
    LibrarySpectra() = default;
    ~LibrarySpectra();
    LibrarySpectra(const LibrarySpectra&) = delete;
    LibrarySpectra& operator=(const LibrarySpectra&) = delete;

    // Loads a file, or, when there is no such file, the library of that name in the user's data folder. Throws
    // Failure that says what is wrong.
    void load(const QString& strFileOrName);
    // The file that it would read, absolute; it may be missing.
    static QString fileOf(const QString& strFileOrName);

    const QList<SpectrumPlotParams*>& all() const { return m_spectra; }
    const QString& note() const { return m_strNote; }
    const QString& source() const { return m_strSource; }

    // The selected spectra, brought to the pairs of an analysis: one point a pair, in that order, with index and axis
    // set. The caller owns the copies. Throws Failure that names the pair which a spectrum lacks, a spectrum without
    // any value above 0, one with a value that is not a number, or the absence of selected spectra.
    QList<SpectrumPlotParams*> fitTo(const QList<KeyPair>& pairs, int nAxis) const;

private:
    QList<SpectrumPlotParams*> m_spectra;
    QString m_strNote;
    QString m_strSource;
};
