// SPDX-License-Identifier: GPL-3.0-or-later
#include "spectra/colorSwatch.h"

#include <QColor>
#include <QGuiApplication>
#include <QPainter>
#include <QPixmap>
#include <QPixmapCache>

namespace {

constexpr int kSide = 16; // pixels, before those of the device

QPixmap drawSwatch(const QString& strName, qreal dRatio)
{
    QColor color;
    color.setNamedColor(strName);
    QPixmap pixmap(qRound(kSide * dRatio), qRound(kSide * dRatio));
    pixmap.setDevicePixelRatio(dRatio);
    pixmap.fill(color);
    QPainter painter(&pixmap);
    painter.setPen(QColor(96, 96, 96)); // a frame, so that the light colours stand off
    painter.drawRect(QRectF(0.5 / dRatio, 0.5 / dRatio, kSide - 1.0 / dRatio, kSide - 1.0 / dRatio));
    return pixmap;
}

} // namespace

QIcon colorSwatch(const QString& strName)
{
    const qreal dRatio = qApp->devicePixelRatio();
    const QString key = QStringLiteral("color swatch %1 %2").arg(dRatio).arg(strName);
    QPixmap pixmap;
    if (!QPixmapCache::find(key, &pixmap)) {
        pixmap = drawSwatch(strName, dRatio);
        QPixmapCache::insert(key, pixmap);
    }
    QIcon icon(pixmap);
    icon.addPixmap(pixmap, QIcon::Selected); // a selected entry of a list would tint it
    return icon;
}
