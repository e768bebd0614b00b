// SPDX-License-Identifier: GPL-3.0-or-later
// What the views have in common in their context menus.
#include "host/GLImageView.h"

#include "host/CDicomExporter.h"
#include "host/CORVFileDialog.h"
#include "host/CORVImageExporter.h"
#include "host/CORVMessageBox.h"
#include "host/CORVPreference.h"
#include "host/CORVSequenceWindow.h"
#include "host/CORVUtilityFns.h"
#include "platform/orvwidgets/viewIcons.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QFileInfo>
#include <QGuiApplication>
#include <QMenu>

using orvwidgets::ViewIcon;

void GLImageView::contextMenuEvent(QContextMenuEvent* pEvent)
{
    auto* pMenu = new QMenu(this);
    pMenu->setAttribute(Qt::WA_DeleteOnClose);
    fillContextMenu(*pMenu);
    if (pMenu->isEmpty()) {
        delete pMenu;
        pEvent->ignore();
        return;
    }
    pMenu->popup(pEvent->reason() == QContextMenuEvent::Keyboard ? mapToGlobal(rect().center()) : pEvent->globalPos());
}

void GLImageView::fillContextMenu(QMenu& menu)
{
    const QColor ink = palette().color(QPalette::Text);
    const bool bPicture = !pictureToKeep().isNull();
    const auto add = [&](ViewIcon icon, const QString& text, void (GLImageView::*slot)()) {
        menu.addAction(orvwidgets::viewIcon(icon, ink), text, this, slot)->setEnabled(bPicture);
    };
    if ((menuItems() & CopyItem) != 0) {
        add(ViewIcon::Copy, tr("&Copy Picture"), &GLImageView::copyPicture);
    }
    if ((menuItems() & SaveItem) != 0) {
        add(ViewIcon::Save, tr("&Save Picture ..."), &GLImageView::savePicture);
    }
    if ((menuItems() & ZoomItem) != 0) {
        menu.addSeparator();
        add(ViewIcon::ZoomIn, tr("Zoom &In"), &GLImageView::zoomIn);
        add(ViewIcon::ZoomOut, tr("Zoom &Out"), &GLImageView::zoomOut);
        add(ViewIcon::Fit, tr("&Fit to View"), &GLImageView::fit);
    }
}

QImage GLImageView::pictureToKeep() const
{
    return picture();
}

void GLImageView::copyPicture()
{
    const QImage kept = pictureToKeep();
    if (!kept.isNull()) {
        QGuiApplication::clipboard()->setImage(kept);
    }
}

void GLImageView::savePicture()
{
    saveAs(pictureToKeep());
}

void GLImageView::saveAs(const QImage& picture)
{
    if (picture.isNull()) {
        return;
    }
    // PNG keeps every pixel and opens everywhere: first until the user has preferred another.
    QStringList suffixes = CORVImageExporter::suffixes();
    suffixes.move(suffixes.indexOf(QStringLiteral("png")), 0);
    QStringList filters;
    for (const QString& suffix : qAsConst(suffixes)) {
        filters.append(tr("%1 Image (*.%2)").arg(suffix.toUpper(), suffix));
    }
    CORVPreference::modifySaveFilterListByPreference(filters);
    const QString path =
        CORVFileDialog::getSaveFileName(this, tr("Save Picture"), QString(), filters.join(QStringLiteral(";;")));
    if (path.isEmpty()) {
        return;
    }
    const QString suffix = QFileInfo(path).suffix().toLower();
    CORVPreference::setUsersPreferredFormat(suffix);
    QString error;
    const bool saved =
        suffix == QLatin1String("dcm")
            ? CDicomExporter(path, CORVSequenceWindow::activeSequence()).writeDicomGraphics(picture, &error)
            : CORVImageExporter::saveImage(picture, path, &error);
    if (!saved) {
        CORVMessageBox::error(this, CORVUtilityFns::getAppName(), error);
    }
}
