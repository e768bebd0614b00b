// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"
#include "services/session/LibrarySpectra.h"
#include "spectra/KeyPair.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

class UnmixFolder;

// An unmixing as it lies in a folder: the components' maps, of a scan one for each spot, and spectra.
class ComparedResult
{
public:
    ComparedResult() = default;
    ComparedResult(const ComparedResult&) = delete;
    ComparedResult& operator=(const ComparedResult&) = delete;

    // Reads what `spum unmix` wrote into that folder; the label is the folder's name. Throws Failure that names what
    // is missing.
    void readResult(const QString& strFolder);
    // Reads the truth of a simulation from its unit's folder, that of data corrected for decay or of data as they
    // stand. The label is "truth", or "truth corrected for decay".
    void readTruth(const QString& strFolder, bool bDecayCorrected);

    QString label() const { return m_strLabel; }
    // As shown ("Radiant Efficiency"); empty for a truth.
    QString unit() const { return m_strUnit; }
    bool isTruth() const { return m_bTruth; }
    bool isDecayCorrected() const { return m_bDecayCorrected; }
    int count() const { return m_names.size(); }
    // Scan spots; 1 where there is no scan. All components have as many.
    int spotCount() const { return m_nSpots; }
    const QStringList& names() const { return m_names; }
    const CILImage& map(int n, int nSpot = 0) const
    {
        return m_maps[static_cast<std::size_t>(n) * static_cast<std::size_t>(m_nSpots) +
                      static_cast<std::size_t>(nSpot)];
    }
    // Row-major places of the pixels that were analysed; empty for all.
    const std::vector<int>& pixels() const { return m_pixels; }

    QList<KeyPair> pairs() const;
    bool hasPair(const KeyPair& pair) const;
    // A component's values at the pairs, all of which it has.
    std::vector<double> spectrum(int n, const QList<KeyPair>& pairs) const;

private:
    // The maps of the files that `fileOfSpot(spot)` names, from spot 0 to the last one that is there.
    void readSpots(const std::function<QString(int)>& fileOfSpot);
    void readMap(const QString& strFile);
    void readMask(const UnmixFolder& folder);

    QString m_strLabel;
    QString m_strUnit;
    QStringList m_names;
    bool m_bTruth = false;
    bool m_bDecayCorrected = false;
    int m_nSpots = 1;
    std::vector<CILImage> m_maps; // component by component
    std::vector<int> m_pixels;
    LibrarySpectra m_library;
};
