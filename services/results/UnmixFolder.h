// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"

#include <QImage>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>

// A folder that `spum unmix` wrote, as its summary tells of it. Failures name the file.
class UnmixFolder
{
public:
    struct Component
    {
        QString name;
        QString map; // name of its map's file, of a scan that of the first spot
    };

    // Throws Failure when the folder is none of that kind. `strShown` is the folder as the user gave it, where that is
    // to be told.
    explicit UnmixFolder(const QString& strFolder, const QString& strShown = QString());

    // Absolute, with its separator.
    const QString& path() const { return m_strPath; }
    QString summaryPath() const { return m_strPath + QStringLiteral("summary.json"); }
    // The object of its summary.
    const QJsonObject& summary() const { return m_summary; }
    // Name of the folder.
    const QString& label() const { return m_strLabel; }
    // As shown ("Radiant Efficiency").
    const QString& unit() const { return m_strUnit; }
    // Of the maps; 0 where it is not told.
    double binning() const { return m_dBinning; }
    bool isDecayCorrected() const { return m_bDecayCorrected; }
    const QList<Component>& components() const { return m_components; }
    // Names of the files of all maps, those of every spot of a scan included; of an early folder empty.
    const QStringList& mapFiles() const { return m_mapFiles; }

    // A map as floats. Throws Failure when it is not there or cannot be read.
    static CILImage readMap(const QString& strPath);
    // "mask.png" in grey values; null when there is none, all pixels were then analysed. A mask that cannot be read or
    // is not of the maps' size is refused: without it, pixels would count that were not analysed.
    QImage readMask(long width, long height) const;

private:
    QString m_strPath;
    QString m_strLabel;
    QJsonObject m_summary;
    QString m_strUnit;
    double m_dBinning = 0.0;
    bool m_bDecayCorrected = false;
    QList<Component> m_components;
    QStringList m_mapFiles;
};
