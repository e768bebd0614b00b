// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/printing.h"

#include "host/CORVMessageBox.h"
#include "host/CORVUtilityFns.h"

#include <QCoreApplication>
#include <QPainter>
#include <QPointer>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrinter>

namespace {

// As wide as it is high, or the paper the other way round.
void turn(QPrinter& printer, const QPixmap& picture)
{
    printer.setPageOrientation(picture.width() > picture.height() ? QPageLayout::Landscape : QPageLayout::Portrait);
    printer.setDocName(CORVUtilityFns::getAppName());
}

} // namespace

namespace printing {

QRectF placeOnPage(const QSizeF& picture, const QRectF& page)
{
    if (picture.isEmpty() || page.isEmpty()) {
        return QRectF();
    }
    const QSizeF size = picture.scaled(page.size(), Qt::KeepAspectRatio);
    return QRectF(QPointF(page.left() + (page.width() - size.width()) / 2.0, page.top()), size);
}

void paint(QPrinter& printer, const QPixmap& picture)
{
    QPainter painter;
    if (!painter.begin(&printer)) {
        CORVMessageBox::error(nullptr, CORVUtilityFns::getAppName(),
                              QCoreApplication::translate("printing", "Nothing was printed: the printer or the file "
                                                                      "cannot be written."));
        return;
    }
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    // From the corner of what can be printed on, whose own place does not count for a painter.
    const QRectF page(QPointF(), printer.pageRect(QPrinter::DevicePixel).size());
    painter.drawPixmap(placeOnPage(picture.size(), page), picture, QRectF(picture.rect()));
}

void print(QWidget* pParent, const QPixmap& picture)
{
    if (picture.isNull()) {
        return;
    }
    QPrinter printer(QPrinter::HighResolution);
    turn(printer, picture);
    const QPointer<QPrintDialog> pDialog(new QPrintDialog(&printer, pParent));
    pDialog->setObjectName(QStringLiteral("PrintDialog"));
    const bool bAccepted = pDialog->exec() == QDialog::Accepted;
    delete pDialog;
    if (bAccepted) {
        paint(printer, picture);
    }
}

void preview(QWidget* pParent, const QPixmap& picture)
{
    if (picture.isNull()) {
        return;
    }
    QPrinter printer(QPrinter::HighResolution);
    turn(printer, picture);
    const QPointer<QPrintPreviewDialog> pDialog(new QPrintPreviewDialog(&printer, pParent));
    pDialog->setObjectName(QStringLiteral("PrintPreviewDialog"));
    QObject::connect(pDialog.data(), &QPrintPreviewDialog::paintRequested, pDialog.data(),
                     [&picture](QPrinter* pPrinter) { paint(*pPrinter, picture); });
    pDialog->exec();
    delete pDialog;
}

} // namespace printing
