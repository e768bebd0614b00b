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

// Lets a dialog of that class choose the printer, with the paper turned as the picture is; `prepare` gets the dialog
// before it is shown. False when the user backs out, and without a picture.
template <typename Dialog, typename Prepare>
bool ask(QWidget* pParent, const QPixmap& picture, QPrinter& printer, const char* pName, const Prepare& prepare)
{
    if (picture.isNull()) {
        return false;
    }
    printer.setPageOrientation(picture.width() > picture.height() ? QPageLayout::Landscape : QPageLayout::Portrait);
    printer.setDocName(CORVUtilityFns::getAppName());
    const QPointer<Dialog> pDialog(new Dialog(&printer, pParent));
    pDialog->setObjectName(QLatin1String(pName));
    prepare(*pDialog);
    const bool bAccepted = pDialog->exec() == QDialog::Accepted;
    delete pDialog;
    return bAccepted;
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
    // Without the second a PDF file gets the picture as a JPEG one.
    painter.setRenderHints(QPainter::SmoothPixmapTransform | QPainter::LosslessImageRendering);
    // From the corner of what can be printed on, whose own place does not count for a painter.
    const QRectF page(QPointF(), printer.pageRect(QPrinter::DevicePixel).size());
    painter.drawPixmap(placeOnPage(picture.size(), page), picture, QRectF(picture.rect()));
}

void print(QWidget* pParent, const QPixmap& picture)
{
    QPrinter printer(QPrinter::HighResolution);
    if (ask<QPrintDialog>(pParent, picture, printer, "PrintDialog", [](QPrintDialog&) {})) {
        paint(printer, picture);
    }
}

void preview(QWidget* pParent, const QPixmap& picture)
{
    QPrinter printer(QPrinter::HighResolution);
    preview(pParent, picture, printer);
}

void preview(QWidget* pParent, const QPixmap& picture, QPrinter& printer)
{
    ask<QPrintPreviewDialog>(pParent, picture, printer, "PrintPreviewDialog", [&picture](QPrintPreviewDialog& dialog) {
        QObject::connect(&dialog, &QPrintPreviewDialog::paintRequested, &dialog,
                         [&picture](QPrinter* pPrinter) { paint(*pPrinter, picture); });
    });
}

} // namespace printing
