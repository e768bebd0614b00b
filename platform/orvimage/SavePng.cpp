// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvimage/SavePng.h"
#include "platform/orvimage/StagedFile.h"

#include <QBuffer>

bool orvimage::savePng(const QString& path, const QImage& picture, QString* error)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QString reason = QStringLiteral("an empty picture cannot be written");
    if (!picture.isNull() && picture.save(&buffer, "PNG")) {
        StagedFile file(path);
        if (file.open() && file.write(buffer.data()) && file.commit())
            return true;
        reason = file.reason();
    }
    if (error != nullptr)
        *error = path + QStringLiteral(": ") + reason;
    return false;
}
