// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/batch/resultOfFolder.h"

#include "platform/orvutils/InputFile.h"

#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QJsonArray>
#include <QJsonDocument>

namespace {

constexpr int maxMebibytes = 4;
constexpr int maxPixels = 100 * 1000 * 1000; // of a composite

QByteArray textOf(const QString& strPath)
{
    QByteArray bytes;
    QString error;
    orv::readInput(strPath, maxMebibytes, QStringLiteral("summary"), &bytes, &error);
    return bytes;
}

} // namespace

QJsonObject summaryOfFolder(const QString& strResults)
{
    return QJsonDocument::fromJson(textOf(strResults + QStringLiteral("/summary.json"))).object();
}

QImage thumbnailOfFolder(const QString& strResults, const QJsonObject& summary, const QSize& most)
{
    for (const auto& value : summary.value(QStringLiteral("files")).toArray()) {
        const QString name = QFileInfo(value.toString()).fileName();
        if (!name.startsWith(QLatin1String("composite")) || !name.endsWith(QLatin1String(".png"))) {
            continue;
        }
        QFile file(strResults + QLatin1Char('/') + name);
        QString reason;
        if (!orv::openInput(file, &reason)) {
            return QImage();
        }
        QImageReader reader(&file);
        // Asked before the pixels take memory.
        const QSize size = reader.size();
        if (!size.isValid() || static_cast<qint64>(size.width()) * size.height() > maxPixels) {
            return QImage();
        }
        const QImage picture = reader.read();
        const bool larger = size.width() > most.width() || size.height() > most.height();
        return larger && !picture.isNull() ? picture.scaled(most, Qt::KeepAspectRatio, Qt::SmoothTransformation)
                                           : picture;
    }
    return QImage();
}
