// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/sequenceWindows.h"

#include "engine/CORVSpumKyvo.h"
#include "host/CORVMdiSubWindow.h"
#include "host/CORVSequenceDataset.h"
#include "host/CORVSequenceWindow.h"

namespace sequenceWindows {

CORVSequenceWindow* windowOf(const CORVSpumKyvo& engine)
{
    return CORVSequenceWindow::getSequenceWindow(CORVSequenceDataset::getSequenceDataset(engine.m_strSeqId));
}

void showFrame(CORVSequenceWindow* pWindow)
{
    if (pWindow == nullptr) {
        return;
    }
    if (auto* pFrame = qobject_cast<CORVMdiSubWindow*>(pWindow->parentWidget())) {
        pFrame->showWindow();
    }
}

void showMinimisedFrame(CORVSequenceWindow* pWindow)
{
    if (pWindow != nullptr && pWindow->parentWidget() != nullptr && pWindow->parentWidget()->isMinimized()) {
        showFrame(pWindow);
    }
}

void showTab(CORVSequenceWindow* pWindow, const char* pTitle, QWidget* pWidget, QWidget* pToolBar)
{
    if (pWindow == nullptr) {
        return;
    }
    const QString strTitle = QLatin1String(pTitle);
    if (pWindow->isTabPresent(strTitle)) {
        pWindow->setActiveTab(strTitle);
    } else {
        pWindow->addTabWidget(pWidget, pToolBar, nullptr, QIcon(), strTitle, -1, true);
    }
}

void removeTab(CORVSequenceWindow* pWindow, const char* pTitle)
{
    const QString strTitle = QLatin1String(pTitle);
    if (pWindow != nullptr && pWindow->isTabPresent(strTitle)) {
        pWindow->removeTabWidget(strTitle);
    }
}

} // namespace sequenceWindows
