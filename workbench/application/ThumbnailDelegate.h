// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStyledItemDelegate>

// Draws the cells of a ThumbnailModel: the picture, under it the caption and, where each image has its own scale, the
// range. An image that cannot be shown has a sign in its place; the tool tip tells why.
class ThumbnailDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* pPainter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

    // The cell for a picture of that side, with its lines of text.
    static QSize cellSize(int nSide, const QFontMetrics& metrics, bool bRange);
    // Where the picture of an image of that size lies in a cell.
    static QRectF pictureRect(const QRect& cell, const QSize& image, const QFontMetrics& metrics, bool bRange);
};
