// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/programIcon.h"

#include <QPainter>
#include <QPixmap>

namespace {

QPixmap drawn(int nSize)
{
    QPixmap picture(nSize, nSize);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(24, 26, 34));
    painter.drawRoundedRect(QRectF(0, 0, nSize, nSize), nSize * 0.2, nSize * 0.2);
    painter.setCompositionMode(QPainter::CompositionMode_Plus);
    const double radius = nSize * 0.24;
    const struct
    {
        double x;
        double y;
        QColor color;
    } lights[] = {{0.5, 0.36, QColor(220, 60, 50)}, {0.37, 0.6, QColor(50, 190, 80)}, {0.63, 0.6, QColor(60, 90, 230)}};
    for (const auto& light : lights) {
        painter.setBrush(light.color);
        painter.drawEllipse(QPointF(light.x * nSize, light.y * nSize), radius, radius);
    }
    return picture;
}

} // namespace

QIcon programIcon()
{
    QIcon icon;
    for (const int nSize : {16, 24, 32, 48, 64, 128}) {
        icon.addPixmap(drawn(nSize));
    }
    return icon;
}
