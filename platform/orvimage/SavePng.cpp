// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvimage/SavePng.h"
#include "files/AtomicFile.h"

#include <QBuffer>

bool orvimage::savePng(const QString& path, const QImage& picture, QString* error)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    if (!picture.isNull() && picture.save(&buffer, "PNG")) {
        return orv::writeFileAtomically(path, buffer.data(), error);
    }
    if (error != nullptr) {
        *error = path + QStringLiteral(": an empty picture cannot be written");
    }
    return false;
}
