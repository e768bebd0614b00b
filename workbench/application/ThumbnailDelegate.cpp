// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/ThumbnailDelegate.h"

#include "workbench/application/ThumbnailModel.h"

#include <QLocale>
#include <QPainter>
#include <QPolygonF>
#include <QVector>

#include <algorithm>
#include <cmath>

namespace {

constexpr int kMargin = 5;
constexpr int kFrame = 3; // of the chosen tile

int textHeight(const QFontMetrics& metrics, bool bRange)
{
    return metrics.height() * (bRange ? 2 : 1) + 2;
}

// A triangle with an exclamation mark.
void drawSign(QPainter& painter, const QRectF& place, const QColor& ink)
{
    const double side = std::min({place.width(), place.height(), 48.0}) * 0.8;
    const QRectF sign(place.center().x() - side / 2.0, place.center().y() - side / 2.0, side, side);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(120, 90, 0), side / 24.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(QColor(255, 205, 60));
    painter.drawPolygon(QPolygonF({QPointF(sign.center().x(), sign.top()), sign.bottomRight(), sign.bottomLeft()}));
    painter.setPen(QPen(Qt::black, side / 12.0, Qt::SolidLine, Qt::RoundCap));
    const double x = sign.center().x();
    painter.drawLine(QPointF(x, sign.top() + side * 0.4), QPointF(x, sign.top() + side * 0.65));
    painter.drawPoint(QPointF(x, sign.top() + side * 0.83));
    painter.setPen(ink);
}

// The upper end alone where both find no room.
QString rangeText(const DisplayRange& range, const QFontMetrics& metrics, int width)
{
    const QLocale locale;
    const QString upper = QStringLiteral("≤ %1").arg(locale.toString(range.maximum, 'g', 2));
    const QString both =
        QStringLiteral("%1 to %2").arg(locale.toString(range.minimum, 'g', 3), locale.toString(range.maximum, 'g', 3));
    return metrics.horizontalAdvance(both) <= width ? both : upper;
}

} // namespace

QSize ThumbnailDelegate::cellSize(int nSide, const QFontMetrics& metrics, bool bRange)
{
    return {nSide + 2 * kMargin, nSide + 2 * kMargin + textHeight(metrics, bRange)};
}

QRectF ThumbnailDelegate::pictureRect(const QRect& cell, const QSize& image, const QFontMetrics& metrics, bool bRange)
{
    const QRectF room = QRectF(cell).adjusted(kMargin, kMargin, -kMargin, -kMargin - textHeight(metrics, bRange));
    if (image.isEmpty()) {
        return room;
    }
    const QSizeF size = QSizeF(image).scaled(room.size(), Qt::KeepAspectRatio);
    return {room.center().x() - size.width() / 2.0, room.center().y() - size.height() / 2.0, size.width(),
            size.height()};
}

QSize ThumbnailDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& /*index*/) const
{
    return option.rect.size();
}

void ThumbnailDelegate::paint(QPainter* pPainter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    const auto* pModel = qobject_cast<const ThumbnailModel*>(index.model());
    const int tile = pModel != nullptr ? pModel->tileAt(index) : -1;
    if (tile < 0) {
        return;
    }
    Thumbnails& thumbnails = pModel->thumbnails();
    const bool range = thumbnails.isIndividual();
    const QImage picture = thumbnails.picture(tile);
    const QRectF place = pictureRect(option.rect, picture.size(), option.fontMetrics, range);
    const bool chosen = option.state.testFlag(QStyle::State_Selected);
    const QColor ink = option.palette.color(QPalette::Text);
    pPainter->save();
    if (chosen) {
        const bool active =
            option.state.testFlag(QStyle::State_HasFocus) || option.state.testFlag(QStyle::State_Active);
        const auto group = active ? QPalette::Active : QPalette::Inactive;
        pPainter->fillRect(option.rect.adjusted(1, 1, -1, -1), option.palette.color(group, QPalette::Highlight));
    }
    if (option.state.testFlag(QStyle::State_HasFocus)) {
        pPainter->setPen(QPen(ink, 1, Qt::DashLine));
        pPainter->drawRect(option.rect.adjusted(kFrame / 2, kFrame / 2, -kFrame / 2 - 1, -kFrame / 2 - 1));
    }
    if (!picture.isNull()) {
        pPainter->setRenderHint(QPainter::SmoothPixmapTransform);
        pPainter->drawImage(place, picture);
    } else {
        pPainter->setPen(option.palette.color(QPalette::Mid));
        pPainter->setBrush(option.palette.color(QPalette::AlternateBase));
        pPainter->drawRect(place.adjusted(0.0, 0.0, -1.0, -1.0));
        if (thumbnails.state(tile) == Thumbnails::State::Failed) {
            drawSign(*pPainter, place, ink);
        }
    }
    pPainter->setPen(chosen ? option.palette.color(QPalette::HighlightedText) : ink);
    QRect line(option.rect.left() + 2, option.rect.bottom() - kMargin - textHeight(option.fontMetrics, range) + 3,
               option.rect.width() - 4, option.fontMetrics.height());
    const auto write = [&](const QString& text) {
        pPainter->drawText(line, Qt::AlignHCenter | Qt::AlignVCenter | Qt::TextSingleLine,
                           option.fontMetrics.elidedText(text, Qt::ElideMiddle, line.width()));
        line.translate(0, option.fontMetrics.height());
    };
    write(pModel->grid().caption(tile));
    if (range && !thumbnails.range(tile).isEmpty()) {
        write(rangeText(thumbnails.range(tile), option.fontMetrics, line.width()));
    }
    pPainter->restore();
}
