// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvexport/flatPicture.h"

#include <QPainter>

namespace orvexport {

QImage flatPicture(const QImage& picture)
{
    QImage plain = picture;
    plain.setDevicePixelRatio(1.0);
    if (!picture.hasAlphaChannel()) {
        return plain.convertToFormat(QImage::Format_RGB32);
    }
    QImage flat(picture.size(), QImage::Format_RGB32);
    flat.setDotsPerMeterX(picture.dotsPerMeterX());
    flat.setDotsPerMeterY(picture.dotsPerMeterY());
    if (!flat.isNull()) {
        flat.fill(Qt::white);
        QPainter(&flat).drawImage(0, 0, plain);
    }
    return flat;
}

} // namespace orvexport
