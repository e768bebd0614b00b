// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/basis/PngBytes.h"

#include <QBuffer>
#include <QImage>

QByteArray pngBytes(const QImage& picture)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    picture.save(&buffer, "PNG", 80);
    return bytes;
}
