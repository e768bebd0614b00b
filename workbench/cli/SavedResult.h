// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"
#include "spectra/KeyPair.h"
#include "workbench/cli/LibrarySpectra.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <vector>

// An unmixing as it lies in a folder: the components' maps and spectra. Of several scan spots the first is taken.
class SavedResult
{
public:
    SavedResult() = default;
    SavedResult(const SavedResult&) = delete;
    SavedResult& operator=(const SavedResult&) = delete;

    // Reads what `spum unmix` wrote into that folder; the label is the folder's name. Throws CliFailure that names what is missing.
    void readResult(const QString& strFolder);
    // Reads the truth of a simulation from its unit's folder, with the label "truth".
    void readTruth(const QString& strFolder);

    QString label() const { return m_strLabel; }
    // As shown ("Radiant Efficiency"); empty for a truth.
    QString unit() const { return m_strUnit; }
    int count() const { return m_names.size(); }
    const QStringList& names() const { return m_names; }
    const CILImage& map(int n) const { return m_maps[static_cast<std::size_t>(n)]; }
    // Row-major places of the pixels that were analysed; empty for all.
    const std::vector<int>& pixels() const { return m_pixels; }

    QList<KeyPair> pairs() const;
    bool hasPair(const KeyPair& pair) const;
    // A component's values at the pairs, all of which it has.
    std::vector<double> spectrum(int n, const QList<KeyPair>& pairs) const;

private:
    void readMap(const QString& strFile);
    void readMask(const QString& strFile);

    QString m_strLabel;
    QString m_strUnit;
    QStringList m_names;
    std::vector<CILImage> m_maps;
    std::vector<int> m_pixels;
    LibrarySpectra m_library;
};
