// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"
#include "host/CORVSequenceDataset.h"
#include "platform/orvimage/TiffIo.h"
#include "services/basis/TruthFiles.h"
#include "workbench/simulator/simulate.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

// A small scene: quick to make, with everything in it.
inline SimulationOptions smallOptions()
{
    SimulationOptions options;
    options.size = 48;
    options.bands = 9;
    return options;
}

// A folder with blanks in its path, and sequences in it.
class SimulationFolder
{
public:
    SimulationFolder() { QDir(m_folder.path()).mkpath(QStringLiteral("with blanks")); }
    QString path(const QString& strName) const { return m_folder.filePath(QStringLiteral("with blanks/") + strName); }
    QStringList entries() const
    {
        return QDir(m_folder.filePath(QStringLiteral("with blanks")))
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }

private:
    QTemporaryDir m_folder;
};

inline void mustSimulate(const QString& strTarget, const SimulationOptions& options)
{
    QString error;
    ASSERT_TRUE(simulate(strTarget, options, {}, &error)) << qPrintable(error);
    ASSERT_TRUE(error.isEmpty()) << qPrintable(error);
}

// Every file below the folder with its bytes, in order of its path.
inline QList<QPair<QString, QByteArray>> allFiles(const QString& strFolder)
{
    QList<QPair<QString, QByteArray>> files;
    QDirIterator walk(strFolder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (walk.hasNext()) {
        QFile file(walk.next());
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        files.append({QDir(strFolder).relativeFilePath(file.fileName()), file.readAll()});
    }
    std::sort(files.begin(), files.end());
    return files;
}

// The truth in one unit (of a scan: of one spot) as its files tell it.
struct ReadTruth
{
    QStringList names;
    QStringList pairs; // "640,700"
    std::vector<std::vector<double>> spectra;
    std::vector<std::vector<double>> maps;

    ReadTruth(const QString& strSequence, tag_edisplayunit eUnit)
        : ReadTruth(strSequence, truthUnitFolder(eUnit), [](const QString& strName) { return truthMapFile(strName); })
    {
    }

    // Of another folder of the truth, with other names of the maps' files.
    template <typename FileOfName>
    ReadTruth(const QString& strSequence, const QString& strUnitFolder, const FileOfName& fileOfName)
    {
        const QString folder = strSequence + QStringLiteral("/truth/") + strUnitFolder;
        QFile file(folder + QStringLiteral("/spectra.csv"));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly | QIODevice::Text));
        for (const QString& line : QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
            const QStringList fields = line.split(QLatin1Char(','));
            if (fields.first() == QLatin1String("Excitation")) {
                names = fields.mid(2);
                spectra.resize(static_cast<std::size_t>(names.size()));
            } else if (fields.first() != QLatin1String("$")) {
                pairs.append(fields.mid(0, 2).join(QLatin1Char(',')));
                for (std::size_t k = 0; k < spectra.size(); ++k) {
                    spectra[k].push_back(fields.at(static_cast<int>(k) + 2).toDouble());
                }
            }
        }
        for (const QString& name : names) {
            CILImage image;
            QString error;
            EXPECT_TRUE(readTiff(folder + QLatin1Char('/') + fileOfName(name), 0, image, &error)) << qPrintable(error);
            std::vector<double> map(image.pixelCount());
            for (std::size_t i = 0; i < map.size(); ++i) {
                map[i] = image.value(i);
            }
            maps.push_back(map);
        }
    }
};

inline std::size_t indexOfMaximum(const std::vector<double>& values)
{
    return static_cast<std::size_t>(std::max_element(values.begin(), values.end()) - values.begin());
}
