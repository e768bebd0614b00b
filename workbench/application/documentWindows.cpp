// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/documentWindows.h"

#include "host/CORVDataset.h"
#include "host/CORVSequenceWindow.h"
#include "workbench/application/DatasetWindow.h"
#include "workbench/application/SequenceTab.h"

#include <QIcon>

namespace documentWindows {

CORVSequenceWindow* makeSequenceWindow(CORVSequenceDataset* pSequence, const Listener& listener)
{
    auto* pWindow = new CORVSequenceWindow(pSequence);
    auto* pTab = new SequenceTab(pSequence, pWindow);
    pWindow->addTabWidget(pTab, nullptr, nullptr, QIcon(), QStringLiteral("Sequence View"), -1, true);
    QObject::connect(pTab, &SequenceTab::imageActivated, pWindow, [listener](CORVDataset* pDataset, int nImage) {
        listener.showDataset(pDataset);
        if (auto* pShown = qobject_cast<DatasetWindow*>(CORVImageWindow::getImageWindow(pDataset))) {
            pShown->showImage(nImage);
        }
    });
    QObject::connect(pTab, &SequenceTab::readOut, pWindow, listener.readOut);
    return pWindow;
}

CORVImageWindow* makeDatasetWindow(CORVDataset* pDataset, const Listener& listener)
{
    auto* pWindow = new DatasetWindow(pDataset);
    QObject::connect(pWindow, &DatasetWindow::readOut, pWindow, listener.readOut);
    return pWindow;
}

} // namespace documentWindows
