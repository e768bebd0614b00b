// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVImageWindow.h"

#include "host/CORVDataset.h"
#include "platform/orvapi/ImageObserver.h"

namespace {

QList<CORVImageWindow*>& openWindows()
{
    static QList<CORVImageWindow*> windows;
    return windows;
}

void refreshWindowsOf(CORVDataset* pDataset)
{
    const QList<CORVImageWindow*> windows = openWindows();
    for (CORVImageWindow* pWindow : windows) {
        if (pWindow->dataset() == pDataset) {
            pWindow->refreshImage();
        }
    }
}

} // namespace

CORVImageWindow::CORVImageWindow(CORVDataset* pDataset, QWidget* pParent)
    : CORVChildWindow(pParent), m_pDataset(pDataset)
{
    setWindowTitle(pDataset != nullptr ? pDataset->getClickNumber() : QString());
    openWindows().prepend(this);
    imageObserver() = refreshWindowsOf;
}

CORVImageWindow::~CORVImageWindow()
{
    openWindows().removeOne(this);
}

CORVImageWindow* CORVImageWindow::getImageWindow(const CORVDataset* pDataset)
{
    for (CORVImageWindow* pWindow : openWindows()) {
        if (pDataset != nullptr && pWindow->m_pDataset == pDataset) {
            return pWindow;
        }
    }
    return nullptr;
}

void CORVImageWindow::updateThumnailViewForSpumBatchProcessing(const QString& strPath)
{
    // The title is set, so the path does not take its place.
    setWindowFilePath(strPath);
    Q_EMIT thumbnailChanged(strPath);
}
