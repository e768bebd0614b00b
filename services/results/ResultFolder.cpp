// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/ResultFolder.h"

#include "platform/orvutils/InputFile.h"
#include "services/basis/Failure.h"

#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QJsonDocument>

namespace ResultFolder {

namespace {

// A summary of ten thousand components takes half of this.
constexpr int maxMebibytes = 4;

} // namespace

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
                          .arg(file)
                          .arg(text.left(wrong.offset).count('\n') + 1)
                          .arg(wrong.errorString()));
    }
    return document.object();
}

QImage readMask(const QString& strFolder, long width, long height)
{
    const QString file = strFolder + QStringLiteral("mask.png");
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
                          .arg(file)
                          .arg(size.width())
                          .arg(size.height())
                          .arg(width)
                          .arg(height));
    }
    const QImage mask = size.isValid() ? reader.read().convertToFormat(QImage::Format_Grayscale8) : QImage();
    if (mask.isNull()) {
        throw Failure(QStringLiteral("%1: the mask is broken or cut short").arg(file));
    }
    return mask;
}

} // namespace ResultFolder
