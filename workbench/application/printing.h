// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPixmap>
#include <QRectF>

class QPrinter;
class QWidget;

// Pictures on paper, one a page.
namespace printing {

// Where a picture of that size goes on the page: in the middle of its width, at the top, as large as it fits.
QRectF placeOnPage(const QSizeF& picture, const QRectF& page);
void paint(QPrinter& printer, const QPixmap& picture);

// Ask for a printer, or show the page first, and print. A null picture does nothing.
void print(QWidget* pParent, const QPixmap& picture);
void preview(QWidget* pParent, const QPixmap& picture);
// On that printer's paper, turned as the picture is.
void preview(QWidget* pParent, const QPixmap& picture, QPrinter& printer);

} // namespace printing
