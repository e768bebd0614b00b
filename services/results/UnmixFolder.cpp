// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/UnmixFolder.h"

#include "platform/orvimage/TiffIo.h"
#include "platform/orvutils/InputFile.h"
#include "services/basis/Failure.h"
#include "services/results/ResultFacts.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

// A summary of ten thousand components takes half of this.
constexpr int maxMebibytes = 4;

// The object of "summary.json". A folder without it is none with results; a text that is no JSON object is told with
// its line.
QJsonObject readSummary(const QString& strFolder, const QString& strShown)
{
    const QString file = strFolder + QStringLiteral("summary.json");
    if (!QFileInfo::exists(file) && !QFileInfo(file).isSymLink()) {
        throw Failure(QStringLiteral("%1: this is no folder with results of \"spum unmix\"").arg(strShown));
    }
    QByteArray text;
    QString error;
    if (!orv::readInput(file, maxMebibytes, QStringLiteral("summary"), &text, &error)) {
        throw Failure(error);
    }
    QJsonParseError wrong;
    const QJsonDocument document = QJsonDocument::fromJson(text, &wrong);
    if (wrong.error != QJsonParseError::NoError) {
        throw Failure(QStringLiteral("%1:%2: this is no JSON: %3")
                          .arg(file, QString::number(text.left(wrong.offset).count('\n') + 1), wrong.errorString()));
    }
    return document.object();
}

// A name alone: a summary that leads elsewhere is not followed.
QString nameOf(const QJsonValue& value)
{
    return QFileInfo(value.toString()).fileName();
}

} // namespace

UnmixFolder::UnmixFolder(const QString& strFolder, const QString& strShown)
    : m_strPath(QDir::cleanPath(QFileInfo(strFolder).absoluteFilePath()) + QLatin1Char('/')),
      m_strLabel(QDir(m_strPath).dirName())
{
    m_summary = readSummary(m_strPath, strShown.isEmpty() ? QFileInfo(m_strPath).path() : strShown);
    m_strUnit = m_summary.value(QStringLiteral("unit")).toString();
    m_dBinning = m_summary.value(QStringLiteral("binning")).toDouble();
    m_bDecayCorrected = m_summary.value(QStringLiteral("decayCorrected")).isObject();
    for (const auto& value : m_summary.value(QStringLiteral("components")).toArray()) {
        const QJsonObject component = value.toObject();
        m_components.append(
            {component.value(QStringLiteral("name")).toString(), nameOf(component.value(QStringLiteral("map")))});
    }
    QStringList others = {QLatin1String(allMapsName), QLatin1String(residualMapName)};
    for (const auto& value : m_summary.value(QStringLiteral("errorMaps")).toArray()) {
        others.append(nameOf(value));
    }
    for (const auto& value : m_summary.value(QStringLiteral("files")).toArray()) {
        const QString name = nameOf(value);
        if (QFileInfo(name).suffix() == QLatin1String("tif") && !others.contains(name)) {
            m_mapFiles.append(name);
        }
    }
}

CILImage UnmixFolder::readMap(const QString& strPath)
{
    CILImage map;
    QString error;
    if (!QFileInfo(strPath).isFile()) {
        throw Failure(QStringLiteral("%1: the map is not there").arg(strPath));
    }
    if (!readTiff(strPath, 0, map, &error)) {
        throw Failure(error);
    }
    map.ChangeType(ORVTYPE_FLOAT);
    return map;
}

QImage UnmixFolder::readMask(long width, long height) const
{
    const QString file = m_strPath + QStringLiteral("mask.png");
    if (!QFileInfo::exists(file) && !QFileInfo(file).isSymLink()) {
        return QImage();
    }
    QFile device(file);
    QString reason;
    if (!orv::openInput(device, &reason)) {
        throw Failure(QStringLiteral("%1: %2").arg(file, reason));
    }
    QImageReader reader(&device);
    // Asked before the pixels take memory.
    const QSize size = reader.size();
    if (size.isValid() && (size.width() != width || size.height() != height)) {
        throw Failure(QStringLiteral("%1: the mask has %2 x %3 pixels where the maps have %4 x %5")
                          .arg(file, QString::number(size.width()), QString::number(size.height()),
                               QString::number(width), QString::number(height)));
    }
    const QImage mask = size.isValid() ? reader.read().convertToFormat(QImage::Format_Grayscale8) : QImage();
    if (mask.isNull()) {
        throw Failure(QStringLiteral("%1: the mask is broken or cut short").arg(file));
    }
    return mask;
}
