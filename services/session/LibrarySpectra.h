// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/session/SpectraTable.h"
#include "services/session/SpectralBands.h"
#include "spectra/KeyPair.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <memory>

class SpectrumPlotParams;

// Spectra of a library, owned; or those of a plain table over wavelength (SpectraTable), where the caller takes one.
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
    // The same, and a file that is a plain table of spectra is one: isTable() then, and all() is empty.
    void loadWithTables(const QString& strFileOrName);
    // The file that it would read, absolute; it may be missing.
    static QString fileOf(const QString& strFileOrName);

    const QList<SpectrumPlotParams*>& all() const { return m_spectra; }
    // Spectra that are not selected count as if they were, from here on.
    void selectAll();
    bool isTable() const { return m_bTable; }
    const SpectraTable& table() const { return m_table; }
    const QString& note() const { return m_strNote; }
    const QString& source() const { return m_strSource; }

    // The selected spectra, brought to the pairs of an analysis: one point a pair, in that order, with index and axis
    // set. The caller owns the copies. Throws Failure that names the pair which a spectrum lacks, a spectrum without
    // any value above 0, one with a value that is not a number, or the absence of selected spectra.
    QList<SpectrumPlotParams*> fitTo(const QList<KeyPair>& pairs, int nAxis) const;
    // The same for bands, over whose widths the spectra of a table are the means, see tableOnBands().
    QList<SpectrumPlotParams*> fitTo(const QList<SpectralBand>& bands, int nAxis) const;

private:
    void load(const QString& strFileOrName, bool bTables);
    void readTable(const QByteArray& bytes);
    std::unique_ptr<SpectrumPlotParams> spectrumOfTable(int k, const QList<SpectralBand>& bands,
                                                        const QList<KeyPair>& pairs, int nAxis) const;

    SpectraTable m_table;
    bool m_bTable = false;
    QList<SpectrumPlotParams*> m_spectra;
    QString m_strNote;
    QString m_strSource;
};
