// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/widgets/ChannelDelegate.h"

#include "windows/compositeControls.h"

#include <QBrush>
#include <QIcon>
#include <QPainter>
#include <QPixmap>

namespace {

constexpr int kSwatch = 12; // pixels

QIcon swatchOf(const QColor& color)
{
    QPixmap pixmap(kSwatch, kSwatch);
    pixmap.fill(color);
    QPainter painter(&pixmap);
    painter.setPen(QColor(96, 96, 96)); // a frame, so that the light colours stand off
    painter.drawRect(0, 0, kSwatch - 1, kSwatch - 1);
    painter.end();
    QIcon icon(pixmap);
    icon.addPixmap(pixmap, QIcon::Selected); // styles tint it otherwise
    return icon;
}

} // namespace

void ChannelDelegate::initStyleOption(QStyleOptionViewItem* pOption, const QModelIndex& index) const
{
    QStyledItemDelegate::initStyleOption(pOption, index);
    const QVariant foreground = index.data(Qt::ForegroundRole);
    if (!foreground.isValid()) {
        return;
    }
    const QColor color = foreground.value<QBrush>().color();
    pOption->palette.setColor(QPalette::Text, legibleColor(color, pOption->palette.color(QPalette::Base)));
    pOption->features |= QStyleOptionViewItem::HasDecoration;
    pOption->icon = swatchOf(color);
    pOption->decorationSize = QSize(kSwatch, kSwatch);
}
