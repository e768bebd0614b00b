// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"
#include "services/results/UnmixFolder.h"

#include <QString>
#include <QStringList>

// The maps in a folder that `spum unmix` wrote, those of every scan spot included, one read at a time.
class ResultMaps
{
public:
    // Throws Failure when the folder is none of that kind.
    explicit ResultMaps(const QString& strFolder);

    // Name of the folder.
    QString label() const { return m_folder.label(); }
    // As shown ("Radiant Efficiency").
    QString unit() const { return m_folder.unit(); }
    int count() const { return m_files.size(); }
    // The component's name; of several spots, the name of the map's file without its ending.
    QString name(int n) const { return m_names[n]; }
    // The map with its binning, its pixels outside the analysed mask NaN: what was not analysed has no value. Throws
    // Failure when it cannot be read.
    CILImage read(int n) const;

private:
    void maskOut(CILImage& map) const;

    UnmixFolder m_folder;
    QStringList m_files;
    QStringList m_names;
};
