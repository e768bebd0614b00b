// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/ResultMaps.h"

#include "platform/orvimage/TiffIo.h"
#include "services/basis/Failure.h"
#include "services/results/ResultFolder.h"

#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QJsonArray>
#include <QJsonObject>

#include <limits>

ResultMaps::ResultMaps(const QString& strFolder)
    : m_strFolder(QDir::cleanPath(QFileInfo(strFolder).absoluteFilePath()) + QLatin1Char('/')),
      m_strLabel(QDir(m_strFolder).dirName())
{
    const QJsonObject summary = ResultFolder::readSummary(m_strFolder, strFolder);
    const QString file = m_strFolder + QStringLiteral("summary.json");
    m_strUnit = summary.value(QStringLiteral("unit")).toString();
    m_fBinning = static_cast<float>(summary.value(QStringLiteral("binning")).toDouble());
    // The names alone: a summary that leads elsewhere is not followed.
    for (const auto& value : summary.value(QStringLiteral("files")).toArray()) {
        const QFileInfo map(value.toString());
        if (map.suffix() == QLatin1String("tif")) {
            m_files.append(map.fileName());
        }
    }
    const QJsonArray components = summary.value(QStringLiteral("components")).toArray();
    if (m_files.isEmpty()) {
        for (const auto& value : components) {
            m_files.append(QFileInfo(value.toObject().value(QStringLiteral("map")).toString()).fileName());
        }
    }
    if (m_files.isEmpty()) {
        throw Failure(QStringLiteral("%1 names no maps").arg(file));
    }
    if (!(m_fBinning > 0.0F)) {
        throw Failure(QStringLiteral("%1 does not tell the binning of the maps").arg(file));
    }
    for (int i = 0; i < m_files.size(); ++i) {
        m_names.append(m_files.size() == components.size()
                           ? components[i].toObject().value(QStringLiteral("name")).toString()
                           : QFileInfo(m_files[i]).completeBaseName());
    }
}

CILImage ResultMaps::read(int n) const
{
    const QString path = m_strFolder + m_files[n];
    CILImage map;
    QString error;
    if (!QFileInfo(path).isFile()) {
        throw Failure(QStringLiteral("%1: the map is not there").arg(path));
    }
    if (!readTiff(path, 0, map, &error)) {
        throw Failure(error);
    }
    map.ChangeType(ORVTYPE_FLOAT);
    map.m_fBinning = m_fBinning;
    maskOut(map);
    return map;
}

void ResultMaps::maskOut(CILImage& map) const
{
    const QImage mask = ResultFolder::readMask(m_strFolder, map.m_lWidth, map.m_lHeight);
    for (int y = 0; y < mask.height(); ++y) {
        for (int x = 0; x < mask.width(); ++x) {
            if (mask.constScanLine(y)[x] == 0) {
                map.floats()[y * mask.width() + x] = std::numeric_limits<float>::quiet_NaN();
            }
        }
    }
}
